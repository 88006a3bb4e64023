// What kord import makes of documents, and what kord list and kord history read from it.

#include "fleet.h"

#include "consoleRun.h"
#include "inventory/packing.h"
#include "inventory/sqlite.h"
#include "parseJson.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using namespace kordTest;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using Lines = std::vector<std::string>;

const std::filesystem::path expected = std::filesystem::path(KORD_SOURCE_DIR) / "tests/runs/expected";
const std::string facility = expected / "facility.xml";

const Drive driveA = {.slot = "-P1-D1", .serial = "A"};
const Drive driveB = {.slot = "-P1-D2", .serial = "B"};
const Drive driveC = {.slot = "-P1-D2", .serial = "C"};
const Drive renewedA = {.slot = "-P1-D1", .serial = "A", .level = "J2"};
const Drive movedA = {.slot = "-P1-D7", .serial = "A", .level = "J2"};

/// Three nights of one system: a drive is replaced and another's level raised; then that one moves and the
/// new one is gone.
const std::string monday = documentOf({.day = 1, .drives = {driveA, driveB}});
const std::string tuesday = documentOf({.day = 2, .drives = {renewedA, driveC}});
const std::string wednesday = documentOf({.day = 3, .drives = {movedA}});

const std::string changesInTime =
    "SELECT substr(time, 1, 10), change, kind, id, old_id, serial, old_serial FROM change ORDER BY time, id";
const Lines changesOfThreeNights = {
    "2026-11-03|changed|drive|U.AB1-P1-D1||A|", "2026-11-03|replaced|drive|U.AB1-P1-D2||C|B",
    "2026-11-04|removed|drive|U.AB1-P1-D2||C|", "2026-11-04|moved|drive|U.AB1-P1-D7|U.AB1-P1-D1|A|"};

class Import : public testing::Test
{
protected:
    Fleet fleet;

    void import(const Lines& files, const std::string& says)
    {
        const Outcome outcome = fleet.import(files);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.output, says + "\n");
    }
};

TEST_F(Import, EveryPartIsARowWithTheValuesOfTheList)
{
    import({facility}, "1 document imported");
    json listed = parseJson(Fleet::kord({"list", "all", "--format", "json", facility}).output);
    json rows = json::array();
    for (const std::string& line :
         fleet.ask("SELECT json_patch(json_object('system', system, 'facility', facility, 'collected', "
                   "collected, 'kind', kind, 'id', id, 'within', within), data) FROM part ORDER BY rowid"))
        rows.push_back(parseJson(line));
    for (json& row : rows) {
        for (auto member = row.begin(); member != row.end();)
            member = member->is_null() ? row.erase(member) : std::next(member);
    }
    ASSERT_GT(rows.size(), 250U);
    EXPECT_EQ(rows, listed);
    EXPECT_THAT(fleet.ask("SELECT count(*) FROM part WHERE serial IS NOT data ->> 'serial'"),
                ElementsAre("0"));
}

TEST_F(Import, EveryKindIsAViewWithTheKindsColumns)
{
    import({facility}, "1 document imported");
    const Lines kinds = fleet.ask("SELECT DISTINCT kind FROM part");
    ASSERT_GT(kinds.size(), 20U);
    for (const std::string& kind : kinds) {
        const std::string header = Fleet::kord({"list", kind, "--format", "csv", facility}).output;
        std::string columns;
        for (const std::string& name : fleet.ask("SELECT name FROM pragma_table_info('" + kind + "')"))
            columns += (columns.empty() ? "" : ",") + name;
        EXPECT_EQ(columns, "snapshot," + splitLines(header).front());
        EXPECT_EQ(fleet.ask("SELECT count(*) FROM \"" + kind + '"'),
                  fleet.ask("SELECT count(*) FROM part WHERE kind = '" + kind + "'"));
    }
    EXPECT_THAT(fleet.ask("SELECT rack, enclosure, slot, serial, capacity_mb, partitions FROM drive LIMIT 1"),
                ElementsAre("1|1|1|WK5RRQV7YJ|73400|[\"9999-B2C-7ABCD12-1\"]"));
}

TEST_F(Import, TheSameDocumentTwiceIsOneSnapshot)
{
    const std::string file = fleet.write("one.xml", monday);
    import({file, fleet.write("again.xml", monday)}, "1 document imported, 1 there already");
    import({file}, "0 documents imported, 1 there already");
    EXPECT_THAT(fleet.ask("SELECT system, facility, time, file, complete, missing FROM snapshot"),
                ElementsAre("SYSTEM-1|FACILITY|2026-11-02T00:00:00.000005Z|" + file + "|1|[]"));
}

TEST_F(Import, APackedDocumentIsTheSame)
{
    const std::string file = fleet.write("one.xml", monday);
    import({file}, "1 document imported");
    runProcess({.arguments = {"/usr/bin/env", "gzip", file}, .folder = {}});
    import({file + ".gz"}, "0 documents imported, 1 there already");
}

TEST_F(Import, ChangesAreTheSameInWhateverOrderDocumentsCome)
{
    const Lines files = {fleet.write("1.xml", monday), fleet.write("2.xml", tuesday),
                         fleet.write("3.xml", wednesday)};
    std::vector<size_t> order = {0, 1, 2};
    do {
        std::filesystem::remove(fleet.database());
        import({files[order[0]], files[order[1]], files[order[2]]}, "3 documents imported");
        EXPECT_EQ(fleet.ask(changesInTime), changesOfThreeNights) << testing::PrintToString(order);
        EXPECT_THAT(fleet.ask("SELECT file FROM latest"), ElementsAre(files[2]));
    } while (std::ranges::next_permutation(order).found);
}

TEST_F(Import, ChangesAreThoseOfTheDiff)
{
    const std::string before = fleet.write("1.xml", monday);
    const std::string after = fleet.write("2.xml", tuesday);
    import({before, after}, "2 documents imported");
    const json report = parseJson(Fleet::kord({"diff", "--json", before, after}).output);
    json changes = json::array();
    for (const std::string& line : fleet.ask("SELECT data FROM change ORDER BY rowid"))
        changes.push_back(parseJson(line));
    EXPECT_EQ(changes, report["changes"]);
}

TEST_F(Import, SystemsAreApart)
{
    import({fleet.write("1.xml", monday), fleet.write("2.xml", documentOf({.system = "SYSTEM-2",
                                                                           .day = 2,
                                                                           .drives =
                                                                           { driveC }}))},
           "2 documents imported");
    EXPECT_THAT(fleet.ask(changesInTime), IsEmpty());
    EXPECT_THAT(fleet.ask("SELECT system, substr(time, 1, 10) FROM latest ORDER BY 1"),
                ElementsAre("SYSTEM-1|2026-11-02", "SYSTEM-2|2026-11-03"));
}

TEST_F(Import, AnIncompleteDocumentIsKeptMarkedAndRemovesNothing)
{
    const std::string cut = fleet.write("2.xml", cutOff(tuesday));
    const Outcome outcome =
        fleet.import({fleet.write("1.xml", monday), cut, fleet.write("3.xml", wednesday)});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "3 documents imported\n");
    EXPECT_THAT(splitLines(outcome.error),
                ElementsAre("kord: " + cut + ": the document is incomplete: the partitions",
                            "kord: " + cut + ": the document is incomplete: the end"));
    EXPECT_THAT(fleet.ask("SELECT missing FROM snapshot WHERE NOT complete"),
                ElementsAre("[\"the partitions\",\"the end\"]"));
    // The cut document lacks the partitions only: of the drives it tells as much as a whole one.
    EXPECT_EQ(fleet.ask(changesInTime), changesOfThreeNights);
}

TEST_F(Import, WhatARunThatFailedDidNotComeToIsNotRemoved)
{
    EXPECT_EQ(
        fleet
            .import({fleet.write("1.xml", monday),
                     fleet.write("2.xml", documentOf({.day = 2, .drives = {renewedA}, .failed = true}))})
            .status,
        0);
    EXPECT_THAT(fleet.ask(changesInTime), ElementsAre(changesOfThreeNights[0]));
    EXPECT_THAT(fleet.ask("SELECT count(*) FROM latest WHERE complete"), ElementsAre("0"));
}

TEST_F(Import, OneFileInTroubleDoesNotStopTheOthers)
{
    const std::string bad = fleet.write("bad.xml", "no document\n");
    const Outcome outcome = fleet.import({bad, "/no/such", fleet.write("1.xml", monday)});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "1 document imported\n");
    EXPECT_THAT(splitLines(outcome.error), ElementsAre(StartsWith("kord: " + bad + ":1: "),
                                                       "kord: /no/such: No such file or directory"));
}

TEST_F(Import, ReadsStandardInputAndWritesItsResultWhereItIsTold)
{
    const std::string file = fleet.write("1.xml", monday);
    const std::string result = fleet.database().string() + ".txt";
    const Outcome outcome = kordTest::runProcess(
        {.arguments = {"/bin/sh", "-c",
                       R"("$0" import -o "$1.txt" "$1" - < "$2"; echo no document | "$0" import "$1" -)",
                       kordTest::triedBuild() / "bin/kord", fleet.database(), file},
         .folder = {}});
    EXPECT_EQ(outcome.output, "0 documents imported\n");
    EXPECT_THAT(outcome.error, StartsWith("kord: standard input:1: "));
    EXPECT_EQ(readFile(result), "1 document imported\n");
    EXPECT_THAT(fleet.ask("SELECT file FROM snapshot"), ElementsAre("standard input"));
}

TEST_F(Import, WhatIsNoInventoryStaysAsItIs)
{
    const std::string file = fleet.write("1.xml", monday);
    const std::string name = fleet.database();
    const auto refused = [&](const std::string& says) {
        const std::string before = readFile(name).value_or("");
        for (const Lines& command : {Lines{"import", name, file}, Lines{"history", name, "A"}}) {
            const Outcome outcome = Fleet::kord(command);
            EXPECT_EQ(outcome.status, 2);
            EXPECT_EQ(outcome.output, "");
            EXPECT_EQ(outcome.error, "kord: " + name + ": " + says + "\n");
        }
        EXPECT_EQ(readFile(name).value_or(""), before);
    };
    fleet.write("fleet.db", std::string(5000, 'x'));
    refused("no database");
    std::filesystem::remove(name);
    fleet.ask("CREATE TABLE mine (x)");
    refused("a database, but no inventory that kord made");
    std::filesystem::remove(name);
    import({file}, "1 document imported");
    fleet.ask("PRAGMA user_version = 7");
    refused("an inventory of version 7, but this kord knows version 1");
    const Outcome beside = Fleet::kord({"list", "systems", name, file, "--count"});
    EXPECT_EQ(beside.status, 2);
    EXPECT_EQ(beside.output, "1\n");
    std::filesystem::remove(name);
    std::filesystem::create_directory(name);
    EXPECT_EQ(fleet.import({file}).status, 2);
}

TEST_F(Import, ADatabaseThatCannotBeMadeSaysWhy)
{
    const std::string file = fleet.write("1.xml", monday);
    const auto error = [&](const std::string& database) {
        const Outcome outcome = Fleet::kord({"import", database, file});
        EXPECT_EQ(outcome.status, 2);
        return outcome.error;
    };
    const std::string nowhere = fleet.in("no/such.db");
    EXPECT_EQ(error(nowhere), "kord: " + nowhere + ": No such file or directory\n");
    std::filesystem::path far = fleet.in("");
    for (int depth = 0; depth < 3; ++depth)
        far /= std::string(200, 'x');
    std::filesystem::create_directories(far);
    const std::string tooLong = far / "fleet.db"; // for SQLite
    EXPECT_EQ(error(tooLong), "kord: " + tooLong + ": unable to open database file\n");
}

TEST_F(Import, ADatabaseWhoseFilesAreInTheWaySaysWhy)
{
    const std::string file = fleet.write("1.xml", monday);
    import({file}, "1 document imported");
    for (const auto& [ending, says] : {std::pair("-journal", "disk I/O error: Is a directory\n"),
                                       std::pair("-wal", "unable to open database file: Is a directory\n")}) {
        const std::string folder = fleet.database().string() + ending;
        std::filesystem::remove(folder);
        std::filesystem::create_directory(folder);
        const Outcome outcome = fleet.import({file});
        std::filesystem::remove(folder);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.error, "kord: " + fleet.database().string() + ": " + says);
    }
}

TEST_F(Import, ALargeDocumentIsTakenInWhole)
{
    std::vector<Drive> drives;
    for (int slot = 0; slot < 3000; ++slot)
        drives.push_back({.slot = "-P1-D" + std::to_string(slot), .serial = std::to_string(slot)});
    const std::string text = documentOf({.drives = drives});
    ASSERT_GT(text.size(), size_t{2} << 20U); // it is read in pieces
    const std::string file = fleet.write("large.xml", text);
    import({file}, "1 document imported");
    const Outcome wanted = Fleet::kord({"list", "all", "--format", "csv", file});
    const Outcome outcome = Fleet::kord({"list", "all", "--format", "csv", fleet.database()});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, wanted.output);
    EXPECT_GT(outcome.output.size(), drives.size());
    EXPECT_THAT(fleet.ask("SELECT count(*) FROM drive"), ElementsAre("3000"));
}

TEST_F(Import, ADamagedDocumentIsTold)
{
    const std::string file = fleet.write("1.xml", monday);
    const std::string says = "kord: " + fleet.database().string() + ": " + file + ": the document ";
    for (const auto& [damage, what] : std::vector<std::pair<std::string, std::string>>{
             {"UPDATE document SET content = substr(content, 1, length(content) - 9)", "in it is damaged\n"},
             {"UPDATE document SET content = x'00112233445566778899'", "in it is damaged\n"},
             {"UPDATE document SET content = x''", "in it is damaged\n"},
             {"DELETE FROM document", "is not there\n"}}) {
        std::filesystem::remove(fleet.database());
        import({file}, "1 document imported");
        fleet.ask(damage);
        const Outcome outcome = Fleet::kord({"list", "drives", fleet.database()});
        EXPECT_EQ(outcome.status, 2) << damage;
        EXPECT_EQ(outcome.error, says + what) << damage;
    }
}

TEST_F(Import, ADamagedDocumentBesideANewOneIsTold)
{
    const std::string file = fleet.write("2.xml", tuesday);
    for (const auto& [name, text] : {std::pair("1.xml", monday), std::pair("3.xml", wednesday)}) {
        std::filesystem::remove(fleet.database());
        import({file}, "1 document imported");
        fleet.ask("UPDATE document SET content = x''");
        const Outcome outcome = fleet.import({fleet.write(name, text)});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "0 documents imported\n");
        EXPECT_THAT(outcome.error, testing::HasSubstr(fleet.database().string() + ": " + file +
                                                      ": the document in it is damaged\n"));
        EXPECT_THAT(fleet.ask("SELECT count(*) FROM snapshot"), ElementsAre("1"));
    }
}

/// What was begun is undone, and the next file begins anew.
TEST_F(Import, AfterAFileInTroubleTheOthersAreTakenIn)
{
    const std::string file = fleet.write("2.xml", tuesday);
    const std::string other =
        fleet.write("o.xml", documentOf({.system = "SYSTEM-0", .day = 2, .drives = {driveC}}));
    import({file}, "1 document imported");
    std::string content = "x'";
    for (const char byte : inventory::packed("no document")) {
        constexpr const char* digits = "0123456789abcdef";
        const auto number = static_cast<unsigned char>(byte);
        content.append({digits[number >> 4U], digits[number & 0xFU]});
    }
    fleet.ask("UPDATE document SET content = " + content + "'");
    const Outcome outcome = fleet.import({fleet.write("3.xml", wednesday), other});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "1 document imported\n");
    EXPECT_THAT(fleet.ask("SELECT file FROM snapshot ORDER BY 1"), ElementsAre(file, other));
}

TEST_F(Import, ADocumentThatIsThereWaitsForNobody)
{
    const std::string file = fleet.write("1.xml", monday);
    import({file}, "1 document imported");
    inventory::Database database(fleet.database(), inventory::Database::Access::write);
    const inventory::Transaction transaction(database);
    const Outcome outcome = Fleet::kord({"import", fleet.database(), file}, std::chrono::seconds(20));
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, "0 documents imported, 1 there already\n");
}

TEST_F(Import, BytesThatAreNoTextDoNoHarm)
{
    const Drive odd = {.slot = "-P1-D1", .serial = "\xFFO'\"); DROP TABLE part; --", .level = "\xE2\x82"};
    import({fleet.write("1.xml", documentOf({.drives = { odd }}))}, "1 document imported");
    EXPECT_THAT(fleet.ask("SELECT serial, ec_level FROM drive"),
                ElementsAre("\xEF\xBF\xBDO'\"); DROP TABLE part; --|\xEF\xBF\xBD"));
    EXPECT_THAT(fleet.ask("PRAGMA integrity_check"), ElementsAre("ok"));
}

TEST_F(Import, ListReadsTheNewestDocumentsAsItReadsTheirFiles)
{
    const std::string other =
        fleet.write("o.xml", documentOf({.system = "SYSTEM-0", .day = 2, .drives = {driveC}}));
    const std::string newest = fleet.write("3.xml", wednesday);
    import({newest, fleet.write("1.xml", monday), other}, "3 documents imported");
    for (const Lines& options :
         {Lines{"drives"}, Lines{"all", "--format", "jsonl"}, Lines{"drives", "--count"},
          Lines{"all", "--format", "csv", "--sort", "-id"}}) {
        Lines ofFiles = {"list", other, newest};
        Lines ofDatabase = {"list", fleet.database()};
        ofFiles.insert(ofFiles.begin() + 1, options.begin(), options.end());
        ofDatabase.insert(ofDatabase.begin() + 1, options.begin(), options.end());
        const Outcome wanted = Fleet::kord(ofFiles);
        const Outcome outcome = Fleet::kord(ofDatabase);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.output, wanted.output);
        EXPECT_NE(outcome.output, "");
    }
}

TEST_F(Import, ANewestDocumentThatIsIncompleteIsToldByTheList)
{
    const std::string cut = fleet.write("2.xml", cutOff(tuesday));
    EXPECT_EQ(fleet.import({cut}).status, 0);
    const Outcome outcome = Fleet::kord({"list", "drives", fleet.database(), "--count"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.error, StartsWith("kord: " + fleet.database().string() + ": " + cut +
                                          ": the document is incomplete: the partitions\n"));
}

TEST_F(Import, HistoryTellsWhereASerialHasBeen)
{
    import({fleet.write("1.xml", monday), fleet.write("2.xml", tuesday), fleet.write("3.xml", wednesday)},
           "3 documents imported");
    const auto history = [&](const std::string& part) {
        return splitLines(
            Fleet::kord({"history", fleet.database(), part, "--format", "csv", "--no-header"}).output);
    };
    EXPECT_THAT(history("A"),
                ElementsAre("2026-11-02T00:00:00.000005Z,SYSTEM-1,drive,U.AB1-P1-D1,,1,1,A,,",
                            "2026-11-03T00:00:00.000005Z,SYSTEM-1,drive,U.AB1-P1-D1,,1,1,A,,changed",
                            "2026-11-04T00:00:00.000005Z,SYSTEM-1,drive,U.AB1-P1-D7,,1,7,A,,moved"));
    EXPECT_THAT(history("C"),
                ElementsAre("2026-11-03T00:00:00.000005Z,SYSTEM-1,drive,U.AB1-P1-D2,,1,2,C,,replaces B",
                            "2026-11-04T00:00:00.000005Z,SYSTEM-1,drive,U.AB1-P1-D2,,1,2,C,,removed"));
    EXPECT_THAT(history("B"),
                ElementsAre("2026-11-02T00:00:00.000005Z,SYSTEM-1,drive,U.AB1-P1-D2,,1,2,B,,",
                            "2026-11-03T00:00:00.000005Z,SYSTEM-1,drive,U.AB1-P1-D2,,1,2,B,,replaced by C"));
    EXPECT_EQ(history("U.AB1-P1-D2").size(), 3U);
    const auto night = [](const std::string& day, const std::string& slot, const std::string& change) {
        const std::string row = "2026-11-0" + day + "T00:00:00.000005Z  SYSTEM-1  drive  U.AB1-P1-D" + slot +
                                std::string(16, ' ') + "1     " + slot + "  A";
        return row + (change.empty() ? "" : std::string(17, ' ') + change) + '\n';
    };
    EXPECT_EQ(Fleet::kord({"history", fleet.database(), "A"}).output,
              "collected                    system    kind   id           rack  enclosure  slot  serial  "
              "firmware  change\n" +
                  night("2", "1", "") + night("3", "1", "changed") + night("4", "7", "moved"));
    const Outcome none = Fleet::kord({"history", fleet.database(), "nowhere"});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(splitLines(none.output).size(), 1U);
}

/// What xxh128sum prints of the same bytes: whoever has the files can look for them in the database.
TEST(Hash, IsThatOfOthers)
{
    EXPECT_EQ(inventory::hashOf(""), "99aa06d3014798d86001c324468d497f");
    EXPECT_EQ(inventory::hashOf("Kord record"), "e430b3f6728cec19296921ccc5d426a3");
}

// ---- relations for other engines ----

Outcome relations(const std::string& arguments)
{
    const std::string program = triedBuild() / "bin/kord-relations";
    return runProcess({.arguments = {"/bin/sh", "-c", program + ' ' + arguments}, .folder = {}});
}

TEST(Relations, ArePrintedForAnEngine)
{
    const Outcome outcome = relations("clickhouse");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("-- The relations of a fleet's inventory for ClickHouse"));
}

TEST(Relations, SayWhichEnginesThereAre)
{
    for (const char* arguments : {"", "sqlite", "postgresql clickhouse"}) {
        const Outcome outcome = relations(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_EQ(outcome.error, "usage: kord-relations postgresql|clickhouse\n");
        EXPECT_EQ(outcome.output, "");
    }
}

TEST(Relations, EndWithTwoWhereTheyCannotBeWritten)
{
    EXPECT_EQ(relations("postgresql >/dev/full").status, 2);
}

} // namespace
