// kord record: what is recorded replays to the same bytes, and redacted to a document of the same
// structure. The console that is recorded is the simulated one, so that all there is to compare is known.

#include "consoleRun.h"
#include "documentReader.h"
#include "parseJson.h"
#include "pattern.h"
#include "process.h"
#include "runCase.h"
#include "tempFolder.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using kordTest::Outcome;
using nlohmann::json;
using Texts = std::vector<std::string>;

const fs::path buildFolder = KORD_BUILD_DIR;
const fs::path console = buildFolder / "bin/kord-console";
const fs::path kord = buildFolder / "bin/kord";
const fs::path sources = KORD_SOURCE_DIR;
const std::string system0 = "9999-B2C*7ABCD12";

void write(const fs::path& file, const std::string& text)
{
    std::ofstream(file) << text;
}

/// A facility of the project with other fault rules.
json facilityWith(const std::string& name, const json& faults, const json& patch = json::array())
{
    const std::string text = kordTest::readFile(sources / "console/facilities" / name).value();
    json facility = kordTest::parseJson(text).patch(patch);
    if (!faults.is_null()) facility["faults"] = faults;
    return facility;
}

/// All that a run leaves, but for what no two runs share: times, and where in memory a name lay.
struct Left {
    Outcome outcome;
    std::string document;
    Texts trace;
    Texts journal;
};

Texts readTrace(const fs::path& file)
{
    static const kordTest::Pattern fleeting(R"((0701:  stamp=).*|(0062: empty file )-?[0-9]+)");
    Texts lines;
    for (const kordTest::TraceLine& line : kordTest::readTrace(file)) {
        lines.push_back(fleeting.replaced(line.text, "$01$02"));
        for (const std::string& rest : line.further)
            lines.push_back(' ' + rest);
    }
    return lines;
}

/// The last line's list of rules that never fired is of the facility file, not of the run.
Texts readJournal(const fs::path& root)
{
    Texts lines;
    for (json line : kordTest::readJournal(root)) {
        line.erase("unused");
        lines.push_back(line.dump());
    }
    return lines;
}

/// A folder with a facility, its recorded run, the recording and its replay.
class Recording : public testing::Test
{
protected:
    kordTest::TempFolder temporary;
    const fs::path folder = temporary.path();
    const fs::path recordedFile = folder / "recorded.json";
    Texts arguments = {"-t", system0};
    std::optional<std::string> user;

    Left run(const fs::path& facility, const std::string& root, Texts program, const Texts& called)
    {
        const fs::path place = folder / root;
        Left left;
        program.push_back("addTarnKord");
        program.insert(program.end(), called.begin(), called.end());
        left.outcome = kordTest::runOnConsole({.console = console,
                                               .facility = facility,
                                               .root = place,
                                               .folder = folder,
                                               .user = root == "replay" ? std::nullopt : user,
                                               .program = program});
        const std::string mtms = called.size() > 1 ? called[1] : "";
        left.document = kordTest::withFixedTimestamp(
            kordTest::readFile(kordTest::documentFile(place, mtms)).value_or("(none)"));
        left.trace = readTrace(kordTest::traceFile(place, mtms));
        left.journal = readJournal(place);
        return left;
    }
    Left record(const json& facility, const Texts& options = {})
    {
        write(folder / "facility.json", facility.dump());
        Texts program = {kord, "record", "--output", recordedFile};
        program.insert(program.end(), options.begin(), options.end());
        program.emplace_back("--");
        return run(folder / "facility.json", "recorded", program, arguments);
    }
    /// Any program on the console of facility.json.
    [[nodiscard]] Outcome runHere(const Texts& program) const
    {
        return kordTest::runOnConsole({.console = console,
                                       .facility = folder / "facility.json",
                                       .root = folder / "recorded",
                                       .folder = folder,
                                       .user = std::nullopt,
                                       .program = program});
    }
    Left replay() { return run(recordedFile, "replay", {}, arguments); }
    /// As somebody repeats it who knows nothing but the file.
    [[nodiscard]] Outcome repeat() const
    {
        return kordTest::runProcess(
            {.arguments = {console, "run", "--facility", recordedFile, "--root", folder / "replay"},
             .folder = folder});
    }
    [[nodiscard]] json recording() const
    {
        return kordTest::parseJson(kordTest::readFile(recordedFile).value_or("null"));
    }
};

void expectSame(const Left& recorded, const Left& replayed)
{
    EXPECT_EQ(replayed.outcome.status, recorded.outcome.status);
    EXPECT_EQ(replayed.outcome.output, recorded.outcome.output);
    EXPECT_EQ(replayed.document, recorded.document);
    EXPECT_EQ(replayed.trace, recorded.trace);
    EXPECT_EQ(replayed.journal, recorded.journal);
}

// ---- what is recorded replays to the same bytes ----

TEST_F(Recording, LeavesTheRunAsItIs)
{
    const json facility = facilityWith("facility.json", json::array());
    const Left recorded = record(facility);
    const Left plain = run(folder / "facility.json", "plain", {}, arguments);
    EXPECT_EQ(recorded.outcome.status, 3);
    expectSame(recorded, plain);
}

TEST_F(Recording, OfAWholeFacilityNeedsNoFaultRule)
{
    const Left recorded = record(facilityWith("facility.json", json::array()));
    ASSERT_EQ(recorded.outcome.status, 3) << recorded.outcome.error;
    EXPECT_EQ(recording()["faults"], json::array());
    expectSame(recorded, replay());
}

TEST_F(Recording, PassesItsCheck)
{
    record(facilityWith("facility.json", json::array()));
    const Outcome check =
        kordTest::runProcess({.arguments = {console, "check", recordedFile}, .folder = folder});
    EXPECT_EQ(check.status, 0);
    EXPECT_EQ(check.output, "");
}

TEST_F(Recording, SaysWhatIsNext)
{
    const Left recorded = record(facilityWith("small.json", json::array()));
    EXPECT_EQ(recorded.outcome.error, "kord: repeat it with: kord-console run --facility " +
                                          recordedFile.string() +
                                          " --root DIR\nkord: and see what happened: kord explain "
                                          "DIR/var/tarnquay/log/kord.7ABCD12.log\n");
}

TEST_F(Recording, TellsWhatRanAndHowItEnded)
{
    const json faults =
        kordTest::parseJson(R"([{"class": "Orvik.TarnRack", "fails": {"code": 9, "message": "gone\n"}}])");
    const Left recorded = record(facilityWith("small.json", faults));
    const json told = recording()["recording"];
    EXPECT_EQ(told["command"], json::array({"addTarnKord", "-t", system0}));
    EXPECT_EQ(told["system"], system0);
    EXPECT_EQ(told["status"], recorded.outcome.status);
    EXPECT_EQ(recorded.outcome.status, 255);
    const kordTest::Pattern date("20[0-9]{2}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z");
    EXPECT_TRUE(date.matches(told["date"])) << told["date"];
    EXPECT_EQ(told["versions"]["kord"], KORD_VERSION);
    utsname names{};
    ASSERT_EQ(uname(&names), 0);
    const std::string release = kordTest::Pattern("[^0-9.].*").replaced(names.release, "");
    EXPECT_EQ(told["versions"]["machine"], "Linux " + release + " " + names.machine);
}

/// The numbers that another program reads out of the same files.
TEST_F(Recording, KnowsTheBuildsThatTookPart)
{
    record(facilityWith("small.json", json::array()));
    const json versions = recording()["recording"]["versions"];
    for (const auto& [part, file] :
         {std::pair("collector", "bin/addTarnKord"), std::pair("client", "lib/libvale_mc.so")}) {
        const Outcome notes = kordTest::runProcess(
            {.arguments = {"/usr/bin/env", "readelf", "-n", buildFolder / file}, .folder = {}});
        ASSERT_EQ(notes.status, 0) << notes.error;
        EXPECT_NE(notes.output.find("Build ID: " + versions[part].get<std::string>() + "\n"),
                  std::string::npos)
            << notes.output;
    }
}

TEST_F(Recording, IsRepeatedByItselfAlone)
{
    user = "brisk";
    arguments[0] = "-m";
    const Left recorded = record(facilityWith("facility.json", json::array()));
    const Outcome outcome = repeat();
    EXPECT_EQ(outcome.status, recorded.outcome.status);
    EXPECT_EQ(outcome.output, recorded.outcome.output);
    const std::string date = recording()["recording"]["date"];
    EXPECT_EQ(outcome.error, "kord-console: addTarnKord -m '" + system0 + "' ended with 3, as recorded on " +
                                 date + "\nkord-console: see what happened: kord explain " +
                                 fs::canonical(folder / "replay").string() +
                                 "/var/tarnquay/log/kord.7ABCD12.log\n");
    EXPECT_EQ(readJournal(folder / "replay"), recorded.journal);
    EXPECT_EQ(readTrace(kordTest::traceFile(folder / "replay", system0)), recorded.trace);
}

TEST_F(Recording, SaysWhatElseItsRunEndedWith)
{
    json facility = facilityWith("small.json", json::array());
    for (const int status : {0, 255}) {
        facility["recording"] = {{"command", {"addTarnKord", "-t", system0}}, {"status", status}};
        write(recordedFile, facility.dump());
        const Outcome outcome = repeat();
        EXPECT_EQ(outcome.status, 3);
        EXPECT_TRUE(outcome.error.starts_with("kord-console: addTarnKord -t '" + system0 +
                                              "' ended with 3; recorded was " + std::to_string(status) +
                                              "\n"))
            << outcome.error;
    }
}

TEST_F(Recording, OfAScriptIsTheCollectorsThatItRan)
{
    write(folder / "facility.json", facilityWith("small.json", json::array()).dump());
    const Texts program = {kord,
                           "record",
                           "-o",
                           recordedFile,
                           "--",
                           "/bin/sh",
                           "-c",
                           "\"$0\" -t '" + system0 + "'",
                           buildFolder / "bin/addTarnKord"};
    const Outcome recorded = runHere(program);
    EXPECT_EQ(recorded.status, 3) << recorded.error;
    EXPECT_EQ(recording()["recording"]["command"], json::array({"addTarnKord", "-t", system0}));
    EXPECT_EQ(repeat().output, recorded.output);
}

/// A file from somebody else says what to collect, never what to run.
TEST_F(Recording, RunsNothingButACollection)
{
    json facility = facilityWith("small.json", json::array());
    facility["recording"] = {{"command", {"touch", "-a", folder / "touched"}}};
    write(recordedFile, facility.dump());
    Outcome outcome = repeat();
    EXPECT_EQ(outcome.status, 125);
    EXPECT_EQ(outcome.error, "kord-console: " + recordedFile.string() +
                                 " was recorded of touch: name the program to run after --\n");
    facility["recording"]["command"] = {folder / "addTarnKord", "-t", system0};
    facility["recording"]["date"] = "\x1B[2Jnever";
    write(recordedFile, facility.dump());
    write(folder / "addTarnKord", "#!/bin/sh\n: > touched\n");
    fs::permissions(folder / "addTarnKord", fs::perms::owner_all);
    outcome = repeat();
    EXPECT_EQ(outcome.status, 3) << outcome.error;
    EXPECT_NE(outcome.error.find(" on \\x1B[2Jnever\n"), std::string::npos) << outcome.error;
    EXPECT_FALSE(fs::exists(folder / "touched"));
}

TEST_F(Recording, WithoutACommandNeedsOneToRepeat)
{
    write(recordedFile, facilityWith("small.json", json::array()).dump());
    const Outcome outcome = repeat();
    EXPECT_EQ(outcome.status, 125);
    EXPECT_EQ(outcome.error, "kord-console: there is no program to run: name it after --\n");
}

TEST_F(Recording, HasTheResourcesThatTheRunSaw)
{
    const json facility = facilityWith("small.json", json::array());
    record(facility);
    const json recorded = recording();
    EXPECT_EQ(recorded["console"], facility["console"]);
    EXPECT_EQ(recorded["systems"], facility["systems"]);
    for (const char* name : {"Orvik.TarnDDM", "Orvik.TarnRank", "Orvik.TarnPPS", "Orvik.TarnServerPartition"})
        EXPECT_EQ(recorded["resources"][name], facility["resources"][name]) << name;
}

/// The lines of the calls and programs that a tape and the console's own journal both tell of, as both tell
/// it.
std::vector<json> callsOf(const std::vector<json>& lines)
{
    std::vector<json> calls;
    for (json line : lines) {
        static const std::set<std::string> notBoth = {"free_response", "get_errmsg", "exit"};
        if (!line.contains("program") && notBoth.contains(line.value("vale", "exit"))) continue;
        if (line.contains("responses")) line["count"] = line["responses"].size();
        for (const json& response : line.value("responses", json::array())) {
            if (response.contains("handles"))
                line["handles"] = line.value("handles", size_t{0}) + response["handles"].size();
        }
        for (const char* own : {"seq", "responses", "handle", "output"})
            line.erase(own);
        calls.push_back(line);
    }
    return calls;
}

TEST_F(Recording, IsMadeOfATapeThatHoldsWhatTheConsoleWasAsked)
{
    write(folder / "facility.json", facilityWith("small.json", json::array()).dump());
    const Outcome recorded = runHere({kord, "record", "-o", recordedFile, "--", "/bin/sh", "-c",
                                      "\"$@\"; cp \"$KORD_CONSOLE_TAPE\" tape", "sh",
                                      buildFolder / "bin/addTarnKord", "-t", system0});
    ASSERT_EQ(recorded.status, 0) << recorded.error;
    std::vector<json> tape;
    for (const std::string& line : kordTest::splitLines(kordTest::readFile(folder / "tape").value()))
        tape.push_back(kordTest::parseJson(line));
    const std::vector<json> calls = callsOf(tape);
    const std::vector<json> asked = callsOf(kordTest::readJournal(folder / "recorded"));
    EXPECT_GT(calls.size(), 50U);
    ASSERT_EQ(calls.size(), asked.size());
    for (size_t i = 0; i < calls.size(); ++i)
        EXPECT_EQ(calls[i], asked[i]);
}

TEST_F(Recording, OfAnotherUserKnowsWhatTheWrapperRan)
{
    user = "brisk";
    const Left recorded = record(facilityWith("small.json", json::array()));
    EXPECT_EQ(recording()["console"]["user"], "brisk");
    EXPECT_EQ(recording()["faults"], json::array());
    expectSame(recorded, replay());
}

TEST_F(Recording, VerifiesItself)
{
    if (!kordTest::hasNamespaces()) GTEST_SKIP() << "a replay within a run needs namespaces";
    const Left recorded = record(facilityWith("facility.json", json::array()), {"--verify"});
    EXPECT_EQ(recorded.outcome.status, 3) << recorded.outcome.error;
    const Left plain = run(folder / "facility.json", "plain", {}, arguments);
    EXPECT_EQ(recorded.outcome.output, plain.outcome.output);
    EXPECT_TRUE(recorded.outcome.error.starts_with("kord: repeat it with: ")) << recorded.outcome.error;
}

/// What ran twice does not repeat itself: the replay is told the program.
TEST_F(Recording, VerifiesAScriptOfTwoRuns)
{
    if (!kordTest::hasNamespaces()) GTEST_SKIP() << "a replay within a run needs namespaces";
    write(folder / "facility.json", facilityWith("small.json", json::array()).dump());
    const std::string collect = "\"$0\" -t '" + system0 + "'";
    const Outcome recorded = runHere({kord, "record", "--verify", "-o", recordedFile, "--", "/bin/sh", "-c",
                                      collect + "; " + collect, buildFolder / "bin/addTarnKord"});
    EXPECT_EQ(recorded.status, 3) << recorded.error;
    EXPECT_EQ(recording()["recording"]["command"][0], "sh");
}

/// An error on a response that the console has, or on one behind them, is told as that error alone: of
/// queries, enumerations and actions.
TEST_F(Recording, OfAnErrorTellsTheErrorAlone)
{
    const json error = {{"number", 262152}, {"message", "no contact\n"}};
    json behind = error;
    behind["response"] = 1;
    const std::vector<json> rules = {
        {{"class", "Orvik.TarnQUAY"}, {"error", error}},
        {{"class", "Orvik.TarnQUAY"}, {"error", behind}},
        {{"class", "Orvik.TarnVolumeGroup"}, {"error", behind}},
    };
    for (const json& rule : rules) {
        fs::remove_all(folder / "recorded");
        fs::remove_all(folder / "replay");
        const Left recorded = record(facilityWith("small.json", json::array({rule})));
        const json faults = recording()["faults"];
        ASSERT_EQ(faults.size(), 1U) << rule;
        EXPECT_EQ(faults[0]["error"], rule["error"]) << faults;
        expectSame(recorded, replay());
    }
}

/// A level is that of the one well answer about a server partition; of none and of several it is not known.
TEST_F(Recording, OfAnUnusualAnswerKnowsNoLevel)
{
    const json well = {{"elements", {0, "5.1.0.309"}}};
    json inError = well;
    inError["error"] = {{"number", 7}, {"message", "late\n"}};
    for (const json& answer : {json::array({well, well}), json::array({inError}), json::array()}) {
        fs::remove_all(folder / "recorded");
        fs::remove_all(folder / "replay");
        const json rule = {{"call", "invoke_action"}, {"answer", answer}};
        const Left recorded = record(facilityWith("small.json", json::array({rule})));
        const json partitions = recording()["resources"]["Orvik.TarnServerPartition"];
        ASSERT_FALSE(partitions.empty()) << answer;
        EXPECT_FALSE(partitions[0].contains("runningImageLevel")) << answer;
        expectSame(recorded, replay());
    }
}

TEST_F(Recording, OfSeveralFaultsAtOnce)
{
    user = "brisk";
    const json faults = kordTest::parseJson(R"([
      {"class": "Orvik.TarnRack", "nth": 2, "fails": {"code": 9, "message": "rack gone \"°\"\n"}},
      {"class": "Orvik.TarnNVC", "error": {"number": 262152, "message": "no contact\n"}},
      {"class": "Orvik.TarnHA", "answer": [{"attributes": [["locationCode", null], ["ecLevel", "x"]]},
                                           {"attributes": [], "error": {"number": 7, "message": "late\n"}}]},
      {"class": "Orvik.TarnDA", "nth": 1, "answer": []},
      {"call": "end_session", "scope": 4, "fails": {"code": 5, "message": "will not end\n"}},
      {"program": "qmstat", "nth": 2, "status": 3, "output": "half a line"},
      {"program": "pmProblemEventPoster", "nth": 2, "status": 4, "output": "refused\n"},
      {"program": "mmquaycmd", "nth": 5, "status": 1, "output": ""}
    ])");
    const Left recorded = record(facilityWith("facility.json", faults));
    expectSame(recorded, replay());
}

TEST_F(Recording, OfAChangeBetweenTwoAnswers)
{
    const json faults =
        kordTest::parseJson(R"([{"call": "query_d_select", "class": "Orvik.ManagedNode", "nth": 3,
      "answer": [{"attributes": [["Status", 2]]}]}])");
    const Left recorded = record(facilityWith("small.json", faults));
    EXPECT_EQ(recorded.outcome.status, 255);
    EXPECT_EQ(recording()["resources"]["Orvik.ManagedNode"][0]["Status"], 1);
    ASSERT_EQ(recording()["faults"].size(), 1U);
    EXPECT_EQ(recording()["faults"][0]["nth"], 2);
    expectSame(recorded, replay());
}

// ---- what cannot be recorded ----

Outcome recordAlone(const Texts& options, const Texts& program)
{
    Texts arguments = {kord, "record"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.emplace_back("--");
    arguments.insert(arguments.end(), program.begin(), program.end());
    return kordTest::runProcess({.arguments = arguments, .folder = {}});
}

void expectRefusal(const Outcome& outcome, const std::string& error)
{
    EXPECT_EQ(outcome.status, 125);
    EXPECT_EQ(outcome.error, "kord: " + error + "\n");
}

TEST_F(Recording, NeedsAProgramThatCallsTheClient)
{
    expectRefusal(recordAlone({"--output", recordedFile}, {"true"}),
                  "true made no call that could be recorded");
    expectRefusal(recordAlone({"--output", recordedFile}, {}),
                  "there is no program to run: name it after --");
    expectRefusal(recordAlone({"--output", recordedFile}, {"/no/such"}),
                  "/no/such: No such file or directory");
    EXPECT_FALSE(fs::exists(recordedFile));
}

TEST_F(Recording, IsNotVerifiedByAReplayWithoutCalls)
{
    if (!kordTest::hasNamespaces()) GTEST_SKIP() << "a replay within a run needs namespaces";
    write(folder / "facility.json", facilityWith("small.json", json::array()).dump());
    write(recordedFile, "an earlier one");
    const Outcome outcome = runHere({kord, "record", "--verify", "--output", recordedFile, "--", "/bin/sh",
                                     "-c", "test -e once || { : > once; whoami; }"});
    expectRefusal(outcome, "the replay of the recording made no call: see kord-console run");
    EXPECT_EQ(kordTest::readFile(recordedFile), "an earlier one");
}

TEST_F(Recording, NeedsAPlaceForItsFile)
{
    write(folder / "facility.json", facilityWith("small.json", json::array()).dump());
    const fs::path nowhere = folder / "no/such/file.json";
    const Left left =
        run(folder / "facility.json", "recorded", {kord, "record", "--output", nowhere, "--"}, arguments);
    expectRefusal(left.outcome, nowhere.string() + ": No such file or directory");
    EXPECT_NE(left.document, "(none)");
}

TEST_F(Recording, LeavesOtherPreloadsInPlace)
{
    const Texts script = {"/bin/sh",
                          "-c",
                          "export LD_PRELOAD=libm.so.6; exec \"$@\"",
                          "sh",
                          kord,
                          "record",
                          "--output",
                          recordedFile,
                          "--",
                          "/bin/sh",
                          "-c",
                          "echo ${LD_PRELOAD#*:}; exec \"$@\"",
                          "sh",
                          buildFolder / "bin/addTarnKord"};
    write(folder / "facility.json", facilityWith("small.json", json::array()).dump());
    Texts program = script;
    program.insert(program.end(), arguments.begin(), arguments.end());
    const Outcome outcome = runHere(program);
    EXPECT_EQ(outcome.status, 3) << outcome.error;
    EXPECT_TRUE(outcome.output.starts_with("libm.so.6\n")) << outcome.output;
    EXPECT_EQ(recording()["faults"], json::array());
}

// ---- redacted: the same structure, and no original anywhere ----

/// A document without what its properties hold: lists by name, resources by the codes and labels of their
/// properties.
void addShape(Texts& shape, const kordTest::Element& element, const std::string& indent)
{
    std::string line = indent + (element.list ? "[" + element.displayName + "]" : "resource");
    for (const kordTest::Property& property : element.properties)
        line += " " + property.code + "=" + property.label;
    shape.push_back(line);
    for (const kordTest::Element& child : element.children)
        addShape(shape, child, indent + "  ");
}

Texts shapeOf(const std::string& text)
{
    const kordTest::Document document = kordTest::readDocument(text);
    Texts shape = document.faults;
    shape.push_back(std::to_string(document.missingClosings) + " " + std::to_string(document.extraClosings));
    for (const kordTest::Element& element : document.resources)
        addShape(shape, element, "");
    return shape;
}

/// Of a trace's stamped lines; the others begin with a blank.
Texts codesOf(const Texts& trace)
{
    Texts codes;
    for (const std::string& line : trace) {
        if (!line.starts_with(' ')) codes.push_back(line.substr(0, line.find(':')));
    }
    return codes;
}

/// The part of a value that names a machine or a customer; empty: it names none.
std::string tellingPart(const std::string& attribute, const std::string& value)
{
    static const kordTest::Pattern names(
        "serialNumber|HWSerialNum|lparName|Hostname|userHostDescription|ddmname|"
        "storagePlexAccountName|storageFacility(Image)?WWNN");
    static const kordTest::Pattern machine(R"(U?[0-9]{4}[-.*][0-9A-Z]{3}[-.*]([0-9A-Z]+).*)");
    if (names.matches(attribute)) return value;
    const kordTest::Pattern::Match parts = machine.match(value);
    return parts.empty() ? "" : parts[1];
}

std::set<std::string> tellingParts(const json& facility)
{
    std::set<std::string> parts;
    for (const json& resources : facility["resources"]) {
        for (const json& resource : resources) {
            for (const auto& [name, value] : resource.items()) {
                if (value.is_string()) parts.insert(tellingPart(name, value));
            }
        }
    }
    parts.erase("");
    return parts;
}

void expectSameStructure(const Left& recorded, const Left& replayed)
{
    EXPECT_EQ(replayed.outcome.status, recorded.outcome.status);
    EXPECT_EQ(replayed.outcome.output, recorded.outcome.output);
    EXPECT_EQ(shapeOf(replayed.document), shapeOf(recorded.document));
    EXPECT_EQ(codesOf(replayed.trace), codesOf(recorded.trace));
    EXPECT_EQ(replayed.journal.size(), recorded.journal.size());
}

TEST_F(Recording, RedactedGivesADocumentOfTheSameStructure)
{
    const Left recorded = record(facilityWith("facility.json", json::array()), {"--redact"});
    ASSERT_EQ(recorded.outcome.status, 3) << recorded.outcome.error;
    arguments[1] = recording()["recording"]["system"];
    EXPECT_EQ(arguments[1].substr(0, 9), system0.substr(0, 9));
    const Left replayed = replay();
    EXPECT_NE(replayed.document, recorded.document);
    EXPECT_GT(shapeOf(recorded.document).size(), 100U);
    expectSameStructure(recorded, replayed);
}

TEST_F(Recording, RedactedHoldsNoOriginal)
{
    const json faults = kordTest::parseJson(R"([
      {"class": "Orvik.TarnNVC", "error": {"number": 262152, "message": "no SF00XY123Tarn01 (tarn0-image1)\n"}},
      {"class": "Orvik.TarnFanTray", "fails": {"code": 4, "message": "9999-A01*00XY1230: tray 1234-5R0*RK000001\n"}}
    ])");
    json facility = facilityWith("facility.json", faults);
    facility["console"]["user"] = "jane.doe";
    const std::set<std::string> originals = tellingParts(facility);
    record(facility);
    const std::string open = kordTest::readFile(recordedFile).value();
    fs::remove_all(folder / "recorded");
    record(facility, {"--redact"});
    const std::string redacted = kordTest::readFile(recordedFile).value();
    size_t seen = 0;
    for (const std::string& original : originals) {
        seen += open.find(original) != std::string::npos ? 1 : 0;
        EXPECT_EQ(redacted.find(original), std::string::npos) << original;
    }
    EXPECT_GT(seen, 100U);
    for (const char* original : {"jane", "10ABCDE", "7ABCD34"})
        EXPECT_EQ(redacted.find(original), std::string::npos) << original;
    EXPECT_NE(redacted.find("fails"), std::string::npos);
}

TEST_F(Recording, RedactedOfAHostileConsoleHoldsNoOriginal)
{
    const json faults = kordTest::parseJson(R"([
      {"program": "whoami", "status": 0, "output": "secretuser\nsecretrest\n"},
      {"program": "qmstat", "nth": 2, "status": 0, "output": "Operating\nsecretstate\n"}
    ])");
    json facility = facilityWith("facility.json", faults);
    facility["console"]["vpd"] = {"*TM 4821-K7Q secretTM", "*SE 10TMsecret", "secretTM SE secretSE",
                                  "*DS secretDS"};
    int number = 0;
    for (const auto& [name, attribute] :
         {std::pair("Orvik.TarnDDM", "serialNumber"),
          std::pair("Orvik.TarnScsiHostPort", "userHostDescription"),
          std::pair("Orvik.TarnStorageFacilityPartition", "lparName"),
          std::pair("Orvik.TarnQUAY", "quayLocationCode"), std::pair("Orvik.TarnRack", "locationCode")}) {
        for (json& resource : facility["resources"][name])
            resource[attribute] = "secret \"" + std::to_string(number++) + "\" TM/SE % secret";
    }
    record(facility);
    EXPECT_NE(kordTest::readFile(recordedFile).value().find("secret"), std::string::npos);
    fs::remove_all(folder / "recorded");
    const Left recorded = record(facility, {"--redact"});
    EXPECT_NE(recorded.outcome.status, 125) << recorded.outcome.error;
    const std::string text = kordTest::readFile(recordedFile).value();
    const size_t left = text.find("secret");
    EXPECT_EQ(left, std::string::npos) << text.substr(left == std::string::npos ? 0 : left, 100);
}

TEST_F(Recording, RedactedKeepsWhatBelongsTogether)
{
    record(facilityWith("small.json", json::array()), {"--redact"});
    const json resources = recording()["resources"];
    const std::string system = resources["Orvik.TarnStorageFacilitySystem"][0]["managedSystemMTMS"];
    const std::string serial = system.substr(9);
    EXPECT_EQ(system.substr(0, 9), "9999-B2C*");
    EXPECT_EQ(serial.size(), 7U);
    EXPECT_TRUE(recording()["systems"].contains(system));
    EXPECT_EQ(resources["Orvik.ManagedNode"][0]["HWSerialNum"], serial);
    EXPECT_EQ(resources["Orvik.TarnCECDrawer"][0]["locationCode"], "U9999.B2C." + serial + "-P1");
    EXPECT_EQ(resources["Orvik.TarnNVC"][0]["locationCode"], "9999-B2C*" + serial + "-P1-C3");
    // A facility and its image share the beginning of their serials: 00XY1230 and 00XY121.
    const std::string facility = resources["Orvik.TarnStorageFacility"][0]["storageFacilityMTMS"];
    const std::string image = resources["Orvik.TarnStorageFacilityImage"][0]["storageFacilityImageMTMS"];
    EXPECT_EQ(facility.substr(9, 6), image.substr(9, 6));
    EXPECT_NE(facility.substr(15, 1), image.substr(15, 1));
    // The console knows itself among the facility's consoles by its serial.
    const std::string vpd = recording()["console"]["vpd"][1];
    EXPECT_EQ(resources["Orvik.TarnQUAY"][0]["quayLocationCode"], "4821-K7Q." + vpd.substr(4));
    // What many machines share stays.
    EXPECT_EQ(resources["Orvik.TarnDDM"][0]["partNumber"], "DK22011");
    EXPECT_EQ(resources["Orvik.TarnDDM"][0]["diskCapacity"], 73400);
    EXPECT_TRUE(kordTest::Pattern("[a-z]{6}-[0-9]{2}")
                    .matches(resources["Orvik.TarnScsiHostPort"][0]["userHostDescription"]));
}

TEST_F(Recording, IsRedactedDifferentlyEachTime)
{
    const json facility = facilityWith("small.json", json::array());
    record(facility, {"--redact"});
    const json first = recording();
    record(facility, {"--redact"});
    EXPECT_NE(recording()["resources"]["Orvik.TarnDDM"], first["resources"]["Orvik.TarnDDM"]);
}

/// Two recordings of one console with one map differ where the console does.
TEST_F(Recording, RedactedByAMapComparesWithTheOneBefore)
{
    const fs::path map = folder / "map.json";
    json facility = facilityWith("small.json", json::array());
    write(map, ""); // as mktemp leaves it
    record(facility, {"--redact", "--map", map});
    const json first = recording();
    struct stat status {
    };
    ASSERT_EQ(stat(map.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    facility["resources"]["Orvik.TarnDDM"][0]["serialNumber"] = "NEWDRIVE1";
    fs::remove_all(folder / "recorded");
    record(facility, {"--redact", "--map", map});
    const json second = recording();
    const json difference = json::diff(first["resources"], second["resources"]);
    ASSERT_EQ(difference.size(), 1U) << difference;
    EXPECT_EQ(difference[0]["path"], "/Orvik.TarnDDM/0/serialNumber");
    // Every stand-in leads back.
    const json pairs = kordTest::parseJson(kordTest::readFile(map).value());
    EXPECT_EQ(pairs["NEWDRIVE1"], second["resources"]["Orvik.TarnDDM"][0]["serialNumber"]);
    EXPECT_EQ(pairs["7ABCD12"], second["recording"]["system"].get<std::string>().substr(9));
    EXPECT_EQ(second["recording"]["command"], first["recording"]["command"]);
}

TEST_F(Recording, NeedsAMapThatIsOne)
{
    const std::string map = folder / "map.json";
    write(map, "{\"7ABCD12\": \"short\"}");
    const Outcome outcome = recordAlone({"--output", recordedFile, "--redact", "--map", map}, {"true"});
    expectRefusal(outcome, map + ": no stand-in: \"short\"");
    expectRefusal(recordAlone({"--output", recordedFile, "--map", map}, {"true"}), "--map needs --redact");
}

// ---- consoles of every kind of trouble ----

/// The cases of whole runs: all of them with KORD_ALL_RECORDINGS=1, else a sample.
std::vector<kordTest::RunCase> sampleOfCases(size_t first)
{
    const fs::path runs = sources / "tests/runs";
    const std::vector<kordTest::RunCase> cases = kordTest::loadCases(runs / "cases", runs / "fragments.json");
    const bool all = std::getenv("KORD_ALL_RECORDINGS") != nullptr;
    std::vector<kordTest::RunCase> sample;
    for (size_t i = all ? 0 : first; i < cases.size(); i += all ? 1 : 30)
        sample.push_back(cases[i]);
    return sample;
}

TEST_F(Recording, OfTheCasesOfWholeRuns)
{
    size_t recordings = 0;
    for (const kordTest::RunCase& given : sampleOfCases(0)) {
        SCOPED_TRACE(given.name);
        fs::remove_all(folder / "recorded");
        fs::remove_all(folder / "replay");
        arguments = given.arguments;
        user = given.user;
        const Left recorded = record(facilityWith(given.facility, given.faults, given.patch));
        if (recorded.journal.empty()) continue; // no console was needed
        expectSame(recorded, replay());
        ++recordings;
    }
    EXPECT_GT(recordings, 20U);
}

TEST_F(Recording, RedactedOfTheCasesOfWholeRuns)
{
    if (!kordTest::hasNamespaces()) GTEST_SKIP() << "a replay within a run needs namespaces";
    size_t recordings = 0;
    for (const kordTest::RunCase& given : sampleOfCases(15)) {
        SCOPED_TRACE(given.name);
        fs::remove_all(folder / "recorded");
        arguments = given.arguments;
        user = given.user;
        const json facility = facilityWith(given.facility, given.faults, given.patch);
        const Left recorded = record(facility, {"--redact", "--verify"});
        if (recorded.journal.empty()) continue;
        EXPECT_EQ(recorded.outcome.error.find("differs"), std::string::npos) << recorded.outcome.error;
        EXPECT_NE(recorded.outcome.status, 125);
        ++recordings;
    }
    EXPECT_GT(recordings, 20U);
}

} // namespace
