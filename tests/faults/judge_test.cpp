// The judge finds what is wrong: one that accepted everything would make every sweep pass. A regular run is
// right; each doctored form of it is not.

#include <gtest/gtest.h>

#include "account.h"
#include "judge.h"

namespace
{

using sweep::Findings;
using sweep::json;
using sweep::Kind;
using sweep::Plan;
using sweep::Result;

const Plan regularPlan{.name = "regular"};

const Result& regularRun()
{
    static const Result result = runOnce(regularPlan);
    return result;
}

/// A failing run: the drives of one enclosure cannot be had.
const Plan failingPlan{.name = "failing",
                       .faults =
                           [] {
                               return json::array({{{"class", "Orvik.TarnDDM"},
                                                    {"nth", 2},
                                                    {"error", {{"number", 9}, {"message", "no drive\n"}}}}});
                           },
                       .mustFire = {0}};

const Result& failingRun()
{
    static const Result result = runOnce(failingPlan);
    return result;
}

std::string textOf(const Findings& findings)
{
    std::string text;
    for (const sweep::Finding& finding : findings) {
        text += finding.what + "\n";
    }
    return text;
}

Findings judged(const Plan& plan, const Result& result)
{
    Findings findings;
    judgeRun(plan, result, findings);
    return findings;
}

using Doctor = std::function<void(Result&)>;

/// Something of this kind is found, and it says so.
void expectFound(const Plan& plan, const Result& right, const Doctor& doctor, Kind kind,
                 const std::string& said)
{
    Result result = right;
    doctor(result);
    const Findings findings = judged(plan, result);
    const std::string text = textOf(findings);
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(findings[0].kind, kind) << text;
    EXPECT_NE(text.find(said), std::string::npos) << text;
}

void expectBroken(const Doctor& doctor, const std::string& said)
{
    expectFound(regularPlan, regularRun(), doctor, Kind::broken, said);
}

void expectFailingBroken(const Doctor& doctor, const std::string& said)
{
    expectFound(failingPlan, failingRun(), doctor, Kind::broken, said);
}

void replace(std::string& text, const std::string& from, const std::string& to)
{
    const size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
}

json& firstLine(Result& result, const std::string& key, const std::string& value)
{
    for (json& line : result.journal) {
        if (line.value(key, "") == value) return line;
    }
    throw std::runtime_error("no line with " + value);
}

void removeLine(Result& result, const std::string& key, const std::string& value)
{
    const json line = firstLine(result, key, value);
    std::erase(result.journal, line);
}

constexpr const char* poster = "/opt/tarnquay/bin/pmProblemEventPoster";

TEST(Judge, acceptsARegularRun)
{
    EXPECT_EQ(textOf(judged(regularPlan, regularRun())), "");
}

TEST(Judge, acceptsAFailingRun)
{
    EXPECT_EQ(textOf(judged(failingPlan, failingRun())), "");
    EXPECT_EQ(failingRun().outcome.output, "Add System Kord fails.\n");
}

TEST(Judge, findsCrashesAndHangs)
{
    const auto crashed = [](Result& result) { result.outcome.status = 134; };
    const auto stuck = [](Result& result) { result.outcome.timedOut = true; };
    const auto unstarted = [](Result& result) { result.outcome.status = 125; };
    expectFound(regularPlan, regularRun(), crashed, Kind::crash, "134");
    expectFound(regularPlan, regularRun(), stuck, Kind::hang, "limit");
    expectFound(regularPlan, regularRun(), unstarted, Kind::broken, "not started");
}

TEST(Judge, knowsTheEnd)
{
    expectBroken([](Result& result) { result.outcome.status = 255; }, "exit status");
    expectBroken([](Result& result) { result.outcome.output = "Check State fails.\n"; }, "standard output");
    expectBroken([](Result& result) { result.outcome.output.clear(); }, "standard output");
    expectFailingBroken([](Result& result) { result.outcome.status = 3; }, "exit status");
    expectFailingBroken([](Result& result) { result.outcome.output = "Query Partition fails.\n"; },
                        "standard output");
}

TEST(Judge, findsLeaks)
{
    const auto keptAnswer = [](Result& result) { firstLine(result, "vale", "exit")["responses"] = {7}; };
    const auto keptMessage = [](Result& result) { firstLine(result, "vale", "exit")["messages"] = 1; };
    const auto keptRecord = [](Result& result) { firstLine(result, "vale", "exit")["errors"] = 1; };
    expectFound(regularPlan, regularRun(), keptAnswer, Kind::leak, "responses [7]");
    expectFound(regularPlan, regularRun(), keptMessage, Kind::leak, "messages");
    expectFound(regularPlan, regularRun(), keptRecord, Kind::leak, "errors");
    expectBroken([](Result& result) { removeLine(result, "vale", "exit"); }, "no account");
    expectBroken([](Result& result) { firstLine(result, "vale", "exit")["sessions"] = {4}; },
                 "open sessions");
}

TEST(Judge, knowsTheCalls)
{
    expectBroken([](Result& result) { removeLine(result, "vale", "end_session"); }, "sessions ended");
    expectBroken([](Result& result) { removeLine(result, "vale", "query_d_select"); }, "checks");
    expectFailingBroken(
        [](Result& result) {
            json query = firstLine(result, "class", "Orvik.TarnRack");
            result.journal.push_back(query);
        },
        "after the run failed");
}

TEST(Judge, knowsTheTraceLog)
{
    expectBroken([](Result& result) { result.log += "112126 13:00:00 0008: close file\n"; }, "trace log");
    expectBroken([](Result& result) { replace(result.log, "exit 3 -", "exit -1 -"); }, "trace log");
    expectBroken(
        [](Result& result) {
            result.log.insert(0, "0019: Function completed with minor errors detected.\n");
        },
        "minor errors");
}

TEST(Judge, knowsTheEvents)
{
    expectFailingBroken([](Result& result) { removeLine(result, "program", poster); }, "events");
    expectFailingBroken(
        [](Result& result) { firstLine(result, "program", poster)["arguments"][7] = "BED00000"; }, "events");
    expectFailingBroken(
        [](Result& result) { firstLine(result, "program", poster)["arguments"][17] = "no drive"; }, "event");
    expectFailingBroken(
        [](Result& result) { firstLine(result, "program", poster)["arguments"][1] = "another"; }, "event");
    expectFailingBroken(
        [](Result& result) { firstLine(result, "program", poster)["arguments"].push_back("more"); }, "event");
}

TEST(Judge, knowsTheWrapper)
{
    expectBroken([](Result& result) { result.facility["console"]["user"] = "operator"; }, "wrapped");
}

TEST(Judge, knowsTheDocument)
{
    expectBroken([](Result& result) { result.document.reset(); }, "no document");
    expectBroken([](Result& result) { replace(*result.document, "</ResourceList>\n", ""); }, "clos");
    expectBroken([](Result& result) { replace(*result.document, "</ResourceSet>\n", ""); }, "document");
    expectBroken(
        [](Result& result) {
            replace(*result.document, "<Resource displayName=\"Rank\"", "<Resource displayName=\"rank\"");
        },
        "number of Rank");
    expectBroken([](Result& result) { replace(*result.document, "v0=9,", "v0=8,"); }, "counts");
    expectFailingBroken([](Result& result) { replace(*result.document, "</ResourceSet>\n", ""); },
                        "document");
}

/// Two partitions with cards in each of two drawers: a list is never closed in either.
TEST(Judge, accountsForTheDrawersLists)
{
    EXPECT_EQ(accountOf(regularRun()).missingClosings, 2);
    expectBroken(
        [](Result& result) {
            const std::string cardList = "<ResourceList displayName=\"Enclosures Partitions\">\n";
            const size_t second = result.document->find(cardList, result.document->find(cardList) + 1);
            result.document->insert(second, "</ResourceList>\n");
        },
        "missing closings");
}

TEST(Judge, findsWhatIsLeft)
{
    expectBroken([](Result& result) { result.temporaryFiles = {"tmp.7ABCD12"}; }, "command output left");
}

TEST(Judge, findsRulesNeverMet)
{
    const auto unused = [](Result& result) { firstLine(result, "vale", "exit")["unused"] = {0}; };
    expectFound(failingPlan, failingRun(), unused, Kind::broken, "never met");
}

TEST(Judge, comparesTwoRuns)
{
    const auto differs = [](const Doctor& doctor) {
        Result second = regularRun();
        doctor(second);
        Findings findings;
        judgeRepetition(regularRun(), second, findings);
        return !findings.empty();
    };
    EXPECT_FALSE(differs([](Result&) {}));
    EXPECT_FALSE(differs([](Result& result) {
        const size_t stamp = result.document->find("timestamp=\"") + 11;
        result.document->insert(stamp, "1");
    }));
    EXPECT_TRUE(differs([](Result& result) { *result.document += "\n"; }));
    EXPECT_TRUE(differs([](Result& result) { result.log += "more\n"; }));
    EXPECT_TRUE(differs([](Result& result) { result.journal.pop_back(); }));
    EXPECT_TRUE(differs([](Result& result) { result.outcome.output += " "; }));
    EXPECT_TRUE(differs([](Result& result) { result.outcome.status = 255; }));
}

} // namespace
