// kord show, diff and follow, on what real runs of the collector leave.

#include "consoleRun.h"
#include "jsonSchema.h"
#include "kordRun.h"
#include "parseJson.h"
#include "process.h"
#include "tempFolder.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <thread>

namespace
{

namespace fs = std::filesystem;
using kordTest::Outcome;
using nlohmann::json;
using toolTest::expected;
using toolTest::kord;
using toolTest::run;

const std::string console = kordTest::triedBuild() / "bin/kord-console";
const std::string facilityFile = fs::path(KORD_SOURCE_DIR) / "console/facilities/facility.json";
const std::string mtms = "9999-B2C*7ABCD12";

class Commands : public testing::Test
{
protected:
    /// The document of a run on the bundled facility, changed before.
    fs::path collect(
        const std::string& name, const std::function<void(json& facility)>& change = [](json&) {})
    {
        json facility = kordTest::parseJson(kordTest::readFile(facilityFile).value());
        change(facility);
        const fs::path file = folder.path() / (name + ".json");
        std::ofstream(file) << facility;
        const fs::path root = folder.path() / name;
        fs::create_directory(root);
        const Outcome outcome = kordTest::runOnConsole({.console = console,
                                                        .facility = file,
                                                        .root = root,
                                                        .folder = folder.path(),
                                                        .user = {},
                                                        .program = {"addTarnKord", "x", mtms}});
        EXPECT_EQ(outcome.status, 3) << outcome.output << outcome.error;
        return kordTest::documentFile(root, mtms);
    }

    [[nodiscard]] fs::path write(const std::string& name, const std::string& text) const
    {
        std::ofstream(folder.path() / name) << text;
        return folder.path() / name;
    }

    kordTest::TempFolder folder;
};

std::vector<std::string> diffLines(const fs::path& before, const fs::path& after)
{
    const Outcome outcome = run({"diff", before, after});
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.status, outcome.output.empty() ? 0 : 1);
    return kordTest::splitLines(outcome.output);
}

void replaceDrive(json& facility)
{
    facility["resources"]["Orvik.TarnDDM"][20]["serialNumber"] = "WKREPLACED";
}

void raiseLevel(json& facility)
{
    for (json& partition : facility["resources"]["Orvik.TarnServerPartition"]) {
        if (!partition.contains("runningImageLevel")) continue;
        partition["runningImageLevel"] = json::array({0, "9.9.9.999"});
        return;
    }
    FAIL() << "no partition has a level";
}

/// One host more: its volume group and its ports.
void addHost(json& facility)
{
    json& ports = facility["resources"]["Orvik.TarnScsiHostPort"];
    json& groups = facility["resources"]["Orvik.TarnVolumeGroup"];
    json port = ports[0];
    port["userHostDescription"] = "newcomer";
    ports.push_back(port);
    ports.push_back(port);
    groups.push_back(groups[0]);
}

void renameHost(json& facility)
{
    for (json& port : facility["resources"]["Orvik.TarnScsiHostPort"]) {
        if (port["userHostDescription"] == "web-06") port["userHostDescription"] = "web-07";
    }
}

TEST_F(Commands, TwoRunsOnOneFacilityDoNotDiffer)
{
    EXPECT_EQ(diffLines(collect("old"), collect("new")), std::vector<std::string>{});
}

TEST_F(Commands, ADriveALevelAndAHostAreExactlyThreeChanges)
{
    const auto lines = diffLines(collect("old"), collect("new", [](json& facility) {
                                     replaceDrive(facility);
                                     raiseLevel(facility);
                                     addHost(facility);
                                 }));
    ASSERT_EQ(lines.size(), 4U) << testing::PrintToString(lines);
    EXPECT_THAT(lines[0], testing::StartsWith("replaced  drive U1234.5X6.AB1"));
    EXPECT_THAT(lines[0], testing::EndsWith("-> WKREPLACED"));
    EXPECT_THAT(lines[1],
                testing::StartsWith("changed   partition SF00XY123Tarn01: LIC VRMF 5.1.0.309 -> 9.9.9.999"));
    EXPECT_THAT(
        lines[2],
        testing::StartsWith("added     host newcomer of SF00XY123Tarn01: Host Inventory ports (none) -> 2"));
    EXPECT_EQ(lines[3], "3 changes: 1 added, 1 replaced, 1 changed");
}

TEST_F(Commands, ARenamedHostIsOneChange)
{
    const auto lines = diffLines(collect("old"), collect("new", renameHost));
    // The bundled facility's two images have a host of that name each.
    ASSERT_EQ(lines.size(), 3U) << testing::PrintToString(lines);
    EXPECT_EQ(lines[0], "changed   host web-06 of SF00XY123Tarn01: Host Inventory web-06=3 -> web-07=3");
    EXPECT_EQ(lines[1], "changed   host web-06 of SF00XY123Tarn02: Host Inventory web-06=3 -> web-07=3");
}

TEST_F(Commands, DiffTellsWhatIsAskedFor)
{
    const fs::path old = collect("old");
    const fs::path now = collect("new", [](json& facility) {
        replaceDrive(facility);
        addHost(facility);
        for (json& drive : facility["resources"]["Orvik.TarnDDM"])
            if (drive["serialNumber"] != "WKREPLACED") drive["firmwareLevel"] = "Z1";
    });
    const Outcome summary = run({"diff", "--summary", old, now});
    EXPECT_EQ(summary.status, 1);
    EXPECT_EQ(summary.output, "drives  1 replaced, 127 changed\n"
                              "hosts   1 added\n"
                              "129 changes: 1 added, 1 replaced, 127 changed\n");
    const Outcome hosts = run({"diff", "--kind", "hosts", old, now});
    EXPECT_THAT(hosts.output, testing::StartsWith("added     host newcomer of SF00XY123Tarn01: "));
    EXPECT_THAT(hosts.output, testing::EndsWith("\n1 change: 1 added\n"));
    EXPECT_EQ(run({"diff", "--kind", "racks", old, now}).status, 0);
    const Outcome grouped = run({"diff", "--group", "--kind", "drive", old, now});
    EXPECT_LT(kordTest::splitLines(grouped.output).size(), 10U) << grouped.output;
    const Outcome colored = run({"diff", "--color", "always", "--kind", "host", old, now});
    EXPECT_THAT(colored.output, testing::StartsWith("\x1b[32madded\x1b[0m     host "));
}

TEST_F(Commands, DiffTellsNothingOfWhatACutDocumentLacks)
{
    const std::string text = kordTest::readFile(expected / "facility.xml").value();
    const fs::path cut =
        write("cut.xml", text.substr(0, text.find("<ResourceList displayName=\"Partitions\"")));
    const Outcome outcome = run({"diff", expected / "facility.xml", cut});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    const std::string incomplete = "kord: " + cut.string() + ": the document is incomplete: ";
    EXPECT_EQ(outcome.error, incomplete + "the partitions\n" + incomplete + "the end\n" +
                                 "kord: parts that only one document tells are left out where the other is "
                                 "incomplete: 2\n");
}

TEST_F(Commands, DiffPrintsJson)
{
    const Outcome outcome = run({"diff", "--json", collect("old"), collect("new", replaceDrive)});
    EXPECT_EQ(outcome.status, 1);
    const json report = kordTest::parseJson(outcome.output);
    ASSERT_EQ(report["changes"].size(), 1U);
    EXPECT_EQ(report["changes"][0]["change"], "replaced");
    EXPECT_EQ(report["changes"][0]["values"][0]["new"], "WKREPLACED");
}

TEST_F(Commands, ShowPrintsATree)
{
    const std::string document = expected / "small.xml";
    const Outcome tree = run({"show", document});
    EXPECT_EQ(tree.status, 0) << tree.error;
    EXPECT_THAT(tree.output, testing::HasSubstr("OSK Physical Disk Drive  U1234.5X6.AB100001-P1-D1"));
}

TEST_F(Commands, JsonPrintsATreeOfParts)
{
    const Outcome outcome = run({"json", expected / "small.xml"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(kordTest::parseJson(outcome.output)["system"]["id"], "9999-B2C-7ABCD12");
}

TEST_F(Commands, ShowWritesAPage)
{
    const std::string page = folder.path() / "page.html";
    const Outcome outcome = run({"show", expected / "facility.xml", "--html", page});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(kordTest::readFile(page).value_or(""), testing::EndsWith("</html>\n"));
}

TEST_F(Commands, AFolderWithOneDocumentStandsForIt)
{
    const fs::path small = folder.path() / "addTarnKord_a.xml";
    fs::copy_file(expected / "small.xml", small);
    fs::copy_file(small, folder.path() / "other.xml");
    for (const std::string command : {"show", "json", "xml"})
        EXPECT_EQ(run({command, folder.path()}).output, run({command, small}).output) << command;
    EXPECT_EQ(run({"diff", folder.path(), small}).status, 0);
    fs::copy_file(small, folder.path() / "addTarnKord_b.xml");
    for (const std::vector<std::string>& words : {std::vector<std::string>{"show", folder.path()},
                                                  {"json", folder.path()},
                                                  {"xml", folder.path()},
                                                  {"diff", folder.path(), small},
                                                  {"diff", small, folder.path()}}) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.error,
                  "kord: " + folder.path().string() + ": the folder holds 2 documents: name one\n");
    }
}

TEST_F(Commands, APageGoesWhereResultsGo)
{
    const std::string small = expected / "small.xml";
    const std::string page = folder.path() / "page.html";
    ASSERT_EQ(run({"show", small, "--html", page}).status, 0);
    const std::string text = kordTest::readFile(page).value_or("");
    EXPECT_EQ(run({"show", small, "--html", "-"}).output, text);
    const std::string other = folder.path() / "other.html";
    EXPECT_EQ(run({"show", small, "--html", "-", "-o", other}).output, "");
    EXPECT_EQ(kordTest::readFile(other), text);
    EXPECT_THAT(run({"diff", small, small, "--html", "-"}).output, testing::EndsWith("</html>\n"));
    fs::remove(page);
    EXPECT_EQ(run({"diff", small, small, "--html", page, "-o", other}).status, 2);
    EXPECT_EQ(kordTest::readFile(other), text);
    EXPECT_FALSE(fs::exists(page));
}

/// Before the document, where it can be read twice.
TEST_F(Commands, XmlSaysFirstWhatADocumentLacks)
{
    const std::string text = kordTest::readFile(expected / "facility.xml").value();
    const std::string cut =
        write("cut.xml", text.substr(0, text.find("<ResourceList displayName=\"Partitions")));
    const auto both = [&](const std::string& script) {
        return kordTest::runProcess({.arguments = {"/bin/sh", "-c", script, kord, cut}, .folder = {}}).output;
    };
    const std::string mended = run({"xml", cut}).output;
    const auto lacks = [](const std::string& name) {
        const std::string start = "kord: " + name + ": the document is incomplete: the ";
        return start + "partitions\n" + start + "end\n";
    };
    EXPECT_EQ(both(R"("$0" xml "$1" 2>&1)"), lacks(cut) + mended);
    EXPECT_EQ(both(R"(cat "$1" | "$0" xml - 2>&1)"), mended + lacks("standard input"));
}

TEST_F(Commands, DiffTellsTheKindsOfOneWord)
{
    std::string text = kordTest::readFile(expected / "small.xml").value();
    const size_t share =
        text.find("<Resource ", text.find("<ResourceList displayName=\"Enclosures Partitions",
                                          text.find("\"Storage Enclosure\"")));
    ASSERT_NE(share, std::string::npos);
    text.insert(share, "<Resource displayName=\"new\" uniqueId=\"new\">\nnew\n</Resource>\n");
    const std::string after = write("after.xml", text);
    const Outcome all = run({"diff", expected / "small.xml", after});
    EXPECT_EQ(all.status, 1);
    EXPECT_THAT(all.output, testing::HasSubstr("partition's share of an enclosure new"));
    EXPECT_EQ(run({"diff", "--kind", "others", expected / "small.xml", after}).output, all.output);
    EXPECT_EQ(run({"diff", "--kind", "drives", expected / "small.xml", after}).output, "");
}

TEST_F(Commands, DiffWritesAPage)
{
    const std::string page = folder.path() / "page.html";
    const Outcome outcome = run({"diff", "--html", page, expected / "small.xml", expected / "facility.xml"});
    EXPECT_EQ(outcome.status, 1) << outcome.error;
    EXPECT_EQ(outcome.output, "");
    const std::string text = kordTest::readFile(page).value_or("");
    EXPECT_THAT(text, testing::EndsWith("</html>\n"));
    EXPECT_THAT(text, testing::HasSubstr("\"change\": \"added\""));
    EXPECT_EQ(run({"diff", "--html", page, expected / "small.xml", expected / "small.xml"}).status, 0);
}

TEST_F(Commands, TroubleIsOneLineAndStatus2)
{
    const std::string bad = write("bad.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\nno\n");
    const std::string good = expected / "small.xml";
    struct Case {
        std::vector<std::string> arguments;
        std::string says;
    };
    const std::vector<Case> cases = {
        {{"show", bad}, bad + ":2: "},
        {{"show", "/no/such"}, "/no/such: No such file or directory"},
        {{"show", "/"}, "/: the folder holds no document: name one"},
        {{"show", good, "--html", "page", "-o", "other"}, "--html and -o exclude each other"},
        {{"show"}, "FILE is required"},
        {{"show", good, "--html", "/no/such/page"}, "/no/such/page: No such file or directory"},
        {{"show", good, "--html", "/dev/full"}, "/dev/full: No space left on device"},
        {{"diff", good, bad}, bad + ":2: "},
        {{"diff", bad, good}, bad + ":2: "},
        {{"diff", good}, "NEW is required"},
        {{"diff", "--kind", "drvies", good, good}, "no kind \"drvies\": did you mean \"drives\"?"},
        {{"follow"}, "TRACE is required"},
        {{"follow", "/"}, "/: "},
    };
    for (const Case& one : cases) {
        const Outcome outcome = run(one.arguments);
        EXPECT_EQ(outcome.status, 2) << one.says;
        EXPECT_THAT(outcome.error, testing::StartsWith("kord: " + one.says));
        EXPECT_EQ(kordTest::splitLines(outcome.error).size(), 1U) << outcome.error;
        EXPECT_EQ(outcome.output, "");
    }
}

TEST_F(Commands, ResultsGoToAFileWholeOrNotAtAll)
{
    const std::string document = expected / "small.xml";
    const fs::path place = write("place", "as it was");
    EXPECT_EQ(run({"show", write("bad.xml", "no"), "-o", place}).status, 2);
    EXPECT_EQ(kordTest::readFile(place), "as it was");
    const Outcome outcome = run({"show", "--output", place, document});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(kordTest::readFile(place), run({"show", document}).output);
    EXPECT_EQ(run({"show", document, "-o", "-"}).output, run({"show", document}).output);
}

TEST_F(Commands, NobodyIsToldThatAReaderWentAway)
{
    const std::string script = R"("$0" show "$1" | head -n 1; trap '' PIPE; "$0" show "$1" | head -n 1)";
    const Outcome outcome = kordTest::runProcess(
        {.arguments = {"/bin/bash", "-c", script, kord, expected / "facility.xml"}, .folder = {}});
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(kordTest::splitLines(outcome.output).size(), 2U);
}

TEST_F(Commands, AFullDiskBehindStandardOutputIsTrouble)
{
    for (const char* arguments : {"show \"$1\"", "--version", "list --help"}) {
        const std::string script = "\"$0\" " + std::string(arguments) + " >/dev/full";
        const Outcome outcome = kordTest::runProcess(
            {.arguments = {"/bin/sh", "-c", script, kord, expected / "small.xml"}, .folder = {}});
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_EQ(outcome.error, "kord: standard output: No space left on device\n") << arguments;
    }
}

TEST_F(Commands, FollowTellsHowARunEnded)
{
    const fs::path document = collect("run");
    const Outcome outcome = run({"follow", kordTest::traceFile(folder.path() / "run", mtms)});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(outcome.output,
                testing::MatchesRegex("9999-B2C.7ABCD12: done, [0-9]+ s: 128 drives, 8 storage enclosures, 2 "
                                      "racks, 2 partitions, 4 I/O enclosures, 2 processor complexes\n"));
}

TEST_F(Commands, ExplainTellsOfTheNewestRunOfOneAndOfAll)
{
    const fs::path log = kordTest::traceFile(folder.path() / "run", mtms);
    collect("run");
    Outcome outcome = run({"explain", log});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(outcome.output, testing::StartsWith("Run 1 of 1 for 9999-B2C*7ABCD12, "));
    EXPECT_THAT(outcome.output, testing::EndsWith("It ended well, with status 3.\n"));
    outcome = run({"explain", "--all", log});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(outcome.output, testing::StartsWith("Run 1 for 9999-B2C*7ABCD12, "));

    std::ofstream(log, std::ios::app) << "112126 13:41:03 SRCV: 155968_quay1 07-15-05  9999-B2C*7ABCD99\n";
    outcome = run({"explain", log});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, testing::StartsWith("Run 2 of 2 for 9999-B2C*7ABCD99, "));
    EXPECT_EQ(run({"explain", "--run", "1", log}).status, 0);
    outcome = run({"explain", "--all", "--json", log});
    EXPECT_EQ(outcome.status, 1);
    const json runs = kordTest::parseJson(outcome.output)["runs"];
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0]["endedWell"], true);
    EXPECT_EQ(runs[1]["end"], "open");
    EXPECT_THAT(kordTest::schemaFaults(fs::path(KORD_SOURCE_DIR) / "document/schema/kord-explain.schema.json",
                                       outcome.output),
                testing::IsEmpty());
}

TEST_F(Commands, MetricsTellOfARunAndItsDocument)
{
    const fs::path document = collect("run");
    const fs::path log = kordTest::traceFile(folder.path() / "run", mtms);
    const Outcome outcome = run({"metrics", log, document});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(outcome.output, testing::HasSubstr("\nkord_run_status{system=\"9999-B2C-7ABCD12\"} 3\n"));
    EXPECT_THAT(outcome.output,
                testing::HasSubstr("\nkord_document_complete{system=\"9999-B2C-7ABCD12\"} 1\n"));
    EXPECT_THAT(
        outcome.output,
        testing::HasSubstr(
            "\nkord_parts{system=\"9999-B2C-7ABCD12\",kind=\"drive\",firmware=\"T0B1\",state=\"0\"} 48\n"));
    const Outcome partly = run({"metrics", log, "/no/such", document});
    EXPECT_EQ(partly.status, 2);
    EXPECT_EQ(partly.error, "kord: /no/such: No such file or directory\n");
    EXPECT_EQ(partly.output, outcome.output);
    for (const std::string& trace : {std::string("/no/such"), document.string()}) {
        const Outcome untraced = run({"metrics", trace, document});
        EXPECT_EQ(untraced.status, 2);
        EXPECT_THAT(untraced.error, testing::StartsWith("kord: " + trace + ": "));
        EXPECT_EQ(untraced.output, outcome.output.substr(outcome.output.find("# TYPE kord_document")));
    }
}

TEST_F(Commands, MetricsTellOfTheNewestRun)
{
    const std::string log = write("log", "112126 13:41:03 SRCV: 155968_quay1 07-15-05  9999-B2C*7ABCD12\n"
                                         "112126 13:41:04 0010:  exit 3 ------------------\n"
                                         "112126 13:42:03 SRCV: 155969_quay1 07-15-05  9999-B2C*7ABCD12\n"
                                         "112126 13:42:04 0010:  exit -1 ------------------\n");
    const Outcome outcome = run({"metrics", log, expected / "small.xml"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(outcome.output, testing::HasSubstr("\nkord_run_status{system=\"9999-B2C-7ABCD12\"} -1\n"));
    EXPECT_THAT(outcome.output,
                testing::Not(testing::HasSubstr("kord_run_status{system=\"9999-B2C-7ABCD12\"} 3")));
}

TEST_F(Commands, ExplainSaysWhatItCannotRead)
{
    const std::string log = write("log", "112126 13:41:03 SRCV: 155968_quay1 07-15-05  9999-B2C*7ABCD99\n");
    const std::string other = write("other", "no log\n");
    const auto says = [](const std::vector<std::string>& arguments, const std::string& what) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2) << what;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.error, "kord: " + what + "\n");
    };
    says({"explain", other}, other + ": no line of a collector's trace log");
    says({"explain", "/dev/zero"}, "/dev/zero: no line of a collector's trace log");
    says({"explain", "--run", "2", log}, log + ": has no run 2, the last is 1");
    says({"explain", "--run", "2", "--all", log}, "--run and --all exclude each other");
}

/// Whatever its size: logs are read in blocks.
TEST_F(Commands, ExplainReadsALogToItsLastByte)
{
    const std::string last = "112126 13:41:03 SRCV: 155968_quay1 07-15-05  9999-B2C*7ABCD99\n";
    for (const size_t size : {size_t{65536}, size_t{65537}, size_t{131073}}) {
        std::string text = "112126 13:41:03 >>:  " + std::string(size - last.size() - 22, 'x') + '\n' + last;
        ASSERT_EQ(text.size(), size);
        const Outcome outcome = run({"explain", write("log", text)});
        EXPECT_THAT(outcome.output, testing::HasSubstr(" for 9999-B2C*7ABCD99, ")) << size;
    }
}

TEST_F(Commands, FollowEndsOnALogThatLostItsStart)
{
    const fs::path log = folder.path() / "kord.log";
    std::ofstream(log) << "resourcelist\n112126 13:41:04 >>:  openRackEncl  resource\n"
                          "112126 13:41:05 0010:  exit 3 ------------------\n";
    const Outcome outcome = run({"follow", log});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, "a run whose start the log has lost: done, the last 1 s: 1 rack\n");
}

TEST_F(Commands, FollowSaysWhenNothingComes)
{
    const fs::path log = folder.path() / "kord.log";
    std::ofstream file(log);
    file << "112126 13:41:03 SRCV: 155968_quay1 07-15-05  M*S" << std::endl;
    auto outcome = std::async(std::launch::async, [&] { return run({"follow", "--quiet-after", "1", log}); });
    std::this_thread::sleep_for(std::chrono::milliseconds(2300)); // the silence grows, and is told once
    file << "112126 13:41:05 0010:  exit 3 ------------------" << std::endl;
    EXPECT_EQ(outcome.get().output,
              "M*S: start, 0 s\nM*S: start, 0 s; nothing new for 1 s\nM*S: done, 2 s\n");
}

TEST_F(Commands, FollowWaitsForTheLogAndForTheEnd)
{
    const fs::path log = folder.path() / "kord.log";
    auto outcome = std::async(std::launch::async, [&] { return run({"follow", log}); });
    const auto pause = [] { std::this_thread::sleep_for(std::chrono::milliseconds(400)); };
    pause();
    std::ofstream file(log);
    file << "112126 13:41:03 SRCV: 155968_quay1 07-15-05  M*S" << std::endl;
    pause();
    file << "112126 13:41:04 ==>:  addIoEnclKord\n112126 13:41:04 >>:  openIOEncl resource" << std::endl;
    pause();
    file << "112126 13:41:05 0010:  exit -1 ------------------" << std::endl;
    const Outcome done = outcome.get();
    EXPECT_EQ(done.status, 1);
    EXPECT_EQ(done.output, "waiting for a collection in " + log.string() +
                               "\nM*S: start, 0 s\nM*S: I/O enclosures, 1 s: 1 I/O enclosure\n"
                               "M*S: failed (I/O enclosures), 2 s: 1 I/O enclosure\n");
}

} // namespace
