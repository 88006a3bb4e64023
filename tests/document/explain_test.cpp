// What is told of a run, by logs written line by line as the collector writes them.

#include "document/explain.h"
#include "document/explainWords.h"
#include "document/selection.h"
#include "document/tables.h"
#include "jsonSchema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using document::Problem;
using document::RunEnd;
using document::Severity;
using document::TracedRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const std::string system1 = "9999-B2C*7ABCD12";

/// A log, a line for each code and text, wrapped as the collector wraps.
class Log
{
public:
    Log& line(const std::string& code, std::string text)
    {
        log += "112126 13:41:03 " + code + ": ";
        size_t room = code.size() + text.size() > 60 ? 61 - code.size() : text.size();
        do {
            log += text.substr(0, room) + '\n';
            text.erase(0, room);
            room = 80;
        } while (!text.empty());
        return *this;
    }
    Log& entry(const std::string& function) { return line("==>", " " + function); }
    Log& event(const std::string& name, const std::string& type)
    {
        return entry("handleErrKord " + name + ", " + type);
    }
    /// Up to the two sessions.
    Log& start(const std::string& system = system1)
    {
        return line("SRCV", "155968_quay1 07-15-05  " + system)
            .line("0068", "rc=0, xargc=1, User=root ")
            .line("0003", "option -t ")
            .line("0004", "start local session ")
            .line("0004", "start share resource session ");
    }
    /// The checks before the collection, and what it starts with.
    Log& checks()
    {
        return start()
            .line("0109", "wwnn=500FACE000001230, server=0 ")
            .line("0109", " partner 9999-B2C*7ABCD34")
            .line("0017", "rc=0, xargc=1, 9999-B2C*7ABCD12, state=Operating ")
            .line("0017", "rc=0, xargc=1, 9999-B2C*7ABCD34, state=Operating ")
            .entry("queryPartition")
            .line("0697", "num_contacts =1")
            .line("0010", node)
            .line("0016", " StorageFacilityImageID=9999.A01.00XY121, HostName=tarn0")
            .line("0010", node)
            .line("0016", "SF1, status=1")
            .entry("queryPartition")
            .line("0010", partnersNode)
            .line("0016", "SF2, status=1")
            .line("0005", "start DM session ")
            .line(">>", " openInventory");
    }
    /// The checks after it.
    Log& finalChecks()
    {
        return line("0017", "rc=0, xargc=1, 9999-B2C*7ABCD12, state=Operating ")
            .line("0017", "rc=0, xargc=1, 9999-B2C*7ABCD34, state=Operating ")
            .line("0010", node)
            .line("0016", "SF1, status=1")
            .line("0010", partnersNode)
            .line("0016", "SF2, status=1");
    }
    Log& exit(int status)
    {
        return line("0008", "LC vale_end_session")
            .line("0008", "DM vale_end_session")
            .line("0008", "SR vale_end_session")
            .close(status);
    }
    /// Only sessions that are open are ended.
    Log& exitWithoutDomain(int status)
    {
        return line("0008", "LC vale_end_session").line("0008", "SR vale_end_session").close(status);
    }
    Log& close(int status) { return line("0010", " exit " + std::to_string(status) + " ------------------"); }

    static constexpr const char* node = " HWModel=\"9999-B2C\" && HWSerialNum=\"7ABCD12\" && LParID=\"1\"";
    static constexpr const char* partnersNode =
        " HWModel=\"9999-B2C\" && HWSerialNum=\"7ABCD34\" && LParID=\"1\"";
    std::string log;
};

std::vector<TracedRun> runsIn(const std::string& log)
{
    std::vector<TracedRun> runs;
    document::Explainer explainer([&](const TracedRun& run) { runs.push_back(run); });
    explainer.read(log);
    explainer.end();
    return runs;
}

TracedRun runIn(const Log& log)
{
    auto runs = runsIn(log.log);
    EXPECT_EQ(runs.size(), 1U);
    return runs.empty() ? TracedRun{} : runs.back();
}

Problem problemIn(const Log& log)
{
    const TracedRun run = runIn(log);
    EXPECT_EQ(run.problems.size(), 1U) << document::explanation(run, 0);
    return run.problems.empty() ? Problem{} : run.problems.front();
}

const std::string drives = "storageFacilityImageMTMS=\"9999*A01*00XY121\" && rackNumber=\"R1\" && "
                           "enclosureMTMS=\"1234-5X6*AB100001\" && enclosureNumber=\"1\" && "
                           "ActivePeerDomain=\"9999.A01.00XY121\"";

Log drivesAsked()
{
    Log log;
    log.checks()
        .entry("addStorEnclKord")
        .entry("queryStorageEnclosure")
        .entry("queryDDM")
        .line("0300", drives);
    return log;
}

// ---- runs ----

TEST(Explain, ARunWithoutTroubleEndedWell)
{
    Log log;
    log.checks().finalChecks().exit(3);
    const TracedRun run = runIn(log);
    EXPECT_TRUE(document::endedWell(run));
    EXPECT_EQ(run.system, system1);
    EXPECT_EQ(run.option, "-t");
    EXPECT_EQ(run.user, "root");
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.phase, "final checks");
    EXPECT_THAT(run.problems, IsEmpty());
    EXPECT_EQ(run.strangeLines, 0U);
    EXPECT_THAT(document::explanation(run, 1), HasSubstr("It ended well, with status 3."));
}

TEST(Explain, RunsFollowEachOther)
{
    Log log;
    log.checks().finalChecks().exit(3);
    log.start("9999-B2C*7ABCD99").line("0109", "wwnn=1, server=0 ");
    const auto runs = runsIn(log.log);
    ASSERT_THAT(runs, SizeIs(2));
    EXPECT_EQ(runs[0].end, RunEnd::closed);
    EXPECT_EQ(runs[1].system, "9999-B2C*7ABCD99");
    EXPECT_EQ(runs[1].end, RunEnd::open);
    EXPECT_FALSE(document::endedWell(runs[1]));
    EXPECT_THAT(document::explanation(runs[1], 2),
                HasSubstr("It has not ended: the log stops in the middle (system checks)"));
}

TEST(Explain, ARunThatAnotherFollowsBrokeOff)
{
    Log log;
    log.checks().entry("addCecEnclKord");
    log.checks().finalChecks().exit(3);
    const auto runs = runsIn(log.log);
    ASSERT_THAT(runs, SizeIs(2));
    EXPECT_EQ(runs[0].end, RunEnd::brokenOff);
    EXPECT_EQ(runs[0].mixedWith, std::nullopt);
    EXPECT_TRUE(document::endedWell(runs[1]));
}

TEST(Explain, ALogThatLostItsStart)
{
    Log log;
    log.log = "7ABCD12\" && LParID=\"1\"\n";
    log.entry("queryPPS")
        .line("0405", "storageFacilityMTMS=\"F\" && rackEnclosureMTMS=\"R\" ")
        .line("0407 ", "no res  array_cnt_pps=0");
    log.finalChecks().line("0019", "Function completed with minor errors detected.").exit(3);
    const TracedRun run = runIn(log);
    EXPECT_TRUE(run.startLost);
    EXPECT_EQ(run.system, "");
    ASSERT_THAT(run.problems, SizeIs(1));
    EXPECT_EQ(run.problems[0].className, "Orvik.TarnPPS");
    EXPECT_THAT(document::explanation(run, 1), HasSubstr("The log has lost the start of this run"));
}

TEST(Explain, TwoRunsAtOnceAreToldApartAsFarAsTheirLinesGo)
{
    Log log;
    log.checks().entry("addCecEnclKord").entry("addIoEnclKord").entry("addStorEnclKord");
    log.start();
    log.line("0322 ", "storageFacilityMTMS=\"9999-A01*00XY1230\" ");
    log.line("0109", "wwnn=500FACE000001230, server=0 ");
    const auto runs = runsIn(log.log);
    ASSERT_THAT(runs, SizeIs(2));
    EXPECT_EQ(runs[0].mixedWith, 2U);
    EXPECT_EQ(runs[1].mixedWith, 1U);
    EXPECT_THAT(document::explanation(runs[1], 2), HasSubstr("Run 1 wrote to the log at the same time."));
}

TEST(Explain, ASecondEndWithoutAStartIsThatOfARunBesideIt)
{
    Log log;
    log.checks().entry("addCecEnclKord");
    log.checks().finalChecks().exit(3);
    log.line("0010", " exit 3 ------------------");
    const auto runs = runsIn(log.log);
    ASSERT_THAT(runs, SizeIs(2));
    EXPECT_EQ(runs[0].end, RunEnd::closed);
    EXPECT_EQ(runs[0].mixedWith, 2U);
    EXPECT_EQ(runs[1].mixedWith, 1U);
}

/// Runs that write side by side are kept apart, the four newest of them; of the others no more is awaited.
TEST(Explain, FourRunsAreFollowedAtOnce)
{
    const auto toldOf = [](size_t starts, bool oldestWrites) {
        size_t told = 0;
        document::Explainer explainer([&](const TracedRun& run) {
            EXPECT_EQ(run.number, ++told);
            EXPECT_EQ(run.end, RunEnd::brokenOff);
        });
        Log log;
        log.checks().entry("addCecEnclKord").entry("addIoEnclKord").entry("addStorEnclKord");
        for (size_t i = 1; i < starts; ++i) {
            log.start();
            if (oldestWrites) log.line("0322 ", "storageFacilityMTMS=\"9999-A01*00XY1230\" ");
        }
        explainer.read(log.log);
        return told;
    };
    EXPECT_EQ(toldOf(4, true), 0U);
    EXPECT_EQ(toldOf(5, true), 3U) << "the oldest goes, and with it those that wrote nothing";
    EXPECT_EQ(toldOf(2, false), 0U);
    EXPECT_EQ(toldOf(3, false), 1U) << "it wrote nothing since the next one started";
    EXPECT_EQ(toldOf(4, false), 2U);
}

/// A line that none of them can have written is of a run whose start was lost.
TEST(Explain, ALineOfNoRunThatIsOpenBeginsOne)
{
    Log log;
    log.line("SRCV", "155968_quay1 07-15-05  " + system1);
    log.checks().finalChecks().exit(3);
    log.line("0322 ", "storageFacilityMTMS=\"9999-A01*00XY1230\" ");
    const auto runs = runsIn(log.log);
    ASSERT_THAT(runs, SizeIs(3));
    EXPECT_EQ(runs[0].end, RunEnd::brokenOff);
    EXPECT_FALSE(runs[0].startLost);
    EXPECT_EQ(runs[1].end, RunEnd::closed);
    EXPECT_TRUE(runs[2].startLost);
    EXPECT_EQ(runs[2].firstLine, runs[2].lastLine);
    EXPECT_EQ(runs[2].mixedWith, std::nullopt);
}

TEST(Explain, ALogThatEndsInsideALineSaysSo)
{
    Log log;
    log.checks();
    log.log += "112126 13:41:03 >>:  openSys";
    const TracedRun run = runIn(log);
    EXPECT_TRUE(run.lastLineCut);
    EXPECT_THAT(document::explanation(run, 1), HasSubstr("The log ends inside a line"));
    Log two;
    two.checks().checks();
    const auto runs = runsIn(two.log + "112126 13:41:03 >>:  openSys");
    ASSERT_THAT(runs, SizeIs(2));
    EXPECT_FALSE(runs[0].lastLineCut) << "only the newest can go on";
    EXPECT_TRUE(runs[1].lastLineCut);
    two.exit(3);
    EXPECT_FALSE(runsIn(two.log).back().lastLineCut);
}

// ---- calls ----

TEST(Explain, ACallThatFailed)
{
    Log log = drivesAsked();
    log.line("0301", "  TarnDDM 7, no such thing\n").event("queryDDM", "r").exit(-1);
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.kind, "callFailed");
    EXPECT_EQ(problem.severity, Severity::fatal);
    EXPECT_EQ(problem.className, "Orvik.TarnDDM");
    EXPECT_EQ(problem.session, "domain");
    EXPECT_EQ(problem.selection, drives);
    EXPECT_EQ(problem.number, 7);
    EXPECT_EQ(problem.message, "no such thing\n");
    EXPECT_THAT(problem.attributes, SizeIs(14));
    EXPECT_EQ(document::partWords(problem),
              "storage enclosure 1234-5X6*AB100001, enclosure number 1, rack R1, image 9999*A01*00XY121");
    EXPECT_EQ(document::answerWords(problem), "the call failed with code 7, \"no such thing\"");
    ASSERT_THAT(problem.events, SizeIs(1));
    EXPECT_EQ(problem.events[0].referenceCode, "BED00001");
    EXPECT_EQ(problem.events[0].text, "queryDDM : VALE call resulted in a non zero return value");
    EXPECT_EQ(document::missingBy(runIn(log), problem), "what comes behind it in the document: the rest of "
                                                        "the storage enclosures, the racks, the consoles and "
                                                        "the partitions");
}

/// Where no line tells the selection, it is what the run is known to ask for.
TEST(Explain, ASelectionThatNoLineTellsIsWorkedOut)
{
    const auto asked = [](const std::string& partner, size_t entries) {
        Log log;
        log.start().line("0109", "wwnn=1, server=0 ").line("0109", " partner " + partner);
        for (size_t i = 0; i < entries; ++i)
            log.entry("queryPartition");
        log.line("0697", "no res  array_cnt_sfp=0");
        return runIn(log).problems.back();
    };
    EXPECT_EQ(asked("P*1", 1).selection, "managedSystemMTMS=\"9999-B2C*7ABCD12\" ");
    EXPECT_EQ(asked("P*1", 2).selection, "managedSystemMTMS=\"P*1\" ");
    EXPECT_EQ(asked("", 2).selection, "managedSystemMTMS=\"\" ");
    EXPECT_TRUE(asked("", 2).workedOut);
    Log lost;
    lost.entry("queryPartition").line("0697", "no res  array_cnt_sfp=0");
    EXPECT_EQ(problemIn(lost).selection, std::nullopt) << "the start would name the system";
    Log told = drivesAsked();
    told.line("0302 ", "no res  array_cnt_ddm=0");
    EXPECT_FALSE(problemIn(told).workedOut);
}

/// An action is asked of what was found just before.
TEST(Explain, AnActionHasTheSelectionBeforeIt)
{
    const std::string selection = "locationCode=\"U\" && ActivePeerDomain=\"D\"";
    Log log;
    log.checks().entry("enumerateVRMF").line("0607", "  " + selection).line("0612", " 7, gone");
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.kind, "callFailed");
    EXPECT_EQ(problem.call, "action");
    EXPECT_EQ(problem.selection, selection);
    EXPECT_FALSE(problem.workedOut);
}

TEST(Explain, ACallWithoutASelectionIsForTheWholeSystem)
{
    Log log;
    log.checks().entry("addQuayEnclKord").line("0500", "  7, gone").event("addQuayEnclKord", "r").exit(-1);
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.selection, std::nullopt);
    EXPECT_EQ(document::partWords(problem), "system 9999-B2C*7ABCD12");
}

TEST(Explain, NothingFoundHasNoNumberButItsCountIsOne)
{
    for (const int count : {-1, 0, 3}) {
        Log log = drivesAsked();
        log.line("0302 ", "no res  array_cnt_ddm=" + std::to_string(count));
        const Problem problem = problemIn(log);
        EXPECT_EQ(problem.kind, count > 0 ? "unexpectedAnswer" : "nothingFound") << count;
        EXPECT_EQ(problem.number, count == 0 ? std::nullopt : std::optional(count));
    }
}

TEST(Explain, AnErrorOfTheFacilityIsMinor)
{
    Log log = drivesAsked();
    log.line("0303", " response 262152, absent\n")
        .finalChecks()
        .line("0019", "Function completed with minor errors detected.")
        .exit(3);
    const TracedRun run = runIn(log);
    ASSERT_THAT(run.problems, SizeIs(1));
    EXPECT_EQ(run.problems[0].kind, "responseInError");
    EXPECT_EQ(run.problems[0].severity, Severity::minor);
    EXPECT_THAT(run.problems[0].events, IsEmpty());
    EXPECT_EQ(document::answerWords(run.problems[0]),
              "the first answer is in error 0x40008 (262152), \"absent\"");
    EXPECT_THAT(document::explanation(run, 1), HasSubstr("It ended with status 3 and minor errors."));
    EXPECT_FALSE(run.problems[0].standsInstead);
    Log name;
    name.checks()
        .entry("SFIamgeWWNN")
        .line("0621", "  storageFacilityImageMTMS=\"I\" && ActivePeerDomain=\"D\"")
        .line("0624", " response 262152, absent\n");
    EXPECT_EQ(problemIn(name).severity, Severity::minor);
    EXPECT_TRUE(problemIn(name).standsInstead);
}

TEST(Explain, AnErrorWithItsMessageFiled)
{
    Log log = drivesAsked();
    log.line("0303", " response 7, worn out\n").event("Orvik.TarnDDM", "r").exit(-1);
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.severity, Severity::fatal);
    ASSERT_THAT(problem.events, SizeIs(1));
    EXPECT_EQ(problem.events[0].text, "Orvik.TarnDDM : worn out ");
}

TEST(Explain, AnEnclosureWithoutDrivesIsFiledAndTheRunGoesOn)
{
    Log log = drivesAsked();
    log.line("0302 ", "no res  array_cnt_ddm=0").event("queryDDM", "e").finalChecks().exit(3);
    const TracedRun run = runIn(log);
    ASSERT_THAT(run.problems, SizeIs(1));
    EXPECT_EQ(run.problems[0].severity, Severity::filed);
    EXPECT_EQ(document::missingBy(run, run.problems[0]),
              "the drives of storage enclosure 1234-5X6*AB100001, enclosure number 1, rack R1, image "
              "9999*A01*00XY121");
    EXPECT_FALSE(document::endedWell(run));
}

TEST(Explain, AnEventThatCouldNotBeFiled)
{
    Log log = drivesAsked();
    log.line("0302 ", "no res  array_cnt_ddm=0")
        .event("queryDDM", "e")
        .line("050", "/opt/tarnquay/bin/pmProblemEventPoster  -f \"x\", 4")
        .finalChecks()
        .exit(3);
    const Problem problem = problemIn(log);
    ASSERT_THAT(problem.events, SizeIs(1));
    EXPECT_EQ(problem.events[0].toolStatus, 4);
    EXPECT_EQ(problem.events[0].command, "/opt/tarnquay/bin/pmProblemEventPoster  -f \"x\"");
}

/// The tool's line tells of the event before it, whether the line that tells why it was filed stood before it
/// or comes behind.
TEST(Explain, AnEventThatCouldNotBeFiledBeforeItsReason)
{
    const std::string tool = "/opt/tarnquay/bin/pmProblemEventPoster  -f \"x\"";
    Log local;
    local.line("SRCV", "155968_quay1 07-15-05  " + system1)
        .line("0004", "start local session ")
        .event("addTarnKord", "r")
        .line("050", tool + ", 4")
        .line("0004", " LC scope session failed with error 9, none\n, exit -1");
    const Problem session = problemIn(local);
    EXPECT_EQ(session.kind, "sessionFailed");
    ASSERT_THAT(session.events, SizeIs(1));
    EXPECT_EQ(session.events[0].toolStatus, 4);
    EXPECT_EQ(session.events[0].command, tool);

    Log both = drivesAsked();
    both.event("first", "e")
        .line("0302 ", "no res  array_cnt_ddm=0")
        .event("second", "e")
        .line("051", tool + " 5");
    const TracedRun run = runIn(both);
    ASSERT_THAT(run.problems, SizeIs(2));
    ASSERT_THAT(run.problems[0].events, SizeIs(1));
    EXPECT_EQ(run.problems[0].kind, "eventUnexplained");
    EXPECT_EQ(run.problems[0].severity, Severity::filed);
    EXPECT_EQ(run.problems[0].code, "==>");
    EXPECT_EQ(run.problems[0].text, " handleErrKord first, e");
    EXPECT_EQ(run.problems[0].events[0].name, "first");
    EXPECT_EQ(run.problems[0].events[0].toolStatus, std::nullopt);
    ASSERT_THAT(run.problems[1].events, SizeIs(1));
    EXPECT_EQ(run.problems[1].events[0].name, "second");
    EXPECT_EQ(run.problems[1].events[0].toolStatus, 5);
    ASSERT_THAT(run.events, SizeIs(2));
    EXPECT_EQ(run.events[0].toolStatus, std::nullopt);
    EXPECT_EQ(run.events[1].toolStatus, 5);

    // One that is filed behind a reason that had its event already is another matter.
    Log late = drivesAsked();
    late.line("0302 ", "no res  array_cnt_ddm=0")
        .event("queryDDM", "e")
        .event("late", "m")
        .line("050", tool + ", 6");
    const TracedRun memory = runIn(late);
    ASSERT_THAT(memory.problems, SizeIs(2));
    EXPECT_EQ(memory.problems[0].events.at(0).toolStatus, std::nullopt);
    EXPECT_EQ(memory.problems[1].kind, "outOfMemory");
    EXPECT_EQ(memory.problems[1].severity, Severity::fatal);
    EXPECT_EQ(memory.problems[1].events.at(0).toolStatus, 6);
    EXPECT_EQ(memory.problems[1].events.at(0).referenceCode, "BED00005");
}

TEST(Explain, MemoryThatRanOutForAHostIsFatal)
{
    Log log;
    log.checks()
        .entry("addPartitionKord")
        .entry("queryScsiHostPort")
        .line("0677", "  storageFacilityImageMTMS=\"I\" && ActivePeerDomain=\"D\" ")
        .line("0679", " array_cnt_shp=1")
        .line("0677", " add web")
        .event("Orvik.TarnScsiHostPort", "m")
        .exit(-1);
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.kind, "outOfMemory");
    EXPECT_EQ(problem.severity, Severity::fatal);
    EXPECT_EQ(problem.text, " add web");
    EXPECT_THAT(problem.events, SizeIs(1));
}

/// An event takes 499 characters of its text: a blank, which takes the place of the message's line feed, is
/// the last.
TEST(Explain, AnEventsTextIsCut)
{
    for (const size_t length : {size_t{0}, size_t{10}, size_t{470}, size_t{485}, size_t{600}}) {
        Log log = drivesAsked();
        log.line("0303", " response 7, " + std::string(length, 'm') + "\n")
            .event("Orvik.TarnDDM", "r")
            .exit(-1);
        const std::string whole = "Orvik.TarnDDM : " + std::string(length, 'm') + ' ';
        EXPECT_EQ(problemIn(log).events.at(0).text, whole.substr(0, 499)) << length;
    }
}

TEST(Explain, LinesOfOneCodeAreToldApartByWhatWasAsked)
{
    const std::string asked = "  storageFacilityImageMTMS=\"I\" && ActivePeerDomain=\"D\" ";
    Log hosts;
    hosts.checks().entry("queryScsiHostPort").line("0677", asked).line("0680", " response 7, x\n");
    Log sites;
    sites.checks().entry("queryArraySites").line("0677", asked).line("0680", " response 7, x\n");
    EXPECT_EQ(problemIn(hosts).className, "Orvik.TarnScsiHostPort");
    EXPECT_EQ(problemIn(sites).className, "Orvik.TarnArraySite");
}

TEST(Explain, TheChecksOfAllNodesAskWithTheSameWords)
{
    const std::string failed = "  ManagedNode returned 7, x\n";
    Log id;
    id.start()
        .entry("queryPartition")
        .line("0697", "num_contacts =1")
        .line("0010", Log::node)
        .line("0013", "response 7, a, b\n");
    EXPECT_EQ(problemIn(id).function, "queryValeId");
    EXPECT_EQ(problemIn(id).message, "a, b\n");
    Log status;
    status.start()
        .entry("queryPartition")
        .line("0697", "num_contacts =1")
        .line("0010", Log::node)
        .line("0010", Log::node)
        .line("0013", "response 7, a, SF1");
    EXPECT_EQ(problemIn(status).function, "queryValeStatus");
    EXPECT_EQ(problemIn(status).message, "a");
    Log second; // of two partitions each is asked for its image first
    second.start()
        .entry("queryPartition")
        .line("0697", "num_contacts =2")
        .line("0010", Log::node)
        .line("0010", " HWModel=\"9999-B2C\" && HWSerialNum=\"7ABCD12\" && LParID=\"2\"")
        .line("0013", "response 7, a, b\n");
    EXPECT_EQ(problemIn(second).function, "queryValeId");
    Log system;
    system.start().line("0109", "wwnn=1, server=0 ").line("0108", " response 5, bad");
    EXPECT_EQ(problemIn(system).function, "queryPartnerSystem");
    Log partner;
    partner.checks().finalChecks().line("0012", " error array_cnt 0, SF2");
    EXPECT_EQ(problemIn(partner).function, "queryValePartnerStatus");
}

/// After the collection the nodes of the one system are asked, then those of the other.
TEST(Explain, TheLastChecksTellTheSystemsApartByTheirNodes)
{
    const std::string second = " HWModel=\"9999-B2C\" && HWSerialNum=\"7ABCD12\" && LParID=\"2\"";
    const std::string partnersSecond = " HWModel=\"9999-B2C\" && HWSerialNum=\"7ABCD34\" && LParID=\"2\"";
    const auto failing = [&](size_t node) {
        Log log;
        log.checks();
        const std::vector<std::string> nodes = {Log::node, second, Log::partnersNode, partnersSecond};
        for (size_t i = 0; i <= node; ++i) {
            log.line("0010", nodes[i]);
            log.line("0016", i < node ? "SF1, status=1" : "SF1, status=2");
        }
        return problemIn(log).function;
    };
    EXPECT_EQ(failing(0), "queryValeStatus");
    EXPECT_EQ(failing(1), "queryValeStatus");
    EXPECT_EQ(failing(2), "queryValePartnerStatus");
    EXPECT_EQ(failing(3), "queryValePartnerStatus");
    // What is left of the checks before is none of them.
    Log lost;
    lost.line("0010", Log::partnersNode)
        .line("0016", "SF2, status=1")
        .line("0005", "start DM session ")
        .line(">>", " openInventory")
        .line("0010", Log::node)
        .line("0016", "SF1, status=2");
    EXPECT_EQ(problemIn(lost).function, "queryValeStatus");
}

TEST(Explain, APartitionThatIsNotOnline)
{
    Log log;
    log.start().entry("queryPartition").line("0697", "num_contacts =1").line("0010", Log::node);
    log.line("0016", " StorageFacilityImageID=I, HostName=H")
        .line("0010", Log::node)
        .line("0016", "SF1, status=2")
        .event("SF1", "s")
        .exit(-1);
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.kind, "notOnline");
    EXPECT_EQ(problem.function, "queryValeStatus");
    EXPECT_EQ(problem.number, 2);
    EXPECT_EQ(problem.events.at(0).text, "SF1 : Subsystem is degraded");
    EXPECT_EQ(document::partWords(problem), "partition ID 1, system 9999-B2C*7ABCD12, named SF1");
}

TEST(Explain, AnAnswerWithFewerAttributesThanAskedFor)
{
    Log log = drivesAsked();
    log.line("0304 ", "DDM loop array_cnt_ddm= 16, attr_count_ddm= 13").finalChecks().exit(3);
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.kind, "fewerAttributes");
    EXPECT_EQ(problem.severity, Severity::noted);
    EXPECT_EQ(document::answerWords(problem), "the first answer has 13 of the 14 attributes");
    EXPECT_TRUE(document::endedWell(runIn(log)));
}

TEST(Explain, AnEmptySelectionTellsWhatHadBeenMissing)
{
    Log log;
    log.checks()
        .entry("queryNVC")
        .line("0120", " storageFacilityImageMTMS=\"\" && server=0  ")
        .line("0120", " no res  array_cnt_nvc=0")
        .event("queryNVC", "e")
        .exit(-1);
    const TracedRun run = runIn(log);
    ASSERT_THAT(run.problems, SizeIs(2));
    EXPECT_EQ(run.problems[0].kind, "valueMissing");
    EXPECT_EQ(run.problems[0].className, "Orvik.ManagedNode");
    EXPECT_THAT(run.problems[0].attributes, ElementsAre("StorageFacilityImageID"));
    EXPECT_EQ(run.problems[1].kind, "nothingFound");
    EXPECT_EQ(run.problems[1].cause, "it was asked for with an empty storageFacilityImageMTMS: "
                                     "Orvik.ManagedNode had answered without StorageFacilityImageID");
}

/// Lines that show values of an answer: a value that is empty, or a number that stands for none, was missing.
TEST(Explain, ALineThatShowsNoValueTellsThatItWasMissing)
{
    struct Case {
        std::vector<std::pair<std::string, std::string>> asked;
        std::string code;
        std::string empty;
        std::string whole;
        std::string className;
        std::vector<std::string> attributes;
    };
    const std::string facility = "storageFacilityMTMS=\"9999-A01*00XY1230\" ";
    const std::string image = "storageFacilityImageMTMS=\"I\" && ActivePeerDomain=\"D\"";
    using Lines = std::vector<std::pair<std::string, std::string>>;
    const Lines enclosures = {
        {"==>", " queryStorageEnclosure"},
        {"0315", "storageFacilityImageMTMS=\"I\" && rackNumber=\"R\" && ActivePeerDomain=\"D\" "}};
    const Lines arrays = {{"==>", " queryArrays"}, {"0681", "  " + image + " "}};
    const Lines hosts = {{"==>", " queryScsiHostPort"}, {"0677", "  " + image + " "}};
    const std::vector<Case> cases = {
        {{{"0010", Log::node}},
         "0016",
         " StorageFacilityImageID=, HostName=",
         " StorageFacilityImageID=I, HostName=H",
         "Orvik.ManagedNode",
         {"StorageFacilityImageID", "Hostname"}},
        {{{"==>", " addCecEnclKord"}},
         "0118",
         " locationCode_cec= ",
         " locationCode_cec=U1 ",
         "Orvik.TarnCECDrawer",
         {"locationCode"}},
        {enclosures, "0319", " 0 ", " 1 3", "Orvik.TarnStorageEnclosure", {"interfaceIdentifier"}},
        {enclosures,
         "0320",
         " RackLocation= , , , 0, ",
         " RackLocation= , , 1, 0, ",
         "Orvik.TarnStorageEnclosure",
         {"enclosureNumber"}},
        {enclosures,
         "0321",
         " enclosureMTMS_stor=  ",
         " enclosureMTMS_stor= E ",
         "Orvik.TarnStorageEnclosure",
         {"enclosureMTMS"}},
        {{{"==>", " addStorEnclKord"}, {"0322 ", facility}},
         "0326",
         " rack , , ",
         " rack U, R, M",
         "Orvik.TarnRack",
         {"locationCode", "rackNumber", "rackEnclosureMTMS"}},
        {{{"==>", " addStorEnclKord"}, {"0400", facility}},
         "0404 ",
         "rackIdentifier=0, , , ",
         "rackIdentifier=7, U, R, M",
         "Orvik.TarnRack",
         {"rackIdentifier", "locationCode", "rackNumber", "rackEnclosureMTMS"}},
        {{{"==>", " addQuayEnclKord"}},
         "0504",
         "quayLocationCode=",
         "quayLocationCode=4",
         "Orvik.TarnQUAY",
         {"quayLocationCode"}},
        {{{"==>", " enumerateVRMF"}, {"0607", "  locationCode=\"U\" && ActivePeerDomain=\"D\""}},
         "0614",
         " vrmf=",
         " vrmf=5",
         "Orvik.TarnServerPartition",
         {"the level"}},
        {arrays,
         "0686",
         "element_count=0, arraySites= ",
         "element_count=1, arraySites= 1",
         "Orvik.TarnArray",
         {"arraySites"}},
        {arrays,
         "0687 ",
         "count= 0, arraySiteConfiguration=",
         "count= 1, arraySiteConfiguration=6+P",
         "Orvik.TarnArray",
         {"arraySiteConfiguration"}},
        {hosts, "0676", "find , 2", "find a, 2", "Orvik.TarnScsiHostPort", {"userHostDescription"}},
        {hosts, "0677", " add , 1", " add a, 1", "Orvik.TarnScsiHostPort", {"userHostDescription"}},
    };
    for (const Case& one : cases) {
        const auto missing = [&](const std::string& text) {
            Log log;
            log.start().entry("queryPartition").line("0697", "num_contacts =1");
            for (const auto& [code, asked] : one.asked)
                log.line(code, asked);
            log.line(one.code, text).line(one.code, text); // it is told once
            return runIn(log).problems;
        };
        EXPECT_THAT(missing(one.whole), IsEmpty()) << one.code;
        const auto problems = missing(one.empty);
        ASSERT_THAT(problems, SizeIs(1)) << one.code << one.empty;
        EXPECT_EQ(problems[0].kind, "valueMissing");
        EXPECT_EQ(problems[0].severity, Severity::noted);
        EXPECT_EQ(problems[0].className, one.className);
        EXPECT_EQ(problems[0].attributes, one.attributes) << one.code;
    }
}

/// Whatever was asked for inside it.
TEST(Explain, AValueIsMissingOfTheQueryThatItsLineIsOf)
{
    const std::string facility = "storageFacilityMTMS=\"9999-A01*00XY1230\"";
    Log log;
    log.checks()
        .entry("addStorEnclKord")
        .line("0322 ", facility + " ")
        .line("0326", " rack U, R, M")
        .entry("queryStorageEnclosure")
        .line("0315", "storageFacilityImageMTMS=\"I\" && rackNumber=\"R\" && ActivePeerDomain=\"D\" ")
        .entry("queryDDM")
        .line("0326", " rack U, , M");
    const Problem problem = runIn(log).problems.at(0);
    EXPECT_EQ(problem.className, "Orvik.TarnRack");
    EXPECT_THAT(problem.attributes, ElementsAre("rackNumber"));
    EXPECT_EQ(problem.selection.value_or("none"), facility + " ");
}

TEST(Explain, AMissingValueIsNotToldAgainWhereItStandsEmptyInASelection)
{
    Log log;
    log.checks()
        .entry("addStorEnclKord")
        .line("0322 ", "storageFacilityMTMS=\"9999-A01*00XY1230\" ")
        .line("0326", " rack U, , M")
        .entry("queryStorageEnclosure")
        .line("0315", "storageFacilityImageMTMS=\"I\" && rackNumber=\"\" && ActivePeerDomain=\"D\" ");
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.kind, "valueMissing");
    EXPECT_EQ(problem.code, "0326");
}

/// The partitions of a system and of its partner are asked alike. Where no line tells which it was, it was
/// the system's.
TEST(Explain, AnErrorOfSomePartitionIsOfTheSystem)
{
    const Problem problem = problemIn(Log().line("0012", " error array_cnt 0, SF1"));
    EXPECT_EQ(problem.function, "queryValeStatus");
}

/// Of a level's answer both are told alike: that it holds nothing, and that it is in error.
TEST(Explain, AnErrorHasANumber)
{
    const auto kind = [](const std::string& number) {
        Log log;
        log.checks()
            .entry("enumerateVRMF")
            .line("0607", "  locationCode=\"U\" && ActivePeerDomain=\"D\"")
            .line("0613", " response  " + number + ", none");
        return problemIn(log).kind;
    };
    EXPECT_EQ(kind("0"), "nothingFound");
    EXPECT_EQ(kind("1"), "responseInError");
    EXPECT_EQ(kind("5"), "responseInError");
}

/// A log of many millions of lines can lack as many values.
TEST(Explain, SomeTwoThousandMissingValuesAreTold)
{
    Log log;
    log.checks().entry("queryStorageEnclosure");
    for (int rack = 0; rack < 2100; ++rack)
        log.line("0315", "storageFacilityImageMTMS=\"I\" && rackNumber=\"" + std::to_string(rack) +
                             "\" && ActivePeerDomain=\"D\" ")
            .line("0321", " enclosureMTMS_stor=  ");
    const size_t told = runIn(log).problems.size();
    EXPECT_GE(told, 1999U);
    EXPECT_LE(told, 2000U);
}

/// The log can have lost what was asked for.
TEST(Explain, AValueOfNoKnownQueryIsNotMissing)
{
    EXPECT_THAT(runIn(Log().line("0326", " rack , , ")).problems, IsEmpty());
}

TEST(Explain, TheStateOfAPartnerWithoutANameIsAState)
{
    Log log;
    log.start().line("0017", "rc=0, xargc=1, , state=Operating ");
    EXPECT_THAT(runIn(log).problems, IsEmpty());
}

TEST(Explain, AFacilityWithoutNodeNameOrPartnerLacksThem)
{
    Log log;
    log.start().line("0109", "wwnn=, server=0 ").line("0109", " partner ").event("addTarnKord", "r");
    const TracedRun run = runIn(log);
    ASSERT_THAT(run.problems, SizeIs(testing::Ge(2U)));
    EXPECT_THAT(run.problems[0].events, IsEmpty());
    EXPECT_THAT(run.problems[1].events, IsEmpty()); // a value that is missing files none
    EXPECT_EQ(run.problems[0].className, "Orvik.TarnStorageFacilitySystem");
    EXPECT_THAT(run.problems[0].attributes, ElementsAre("storageFacilityWWNN"));
    EXPECT_EQ(run.problems[1].className, "Orvik.TarnStorageFacility");
    EXPECT_THAT(run.problems[1].attributes, ElementsAre("the partner's MTMS"));
}

/// The writers' lines show that an adapter came without its interfaces, and that no console had a place.
TEST(Explain, EndsOfListsTellWhatHasNotCome)
{
    const auto adapters = [](const std::vector<std::string>& interfaces) {
        Log log;
        log.checks()
            .entry("addIoEnclKord")
            .entry("queryHA")
            .line("0213", " storageFacilityImageMTMS=\"I\" && locationCode =? 'U%'   ");
        log.line("0216", " array_cnt_ha=2");
        for (const std::string& text : interfaces)
            log.line("0217", " count= " + text);
        log.line(">>", " closePartitionResources resourcelist");
        std::vector<std::string> kinds;
        for (const Problem& problem : runIn(log).problems)
            kinds.push_back(problem.kind + ' ' + problem.className + ' ' + problem.attributes.front());
        return kinds;
    };
    const std::string none = "valueMissing Orvik.TarnHA interfaceIdentifier";
    EXPECT_THAT(adapters({"1, 3", "2, 4", "2, 4,1"}), IsEmpty());
    EXPECT_THAT(adapters({"1, 3", "1, 4"}), IsEmpty());
    EXPECT_THAT(adapters({"2, 3", "2, 3,1", "1, 4"}), IsEmpty());
    EXPECT_THAT(adapters({"2, 3", "2, 3,1"}), ElementsAre(none));
    EXPECT_THAT(adapters({"3, 3", "3, 3,1", "3, 3,1,2"}), ElementsAre(none));
    EXPECT_THAT(adapters({}), ElementsAre(none));
    // Each enclosure's adapters are counted anew.
    const auto enclosures = [](const std::vector<size_t>& withInterfaces) {
        Log log;
        log.checks().entry("addIoEnclKord");
        for (size_t i = 0; i < withInterfaces.size(); ++i) {
            const std::string place = std::to_string(i + 1);
            log.entry("queryHA").line("0213", " storageFacilityImageMTMS=\"I\" && locationCode =? 'U" +
                                                  place + "%'   ");
            log.line("0216", " array_cnt_ha=2");
            for (size_t adapter = 0; adapter < withInterfaces[i]; ++adapter)
                log.line("0217", " count= " + place + ", 3");
            log.line(">>", " closePartitionResources resourcelist");
        }
        std::vector<std::string> selections;
        for (const Problem& problem : runIn(log).problems)
            selections.push_back(problem.selection.value_or("none"));
        return selections;
    };
    EXPECT_THAT(enclosures({2, 4}), IsEmpty());
    EXPECT_THAT(enclosures({2, 2}), ElementsAre(HasSubstr("'U2%'")));
    EXPECT_THAT(enclosures({1, 4}), ElementsAre(HasSubstr("'U1%'")));
    EXPECT_THAT(enclosures({2, 1, 6}), ElementsAre(HasSubstr("'U2%'")))
        << "a list that broke off is none of the next";
    const auto consoles = [](bool failed, const std::vector<std::string>& found) {
        Log log;
        log.checks().entry("addQuayEnclKord").entry("getQuayFullTM").entry("getQuaySE");
        if (failed) log.line("0500", "  7, gone").event("addQuayEnclKord", "r");
        for (const std::string& console : found)
            log.line("0504", "quayLocationCode=" + console);
        log.line(">>", " closeEnclosures resourcelist");
        std::vector<std::string> kinds;
        for (const Problem& problem : runIn(log).problems)
            kinds.push_back(problem.kind);
        return kinds;
    };
    EXPECT_THAT(consoles(false, {"4821-K7Q.10ABCDE"}), IsEmpty());
    EXPECT_THAT(consoles(false, {}), ElementsAre("valueMissing"));
    EXPECT_THAT(consoles(true, {}), ElementsAre("callFailed"));
}

// ---- what no line says outright ----

TEST(Explain, AThirdSessionThatNeverOpened)
{
    Log log;
    log.checks()
        .entry("queryNVC")
        .line("0120", " storageFacilityImageMTMS=\"I\" && server=0  ")
        .line("0120", " handle_bp 1, no session")
        .event("queryNVC", "r");
    log.exitWithoutDomain(-1);
    const TracedRun run = runIn(log);
    ASSERT_THAT(run.problems, SizeIs(2));
    EXPECT_EQ(run.problems[0].kind, "sessionNotOpened");
    EXPECT_EQ(run.problems[0].usualCause,
              "the resource manager refused the session: it knows no domain that is online");
    EXPECT_THAT(run.problems[0].advice, HasSubstr("see that the facility's partitions are online"));
    EXPECT_EQ(run.problems[1].cause,
              "the domain session had not opened, see line " + std::to_string(run.problems[0].line));
}

TEST(Explain, ASessionThatNeverOpenedIsNoCauseOfWhatNeedsAnother)
{
    Log log;
    log.checks().finalChecks().line("0012", " error array_cnt 0, SF2");
    log.exitWithoutDomain(-1);
    const TracedRun run = runIn(log);
    ASSERT_THAT(run.problems, SizeIs(2));
    EXPECT_EQ(run.problems[0].kind, "sessionNotOpened");
    EXPECT_EQ(run.problems[1].function, "queryValePartnerStatus");
    EXPECT_EQ(run.problems[1].cause, "");
}

TEST(Explain, SessionsThatFail)
{
    Log local;
    local.line("SRCV", "155968_quay1 07-15-05  " + system1)
        .line("0004", "start local session ")
        .event("addTarnKord", "r")
        .line("0004", " LC scope session failed with error 9, none\n, exit -1");
    TracedRun run = runIn(local);
    ASSERT_THAT(run.problems, SizeIs(1));
    EXPECT_EQ(run.problems[0].kind, "sessionFailed");
    EXPECT_EQ(run.problems[0].session, "local");
    EXPECT_EQ(run.problems[0].number, 9);
    EXPECT_THAT(run.problems[0].events, SizeIs(1));
    EXPECT_EQ(run.end, RunEnd::noSession);
    EXPECT_EQ(run.status, -1);

    Log end;
    end.checks()
        .finalChecks()
        .line("0008", "SR vale_end_session")
        .line("0009", " end_session failed with error 5, x\n")
        .event("cleanUpKord", "r")
        .line("0010", " exit 3 ------------------");
    run = runIn(end);
    EXPECT_EQ(run.problems.back().kind, "sessionEndFailed");
    EXPECT_EQ(run.problems.back().session, "shared resource");
    EXPECT_EQ(run.problems.back().severity, Severity::filed);
}

/// What the console's programs answer, and the lines before the answer that tell why it is of no use.
TEST(Explain, ConsoleProgramsWhoseAnswersAreOfNoUse)
{
    struct Case {
        std::vector<std::pair<std::string, std::string>> lines;
        std::string kind;
        std::optional<int64_t> number;
    };
    using Lines = std::vector<std::pair<std::string, std::string>>;
    const std::string vpd = "/opt/brisk/bin/qconvpd -v";
    const std::string state = "/opt/brisk/bin/qmstat -r sys -m \"9999-B2C*7ABCD12\" -F state";
    struct Program {
        std::string name;
        std::string function;
        std::pair<std::string, std::string> none; ///< its line without an answer
        std::vector<Case> answers;
    };
    const std::vector<Program> programs = {
        {"whoami",
         "getLoginUserName",
         {"0068", "rc=1, xargc=0, getLoginUserName "},
         {{{{"0068", "rc=0, xargc=2, User=root "}}, "programTalkative", 2},
          {{{"0068", "rc=0, xargc=1, User=  "}}, "programBlank", 1}}},
        {vpd,
         "getQuayFullTM",
         {"0512", " rc=1, xargc=0 "},
         {{{{"0512", " rc=0, xargc=2,  QuayTM=4821-K7Q, len=8, 1 "}}, "programTalkative", 2},
          {{{"0512", " rc=0, xargc=1,  QuayTM= , len=0, 1 "}}, "programBlank", 1}}},
        {vpd,
         "getQuaySE",
         {"052", "rc=1, xargc=0 "},
         {{{{"053", " rc=0, xargc=2,  QuaySE=10ABCDE "}}, "programTalkative", 2},
          {{{"053", " rc=0, xargc=1,  QuaySE=  "}}, "programBlank", 1}}},
        {state,
         "checkSystemState",
         {"0017", "rc=1, xargc=0, 9999-B2C*7ABCD12 "},
         {{{{"0017", "rc=0, xargc=2, 9999-B2C*7ABCD12, state=Operating "}}, "programTalkative", 2}}},
    };
    const std::vector<std::pair<Lines, Case>> reasons = {
        {{{"0066", "excute cmd rc=127, errno=2 "}}, {{}, "programFailed", 127}},
        {{{"0062", "empty file 5, 0 "}, {"0067", "parse cmd rc=1 "}}, {{}, "programSilent", std::nullopt}},
        {{{"0063", " fd  -1 errno="}}, {{}, "programUnread", std::nullopt}},
        {{{"0064", "read  errno="}, {"0067", "parse cmd rc=1 "}}, {{}, "programUnread", std::nullopt}},
        {{}, {{}, "programUnended", std::nullopt}},
    };
    for (const Program& program : programs) {
        std::vector<Case> cases = program.answers;
        for (const auto& [lines, reason] : reasons) {
            cases.push_back({lines, reason.kind, reason.number});
            cases.back().lines.push_back(program.none);
        }
        for (const Case& one : cases) {
            Log log;
            log.start();
            for (const auto& [code, text] : one.lines)
                log.line(code, text);
            const Problem problem = problemIn(log);
            EXPECT_EQ(problem.kind, one.kind) << program.name;
            EXPECT_EQ(problem.number, one.number) << program.name << ' ' << one.kind;
            EXPECT_EQ(problem.program, program.name) << one.kind;
            EXPECT_EQ(problem.function, program.function) << one.kind;
            EXPECT_EQ(problem.call, "program");
            EXPECT_EQ(problem.severity, Severity::noted) << one.kind;
            const bool hasNoState = program.name == state && one.kind != "programTalkative";
            EXPECT_EQ(document::partWords(problem), hasNoState ? "system 9999-B2C*7ABCD12" : "") << one.kind;
        }
    }
}

TEST(Explain, ConsoleProgramsThatAnswerTellOfTheConsole)
{
    Log log;
    log.start()
        .line("0512", " rc=0, xargc=1,  QuayTM=4821-K7Q, len=8, 1 ")
        .line("053", " rc=0, xargc=1,  QuaySE=10ABCDE ");
    const TracedRun run = runIn(log);
    EXPECT_THAT(run.problems, IsEmpty());
    EXPECT_EQ(run.console, "4821-K7Q-10ABCDE");
    EXPECT_EQ(run.user, "root");
    // Whoever is not root asks by the wrapper.
    for (const std::string user :
         {"rc=0, xargc=1, User=service ", "rc=1, xargc=0, getLoginUserName ", "rc=0, xargc=0, User= "}) {
        Log other;
        other.start().line("0068", user).line("0017", "rc=0, xargc=1, M, state=Standby ");
        const TracedRun asked = runIn(other);
        EXPECT_EQ(asked.user, user.ends_with("service ") ? "service" : "briskroot");
        EXPECT_EQ(asked.problems.back().program,
                  "/opt/tarnquay/bin/mmquaycmd /opt/brisk/bin/qmstat -r sys -m \"M\" -F state");
    }
}

TEST(Explain, AStateProgramThatFailedIsPassedOver)
{
    Log log;
    log.start()
        .line("0109", "wwnn=1, server=0 ")
        .line("0109", " partner P")
        .line("0066", "excute cmd rc=1, errno=0 ")
        .line("0017", "rc=1, xargc=0, 9999-B2C*7ABCD12 ");
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.kind, "programFailed");
    EXPECT_EQ(problem.number, 1);
    EXPECT_EQ(problem.severity, Severity::noted);
    EXPECT_EQ(problem.program, "/opt/brisk/bin/qmstat -r sys -m \"9999-B2C*7ABCD12\" -F state");
}

TEST(Explain, ASystemThatIsNotOperating)
{
    Log log;
    log.start()
        .line("0109", "wwnn=1, server=0 ")
        .line("0109", " partner P")
        .line("0017", "rc=0, xargc=1, 9999-B2C*7ABCD12, state=Standby ")
        .event("addTarnKord", "s")
        .exit(-1);
    const TracedRun run = runIn(log);
    ASSERT_THAT(run.problems, SizeIs(1));
    EXPECT_EQ(run.problems[0].kind, "notOperating");
    EXPECT_EQ(run.problems[0].message, "Standby");
    EXPECT_EQ(document::partWords(run.problems[0]), "system 9999-B2C*7ABCD12");
    EXPECT_THAT(run.problems[0].events, SizeIs(1));
    EXPECT_EQ(document::missingBy(run, run.problems[0]),
              "all: no document was started, one of an earlier run lies there as it was");
}

TEST(Explain, ADocumentThatCouldNotBeStartedEndsWithSuccess)
{
    Log log;
    log.checks();
    log.log.resize(log.log.rfind("112126")); // without the document's start
    log.line("0700", " open xmlfile error /var/adm/stockmere/VPD/x.xml \n")
        .event("addSystemKord", "d")
        .line("0007", " startXml 1 ")
        .finalChecks()
        .exit(3);
    const TracedRun run = runIn(log);
    ASSERT_THAT(run.problems, SizeIs(1)) << document::explanation(run, 0);
    EXPECT_EQ(run.problems[0].kind, "documentNotStarted");
    EXPECT_EQ(run.problems[0].call, "file");
    EXPECT_EQ(run.problems[0].events.at(0).referenceCode, "BED00005");
    EXPECT_THAT(document::explanation(run, 1), HasSubstr("It ended with status 3, but wrote no document."));
}

/// Whatever the reason, which no line tells here.
TEST(Explain, ADocumentWhoseHeadCouldNotBeWritten)
{
    Log log;
    log.checks();
    log.log.resize(log.log.rfind("112126"));
    log.event("addSystemKord", "d").line("0007", " startXml 1 ");
    const Problem problem = problemIn(log);
    EXPECT_EQ(problem.kind, "documentNotStarted");
    EXPECT_EQ(problem.call, "file");
    EXPECT_EQ(problem.events.at(0).referenceCode, "BED00005");
}

// ---- what is not borne out ----

TEST(Explain, AValueThatLooksLikeALineSaysNothing)
{
    Log log;
    log.checks()
        .entry("queryScsiHostPort")
        .line("0677", " add 112126 13:41:03 0010:  exit 3 ------------------, 1");
    EXPECT_EQ(runIn(log).status, std::nullopt);
}

TEST(Explain, ManyProblemsAreCounted)
{
    Log log = drivesAsked();
    for (int i = 0; i < 5000; ++i)
        log.line("0303", " response 262152, absent\n");
    const TracedRun run = runIn(log);
    EXPECT_EQ(run.problems.size(), 2000U);
    EXPECT_EQ(run.furtherProblems, 3000U);
    log.line("0301", "  TarnDDM 7, gone");
    const TracedRun ended = runIn(log);
    EXPECT_EQ(ended.problems.size(), 2000U);
    EXPECT_EQ(ended.problems.front().line, run.problems.front().line);
    EXPECT_EQ(ended.problems.back().kind, "callFailed") << "what ended the run is told";
}

TEST(Explain, WhatAMachineSaidIsShownSafely)
{
    Log log = drivesAsked();
    log.line("0301", "  TarnDDM 7, \x1b[2J\xe2\x80\xae").event("queryDDM", "r").exit(-1);
    const std::string text = document::explanation(runIn(log), 1);
    EXPECT_THAT(text, HasSubstr("\\x1B[2J\\u{202E}"));
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
}

TEST(Explain, JsonIsWhatItsSchemaSays)
{
    Log log = drivesAsked();
    log.line("0301", "  TarnDDM 7, \xff").event("queryDDM", "r").exit(-1);
    const std::string json = "{\"runs\": [" + document::explanationJson(runIn(log)) + "]}";
    EXPECT_THAT(kordTest::schemaFaults(
                    std::string(KORD_SOURCE_DIR) + "/document/schema/kord-explain.schema.json", json),
                IsEmpty())
        << json;
}

// ---- selections and formats ----

TEST(Selection, IsTakenApart)
{
    const auto items = document::itemsOf("(a=\"x y\") && (b=10) && c =? 'z%'  && (d=1 || d=2)");
    ASSERT_THAT(items, SizeIs(5));
    EXPECT_EQ(items[0].value, "x y");
    EXPECT_EQ(items[1].value, "10");
    EXPECT_TRUE(items[2].begins);
    EXPECT_EQ(items[2].value, "z");
    EXPECT_EQ(items[4].value, "2");
    EXPECT_THAT(document::itemsOf("=\"'==?=?"), SizeIs(0));
    EXPECT_EQ(document::itemsOf("a=\"x\"b='y'").at(1).key, "b");
    EXPECT_EQ(document::itemsOf("a=\"\" && b='y'").at(1).key, "b");
    EXPECT_THAT(document::itemsOf("a=\"unended"), SizeIs(1));
}

TEST(LineFormat, TakesTextsApart)
{
    const auto values = [](const char* format, std::string_view text) {
        const auto found = document::LineFormat(format).match(text);
        return found ? std::vector<std::string>(found->begin(), found->end())
                     : std::vector<std::string>{"none"};
    };
    EXPECT_THAT(values(" response %d, %s", " response -7, a, b"), ElementsAre("-7", "a, b"));
    EXPECT_THAT(values("%s, %d", "a, b, 7"), ElementsAre("a, b", "7"));
    EXPECT_THAT(values("response %d, %s, %s", "response 7, a, b, c"), ElementsAre("7", "a, b", "c"));
    EXPECT_THAT(values(" %s ", " x "), ElementsAre("x"));
    EXPECT_THAT(values("a=? '%s%%'", "a=? 'x%'"), ElementsAre("x"));
    EXPECT_THAT(values(" RackLocation= %s, %s, %s, %d, %s", " RackLocation= a, b, 1, 1, c"),
                ElementsAre("a", "b", "1", "1", "c"));
    EXPECT_THAT(values("close file", "close file"), IsEmpty());
    EXPECT_THAT(values("close file", "close files"), ElementsAre("none"));
    EXPECT_THAT(values("%s, end", "x, and"), ElementsAre("none"));
    EXPECT_THAT(values("%s, %d", "x, y"), ElementsAre("none"));
    EXPECT_THAT(values("%s, %d", "x, -"), ElementsAre("none"));
    EXPECT_THAT(values("%s, %d", "x, -7"), ElementsAre("x", "-7"));
    EXPECT_THAT(values("%d", ""), ElementsAre("none"));
    EXPECT_THAT(values("%d", std::string_view("789").substr(0, 2)), ElementsAre("78"));
    EXPECT_THAT(values(" %d, %s", " 7"), ElementsAre("none"));
    EXPECT_THAT(values("%s%d", "12"), ElementsAre("", "12"));
    EXPECT_THAT(values("%s%d", "-12"), ElementsAre("", "-12"));
}

TEST(Tables, HoldTheCollectorsQueries)
{
    const document::TableQuery* query = document::tables().query("queryDDM");
    ASSERT_NE(query, nullptr);
    EXPECT_EQ(query->className, "Orvik.TarnDDM");
    EXPECT_EQ(document::tables().event("r").referenceCode, "BED00001");
    EXPECT_EQ(document::tables().event("m").referenceCode, "BED00005");
    EXPECT_THAT(document::tables().event("s").advice, HasSubstr("run again"));
    EXPECT_TRUE(query->tracesSelection);
    for (const document::TableQuery& one : document::tables().queries)
        EXPECT_EQ(one.tracesSelection,
                  std::ranges::count(one.lines, "selection", &document::TableLine::role) > 0)
            << one.function;
}

} // namespace
