// Fault rules: which calls they match, how they count, and what each effect makes of an answer.

#include "client_run.h"

#include <chrono>

#include <gtest/gtest.h>

using namespace clientTest;

namespace
{

constexpr const char* ddm = "Orvik.TarnDDM";
constexpr const char* adapter = "Orvik.TarnHA";

/// Two drives and a partition, and these rules.
std::string facilityWith(const std::string& rules)
{
    return R"({"resources": {
        "Orvik.TarnDDM": [{"serialNumber": "A", "diskCapacity": 1}, {"serialNumber": "B"}],
        "Orvik.TarnServerPartition": [{"runningImageLevel": [0, "5.1"]}]},
        "faults": [)" +
           rules + "]}";
}

/// The results of these calls in order, as the journal has them.
std::string results(const std::vector<Json>& journal)
{
    std::string text;
    for (const Json& line : journal) {
        if (line.contains("result")) text += std::to_string(line["result"].get<int>()) + ' ';
    }
    return text;
}

TEST(FaultRules, MatchByCallClassScopeAndSelection)
{
    const auto journal = journalOf(facilityWith(R"(
        {"call": "start_session", "scope": 2, "fails": {"code": 10, "message": "ten\n"}},
        {"call": "enumerate_resources", "class": "Orvik.TarnDDM", "fails": {"code": 11, "message": ""}},
        {"selection": "serialNumber=\"A\" ", "fails": {"code": 12, "message": ""}},
        {"class": "Orvik.TarnDDM", "selectionContains": "Number=\"B", "fails": {"code": 13, "message": ""}},
        {"call": "end_session", "scope": 4, "fails": {"code": 14, "message": ""}})"),
                                   [] {
                                       ValeSessionHandle shared = nullptr;
                                       EXPECT_EQ(vale_start_session(nullptr, 0, 2, &shared), 10);
                                       EXPECT_EQ(shared, nullptr);
                                       EXPECT_EQ(lastMessage(), "ten\n");
                                       auto* const session = startSession(4);
                                       EXPECT_EQ(Enumeration(session, ddm, "serialNumber=\"A\" ").result, 11)
                                           << "the first rule decides";
                                       EXPECT_EQ(Query(session, ddm, "serialNumber=\"A\" ", {}).result, 12);
                                       EXPECT_EQ(Query(session, ddm, "serialNumber=\"A\"", {}).result, 0)
                                           << "the exact text only";
                                       EXPECT_EQ(Query(session, ddm, "serialNumber=\"B\"", {}).result, 13);
                                       EXPECT_EQ(Query(session, adapter, "serialNumber=\"B\"", {}).result, 0);
                                       EXPECT_EQ(Query(session, ddm, nullptr, {}).result, 0);
                                       EXPECT_EQ(vale_end_session(session), 14);
                                   });
    EXPECT_EQ(results(journal), "10 0 11 12 0 13 0 0 14 ");
    EXPECT_EQ(journal.back()["sessions"], Json::array({4})) << "a failed end leaves the session open";
}

TEST(FaultRules, CountEveryCallThatTheirFieldsMatch)
{
    const auto journal = journalOf(facilityWith(R"(
        {"class": "Orvik.TarnDDM", "nth": 2, "fails": {"code": 2, "message": ""}},
        {"class": "Orvik.TarnDDM", "call": "query_p_select", "nth": 2, "fails": {"code": 22, "message": ""}},
        {"class": "Orvik.TarnDDM", "nth": 3, "fails": {"code": 3, "message": ""}},
        {"class": "Orvik.TarnDDM", "nth": 9, "fails": {"code": 9, "message": ""}},
        {"program": "qmstat", "status": 1, "output": ""})"),
                                   [] {
                                       auto* const session = startSession(4);
                                       for (int i = 0; i < 4; ++i)
                                           Query(session, ddm, nullptr, {});
                                   });
    EXPECT_EQ(results(journal), "0 0 2 3 0 ");
    EXPECT_EQ(journal.back()["unused"], Json::array({1, 3}))
        << "the second call was decided by an earlier rule; rules for programs are none of the client's";
}

TEST(FaultRules, CountOverAllProcessesOfARun)
{
    ConsoleFolder folder(
        facilityWith(R"({"call": "start_session", "nth": 3, "fails": {"code": 5, "message": "five\n"}})"));
    for (int i = 0; i < 4; ++i) {
        folder.play([] {
            ValeSessionHandle session = nullptr;
            vale_start_session(nullptr, 0, 1, &session);
        });
    }
    const auto journal = folder.journal();
    EXPECT_EQ(results(journal), "0 0 5 0 ");
    EXPECT_EQ(journal.at(1)["unused"], Json::array({0}));
    EXPECT_EQ(journal.back()["unused"], Json::array());
}

TEST(FaultRules, OfANullSessionDecideToo)
{
    journalOf(facilityWith(R"({"scope": 0, "answer": []})"), [] {
        const Query answer(nullptr, ddm, nullptr, {});
        EXPECT_EQ(answer.result, 0);
        EXPECT_EQ(answer.count, 0U);
    });
}

TEST(FaultError, StandsInTheFirstResponseOfTheRegularAnswer)
{
    journalOf(facilityWith(R"({"class": "Orvik.TarnDDM", "error": {"number": 262152, "message": "busy\n"}})"),
              [] {
                  const Query answer(startSession(4), ddm, nullptr, {"serialNumber"});
                  ASSERT_EQ(answer.count, 2U);
                  EXPECT_EQ(answer[0].error.number, 262152U);
                  EXPECT_STREQ(answer[0].error.message, "busy\n");
                  EXPECT_EQ(brief(answer[0]), "serialNumber=\"A\"");
                  EXPECT_EQ(answer[1].error.number, 0U);
              });
}

TEST(FaultError, ExtendsAnAnswerThatIsTooShort)
{
    const auto journal = journalOf(
        facilityWith(R"({"call": "query_p_select", "error": {"number": 8, "message": "x", "response": 3}},
                        {"call": "enumerate_resources", "error": {"number": 9, "response": 1}})"),
        [] {
            auto* const session = startSession(4);
            const Query answer(session, ddm, "serialNumber='B'", {"serialNumber"});
            ASSERT_EQ(answer.count, 4U);
            EXPECT_EQ(brief(answer[0]), "serialNumber=\"B\"");
            EXPECT_EQ(answer[1].attributeCount, 0U);
            EXPECT_EQ(answer[2].error.number, 0U);
            EXPECT_EQ(answer[3].error.number, 8U);
            EXPECT_EQ(answer[3].attributeCount, 0U);
            const Enumeration handles(session, ddm, nullptr);
            ASSERT_EQ(handles.count, 2U);
            EXPECT_EQ(handles[0].handleCount, 2U);
            EXPECT_EQ(handles[1].error.number, 9U);
            EXPECT_EQ(handles[1].handleCount, 0U);
        });
    EXPECT_EQ(journal.at(1)["count"], 4);
}

TEST(FaultError, OfACallThatFailsRegularlyIsThatFailure)
{
    journalOf(facilityWith(R"({"class": "Orvik.TarnRack", "error": {"number": 8}})"),
              [] { Query(startSession(4), "Orvik.TarnRack", nullptr, {}).expectFailure(); });
}

TEST(FaultAnswer, OfAQueryGivesExactlyItsAttributes)
{
    journalOf(facilityWith(R"({"call": "query_p_select", "answer": [
            {"attributes": [["b", "text"], ["a", null], ["n", -5], ["u", 4294967295], ["i", [1, 2]], ["t", ["x"]]]},
            {"error": {"number": 262154, "message": "gone\n"}},
            {}]})"),
              [] {
                  auto* const session = startSession(4);
                  const Query answer(session, "Orvik.Unknown", "malformed", {"requested"});
                  ASSERT_EQ(answer.count, 3U);
                  EXPECT_EQ(brief(answer[0]), "b=\"text\" a=(null) n=-5 u=4294967295u i=[1][2] t=[\"x\"]");
                  EXPECT_EQ(answer[1].error.number, 262154U);
                  EXPECT_STREQ(answer[1].error.message, "gone\n");
                  EXPECT_EQ(answer[2].error.number, 0U);
                  EXPECT_EQ(answer[2].attributeCount, 0U);
              });
}

TEST(FaultAnswer, OfAnEnumerationGivesHandlesThatActionsTake)
{
    const auto journal = journalOf(facilityWith(R"(
        {"call": "enumerate_resources", "answer": [{"handles": 3}, {"handles": 1}]},
        {"call": "invoke_action", "class": "Orvik.TarnServerPartition", "nth": 2,
         "answer": [{"elements": [7, "text", null]}, {"error": {"number": 4}}]})"),
                                   [] {
                                       auto* const session = startSession(4);
                                       const Enumeration handles(session, partition, nullptr);
                                       ASSERT_EQ(handles.count, 2U);
                                       ASSERT_EQ(handles[0].handleCount, 3U);
                                       EXPECT_NE(handles[0].handles[0], handles[0].handles[1]);
                                       EXPECT_EQ(handles[1].handleCount, 1U);
                                       const Action regular(session, handles[0].handles[2]);
                                       ASSERT_EQ(regular.count, 1U);
                                       EXPECT_EQ(regular[0].result.count, 0U)
                                           << "there is no resource behind the handle";
                                       const Action answered(session, handles[1].handles[0]);
                                       ASSERT_EQ(answered.count, 2U);
                                       ASSERT_EQ(answered[0].result.count, 3U);
                                       EXPECT_EQ(answered[0].result.elements[0].value.integer, 7);
                                       EXPECT_STREQ(answered[0].result.elements[1].value.text, "text");
                                       EXPECT_EQ(answered[0].result.elements[2].type, VALE_TEXT);
                                       EXPECT_EQ(answered[0].result.elements[2].value.text, nullptr);
                                       EXPECT_EQ(answered[1].error.number, 4U);
                                   });
    EXPECT_EQ(journal.at(1)["handles"], 4);
    EXPECT_EQ(journal.at(1)["count"], 2);
}

TEST(FaultAnswer, OfNothingIsASuccessfulAnswer)
{
    journalOf(facilityWith(R"({"class": "Orvik.TarnDDM", "answer": []})"), [] {
        auto* const session = startSession(4);
        const Query query(session, ddm, nullptr, {"serialNumber"});
        EXPECT_EQ(query.result, 0);
        EXPECT_EQ(query.count, 0U);
        const Enumeration enumeration(session, ddm, nullptr);
        EXPECT_EQ(enumeration.result, 0);
        EXPECT_EQ(enumeration.count, 0U);
    });
}

TEST(FaultDelay, AloneLeavesTheRegularAnswer)
{
    journalOf(facilityWith(R"({"class": "Orvik.TarnDDM", "delay": 50},
                              {"class": "Orvik.TarnDDM", "fails": {"code": 3, "message": ""}})"),
              [] {
                  auto* const session = startSession(4);
                  const auto start = std::chrono::steady_clock::now();
                  const Query answer(session, ddm, nullptr, {});
                  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
                  EXPECT_EQ(answer.count, 2U) << "the delay decided, not the rule behind it";
              });
}

} // namespace
