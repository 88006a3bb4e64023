// Characters in bytes that need not be UTF-8.

#include "platform/utf8.h"

#include <gtest/gtest.h>

namespace
{

std::string unicode(std::string_view text)
{
    std::string result;
    platform::appendUnicode(result, text);
    return result;
}

TEST(Utf8, BytesThatAreNoneAreReplacedAsFarAsACharacterCouldHaveGone)
{
    EXPECT_EQ(unicode("a\u00e9\u20ac\U0001F600\u0080\uFFFF\U0010FFFF"),
              "a\u00e9\u20ac\U0001F600\u0080\uFFFF\U0010FFFF");
    EXPECT_EQ(unicode("\x80"), "\uFFFD");
    EXPECT_EQ(unicode("\xC0\xAF"), "\uFFFD\uFFFD");
    EXPECT_EQ(unicode("\xE0\x80\x80"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(unicode("\xE2\x82"), "\uFFFD");
    EXPECT_EQ(unicode("\xE2\x82\xE2\x82\xAC"), "\uFFFD\u20ac");
    EXPECT_EQ(unicode("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(unicode("\xF0\x9F\x98<"), "\uFFFD<");
    EXPECT_EQ(unicode("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(unicode("\xF5\xFE\xFF"), "\uFFFD\uFFFD\uFFFD");
}

TEST(Utf8, EveryCharacterIsReadAsItIsWritten)
{
    for (uint32_t number = 0; number <= 0x10FFFF; ++number) {
        if (number >= 0xD800 && number < 0xE000) continue;
        std::string bytes;
        platform::append(bytes, number);
        const platform::Character character = platform::firstOf(bytes);
        ASSERT_TRUE(character.valid) << number;
        ASSERT_EQ(character.number, number);
        ASSERT_EQ(character.length, bytes.size());
    }
}

} // namespace
