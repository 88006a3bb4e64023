// The page as text; tests/document/browser_test.py opens it in a browser.

#include "document/page.h"
#include "writing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>

namespace
{

using namespace kordTest;

const std::string dataStart = R"(<script type="application/json" id="data">)";

/// What stands between the data's start and the next "</script>", which is where a browser ends it.
std::string dataOf(const std::string& page)
{
    const size_t start = page.find(dataStart) + dataStart.size();
    return page.substr(start, page.find("</script>", start) - start);
}

size_t count(const std::string& text, const std::string& part)
{
    size_t found = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

TEST(Page, HoldsTheDocumentAsData)
{
    const auto data = nlohmann::json::parse(dataOf(
        document::page(parse(ofEnclosures(resource("Quay", "Q", property("PN", "Part Number", "P1")))))));
    const auto text = [&](const nlohmann::json& index) { return data["texts"][index.get<size_t>()]; };
    const auto& part = data["system"][6][0];
    EXPECT_EQ(data["kinds"][part[0].get<size_t>()][0], "console");
    EXPECT_EQ(text(part[1]), "Enclosures");
    EXPECT_EQ(text(part[2]), "Quay");
    EXPECT_EQ(text(part[3]), "Q");
    const auto& shape = data["shapes"][part[4].get<size_t>()];
    ASSERT_EQ(shape.size(), 1U);
    EXPECT_EQ(text(shape[0][0]), "PN");
    EXPECT_EQ(text(shape[0][1]), "Part Number");
    EXPECT_EQ(text(part[5][0]), "P1");
}

TEST(Page, NoValueBecomesMarkup)
{
    const std::string calm = document::page(parse(ofSystem(property("PN", "L", "x"))));
    for (const std::string value : {"</script><img src=x onerror=alert(1)>", "<!--<script>", "]]>", "&lt;",
                                    "\xFF<\xFE", "{{data}}", "@KORD_PAGE_SCRIPT@"}) {
        const std::string page = document::page(
            parse(ofSystem(property("PN", value, value) + list(value, resource(value, value, "")))));
        EXPECT_EQ(count(page, "<"), count(calm, "<")) << value;
        EXPECT_EQ(count(page, "&"), count(calm, "&")) << value;
        EXPECT_TRUE(nlohmann::json::accept(dataOf(page))) << value;
    }
}

TEST(Page, NeedsNothingFromElsewhere)
{
    const std::string page = document::page(parse(ofSystem("")));
    EXPECT_FALSE(std::regex_search(page, std::regex(R"((src|href)="(?!#))")));
    EXPECT_THAT(page, testing::Not(testing::HasSubstr("url(")));
    EXPECT_THAT(page, testing::Not(testing::HasSubstr("@import")));
    EXPECT_THAT(page, testing::HasSubstr("default-src 'none'; style-src 'sha256-"));
}

} // namespace
