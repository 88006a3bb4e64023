// Which document a run leaves, by how it fails: yesterday's as it was, today's closed early, or today's
// whole.

#include "consoleRun.h"
#include "parseJson.h"
#include "tempFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

namespace fs = std::filesystem;
using kordTest::Outcome;
using nlohmann::json;

const fs::path sources = KORD_SOURCE_DIR;
const std::string mtms = "9999-B2C*7ABCD12";
const std::string success = "XML file was built successfully. This is the normal return.\n";

enum class Left { yesterdays, closedEarly, whole };

struct Failure {
    const char* name;
    const char* fault; ///< JSON; empty: none
    std::string output;
    Left document;
};

/// Runs with a document of yesterday in place; `document` becomes what lies there then.
Outcome runAfterYesterday(const std::string& fault, std::string& document)
{
    const kordTest::TempFolder folder;
    const fs::path root = folder.path() / "root";
    const fs::path place = kordTest::documentFile(root, mtms);
    fs::create_directories(place.parent_path());
    std::ofstream(place) << "yesterday's";
    json facility =
        kordTest::parseJson(kordTest::readFile(sources / "console/facilities/facility.json").value());
    facility["faults"] = json::array();
    if (!fault.empty()) facility["faults"].push_back(kordTest::parseJson(fault));
    std::ofstream(folder.path() / "facility.json") << facility;
    Outcome outcome = kordTest::runOnConsole({.console = kordTest::triedBuild() / "bin/kord-console",
                                              .facility = folder.path() / "facility.json",
                                              .root = root,
                                              .folder = folder.path(),
                                              .user = std::nullopt,
                                              .program = {"addTarnKord", "-t", mtms}});
    document = kordTest::withFixedTimestamp(kordTest::readFile(place).value_or("(none)"));
    return outcome;
}

class DocumentLeft : public testing::TestWithParam<Failure>
{
};

TEST_P(DocumentLeft, isThatOfTheOperatorsPage)
{
    std::string whole;
    ASSERT_EQ(runAfterYesterday("", whole).output, success);
    std::string document;
    EXPECT_EQ(runAfterYesterday(GetParam().fault, document).output, GetParam().output);
    const std::string end = "</com.orvik.inventory>\n";
    switch (GetParam().document) {
    case Left::yesterdays:
        EXPECT_EQ(document, "yesterday's");
        break;
    case Left::closedEarly:
        EXPECT_LT(document.size(), whole.size());
        EXPECT_TRUE(document.starts_with("<?xml ") && document.ends_with(end)) << document;
        break;
    case Left::whole:
        EXPECT_EQ(document, whole);
        break;
    }
}

const Failure failures[] = {
    {"localSession", R"({"call": "start_session", "scope": 1, "fails": {"code": 7}})",
     "Start VALE session fails.\n", Left::yesterdays},
    {"domainSession", R"({"call": "start_session", "scope": 4, "fails": {"code": -1}})",
     "Start VALE session fails.\n", Left::yesterdays},
    {"domainSessionOfAnotherCode", R"({"call": "start_session", "scope": 4, "fails": {"code": 7}})",
     "Add System Kord fails.\n", Left::closedEarly},
    {"stateBefore", R"({"program": "qmstat", "nth": 1, "status": 0, "output": "Off\n"})",
     "Check State fails.\n", Left::yesterdays},
    {"stateAfter", R"({"program": "qmstat", "nth": 3, "status": 0, "output": "Off\n"})",
     "Check State fails.\n", Left::whole},
    {"stateUnknown", R"({"program": "qmstat", "status": 1, "output": ""})", success, Left::whole},
    {"partition", R"({"class": "Orvik.TarnStorageFacilityPartition", "fails": {"code": 7}})",
     "Query Partition fails.\n", Left::yesterdays},
    {"section", R"({"class": "Orvik.TarnRack", "fails": {"code": 7}})", "Add System Kord fails.\n",
     Left::closedEarly},
    {"nodeBefore", R"({"class": "Orvik.ManagedNode", "nth": 3, "answer": [{"attributes": [["Status", 2]]}]})",
     "Query VALE Status fails. \n", Left::yesterdays},
    {"nodeAfter", R"({"class": "Orvik.ManagedNode", "nth": 7, "answer": [{"attributes": [["Status", 2]]}]})",
     "Query VALE Status fails.\n", Left::whole},
    {"partnersNodeBefore",
     R"({"class": "Orvik.ManagedNode", "nth": 5, "answer": [{"attributes": [["Status", 2]]}]})",
     "Query VALE Partner Status fails.\n", Left::yesterdays},
    {"partnersNodeAfter",
     R"({"class": "Orvik.ManagedNode", "nth": 9, "answer": [{"attributes": [["Status", 2]]}]})",
     "Query VALE Partner Status fails.\n", Left::whole},
};

INSTANTIATE_TEST_SUITE_P(OfARun, DocumentLeft, testing::ValuesIn(failures),
                         [](const auto& failure) { return failure.param.name; });

} // namespace
