// Texts in the journal: whatever bytes a call or a program hands over, the line is JSON.

#include "image/journal.h"
#include "parseJson.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using nlohmann::json;

std::string read(const std::string& bytes)
{
    std::string text;
    console::image::writeJson(text, bytes.c_str());
    return kordTest::parseJson(text);
}

TEST(Journal, KeepsEveryCharacter)
{
    std::string ascii;
    for (char c = 1; c < 127; ++c)
        ascii += c;
    EXPECT_EQ(read(ascii + '\x7F'), ascii + '\x7F');
    for (const std::string text : {"\u0080", "\u07FF", "\u0800", "\uD7FF", "\uE000", "\uFFFF", "\U00010000",
                                   "\U000FFFFF", "\U0010FFFF", "a\u00E9b\u20ACc\U0001F600d"})
        EXPECT_EQ(read(text), text) << json(text);
    std::string none;
    console::image::writeJson(none, nullptr);
    EXPECT_EQ(none, "null");
}

TEST(Journal, ReplacesEveryByteThatIsOfNoCharacter)
{
    for (const std::string bytes :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xED\xA0\x80",
          "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80",
          "\xFF", "\xC3", "\xE2\x82", "\xF0\x9F\x98"}) {
        std::string replaced;
        for (size_t i = 0; i < bytes.size(); ++i)
            replaced += "\uFFFD";
        EXPECT_EQ(read(bytes), replaced) << testing::PrintToString(bytes);
        EXPECT_EQ(read(bytes + "x\u20AC"), replaced + "x\u20AC") << testing::PrintToString(bytes);
    }
}

} // namespace
