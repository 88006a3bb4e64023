// The host descriptions of a large image: 10,000 ports that share 2,000 descriptions.

#include "consoleRun.h"
#include "parseJson.h"
#include "tempFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kordTest
{

TEST(ManyHosts, areFoldedNewestFirst)
{
    constexpr int ports = 10'000;
    constexpr int distinct = 2'000;
    const TempFolder folder;
    const std::filesystem::path facility = folder.path() / "facility.json";
    const std::string mtms = "9999-B2C*7ABCD12";

    nlohmann::json file =
        parseJson(readFile(std::string(KORD_SOURCE_DIR) + "/console/facilities/small.json").value());
    nlohmann::json& hosts = file["resources"]["Orvik.TarnScsiHostPort"];
    const nlohmann::json port = hosts[0];
    hosts = nlohmann::json::array();
    std::string expected;
    for (int i = 0; i < ports; ++i) {
        hosts.push_back(port);
        hosts.back()["userHostDescription"] = "host " + std::to_string(i % distinct);
    }
    for (int i = distinct - 1; i >= 0; --i) {
        expected += "host " + std::to_string(i) + "=" + std::to_string(ports / distinct) + ",";
    }
    std::ofstream(facility) << file;

    const Outcome outcome = runOnConsole({
        .console = kordTest::triedBuild() / "bin/kord-console",
        .facility = facility,
        .root = folder.path() / "root",
        .folder = folder.path(),
        .user = {},
        .program = {"addTarnKord", "x", mtms},
    });
    EXPECT_EQ(outcome.status, 3) << outcome.error;
    const std::string document = readFile(documentFile(folder.path() / "root", mtms)).value_or("");
    EXPECT_NE(document.find("<Property name=U2 displayName=\"Host Inventory\">\nU2\n<Value type=\"string\">" +
                            expected + "</Value>\n"),
              std::string::npos);
    EXPECT_NE(document.find(",o1=10000,"), std::string::npos);
}

} // namespace kordTest
