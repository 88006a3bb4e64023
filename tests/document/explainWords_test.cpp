// The words of an explanation, one by one, and whole explanations word for word.

#include "document/explain.h"
#include "document/explainWords.h"
#include "document/selection.h"
#include "parseJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace
{

using document::answerWords;
using document::askedWords;
using document::missingBy;
using document::partWords;
using document::Problem;
using document::Severity;
using document::TracedRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

Problem problemOf(const std::string& kind, std::optional<int64_t> number = {},
                  const std::string& message = {})
{
    Problem problem;
    problem.kind = kind;
    problem.number = number;
    problem.message = message;
    problem.attributes = {"one", "two"};
    return problem;
}

TEST(ExplainWords, SayWhatCameBack)
{
    Problem enumeration = problemOf("answeredEmpty");
    enumeration.call = "enumeration";
    Problem action = problemOf("unexpectedAnswer", 5);
    action.call = "action";
    Problem silentAction = problemOf("unexpectedAnswer", 0);
    silentAction.call = "action";
    Problem numberless = silentAction;
    numberless.number.reset();
    const std::vector<std::pair<Problem, std::string>> cases = {
        {problemOf("callFailed", 7, "gone \n\n"), "the call failed with code 7, \"gone\""},
        {problemOf("callFailed", -1), "the call failed with code -1, without a message"},
        {problemOf("callFailed"), "the call failed with code of its own, without a message"},
        {problemOf("nothingFound", 0), "nothing was found"},
        {problemOf("responseInError", 0x4000A, "no domain\n"),
         "the first answer is in error 0x4000a (262154), \"no domain\""},
        {problemOf("responseInError", -1), "the first answer is in error 0xffffffff (-1), without a message"},
        {problemOf("responseInError", 0x12345678),
         "the first answer is in error 0x12345678 (305419896), without a message"},
        {problemOf("responseInError", 0x90BCDEF),
         "the first answer is in error 0x90bcdef (151768559), without a message"},
        {problemOf("answeredEmpty"), "the first answer has no attributes"},
        {enumeration, "the first answer holds no resource"},
        {problemOf("unexpectedAnswer", 2), "2 were found where there must be one"},
        {action, "the action's return code is 5"},
        {silentAction, "the action gave no result"},
        {numberless, "the action gave no result"},
        {problemOf("fewerAttributes", 1), "the first answer has 1 of the 2 attributes"},
        {problemOf("valueMissing"), "no value for one, two"},
        {problemOf("notOnline", 2), "status 2, where 1 is online"},
        {problemOf("notOnline", 0),
         "status 0, where 1 is online; an answer without a status reads as 0, too"},
        {problemOf("sessionFailed", 9, "none"), "the call failed with code 9, \"none\""},
        {problemOf("sessionEndFailed", 9, "none"), "the call failed with code 9, \"none\""},
        {problemOf("sessionNotOpened"),
         "the session never opened: it was not ended with the others. Its start gave a code other than 0 and"
         " -1, which the collector passes over; no line tells which"},
        {problemOf("notOperating", {}, "Standby"), "state \"Standby\", where \"Operating\" must be"},
        {problemOf("programFailed", 127), "the command ended with status 127"},
        {problemOf("programFailed", -1), "the command could not be run"},
        {problemOf("programSilent"), "it printed nothing that was looked for"},
        {problemOf("programUnended"), "it printed no whole line"},
        {problemOf("programUnread"), "what it printed could not be read"},
        {problemOf("programBlank"), "the first line that it printed is empty"},
        {problemOf("programTalkative", 3), "it printed 3 lines; the first one was taken"},
        {problemOf("documentNotStarted"), "the document could not be started"},
        {problemOf("documentNotStarted", {}, "/a\x1b/x.xml"), "/a\\x1B/x.xml could not be opened"},
        {problemOf("outOfMemory"), "memory ran out"},
        {problemOf("noTypeModel", {}, "*7ABCD12"), "no type-model in the MTMS \"*7ABCD12\""},
        {problemOf("eventUnexplained"), "an event was filed; no line tells why"},
        {problemOf("of a later time"), "of a later time"},
    };
    for (const auto& [problem, words] : cases)
        EXPECT_EQ(answerWords(problem), words);
}

TEST(ExplainWords, SayWhatWasAskedFor)
{
    const auto asked = [](auto change) {
        Problem problem;
        change(problem);
        return askedWords(problem);
    };
    EXPECT_EQ(asked([](Problem&) {}), "");
    EXPECT_EQ(asked([](Problem& of) { of.call = "session", of.session = "local"; }), "local session");
    EXPECT_EQ(asked([](Problem& of) { of.call = "program", of.program = "whoami\n"; }), "whoami\\n");
    EXPECT_EQ(asked([](Problem& of) { of.call = "file"; }), "the document's file");
    const auto drives = [](Problem& of) {
        of.function = "queryDDM", of.className = "Orvik.TarnDDM";
        of.call = "persistent query", of.session = "domain";
    };
    EXPECT_EQ(asked(drives), "the drives: Orvik.TarnDDM, persistent query, domain session");
    EXPECT_EQ(asked([&](Problem& of) { drives(of), of.kind = "valueMissing"; }), "Orvik.TarnDDM");
    EXPECT_EQ(asked([&](Problem& of) { drives(of), of.function = "such"; }),
              "Orvik.TarnDDM, persistent query, domain session");
    EXPECT_EQ(asked([&](Problem& of) { drives(of), of.call = "action", of.action = "run"; }),
              "the drives: Orvik.TarnDDM, action run, domain session");
}

TEST(ExplainWords, NameThePart)
{
    Problem problem;
    EXPECT_EQ(partWords(problem), "");
    problem.part = {{.what = "rack", .name = "R1"}, {.what = "image", .name = "9999\x1b"}};
    EXPECT_EQ(partWords(problem), "rack R1, image 9999\\x1B");
}

TEST(ExplainWords, SayWhatIsMissing)
{
    struct Case {
        Severity severity;
        std::string phase;
        std::string function;
        std::string missing;
        bool documentStarted = true;
        bool standsInstead = false;
    };
    const std::string all = "all: no document was started, one of an earlier run lies there as it was";
    const std::string behind = "what comes behind it in the document: the rest of the ";
    const std::vector<Case> cases = {
        {Severity::fatal, "sessions", "", all, false},
        {Severity::fatal, "domain session", "", ""},
        {Severity::fatal, "final checks", "", "nothing: the document was written before"},
        {Severity::fatal, "processor complexes", "",
         behind + "processor complexes, the I/O enclosures, the storage enclosures, the racks, the consoles"
                  " and the partitions"},
        {Severity::fatal, "storage enclosures", "",
         behind + "storage enclosures, the racks, the consoles and the partitions"},
        {Severity::fatal, "consoles", "", behind + "consoles and the partitions"},
        {Severity::fatal, "partitions", "", behind + "partitions"},
        {Severity::filed, "storage enclosures", "queryDDM", "the drives of rack R1"},
        {Severity::minor, "storage enclosures", "queryBaffle", "the baffles of rack R1"},
        {Severity::minor, "racks", "queryPPS",
         "the power supplies of rack R1; one without values stands there", true, true},
        {Severity::minor, "storage enclosures", "queryStorageEnclosure",
         "the storage enclosures of rack R1, and those of the images behind it in this rack"},
        {Severity::filed, "racks", "queryFanSense",
         "the fan sense cards of rack R1, as often as images still were to come"},
        {Severity::minor, "racks", "queryFanTray",
         "the fan trays of rack R1, as often as images still were to come"},
        {Severity::minor, "partitions", "enumerateVolumeGroup",
         "nothing, but the count of the volume groups (o0) of rack R1 stands as 0"},
        {Severity::filed, "partitions", "querySFImageWWNN",
         "the rest of the partition, and the partitions behind it"},
        {Severity::minor, "partitions", "querySFImageWWNN", "the node name of rack R1"},
        {Severity::minor, "partitions", "such", ""},
        {Severity::minor, "final checks", "queryDDM", ""},
        {Severity::noted, "racks", "queryPPS", ""},
    };
    for (const Case& one : cases) {
        Problem problem;
        problem.severity = one.severity;
        problem.phase = one.phase;
        problem.function = one.function;
        problem.standsInstead = one.standsInstead;
        problem.part = {{.what = "rack", .name = "R1"}};
        TracedRun run;
        run.documentStarted = one.documentStarted;
        EXPECT_EQ(missingBy(run, problem), one.missing) << one.phase << ", " << one.function;
        problem.kind = "documentNotStarted";
        EXPECT_EQ(missingBy(run, problem), "all: this run left no document");
    }
}

// ---- whole explanations ----

/// A run of which everything is told.
TracedRun wholeRun()
{
    TracedRun run;
    run.number = 2;
    run.firstLine = 11;
    run.lastLine = 42;
    run.started = "112126 13:41:03";
    run.ended = "112126 13:41:09";
    run.system = "9999-B2C*7ABCD12";
    run.option = "-t";
    run.user = "root";
    run.phase = "final checks";
    run.end = document::RunEnd::closed;
    run.status = 3;
    run.documentStarted = true;
    return run;
}

const std::string heading =
    "Run 2 of 3 for 9999-B2C*7ABCD12, 2026-11-21 13:41:03 to 13:41:09, option -t, user"
    " root: lines 11 to 42.\n";

Problem drivesMissing()
{
    Problem problem;
    problem.line = 30;
    problem.stamp = "112126 13:41:05";
    problem.code = "0302";
    problem.text = "no res  array_cnt_ddm=0";
    problem.kind = "nothingFound";
    problem.severity = Severity::filed;
    problem.phase = "storage enclosures";
    problem.function = "queryDDM";
    problem.call = "persistent query";
    problem.className = "Orvik.TarnDDM";
    problem.session = "domain";
    problem.selection = "rackNumber=\"R1\"";
    problem.attributes = {"locationCode", "ecLevel"};
    problem.part = {{.what = "rack", .name = "R1"}};
    problem.number = 0;
    problem.usualCause = "it is empty";
    problem.advice = "see to it";
    return problem;
}

document::FiledEvent filed(const std::string& referenceCode, const std::string& text)
{
    document::FiledEvent event;
    event.line = 31;
    event.stamp = "112126 13:41:06";
    event.referenceCode = referenceCode;
    event.name = "queryDDM";
    event.type = "e";
    event.text = text;
    return event;
}

TEST(Explanation, OfARunThatEndedWell)
{
    EXPECT_EQ(document::explanation(wholeRun(), 3), heading + "It ended well, with status 3.\n");
}

TEST(Explanation, TellsEverythingOfAProblem)
{
    TracedRun run = wholeRun();
    Problem problem = drivesMissing();
    problem.events = {filed("BED00001", "queryDDM : none\x1b"), filed("BED00002", "x")};
    problem.events[0].toolStatus = 4;
    run.problems = {problem};
    EXPECT_EQ(document::explanation(run, 3),
              heading +
                  "It ended with status 3, but events were filed.\n"
                  "\n"
                  "One failure that did not end it\n"
                  "  asked for   the drives: Orvik.TarnDDM, persistent query, domain session\n"
                  "  of          rack R1\n"
                  "  selection   rackNumber=\"R1\"\n"
                  "  attributes  locationCode, ecLevel\n"
                  "  came back   nothing was found\n"
                  "  filed       BED00001 \"queryDDM : none\\x1B\", which could not be filed: the event "
                  "tool ended with status 4; BED00002 \"x\"\n"
                  "  missing     the drives of rack R1\n"
                  "  usually     it is empty\n"
                  "  to do       see to it\n"
                  "  line        30, 13:41:05: 0302 no res  array_cnt_ddm=0\n");
}

TEST(Explanation, TellsAKnownCauseForTheUsualOne)
{
    TracedRun run = wholeRun();
    Problem problem = drivesMissing();
    problem.cause = "line 5 tells it";
    problem.workedOut = true;
    run.problems = {problem};
    const std::string text = document::explanation(run, 0);
    EXPECT_THAT(text, HasSubstr("Run 2 for 9999"));
    EXPECT_THAT(text, HasSubstr("\n  selection   rackNumber=\"R1\"  (worked out, no line tells it)\n"));
    EXPECT_THAT(text, HasSubstr("\n  cause       line 5 tells it\n  to do "));
    EXPECT_THAT(text, Not(HasSubstr("usually")));
    run.problems[0].kind = "valueMissing"; // its attributes are what came back
    EXPECT_THAT(document::explanation(run, 0), Not(HasSubstr("attributes")));
}

TEST(Explanation, TellsTheSameOnceWithItsPlaces)
{
    TracedRun run = wholeRun();
    const auto places = [&](size_t count) {
        run.problems.assign(count, drivesMissing());
        for (size_t i = 0; i < count; ++i) {
            run.problems[i].part[0].name = std::to_string(i + 1);
            run.problems[i].severity = Severity::minor;
        }
        run.minorErrorsTold = true;
        const std::string text = document::explanation(run, 3);
        const size_t at = text.find("  and ");
        return std::pair(text.substr(heading.size(), text.find("\n  asked") - heading.size()),
                         at == std::string::npos ? "" : text.substr(at));
    };
    const std::string minor = "It ended with status 3 and minor errors.\n\n";
    EXPECT_EQ(places(1), std::pair(minor + "One minor error", std::string()));
    EXPECT_EQ(places(2),
              std::pair(minor + "2 minor errors", std::string("  and         1 more of the same: rack 2\n")));
    EXPECT_EQ(
        places(6),
        std::pair(minor + "6 minor errors",
                  std::string("  and         5 more of the same: rack 2; rack 3; rack 4; rack 5; rack 6\n")));
    EXPECT_EQ(places(7),
              std::pair(minor + "7 minor errors",
                        std::string("  and         6 more of the same: rack 2; rack 3; rack 4; rack 5;"
                                    " rack 6; rack 7\n")));
    for (int rack = 2; rack <= 300; ++rack)
        EXPECT_THAT(places(300).second,
                    HasSubstr(" rack " + std::to_string(rack) + (rack < 300 ? ";" : "\n")));
}

/// What makes problems of one sort: everything but the place.
TEST(Explanation, TellsSortsApart)
{
    const std::vector<void (*)(Problem&)> changes = {
        [](Problem& of) { of.kind = "callFailed"; },
        [](Problem& of) { of.function = "queryFCIC"; },
        [](Problem& of) { of.className = "Orvik.TarnFCIC"; },
        [](Problem& of) { of.attributes = {"locationCode"}; },
        [](Problem& of) { of.session = "local"; },
        [](Problem& of) { of.number = 1; },
    };
    for (const auto change : changes) {
        TracedRun run = wholeRun();
        run.problems = {drivesMissing(), drivesMissing()};
        change(run.problems[1]);
        const std::string text = document::explanation(run, 0);
        EXPECT_THAT(text, Not(HasSubstr("more of the same")));
        EXPECT_THAT(text, HasSubstr("\n2 failures that did not end it\n"));
        EXPECT_THAT(text, HasSubstr("array_cnt_ddm=0\n\n  asked for"));
    }
}

TEST(Explanation, TellsEverySort)
{
    TracedRun run = wholeRun();
    for (int i = 0; i < 300; ++i) {
        run.problems.push_back(drivesMissing());
        run.problems.back().className = "Class" + std::to_string(i);
    }
    run.furtherProblems = 7;
    const std::string text = document::explanation(run, 0);
    for (int i = 0; i < 300; ++i)
        EXPECT_THAT(text, HasSubstr("Class" + std::to_string(i) + ","));
    EXPECT_THAT(text, testing::EndsWith("\n\nAnd 7 more.\n"));
    run.furtherProblems = 1;
    EXPECT_THAT(document::explanation(run, 0), testing::EndsWith("\n\nAnd 1 more.\n"));
    run.furtherProblems = 0;
    EXPECT_THAT(document::explanation(run, 0), testing::Not(HasSubstr(" more.\n")));
}

TEST(Explanation, HasASectionForEachSeverity)
{
    TracedRun run = wholeRun();
    run.status = -1;
    for (const Severity severity : {Severity::noted, Severity::minor, Severity::filed, Severity::fatal}) {
        for (int i = 0; i < 2; ++i) {
            run.problems.push_back(drivesMissing());
            run.problems.back().severity = severity;
            run.problems.back().number = i;
        }
    }
    const std::string text = document::explanation(run, 3);
    std::vector<std::string> titles;
    for (size_t at = 0; (at = text.find("\n\n", at)) != std::string::npos; ++at) {
        const std::string title = text.substr(at + 2, text.find('\n', at + 2) - at - 2);
        if (!title.starts_with(' ')) titles.push_back(title);
    }
    EXPECT_THAT(text, testing::StartsWith(heading + "It failed (final checks), with status 255.\n\n"));
    EXPECT_THAT(titles, ElementsAre("2 failures", "2 failures that did not end it", "2 minor errors",
                                    "2 things passed over by the collector"));
    run.problems.erase(run.problems.begin() + 1, run.problems.end());
    EXPECT_THAT(document::explanation(run, 3), HasSubstr("\nPassed over by the collector\n"));
    run.problems[0].severity = Severity::fatal;
    EXPECT_THAT(document::explanation(run, 3), HasSubstr("\nWhat ended it\n"));
}

TEST(Explanation, SaysHowARunEnded)
{
    struct Case {
        void (*change)(TracedRun&);
        std::string text;
    };
    const std::string middle = " in the middle (racks), with line 42 at 13:41:09";
    const std::string killed = "It was killed, or its lines could not be written.\n";
    const std::vector<Case> cases = {
        {[](TracedRun& of) { of.status = -1; },
         "It failed (racks), with status 255.\nNo line that is left tells why.\n"},
        {[](TracedRun& of) { of.minorErrorsTold = true; },
         "It ended with status 3 and minor errors.\nNo line that is left tells which minor errors they"
         " were.\n"},
        {[](TracedRun& of) { of.status.reset(), of.end = document::RunEnd::brokenOff; },
         "It broke off" + middle + ": another run came behind it. " + killed},
        {[](TracedRun& of) { of.status.reset(), of.end = document::RunEnd::open; },
         "It has not ended: the log stops" + middle +
             ". It still runs, or it was killed, or its lines could not be written.\n"},
        {[](TracedRun& of) { of.status.reset(), of.end = document::RunEnd::open, of.lastLineCut = true; },
         "It has not ended: the log stops" + middle +
             ". It still runs, or it was killed, or its lines could not be written. The log ends inside a"
             " line, as a full disk leaves it.\n"},
        {[](TracedRun& of) { of.strangeLines = 1; },
         "It ended well, with status 3.\n1 line is not as the collector writes them.\n"},
        {[](TracedRun& of) { of.strangeLines = 2, of.mixedWith = 3; },
         "It ended well, with status 3.\nRun 3 wrote to the log at the same time. No line says which run it"
         " is of: what is told here may be the other's.\n2 lines are not as the collector writes them.\n"},
    };
    for (const Case& one : cases) {
        TracedRun run = wholeRun();
        run.phase = "racks";
        one.change(run);
        EXPECT_EQ(document::explanation(run, 3), heading + one.text);
    }
}

TEST(Explanation, OfARunWhoseStartIsLost)
{
    TracedRun run = wholeRun();
    run.startLost = true;
    run.system.clear();
    run.option.clear();
    run.user.clear();
    EXPECT_EQ(
        document::explanation(run, 1),
        "Run 2 of 1, of a system that the log no longer tells, from before 2026-11-21 13:41:03 to 13:41:09:"
        " lines 11 to 42.\n"
        "It ended well, with status 3.\n"
        "The log has lost the start of this run; what went wrong before its first line is not told.\n");
}

// ---- JSON ----

TEST(ExplanationJson, TellsEverythingOfARun)
{
    using json = nlohmann::ordered_json; // people read it too
    TracedRun run = wholeRun();
    run.build = "155968";
    run.console = "4821-K7Q-10ABCDE";
    run.mixedWith = 4;
    run.strangeLines = 5;
    run.furtherProblems = 6;
    run.lastLineCut = true;
    run.startLost = true;
    Problem problem = drivesMissing();
    problem.message = "m\u00e9";
    problem.program = "p";
    problem.action = "a";
    problem.cause = "c";
    problem.events = {filed("BED00001", "t")};
    run.events = problem.events;
    problem.events[0].toolStatus = 4;
    problem.events[0].command = "tool";
    run.problems = {problem};
    const json event = {{"line", 31},
                        {"time", "2026-11-21T13:41:06"},
                        {"referenceCode", "BED00001"},
                        {"name", "queryDDM"},
                        {"type", "e"},
                        {"text", "t"},
                        {"filed", true}};
    json failedEvent = event;
    failedEvent.update({{"filed", false}, {"toolStatus", 4}, {"command", "tool"}});
    const json told = {{"line", 30},
                       {"time", "2026-11-21T13:41:05"},
                       {"code", "0302"},
                       {"text", "no res  array_cnt_ddm=0"},
                       {"kind", "nothingFound"},
                       {"severity", "filed"},
                       {"phase", "storage enclosures"},
                       {"call", "persistent query"},
                       {"function", "queryDDM"},
                       {"class", "Orvik.TarnDDM"},
                       {"session", "domain"},
                       {"program", "p"},
                       {"action", "a"},
                       {"selection", "rackNumber=\"R1\""},
                       {"selectionTraced", true},
                       {"attributes", {"locationCode", "ecLevel"}},
                       {"part", json::array({{{"what", "rack"}, {"name", "R1"}}})},
                       {"number", 0},
                       {"message", "m\u00e9"},
                       {"answer", "nothing was found"},
                       {"events", json::array({failedEvent})},
                       {"missing", "the drives of rack R1"},
                       {"cause", "c"},
                       {"usualCause", "it is empty"},
                       {"advice", "see to it"}};
    const json expected = {{"run", 2},
                           {"firstLine", 11},
                           {"lastLine", 42},
                           {"started", "2026-11-21T13:41:03"},
                           {"ended", "2026-11-21T13:41:09"},
                           {"startLost", true},
                           {"end", "closed"},
                           {"lastLineCut", true},
                           {"endedWell", false},
                           {"status", 3},
                           {"system", "9999-B2C*7ABCD12"},
                           {"option", "-t"},
                           {"user", "root"},
                           {"console", "4821-K7Q-10ABCDE"},
                           {"build", "155968"},
                           {"phase", "final checks"},
                           {"minorErrors", false},
                           {"documentStarted", true},
                           {"mixedWith", 4},
                           {"strangeLines", 5},
                           {"problems", json::array({told})},
                           {"furtherProblems", 6},
                           {"events", json::array({event})}};
    EXPECT_EQ(document::explanationJson(run), expected.dump(2));
}

TEST(ExplanationJson, NamesEndsAndSeverities)
{
    using document::RunEnd;
    const auto ends = {std::pair(RunEnd::closed, "closed"), std::pair(RunEnd::noSession, "noSession"),
                       std::pair(RunEnd::open, "open"), std::pair(RunEnd::brokenOff, "brokenOff")};
    for (const auto& [end, name] : ends) {
        TracedRun run;
        run.end = end;
        EXPECT_EQ(kordTest::parseJson(document::explanationJson(run))["end"], name);
    }
    const auto severities = {std::pair(Severity::fatal, "fatal"), std::pair(Severity::filed, "filed"),
                             std::pair(Severity::minor, "minor"), std::pair(Severity::noted, "noted")};
    for (const auto& [severity, name] : severities) {
        TracedRun run;
        run.problems.resize(1);
        run.problems[0].severity = severity;
        EXPECT_EQ(kordTest::parseJson(document::explanationJson(run))["problems"][0]["severity"], name);
    }
}

// ---- selections ----

TEST(Selection, NamesPartsFromTheInside)
{
    const auto words = [](const char* selection) {
        Problem problem;
        problem.part = document::partsOf(selection);
        return partWords(problem);
    };
    EXPECT_EQ(words("rackNumber=\"R1\" && enclosureNumber=\"2\" && enclosureMTMS=\"E\""),
              "storage enclosure E, enclosure number 2, rack R1");
    EXPECT_EQ(words("storageFacilityMTMS=\"F\" && rackEnclosureMTMS=\"R\" "), "rack R, facility F");
    EXPECT_EQ(words("storageFacilityImageMTMS=\"I\" && locationCode =? 'U1%'"), "I/O enclosure U1, image I");
    EXPECT_EQ(words("locationCode=\"U1-V1\" && ActivePeerDomain=\"D\""), "partition U1-V1, image D");
    EXPECT_EQ(words("storageFacilityImageMTMS=\"I\" && ActivePeerDomain=\"D\""), "image I");
    EXPECT_EQ(words("HWModel=\"9999-B2C\" && HWSerialNum=\"7ABCD12\" && LParID=\"1\""),
              "partition ID 1, system 9999-B2C*7ABCD12");
    EXPECT_EQ(words("managedSystemMTMS=\"S\" && hslLumenPoolId=\"1\" "), "pool ID 1, system S");
    EXPECT_EQ(words("lparName=\"SF1\""), "partition SF1");
    EXPECT_EQ(words("rackNumber=\"\""), "");
    EXPECT_EQ(words("HWModel=\"9999-B2C\""), "");
    EXPECT_EQ(words("unknown=\"x\""), "");
}

TEST(Selection, KnowsWhichAnswerGaveAValue)
{
    const auto source = [](const char* key, const char* function = "") {
        const document::ValueSource found = document::sourceOf(key, function);
        return std::string(found.className) + ' ' + std::string(found.attribute);
    };
    EXPECT_EQ(source("storageFacilityImageMTMS"), "Orvik.ManagedNode StorageFacilityImageID");
    EXPECT_EQ(source("ActivePeerDomain"), "Orvik.ManagedNode StorageFacilityImageID");
    for (const char* name : {"lparName", "hslLumenPoolId"})
        EXPECT_EQ(source(name), std::string("Orvik.TarnStorageFacilityPartition ") + name);
    EXPECT_EQ(source("LParID"), "Orvik.TarnStorageFacilityPartition lparId");
    EXPECT_EQ(source("locationCode", "enumerateVRMF"), "Orvik.TarnStorageFacilityPartition locationCode");
    EXPECT_EQ(source("locationCode", "queryDA"), "Orvik.TarnIODrawer locationCode");
    EXPECT_EQ(source("storageFacilityMTMS"), "Orvik.TarnStorageFacilitySystem storageFacilityMTMS");
    const std::string systems = "Orvik.TarnStorageFacility managedSystem0MTMS, managedSystem1MTMS";
    EXPECT_EQ(source("managedSystemMTMS", "queryPartition"), systems);
    EXPECT_EQ(source("managedSystemMTMS", "querySystem"), " ");
    EXPECT_EQ(source("HWModel"), systems);
    for (const char* name : {"rackNumber", "rackEnclosureMTMS"})
        EXPECT_EQ(source(name), std::string("Orvik.TarnRack ") + name);
    for (const char* name : {"enclosureMTMS", "enclosureNumber"})
        EXPECT_EQ(source(name), std::string("Orvik.TarnStorageEnclosure ") + name);
}

TEST(Selection, TakesKeysAndValuesAsTheyAre)
{
    const auto taken = [](const char* selection) {
        std::vector<std::string> all;
        for (const auto& item : document::itemsOf(selection))
            all.push_back(item.key + (item.begins ? "?" : "=") + item.value);
        return all;
    };
    EXPECT_THAT(taken("azAZ09=\"v\""), ElementsAre("azAZ09=v"));
    EXPECT_THAT(taken("a=\"1%\" && b =? '2%' && c =? '3'"), ElementsAre("a=1%", "b?2", "c?3"));
    EXPECT_THAT(taken("a=?'4%'"), ElementsAre("a?4"));
    EXPECT_THAT(taken("a  =  1)b=2"), ElementsAre("a=1", "b=2"));
    EXPECT_THAT(taken("a='x\"y'"), ElementsAre("a=x\"y"));
    EXPECT_EQ(document::valueIn("a=\"1\" && b=\"2\" && b=\"3\"", "b"), "2");
    EXPECT_EQ(document::valueIn("a=\"1\"", "b"), "");
}

} // namespace
