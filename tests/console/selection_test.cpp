// The selection language: what is a selection, what it matches, and that looking up gives what walking gives.

#include "client_run.h"
#include "image/selection.h"

#include <gtest/gtest.h>

using console::image::Class;
using console::image::matchesPattern;
using console::image::parseSelection;
using console::image::Selection;

namespace
{

/// Arrays with a number each and a text each; the last one lacks both.
constexpr const char* facility = R"({"resources": {
    "Orvik.TarnArray": [
        {"arraySites": [1], "rank": 1, "ActivePeerDomain": "one"},
        {"rank": 2, "ActivePeerDomain": "two"},
        {"rank": -3, "ActivePeerDomain": "three"},
        {"rank": 2, "ActivePeerDomain": "2"},
        {"storageFacilityImageMTMS": "it's"}],
    "Orvik.TarnRack": [
        {"rackIdentifier": 4294967295, "rackNumber": ""},
        {"rackIdentifier": 7, "rackNumber": "50%"}]}})";

/// A facility with its image open for reading.
struct OpenFacility {
    explicit OpenFacility(const std::string& text) : folder(text)
    {
        setenv(console::image::rootVariable, folder.path().c_str(), 1);
        EXPECT_EQ(console::image::openRun(run), "");
        unsetenv(console::image::rootVariable);
    }

    /// Which resources of the class match, counted from 0; none when the selection is malformed.
    std::optional<std::vector<uint32_t>> select(const char* className, const std::string& text) const
    {
        std::string fault;
        std::optional<Selection> selection = parseSelection(text, fault);
        if (!selection) return std::nullopt;
        const Class& from = *run.image.findClass(className);
        std::vector<uint32_t> found = console::image::select(run.image, from, &*selection);
        for (uint32_t& index : found)
            index -= from.firstResource;
        return found;
    }

    clientTest::ConsoleFolder folder;
    console::image::Run run;
};

class SelectionTest : public testing::Test
{
protected:
    /// The places of the resources that match, a digit each; "?" when the selection is malformed.
    [[nodiscard]] std::string matching(const std::string& text,
                                       const char* className = "Orvik.TarnArray") const
    {
        const auto found = open.select(className, text);
        if (!found) return "?";
        std::string places;
        for (const uint32_t index : *found)
            places += std::to_string(index);
        return places;
    }

    OpenFacility open{facility};
};

TEST_F(SelectionTest, ComparesTexts)
{
    EXPECT_EQ(matching(R"(ActivePeerDomain="two")"), "1");
    EXPECT_EQ(matching("ActivePeerDomain='two'"), "1");
    EXPECT_EQ(matching(R"(ActivePeerDomain="tw")"), "");
    EXPECT_EQ(matching(R"(ActivePeerDomain="twoo")"), "");
    EXPECT_EQ(matching(R"(ActivePeerDomain="Two")"), "");
    EXPECT_EQ(matching(R"(storageFacilityImageMTMS="it's")"), "4");
    EXPECT_EQ(matching(R"(rackNumber="")", "Orvik.TarnRack"), "0");
}

TEST_F(SelectionTest, ComparesNumbers)
{
    EXPECT_EQ(matching("rank=2"), "13");
    EXPECT_EQ(matching("rank=-3"), "2");
    EXPECT_EQ(matching("rank=3"), "");
    EXPECT_EQ(matching("rackIdentifier=4294967295", "Orvik.TarnRack"), "0");
    EXPECT_EQ(matching("rackIdentifier=-1", "Orvik.TarnRack"), "");
    EXPECT_EQ(matching("rank=99999999999999999999999"), "");
    EXPECT_EQ(matching("rank=4294967298"), "") << "not taken as 32 bits";
}

TEST_F(SelectionTest, TextsAndNumbersNeverMatch)
{
    EXPECT_EQ(matching(R"(rank="2")"), "");
    EXPECT_EQ(matching("ActivePeerDomain=2"), "");
    EXPECT_EQ(matching(R"(rank=?"%")"), "");
}

TEST_F(SelectionTest, LackingAttributesAndListsNeverMatch)
{
    EXPECT_EQ(matching(R"(nothing="")"), "");
    EXPECT_EQ(matching(R"(nothing=?"%")"), "");
    EXPECT_EQ(matching("azAZ09_=1"), "") << "the letters of a name";
    EXPECT_EQ(matching("arraySites=1"), "");
    EXPECT_EQ(matching(R"(ActivePeerDomain=?"%")"), "0123");
}

TEST_F(SelectionTest, WildcardsAreOfPatternsOnly)
{
    EXPECT_EQ(matching(R"(ActivePeerDomain=?"t%")"), "12");
    EXPECT_EQ(matching("ActivePeerDomain =? 't%'  "), "12");
    EXPECT_EQ(matching(R"(ActivePeerDomain="t%")"), "");
    EXPECT_EQ(matching(R"(rackNumber="50%")", "Orvik.TarnRack"), "1");
}

TEST_F(SelectionTest, AndBindsTighterThanOr)
{
    EXPECT_EQ(matching(R"(rank=1 || rank=2 && ActivePeerDomain="2")"), "03");
    EXPECT_EQ(matching(R"(ActivePeerDomain="2" && rank=2 || rank=1)"), "03");
    EXPECT_EQ(matching(R"((rank=1 || rank=2) && ActivePeerDomain="2")"), "3");
    EXPECT_EQ(matching(R"(rank=2 && (ActivePeerDomain="one" || ActivePeerDomain="two"))"), "1");
    EXPECT_EQ(matching("(((rank=1)))"), "0");
}

TEST_F(SelectionTest, BlanksStandAnywhereBetweenTokens)
{
    EXPECT_EQ(matching("  (  rank  =  1  )  ||  rank\t=\t2  "), "013");
    EXPECT_EQ(matching("rank\n=\r\n1 \r||\nrank=2\n"), "013");
    EXPECT_EQ(matching("(rank=1)||rank=2"), "013");
    EXPECT_EQ(matching(R"(ActivePeerDomain=" two")"), "") << "blanks inside a text count";
}

TEST_F(SelectionTest, DeepParenthesesAreNoTrouble)
{
    const std::string depth(200000, '(');
    EXPECT_EQ(matching(depth + "rank=1" + std::string(200000, ')')), "0");
    EXPECT_EQ(matching(depth + "rank=1"), "?");
}

TEST(SelectionPattern, WildcardStandsForAnyRun)
{
    EXPECT_TRUE(matchesPattern("", ""));
    EXPECT_TRUE(matchesPattern("", "%"));
    EXPECT_TRUE(matchesPattern("abc", "abc"));
    EXPECT_TRUE(matchesPattern("abc", "abc%"));
    EXPECT_TRUE(matchesPattern("abc", "%abc"));
    EXPECT_TRUE(matchesPattern("abc", "a%c"));
    EXPECT_TRUE(matchesPattern("abc", "%%b%%"));
    EXPECT_TRUE(matchesPattern("abab", "%ab"));
    EXPECT_TRUE(matchesPattern("a%c", "a%c"));
    EXPECT_FALSE(matchesPattern("abc", ""));
    EXPECT_FALSE(matchesPattern("abc", "ab"));
    EXPECT_FALSE(matchesPattern("abc", "bc%"));
    EXPECT_FALSE(matchesPattern("abc", "a%b"));
    EXPECT_FALSE(matchesPattern("", "a%"));
}

TEST(SelectionPattern, ManyWildcardsStayCheap)
{
    std::string pattern;
    for (int i = 0; i < 1000; ++i)
        pattern += "a%";
    EXPECT_FALSE(matchesPattern(std::string(20000, 'a'), pattern + 'b'));
    EXPECT_TRUE(matchesPattern(std::string(20000, 'a') + 'b', pattern + 'b'));
}

struct MalformedText {
    const char* selection;
    int column; ///< where reading it cannot go on
};
class MalformedSelection : public testing::TestWithParam<MalformedText>
{
};

TEST_P(MalformedSelection, NamesTheColumn)
{
    std::string fault;
    EXPECT_FALSE(parseSelection(GetParam().selection, fault));
    EXPECT_NE((fault + '\n').find("column " + std::to_string(GetParam().column) + '\n'), std::string::npos)
        << GetParam().selection << ": " << fault;
}

INSTANTIATE_TEST_SUITE_P(
    All, MalformedSelection,
    testing::Values(MalformedText{"", 1}, MalformedText{"   ", 1}, MalformedText{"name", 5},
                    MalformedText{"=1", 1}, MalformedText{"name=", 6}, MalformedText{"name =  ", 7},
                    MalformedText{"name==1", 6}, MalformedText{"name=abc", 6}, MalformedText{"name=-", 6},
                    MalformedText{"name=?12", 7}, MalformedText{"name= ?'x'", 7}, MalformedText{"name<1", 5},
                    MalformedText{"9name=1", 1}, MalformedText{"name=12b", 8}, MalformedText{"a=1 b=2", 5},
                    MalformedText{"a=1 & b=2", 5}, MalformedText{"a=1 && ", 7},
                    MalformedText{"a=1 && && b=2", 8}, MalformedText{"a=1 | b=2", 5},
                    MalformedText{"(a=1", 5}, MalformedText{"a=1)", 4}, MalformedText{"()", 2},
                    MalformedText{"a='x", 3}, MalformedText{"a=\"x'", 3}, MalformedText{"a='x' 'y'", 7},
                    MalformedText{"(a=1)(b=2)", 6}, MalformedText{"a=1 and b=2", 5}, MalformedText{"!a=1", 1},
                    MalformedText{"a!=1", 2}));

/// Drives of many enclosures, some lacking an attribute.
std::string manyDrives()
{
    constexpr const char* racks[] = {"R0", "R1", "R2"};
    clientTest::Json drives = clientTest::Json::array();
    for (int i = 0; i < 600; ++i) {
        clientTest::Json drive{{"enclosureNumber", std::to_string(i / 16)}, {"arraySite", i % 7}};
        if (i % 5 != 0) drive["rackNumber"] = racks[i % 3];
        drives.push_back(drive);
    }
    return clientTest::Json{{"resources", {{"Orvik.TarnDDM", drives}}}}.dump();
}

TEST(SelectionLookUp, GivesWhatWalkingGives)
{
    const OpenFacility open(manyDrives());
    const auto found = [&](const std::string& text) { return open.select("Orvik.TarnDDM", text).value(); };
    for (const char* text : {"enclosureNumber='7'", "arraySite=3 && enclosureNumber='7'",
                             "(rackNumber='R1' && (arraySite=3)) && enclosureNumber=?'1%'",
                             "rackNumber='R1' && (arraySite=1 || arraySite=2)", "rackNumber='R9'"}) {
        // An alternative that is never met keeps every look-up away.
        EXPECT_EQ(found(text), found(std::string(text) + " || nothing=1")) << text;
    }
    EXPECT_EQ(found("enclosureNumber='7'").size(), 16U);
    EXPECT_EQ(found("enclosureNumber='7'").front(), 112U);
}

} // namespace
