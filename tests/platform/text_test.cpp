// Text for terminals and tables.

#include "platform/text.h"

#include <gtest/gtest.h>

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
    EXPECT_EQ(widthOf("日本"), 4U);        // two columns each
    EXPECT_EQ(widthOf("e\xCC\x81te"), 3U); // an accent of its own takes none
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

} // namespace
