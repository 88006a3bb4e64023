// Stand-ins have the form of what they stand for, and belong together as their originals do.

#include "recorder/standIns.h"

#include "parseJson.h"
#include "platform/failure.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

namespace
{

using nlohmann::json;
using recorder::StandIns;
using Texts = std::vector<std::string>;

TEST(StandIn, HasTheFormOfItsOriginal)
{
    StandIns standIns;
    const std::string text = standIns.of("ab-12 XYZ/%°ž");
    ASSERT_EQ(text.size(), std::string("ab-12 XYZ/%°ž").size());
    for (const size_t lower : {0U, 1U})
        EXPECT_TRUE(text[lower] >= 'a' && text[lower] <= 'z');
    for (const size_t digit : {3U, 4U})
        EXPECT_TRUE(text[digit] >= '0' && text[digit] <= '9');
    EXPECT_EQ(text.substr(2, 1) + text.substr(5, 1) + text.substr(9, 2), "- /%");
    EXPECT_NO_THROW(static_cast<void>(json(text).dump())); // still UTF-8
}

TEST(StandIn, NeverKeepsACharacter)
{
    StandIns standIns;
    const std::string original = "QWERTZ0123456789qwertz\u00e9";
    const std::string text = standIns.of(original);
    for (size_t i = 0; i + 2 < original.size(); ++i)
        EXPECT_NE(text[i], original[i]) << i;
    EXPECT_NE(text.back(), original.back());
}

TEST(StandIn, BeginsAsThoseDoWhoseOriginalsBeginAlike)
{
    StandIns standIns;
    const std::string whole = standIns.of("00XY1230");
    EXPECT_EQ(standIns.of("00XY12"), whole.substr(0, 6));
    const std::string other = standIns.of("00XY129");
    EXPECT_EQ(other.substr(0, 6), whole.substr(0, 6));
    EXPECT_NE(other[6], whole[6]);
}

TEST(StandIn, OfANumberStaysOne)
{
    StandIns standIns;
    const std::string number = standIns.of("5005076303FFCAFE", true);
    EXPECT_EQ(number.find_first_not_of("0123456789ABCDEF"), std::string::npos) << number;
}

TEST(StandIn, IsFoundInOtherTextsTheLongestFirst)
{
    StandIns standIns;
    const std::string system = standIns.of("ledger");
    const std::string longer = standIns.of("ledger-01");
    standIns.of("le");
    EXPECT_EQ(standIns.in("no ledger-01, no ledger, le"), "no " + longer + ", no " + system + ", le");
}

TEST(StandIn, IsTheSameAfterItWasKept)
{
    StandIns first;
    const Texts originals = {"7ABCD12", "ledger-01", "5005076303FFCAFE", "a", "Žluť", "\"quoted\\\""};
    Texts before;
    for (const std::string& text : originals)
        before.push_back(first.of(text, text.starts_with("5005")));
    StandIns second;
    second.load(first.pairs());
    for (size_t i = 0; i < originals.size(); ++i)
        EXPECT_EQ(second.of(originals[i]), before[i]);
    EXPECT_EQ(second.of("ledger-02").substr(0, 8), before[1].substr(0, 8));
    EXPECT_EQ(second.of("5005076303FFCAFF", true).substr(0, 15), before[2].substr(0, 15));
    EXPECT_EQ(second.pairs().substr(0, 2), "{\n"); // a pair a line, for grep
    EXPECT_NE(second.pairs().find("\n  \"7ABCD12\": \"" + before[0] + "\""), std::string::npos);
}

TEST(StandIn, IsNotTakenFromWhatIsNoMap)
{
    const std::string none = "no JSON object of originals and stand-ins";
    const std::vector<std::pair<const char*, std::string>> cases = {
        {"", none},
        {"[]", none},
        {"{", none},
        {R"({"a": 1})", "no stand-in: 1"},
        {R"({"ab": "c"})", R"(no stand-in: "c")"},
        {R"({"ab": "a1"})", R"(no stand-in: "a1")"},
        {R"({"ab": "c1"})", R"(no stand-in: "c1")"},
        {R"({"ab": "1c"})", R"(no stand-in: "1c")"},
        {R"({"ab": "ab"})", R"(no stand-in: "ab")"},
        {R"({"ab": "ac"})", R"(no stand-in: "ac")"},
        {R"({"a-b": "c.d"})", R"(no stand-in: "c.d")"},
        {R"({"9": ":"})", R"(no stand-in: ":")"}, // next to the alphabets
        {R"({"9": "/"})", R"(no stand-in: "/")"},
        {R"({"A": "["})", R"(no stand-in: "[")"},
        {R"({"A": "@"})", R"(no stand-in: "@")"},
        {R"({"a": "{"})", R"(no stand-in: "{")"},
        {R"({"a": "`"})", R"(no stand-in: "`")"},
    };
    for (const auto& [map, reason] : cases) {
        StandIns standIns;
        try {
            standIns.load(map);
            ADD_FAILURE() << map;
        } catch (const platform::Failure& failure) {
            EXPECT_EQ(failure.what(), reason) << map;
        }
    }
}

/// Every character of its kind can stand in for one, but for itself: none is likelier to be the original.
TEST(StandIn, IsAnyOtherCharacterOfItsKind)
{
    struct Case {
        std::string character;
        std::string first; ///< of its kind
        std::string last;
        bool hexadecimal = false;
    };
    const std::vector<Case> cases = {
        {"0", "0", "9"},
        {"9", "0", "9"},
        {"A", "A", "Z"},
        {"Z", "A", "Z"},
        {"a", "a", "z"},
        {"z", "a", "z"},
        {"A", "A", "F", true},
        {"F", "A", "F", true},
        {"a", "a", "f", true},
        {"f", "a", "f", true},
        {"5", "0", "9", true},
        {"G", "A", "Z", true}, // no digit of a number
        {"g", "a", "z", true},
        {"Z", "A", "Z", true},
        {"z", "a", "z", true},
        {"\u0080", "\u0080", "\u009F"}, // control characters stay such
        {"\u009F", "\u0080", "\u009F"},
        {"\u00A0", "\u00A0", "\u00BF"},
        {"\u00BF", "\u00A0", "\u00BF"},
        {"\u00E9", "\u00C0", "\u00FF"},
        {"\u20AC", "\u2080", "\u20BF"},
        {"\U0001F4BE", "\U0001F480", "\U0001F4BF"},
    };
    for (const Case& one : cases) {
        std::set<std::string> expected;
        std::string other = one.first;
        for (const auto last = static_cast<unsigned char>(one.last.back());
             static_cast<unsigned char>(other.back()) <= last; ++other.back()) {
            if (other != one.character) expected.insert(other);
        }
        std::set<std::string> drawn;
        for (int i = 0; i < 3000; ++i)
            drawn.insert(StandIns().of(one.character, one.hexadecimal));
        EXPECT_EQ(drawn, expected) << one.character << (one.hexadecimal ? " as a digit" : "");
    }
}

/// Wherever a character beyond ASCII stands, its last byte alone changes.
TEST(StandIn, OfCharactersBeyondAsciiAreSuch)
{
    const Texts characters = {"\u00E9", "\u00B0", "\u20AC", "\u0939", "\U0001F4BE"};
    for (const std::string& first : characters) {
        for (const std::string& second : characters) {
            for (const char* between : {"", "-"}) {
                const std::string text = first + between + second;
                const std::string standIn = StandIns().of(text);
                ASSERT_EQ(standIn.size(), text.size());
                for (size_t i = 0; i < text.size(); ++i) {
                    const bool last = i + 1 == first.size() || i + 1 == text.size();
                    EXPECT_EQ(standIn[i] != text[i], last) << text << ' ' << standIn << ' ' << i;
                }
            }
        }
    }
}

/// A machine's type and model end after eight bytes, also in the middle of a character.
TEST(StandIn, OfACutCharacterLeavesItOne)
{
    for (const std::string character : {"\u0939", "\u20AC", "\U0001F4BE", "\U0010FFFD"}) {
        for (size_t cut = 1; cut < character.size(); ++cut) {
            for (int i = 0; i < 50; ++i) {
                StandIns standIns;
                const std::string joined =
                    standIns.of(character.substr(0, cut)) + standIns.of(character.substr(cut));
                ASSERT_NO_THROW(static_cast<void>(json(joined).dump())) << character << ' ' << cut;
            }
        }
    }
}

/// What a text is a part of has no say in its stand-in.
TEST(StandIn, EndsWhereItsOriginalDoes)
{
    StandIns standIns;
    const std::string standIn = standIns.of(std::string_view("ledger7").substr(0, 6));
    EXPECT_EQ(standIn, standIns.of("ledger"));
    EXPECT_EQ(standIn.find('\0'), std::string::npos);
    const std::string_view cut = std::string_view("\U0001F4BE").substr(0, 3);
    EXPECT_NE(standIns.of(cut), cut);
}

/// Nobody can tell from one character's move how the next one was moved, nor that in another text.
TEST(StandIn, MovesEachCharacterByItself)
{
    StandIns standIns;
    const std::string same = standIns.of(std::string(60, 'A'));
    EXPECT_GT(std::set(same.begin(), same.end()).size(), 5U) << same;
    std::set<char> second;
    for (char first = 'A'; first <= 'Z'; ++first)
        second.insert(standIns.of(std::string(1, first) + "0")[1]);
    EXPECT_GT(second.size(), 2U);
    std::set<std::string> siblings;
    for (char last = '0'; last <= '9'; ++last)
        siblings.insert(standIns.of(std::string("7ABCD1") + last));
    EXPECT_EQ(siblings.size(), 10U);
}

/// The collector would take such a word for a keyword of vital product data.
TEST(StandIn, HoldsNoKeyword)
{
    for (int i = 0; i < 20'000; ++i) {
        const std::string standIn = StandIns().of("ABC");
        ASSERT_EQ(standIn.find("TM"), std::string::npos) << standIn;
        ASSERT_EQ(standIn.find("SE"), std::string::npos) << standIn;
    }
}

TEST(StandIn, OfThreeCharactersIsFoundInOtherTexts)
{
    StandIns drawn;
    const std::string three = drawn.of("abc");
    drawn.of("no");
    EXPECT_EQ(drawn.in("abc no abcd ab no"), three + " no " + three + "d ab no");
    StandIns loaded;
    loaded.load(R"({"abc": "xyz", "no": "on"})");
    EXPECT_EQ(loaded.in("abc no abcd ab no"), "xyz no xyzd ab no");
    EXPECT_EQ(loaded.in(""), "");
}

/// What is kept are the originals that have another text as their stand-in.
TEST(StandIn, IsKeptUntilDrawnAnew)
{
    StandIns standIns;
    standIns.load(R"({"ledger": "qwfbtk"})");
    standIns.of("branch");
    standIns.of("-/-");
    EXPECT_EQ(kordTest::parseJson(standIns.pairs()).size(), 2U) << standIns.pairs();
    standIns.drawAnew();
    EXPECT_EQ(standIns.pairs(), "{\n  \"ledger\": \"qwfbtk\"\n}\n");
    EXPECT_EQ(standIns.of("ledge"), "qwfbt");
}

TEST(StandIn, GoesOnAsTheKeptOnesBegin)
{
    StandIns standIns;
    standIns.load(R"({"ab1": "bc2", "zy": "ax"})");
    EXPECT_EQ(standIns.of("ab9").substr(0, 2), "bc"); // each moved by one
    for (int i = 0; i < 200; ++i) { // as a number's digit, "a" may have been moved by nothing yet
        StandIns other;
        other.load(R"({"ag": "zy"})");
        EXPECT_NE(other.of("a0", true)[0], 'a');
    }
}

TEST(StandIn, ThatIsAnOriginalIsAmbiguous)
{
    // The longer pairs say how the shorter texts are moved.
    const auto isAmbiguous = [](const char* map, const char* text, const char* expected) {
        StandIns standIns;
        standIns.load(map);
        EXPECT_EQ(standIns.of(text), expected);
        return standIns.isAmbiguous();
    };
    EXPECT_TRUE(isAmbiguous(R"({"xyz1": "abc2", "abc": "def"})", "xyz", "abc"));
    EXPECT_FALSE(isAmbiguous(R"({"xyz1": "abc2", "abd": "dcf"})", "xyz", "abc"));
    EXPECT_FALSE(isAmbiguous(R"({"xy1": "ab2", "ab": "de"})", "xy", "ab")); // too short to be looked for
}

} // namespace
