// Text for terminals and tables.

#include "platform/text.h"

#include "platform/utf8.h"

#include <clocale>
#include <cstdio>
#include <gtest/gtest.h>
#include <vector>

namespace
{

using namespace platform;

TEST(Text, ShowsWhatATerminalMayShow)
{
    EXPECT_EQ(shown("plain äöü € 𝄞"), "plain äöü € 𝄞");
    EXPECT_EQ(shown("a\tb\nc\x1b\x7f"), "a\\tb\\nc\\x1B\\x7F");
    EXPECT_EQ(shown(std::string_view("\0", 1)), "\\x00");
}

TEST(Text, ShowsWhatControlsATerminalOrHides)
{
    EXPECT_EQ(shown("\xC2\x80"), "\\u{80}");            // the first character of two bytes
    EXPECT_EQ(shown("\xC2\x9B"), "\\u{9B}");            // control sequences begin with it, as with ESC [
    EXPECT_EQ(shown("\xE2\x80\xAE"), "\\u{202E}");      // turns the text around
    EXPECT_EQ(shown("\xE2\x81\xA6"), "\\u{2066}");      // isolates it
    EXPECT_EQ(shown("\xE2\x80\xA8"), "\\u{2028}");      // ends the line
    EXPECT_EQ(shown("a\xE2\x80\x8Bz"), "a\\u{200B}z");  // a blank without width
    EXPECT_EQ(shown("\xEF\xBB\xBF"), "\\u{FEFF}");      // a byte order mark
    EXPECT_EQ(shown("\xC2\xAD"), "\\u{AD}");            // a hyphen where a line may end
    EXPECT_EQ(shown("\xF3\xA0\x81\x81"), "\\u{E0041}"); // a tag: text that nothing draws
    EXPECT_EQ(shown("\xC2\xA0\xC2\xA1"), "\xC2\xA0\xC2\xA1"); // the first that are no control characters
}

/// What Unicode calls default-ignorable, its separators of lines and paragraphs, and the marks of
/// annotations: the first and the last of each range, and that their neighbours are shown.
TEST(Text, KnowsEveryRangeOfWhatHides)
{
    const std::vector<std::pair<uint32_t, uint32_t>> ranges = {
        {0x7F, 0x9F},       {0xAD, 0xAD},       {0x34F, 0x34F},     {0x61C, 0x61C},   {0x115F, 0x1160},
        {0x17B4, 0x17B5},   {0x180B, 0x180F},   {0x200B, 0x200F},   {0x2028, 0x202E}, {0x2060, 0x206F},
        {0x3164, 0x3164},   {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0}, {0xFFF0, 0xFFFB},
        {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF},
    };
    const auto isHidden = [](uint32_t number) {
        std::string text;
        append(text, number);
        return shown(text) != text;
    };
    for (const auto& [first, last] : ranges) {
        EXPECT_TRUE(isHidden(first)) << std::hex << first;
        EXPECT_TRUE(isHidden(last)) << std::hex << last;
        EXPECT_FALSE(isHidden(first - 1)) << std::hex << first;
        EXPECT_FALSE(isHidden(last + 1)) << std::hex << last;
    }
    EXPECT_TRUE(isHidden(0x1F));
    EXPECT_FALSE(isHidden(' '));
}

TEST(Text, TellsWhatItDoesNotShowByItsNumber)
{
    for (uint32_t number = 0xE0000; number <= 0xE0FFF; ++number) {
        std::string text;
        append(text, number);
        char expected[20];
        std::snprintf(expected, sizeof expected, "\\u{%X}", number);
        ASSERT_EQ(shown(text), expected);
    }
}

TEST(Text, ShowsBytesThatAreNoUtf8)
{
    EXPECT_EQ(shown("\xC0\xAF"), "\\xC0\\xAF");                   // overlong
    EXPECT_EQ(shown("\xED\xA0\x80"), "\\xED\\xA0\\x80");          // half a pair
    EXPECT_EQ(shown("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80"); // beyond the last
    EXPECT_EQ(shown("\xE2\x82"), "\\xE2\\x82");                   // cut
    EXPECT_EQ(shown("\xFFx"), "\\xFFx");
}

TEST(Text, CountsTheColumnsOfATerminal)
{
    EXPECT_EQ(widthOf("abc"), 3U);
    EXPECT_EQ(widthOf("äöü"), 3U);
    EXPECT_EQ(widthOf("日本"), 4U);          // two columns each
    EXPECT_EQ(widthOf("e\xCC\x81te"), 3U);   // an accent of its own takes none
    EXPECT_EQ(widthOf("\xFFä\xE2\x82"), 3U); // a byte that is no character, and a cut one
    EXPECT_EQ(widthOf("ä\x1b"), 2U);         // one that has no width of its own
    EXPECT_EQ(widthOf(""), 0U);
    EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE); // the caller's own, as before
}

TEST(Text, CutsBetweenCharacters)
{
    EXPECT_EQ(cutTo("äöüäöü", 6), "äöüäöü");
    EXPECT_EQ(cutTo("äöüäöü", 5), "äö...");
    EXPECT_EQ(cutTo("日本日本", 8), "日本日本");
    EXPECT_EQ(cutTo("日本日本", 7), "日本...");
    EXPECT_EQ(cutTo("日本日本", 6), "日...");
    EXPECT_EQ(cutTo("plain", 5), "plain");
}

TEST(Text, ShowsTheStartOfALongOne)
{
    EXPECT_EQ(shown("plain", 5), "plain");
    EXPECT_EQ(shown("a\x1b[2J", 8), "a\\x1B[2J");
    EXPECT_EQ(shown("a\x1b[2J", 7), "a\\x1...");
    EXPECT_EQ(shown(std::string(1'000'000, 'x'), 10), "xxxxxxx...");
    std::string pile = "a";
    for (int i = 0; i < 1000; ++i)
        pile += "\xCC\x81";
    EXPECT_TRUE(shown(pile, 20).ends_with("..."));
}

TEST(Text, CutsAPileOfAccents)
{
    std::string pile = "a";
    for (int i = 0; i < 1000; ++i)
        pile += "\xCC\x81";
    EXPECT_LT(cutTo(pile, 20).size(), 30U);
}

/// People put four marks on one character at most.
TEST(Text, KeepsTheMarksOfOneCharacter)
{
    const std::string mark = "\xCC\x81";
    const std::string four = "a" + mark + mark + mark + mark;
    EXPECT_EQ(cutTo(four + four, 2), four + four);
    EXPECT_EQ(cutTo(four + mark + "bcd", 4), four + "...");
    EXPECT_EQ(cutTo("\xFF\xFF\xFF\xFF\xFF", 4), "\xFF...");
    // A character and its marks have four bytes each at most.
    const std::string stem = "\U0001D157\U0001D167\U0001D167\U0001D167\U0001D167";
    EXPECT_EQ(shown(stem + stem + stem + stem, 4), stem + stem + stem + stem);
    EXPECT_EQ(shown(stem + stem + stem + stem + "x", 4), stem + "...");
}

} // namespace
