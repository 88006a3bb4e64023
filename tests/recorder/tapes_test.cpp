// What kord record makes of a tape, and what it says: the tapes are written by a script in place of a
// collector.

#include "recorder/builder.h"
#include "recorder/gatherer.h"

#include "consoleRun.h"
#include "parseJson.h"
#include "pattern.h"
#include "process.h"
#include "tempFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using nlohmann::json;
using Texts = std::vector<std::string>;

json sessionStart(int result)
{
    return {{"vale", "start_session"}, {"scope", 1}, {"result", result}};
}

json drives(const json& numbers)
{
    return {{"vale", "enumerate_resources"},
            {"scope", 2},
            {"class", "Orvik.TarnDDM"},
            {"selection", nullptr},
            {"result", 0},
            {"responses", json::array({json{{"handles", numbers}}})}};
}

json drive(int number, const std::string& serial)
{
    const json response = {{"handle", number},
                           {"attributes", json::array({json::array({"serialNumber", serial})})}};
    return {{"vale", "query_p_select"},
            {"scope", 2},
            {"class", "Orvik.TarnDDM"},
            {"selection", nullptr},
            {"attributes", Texts{"serialNumber"}},
            {"result", 0},
            {"responses", json::array({response})}};
}

json printed(const char* program, const std::string& output, const Texts& arguments = {})
{
    return {{"program", program}, {"arguments", arguments}, {"status", 0}, {"output", output}};
}

json stateOf(const std::string& system)
{
    return printed("/opt/brisk/bin/qmstat", "Operating\n", {"-r", "sys", "-m", system, "-F", "state"});
}

json collectorCalled(const std::string& system, const std::string& build)
{
    return {{"collector", {"/opt/tarnquay/bin/addTarnKord", "-t", system}},
            {"builds", {{"collector", build}, {"client", "c" + build}}}};
}

/// A folder where a script tells a tape when it is run for the first time, and perhaps another one later.
class Tapes : public testing::Test
{
protected:
    using Tape = std::vector<json>;

    kordTest::TempFolder temporary;
    const fs::path folder = temporary.path();
    const std::string recordedSystem = "9999-B2C*7ABCD12";
    const std::string otherSystem = "9999-B2C*7ABCD34";

    Tapes()
    {
        put("collect", "#!/bin/sh\n"
                       "echo \"an output\"; echo \"an error\" >&2\n"
                       "stat -c %a \"${KORD_CONSOLE_TAPE%/*}\" >modes\n"
                       "test -e ran && again=second; : >ran\n"
                       "cat ${again:-first} >>\"$KORD_CONSOLE_TAPE\"\n"
                       "exit 7\n");
        fs::permissions(folder / "collect", fs::perms::owner_all);
    }
    void put(const char* file, const std::string& text) const { std::ofstream(folder / file) << text; }
    void tell(const char* file, const Tape& tape) const
    {
        std::string text;
        for (const json& line : tape)
            text += line.dump() + '\n';
        put(file, text);
    }
    kordTest::Outcome record(Texts options, const Texts& arguments = {}) const
    {
        options.insert(options.begin(), {fs::path(KORD_BUILD_DIR) / "bin/kord", "record"});
        options.insert(options.end(), {"--output", "recorded.json", "--", "./collect"});
        options.insert(options.end(), arguments.begin(), arguments.end());
        fs::remove(folder / "ran");
        return kordTest::runProcess({.arguments = options, .folder = folder});
    }
    [[nodiscard]] json recorded() const
    {
        return kordTest::parseJson(kordTest::readFile(folder / "recorded.json").value_or("null"));
    }
};

/// What the program printed, and what kord says afterwards.
std::string said(const std::string& program, const std::string& log)
{
    return "an error\nkord: repeat it with: kord-console run --facility recorded.json --root DIR" + program +
           "\nkord: and see what happened: kord explain " + log + "\n";
}

TEST_F(Tapes, OfAProgramNameItAndTheSystemThatItAskedFor)
{
    tell("first", {sessionStart(0)});
    kordTest::Outcome outcome = record({}, {"a b", recordedSystem});
    EXPECT_EQ(outcome.status, 7);
    EXPECT_EQ(outcome.output, "an output\n");
    EXPECT_EQ(outcome.error, said(" -- ./collect 'a b' '" + recordedSystem + "'", "TRACE"));
    EXPECT_EQ(recorded()["recording"]["command"], json::array({"collect", "a b", recordedSystem}));
    EXPECT_FALSE(recorded()["recording"].contains("system"));
    EXPECT_EQ(recorded()["recording"]["status"], 7);
    tell("first", {printed("whoami", "root\n"), stateOf(recordedSystem), stateOf(otherSystem)});
    outcome = record({});
    EXPECT_EQ(outcome.error, said(" -- ./collect", "DIR/var/tarnquay/log/kord.7ABCD12.log"));
    EXPECT_EQ(recorded()["recording"]["system"], recordedSystem);
}

TEST_F(Tapes, OfOneCollectorAreItsOwn)
{
    tell("first", {sessionStart(0), collectorCalled(recordedSystem, "0a")});
    EXPECT_EQ(record({}, {"a b"}).error, said("", "DIR/var/tarnquay/log/kord.7ABCD12.log"));
    json told = recorded()["recording"];
    EXPECT_EQ(told["command"], json::array({"addTarnKord", "-t", recordedSystem}));
    EXPECT_EQ(told["system"], recordedSystem);
    EXPECT_EQ(told["versions"]["collector"], "0a");
    EXPECT_EQ(told["versions"]["client"], "c0a");
    tell("first",
         {sessionStart(0), collectorCalled(recordedSystem, "0a"), collectorCalled(otherSystem, "0b")});
    EXPECT_EQ(record({}).error, said(" -- ./collect", "TRACE"));
    told = recorded()["recording"];
    EXPECT_EQ(told["command"], json::array({"collect"}));
    EXPECT_EQ(told["versions"]["collector"], "0a");
}

/// Of a program that is no collector nobody knows what its arguments tell.
TEST_F(Tapes, RedactedNameNothingButTheProgram)
{
    tell("first", {stateOf(recordedSystem)});
    const kordTest::Outcome outcome = record({"--redact"}, {"Hall-7", recordedSystem});
    EXPECT_EQ(recorded()["recording"]["command"], json::array({"collect"}));
    const std::string system = recorded()["recording"]["system"];
    EXPECT_EQ(system.substr(0, 9), "9999-B2C*");
    EXPECT_NE(system, recordedSystem);
    EXPECT_EQ(outcome.error, said(" -- ./collect Hall-7 '" + system + "'",
                                  "DIR/var/tarnquay/log/kord." + system.substr(9) + ".log"));
    tell("first", {sessionStart(0), collectorCalled(recordedSystem, "0a")});
    record({"--redact"});
    const json command = recorded()["recording"]["command"];
    EXPECT_EQ(command, json::array({"addTarnKord", "-t", recorded()["recording"]["system"]}));
    EXPECT_NE(command[2], recordedSystem);
}

/// A message is that of the failed call before it; none when the client had none, or nothing failed.
TEST_F(Tapes, TellTheMessageOfAFailedCall)
{
    const auto message = [](const json& text) { return json{{"vale", "get_errmsg"}, {"message", text}}; };
    const auto rule = [](const json& fails) {
        return json::array({{{"call", "start_session"}, {"scope", 1}, {"fails", fails}}});
    };
    const json wellAnswered = {{"vale", "end_session"}, {"scope", 1}, {"result", 0}};
    const std::vector<std::pair<Tape, json>> cases = {
        {{message("early\n"), sessionStart(5)}, rule({{"code", 5}})},
        {{sessionStart(5), message(nullptr)}, rule({{"code", 5}})},
        {{sessionStart(5), message("late\n")}, rule({{"code", 5}, {"message", "late\n"}})},
        {{sessionStart(1), wellAnswered, message("late\n")}, rule({{"code", 1}, {"message", "late\n"}})},
        {{sessionStart(0), message("no failure\n")}, json::array()},
    };
    for (const auto& [tape, faults] : cases) {
        tell("first", tape);
        const kordTest::Outcome outcome = record({});
        EXPECT_EQ(outcome.status, 7) << outcome.error;
        EXPECT_EQ(recorded()["faults"], faults) << json(tape);
    }
}

/// A resource has what the selection that found it demands, whatever its answer says then.
TEST_F(Tapes, GiveAResourceWhatItWasFoundBy)
{
    json line = drive(1, "ANSWERED");
    line["scope"] = 4;
    line["selection"] = "serialNumber=\"DEMANDED\"";
    tell("first", {line});
    record({});
    EXPECT_EQ(recorded()["resources"]["Orvik.TarnDDM"][0]["serialNumber"], "DEMANDED");
    line["attributes"] = json::array({"partNumber"});
    line["responses"][0]["attributes"] = json::array();
    line["selection"] = "serialNumber=\"A\" && (partNumber=\"B\" || partNumber=\"C\") && diskCapacity=7";
    tell("first", {line});
    record({});
    EXPECT_EQ(recorded()["resources"]["Orvik.TarnDDM"][0],
              json({{"serialNumber", "A"}, {"partNumber", "B"}, {"diskCapacity", 7}}));
}

TEST_F(Tapes, ThatAreNoneEndTheRecording)
{
    const kordTest::Pattern cut(
        "an error\nkord: (/tmp/kord-record\\.[A-Za-z0-9]{6})/tape\\.jsonl: the recording is "
        "cut: is the disk full\\?\n");
    put("first", sessionStart(0).dump() + "\n{\"vale\": \"start");
    const kordTest::Outcome outcome = record({});
    EXPECT_EQ(outcome.status, 125);
    const kordTest::Pattern::Match parts = cut.match(outcome.error);
    ASSERT_FALSE(parts.empty()) << outcome.error;
    EXPECT_FALSE(fs::exists(parts[1]));
    EXPECT_EQ(kordTest::readFile(folder / "modes"), "700\n"); // the owner's alone
    put("first", "");
    EXPECT_EQ(record({}).error, "an error\nkord: ./collect made no call that could be recorded\n");
    EXPECT_FALSE(fs::exists(folder / "recorded.json"));
}

/// No facility of the simulated console can have such an answer.
TEST_F(Tapes, ThatNoConsoleCanRepeatAreNotKept)
{
    json line = sessionStart(5);
    line["scope"] = "everywhere";
    tell("first", {line});
    const kordTest::Outcome outcome = record({});
    EXPECT_EQ(outcome.status, 125);
    EXPECT_TRUE(outcome.error.starts_with("an error\nkord: the recording cannot be replayed: "))
        << outcome.error;
    EXPECT_FALSE(fs::exists(folder / "recorded.json"));
}

/// The replay may number resources in another way, and hand programs other arguments; nothing else.
TEST_F(Tapes, AreVerifiedCallByCall)
{
    if (!kordTest::hasNamespaces()) GTEST_SKIP() << "a replay needs namespaces";
    struct Case {
        Tape first;
        Tape second;
        std::string difference;
    };
    const std::string serial = "\u00E9" + std::string(2000, 'x');
    json longLine = drive(1, serial);
    longLine["responses"][0].erase("handle");
    json counted = drives({1, 2});
    counted["responses"][0]["handles"] = 2;
    json one = counted;
    one["responses"][0]["handles"] = 1;
    const std::string same;
    const json session = sessionStart(0);
    const std::vector<Case> cases = {
        {{session, drives({1, 2})}, {session, drives({4, 9})}, same},
        {{drives({1, 2}), drive(1, "a")}, {drives({1, 2}), drive(2, "a")}, same},
        {{printed("whoami", "root\n", {"a"})}, {printed("whoami", "root\n", {"b"})}, same},
        {{session}, {session, sessionStart(5)}, "2 of 1: " + sessionStart(5).dump()},
        {{session, sessionStart(5)}, {session}, "2 of 2: " + sessionStart(5).dump()},
        {{session, session, drives({1, 2})}, {session, session, drives({1})}, "3 of 3: " + counted.dump()},
        {{drives({1})}, {drives({1, 2})}, "1 of 1: " + one.dump()},
        {{drive(1, serial)}, {drive(1, "a")}, "1 of 1: " + longLine.dump().substr(0, 1000)},
    };
    for (const Case& given : cases) {
        tell("first", given.first);
        tell("second", given.second);
        fs::remove(folder / "recorded.json");
        const kordTest::Outcome outcome = record({"--verify"});
        const bool differs = !given.difference.empty();
        EXPECT_EQ(outcome.error, differs ? "an error\nkord: the replay of the recording differs at line " +
                                               given.difference + '\n'
                                         : said(" -- ./collect", "TRACE"));
        EXPECT_EQ(outcome.output, "an output\n");
        EXPECT_EQ(outcome.status, differs ? 125 : 7);
        EXPECT_NE(fs::exists(folder / "recorded.json"), differs);
    }
}

TEST_F(Tapes, AreRedactedByAMapThatCanBeReadOrMade)
{
    tell("first", {drive(1, "7ABCD12")});
    ASSERT_EQ(record({"--redact", "--map", "map.json"}).status, 7);
    struct stat status {
    };
    ASSERT_EQ(stat((folder / "map.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    const json pairs = kordTest::parseJson(kordTest::readFile(folder / "map.json").value());
    EXPECT_EQ(recorded()["resources"]["Orvik.TarnDDM"][0]["serialNumber"], pairs["7ABCD12"]);
    put("file", "[]");
    fs::create_directory(folder / "folder");
    for (const auto& [map, reason] :
         {std::pair("file/map.json", "Not a directory"), std::pair("folder", "Is a directory"),
          std::pair("file", "no JSON object of originals and stand-ins")}) {
        const kordTest::Outcome outcome = record({"--redact", "--map", map});
        EXPECT_EQ(outcome.status, 125);
        EXPECT_EQ(outcome.error, "kord: " + std::string(map) + ": " + reason + "\n");
        EXPECT_FALSE(fs::exists(folder / "ran")); // nothing was run in vain
    }
}

// ---- what is gathered ----

json valueOf(const char* className, const char* attribute, const json& value)
{
    const json response = {{"handle", 1}, {"attributes", json::array({json::array({attribute, value})})}};
    return {{"vale", "query_p_select"}, {"scope", 2},  {"class", className},
            {"selection", nullptr},     {"result", 0}, {"responses", json::array({response})}};
}

json gatheredFrom(const std::vector<json>& tape)
{
    recorder::Gatherer gatherer;
    for (const recorder::Call& call : recorder::readCalls(tape))
        gatherer.take(call);
    return kordTest::parseJson(gatherer.facility().dump());
}

/// A facility file could not have any other.
TEST(Gathered, AreValuesOfTheTypesThatConsolesHave)
{
    struct Case {
        const char* className;
        const char* attribute;
        std::vector<json> fitting;
        std::vector<json> others;
    };
    const std::vector<Case> cases = {
        {"Orvik.TarnStorageFacility",
         "PowerState",
         {0, -2147483648LL, 2147483647},
         {-2147483649LL, 2147483648LL, "1", 1.5, nullptr, json::array({1})}},
        {"Orvik.TarnRack", "rackIdentifier", {0, 4294967295LL}, {-1, 4294967296LL, "1", 1.5}},
        {"Orvik.TarnIODrawer",
         "interfaceIdentifier",
         {json::array(), json::array({1, -1})},
         {1, json::array({1, "a"}), json::array({2147483648LL})}},
        {"Orvik.TarnArray",
         "arraySiteConfiguration",
         {json::array(), json::array({"a", "b"})},
         {"a", json::array({"a", 1})}},
        {"Orvik.TarnServerPartition",
         "runningImageLevel",
         {json::array({0, "5.1"})},
         {"5.1", json::array({nullptr})}},
        {"Orvik.ManagedNode", "HWModel", {"", "a"}, {1, json::array({"a"}), nullptr}},
        {"Orvik.ManagedNode", "noAttribute", {}, {"a"}},
    };
    for (const Case& given : cases) {
        for (const json& value : given.fitting) {
            const json resources =
                gatheredFrom({valueOf(given.className, given.attribute, value)})["resources"];
            EXPECT_EQ(resources[given.className][0], json({{given.attribute, value}}));
        }
        for (const json& value : given.others) {
            const json resources =
                gatheredFrom({valueOf(given.className, given.attribute, value)})["resources"];
            EXPECT_EQ(resources[given.className][0], json::object()) << given.attribute << ' ' << value;
        }
    }
    EXPECT_EQ(gatheredFrom({valueOf("Orvik.NoClass", "HWModel", "a")})["resources"], json::object());
}

/// What was found between others stands between them; a second answer brings none that the first had not.
TEST(Gathered, AreResourcesInTheirOrder)
{
    const auto found = [](const std::vector<int>& numbers, const json& selection) {
        json line = drives({1});
        line["vale"] = "query_p_select";
        line["selection"] = selection;
        line["responses"] = json::array();
        for (const int number : numbers)
            line["responses"].push_back(
                {{"handle", number},
                 {"attributes", json::array({json::array({"serialNumber", std::to_string(number)})})}});
        return line;
    };
    const auto serials = [](const std::vector<json>& tape) {
        std::string text;
        const json facility = gatheredFrom(tape);
        for (const json& resource : facility["resources"]["Orvik.TarnDDM"])
            text += resource["serialNumber"].get<std::string>();
        return text;
    };
    EXPECT_EQ(serials({found({1, 2, 3}, nullptr)}), "123");
    EXPECT_EQ(serials({found({1, 3}, nullptr), found({1, 2, 3}, "diskCapacity=1")}), "123");
    EXPECT_EQ(serials({found({1, 2}, nullptr), found({3, 2}, "diskCapacity=1")}), "132");
    EXPECT_EQ(serials({found({2}, nullptr), found({2, 3}, "diskCapacity=1")}), "23");
    EXPECT_EQ(serials({found({1, 2}, nullptr), found({3, 4, 5}, nullptr)}), "12");
}

TEST(Gathered, IsTheStateOfTheSystemThatWasAskedFor)
{
    const Texts asks = {"-r", "sys", "-m", "9999-B2C*7ABCD12", "-F", "state"};
    EXPECT_EQ(recorder::systemAskedFor(asks), asks[3]);
    for (size_t i = 0; i < asks.size(); ++i) {
        Texts other = asks;
        other[i] = "other";
        EXPECT_EQ(recorder::systemAskedFor(other), i == 3 ? "other" : "") << i;
        other = asks;
        other.resize(i);
        EXPECT_EQ(recorder::systemAskedFor(other), "");
    }
    Texts more = asks;
    more.emplace_back("more");
    EXPECT_EQ(recorder::systemAskedFor(more), "");
}

TEST(Gathered, IsTheFirstRegularAnswerOfAProgram)
{
    const std::string system = "9999-B2C*7ABCD12";
    const char* vpd = "/opt/brisk/bin/qconvpd";
    const auto state = [&](const std::string& output) {
        json line = stateOf(system);
        line["output"] = output;
        return line;
    };
    json failed = printed(vpd, "none\n");
    failed["status"] = 1;
    const json facility =
        gatheredFrom({failed, printed(vpd, "a\n"), printed(vpd, "b\nc\n"), printed("whoami", "root\n"),
                      printed("whoami", "other\n"), state("one\ntwo\n"), state("one\n"), state("two\n")});
    EXPECT_EQ(facility["console"], json({{"user", "root"}, {"vpd", {"a"}}}));
    EXPECT_EQ(facility["systems"], json({{system, "one"}}));
}

/// For whoever reads it, compares two or looks for a line: what is one of many has a line.
TEST(Gathered, IsWrittenALineEach)
{
    recorder::Origin origin;
    origin.command = {"addTarnKord", "-t", "9999-B2C*7ABCD12"};
    origin.system = "9999-B2C*7ABCD12";
    origin.date = "2026-11-22T10:00:00Z";
    origin.status = 3;
    origin.versions = {{"machine", "Linux"}, {"kord", "1"}};
    json racks = valueOf("Orvik.TarnRack", "rackIdentifier", 7);
    racks["responses"].push_back(racks["responses"][0]);
    racks["responses"][1]["handle"] = 2;
    racks["attributes"] = json::array({"rackIdentifier"});
    json node = valueOf("Orvik.ManagedNode", "HWModel", "9999-B2C");
    node["scope"] = 1;
    node["attributes"] = json::array({"HWModel"});
    const std::vector<json> tape = {
        printed("whoami", "root\n"), stateOf(origin.system), sessionStart(5), sessionStart(6), racks, node};
    EXPECT_EQ(recorder::toText(recorder::buildFacility(origin, recorder::readCalls(tape))), R"({
  "recording": {"command":["addTarnKord","-t","9999-B2C*7ABCD12"],"system":"9999-B2C*7ABCD12","date":"2026-11-22T10:00:00Z","status":3,"versions":{"kord":"1","machine":"Linux"}},
  "console": {"user":"root"},
  "systems": {"9999-B2C*7ABCD12":"Operating"},
  "resources": {
    "Orvik.TarnRack": [
      {"rackIdentifier":7},
      {"rackIdentifier":7}
    ],
    "Orvik.ManagedNode": [
      {"HWModel":"9999-B2C"}
    ]
  },
  "faults": [
    {"call":"start_session","fails":{"code":5},"nth":1,"scope":1},
    {"call":"start_session","fails":{"code":6},"nth":2,"scope":1}
  ]
}
)");
    origin.system.clear();
    EXPECT_EQ(recorder::toText(recorder::buildFacility(origin, {})), R"({
  "recording": {"command":["addTarnKord","-t","9999-B2C*7ABCD12"],"date":"2026-11-22T10:00:00Z","status":3,"versions":{"kord":"1","machine":"Linux"}},
  "console": {},
  "systems": {},
  "resources": {
  },
  "faults": []
}
)");
}

} // namespace
