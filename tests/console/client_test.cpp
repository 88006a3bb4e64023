// The simulated client as a collector sees it: answers, failures, what must be released, and the journal.

#include "client_run.h"
#include "parseJson.h"
#include "pattern.h"

#include <csignal>

#include <gtest/gtest.h>
#include <malloc.h>

using namespace clientTest;

namespace
{

constexpr const char* rack = "Orvik.TarnRack";
constexpr const char* array = "Orvik.TarnArray";

constexpr const char* someParts = R"({"resources": {
    "Orvik.ManagedNode": [{"LParID": "1", "Status": 1}],
    "Orvik.TarnRack": [
        {"rackNumber": "R1", "storageFacilityMTMS": "F", "rackIdentifier": 4294967295},
        {"storageFacilityMTMS": "G", "locationCode": "U2"},
        {"locationCode": "U3", "storageFacilityMTMS": "F", "rackNumber": "R3"}],
    "Orvik.TarnArray": [
        {"rank": -7, "arraySites": [3, -1], "arraySiteConfiguration": ["S1", ""]},
        {"arraySites": [], "arraySiteConfiguration": []}],
    "Orvik.TarnServerPartition": [
        {"locationCode": "L1", "runningImageLevel": [0, "5.1.0.309"]},
        {"locationCode": "L2"}]}})";

TEST(ClientQuery, GivesAResponseForEachMatchInFileOrder)
{
    journalOf(someParts, [] {
        const Query answer(startSession(2), rack, "storageFacilityMTMS=\"F\" ",
                           {"locationCode", "rackNumber"});
        ASSERT_EQ(answer.result, 0);
        ASSERT_EQ(answer.count, 2U);
        EXPECT_EQ(answer[0].error.number, 0U);
        EXPECT_NE(answer[0].handle, nullptr);
        EXPECT_EQ(brief(answer[0]), "rackNumber=\"R1\"") << "an attribute that is lacking is left out";
        EXPECT_EQ(brief(answer[1]), "locationCode=\"U3\" rackNumber=\"R3\"") << "in the requested order";
    });
}

TEST(ClientQuery, GivesEveryResourceWithoutASelection)
{
    journalOf(someParts, [] {
        const Query answer(startSession(2), rack, nullptr, {"storageFacilityMTMS"});
        ASSERT_EQ(answer.count, 3U);
        EXPECT_EQ(brief(answer[1]), "storageFacilityMTMS=\"G\"");
    });
}

TEST(ClientQuery, WithoutAMatchSucceedsWithNone)
{
    const auto journal = journalOf(someParts, [] {
        const Query answer(startSession(2), rack, "rackNumber=\"R9\"", {"rackNumber"});
        EXPECT_EQ(answer.result, 0);
        EXPECT_EQ(answer.count, 0U);
    });
    EXPECT_EQ(journal.at(1)["count"], 0);
    EXPECT_EQ(journal.back()["responses"], Json::array());
}

TEST(ClientQuery, GivesValuesInTheirTypes)
{
    journalOf(someParts, [] {
        const Query racks(startSession(2), rack, "rackNumber='R1'", {"rackIdentifier", "rackNumber"});
        EXPECT_EQ(brief(racks[0]), "rackIdentifier=4294967295u rackNumber=\"R1\"");
        const Query arrays(startSession(4), array, nullptr, {"rank", "arraySites", "arraySiteConfiguration"});
        ASSERT_EQ(arrays.count, 2U);
        EXPECT_EQ(brief(arrays[0]), "rank=-7 arraySites=[3][-1] arraySiteConfiguration=[\"S1\"][\"\"]");
        EXPECT_EQ(brief(arrays[1]), "arraySites= arraySiteConfiguration=");
    });
}

TEST(ClientQuery, DynamicAttributesAreReadTheSameWay)
{
    const auto journal = journalOf(someParts, [] {
        Answer<ValeQueryResponse> answer;
        const char* names[] = {"Status"};
        answer.result = vale_query_d_select(startSession(1), &answer.responses, &answer.count,
                                            "Orvik.ManagedNode", "LParID=\"1\"", names, 1);
        ASSERT_EQ(answer.count, 1U);
        EXPECT_EQ(brief(answer[0]), "Status=1");
    });
    EXPECT_EQ(withoutNumber(journal.at(1)), kordTest::parseJson(R"({"vale": "query_d_select", "scope": 1,
        "class": "Orvik.ManagedNode", "selection": "LParID=\"1\"", "attributes": ["Status"],
        "result": 0, "count": 1})"));
}

TEST(ClientEnumeration, GivesOneResponseWithAllHandles)
{
    journalOf(someParts, [] {
        auto* const session = startSession(2);
        const Enumeration two(session, rack, "storageFacilityMTMS='F'");
        ASSERT_EQ(two.count, 1U);
        ASSERT_EQ(two[0].handleCount, 2U);
        EXPECT_STREQ(two[0].className, rack);
        EXPECT_NE(two[0].handles[0], two[0].handles[1]);
        const Enumeration none(session, rack, "storageFacilityMTMS='X'");
        ASSERT_EQ(none.count, 1U);
        EXPECT_EQ(none[0].handleCount, 0U);
    });
}

TEST(ClientAction, GivesTheRunningImageLevel)
{
    journalOf(someParts, [] {
        auto* const session = startSession(4);
        const Enumeration partitions(session, partition, nullptr);
        ASSERT_EQ(partitions[0].handleCount, 2U);
        const Action level(session, partitions[0].handles[0]);
        ASSERT_EQ(level.count, 1U);
        ASSERT_EQ(level[0].result.count, 2U);
        EXPECT_EQ(level[0].result.elements[0].type, VALE_INTEGER);
        EXPECT_EQ(level[0].result.elements[0].value.integer, 0);
        EXPECT_EQ(level[0].result.elements[1].type, VALE_TEXT);
        EXPECT_STREQ(level[0].result.elements[1].value.text, "5.1.0.309");
        const Action none(session, partitions[0].handles[1]);
        ASSERT_EQ(none.count, 1U);
        EXPECT_EQ(none[0].result.count, 0U);
    });
}

TEST(ClientAction, FailsForAnyOtherActionOrInput)
{
    journalOf(someParts, [] {
        auto* const session = startSession(4);
        const Enumeration partitions(session, partition, nullptr);
        auto* const resource = partitions[0].handles[0];
        Action(session, resource, "queryImageLevel").expectFailure();
        Action(session, resource, nullptr).expectFailure();
        Action(session, resource, "queryRunningImageLevel", "s").expectFailure();
        Action(session, resource, "queryRunningImageLevel", nullptr).expectFailure();
        Action(session, nullptr).expectFailure();
        Answer<ValeActionResponse> withoutInput;
        withoutInput.result = vale_invoke_action(session, &withoutInput.responses, &withoutInput.count,
                                                 resource, "queryRunningImageLevel", nullptr);
        withoutInput.expectFailure();
    });
}

TEST(ClientFailure, OfTheWrongScopeSaysWhichClass)
{
    const auto journal = journalOf(someParts, [] {
        auto* const session = startSession(4);
        Query(session, rack, nullptr, {}).expectFailure();
        EXPECT_NE(lastMessage().find(rack), std::string::npos);
        Enumeration(session, "Orvik.Nothing", nullptr).expectFailure();
        const std::string message = lastMessage();
        EXPECT_NE(message.find("Orvik.Nothing"), std::string::npos);
        EXPECT_EQ(message.back(), '\n') << "consumers drop the last character";
    });
    EXPECT_NE(journal.at(1)["result"], 0);
    EXPECT_EQ(journal.at(1)["count"], 0);
    EXPECT_EQ(journal.at(6)["handles"], 0);
}

TEST(ClientFailure, OfANullSessionIsJournaledWithScope0)
{
    const auto journal = journalOf(someParts, [] {
        Query(nullptr, rack, nullptr, {}).expectFailure();
        EXPECT_NE(lastMessage().find("session"), std::string::npos);
        Enumeration(nullptr, rack, nullptr).expectFailure();
        EXPECT_NE(vale_end_session(nullptr), 0);
    });
    EXPECT_EQ(journal.at(0)["scope"], 0);
    EXPECT_EQ(journal.at(5)["scope"], 0);
    EXPECT_EQ(journal.at(6)["vale"], "end_session");
    EXPECT_EQ(journal.at(6)["scope"], 0);
}

TEST(ClientFailure, OfAMalformedSelectionNamesTheColumn)
{
    journalOf(someParts, [] {
        auto* const session = startSession(2);
        Query(session, rack, "rackNumber=R1", {}).expectFailure();
        EXPECT_NE(lastMessage().find("column 12"), std::string::npos);
        Enumeration(session, rack, "rackNumber=\"R1\" &").expectFailure();
        EXPECT_NE(lastMessage().find("column 17"), std::string::npos);
    });
}

/// What people read of a call that failed, each ending in the line feed that consumers drop.
TEST(ClientFailure, SaysWhatIsWrong)
{
    const std::string noClass = "no class is named, or the handle is of no resource\n";
    const std::vector<std::pair<std::string, std::string>> malformed = {
        {"rackNumber=R1", "a text or a number expected at column 12"},
        {"rackNumber=?1", "a text expected at column 13"},
        {"rackNumber \"R1\"", "= or =? expected at column 12"},
        {"=\"R1\"", "an attribute name expected at column 1"},
        {"1=\"R1\"", "an attribute name expected at column 1"},
        {"rackNumber=\"R1\" &", "&& or || expected at column 17"},
        {"(rackNumber=\"R1\"", "a ) expected at column 17"}};
    journalOf(someParts, [&] {
        auto* const session = startSession(4);
        const auto expect = [](const auto& answer, const std::string& message) {
            answer.expectFailure();
            EXPECT_EQ(lastMessage(), message);
        };
        expect(Query(nullptr, rack, nullptr, {}), "query_p_select without a session\n");
        expect(Enumeration(nullptr, rack, nullptr), "enumerate_resources without a session\n");
        expect(Action(nullptr, nullptr), "invoke_action without a session\n");
        expect(Query(session, nullptr, nullptr, {}), noClass);
        expect(Action(session, nullptr), noClass);
        expect(Query(session, "Orvik.Nothing", nullptr, {}), "class \"Orvik.Nothing\" is unknown\n");
        expect(Query(session, rack, nullptr, {}),
               "class \"" + std::string(rack) +
                   "\" is not served to a session of scope 4, only to one of scope 2\n");
        const Enumeration partitions(session, partition, nullptr);
        auto* const resource = partitions[0].handles[0];
        expect(Action(session, resource, "queryImageLevel"), "action \"queryImageLevel\" is unknown\n");
        expect(Action(session, resource, nullptr), "action (null) is unknown\n");
        expect(Action(session, resource, "queryRunningImageLevel", "s"),
               "queryRunningImageLevel takes the one text \"S\"\n");
        auto* const racks = startSession(2);
        for (const auto& [selection, says] : malformed)
            expect(Query(racks, rack, selection.c_str(), {}),
                   "malformed selection: " + says + ": " + selection + '\n');
        ValeSessionHandle none = nullptr;
        EXPECT_NE(vale_start_session(nullptr, 0, 3, &none), 0);
        EXPECT_EQ(lastMessage(), "there are no sessions of scope 3, only of 1, 2 and 4\n");
        EXPECT_NE(vale_end_session(nullptr), 0);
        EXPECT_EQ(lastMessage(), "no session to end\n");
    });
}

TEST(ClientFailure, OfASessionScopeThatThereIsNot)
{
    journalOf(someParts, [] {
        ValeSessionHandle session = reinterpret_cast<ValeSessionHandle>(1);
        EXPECT_NE(vale_start_session(nullptr, 0, 3, &session), 0);
        EXPECT_EQ(session, nullptr);
        EXPECT_NE(lastMessage().find('3'), std::string::npos);
    });
}

TEST(ClientFailure, OutsideARunSaysHowToStartOne)
{
    ConsoleFolder folder(someParts);
    const int status = folder.play([] {
        unsetenv(console::image::rootVariable);
        ValeSessionHandle session = nullptr;
        EXPECT_NE(vale_start_session(nullptr, 0, 1, &session), 0);
        EXPECT_NE(lastMessage().find("kord-console run"), std::string::npos);
        Query(nullptr, rack, nullptr, {}).expectFailure();
    });
    EXPECT_EQ(status, 0) << folder.error;
    EXPECT_TRUE(folder.journal().empty());
}

TEST(ClientErrors, OutliveWhatTheyCameWith)
{
    const auto journal = journalOf(someParts, [] {
        ValeErrorHandle error = nullptr;
        EXPECT_NE(vale_get_error(&error), 0) << "no call has failed yet";
        EXPECT_EQ(error, nullptr);
        Query(nullptr, rack, nullptr, {}).expectFailure();
        ASSERT_EQ(vale_get_error(&error), 0);
        const char* first = nullptr;
        const char* second = nullptr;
        ASSERT_EQ(vale_get_errmsg(error, &first), 0);
        ASSERT_EQ(vale_get_errmsg(error, &second), 0);
        EXPECT_EQ(vale_rel_error(error), 0);
        EXPECT_EQ(vale_rel_errmsg(first), 0);
        EXPECT_NE(std::string(second), "");
        EXPECT_EQ(vale_rel_errmsg(second), 0);
    });
    EXPECT_EQ(journal.back()["errors"], 0);
    EXPECT_EQ(journal.back()["messages"], 0);
}

/// What no caller may do, and what standard error says of it.
struct Violation {
    const char* name;
    const char* says;
    void (*commit)();
};

void freeTwice()
{
    ValeQueryResponse* responses = nullptr;
    uint32_t count = 0;
    vale_query_p_select(startSession(2), &responses, &count, rack, nullptr, nullptr, 0);
    vale_free_response(responses);
    vale_free_response(responses);
}

void freeTwiceWithAnotherAnswerBetween()
{
    auto* const session = startSession(2);
    ValeQueryResponse* first = nullptr;
    ValeQueryResponse* second = nullptr;
    uint32_t count = 0;
    vale_query_p_select(session, &first, &count, rack, nullptr, nullptr, 0);
    vale_free_response(first);
    vale_query_p_select(session, &second, &count, rack, nullptr, nullptr, 0);
    vale_free_response(first);
}

void freeForeign()
{
    ValeQueryResponse foreign{};
    vale_free_response(&foreign);
}

void useEndedSession()
{
    auto* const session = startSession(2);
    vale_end_session(session);
    startSession(2);
    const Enumeration answer(session, rack, nullptr);
}

void endTwice()
{
    auto* const session = startSession(2);
    vale_end_session(session);
    vale_end_session(session);
}

ValeErrorHandle makeError()
{
    ValeErrorHandle error = nullptr;
    vale_end_session(nullptr);
    vale_get_error(&error);
    return error;
}

void releaseErrorTwice()
{
    auto* const error = makeError();
    vale_rel_error(error);
    makeError();
    vale_rel_error(error);
}

void readReleasedError()
{
    auto* const error = makeError();
    const char* message = nullptr;
    vale_rel_error(error);
    vale_get_errmsg(error, &message);
}

void releaseMessageTwice()
{
    const char* message = nullptr;
    vale_get_errmsg(makeError(), &message);
    vale_rel_errmsg(message);
    vale_rel_errmsg(message);
}

void countNoContacts()
{
    ValeSessionHandle session = nullptr;
    vale_start_session(nullptr, 1, 4, &session);
}

void placeNoSession()
{
    vale_start_session(nullptr, 0, 4, nullptr);
}

void placeNoAnswer()
{
    uint32_t count = 0;
    vale_query_p_select(startSession(4), nullptr, &count, rack, nullptr, nullptr, 0);
}

class ClientViolation : public testing::TestWithParam<Violation>
{
};

TEST_P(ClientViolation, EndsTheProcess)
{
    ConsoleFolder folder(someParts);
    const int status = folder.play(GetParam().commit);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGABRT);
    const kordTest::Pattern line(std::string("vale: ") + GetParam().says +
                                 " \\((0x[0-9a-f]+|\\(nil\\))\\)\n");
    EXPECT_TRUE(line.matches(folder.error)) << folder.error;
}

TEST(ClientAnswer, GivesItsMemoryBack)
{
    if (mallinfo2().uordblks == 0) GTEST_SKIP() << "the sanitizers keep another account";
    journalOf(someParts, [] {
        ValeSessionHandle session = startSession(2);
        const auto ask = [&](int times) {
            while (times-- > 0)
                EXPECT_EQ(Query(session, rack, nullptr, {"locationCode"}).count, 3U);
            return mallinfo2().uordblks;
        };
        const size_t before = ask(100);
        EXPECT_LT(ask(1000), before + 10'000) << "a text alone takes more";
    });
}

TEST(ClientImage, IsNothingThatACollectorCouldChange)
{
    journalOf(someParts, [] {
        startSession(1);
        std::ifstream maps("/proc/self/maps");
        std::string rights;
        for (std::string line; std::getline(maps, line);)
            if (line.ends_with(std::string("/") + console::image::imageFile))
                rights += line.substr(line.find(' '), 6);
        EXPECT_EQ(rights, " r--s ");
    });
}

constexpr const char* freed = "a response not of this client, or freed twice";
constexpr const char* ended = "a session not of this client, or ended";
constexpr const char* released = "an error record not of this client, or released";

INSTANTIATE_TEST_SUITE_P(
    All, ClientViolation,
    testing::Values(Violation{"freeTwice", freed, freeTwice},
                    Violation{"freeTwiceWithAnotherAnswerBetween", freed, freeTwiceWithAnotherAnswerBetween},
                    Violation{"freeForeign", freed, freeForeign},
                    Violation{"useEndedSession", ended, useEndedSession},
                    Violation{"countNoContacts", "a count of no contacts", countNoContacts},
                    Violation{"endTwice", ended, endTwice},
                    Violation{"releaseErrorTwice", released, releaseErrorTwice},
                    Violation{"readReleasedError", released, readReleasedError},
                    Violation{"releaseMessageTwice", "a message not of this client, or released twice",
                              releaseMessageTwice},
                    Violation{"placeNoSession", "no place for a session", placeNoSession},
                    Violation{"placeNoAnswer", "no place for an answer", placeNoAnswer}),
    [](const auto& test) { return test.param.name; });

TEST(ClientJournal, HasALineForEachCall)
{
    const auto journal = journalOf(someParts, [] {
        auto* const session = startSession(4);
        {
            const Enumeration partitions(session, partition, "locationCode=?'L%'");
            const Action level(session, partitions[0].handles[0]);
        }
        const Query failed(session, rack, nullptr, {"rackNumber", "locationCode"});
        lastMessage();
        vale_end_session(session);
    });
    const auto expected = kordTest::parseJson(R"([
        {"seq": 1, "vale": "start_session", "scope": 4, "result": 0},
        {"seq": 2, "vale": "enumerate_resources", "scope": 4, "class": "Orvik.TarnServerPartition",
         "selection": "locationCode=?'L%'", "result": 0, "count": 1, "handles": 2},
        {"seq": 3, "vale": "invoke_action", "scope": 4, "class": "Orvik.TarnServerPartition",
         "action": "queryRunningImageLevel", "input": ["S"], "result": 0, "count": 1},
        {"seq": 4, "vale": "free_response", "of": 3},
        {"seq": 5, "vale": "free_response", "of": 2},
        {"seq": 6, "vale": "query_p_select", "scope": 4, "class": "Orvik.TarnRack", "selection": null,
         "attributes": ["rackNumber", "locationCode"], "result": 1, "count": 0},
        {"seq": 7, "vale": "get_error"},
        {"seq": 8, "vale": "get_errmsg"},
        {"seq": 9, "vale": "rel_errmsg"},
        {"seq": 10, "vale": "rel_error"},
        {"seq": 11, "vale": "end_session", "scope": 4, "result": 0},
        {"seq": 12, "vale": "exit", "sessions": [], "responses": [], "errors": 0, "messages": 0, "unused": []}])");
    EXPECT_EQ(Json(journal), expected);
}

TEST(ClientJournal, TellsWhatWasNeverReleased)
{
    const auto journal = journalOf(someParts, [] {
        startSession(4);
        ValeEnumerateResponse* responses = nullptr;
        uint32_t count = 0;
        vale_enumerate_resources(startSession(2), &responses, &count, rack, nullptr);
        vale_enumerate_resources(startSession(1), &responses, &count, "Orvik.ManagedNode", nullptr);
        const char* message = nullptr;
        vale_get_errmsg(makeError(), &message);
        makeError();
    });
    EXPECT_EQ(withoutNumber(journal.back()), kordTest::parseJson(R"({"vale": "exit", "sessions": [4, 2, 1],
        "responses": [3, 5], "errors": 2, "messages": 1, "unused": []})"));
}

TEST(ClientJournal, HasNoExitLineWithoutACall)
{
    EXPECT_TRUE(journalOf(someParts, [] {}).empty());
}

TEST(ClientJournal, StaysJsonWhateverIsAsked)
{
    const auto journal = journalOf(someParts, [] {
        const Query answer(startSession(2), "\x01\"\\\n",
                           "\xC3\xA4 \xC3( \xED\xA0\x80 \xF4\x90\x80\x80 \xC0\x80 \xE2\x82",
                           {"\xF0\x9F\x98\x80", "\xFF"});
    });
    const std::string bad = "\xEF\xBF\xBD";
    EXPECT_EQ(journal.at(1)["class"], "\x01\"\\\n");
    EXPECT_EQ(journal.at(1)["selection"], "\xC3\xA4 " + bad + "( " + bad + bad + bad + ' ' + bad + bad + bad +
                                              bad + ' ' + bad + bad + ' ' + bad + bad);
    EXPECT_EQ(journal.at(1)["attributes"], Json::array({"\xF0\x9F\x98\x80", bad}));
}

TEST(ClientJournal, OrdersTheLinesOfSeveralProcesses)
{
    constexpr int calls = 5000; // as many as it takes for two to write at once, mostly
    ConsoleFolder folder(someParts);
    std::vector<pid_t> players;
    for (int i = 0; i < 4; ++i) {
        players.push_back(folder.start([] {
            for (int call = 0; call < calls; ++call)
                vale_end_session(nullptr);
        }));
    }
    for (const pid_t player : players)
        EXPECT_EQ(folder.finish(player), 0);
    const auto journal = folder.journal();
    ASSERT_EQ(journal.size(), 4U * (calls + 1));
    for (size_t i = 0; i < journal.size(); ++i)
        ASSERT_EQ(journal[i]["seq"], i + 1);
}

} // namespace
