// Times and hosts.

#include "document/document.h"
#include "document/hosts.h"

#include <gtest/gtest.h>

namespace
{

using namespace document;

TEST(Text, TellsTimes)
{
    EXPECT_EQ(timeOf("0.5"), "1970-01-01 00:00:00 UTC");
    EXPECT_EQ(timeOf("1795268463.740779"), "2026-11-21 13:41:03 UTC");
    EXPECT_EQ(timeOf("99999999999999999999.1"), "99999999999999999999.1");
}

TEST(Hosts, AreReadWithWhateverIsInTheirDescriptions)
{
    EXPECT_EQ(parseHosts(""), std::vector<Host>{});
    EXPECT_EQ(parseHosts("web=2,mail=1,"), (std::vector<Host>{{"web", 2}, {"mail", 1}}));
    EXPECT_EQ(parseHosts("=3,"), (std::vector<Host>{{"", 3}}));
    EXPECT_EQ(parseHosts("a,b=c, d=2,x=1,"), (std::vector<Host>{{"a,b=c, d", 2}, {"x", 1}}));
    EXPECT_EQ(parseHosts("web=-2,a-b=0,"), (std::vector<Host>{{"web", -2}, {"a-b", 0}}));
    for (const char* text : {"web=2", "web,", "web=x,", "web=99999999999999999999,", "web=,", "web=-,", "-,",
                             "web=_2,", "web-2,", "2,", "-2,", "web=--2,", "web=/,", "web=:,"})
        EXPECT_EQ(parseHosts(text), std::nullopt) << text;
}

} // namespace
