// A document as JSON.

#include "document/json.h"
#include "jsonSchema.h"
#include "parseJson.h"
#include "tempFolder.h"
#include "writing.h"

#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using namespace kordTest;
using nlohmann::json;

json jsonOf(const std::string& text)
{
    std::string written;
    document::writeJson(parse(text), [&](std::string_view piece) { written += piece; });
    return parseJson(written);
}

const std::string twoDrives =
    ofEnclosures(enclosure({.id = "U.AB1", .serial = "AB1", .location = "R-1"},
                           drive("U.AB1", {.slot = "-D1", .serial = "A"}) +
                               drive("U.AB1", {.slot = "-D10", .serial = "LONG", .level = "J2"})) +
                 resource("Quay", "Q", ""));

TEST(Json, IsATreeOfPartsByTheirColumns)
{
    const json document = jsonOf(twoDrives);
    EXPECT_EQ(document["timestamp"], "1795268463.5");
    EXPECT_EQ(document["complete"], false);
    EXPECT_EQ(document["missing"], json({"the partitions"}));
    const json& system = document["system"];
    EXPECT_EQ(system["kind"], "system");
    EXPECT_EQ(system["properties"], json({{"S3", "FACILITY"}}));
    ASSERT_EQ(system["parts"].size(), 2U);
    const json& drive = system["parts"][0]["parts"][1];
    const json expected = {{"system", "SYSTEM-1"},
                           {"facility", "FACILITY"},
                           {"collected", "2026-11-21T13:41:03.000005Z"},
                           {"kind", "drive"},
                           {"id", "U.AB1-D10"},
                           {"within", "U.AB1"},
                           {"enclosure", 1},
                           {"slot", 10},
                           {"serial", "LONG"},
                           {"ec_level", "J2"},
                           {"name", "D1"},
                           {"manufacturer", "Maker"},
                           {"capacity_mb", 73400},
                           {"state", 0},
                           {"image", "IMAGE-1"},
                           {"partitions", {"SYSTEM-1-1"}},
                           {"properties",
                            {{"S3", "FACILITY"},
                             {"S4", "IMAGE-1"},
                             {"EC", "J2"},
                             {"SN", "LONG"},
                             {"DP", "DI=D1,DM=Maker,DC=73400MB,ST=0"},
                             {"DS", "OSK Physical Disk Drive"},
                             {"YL", "U.AB1-D10"}}},
                           {"parts", json::array()}};
    EXPECT_EQ(drive, expected);
}

TEST(Json, WritesATextWithTheShortestEscapes)
{
    EXPECT_EQ(document::quote("a\"b\\c/d\n\t\r\b\x1f\x7f \xC3\xA9\xFF"), R"("a\"b\\c/d\n\t\r\u0008\u001f)"
                                                                         "\x7f \xC3\xA9\xEF\xBF\xBD\"");
}

TEST(Json, IsJsonWhateverTheValues)
{
    const std::string value = "\"\\\n\x01\xFF</script>\xF0\x9F\x98\x80\x7F";
    const json document = jsonOf(ofSystem(property("PN", "L", value)));
    EXPECT_EQ(document["system"]["properties"]["PN"], "\"\\\n\x01\xEF\xBF\xBD</script>\xF0\x9F\x98\x80\x7F");
}

TEST(Json, SeveralPropertiesOfOneCodeAreAList)
{
    const json document =
        jsonOf(ofPartitions(resource("P", "SYSTEM-1-1",
                                     property("LE", "LIC VRMF", "5.1") + property("LE", "LIC VRMF", "5.2") +
                                         property("NN", "WWNN", "50"))));
    EXPECT_EQ(document["system"]["parts"][0]["properties"], json({{"LE", {"5.1", "5.2"}}, {"NN", "50"}}));
    const json odd = jsonOf(ofPartitions(resource(
        "P", "SYSTEM-1-1",
        property("LE", "LIC VRMF", "5.1") + property("XX", "Odd", "x") + property("LE", "LIC VRMF", "5.2"))));
    EXPECT_EQ(odd["system"]["parts"][0]["properties"], json({{"LE", {"5.1", "5.2"}}, {"XX", "x"}}));
}

TEST(Json, APartitionsHostsAreParts)
{
    const json document =
        jsonOf(ofPartitions(resource("Tarn01", "SYSTEM-1-1", hosts("web=2,ledger, old=1,"))));
    const json& hosts = document["system"]["parts"][0]["parts"];
    ASSERT_EQ(hosts.size(), 2U);
    EXPECT_EQ(hosts[1]["kind"], "host");
    EXPECT_EQ(hosts[1]["description"], "ledger, old");
    EXPECT_EQ(hosts[1]["ports"], 1);
    EXPECT_EQ(hosts[1]["partition"], "Tarn01");
    EXPECT_EQ(hosts[1]["within"], "SYSTEM-1-1");
}

TEST(Json, TellsTheEmptyElementOfAnAbsentPart)
{
    const json document = jsonOf(ofEnclosures(resource("Quay", "", "")));
    EXPECT_EQ(document["system"]["parts"].size(), 1U);
}

/// The validator's own formats are not what times are held against: these are.
TEST(JsonSchema, KnowsATimeWithItsOffset)
{
    const TempFolder folder;
    const std::filesystem::path schema = folder.path() / "times.schema.json";
    std::ofstream(schema) << R"({"properties": {"at": {"type": "string", "format": "date-time"}}})";
    const auto isTime = [&](const std::string& text) { return valueFaults(schema, {{"at", text}}).empty(); };
    for (const char* time :
         {"2026-11-21T13:41:03.000005Z", "2024-02-29T00:00:00Z", "2026-12-31T23:59:60+02:00"})
        EXPECT_TRUE(isTime(time)) << time;
    for (const char* none :
         {"", "2026-11-21", "2026-11-21T13:41:03", "2026-11-31T13:41:03Z", "2026-02-30T13:41:03Z",
          "2026-13-01T13:41:03Z", "2026-11-21T24:00:00Z", "2026-11-21 13:41:03Z", "2026-11-21T13:41:03.Z",
          "x2026-11-21T13:41:03Z", "2026-11-21T13:41:03Zx"})
        EXPECT_FALSE(isTime(none)) << none;
}

} // namespace
