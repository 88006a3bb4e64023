// A trace log read back: the collector's lines in one piece, whatever stands in and between them.

#include "document/trace.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using document::TraceLine;
using document::TraceReader;

const std::string stamp = "112126 13:41:03 ";

/// A line that outlives the reading.
struct Line {
    std::string code;
    std::string text;
    std::string further;
    size_t number;
    bool whole;

    bool operator==(const Line&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Line& line)
{
    return out << line.number << ' ' << line.code << " [" << line.text << "] [" << line.further << "] "
               << (line.whole ? "whole" : "broken");
}

std::vector<Line> linesOf(const std::string& log, size_t piece = std::string::npos)
{
    std::vector<Line> lines;
    TraceReader reader([&](const TraceLine& line) {
        lines.push_back({std::string(line.code), std::string(line.text), std::string(line.further),
                         line.number, line.whole});
    });
    for (size_t at = 0; at < log.size(); at += std::min(piece, log.size() - at))
        reader.read(std::string_view(log).substr(at, piece));
    reader.settle();
    return lines;
}

/// As the collector writes it: 61 bytes of code and text in the first line when both have more than 60, then
/// lines of 80.
std::string wrapped(const std::string& code, std::string text)
{
    std::string line = stamp + code + ": ";
    size_t room = code.size() + text.size() > 60 ? 61 - code.size() : text.size();
    do {
        line += text.substr(0, room) + '\n';
        text.erase(0, room);
        room = 80;
    } while (!text.empty());
    return line;
}

TEST(TraceReader, ReadsALine)
{
    EXPECT_EQ(linesOf(stamp + "0004: start local session \n"),
              (std::vector<Line>{{"0004", "start local session ", "", 1, true}}));
}

TEST(TraceReader, ACodeMayCarryABlank)
{
    EXPECT_EQ(linesOf(stamp + "409 :  array_cnt_pps=1\n" + stamp + "getResQuaySE: input  a output b i=1\n"),
              (std::vector<Line>{{"409", " array_cnt_pps=1", "", 1, true},
                                 {"getResQuaySE", "input  a output b i=1", "", 2, true}}));
}

/// What stands before the colon, and the stamp before it: anything else is no start of a line.
TEST(TraceReader, KnowsTheStartOfALine)
{
    const auto starts = [](const std::string& line) {
        return linesOf(stamp + "0008: close file\n" + line + '\n').size() == 2;
    };
    for (const std::string code :
         {"050", "0010", "999", "0302 ", "409 ", "==>", ">>", "SRCV", "getResQuaySE"})
        EXPECT_TRUE(starts(stamp + code + ": x")) << code;
    for (const std::string code : {"", " ", "05", "05 ", "00100", "050  ", " 050", "05a", "/050", "050:",
                                   "=>", ">", "==>>", "SRC", "SRCV ", "getResQuaySE ", "getResQuaySE1234"})
        EXPECT_FALSE(starts(stamp + code + ": x")) << code;
    for (const std::string line : {"", "0010", "0010:", "0010:x", "0010 x"})
        EXPECT_FALSE(starts(stamp + line)) << line;
    EXPECT_FALSE(starts("112126 13:41:03"));
    EXPECT_FALSE(starts("112126 13:41:030010: x"));
    for (size_t at = 0; at + 1 < stamp.size(); ++at) {
        for (const char other : {'/', ':', 'x', '0', ' '}) {
            const bool digit = stamp[at] >= '0' && stamp[at] <= '9';
            if (other == stamp[at] || (digit && other == '0')) continue;
            std::string text = stamp;
            text[at] = other;
            EXPECT_FALSE(starts(text + "0010: x")) << text;
        }
    }
}

TEST(TraceReader, ALineThatIsLongerThanTheCollectorsIsBroken)
{
    for (const size_t length : {size_t{57}, size_t{58}}) {
        const std::string text(length, 'x');
        EXPECT_EQ(linesOf(stamp + "0010: " + text + '\n'),
                  (std::vector<Line>{{"0010", text, "", 1, length == 57}}));
    }
    for (const size_t length : {size_t{80}, size_t{81}}) {
        const std::string first(57, 'x');
        const std::string second(length, 'y');
        const auto lines = linesOf(stamp + "0010: " + first + '\n' + second + "\nz\n");
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_EQ(lines[0].whole, length == 80);
        EXPECT_EQ(lines[0].text, length == 80 ? first + second + 'z' : first);
        EXPECT_EQ(lines[0].further, length == 80 ? "" : second + "\nz");
    }
}

TEST(TraceReader, JoinsTextsOfEveryLength)
{
    for (size_t length = 0; length < 400; ++length) {
        std::string text;
        while (text.size() < length)
            text += static_cast<char>('a' + text.size() % 26);
        for (const std::string code : {"050", "0010", "0302 "}) {
            const auto lines = linesOf(wrapped(code, text) + wrapped("0008", "close file"));
            ASSERT_EQ(lines.size(), 2U) << length;
            EXPECT_EQ(lines[0], (Line{code.substr(0, code.find(' ')), text, "", 1, true})) << length;
        }
    }
}

TEST(TraceReader, KeepsTheTextsOwnLineFeeds)
{
    for (size_t length = 1; length < 200; ++length) {
        for (size_t at = 0; at < length; ++at) {
            std::string text(length, 'x');
            text[at] = '\n';
            const auto lines = linesOf(wrapped("0107", text) + wrapped("0008", "close file"));
            ASSERT_EQ(lines.size(), 2U) << length << ' ' << at;
            EXPECT_EQ(lines[0].text, text) << length << ' ' << at;
            EXPECT_TRUE(lines[0].whole) << length << ' ' << at;
        }
    }
}

TEST(TraceReader, ReadsPiecesOfAnySize)
{
    const std::string log = wrapped("0010", std::string(200, 'x')) + wrapped("0008", "close file");
    for (size_t piece = 1; piece < 90; ++piece)
        EXPECT_EQ(linesOf(log, piece), linesOf(log)) << piece;
}

TEST(TraceReader, PassesOverWhatStandsBeforeTheFirstLine)
{
    EXPECT_EQ(linesOf("rest of a line\nmore\n" + stamp + "0008: close file\n"),
              (std::vector<Line>{{"0008", "close file", "", 3, true}}));
    EXPECT_EQ(linesOf(""), std::vector<Line>{});
    EXPECT_EQ(linesOf("no log\nat all\n"), std::vector<Line>{});
}

TEST(TraceReader, WhatAnEventsProgramPrintsIsNoText)
{
    EXPECT_EQ(
        linesOf(stamp + "==>:  handleErrKord queryDDM, e\nfiled 12\nas 13\n" + stamp + "0008: close file\n"),
        (std::vector<Line>{{"==>", " handleErrKord queryDDM, e", "filed 12\nas 13", 1, true},
                           {"0008", "close file", "", 4, true}}));
}

TEST(TraceReader, WhatStandsBelowAWritersLineIsNoText)
{
    EXPECT_EQ(linesOf(stamp + ">>:  openInventory\nprinted\n"),
              (std::vector<Line>{{">>", " openInventory", "printed", 1, true}}));
}

TEST(TraceReader, KeepsAsMuchAsTheLongestCommandOfAnEvent)
{
    constexpr size_t most = 16384;
    const std::string text = " handleErrKord queryDDM, e";
    for (const size_t over : {0U, 1U}) {
        const std::string printed(most - 1 - text.size() + over, 'x');
        EXPECT_EQ(linesOf(stamp + "==>: " + text + '\n' + printed + '\n'),
                  (std::vector<Line>{{"==>", text, over == 0 ? printed : "", 1, true}}));
    }
}

TEST(TraceReader, FindsALineBehindAnUnendedOne)
{
    const std::string event = stamp + "==>:  handleErrKord queryDDM, e\n";
    EXPECT_EQ(linesOf(event + "filed" + stamp + "0008: close file\n"),
              (std::vector<Line>{{"==>", " handleErrKord queryDDM, e", "filed", 1, true},
                                 {"0008", "close file", "", 2, true}}));
    const auto lines = linesOf(event + std::string(3'000'000, 'x') + stamp + "0008: close file\n");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[1].text, "close file");
}

TEST(TraceReader, AFullDisksHalfLineIsNoLine)
{
    EXPECT_EQ(linesOf(stamp + "00" + stamp + "0008: close file\n"),
              (std::vector<Line>{{"0008", "close file", "", 1, true}}));
    EXPECT_EQ(
        linesOf(stamp + "0010:  HWModel=\"" + std::string(40, 'x') + "0" + stamp + "0008: close file\n"),
        (std::vector<Line>{{"0010", " HWModel=\"" + std::string(40, 'x') + "0", "", 1, true},
                           {"0008", "close file", "", 1, true}}));
}

TEST(TraceReader, AValueThatLooksLikeALineIsNone)
{
    const std::string value = " add " + stamp + "0010:  exit 3 ------------------";
    for (size_t before = 0; before < 160; ++before) {
        if (before == 52 || before == 132) continue; // wrapped so that it stands like a line
        const auto lines = linesOf(wrapped("0677", std::string(before, 'x') + value));
        ASSERT_EQ(lines.size(), 1U) << before;
        EXPECT_EQ(lines[0].text, std::string(before, 'x') + value);
    }
}

TEST(TraceReader, KeepsALineOfAnyLengthShort)
{
    const auto lines =
        linesOf(stamp + "0010: " + std::string(5'000'000, 'x') + "\n" + stamp + "0008: close file\n");
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_LT(lines[0].text.size(), 70'000U);
    EXPECT_FALSE(lines[0].whole);
    const std::string start = std::string(10'000, 'a') + "start";
    const std::string end = "end" + std::string(10'000, 'z');
    for (const size_t length : {size_t{100}, size_t{50'000}, size_t{100'000}, size_t{1'000'000}}) {
        const auto kept = linesOf(stamp + "0010: " + start + std::string(length, 'x') + end + '\n', 4099);
        ASSERT_EQ(kept.size(), 1U);
        EXPECT_EQ(kept[0].text.substr(0, start.size()), start) << length;
        EXPECT_EQ(kept[0].text.substr(kept[0].text.size() - end.size()), end) << length;
    }
    constexpr size_t most = 16384; // from its start, and as much from its end
    const std::string head = stamp + "0010: ";
    const auto cut = linesOf(head + std::string(4 * most - head.size(), 'x') + '\n');
    ASSERT_EQ(cut.size(), 1U);
    EXPECT_EQ(cut[0].text.size() + head.size(), 2 * most);
    std::string many = stamp + "0010: x\n";
    for (int i = 0; i < 100'000; ++i)
        many += "0123456789\n";
    const auto further = linesOf(many);
    ASSERT_EQ(further.size(), 1U);
    EXPECT_LT(further[0].further.size() + further[0].text.size(), 70'000U);
    EXPECT_FALSE(further[0].whole);
}

TEST(TraceReader, HandsOverTheLastLineWhenItIsAskedTo)
{
    std::vector<std::string> texts;
    TraceReader reader([&](const TraceLine& line) { texts.emplace_back(line.text); });
    reader.read(stamp + "0008: close file\n");
    EXPECT_TRUE(texts.empty());
    reader.settle();
    reader.settle();
    EXPECT_EQ(texts, std::vector<std::string>{"close file"});
}

TEST(TraceLine, ClosesARunWithItsStatusOnly)
{
    const auto statusOf = [](const std::string& code, const std::string& text) {
        return document::closingStatus({.stamp = {}, .code = code, .text = text, .further = {}});
    };
    EXPECT_EQ(statusOf("0010", " exit -1 ------------------"), -1);
    EXPECT_EQ(statusOf("0010", " exit 3 ------------------"), 3);
    EXPECT_EQ(statusOf("0010", " exit 3 -----------------"), std::nullopt);
    EXPECT_EQ(statusOf("0010", " exit ------------------"), std::nullopt);
    EXPECT_EQ(statusOf("0010", " exit 3x ------------------"), std::nullopt);
    EXPECT_EQ(statusOf("0011", " exit 3 ------------------"), std::nullopt);
    EXPECT_EQ(statusOf("0010", " HWModel=\"9999\""), std::nullopt);
}

TEST(TraceLine, TellsWhichSystemARunIsFor)
{
    const auto system = [](const std::string& code, const std::string& text) {
        return std::string(document::systemStarted({.stamp = {}, .code = code, .text = text, .further = {}}));
    };
    EXPECT_EQ(system("SRCV", "155968_quay1 07-15-05  9999-B2C*7ABCD12"), "9999-B2C*7ABCD12");
    EXPECT_EQ(system("SRCV", " 155968_quay1  9999-B2C*7ABCD12  "), "9999-B2C*7ABCD12");
    EXPECT_EQ(system("SRCV", "9999-B2C*7ABCD12"), "9999-B2C*7ABCD12");
    EXPECT_EQ(system("SRCV", "  "), "");
    EXPECT_EQ(system("0003", "155968_quay1 07-15-05  9999-B2C*7ABCD12"), "");
}

/// A run that gets no session writes no closing line.
TEST(TraceLine, EndsARunWithoutAClosingLine)
{
    const auto ends = [](const std::string& code, const std::string& text) {
        return document::endsWithoutClosing({.stamp = {}, .code = code, .text = text, .further = {}});
    };
    const std::string local = " LC scope session failed with error 9, none, exit -1";
    const std::string shared = " SR scope session failed with error 9, none, exit -1";
    const std::string model = " failed to get modeltype 7ABCD12, exit 1";
    EXPECT_TRUE(ends("0002", model));
    EXPECT_TRUE(ends("0004", local));
    EXPECT_TRUE(ends("0004", shared));
    EXPECT_FALSE(ends("0004", "start local session "));
    EXPECT_FALSE(ends("0004", " DM scope session failed with error 9, none"));
    EXPECT_FALSE(ends("0004", model));
    EXPECT_FALSE(ends("0002", local));
    EXPECT_FALSE(ends("0006", local));
    EXPECT_FALSE(ends("0006", model));
}

TEST(TraceLine, TellsTheNumberThatATextStartsWith)
{
    EXPECT_EQ(document::numberOf("12 of them"), 12);
    EXPECT_EQ(document::numberOf("-1"), -1);
    for (const char* text : {"", "none", "99999999999999999999"})
        EXPECT_EQ(document::numberOf(text), 0) << text;
}

TEST(TraceLine, TellsSecondsBetweenStamps)
{
    EXPECT_EQ(document::secondsBetween("112126 23:59:59", "112226 00:00:01"), 2);
    EXPECT_EQ(document::secondsBetween("112126 23:59:59", "999999 99:99:99"), 0);
}

} // namespace
