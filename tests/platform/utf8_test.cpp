// Characters in bytes that need not be UTF-8.

#include "platform/utf8.h"

#include <algorithm>
#include <climits>
#include <clocale>
#include <cuchar>
#include <gtest/gtest.h>
#include <set>
#include <string>

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

/// The first two bytes of every character's only form, by the C library.
std::set<std::string> allStarts()
{
    const locale_t before = uselocale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr));
    std::set<std::string> starts;
    for (uint32_t number = 0; number <= 0x10FFFF; ++number) {
        if (number >= 0xD800 && number < 0xE000) continue;
        char bytes[MB_LEN_MAX];
        std::mbstate_t state{};
        const size_t length = std::c32rtomb(bytes, static_cast<char32_t>(number), &state);
        starts.emplace(bytes, std::min<size_t>(length, 2));
    }
    freelocale(uselocale(before));
    return starts;
}

TEST(Utf8, NoCharacterHasTwoForms)
{
    const std::set<std::string> starts = allStarts();
    for (unsigned lead = 0x80; lead <= 0xFF; ++lead) {
        for (unsigned second = 0; second <= 0xFF; ++second) {
            const std::string text = {static_cast<char>(lead), static_cast<char>(second), '\x80', '\x80'};
            const bool is = starts.contains(text.substr(0, 2));
            const platform::Character character = platform::firstOf(text);
            ASSERT_EQ(character.valid, is) << lead << ' ' << second;
            if (!is) {
                ASSERT_EQ(character.length, 1U) << lead << ' ' << second;
                ASSERT_EQ(character.number, 0xFFFDU);
            }
        }
    }
}

TEST(Utf8, OnlySomeBytesContinueACharacter)
{
    for (const char* start : {"\xE2\x82", "\xF0\x9F\x98", "\xF0\x9F"}) {
        const std::string text = start;
        for (const char wrong : {'\x00', '\x7F', '\xC0', '\xFF'}) {
            const platform::Character character = platform::firstOf(text + wrong);
            EXPECT_FALSE(character.valid);
            EXPECT_EQ(character.length, text.size());
        }
    }
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
