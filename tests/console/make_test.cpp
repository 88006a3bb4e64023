// Made facilities: the same bytes for the same sizes, the counts that were asked for, and joins that hold.

#include "facility/compile.h"
#include "facility/make.h"
#include "parseJson.h"

#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

namespace
{

using console::facility::compile;
using console::facility::make;
using console::facility::Sizes;
using nlohmann::json;

std::string made(const Sizes& sizes)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
    EXPECT_TRUE(make(sizes, file.get()));
    std::string text(static_cast<size_t>(std::ftell(file.get())), '\0');
    std::rewind(file.get());
    EXPECT_EQ(std::fread(text.data(), 1, text.size(), file.get()), text.size());
    return text;
}

using Values = std::map<std::string, json>;

/// The resources of a class that have all these values.
std::vector<json> matching(const json& file, const std::string& name, const Values& values)
{
    std::vector<json> found;
    for (const json& resource : file["resources"]["Orvik." + name]) {
        const bool matches = std::all_of(values.begin(), values.end(), [&resource](const auto& value) {
            return resource.contains(value.first) && resource[value.first] == value.second;
        });
        if (matches) found.push_back(resource);
    }
    return found;
}

size_t count(const json& file, const std::string& name, const Values& values = {})
{
    return matching(file, name, values).size();
}

std::string imageMtms(const json& imageId)
{
    std::string mtms = imageId;
    std::replace(mtms.begin(), mtms.end(), '.', '*');
    return mtms;
}

TEST(Make, SameArgumentsGiveSameBytes)
{
    EXPECT_TRUE(made({}) == made({}));
    EXPECT_TRUE(made({.drives = 3, .seed = 5}) == made({.drives = 3, .seed = 5}));
}

/// The bundled facility is the one that is made without asking for anything else.
TEST(Make, TheBundledFacilityIsMade)
{
    std::ifstream file(std::string(KORD_SOURCE_DIR) + "/console/facilities/facility.json");
    std::ostringstream bundled;
    bundled << file.rdbuf();
    EXPECT_TRUE(made({}) == bundled.str());
}

TEST(Make, AnotherSeedVariesTheFacilityNotItsSize)
{
    const std::string one = made({});
    const std::string other = made({.seed = 2});
    EXPECT_FALSE(one == other);
    const json first = kordTest::parseJson(one)["resources"];
    const json second = kordTest::parseJson(other)["resources"];
    for (const auto& [name, resources] : first.items())
        EXPECT_EQ(second[name].size(), resources.size()) << name;
}

const Sizes shapes[] = {
    {},
    {.images = 1,
     .cec = 1,
     .io = 1,
     .adapters = 1,
     .racks = 1,
     .enclosures = 1,
     .drives = 1,
     .volumes = 1,
     .hosts = 1},
    {.images = 8,
     .cec = 3,
     .io = 2,
     .adapters = 1,
     .racks = 3,
     .enclosures = 3,
     .drives = 5,
     .volumes = 40,
     .hosts = 9},
    {.images = 3, .enclosures = 7, .drives = 16},
    {.images = 1,
     .cec = 0,
     .io = 0,
     .adapters = 0,
     .racks = 0,
     .enclosures = 0,
     .drives = 0,
     .volumes = 0,
     .hosts = 0},
};

TEST(Make, EveryFacilityIsWellFormed)
{
    for (const Sizes& sizes : shapes) {
        const auto faults = compile(made(sizes)).faults;
        EXPECT_TRUE(faults.empty()) << toLine(faults.front());
    }
}

TEST(Make, CountsArePerParent)
{
    for (const Sizes& sizes : shapes) {
        const json file = kordTest::parseJson(made(sizes));
        EXPECT_EQ(count(file, "ManagedNode"), 2U * sizes.images);
        EXPECT_EQ(count(file, "TarnStorageFacilityImage"), sizes.images);
        for (const json& system : file["resources"]["Orvik.TarnStorageFacilitySystem"]) {
            const Values of = {{"managedSystemMTMS", system["managedSystemMTMS"]}};
            EXPECT_EQ(count(file, "TarnStorageFacilityPartition", of), sizes.images);
            EXPECT_EQ(count(file, "TarnCECDrawer", of), sizes.cec);
            EXPECT_EQ(count(file, "TarnIODrawer", of), sizes.io);
        }
        EXPECT_EQ(count(file, "TarnDA"), sizes.io * sizes.images * sizes.adapters);
        EXPECT_EQ(count(file, "TarnHA"), sizes.io * sizes.images * sizes.adapters);
        EXPECT_EQ(count(file, "TarnRack"), sizes.racks);
        EXPECT_EQ(count(file, "TarnLogicalVolume"), sizes.images * sizes.volumes);
        EXPECT_EQ(count(file, "TarnVolumeGroup"), sizes.images * sizes.hosts);

        std::set<std::pair<std::string, std::string>> enclosures; // rack and MTMS
        for (const json& enclosure : file["resources"]["Orvik.TarnStorageEnclosure"])
            enclosures.emplace(enclosure["rackNumber"], enclosure["enclosureMTMS"]);
        EXPECT_EQ(enclosures.size(), sizes.racks * sizes.enclosures);
        EXPECT_EQ(count(file, "TarnDDM"), count(file, "TarnStorageEnclosure") * sizes.drives);
    }
}

/// What is written goes out by the megabyte.
TEST(Make, ALargeFacilityIsWritten)
{
    const std::string text = made({.racks = 6, .drives = 128});
    EXPECT_GT(text.size(), size_t{1} << 20U);
    EXPECT_NO_THROW(kordTest::parseJson(text));
    size_t drives = 0;
    for (size_t at = text.find("\"ddmname\""); at != std::string::npos; at = text.find("\"ddmname\"", at + 1))
        ++drives;
    EXPECT_EQ(drives, 6U * Sizes{}.enclosures * 128U);
}

TEST(Make, RacksHoldAnEnclosureOfEveryImage)
{
    for (const Sizes& sizes : shapes) {
        if (sizes.enclosures == 0) continue;
        const json file = kordTest::parseJson(made(sizes));
        for (const json& rack : file["resources"]["Orvik.TarnRack"]) {
            for (const json& image : file["resources"]["Orvik.TarnStorageFacilityImage"]) {
                const Values seen = {{"rackNumber", rack["rackNumber"]},
                                     {"ActivePeerDomain", image["ActivePeerDomain"]},
                                     {"storageFacilityImageMTMS", image["storageFacilityImageMTMS"]}};
                EXPECT_GE(count(file, "TarnStorageEnclosure", seen), 1U);
            }
        }
    }
}

TEST(Make, EnclosuresHoldTheirParts)
{
    const json file = kordTest::parseJson(made({}));
    for (const json& enclosure : file["resources"]["Orvik.TarnStorageEnclosure"]) {
        const Values within = {{"rackNumber", enclosure["rackNumber"]},
                               {"enclosureMTMS", enclosure["enclosureMTMS"]},
                               {"enclosureNumber", enclosure["enclosureNumber"]},
                               {"ActivePeerDomain", enclosure["ActivePeerDomain"]}};
        EXPECT_EQ(count(file, "TarnDDM", within), 16U);
        EXPECT_GE(count(file, "TarnFCIC", within), 1U);
        EXPECT_GE(count(file, "TarnBaffle", within), 1U);
    }
}

TEST(Make, PartitionsBelongToImages)
{
    const json file = kordTest::parseJson(made({}));
    for (const json& node : file["resources"]["Orvik.ManagedNode"]) {
        const std::string system =
            node["HWModel"].get<std::string>() + '*' + node["HWSerialNum"].get<std::string>();
        const Values partition = {{"managedSystemMTMS", system}, {"lparId", node["LParID"]}};
        ASSERT_EQ(count(file, "TarnStorageFacilityPartition", partition), 1U);
        const json& id = node["StorageFacilityImageID"];
        EXPECT_EQ(count(file, "TarnStorageFacilityImage",
                        {{"storageFacilityImageMTMS", imageMtms(id)}, {"ActivePeerDomain", id}}),
                  1U);
        const json location = matching(file, "TarnStorageFacilityPartition", partition)[0]["locationCode"];
        EXPECT_EQ(count(file, "TarnServerPartition", {{"locationCode", location}, {"ActivePeerDomain", id}}),
                  1U);
    }
}

TEST(Make, ControlCardsAreTheirSystems)
{
    const json file = kordTest::parseJson(made({}));
    for (const json& system : file["resources"]["Orvik.TarnStorageFacilitySystem"]) {
        for (const json& image : file["resources"]["Orvik.TarnStorageFacilityImage"]) {
            const auto cards = matching(file, "TarnNVC",
                                        {{"server", system["storageFacilityServerNumber"]},
                                         {"storageFacilityImageMTMS", image["storageFacilityImageMTMS"]}});
            EXPECT_FALSE(cards.empty());
            for (const json& card : cards) {
                EXPECT_EQ(card["locationCode"].get<std::string>().substr(0, 16),
                          system["managedSystemMTMS"].get<std::string>());
            }
        }
    }
}

TEST(Make, AdaptersLieInTheirDrawer)
{
    const json file = kordTest::parseJson(made({}));
    for (const json& drawer : file["resources"]["Orvik.TarnIODrawer"]) {
        for (const char* kind : {"TarnDA", "TarnHA"}) {
            for (const json& image : file["resources"]["Orvik.TarnStorageFacilityImage"]) {
                size_t inside = 0;
                for (const json& adapter : matching(
                         file, kind, {{"storageFacilityImageMTMS", image["storageFacilityImageMTMS"]}})) {
                    const std::string location = adapter["locationCode"];
                    inside += location.starts_with(drawer["locationCode"].get<std::string>()) ? 1 : 0;
                }
                EXPECT_EQ(inside, 2U);
            }
        }
    }
}

/// Sites have eight drives each, the last one what is left.
TEST(Make, LogicalConfigurationHangsTogether)
{
    for (uint32_t drives = 1; drives <= 72; drives += drives % 8 == 0 ? 1 : 7) {
        const json file =
            kordTest::parseJson(made({.images = 1, .racks = 1, .enclosures = 1, .drives = drives}));
        const size_t sites = (drives + 7) / 8;
        EXPECT_EQ(count(file, "TarnArraySite"), sites);
        size_t used = 0;
        for (const json& array : file["resources"]["Orvik.TarnArray"]) {
            used += array["arraySites"].size();
            for (const json& site : array["arraySites"])
                EXPECT_EQ(count(file, "TarnArraySite", {{"arraySite", site}, {"array", array["rank"]}}), 1U);
            ASSERT_EQ(count(file, "TarnRank", {{"rank", array["rank"]}}), 1U);
            const json rank = matching(file, "TarnRank", {{"rank", array["rank"]}})[0];
            EXPECT_EQ(count(file, "TarnSegmentPool", {{"segmentPool", rank["segmentPool"]}}), 1U);
            EXPECT_EQ(array["arraySiteConfiguration"].size(), array["arraySites"].size());
        }
        EXPECT_EQ(used, sites);
        for (const json& pool : file["resources"]["Orvik.TarnSegmentPool"]) {
            int segments = 0;
            for (const json& rank : matching(file, "TarnRank", {{"segmentPool", pool["segmentPool"]}}))
                segments += rank["numberSegments"].get<int>();
            EXPECT_EQ(pool["numberSegments"], segments) << drives;
        }
    }
}

TEST(Make, TheDefaultFacilityHasEveryKindThatIsCounted)
{
    const json file = kordTest::parseJson(made({}));
    for (const json& image : file["resources"]["Orvik.TarnStorageFacilityImage"]) {
        const auto counted = [&](const char* name, Values values) {
            values.emplace("storageFacilityImageMTMS", image["storageFacilityImageMTMS"]);
            values.emplace("ActivePeerDomain", image["ActivePeerDomain"]);
            return count(file, name, values);
        };
        for (const int dataType : {10, 11, 12})
            EXPECT_GE(counted("TarnLogicalVolume", {{"volumeType", 10}, {"dataType", dataType}}), 1U);
        for (const int volumeType : {11, 12})
            EXPECT_GE(counted("TarnLogicalVolume", {{"volumeType", volumeType}}), 1U);
        for (const int dataType : {0, 1, 2})
            EXPECT_GE(counted("TarnLogicalVolume", {{"volumeType", 20}, {"dataType", dataType}}), 1U);
        for (const int portType : {20, 21})
            EXPECT_GE(counted("TarnHAPort", {{"portType", portType}}), 1U);
        for (const int topology : {0, 1, 2})
            EXPECT_GE(counted("TarnHAPort", {{"topologyULP", topology}}), 1U);
        for (const char* device : {"CKD", "FB"})
            EXPECT_GE(counted("TarnLogicalSubsystem", {{"deviceType", device}}), 1U);
        for (const char* name : {"TarnVolumeGroup", "TarnScsiHostPort", "TarnTeskHost"})
            EXPECT_GE(counted(name, {}), 1U);
    }
}

} // namespace
