// Facility files: what is refused and where, and what the image of a good one holds.

#include "facility/compile.h"
#include "facility/fault.h"
#include "image/run.h"
#include "pattern.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

using namespace console;
using facility::Compilation;
using facility::compile;

std::string lines(const facility::Faults& faults)
{
    std::string text;
    for (const facility::Fault& fault : faults)
        text += toLine(fault) + '\n';
    return text;
}

std::string read(const std::filesystem::path& path)
{
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

struct Malformed {
    const char* name;
    const char* file;
    std::vector<std::string> pointers; ///< of all its faults
    const char* what = "";             ///< part of the first fault
};

void PrintTo(const Malformed& malformed, std::ostream* stream)
{
    *stream << malformed.file;
}

class MalformedFacility : public testing::TestWithParam<Malformed>
{
};

TEST_P(MalformedFacility, IsRefusedAtItsPlace)
{
    const Compilation compilation = compile(GetParam().file);
    EXPECT_TRUE(compilation.image.empty());
    std::multiset<std::string> found;
    for (const facility::Fault& fault : compilation.faults)
        found.insert(fault.pointer);
    const std::vector<std::string>& pointers = GetParam().pointers;
    EXPECT_EQ(found, std::multiset<std::string>(pointers.begin(), pointers.end()))
        << lines(compilation.faults);
    ASSERT_FALSE(compilation.faults.empty());
    EXPECT_NE(compilation.faults.front().what.find(GetParam().what), std::string::npos)
        << lines(compilation.faults);
}

const Malformed malformedFrames[] = {
    {"empty", "", {""}, "line 1, column 1"},
    {"notJson", "{\n  \"console\": {,\n", {""}, "line 2, column 15"},
    {"cutOff", R"({"faults": [)", {""}, "line 1"},
    {"trailing", "{} x", {""}, "line 1, column 4"},
    {"notUtf8", "{\"systems\": {\"a\": \"\xff\"}}", {""}, "line 1"},
    {"hugeNumber", R"({"faults": [{"delay": 1e999}]})", {""}, "1e999"},
    {"list", "[]", {""}, "an object"},
    {"number", "7", {""}, "an object"},
    {"unknownPart", R"({"console": {}, "resource": {}})", {"/resource"}, "not known"},
    {"twoUnknownParts", R"({"a": 1, "b": 2})", {"/a", "/b"}, "not known"},
    {"unusualKey", R"({"a/b~c": 1})", {"/a~1b~0c"}, "not known"},
    {"consoleText", R"({"console": "root"})", {"/console"}, "an object"},
    {"consoleKey", R"({"console": {"users": "root"}})", {"/console/users"}, "not known"},
    {"userNumber", R"({"console": {"user": 0}})", {"/console/user"}, "a text or null"},
    {"vpdText", R"({"console": {"vpd": "*TM 4821-K7Q"}})", {"/console/vpd"}, "a list of texts"},
    {"vpdNull", R"({"console": {"vpd": null}})", {"/console/vpd"}, "a list of texts"},
    {"vpdLine", R"({"console": {"vpd": ["*TM 4821-K7Q", 10]}})", {"/console/vpd/1"}, "a text"},
    {"systemsList", R"({"systems": ["9999-B2C*7ABCD12"]})", {"/systems"}, "an object"},
    {"systemState", R"({"systems": {"9999-B2C*7ABCD12": 1}})", {"/systems/9999-B2C*7ABCD12"}, "a text"},
    {"systemTwice", R"({"systems": {"a": "x", "b": "x", "a": "y"}})", {"/systems/a"}, "more than once"},
    {"partTwice", R"({"faults": [], "faults": []})", {"/faults"}, "more than once"},
    {"nulInText", R"({"systems": {"a": "x\u0000y"}})", {"/systems/a"}, "NUL"},
};

const Malformed malformedResources[] = {
    {"resourcesList", R"({"resources": []})", {"/resources"}, "an object"},
    {"unknownClass",
     R"({"resources": {"Orvik.TarnShelf": []}})",
     {"/resources/Orvik.TarnShelf"},
     "not known"},
    {"unknownClassWithResources",
     R"({"resources": {"Orvik.TarnShelf": [{"a": 1}]}})",
     {"/resources/Orvik.TarnShelf"},
     "not known"},
    {"classCase", R"({"resources": {"Orvik.tarnRack": []}})", {"/resources/Orvik.tarnRack"}, "not known"},
    {"classObject",
     R"({"resources": {"Orvik.TarnRack": {}}})",
     {"/resources/Orvik.TarnRack"},
     "a list of resources"},
    {"classTwice",
     R"({"resources": {"Orvik.TarnRack": [], "Orvik.TarnRack": []}})",
     {"/resources/Orvik.TarnRack"},
     "more than once"},
    {"resourceText",
     R"({"resources": {"Orvik.TarnRack": [{}, "R1"]}})",
     {"/resources/Orvik.TarnRack/1"},
     "an object"},
    {"resourceList",
     R"({"resources": {"Orvik.TarnRack": [[]]}})",
     {"/resources/Orvik.TarnRack/0"},
     "an object"},
    {"unknownAttribute",
     R"({"resources": {"Orvik.TarnRack": [{}, {"rackNumber": "R1"}, {"racknumber": "R1"}]}})",
     {"/resources/Orvik.TarnRack/2/racknumber"},
     "not known"},
    {"attributeOfAnotherClass",
     R"({"resources": {"Orvik.TarnRack": [{"diskRPM": 10000}]}})",
     {"/resources/Orvik.TarnRack/0/diskRPM"},
     "not known"},
    {"textGivenNumber",
     R"({"resources": {"Orvik.TarnRack": [{"rackNumber": 1}]}})",
     {"/resources/Orvik.TarnRack/0/rackNumber"},
     "a text"},
    {"textGivenNull",
     R"({"resources": {"Orvik.TarnRack": [{"rackNumber": null}]}})",
     {"/resources/Orvik.TarnRack/0/rackNumber"},
     "a text"},
    {"textGivenList",
     R"({"resources": {"Orvik.TarnRack": [{"rackNumber": ["R1"]}]}})",
     {"/resources/Orvik.TarnRack/0/rackNumber"},
     "a text"},
    {"numberGivenText",
     R"({"resources": {"Orvik.ManagedNode": [{"Status": "1"}]}})",
     {"/resources/Orvik.ManagedNode/0/Status"},
     "an integer"},
    {"numberGivenFraction",
     R"({"resources": {"Orvik.ManagedNode": [{"Status": 1.5}]}})",
     {"/resources/Orvik.ManagedNode/0/Status"},
     "an integer"},
    {"numberGivenBoolean",
     R"({"resources": {"Orvik.ManagedNode": [{"Status": true}]}})",
     {"/resources/Orvik.ManagedNode/0/Status"},
     "an integer"},
    {"numberTooGreat",
     R"({"resources": {"Orvik.ManagedNode": [{"Status": 2147483648}]}})",
     {"/resources/Orvik.ManagedNode/0/Status"},
     "2147483647"},
    {"numberTooSmall",
     R"({"resources": {"Orvik.ManagedNode": [{"Status": -2147483649}]}})",
     {"/resources/Orvik.ManagedNode/0/Status"},
     "-2147483648"},
    {"numberFarTooGreat",
     R"({"resources": {"Orvik.ManagedNode": [{"Status": 18446744073709551616}]}})",
     {"/resources/Orvik.ManagedNode/0/Status"},
     "an integer"},
    {"unsignedNegative",
     R"({"resources": {"Orvik.TarnRack": [{"rackIdentifier": -1}]}})",
     {"/resources/Orvik.TarnRack/0/rackIdentifier"},
     "from 0"},
    {"unsignedAfterMinusZero",
     R"({"resources": {"Orvik.TarnRack": [{"rackIdentifier": -0}, {"rackIdentifier": -1}]}})",
     {"/resources/Orvik.TarnRack/1/rackIdentifier"},
     "from 0"},
    {"unsignedTooGreat",
     R"({"resources": {"Orvik.TarnRack": [{"rackIdentifier": 4294967296}]}})",
     {"/resources/Orvik.TarnRack/0/rackIdentifier"},
     "4294967295"},
    {"integersGivenNumber",
     R"({"resources": {"Orvik.TarnDA": [{"interfaceIdentifier": 3}]}})",
     {"/resources/Orvik.TarnDA/0/interfaceIdentifier"},
     "a list of integers"},
    {"integersGivenText",
     R"({"resources": {"Orvik.TarnDA": [{"interfaceIdentifier": [3, "4"]}]}})",
     {"/resources/Orvik.TarnDA/0/interfaceIdentifier/1"},
     "an integer"},
    {"integersOutOfRange",
     R"({"resources": {"Orvik.TarnDA": [{"interfaceIdentifier": [4294967295]}]}})",
     {"/resources/Orvik.TarnDA/0/interfaceIdentifier/0"},
     "an integer"},
    {"textsGivenNumber",
     R"({"resources": {"Orvik.TarnArray": [{"arraySiteConfiguration": ["7+P", 7]}]}})",
     {"/resources/Orvik.TarnArray/0/arraySiteConfiguration/1"},
     "a text"},
    {"levelGivenNull",
     R"({"resources": {"Orvik.TarnServerPartition": [{"runningImageLevel": [0, null]}]}})",
     {"/resources/Orvik.TarnServerPartition/0/runningImageLevel/1"},
     "a text or an integer"},
    {"attributeTwice",
     R"({"resources": {"Orvik.TarnRack": [{"rackNumber": "R1", "rackNumber": "R2"}]}})",
     {"/resources/Orvik.TarnRack/0/rackNumber"},
     "more than once"},
    {"nulInAttribute",
     R"({"resources": {"Orvik.TarnRack": [{"rackNumber": "R\u0000"}]}})",
     {"/resources/Orvik.TarnRack/0/rackNumber"},
     "NUL"},
    {"severalResources",
     R"({"resources": {"Orvik.TarnRack": [{"rackNumber": 1}, {"rackNumber": "R2"}, {"rackNumber": 3, "size": 4}], "Orvik.TarnPPS": [0]}})",
     {"/resources/Orvik.TarnRack/0/rackNumber", "/resources/Orvik.TarnRack/2/rackNumber",
      "/resources/Orvik.TarnRack/2/size", "/resources/Orvik.TarnPPS/0"}},
};

const Malformed malformedRules[] = {
    {"rulesObject", R"({"faults": {}})", {"/faults"}, "a list of rules"},
    {"ruleText", R"({"faults": ["fails"]})", {"/faults/0"}, "a rule"},
    {"unknownField",
     R"({"faults": [{"calls": "end_session", "delay": 1}]})",
     {"/faults/0/calls"},
     "not known"},
    {"unknownCall", R"({"faults": [{"call": "query", "delay": 1}]})", {"/faults/0/call"}, "query_p_select"},
    {"callOfAnotherName",
     R"({"faults": [{"call": "vale_end_session", "delay": 1}]})",
     {"/faults/0/call"},
     "end_session"},
    {"unknownProgram",
     R"({"faults": [{"program": "/opt/brisk/bin/qmstat", "status": 1}]})",
     {"/faults/0/program"},
     "qmstat"},
    {"unknownRuleClass",
     R"({"faults": [{"class": "Orvik.TarnShelf", "fails": {"code": 1}}]})",
     {"/faults/0/class"},
     "exists"},
    {"scopeText", R"({"faults": [{"scope": "4", "delay": 1}]})", {"/faults/0/scope"}, "an integer"},
    {"selectionNull", R"({"faults": [{"selection": null, "delay": 1}]})", {"/faults/0/selection"}, "a text"},
    {"nthZero", R"({"faults": [{"nth": 0, "delay": 1}]})", {"/faults/0/nth"}, "from 1"},
    {"delayNegative", R"({"faults": [{"delay": -1}]})", {"/faults/0/delay"}, "from 0"},
    {"noEffect", R"({"faults": [{"call": "end_session"}]})", {"/faults/0"}, "no effect"},
    {"noEffectAtAll", R"({"faults": [{"delay": 1}, {}]})", {"/faults/1"}, "no effect"},
    {"twoEffects", R"({"faults": [{"fails": {"code": 1}, "answer": []}]})", {"/faults/0"}, "fails, answer"},
    {"besideOtherFaults",
     R"({"console": {"user": 1}, "faults": [{"class": "Orvik.TarnShelf", "delay": -1}, {}, "fails"]})",
     {"/console/user", "/faults/0/delay", "/faults/2", "/faults/0/class", "/faults/1"}},
    {"fieldsOfAFaultyRule",
     R"({"faults": [{"call": "query", "fails": {"code": ""}, "answer": []}, {"class": "a\u0000b", "delay": 1}]})",
     {"/faults/0/call", "/faults/0/fails/code", "/faults/1/class"}},
    {"effectAndProgramEffect",
     R"({"faults": [{"program": "qmstat", "fails": {"code": 1}, "status": 1}]})",
     {"/faults/0"},
     "fails, status"},
    {"failsNumber", R"({"faults": [{"fails": 7}]})", {"/faults/0/fails"}, "an object"},
    {"failsWithoutCode", R"({"faults": [{"fails": {"message": "m"}}]})", {"/faults/0/fails"}, "\"code\""},
    {"failsCode", R"({"faults": [{"fails": {"code": 2147483648}}]})", {"/faults/0/fails/code"}, "an integer"},
    {"failsKey",
     R"({"faults": [{"fails": {"code": 7, "text": ""}}]})",
     {"/faults/0/fails/text"},
     "not known"},
    {"errorWithoutNumber", R"({"faults": [{"error": {"message": "m"}}]})", {"/faults/0/error"}, "\"number\""},
    {"errorNumber", R"({"faults": [{"error": {"number": -1}}]})", {"/faults/0/error/number"}, "from 0"},
    {"errorResponse",
     R"({"faults": [{"error": {"number": 1, "response": -1}}]})",
     {"/faults/0/error/response"},
     "from 0"},
    {"errorOfSession",
     R"({"faults": [{"call": "start_session", "error": {"number": 1}}]})",
     {"/faults/0/error"},
     "without responses"},
    {"answerOfSession",
     R"({"faults": [{"call": "end_session", "answer": []}]})",
     {"/faults/0/answer"},
     "without responses"},
    {"classOfSession",
     R"({"faults": [{"call": "end_session", "class": "Orvik.TarnRack", "delay": 1}]})",
     {"/faults/0/class"},
     "no meaning"},
    {"selectionOfAction",
     R"({"faults": [{"call": "invoke_action", "selectionContains": "x", "delay": 1}]})",
     {"/faults/0/selectionContains"},
     "no meaning"},
    {"answerNumber", R"({"faults": [{"answer": 0}]})", {"/faults/0/answer"}, "a list of responses"},
    {"answerObject",
     R"({"faults": [{"call": "query_p_select", "answer": {}}]})",
     {"/faults/0/answer"},
     "a list of responses"},
    {"responseText", R"({"faults": [{"answer": ["x"]}]})", {"/faults/0/answer/0"}, "an object"},
    {"responseKey",
     R"({"faults": [{"answer": [{"attribute": []}]}]})",
     {"/faults/0/answer/0/attribute"},
     "not known"},
    {"responseErrorKey",
     R"({"faults": [{"answer": [{}, {"error": {"number": 1, "response": 0}}]}]})",
     {"/faults/0/answer/1/error/response"},
     "not known"},
    {"handlesOfQuery",
     R"({"faults": [{"call": "query_d_select", "answer": [{"handles": 4}]}]})",
     {"/faults/0/answer/0/handles"},
     "query_d_select"},
    {"attributesOfEnumeration",
     R"({"faults": [{"call": "enumerate_resources", "answer": [{"attributes": []}]}]})",
     {"/faults/0/answer/0/attributes"},
     "enumerate_resources"},
    {"attributesOfAction",
     R"({"faults": [{"call": "invoke_action", "answer": [{"attributes": []}]}]})",
     {"/faults/0/answer/0/attributes"},
     "invoke_action"},
    {"severalContents",
     R"({"faults": [{"answer": [{"handles": 1, "elements": []}]}]})",
     {"/faults/0/answer/0"},
     "several"},
    {"handlesNegative",
     R"({"faults": [{"answer": [{"handles": -1}]}]})",
     {"/faults/0/answer/0/handles"},
     "from 0"},
    {"elementList",
     R"({"faults": [{"call": "invoke_action", "answer": [{"elements": [0, []]}]}]})",
     {"/faults/0/answer/0/elements/1"},
     "a text"},
    {"attributeAlone",
     R"({"faults": [{"answer": [{"attributes": [["Status"]]}]}]})",
     {"/faults/0/answer/0/attributes/0"},
     "a name and a value"},
    {"attributeNotPair",
     R"({"faults": [{"answer": [{"attributes": [["Status", 1, 2]]}]}]})",
     {"/faults/0/answer/0/attributes/0"},
     "a name and a value"},
    {"attributeName",
     R"({"faults": [{"answer": [{"attributes": [[1, 1]]}]}]})",
     {"/faults/0/answer/0/attributes/0/0"},
     "a text"},
    {"attributeObject",
     R"({"faults": [{"answer": [{"attributes": [["any", {}]]}]}]})",
     {"/faults/0/answer/0/attributes/0/1"},
     "a text, null"},
    {"attributeFraction",
     R"({"faults": [{"answer": [{"attributes": [["any", 0.5]]}]}]})",
     {"/faults/0/answer/0/attributes/0/1"},
     "a text, null"},
    {"attributeTooGreat",
     R"({"faults": [{"answer": [{"attributes": [["any", 4294967296]]}]}]})",
     {"/faults/0/answer/0/attributes/0/1"},
     "32 bits"},
    {"attributeMixedList",
     R"({"faults": [{"answer": [{"attributes": [["any", [1, "a"]]]}]}]})",
     {"/faults/0/answer/0/attributes/0/1"},
     "one kind"},
    {"knownTextGivenNumber",
     R"({"faults": [{"answer": [{"attributes": [["x", 1], ["Hostname", 1]]}]}]})",
     {"/faults/0/answer/0/attributes/1/1"},
     "a text or null"},
    {"knownNumberGivenText",
     R"({"faults": [{"answer": [{"attributes": [["Status", "1"]]}]}]})",
     {"/faults/0/answer/0/attributes/0/1"},
     "an integer"},
    {"knownNumberTooGreat",
     R"({"faults": [{"answer": [{"attributes": [["Status", 4294967295]]}]}]})",
     {"/faults/0/answer/0/attributes/0/1"},
     "an integer"},
    {"knownUnsignedNegative",
     R"({"faults": [{"answer": [{"attributes": [["rackIdentifier", -1]]}]}]})",
     {"/faults/0/answer/0/attributes/0/1"},
     "from 0"},
    {"knownListGivenNumber",
     R"({"faults": [{"answer": [{"attributes": [["arraySites", 3]]}]}]})",
     {"/faults/0/answer/0/attributes/0/1"},
     "a list of integers"},
    {"knownListGivenTexts",
     R"({"faults": [{"answer": [{"attributes": [["arraySites", ["3"]]]}]}]})",
     {"/faults/0/answer/0/attributes/0/1"},
     "a list of integers"},
    {"programWithOtherCall",
     R"({"faults": [{"call": "end_session", "program": "qmstat", "status": 1}]})",
     {"/faults/0/call"},
     "must be program"},
    {"programWithClass",
     R"({"faults": [{"program": "qmstat", "class": "Orvik.TarnRack", "status": 1}]})",
     {"/faults/0/class"},
     "no meaning"},
    {"programWithScope",
     R"({"faults": [{"call": "program", "scope": 1, "status": 1}]})",
     {"/faults/0/scope"},
     "no meaning"},
    {"programFails",
     R"({"faults": [{"program": "qmstat", "fails": {"code": 1}}]})",
     {"/faults/0/fails"},
     "no effect on a program"},
    {"programAnswers",
     R"({"faults": [{"program": "qmstat", "answer": []}]})",
     {"/faults/0/answer"},
     "status and output"},
    {"programEffectOnCall",
     R"({"faults": [{"call": "query_p_select", "status": 1}]})",
     {"/faults/0/status"},
     "programs"},
    {"programEffectInResponse",
     R"({"faults": [{"call": "query_p_select", "answer": [{"status": 1, "output": ""}]}]})",
     {"/faults/0/answer/0/status", "/faults/0/answer/0/output"},
     "programs"},
    {"programAnswersTwice",
     R"({"faults": [{"program": "qmstat", "answer": [{"status": 1}, {"status": 2}]}]})",
     {"/faults/0/answer"},
     "status and output"},
    {"programAnswersWithHandles",
     R"({"faults": [{"program": "qmstat", "answer": [{"status": 1, "handles": 2}]}]})",
     {"/faults/0/answer"},
     "status and output"},
    {"programEffectOnAnyCall", R"({"faults": [{"output": "x"}]})", {"/faults/0/output"}, "programs"},
    {"programStatus", R"({"faults": [{"program": "qmstat", "status": 256}]})", {"/faults/0/status"}, "255"},
    {"programOutput",
     R"({"faults": [{"program": "qmstat", "output": ["x"]}]})",
     {"/faults/0/output"},
     "a text"},
    {"nulInMessage",
     R"({"faults": [{"fails": {"code": 1, "message": "\u0000"}}]})",
     {"/faults/0/fails/message"},
     "NUL"},
    {"severalRules",
     R"({"faults": [{"delay": 1}, {"call": "end_session"}, {"nth": 1, "fails": {}}, {"program": "ls", "status": 0}]})",
     {"/faults/2/fails", "/faults/3/program", "/faults/1"}},
};

std::string nameOf(const testing::TestParamInfo<Malformed>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Frame, MalformedFacility, testing::ValuesIn(malformedFrames), nameOf);
INSTANTIATE_TEST_SUITE_P(Resources, MalformedFacility, testing::ValuesIn(malformedResources), nameOf);
INSTANTIATE_TEST_SUITE_P(Rules, MalformedFacility, testing::ValuesIn(malformedRules), nameOf);

/// Every sentence to the letter.
TEST(Facility, SaysWhatIsWrongAndWhere)
{
    const std::string rule = "/faults/0: ";
    const std::string noMeaning = "has no meaning in a rule for this call\n";
    const auto field = [](const std::string& name) { return "/faults/0/" + name + ": "; };
    const std::string value = field("answer/0/attributes/0/1");
    const std::vector<std::pair<std::string, std::string>> cases = {
        {R"({"call": "end_session", "program": "qmstat", "status": 1})",
         field("call") + "must be program in a rule that names a program\n"},
        {R"({"program": "qmstat", "scope": 1, "status": 1})",
         field("scope") + "has no meaning in a rule for programs\n"},
        {R"({"call": "start_session", "class": "Orvik.TarnRack", "delay": 1})", field("class") + noMeaning},
        {R"({"call": "start_session", "selection": "", "delay": 1})", field("selection") + noMeaning},
        {R"({"call": "end_session", "selectionContains": "", "delay": 1})",
         field("selectionContains") + noMeaning},
        {R"({"call": "invoke_action", "selection": "", "delay": 1})", field("selection") + noMeaning},
        {R"({"class": "Orvik.TarnShelf", "delay": 1})", field("class") + "must be a class that exists\n"},
        {R"({})", rule + "has no effect\n"},
        {R"({"fails": {"code": 1}, "answer": []})", rule + "has more than one effect: fails, answer\n"},
        {R"({"error": {"number": 1}, "answer": []})", rule + "has more than one effect: error, answer\n"},
        {R"({"fails": {"code": 1}, "output": ""})",
         rule + "has more than one effect: fails, status and output\n"},
        {R"({"program": "qmstat", "fails": {"code": 1}})", field("fails") + "is no effect on a program\n"},
        {R"({"program": "qmstat", "error": {"number": 1}})", field("error") + "is no effect on a program\n"},
        {R"({"program": "qmstat", "answer": []})",
         field("answer") + "must hold a program's status and output\n"},
        {R"({"program": "qmstat", "answer": [{}]})",
         field("answer") + "must hold a program's status and output\n"},
        {R"({"program": "qmstat", "answer": [{"output": "", "error": {"number": 1}}]})",
         field("answer") + "must hold a program's status and output\n"},
        {R"({"status": 1})", field("status") + "is an effect on programs\n"},
        {R"({"call": "query_p_select", "output": ""})", field("output") + "is an effect on programs\n"},
        {R"({"call": "end_session", "error": {"number": 1}})",
         field("error") + "is no effect on a call without responses\n"},
        {R"({"call": "start_session", "answer": []})",
         field("answer") + "is no effect on a call without responses\n"},
        {R"({"answer": {}})", field("answer") + "must be a list of responses\n"},
        {R"({"answer": [{"status": 1}]})", field("answer/0/status") + "is an effect on programs\n"},
        {R"({"call": "query_p_select", "answer": [{"handles": 4}]})",
         field("answer/0/handles") + "does not answer query_p_select\n"},
        {R"({"call": "query_d_select", "answer": [{"elements": []}]})",
         field("answer/0/elements") + "does not answer query_d_select\n"},
        {R"({"call": "enumerate_resources", "answer": [{"attributes": []}]})",
         field("answer/0/attributes") + "does not answer enumerate_resources\n"},
        {R"({"call": "invoke_action", "answer": [{"handles": 1}]})",
         field("answer/0/handles") + "does not answer invoke_action\n"},
        {R"({"answer": [{"handles": 1, "elements": []}]})",
         field("answer/0") + "answers several kinds of calls\n"},
        {R"({"answer": [{"attributes": [["Hostname", 1]]}]})", value + "must be a text or null\n"},
        {R"({"answer": [{"attributes": [["Status", "1"]]}]})",
         value + "must be an integer from -2147483648 to 2147483647 or null\n"},
        {R"({"answer": [{"attributes": [["rackIdentifier", "1"]]}]})",
         value + "must be an integer from 0 to 4294967295 or null\n"},
        {R"({"answer": [{"attributes": [["arraySites", "1"]]}]})",
         value + "must be a list of integers or null\n"},
        {R"({"answer": [{"attributes": [["arraySiteConfiguration", [1]]]}]})",
         value + "must be a list of texts or null\n"},
        {R"({"answer": [{"attributes": [["any", [1, "a"]]]}]})",
         value + "must be a list of one kind or null\n"},
        {R"({"delay": 1, "delay": 1})", field("delay") + "stands here more than once\n"},
        {R"({"delay": 1, "calls": 1})", field("calls") + "is not known here\n"},
        {R"({"fails": {"code": 1, "message": "\u0000"}})", field("fails/message") + "holds a NUL\n"},
        {R"({"fails": {}})", field("fails") + "lacks \"code\"\n"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(lines(compile("{\"faults\": [" + text + "]}").faults), expected) << text;
}

const char* const goodFacilities[] = {
    "{}",
    R"({"console": {}, "systems": {}, "resources": {}, "faults": []})",
    R"({"console": {"user": null, "vpd": []}})",
    R"({"resources": {"Orvik.TarnRack": [{}, {"rackIdentifier": 4294967295}, {"rackIdentifier": 0}]}})",
    R"({"resources": {"Orvik.ManagedNode": [{"Status": -2147483648}, {"Status": 2147483647}, {"Hostname": ""}]}})",
    R"({"resources": {"Orvik.TarnArray": [{"arraySites": [], "arraySiteConfiguration": []}]}})",
    R"({"resources": {"Orvik.TarnServerPartition": [{"runningImageLevel": ["a", 0, "b"]}, {"runningImageLevel": []}]}})",
    R"({"faults": [{"delay": 0}, {"call": "start_session", "scope": 2, "nth": 3, "fails": {"code": -5}}]})",
    R"({"faults": [{"class": "Orvik.TarnDDM", "selection": "", "selectionContains": "R1", "answer": []}]})",
    R"({"faults": [{"answer": [{}, {"error": {"number": 4294967295, "message": "m\n"}, "attributes": []}]}]})",
    R"({"faults": [{"call": "query_p_select", "answer": [{"attributes": [["Status", null], ["Hostname", null],
        ["Status", -1], ["other", 4294967295], ["other", "x"], ["other", [1, 2]], ["other", ["a"]],
        ["interfaceIdentifier", []], ["arraySiteConfiguration", []]]}]}]})",
    R"({"faults": [{"call": "enumerate_resources", "delay": 20, "answer": [{"handles": 0}]}]})",
    R"({"faults": [{"call": "invoke_action", "class": "Orvik.TarnServerPartition",
        "answer": [{"elements": [0, "text", null]}]}]})",
    R"({"faults": [{"program": "qmstat", "status": 1, "output": "text"}, {"program": "whoami", "delay": 1}]})",
    R"({"faults": [{"call": "program", "output": "a\u0000b"}, {"call": "program", "program": "qconvpd", "status": 255}]})",
    R"({"faults": [{"program": "qmstat", "answer": {"status": 1, "output": "text"}},
        {"program": "qmstat", "answer": [{"status": 1, "output": "text"}]}]})",
};

TEST(Facility, GoodFilesHaveNoFaults)
{
    for (const char* file : goodFacilities) {
        const Compilation compilation = compile(file);
        EXPECT_TRUE(compilation.faults.empty()) << file << '\n' << lines(compilation.faults);
        EXPECT_FALSE(compilation.image.empty()) << file;
    }
}

TEST(Facility, BundledFilesHaveNoFaults)
{
    const std::filesystem::path folder = std::filesystem::path(KORD_SOURCE_DIR) / "console/facilities";
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        EXPECT_EQ(lines(compile(read(entry.path())).faults), "") << entry.path();
        ++count;
    }
    EXPECT_GE(count, 2U);
}

/// However many others stand between: an image of a large facility would hold most texts many times.
TEST(Facility, ATextStandsInTheImageOnce)
{
    std::string racks;
    for (int rack = 0; rack < 5000; ++rack)
        racks += std::string(rack == 0 ? "" : ",") + R"({"rackNumber": "number )" + std::to_string(rack) +
                 R"(", "locationCode": "number )" + std::to_string(rack) +
                 R"(", "storageFacilityMTMS": "of every rack"})";
    const std::string image = compile(R"({"resources": {"Orvik.TarnRack": [)" + racks + "]}}").image;
    for (const std::string text : {"of every rack", "number 0", "number 4999"}) {
        const size_t first = image.find(text + '\0');
        EXPECT_NE(first, std::string::npos) << text;
        EXPECT_EQ(image.find(text + '\0', first + 1), std::string::npos) << text;
    }
}

TEST(Facility, FaultsStayOnOneLine)
{
    const Compilation compilation = compile("{\"a\\nb\": 1}");
    EXPECT_EQ(lines(compilation.faults), "/a?b: is not known here\n");
}

/// A resource with the attributes of a good one needs no closer look, unless a number is too large.
TEST(Facility, ANumberTooLargeIsFoundBehindGoodOnes)
{
    const auto faultyPlaces = [](const std::string& name, const std::string& attribute,
                                 const std::string& number) {
        std::string places;
        const std::string start = "{\"resources\": {\"" + name + "\": [{\"" + attribute + "\": 5}, {\"";
        for (const auto& fault : compile(start + attribute + "\": " + number + "}]}}").faults)
            places += fault.pointer + ' ';
        return places;
    };
    for (const char* number : {"2147483647", "-2147483648", "-0", "7"})
        EXPECT_EQ(faultyPlaces("Orvik.TarnDDM", "diskCapacity", number), "") << number;
    for (const char* number : {"2147483648", "4294967296", "18446744073709551615", "-2147483649"})
        EXPECT_EQ(faultyPlaces("Orvik.TarnDDM", "diskCapacity", number),
                  "/resources/Orvik.TarnDDM/1/diskCapacity ")
            << number;
    for (const char* number : {"4294967295", "0"})
        EXPECT_EQ(faultyPlaces("Orvik.TarnRack", "rackIdentifier", number), "") << number;
    for (const char* number : {"4294967296", "18446744073709551615", "-1"})
        EXPECT_EQ(faultyPlaces("Orvik.TarnRack", "rackIdentifier", number),
                  "/resources/Orvik.TarnRack/1/rackIdentifier ")
            << number;
}

/// A deep file must not exhaust the stack, whoever walks it.
TEST(Facility, DeepNestingIsRefusedInGoodOrder)
{
    constexpr size_t depth = 200'000;
    const std::string deep = std::string(depth, '[') + std::string(depth, ']');
    EXPECT_EQ(compile("{\"deep\": " + deep + "}").faults.at(0).pointer, "/deep");
    EXPECT_EQ(
        compile(R"({"resources": {"Orvik.TarnRack": [{"rackNumber": )" + deep + "}]}}").faults.at(0).pointer,
        "/resources/Orvik.TarnRack/0/rackNumber");
    EXPECT_EQ(compile(R"({"faults": [{"answer": )" + deep + "}]}").faults.at(0).pointer,
              "/faults/0/answer/0");
}

/// A compiled facility, read as the client reads it.
class Compiled
{
public:
    explicit Compiled(const std::string& file) : compilation(compile(file)), image{compilation.image.data()}
    {
    }

    [[nodiscard]] const image::Class& classNamed(const char* name) const { return *image.findClass(name); }
    [[nodiscard]] std::vector<std::string> texts(const char* className, const char* attribute) const
    {
        std::vector<std::string> found;
        const image::Class& from = classNamed(className);
        for (const image::Resource& resource :
             image.resources().subspan(from.firstResource, from.resourceCount)) {
            image::AttributeFinder finder{.name = attribute};
            const image::Attribute* value = finder.find(image, resource);
            found.emplace_back(value == nullptr ? "-" : image.text(value->value.data));
        }
        return found;
    }

private:
    Compilation compilation;

public:
    image::Image image;
};

TEST(CompiledFacility, HoldsEveryClassWithItsScope)
{
    const Compiled compiled("{}");
    const std::string schema =
        read(std::filesystem::path(KORD_SOURCE_DIR) / "console/schema/facility.schema.json");
    const kordTest::Pattern form(R"re("(Orvik\.\w+)": \{\s*"x-scope": (\d))re");
    const std::vector<kordTest::Pattern::Match> classes = form.all(schema);
    for (const kordTest::Pattern::Match& match : classes)
        EXPECT_EQ(std::to_string(compiled.classNamed(match[1].c_str()).scope), match[2]) << match[1];
    EXPECT_EQ(compiled.image.classes().size(), classes.size());
    EXPECT_GT(classes.size(), 30U);
}

TEST(CompiledFacility, KeepsTheOrderOfTheFile)
{
    const Compiled compiled(R"({"resources": {
        "Orvik.TarnRack": [{"rackNumber": "R9"}, {"rackNumber": "R1"}, {}, {"rackNumber": "R5"}],
        "Orvik.TarnPPS": [{"partNumber": "b"}, {"partNumber": "a"}]}})");
    EXPECT_EQ(compiled.texts("Orvik.TarnRack", "rackNumber"),
              (std::vector<std::string>{"R9", "R1", "-", "R5"}));
    EXPECT_EQ(compiled.texts("Orvik.TarnPPS", "partNumber"), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(compiled.image.resources().size(), 6U);
}

TEST(CompiledFacility, FindsResourcesByTheHashOfTheirValues)
{
    const Compiled compiled(R"({"resources": {
        "Orvik.TarnPPS": [{}],
        "Orvik.TarnLogicalVolume": [{"volumeType": 20}, {"volumeType": 10}, {"dataType": 1}, {"volumeType": 20}]}})");
    const image::Class& volumes = compiled.classNamed("Orvik.TarnLogicalVolume");
    const auto lookups = compiled.image.span<image::Lookup>(volumes.lookups, volumes.lookupCount);
    const auto lookup = std::ranges::find(lookups, std::string("volumeType"), [&](const image::Lookup& l) {
        return compiled.image.text(l.name);
    });
    ASSERT_NE(lookup, lookups.end());
    const auto entries = compiled.image.span<image::Entry>(lookup->entries, lookup->entryCount);
    EXPECT_EQ(entries.size(), 3U);
    EXPECT_TRUE(std::ranges::is_sorted(entries, [](const image::Entry& a, const image::Entry& b) {
        return std::pair(a.hash, a.resource) < std::pair(b.hash, b.resource);
    }));
    std::vector<uint32_t> found;
    for (const image::Entry& entry : entries) {
        if (entry.hash == image::hashInteger(20)) found.push_back(entry.resource - volumes.firstResource);
    }
    EXPECT_EQ(found, (std::vector<uint32_t>{0, 3}));
}

TEST(CompiledFacility, HoldsTheConsoleAndItsSystems)
{
    const Compiled compiled(
        R"({"console": {"user": "anna", "vpd": ["*TM x", ""]}, "systems": {"a": "Operating"}})");
    const image::Header& header = compiled.image.header();
    EXPECT_STREQ(compiled.image.text(header.user), "anna");
    ASSERT_EQ(header.vpdLineCount, 2U);
    EXPECT_STREQ(compiled.image.text(compiled.image.span<image::Offset>(header.vpdLines, 2)[0]), "*TM x");
    ASSERT_EQ(header.systemCount, 1U);
    EXPECT_STREQ(compiled.image.text(compiled.image.at<image::System>(header.systems)->state), "Operating");

    const Compiled silent(R"({"console": {"user": null}})");
    EXPECT_EQ(silent.image.header().user, 0U);
    EXPECT_EQ(silent.image.header().vpdLines, 0U);
    EXPECT_NE(Compiled(R"({"console": {"vpd": []}})").image.header().vpdLines, 0U);
}

TEST(CompiledFacility, HoldsRulesInTheirOrder)
{
    const Compiled compiled(R"({"faults": [
        {"call": "end_session", "scope": 4, "nth": 2, "fails": {"code": 7, "message": "text\n"}},
        {"class": "Orvik.TarnDDM", "selectionContains": "R1", "error": {"number": 262152, "message": "m", "response": 3}},
        {"program": "qmstat", "status": 1, "output": "a\u0000b", "delay": 20},
        {"program": "qmstat", "answer": {"status": 2, "output": "x"}},
        {"delay": 5}]})");
    const auto rules = compiled.image.rules();
    ASSERT_EQ(rules.size(), 5U);
    EXPECT_STREQ(compiled.image.text(rules[0].call), "end_session");
    EXPECT_EQ(rules[0].scope, 4);
    EXPECT_EQ(rules[0].nth, 2);
    EXPECT_EQ(rules[0].effect, image::Effect::fails);
    EXPECT_EQ(rules[0].code, 7);
    EXPECT_STREQ(compiled.image.text(rules[0].message), "text\n");
    EXPECT_STREQ(compiled.image.text(rules[1].className), "Orvik.TarnDDM");
    EXPECT_STREQ(compiled.image.text(rules[1].selectionContains), "R1");
    EXPECT_EQ(rules[1].selection, 0U);
    EXPECT_EQ(rules[1].scope, -1);
    EXPECT_EQ(rules[1].nth, -1);
    EXPECT_EQ(rules[1].error.number, 262152U);
    EXPECT_EQ(rules[1].response, 3U);
    EXPECT_EQ(rules[2].effect, image::Effect::program);
    EXPECT_EQ(rules[2].code, 1);
    EXPECT_EQ(std::string(compiled.image.text(rules[2].output), rules[2].outputLength),
              std::string("a\0b", 3));
    EXPECT_EQ(rules[2].delayMilliseconds, 20);
    EXPECT_EQ(rules[3].effect, image::Effect::program);
    EXPECT_EQ(rules[3].code, 2);
    EXPECT_EQ(rules[4].effect, image::Effect::none);
    EXPECT_EQ(rules[4].delayMilliseconds, 5);
}

TEST(CompiledFacility, GivesAnswersTheTypesOfTheirAttributes)
{
    const Compiled compiled(R"({"faults": [{"answer": [{"error": {"number": 9}, "attributes": [["Status", 1],
        ["rackIdentifier", 1], ["Hostname", null], ["arraySiteConfiguration", []], ["other", 4294967295],
        ["other", []]]}, {"handles": 4}]}]})");
    const image::Rule& rule = compiled.image.rules()[0];
    ASSERT_EQ(rule.answerCount, 2U);
    const auto answers = compiled.image.span<image::Answer>(rule.answers, 2);
    EXPECT_EQ(answers[0].error.number, 9U);
    EXPECT_EQ(answers[1].handleCount, 4U);
    const auto attributes =
        compiled.image.span<image::Attribute>(answers[0].attributes, answers[0].attributeCount);
    std::vector<image::Type> types;
    for (const image::Attribute& attribute : attributes)
        types.push_back(attribute.value.type);
    using enum image::Type;
    EXPECT_EQ(types, (std::vector<image::Type>{integer, uinteger, text, texts, uinteger, integers}));
    EXPECT_EQ(attributes[2].value.data, 0U);
}

} // namespace
