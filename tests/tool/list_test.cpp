// kord list, kinds and json as their users call them: files, folders, packed ones, trouble, statuses.

#include "consoleRun.h"
#include "kordRun.h"
#include "parseJson.h"
#include "process.h"
#include "tempFolder.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace
{

namespace fs = std::filesystem;
using kordTest::Outcome;
using nlohmann::json;
using toolTest::expected;
using toolTest::run;
using Texts = std::vector<std::string>;

const std::string small = expected / "small.xml";
const std::string facility = expected / "facility.xml";

/// What a command prints that has nothing to complain of.
std::string printed(const Texts& arguments)
{
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.error, "");
    return outcome.output;
}

class ListCommand : public testing::Test
{
protected:
    [[nodiscard]] std::string write(const std::string& name, const std::string& text) const
    {
        std::ofstream(folder.path() / name, std::ios::binary) << text;
        return folder.path() / name;
    }

    kordTest::TempFolder folder;
};

TEST_F(ListCommand, AnOperatorFindsTheDrivesOfARackWithOldFirmware)
{
    const Texts lines = kordTest::splitLines(
        printed({"list", "drives", facility, "--where", "rack = 1", "--where", "firmware = T0A4", "--where",
                 "enclosure = 1", "--sort", "-slot", "-c", "id,rack,enclosure,slot,serial,firmware"}));
    ASSERT_EQ(lines.size(), 17U);
    EXPECT_EQ(lines[0], "id                         rack  enclosure  slot  serial      firmware");
    EXPECT_EQ(lines[1], "U1234.5X6.AB100001-P1-D16     1          1    16  WK0KPXZ85P  T0A4");
    EXPECT_EQ(lines[16], "U1234.5X6.AB100001-P1-D1      1          1     1  WK5RRQV7YJ  T0A4");
}

TEST_F(ListCommand, CountsWithAndWithoutColumns)
{
    EXPECT_EQ(printed({"list", "drives", facility, "--count"}), "128\n");
    EXPECT_EQ(printed({"list", "drives", "--count", facility}), "128\n");
    EXPECT_EQ(printed({"list", "drives", "--count", "rack", facility}),
              "rack  count\n   1     64\n   2     64\n");
    EXPECT_EQ(printed({"list", "drives", facility, "--count=rack", "--no-header"}), "1  64\n2  64\n");
}

TEST_F(ListCommand, AddsColumns)
{
    EXPECT_EQ(printed({"list", "baffles", small, "+within,kind", "--no-header"}),
              "U1234.5X6.AB100001-P1-B1  1  1  BF94001  U1234.5X6.AB100001  baffle\n");
}

TEST_F(ListCommand, ColumnsMayHaveCommasToSpare)
{
    EXPECT_EQ(printed({"list", "racks", small, "-c", ",id,,rack,", "--no-header"}),
              "U1234.5R0.RK000001  1\n");
    EXPECT_EQ(printed({"list", "racks", small, "-c", "id", "+rack,", "+,serial", "--no-header"}),
              printed({"list", "racks", small, "-c", "id,rack,serial", "--no-header"}));
}

/// What is typed, and what a shell is offered then.
TEST_F(ListCommand, CompletionOffersKindsColumnsAndFiles)
{
    const auto offered = [](Texts words) {
        words.insert(words.begin(), {"complete", "--"});
        return kordTest::splitLines(printed(words));
    };
    // The words of a column of what "kord kinds" prints.
    const auto listed = [](const std::string& kind, int column) {
        Texts words;
        for (const std::string& line : kordTest::splitLines(printed({"kinds", kind}))) {
            std::istringstream cells(line);
            std::string word;
            for (int i = 0; i <= column; ++i)
                cells >> word;
            words.push_back(word);
        }
        return words;
    };
    const auto columnsOf = [&](const std::string& kind) {
        Texts names = listed(kind, 0);
        names.front() = "parts"; // in the heading's place
        return names;
    };
    Texts kinds = listed("", 1);
    kinds.front() = "words";
    kinds.emplace_back("all");
    for (const Texts& words : {Texts{"list", ""}, {"kinds", ""}, {"diff", "--kind", ""}})
        EXPECT_EQ(offered(words), kinds) << words.front();
    for (const std::string option : {"-c", "--sort", "--count"}) {
        EXPECT_EQ(offered({"list", "racks", option, ""}), columnsOf("racks")) << option;
        EXPECT_EQ(offered({"list", "x", "racks", option, ""}), columnsOf("racks")) << option;
        EXPECT_EQ(offered({"list", "x", option, ""}), columnsOf("all")) << option;
        EXPECT_EQ(offered({"list", "racks", option, "id,ser"}), (Texts{"parts", "id,serial"})) << option;
    }
    EXPECT_EQ(offered({"list", "racks", "--format", ""}), (Texts{"words", "table", "csv", "json", "jsonl"}));
    EXPECT_EQ(offered({"history", "fleet.db", ""}), Texts{"words"});
    for (const Texts& words : {Texts{"show", ""}, {"history", ""}, {"list", "racks", ""}, {"diff", "a", ""}})
        EXPECT_EQ(offered(words), Texts{"files"}) << words.front();
}

TEST_F(ListCommand, ReadsFilesFoldersAndPackedFiles)
{
    fs::copy_file(small, folder.path() / "addTarnKord_b.xml");
    fs::copy_file(facility, folder.path() / "addTarnKord_a.xml");
    fs::copy_file(facility, folder.path() / "other.xml");
    const Outcome packed = kordTest::runProcess(
        {.arguments = {"/usr/bin/env", "gzip", folder.path() / "addTarnKord_a.xml"}, .folder = {}});
    ASSERT_EQ(packed.status, 0) << packed.error;
    EXPECT_EQ(printed({"list", "drives", folder.path(), "--count"}), "129\n");
    EXPECT_EQ(printed({"list", "racks", folder.path(), small, "-c", "id", "--no-header"}),
              "U1234.5R0.RK000001\nU1234.5R0.RK000002\nU1234.5R0.RK000001\nU1234.5R0.RK000001\n");
}

TEST_F(ListCommand, ReadsPipes)
{
    for (const std::string script :
         {R"(cat "$1" | "$0" list drives /dev/stdin --count)", R"("$0" list drives <(cat "$1") --count)",
          R"(mkfifo pipe && { cat "$1" > pipe & "$0" list drives pipe --count; })"}) {
        const Outcome outcome = kordTest::runProcess(
            {.arguments = {"/bin/bash", "-c", script, toolTest::kord, small}, .folder = folder.path()});
        EXPECT_EQ(outcome.status, 0) << script << outcome.error;
        EXPECT_EQ(outcome.output, "1\n") << script;
    }
}

TEST_F(ListCommand, AFolderOfSeveralDocumentsTellsThemApart)
{
    fs::copy_file(small, folder.path() / "addTarnKord_a.xml");
    EXPECT_EQ(printed({"list", "racks", folder.path()}), printed({"list", "racks", small}));
    fs::copy_file(small, folder.path() / "addTarnKord_b.xml");
    EXPECT_EQ(printed({"list", "racks", folder.path()}), printed({"list", "racks", small, small}));
    EXPECT_THAT(printed({"list", "racks", folder.path()}), testing::StartsWith("system "));
}

TEST_F(ListCommand, OneFileInTroubleDoesNotStopTheOthers)
{
    const std::string bad = write("bad.xml", "no document\n");
    const Outcome outcome = run({"list", "drives", bad, "/no/such", small, "--count"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "1\n");
    EXPECT_THAT(kordTest::splitLines(outcome.error),
                testing::ElementsAre(testing::StartsWith("kord: " + bad + ":1: "),
                                     "kord: /no/such: No such file or directory"));
}

TEST_F(ListCommand, TellsTwentyFaultsOfADocumentAndHowManyMoreThereAre)
{
    const auto told = [&](char last) {
        std::string unknown;
        for (char code = 'A'; code <= last; ++code)
            unknown += std::string("<Property name=\"Z") + code + "\" displayName=\"Z\">\nZ" + code +
                       "\n<Value type=\"string\">v</Value>\n</Property>\n";
        std::string text = kordTest::readFile(small).value();
        text.insert(text.find("<Property", text.find("<Resource displayName=\"TARN Rack\"")), unknown);
        return kordTest::splitLines(run({"list", "racks", write("odd.xml", text), "--count"}).error);
    };
    const std::string file = "kord: " + (folder.path() / "odd.xml").string();
    EXPECT_EQ(told('A'), Texts{file + ":290: the property \"ZA\" is none that such a part has there"});
    EXPECT_EQ(told('T').size(), 20U);
    EXPECT_EQ(told('U').back(), file + ": 1 more of these");
    EXPECT_EQ(told('V').size(), 21U);
    EXPECT_EQ(told('V').back(), file + ": 2 more of these");
}

TEST_F(ListCommand, SaysWhatAnIncompleteDocumentLacks)
{
    const std::string text = kordTest::readFile(small).value();
    const std::string cut =
        write("cut.xml", text.substr(0, text.find("<ResourceList displayName=\"Partitions\">")));
    const Outcome list = run({"list", "drives", cut, "--count"});
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.output, "1\n");
    EXPECT_EQ(list.error, "kord: " + cut + ": the document is incomplete: the partitions\n" + "kord: " + cut +
                              ": the document is incomplete: the end\n");
    const Outcome tree = run({"json", cut});
    EXPECT_EQ(tree.status, 0);
    const json document = kordTest::parseJson(tree.output);
    EXPECT_EQ(document.at("complete"), false);
    EXPECT_EQ(document.at("missing"), json({"the partitions", "the end"}));
}

TEST_F(ListCommand, TheMendedDocumentGivesTheSame)
{
    for (const std::string& file : {small, facility}) {
        const std::string mended = folder.path() / "mended.xml";
        printed({"xml", file, "-o", mended});
        EXPECT_EQ(printed({"list", "all", "--format", "jsonl", file}),
                  printed({"list", "all", "--format", "jsonl", mended}));
        EXPECT_EQ(printed({"json", file}), printed({"json", mended}));
    }
}

TEST_F(ListCommand, SaysWhatItDoesNotKnow)
{
    const std::vector<std::pair<Texts, std::string>> cases = {
        {{"list", "zzz", small}, "no kind \"zzz\": \"kord kinds\" lists them"},
        {{"list", "drvies", small}, "no kind \"drvies\": did you mean \"drives\"?"},
        {{"list", "drives", small, "-c", "seriel"},
         "no column \"seriel\" of drives: did you mean \"serial\"?"},
        {{"list", "drives", small, "--where", "rack"},
         "\"rack\" is no condition: write COLUMN OP VALUE, with OP one of = != < <= > >= ~"},
        {{"list", "drives"}, ""},
        {{"kinds", "drvies"}, "no kind \"drvies\": did you mean \"drives\"?"}};
    for (const auto& [arguments, says] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2) << says;
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.error, testing::StartsWith("kord: " + says));
    }
}

TEST_F(ListCommand, KindsTellKindsAndColumns)
{
    EXPECT_THAT(printed({"kinds"}), testing::ContainsRegex("arraySite +array-sites +array site"));
    EXPECT_THAT(printed({"kinds", "drives"}), testing::ContainsRegex("capacity_mb +number +MB +capacity"));
}

} // namespace
