// Documents as lists: rows, columns, conditions, order, counts and formats.

#include "consoleRun.h"
#include "document/condition.h"
#include "document/kindList.h"
#include "document/list.h"
#include "parseJson.h"
#include "partsCheck.h"
#include "platform/failure.h"
#include "writing.h"

#include <cctype>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

namespace
{

namespace fs = std::filesystem;
using namespace kordTest;
using document::Format;
using document::ListOptions;
using nlohmann::json;
using Texts = std::vector<std::string>;

ListOptions of(const std::string& kind, Format format = Format::table)
{
    ListOptions options;
    options.kind = kind;
    options.format = format;
    return options;
}

std::string listed(const ListOptions& options, const Texts& documents)
{
    std::string written;
    document::List list(options, [&](std::string_view piece) { written += piece; });
    for (const std::string& text : documents)
        list.add(parse(text));
    list.finish();
    return written;
}

/// One column of the rows.
Texts column(ListOptions options, const std::string& name, const std::string& text)
{
    options.columns = {name};
    options.header = false;
    return splitLines(listed(options, {text}));
}

/// Drives of one enclosure in slots 1, 2 and so on, with these firmware levels.
std::string drivesOf(const Texts& levels)
{
    std::string drives;
    for (size_t i = 0; i < levels.size(); ++i) {
        const std::string slot = std::to_string(i + 1);
        drives += resource("OSK Physical Disk Drive", "E-D" + slot,
                           property("LE", "Firmware Level", levels[i]) +
                               property("SN", "Serial Number", "S" + slot));
    }
    return ofEnclosures(enclosure({.id = "E", .serial = "1", .location = "R-1"}, drives));
}

// --- The table of parts

TEST(Kinds, AreThoseThatScriptsKnow)
{
    const Texts words = {"system",
                         "processorComplex",
                         "controlCard",
                         "ioEnclosure",
                         "deviceAdapter",
                         "hostAdapter",
                         "rack",
                         "powerSupply",
                         "battery",
                         "powerController",
                         "fanSenseCard",
                         "fanTray",
                         "storageEnclosure",
                         "drive",
                         "interfaceCard",
                         "baffle",
                         "console",
                         "partition",
                         "arraySite",
                         "array",
                         "rank",
                         "segmentPool",
                         "host",
                         "other"};
    Texts known;
    for (const std::string& word : document::kindWords()) {
        if (word != "all") known.emplace_back(document::rowOf(document::kindsOf(word).back()).word);
    }
    EXPECT_EQ(known, words);
}

TEST(Kinds, AreCalledByTheirWordsInSentences)
{
    const std::map<std::string, std::pair<std::string, std::string>> others = {
        {"system", {"managed system", "managed systems"}},
        {"processorComplex", {"processor complex", "processor complexes"}},
        {"ioEnclosure", {"I/O enclosure", "I/O enclosures"}},
        {"powerSupply", {"power supply", "power supplies"}},
        {"battery", {"battery", "batteries"}},
        {"other", {"part of another kind", "parts of another kind"}}};
    for (const document::KindRow& row : document::kinds) {
        if (row.word == "other" && row.kind != document::Kind::other) continue;
        std::string words;
        for (const char letter : row.word)
            words += std::isupper(letter) != 0 ? std::string(" ") + static_cast<char>(std::tolower(letter))
                                               : std::string(1, letter);
        const auto other = others.find(std::string(row.word));
        EXPECT_EQ(row.singular, other == others.end() ? words : other->second.first);
        EXPECT_EQ(row.plural, other == others.end() ? words + 's' : other->second.second);
    }
    const document::KindRow& share = document::rowOf(document::Kind::enclosurePartition);
    EXPECT_EQ(share.singular, "partition's share of an enclosure");
    EXPECT_EQ(share.plural, "partitions' shares of enclosures");
    const document::KindRow& storage = document::rowOf(document::Kind::storageConfiguration);
    EXPECT_EQ(storage.singular, "storage configuration");
    EXPECT_EQ(storage.plural, "storage configurations");
}

/// What only holds parts is not counted among them.
TEST(Kinds, AreCountedWhereTheyAreParts)
{
    using document::Kind;
    for (const document::KindRow& row : document::kinds) {
        const bool isPart = row.kind != Kind::system && row.kind != Kind::enclosurePartition &&
                            row.kind != Kind::storageConfiguration;
        EXPECT_EQ(row.counted, isPart) << row.singular;
        EXPECT_EQ(row.listed, row.kind != Kind::enclosurePartition) << row.singular;
    }
}

TEST(Kinds, GoBySeveralWords)
{
    using document::Kind;
    for (const std::string word : {"arraySite", "arraySites", "array-site", "array-sites"})
        EXPECT_EQ(document::kindsOf(word), std::vector{Kind::arraySite}) << word;
    for (const std::string word :
         {"batteries", "power-supplies", "processor-complexes", "fan-trays", "baffles"})
        EXPECT_EQ(document::kindsOf(word).size(), 1U) << word;
    EXPECT_EQ(document::kindsOf("").size(), 0U);
    EXPECT_EQ(document::kindsOf("enclosurePartition").size(), 0U);
    EXPECT_THROW(document::knownKinds("drivers"), platform::Failure);
}

TEST(Kinds, HaveTheColumnsThatScriptsKnow)
{
    const Texts common = {"system", "facility", "collected", "kind", "id", "within"};
    const std::map<std::string, Texts> expected = {
        {"drives",
         {"image", "rack", "enclosure", "slot", "serial", "part_number", "ec_level", "firmware", "name",
          "manufacturer", "capacity_mb", "rpm", "interface_rate", "array_site", "position", "interface_type",
          "state", "partitions"}},
        {"hosts", {"description", "ports", "partition"}},
        {"partitions",
         {"name", "pool", "wwnn", "firmware", "image", "v0", "v7", "p0", "p4", "o0", "o4", "h0", "h3"}},
        {"array-sites", {"number", "array", "position", "da_pair", "capacity_mb", "rpm"}},
        {"arrays", {"number", "array_sites", "rank", "serial", "raid_type"}},
        {"ranks", {"number", "arrays", "pool", "serial", "segments"}},
        {"segment-pools", {"number", "ranks", "segments", "segment_limit"}},
        {"storage-enclosures", {"image", "rack", "enclosure", "type_model", "feature", "interfaces"}},
        {"host-adapters", {"image", "serial", "part_number", "ec_level", "firmware", "interfaces", "ccin"}}};
    for (const auto& [kind, own] : expected) {
        const Texts columns = document::columnNamesOf(document::kindsOf(kind));
        EXPECT_THAT(columns, testing::IsSupersetOf(own)) << kind;
        EXPECT_TRUE(std::equal(common.begin(), common.end(), columns.begin())) << kind;
    }
}

TEST(Kinds, EveryColumnSaysWhatItMeansAndWhereItComesFrom)
{
    for (const document::KindRow& row : document::kinds) {
        for (const document::Column* one : document::columnsOf(row.kind)) {
            EXPECT_FALSE(one->meaning.empty()) << row.word << ' ' << one->name;
            EXPECT_FALSE(document::sourceOf(*one).empty()) << row.word << ' ' << one->name;
            EXPECT_EQ(one->name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_"),
                      std::string::npos);
        }
    }
}

// --- Values, against another reader of the same document

TEST(List, EveryValueIsWhatTheDocumentSays)
{
    size_t documents = 0;
    for (const auto& entry : fs::directory_iterator(fs::path(KORD_SOURCE_DIR) / "tests/runs/expected")) {
        if (entry.path().extension() != ".xml") continue;
        std::string text = readFile(entry.path()).value();
        const std::string stamp = "timestamp=\"0.0\"";
        ASSERT_NE(text.find(stamp), std::string::npos);
        text.replace(text.find(stamp), stamp.size(), "timestamp=\"1795297655.94324\"");
        EXPECT_EQ(partsFaults(text), Texts{}) << entry.path();
        ++documents;
    }
    EXPECT_GE(documents, 4U);
}

TEST(List, ValuesWithCommasAndEqualsSignsStayWhole)
{
    const std::string space =
        "DI=a,DM=b=c,DC=9,DM=Kestrel, Inc.,DC=73400MB,DR=15000,DS=2,AS=1,AP=8,IT=FC,AL,ST=-1";
    const std::string text = ofEnclosures(
        resource("OSK Physical Disk Drive", "D", property("DP", "Disk Space Characteristics", space)));
    EXPECT_EQ(column(of("drives"), "manufacturer", text), Texts{"b=c"});
    EXPECT_EQ(column(of("drives"), "capacity_mb", text), Texts{""})
        << "9,DM=Kestrel, Inc.,DC=73400MB is no number";
    EXPECT_EQ(column(of("drives"), "interface_type", text), Texts{"FC,AL"});
    EXPECT_EQ(column(of("drives"), "state", text), Texts{"-1"});
    const std::string nameless = ofEnclosures(resource(
        "OSK Physical Disk Drive", "D", property("DP", "Disk Space Characteristics", "DI=a,DM=1,=2,DC=9MB")));
    EXPECT_EQ(column(of("drives"), "manufacturer", nameless), Texts{"1,=2"});
}

TEST(List, WhatIsNoNumberIsNoValue)
{
    for (const std::string text : {"", "x", "1x", " 1", "0x1", "99999999999999999999", "1.5", "-"}) {
        const std::string document =
            ofEnclosures(resource("TARN Rack", "R", property("R2", "Rack Number", text)));
        EXPECT_EQ(parseJson(listed(of("racks", Format::json), {document})).at(0).count("rack"), 0U) << text;
    }
}

TEST(List, MicrosecondsHaveNoLeadingZerosInTheDocument)
{
    const auto collected = [](const std::string& stamp) {
        return column(of("systems"), "collected", inventory(resource("S", "S", ""), stamp)).at(0);
    };
    EXPECT_EQ(collected("1795297655.94324"), "2026-11-21T21:47:35.094324Z");
    EXPECT_EQ(collected("1795297655.5"), "2026-11-21T21:47:35.000005Z");
    EXPECT_EQ(collected("0.0"), "1970-01-01T00:00:00.000000Z");
    EXPECT_EQ(collected("0.999999"), "1970-01-01T00:00:00.999999Z");
    EXPECT_EQ(collected("9999999999999999999.5"), "") << "no such second";
    EXPECT_EQ(collected("999999999999999999.5"), "") << "no such year";
    EXPECT_EQ(collected("0.1000000"), "") << "no second has so many";
}

// --- Rows

TEST(List, OnePhysicalPartIsOneRow)
{
    const auto seen = [](const std::string& image, const std::string& partition, const std::string& level) {
        return enclosure(
            {.id = "E", .serial = "1", .location = "R-1", .image = image, .partition = partition},
            drive("E", {.slot = "-D1", .serial = "A", .level = level, .image = image}));
    };
    const std::string twice = ofEnclosures(seen("I1", "1", "L") + seen("I2", "2", "L"));
    ListOptions options = of("drives", Format::json);
    options.columns = {"id", "within", "image", "partitions"};
    EXPECT_EQ(
        parseJson(listed(options, {twice})),
        parseJson(
            R"([{"id": "E-D1", "within": "E", "image": "I1", "partitions": ["SYSTEM-1-1", "SYSTEM-1-2"]}])"));
    EXPECT_EQ(column(of("storage-enclosures"), "partitions", twice), Texts{"SYSTEM-1-1 SYSTEM-1-2"});
    const std::string changed = ofEnclosures(seen("I1", "1", "L") + seen("I2", "2", "M"));
    EXPECT_EQ(column(of("drives"), "ec_level", changed), (Texts{"L", "M"}));
}

/// Two elements are one part where all that they say is the same, but for the image that sees it.
TEST(List, PartsThatDifferInAnythingAreSeveralRows)
{
    const auto rows = [](const std::string& one, const std::string& other, const std::string& id = "Q") {
        return column(of("consoles"), "kind",
                      ofEnclosures(resource("Quay", id, one) + resource("Quay", id, other)))
            .size();
    };
    const std::string serial = property("SN", "Serial Number", "1");
    const std::string part = property("PN", "Part Number", "1");
    const std::string image = property("S4", "Image", "I1");
    const std::string otherImage = property("S4", "Image", "I2");
    EXPECT_EQ(rows("", ""), 1U);
    EXPECT_EQ(rows(serial + part, serial + part), 1U);
    EXPECT_EQ(rows(serial + image, otherImage + serial), 1U);
    EXPECT_EQ(rows(serial + image, serial), 1U);
    EXPECT_EQ(rows(serial, serial + part), 2U);
    EXPECT_EQ(rows(serial + part, serial), 2U);
    EXPECT_EQ(rows("", serial), 2U);
    const std::string place = property("YL", "Hardware Location Code", "Q"); // repeats the identifier
    EXPECT_EQ(rows(serial, serial + place), 2U);
    EXPECT_EQ(rows(serial + place, serial), 2U);
    EXPECT_EQ(rows(serial, part), 2U);
    EXPECT_EQ(rows(serial, property("SN", "Serial Number", "2")), 2U);
    EXPECT_EQ(rows(serial + part, serial + part, ""), 2U) << "nothing tells that they are the same one";
}

TEST(List, APartitionIsNamedByItsShareOfAnEnclosure)
{
    const auto partitions = [](const Texts& shares) {
        std::string lists;
        for (const std::string& share : shares)
            lists += resource("Share", share, "");
        const std::string text =
            ofEnclosures(resource("Storage Enclosure", "E", list("Enclosures Partitions", lists)));
        return column(of("storage-enclosures"), "partitions", text).at(0);
    };
    EXPECT_EQ(partitions({"E-1", "E-2"}), "SYSTEM-1-1 SYSTEM-1-2");
    EXPECT_EQ(partitions({"E-1", "E-1"}), "SYSTEM-1-1");
    EXPECT_EQ(partitions({"F-1", "E", "E1"}), "F-1 E E1") << "they say nothing of the system";
}

/// An array is named by its array sites, the first one's number twice; its own number stands with them.
TEST(List, ArraysAreKnownByTheirSites)
{
    const auto sitesOf = [](const std::string& id) {
        ListOptions options = of("arrays", Format::lines);
        options.columns = {"array_sites"};
        return listed(options,
                      {ofPartitions(resource("P", "P1", list("Arrays", resource("Array", id, ""))))});
    };
    EXPECT_EQ(sitesOf("I/A33"), "{\"array_sites\":[3]}\n");
    EXPECT_EQ(sitesOf("I/A1212,13,4"), "{\"array_sites\":[12,13,4]}\n");
    for (const std::string id :
         {"I/A0", "I/A3", "I/A34", "I/A33,x", "I/A33,", "I/A,3", "I/Axx", "I/A", "I33"})
        EXPECT_EQ(sitesOf(id), "{}\n") << id;

    ListOptions number = of("arrays", Format::lines);
    number.columns = {"number"};
    for (const std::string id : {"I/A0", "I/A33", "I/Axx"}) { // of no site, or of none that is there
        const std::string array = list("Arrays", resource("Array", id, ""));
        EXPECT_EQ(listed(number, {ofPartitions(resource("P", "P1", array))}), "{}\n") << id;
    }

    const auto in = [](const std::string& name, const std::string& id, const std::string& owner) {
        return resource(name, "I/" + id, property("A1", "Owner", "I/" + owner));
    };
    const std::string text = ofPartitions(resource(
        "P", "P1",
        list("Array Sites",
             in("Array Site", "S3", "A5") + in("Array Site", "S4", "A6") + in("Array Site", "S3", "A9")) +
            list("Arrays", in("Array", "A33,4", "R7") + in("Array", "A44", "R8") + in("Array", "A99", "R7")) +
            list("Ranks", in("Rank", "R7", "P0") + in("Rank", "R7", "P1") + in("Rank", "R8", "P0") +
                              in("Rank", "R1", "P0"))));
    ListOptions options = of("arrays", Format::lines);
    options.columns = {"number", "rank"};
    EXPECT_EQ(listed(options, {text}),
              "{\"number\":5,\"rank\":7}\n{\"number\":6,\"rank\":8}\n{\"rank\":7}\n");
    options.kind = "ranks";
    options.columns = {"number", "arrays"};
    EXPECT_EQ(listed(options, {text}), "{\"number\":7,\"arrays\":[5]}\n{\"number\":7}\n"
                                       "{\"number\":8,\"arrays\":[6]}\n{\"number\":1}\n")
        << "of several of one number the first has them";
}

TEST(List, AbsentPartsAreNoRows)
{
    const std::string text =
        ofEnclosures(resource("Quay", "", "") + resource("Fan Tray", "", property("PN", "Part Number", "")) +
                     resource("Fan Tray", "", property("PN", "Part Number", "P")) +
                     resource("Rack Battery Assembly", "", property("SN", "Serial Number", "S")));
    EXPECT_EQ(column(of("all"), "kind", text), (Texts{"system", "fanTray", "battery"}));
}

TEST(List, PartsOfNoKnownKindAreOthers)
{
    const std::string text =
        ofEnclosures(resource("Something New", "N", property("SN", "Serial Number", "7")));
    EXPECT_EQ(listed(of("other"), {text}), "id  name           serial  part_number  ec_level  firmware\n"
                                           "N   Something New  7\n");
}

// --- Conditions, order, counts

/// Digits count as numbers; where those are the same, the texts themselves are compared.
TEST(List, TextsHaveANaturalOrder)
{
    const Texts ascending = {"",
                             "0",
                             "00",
                             "01",
                             "1",
                             "2",
                             "10",
                             "010a",
                             "10a",
                             "100",
                             "A1",
                             "a",
                             "a01",
                             "a1",
                             "a2",
                             "a2b",
                             "a2c",
                             "a10",
                             "a10b9",
                             "a10b10",
                             "b",
                             "b9",
                             "b10",
                             "b99999999999999999999",
                             "b100000000000000000000"};
    for (size_t i = 0; i < ascending.size(); ++i) {
        for (size_t j = 0; j < ascending.size(); ++j) {
            const int order = document::compareNaturally(ascending[i], ascending[j]);
            EXPECT_EQ(order < 0, i < j) << ascending[i] << " and " << ascending[j];
            EXPECT_EQ(order > 0, i > j) << ascending[i] << " and " << ascending[j];
        }
    }
}

TEST(List, ConditionsMayHaveBlanks)
{
    const std::string text = drivesOf({"a b", "c"});
    for (const char* condition : {"firmware=a b", " firmware = a b ", "\tfirmware\t=\ta b\t"}) {
        ListOptions options = of("drives");
        options.conditions = {condition};
        EXPECT_EQ(column(options, "slot", text), Texts{"1"}) << condition;
    }
}

TEST(List, ConditionsMustAllHold)
{
    const std::string text = drivesOf({"5.2", "5.10", "5.10", "", "T0A4"});
    const auto slots = [&](const Texts& conditions) {
        ListOptions options = of("drives");
        options.conditions = conditions;
        return column(options, "slot", text);
    };
    EXPECT_EQ(slots({"firmware = 5.10"}), (Texts{"2", "3"}));
    EXPECT_EQ(slots({"firmware=5.10", "slot>2"}), (Texts{"3"}));
    EXPECT_EQ(slots({"firmware != 5.10"}), (Texts{"1", "4", "5"}));
    EXPECT_EQ(slots({"firmware < 5.10"}), (Texts{"1"})) << "5.2 is before 5.10";
    EXPECT_EQ(slots({"firmware <= 5.10"}), (Texts{"1", "2", "3"}));
    EXPECT_EQ(slots({"firmware > 5.10"}), (Texts{"5"}));
    EXPECT_EQ(slots({"firmware >= 5.10"}), (Texts{"2", "3", "5"}));
    EXPECT_EQ(slots({"firmware ~ ^5\\.(2|3)$"}), (Texts{"1"}));
    EXPECT_EQ(slots({"firmware ="}), (Texts{"4"}));
    EXPECT_EQ(slots({"firmware !="}), (Texts{"1", "2", "3", "5"}));
    EXPECT_EQ(slots({"slot ~ [45]"}), (Texts{"4", "5"}));
    EXPECT_EQ(slots({"slot = 4"}), (Texts{"4"}));
    EXPECT_EQ(slots({"slot != 4"}), (Texts{"1", "2", "3", "5"}));
    EXPECT_EQ(slots({"slot < 4"}), (Texts{"1", "2", "3"}));
    EXPECT_EQ(slots({"slot <= 4"}), (Texts{"1", "2", "3", "4"}));
    EXPECT_EQ(slots({"slot > 4"}), (Texts{"5"}));
    EXPECT_EQ(slots({"slot >= 4"}), (Texts{"4", "5"}));
    EXPECT_EQ(slots({"rack < 9"}), Texts{}) << "no rack is less than no number";
    EXPECT_EQ(slots({"rack != 9"}).size(), 5U);
    EXPECT_EQ(slots({"partitions = SYSTEM-1-1"}).size(), 5U);
    EXPECT_EQ(slots({"partitions != SYSTEM-1-1"}), Texts{});
}

TEST(List, SaysWhatIsWrongWithAQuestion)
{
    const auto failure = [](const ListOptions& options) {
        try {
            listed(options, {});
            return std::string("none");
        } catch (const platform::Failure& wrong) {
            return std::string(wrong.what());
        }
    };
    const auto where = [&](const std::string& condition) {
        ListOptions options = of("drives");
        options.conditions = {condition};
        return failure(options);
    };
    EXPECT_THAT(failure(of("drvies")), testing::HasSubstr("did you mean \"drives\""));
    EXPECT_THAT(where("firmwear = 1"), testing::HasSubstr("did you mean \"firmware\""));
    EXPECT_THAT(where("firmware"), testing::HasSubstr("COLUMN OP VALUE"));
    EXPECT_EQ(where("slot = x"), "slot holds whole numbers, and \"x\" is none");
    EXPECT_THAT(where("firmware ~ ("), testing::MatchesRegex("\"\\(\" is no regular expression: .+"));
    EXPECT_EQ(where("slot ~ x"), "none");
    ListOptions options = of("drives");
    options.count = Texts{"rack"};
    options.order = {"slot"};
    EXPECT_EQ(failure(options), "counts cannot be sorted by slot, which is not counted by");
}

TEST(List, IsSortedByColumnsWithWhatHasNoValueLast)
{
    const std::string text = drivesOf({"5.10", "", "5.2", "5.10"});
    const auto slots = [&](const Texts& order) {
        ListOptions options = of("drives");
        options.order = order;
        return column(options, "slot", text);
    };
    EXPECT_EQ(slots({"firmware"}), (Texts{"3", "1", "4", "2"}));
    EXPECT_EQ(slots({"-firmware"}), (Texts{"1", "4", "3", "2"}));
    EXPECT_EQ(slots({"-firmware", "-slot"}), (Texts{"4", "1", "3", "2"}));
    EXPECT_EQ(slots({"-slot"}), (Texts{"4", "3", "2", "1"}));
    EXPECT_EQ(slots({"partitions"}), (Texts{"1", "2", "3", "4"})); // a list of the same in all
    // A number in one kind is a text in another.
    ListOptions allByPool = of("all");
    allByPool.order = {"pool"};
    allByPool.conditions = {"pool ~ ."};
    const Texts pools = column(
        allByPool, "pool",
        ofSystem(list("Partitions", resource("P", "S-1", property("H1", "Partition HSL Pool", "9")) +
                                        resource("Q", "S-2", property("H1", "Partition HSL Pool", "x"))) +
                 list("Ranks", resource("10", "I/R1", property("A1", "Segment Pool", "I/P10")) +
                                   resource("2", "I/R2", property("A1", "Segment Pool", "I/P2")))));
    EXPECT_EQ(pools, (Texts{"2", "9", "10", "x"}));
    ListOptions hostsByPorts = of("hosts");
    hostsByPorts.order = {"ports"};
    const std::string ports = ofPartitions(resource("P", "P1", hosts("a=3,b=-2,c=-10,d=10,")));
    EXPECT_EQ(column(hostsByPorts, "ports", ports), (Texts{"-10", " -2", "  3", " 10"}));
}

TEST(List, Counts)
{
    const std::string text = drivesOf({"5.10", "", "5.2", "5.10"});
    ListOptions options = of("drives");
    options.count = Texts{};
    EXPECT_EQ(listed(options, {text, text}), "8\n");
    EXPECT_EQ(listed(options, {ofSystem("")}), "0\n");
    options.count = Texts{"firmware"};
    EXPECT_EQ(listed(options, {text}),
              "firmware  count\n5.2           1\n5.10          2\n              1\n");
    options.order = {"-count"};
    options.format = Format::json;
    EXPECT_EQ(
        parseJson(listed(options, {text})),
        parseJson(R"([{"firmware": "5.10", "count": 2}, {"firmware": "5.2", "count": 1}, {"count": 1}])"));
    const std::string other = drivesOf({"5.10", "", "5.2", "5.2", "5.1"});
    const auto levels = [&](const Texts& order) {
        ListOptions counted = of("drives");
        counted.count = Texts{"firmware"};
        counted.order = order;
        return listed(counted, {other});
    };
    EXPECT_EQ(levels({"-count"}),
              "firmware  count\n5.2           2\n5.1           1\n5.10          1\n              1\n");
    EXPECT_EQ(levels({"count"}),
              "firmware  count\n5.1           1\n5.10          1\n              1\n5.2           2\n");
    EXPECT_EQ(levels({"count", "-firmware"}),
              "firmware  count\n5.10          1\n5.1           1\n              1\n5.2           2\n");
}

// --- Formats

TEST(List, ATableTellsDocumentsApart)
{
    ListOptions options = of("systems");
    options.several = true;
    EXPECT_EQ(listed(options, {ofSystem(""), inventory(resource("B", "B", ""))}),
              "system    collected                    id\n"
              "SYSTEM-1  2026-11-21T13:41:03.000005Z  SYSTEM-1\n"
              "B         2026-11-21T13:41:03.000005Z  B\n");
}

TEST(List, ColumnsAreChosenOrAdded)
{
    const std::string text = drivesOf({"L"});
    ListOptions options = of("drives");
    options.columns = {"slot", "id"};
    EXPECT_EQ(listed(options, {text}), "slot  id\n   1  E-D1\n");
    options.added = {"within", "id"};
    EXPECT_EQ(listed(options, {text}), "slot  id    within\n   1  E-D1  E\n");
    options = of("hosts");
    options.added = {"within"};
    EXPECT_EQ(listed(options, {ofPartitions(resource("P", "P1", hosts("web, 1=2,")))}),
              "description  ports  partition  within\nweb, 1           2  P          P1\n");
}

TEST(List, AColumnThatIsNamedTwiceIsOne)
{
    const std::string text = drivesOf({"L"});
    ListOptions options = of("drives");
    options.format = Format::lines;
    options.columns = {"slot", "id", "slot"};
    EXPECT_EQ(listed(options, {text}), "{\"slot\":1,\"id\":\"E-D1\"}\n");
    options.count = Texts{"firmware", "firmware"};
    EXPECT_EQ(listed(options, {text}), "{\"firmware\":\"L\",\"count\":1}\n");
}

/// A value of up to 80 columns makes its column as wide; a wider one moves what stands behind it in its own
/// row.
TEST(List, AVeryWideValueMovesItsOwnRowAlone)
{
    const auto table = [](size_t width) {
        const std::string wide(width, 'x');
        ListOptions options = of("hosts");
        options.columns = {"description", "ports"};
        return listed(options, {ofPartitions(resource("P", "P1", hosts(wide + "=2,a=3,")))});
    };
    const auto row = [](const std::string& description, size_t column, const std::string& ports) {
        const size_t room = std::max(column, description.size()) + 2 + 5 - ports.size();
        return description + std::string(room - description.size(), ' ') + ports + '\n';
    };
    for (const size_t width : {size_t{80}, size_t{81}, size_t{90}}) {
        const size_t column = 80;
        EXPECT_EQ(table(width), row("description", column, "ports") +
                                    row(std::string(width, 'x'), column, "2") + row("a", column, "3"))
            << width;
    }
}

/// A fleet's list is never in memory as a whole, and is not written row by row either.
TEST(List, IsWrittenInLargePieces)
{
    const std::string text = drivesOf(Texts(5000, "firmware"));
    for (const Format format : {Format::table, Format::csv, Format::json, Format::lines}) {
        std::vector<size_t> pieces;
        document::List list(of("drives", format),
                            [&](std::string_view piece) { pieces.push_back(piece.size()); });
        list.add(parse(text));
        list.finish();
        ASSERT_GT(pieces.size(), 2U);
        pieces.pop_back();
        EXPECT_THAT(pieces, testing::Each(testing::AllOf(testing::Gt(60'000U), testing::Lt(70'000U))));
    }
}

TEST(List, JsonHasARowALine)
{
    ListOptions options = of("drives", Format::json);
    options.columns = {"id", "slot", "rack"};
    const std::string one = R"({"id":"E-D1","slot":1})";
    const std::string two = R"({"id":"E-D2","slot":2})";
    EXPECT_EQ(listed(options, {drivesOf({"", ""})}), "[" + one + ",\n" + two + "]\n");
    options.format = Format::lines;
    EXPECT_EQ(listed(options, {drivesOf({"", ""})}), one + "\n" + two + "\n");
}

TEST(List, NothingObeysOrHidesInATable)
{
    const std::string text = ofEnclosures(resource("Quay", "a\x1b[31m\xE2\x80\xAE\nb", ""));
    ListOptions options = of("consoles");
    options.header = false;
    EXPECT_EQ(listed(options, {text}), "a\\x1B[31m\\u{202E}\\nb\n");
}

TEST(List, CsvAndJsonCarryTextAsItIs)
{
    const std::string id = "a\x1b\"x\",\r\n\xFF=1";
    const std::string text = ofEnclosures(resource("Quay", id, ""));
    ListOptions options = of("consoles", Format::csv);
    options.columns = {"id", "kind"};
    EXPECT_EQ(listed(options, {text}), "id,kind\n\"a\x1b\"\"x\"\",\r\n\xEF\xBF\xBD=1\",console\n");
    options.format = Format::lines;
    EXPECT_EQ(parseJson(listed(options, {text})),
              json({{"id", "a\x1b\"x\",\r\n\xEF\xBF\xBD=1"}, {"kind", "console"}}));
    options.header = false;
    options.format = Format::csv;
    EXPECT_EQ(listed(options, {ofEnclosures(resource("Quay", " =1 ", ""))}), "\" =1 \",console\n");
}

TEST(List, JsonOfNothingIsAnEmptyList)
{
    EXPECT_EQ(listed(of("drives", Format::json), {ofSystem("")}), "[]\n");
    EXPECT_EQ(listed(of("drives", Format::lines), {ofSystem("")}), "");
    EXPECT_EQ(listed(of("drives", Format::json), {}), "[]\n");
}

} // namespace
