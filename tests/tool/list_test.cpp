// kord list, kinds and json as their users call them: files, folders, packed ones, trouble, statuses.

#include "consoleRun.h"
#include "kordRun.h"
#include "process.h"
#include "tempFolder.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

namespace fs = std::filesystem;
using kordTest::Outcome;
using nlohmann::json;
using toolTest::expected;
using toolTest::kord;
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
    const json document = json::parse(tree.output);
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
        {{"list", "drvies", small}, "no kind \"drvies\": did you mean \"drives\"?"},
        {{"list", "drives", small, "-c", "seriel"},
         "no column \"seriel\" of drives: did you mean \"serial\"?"},
        {{"list", "drives", small, "--where", "rack"}, "\"rack\" is no condition"},
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
