// Values for terminals, and the two properties that hold many values.

#include "document/document.h"
#include "document/hosts.h"
#include "document/text.h"

#include <gtest/gtest.h>

namespace
{

using namespace document;

TEST(Text, ShowsWhatATerminalMayShow)
{
    EXPECT_EQ(shown("plain äöü € 𝄞"), "plain äöü € 𝄞");
    EXPECT_EQ(shown("a\tb\nc\x1b\x7f"), "a\\tb\\nc\\x1B\\x7F");
    EXPECT_EQ(shown(std::string_view("\0", 1)), "\\x00");
    EXPECT_EQ(shown("\xC2\x9B"), "\\xC2\\x9B");                   // a control character
    EXPECT_EQ(shown("\xE2\x80\xAE"), "\\xE2\\x80\\xAE");          // turns the text around
    EXPECT_EQ(shown("\xC0\xAF"), "\\xC0\\xAF");                   // overlong
    EXPECT_EQ(shown("\xED\xA0\x80"), "\\xED\\xA0\\x80");          // half a pair
    EXPECT_EQ(shown("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80"); // beyond the last
    EXPECT_EQ(shown("\xE2\x82"), "\\xE2\\x82");                   // cut
    EXPECT_EQ(shown("\xFFx"), "\\xFFx");
}

TEST(Text, CutsBetweenCharacters)
{
    EXPECT_EQ(widthOf("äöü"), 3U);
    EXPECT_EQ(cutTo("äöüäöü", 6), "äöüäöü");
    EXPECT_EQ(cutTo("äöüäöü", 5), "äö...");
}

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
    EXPECT_EQ(parseHosts("web=2"), std::nullopt);
    EXPECT_EQ(parseHosts("web,"), std::nullopt);
    EXPECT_EQ(parseHosts("web=x,"), std::nullopt);
    EXPECT_EQ(parseHosts("web=99999999999999999999,"), std::nullopt);
}

TEST(NamedValues, AreReadWithTheCommasOfTheirValues)
{
    EXPECT_EQ(parseNamedValues(""), NamedValues{});
    EXPECT_EQ(parseNamedValues("AN=1,AC=6+P,7+P,RP=,"),
              (NamedValues{{"AN", "1"}, {"AC", "6+P,7+P"}, {"RP", ""}}));
    EXPECT_EQ(parseNamedValues("none"), std::nullopt);
}

} // namespace
