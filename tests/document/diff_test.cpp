// What differs between two documents: one line for each thing that happened to the machine.

#include "consoleRun.h"
#include "document/diff.h"
#include "document/report.h"
#include "parseJson.h"
#include "writing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using namespace kordTest;
using document::Change;
using Lines = std::vector<std::string>;

document::KindSet everything()
{
    return document::KindSet().set();
}

std::string report(const std::string& before, const std::string& after,
                   const document::LineOptions& options = {}, const document::KindSet& wanted = everything())
{
    const document::Document old = parse(before);
    const document::Document now = parse(after);
    std::string text;
    document::writeLines(document::diff(old, now, wanted), options,
                         [&](std::string_view piece) { text += piece; });
    return text;
}

/// The report without its last line, which counts.
Lines changes(const std::string& before, const std::string& after)
{
    Lines lines = splitLines(report(before, after));
    if (!lines.empty()) lines.pop_back();
    return lines;
}

const Enclosure firstEnclosure = {.id = "U.AB1", .serial = "AB1", .location = "R-1"};
const Enclosure second = {.id = "U.AB2", .serial = "AB2", .location = "R-2"};

/// A whole document of enclosures, with the partitions that they name.
std::string ofMachine(const std::string& enclosures)
{
    return ofSystem(
        list("Enclosures", enclosures) +
        list("Partitions", resource("Tarn01", "SYSTEM-1-1", "") + resource("Tarn02", "SYSTEM-1-2", "")));
}

/// One enclosure and its drives.
std::string with(const std::vector<Drive>& drives, const Enclosure& in = firstEnclosure)
{
    std::string content;
    for (const Drive& one : drives)
        content += drive(in.id, one);
    return enclosure(in, content);
}

const Drive driveA = {.slot = "-P1-D1", .serial = "A"};
const Drive driveB = {.slot = "-P1-D2", .serial = "B"};
const Drive driveC = {.slot = "-P1-D3", .serial = "C"};

Drive in(const std::string& slot, Drive drive)
{
    drive.slot = slot;
    return drive;
}

TEST(Diff, OfADocumentWithItselfIsNothing)
{
    const std::string text = ofMachine(with({driveA, driveB}) + with({driveC}, second));
    EXPECT_EQ(changes(text, text), Lines{});
}

TEST(Diff, TimesAndTheStylesheetAreNone)
{
    const std::string system = resource("S", "S", "");
    EXPECT_EQ(changes(inventory(system, "1.1"), styled(inventory(system, "99.999999"))), Lines{});
}

TEST(Diff, OrderIsNone)
{
    EXPECT_EQ(changes(ofMachine(with({driveA, driveB}) + with({driveC}, second)),
                      ofMachine(with({driveC}, second) + with({driveB, driveA}))),
              Lines{});
}

TEST(Diff, AReplacedDriveIsOneLine)
{
    EXPECT_EQ(
        changes(ofMachine(with({driveA, driveB})),
                ofMachine(with({driveA, {.slot = "-P1-D2", .serial = "NEW", .level = "J2"}}))),
        Lines{
            "replaced  drive U.AB1-P1-D2 (enclosure 1, slot 2): EC Level J1 -> J2, Serial Number B -> NEW"});
}

TEST(Diff, AMovedDriveIsOneLine)
{
    EXPECT_EQ(changes(ofMachine(with({driveA}) + with({}, second)),
                      ofMachine(with({}) + with({in("-P1-D9", driveA)}, second))),
              Lines{"moved     drive U.AB2-P1-D9 (serial A): U.AB1-P1-D1 (enclosure 1, slot 1) -> "
                    "U.AB2-P1-D9 (enclosure 2, slot 9)"});
}

TEST(Diff, TwoDrivesThatChangedPlacesAreTwoMoves)
{
    EXPECT_EQ(changes(ofMachine(with({driveA, driveB})),
                      ofMachine(with({in("-P1-D1", driveB), in("-P1-D2", driveA)}))),
              (Lines{"moved     drive U.AB1-P1-D1 (serial B): U.AB1-P1-D2 (enclosure 1, slot 2) -> "
                     "U.AB1-P1-D1 (enclosure 1, slot 1)",
                     "moved     drive U.AB1-P1-D2 (serial A): U.AB1-P1-D1 (enclosure 1, slot 1) -> "
                     "U.AB1-P1-D2 (enclosure 1, slot 2)"}));
}

TEST(Diff, ADriveThatTookTheSlotOfAnotherMovedAndTheOtherIsGone)
{
    EXPECT_EQ(changes(ofMachine(with({driveA, driveB})), ofMachine(with({in("-P1-D2", driveA)}))),
              (Lines{"moved     drive U.AB1-P1-D2 (serial A): U.AB1-P1-D1 (enclosure 1, slot 1) -> "
                     "U.AB1-P1-D2 (enclosure 1, slot 2)",
                     "removed   drive U.AB1-P1-D2 (enclosure 1, slot 2, serial B)"}));
}

TEST(Diff, AMoveTellsWhatElseChanged)
{
    Drive changed = in("-P1-D5", driveA);
    changed.state = 2;
    EXPECT_EQ(changes(ofMachine(with({driveA})), ofMachine(with({changed}))),
              Lines{"moved     drive U.AB1-P1-D5 (serial A): U.AB1-P1-D1 (enclosure 1, slot 1) -> "
                    "U.AB1-P1-D5 (enclosure 1, slot 5), "
                    "Disk Space Characteristics ST 0 -> 2"});
}

TEST(Diff, SerialNumbersThatSeveralDrivesShareTellNothing)
{
    const Drive blankA = {.slot = "-P1-D1", .serial = "0000"};
    const Drive blankB = {.slot = "-P1-D2", .serial = "0000"};
    EXPECT_EQ(changes(ofMachine(with({blankA, blankB})),
                      ofMachine(with({in("-P1-D3", blankA), in("-P1-D4", blankB)}))),
              (Lines{"added     drive U.AB1-P1-D3 (enclosure 1, slot 3, serial 0000)",
                     "added     drive U.AB1-P1-D4 (enclosure 1, slot 4, serial 0000)",
                     "removed   drive U.AB1-P1-D1 (enclosure 1, slot 1, serial 0000)",
                     "removed   drive U.AB1-P1-D2 (enclosure 1, slot 2, serial 0000)"}));
}

TEST(Diff, AddedAndRemovedDrives)
{
    EXPECT_EQ(changes(ofMachine(with({driveA, driveB})), ofMachine(with({driveB, driveC}))),
              (Lines{"added     drive U.AB1-P1-D3 (enclosure 1, slot 3, serial C)",
                     "removed   drive U.AB1-P1-D1 (enclosure 1, slot 1, serial A)"}));
}

TEST(Diff, AChangedValueTellsItsItem)
{
    Drive failed = driveA;
    failed.state = 5;
    EXPECT_EQ(changes(ofMachine(with({driveA})), ofMachine(with({failed}))),
              Lines{"changed   drive U.AB1-P1-D1 (enclosure 1, slot 1, serial A): Disk Space Characteristics "
                    "ST 0 -> 5"});
}

TEST(Diff, ASerialNumberThatCameToLightIsAChange)
{
    EXPECT_EQ(
        changes(ofMachine(with({{.slot = "-P1-D1", .serial = ""}})), ofMachine(with({driveA}))),
        Lines{"changed   drive U.AB1-P1-D1 (enclosure 1, slot 1, serial A): Serial Number (empty) -> A"});
}

TEST(Diff, AnAddedEnclosureIsOneLineWithItsParts)
{
    const std::string before = ofMachine(with({driveA}));
    const std::string after = ofMachine(with({driveA}) + with({driveB, driveC}, second));
    EXPECT_EQ(changes(before, after),
              Lines{"added     storage enclosure U.AB2 (enclosure 2, serial AB2): with 2 parts"});
    EXPECT_EQ(changes(after, before),
              Lines{"removed   storage enclosure U.AB2 (enclosure 2, serial AB2): with 2 parts"});
}

TEST(Diff, DrivesThatCameIntoANewEnclosureMoved)
{
    EXPECT_EQ(changes(ofMachine(with({driveA, driveB})),
                      ofMachine(with({driveA}) + with({driveB, driveC}, second))),
              (Lines{"added     storage enclosure U.AB2 (enclosure 2, serial AB2): with 1 part",
                     "moved     drive U.AB2-P1-D2 (serial B): U.AB1-P1-D2 (enclosure 1, slot 2) -> "
                     "U.AB2-P1-D2 (enclosure 2, slot 2)"}));
}

TEST(Diff, AMovedEnclosureIsOneLineAndItsDrivesStay)
{
    Enclosure elsewhere = firstEnclosure;
    elsewhere.location = "R-7";
    EXPECT_EQ(
        changes(ofMachine(with({driveA, driveB})), ofMachine(with({driveA, driveB}, elsewhere))),
        Lines{"moved     storage enclosure U.AB1 (serial AB1): R-1 (enclosure 1) -> R-7 (enclosure 7)"});
    elsewhere.id = "U.ELSEWHERE";
    EXPECT_EQ(changes(ofMachine(with({driveA, driveB})), ofMachine(with({driveA, driveB}, elsewhere))),
              Lines{"moved     storage enclosure U.ELSEWHERE (serial AB1): U.AB1 (enclosure 1) -> "
                    "U.ELSEWHERE (enclosure 7)"});
}

TEST(Diff, AnEnclosureThatTookThePlaceOfAnotherReplacedIt)
{
    Enclosure spare = second;
    spare.location = firstEnclosure.location;
    EXPECT_EQ(changes(ofMachine(with({driveA})), ofMachine(with({driveA}, spare))),
              Lines{"replaced  storage enclosure U.AB2 (enclosure 1): Plant of Manufature code and Serial "
                    "Number AB1 -> AB2"});
}

/// The same enclosure and drive as two partitions see them.
std::string seenTwice(Drive drive)
{
    Enclosure shared = firstEnclosure;
    shared.image = "IMAGE-2";
    shared.partition = "2";
    const std::string one = with({drive});
    drive.image = "IMAGE-2";
    return ofMachine(one + with({drive}, shared));
}

TEST(Diff, WhatTwoPartitionsSeeIsOneChange)
{
    EXPECT_EQ(
        changes(seenTwice(driveA), seenTwice({.slot = "-P1-D1", .serial = "NEW"})),
        Lines{"replaced  drive U.AB1-P1-D1 (enclosure 1, slot 1): Serial Number A -> NEW (listed 2 times)"});
    EXPECT_EQ(changes(seenTwice(driveA), seenTwice(in("-P1-D4", driveA))),
              Lines{"moved     drive U.AB1-P1-D4 (serial A): U.AB1-P1-D1 (enclosure 1, slot 1) -> "
                    "U.AB1-P1-D4 (enclosure 1, slot 4) (listed 2 times)"});
}

std::string fan(const std::string& part)
{
    return resource("Fan Tray", "R-A1", property("PN", "Part Number", part));
}

std::string rack(const std::string& content)
{
    return resource("TARN Rack", "R", property("R2", "Rack Number", "1") + list("Global Resources", content));
}

TEST(Diff, FansThatAreListedForEachPartitionAreOne)
{
    EXPECT_EQ(changes(ofMachine(rack(fan("F1"))), ofMachine(rack(fan("F1") + fan("F1")))), Lines{});
    EXPECT_EQ(changes(ofMachine(rack(fan("F1") + fan("F1"))), ofMachine(rack(fan("F2") + fan("F2")))),
              Lines{"changed   fan tray R-A1 (rack 1): Part Number F1 -> F2"});
}

TEST(Diff, WhatIsListedTwiceIsOneWhereAllIsTheSame)
{
    const auto removed = [](const std::string& one, const std::string& other) {
        const document::Document old = parse(ofMachine(one + other));
        const document::Document now = parse(ofMachine(""));
        size_t listed = 0;
        for (const Change& change : document::diff(old, now).found)
            listed += change.listed;
        return listed;
    };
    const auto tray = [](const std::string& serial, const std::string& name = "Fan Tray") {
        return resource(name, "F", property("SN", "Serial Number", serial));
    };
    EXPECT_EQ(removed(tray("1"), tray("1")), 1U);
    EXPECT_EQ(removed(tray("1"), tray("2")), 2U);
    EXPECT_EQ(removed(tray("1"), tray("1", "Something New")), 2U);
    EXPECT_EQ(removed(tray("1"), resource("Fan Tray", "G", property("SN", "Serial Number", "1"))), 2U);
    EXPECT_EQ(removed(tray("1"), resource("Fan Tray", "F", "")), 2U);
}

std::string supply(const std::string& id, const std::string& serial)
{
    return resource("Primary Power Supply", id,
                    property("SN", "Serial Number", serial) + property("YL", "L", id));
}

TEST(Diff, ADriveMovesFromImageToImage)
{
    Drive now = driveA;
    now.slot = "-P1-D9";
    now.image = "IMAGE-9";
    EXPECT_THAT(changes(ofMachine(with({driveA, driveB})), ofMachine(with({driveB, now}))),
                testing::ElementsAre(testing::StartsWith("moved     drive U.AB1-P1-D9 ")));
}

/// Of a part without a serial number nothing tells that it is another one, or where it came from.
TEST(Diff, APartWithoutASerialNumberDoesNotMove)
{
    const auto at = [](const std::string& id) {
        return ofMachine(
            resource("TARN Rack", id,
                     property("R2", "Rack Number", "1") +
                         list("Global Resources",
                              resource("Fan Tray", id + "-A1", property("PN", "Part Number", "F1")))));
    };
    EXPECT_EQ(changes(at("R"), at("S")), Lines{});
}

TEST(Diff, AnEmptyElementIsNoPart)
{
    EXPECT_EQ(changes(ofMachine(rack(supply("R-E1", "A"))), ofMachine(rack(supply("", "")))),
              Lines{"removed   power supply R-E1 (rack 1, serial A)"});
    EXPECT_EQ(changes(ofMachine(rack(supply("R-E1", "A") + supply("R-E2", "B"))), ofMachine("")),
              Lines{"removed   rack R (rack 1): with 2 parts"});
    EXPECT_EQ(changes(ofMachine(rack(supply("", "A"))), ofMachine(rack(""))),
              Lines{"removed   power supply without an identifier (rack 1, serial A)"});
}

/// Parts without identifiers are in one place, and serial numbers need not be unique.
TEST(Diff, OfPartsInOnePlaceThoseWithOneSerialAreTheSame)
{
    const auto racks = [](const std::string& supplies) {
        return ofMachine(rack(supplies) +
                         resource("TARN Rack", "S",
                                  property("R2", "Rack Number", "2") +
                                      list("Global Resources", supply("", "A") + supply("", "B"))));
    };
    EXPECT_EQ(changes(racks(supply("", "A") + supply("", "B")), racks(supply("", "B") + supply("", "A"))),
              Lines{});
}

// --- Partitions and hosts

std::string partition(const std::string& level, const std::string& hostList,
                      const std::string& counts = "v0=9,o0=2,o1=3,o2=0,o3=1,h0=1",
                      const std::string& name = "Tarn01")
{
    return ofPartitions(resource(name, "SYSTEM-1-1",
                                 property("LE", "LIC VRMF", level) +
                                     property("U1", "Logcial Configuration String", counts) +
                                     hosts(hostList)));
}

TEST(Diff, AMicrocodeLevelAndAHostOfOnePartitionAreTwoChanges)
{
    EXPECT_EQ(changes(partition("5.1.0.309", "web=2,mail=1,"),
                      partition("5.1.0.420", "web=2,mail=1,db=4,", "v0=9,o0=3,o1=7,o2=0,o3=1,h0=1")),
              (Lines{"changed   partition Tarn01: LIC VRMF 5.1.0.309 -> 5.1.0.420",
                     "added     host db of Tarn01: Host Inventory ports (none) -> 4, "
                     "Logcial Configuration String o0 2 -> 3, o1 3 -> 7"}));
}

TEST(Diff, Hosts)
{
    EXPECT_EQ(changes(partition("5", "web=2,mail=1,"), partition("5", "mail=1,web=2,")), Lines{});
    EXPECT_EQ(changes(partition("5", "web=2,mail=1,"), partition("5", "web=2,")),
              Lines{"removed   host mail of Tarn01: Host Inventory ports 1 -> (none)"});
    EXPECT_EQ(changes(partition("5", "web=2,mail=1,"), partition("5", "web=3,mail=1,")),
              Lines{"changed   host web of Tarn01: Host Inventory ports 2 -> 3"});
    EXPECT_EQ(changes(partition("5", "web=2,mail=1,"), partition("5", "www=2,mail=1,")),
              Lines{"changed   host web of Tarn01: Host Inventory web=2 -> www=2"});
    EXPECT_EQ(changes(partition("5", "web=2,mail=1,"), partition("5", "web=1,www=1,mail=1,")),
              Lines{"changed   host web of Tarn01: Host Inventory web=1 -> www=1"});
    EXPECT_EQ(changes(partition("5", "a=2,b=2,"), partition("5", "c=2,d=2,")),
              (Lines{"changed   host a of Tarn01: Host Inventory a=2 -> c=2",
                     "changed   host b of Tarn01: Host Inventory b=2 -> d=2"}));
    EXPECT_EQ(changes(partition("5", ""), partition("5", "a, b=c=2,")),
              Lines{"added     host a, b=c of Tarn01: Host Inventory ports (none) -> 2"});
    const std::string where = "changed   partition Tarn01: Host Inventory ";
    EXPECT_EQ(changes(partition("5", "web=2,"), partition("5", "web")), Lines{where + "web=2, -> web"});
    EXPECT_EQ(changes(partition("5", "web"), partition("5", "web=2,")), Lines{where + "web -> web=2,"});
    EXPECT_EQ(changes(partition("5", "web"), partition("5", "www")), Lines{where + "web -> www"});
}

TEST(Diff, CountsThatHostsDoNotExplainAreThePartitions)
{
    EXPECT_EQ(changes(partition("5", "web=2,"), partition("5", "web=2,", "v0=10,o0=3,o1=3,o2=0,o3=1,h0=1")),
              Lines{"changed   partition Tarn01: Logcial Configuration String v0 9 -> 10, "
                    "o0 2 -> 3"});
}

TEST(Diff, ARenamedPartitionIsAChange)
{
    EXPECT_EQ(changes(partition("5", ""), partition("5", "", "v0=9,o0=2,o1=3,o2=0,o3=1,h0=1", "Other")),
              Lines{"changed   partition Other: name Tarn01 -> Other"});
}

TEST(Diff, WhatAPartRepeatsOfItselfIsNoChange)
{
    const auto console = [](const std::string& properties) {
        return ofMachine(resource("Quay", "Q", properties));
    };
    const auto at = [](const std::string& place) { return property("YL", "Hardware Location Code", place); };
    EXPECT_EQ(changes(console(""), console(at("Q"))), Lines{});
    EXPECT_EQ(changes(console(at("Q")), console("")), Lines{});
    EXPECT_EQ(changes(console(at("R")), console(at("Q"))),
              Lines{"changed   console Q: Hardware Location Code R -> Q"});
}

TEST(Diff, WhatThePartsRepeatOfThePartsAroundThemIsToldOnce)
{
    Enclosure other = firstEnclosure;
    other.image = "IMAGE-9";
    const auto card = [](const Enclosure& in) {
        return enclosure(in, resource("Fiber Channel Interface Card", in.id + "-C1",
                                      property("S4", "Storage Facility Image MTMS", in.image)));
    };
    EXPECT_EQ(changes(ofMachine(card(firstEnclosure)), ofMachine(card(other))),
              Lines{"changed   storage enclosure U.AB1 (enclosure 1, serial AB1): Storage Facility Image "
                    "MTMS IMAGE-1 -> IMAGE-9"});
}

TEST(Diff, PropertiesThatCameAndWent)
{
    const auto console = [](const std::string& properties) {
        return ofMachine(resource("Quay", "Q", properties));
    };
    EXPECT_EQ(
        changes(console(property("AC", "Account Name", "me")), console(property("PN", "Part Number", ""))),
        Lines{"changed   console Q: Part Number (none) -> (empty), Account Name me -> (none)"});
}

// --- Incomplete documents

/// The document up to where the text begins.
std::string cutAt(const std::string& document, const std::string& text)
{
    return document.substr(0, document.find(text));
}

const std::string twoPartitions =
    ofSystem(list("Enclosures", with({driveA, driveB}) + with({driveC}, second)) +
             list("Partitions", resource("Tarn01", "SYSTEM-1-1", property("LE", "LIC VRMF", "5")) +
                                    resource("Tarn02", "SYSTEM-1-2", property("LE", "LIC VRMF", "5"))));

TEST(Diff, WhatACutDocumentDoesNotReachIsNoChange)
{
    const std::vector<std::string> ends = {"</ResourceSet>",
                                           "<Resource displayName=\"Tarn02\"",
                                           "<ResourceList displayName=\"Partitions\"",
                                           "<Resource displayName=\"Storage Enclosure\" uniqueId=\"U.AB2\"",
                                           "<Property name=\"SN\"",
                                           "<ResourceList displayName=\"Enclosures\""};
    for (const std::string& end : ends) {
        EXPECT_EQ(changes(twoPartitions, cutAt(twoPartitions, end)), Lines{}) << end;
        EXPECT_EQ(changes(cutAt(twoPartitions, end), twoPartitions), Lines{}) << end;
    }
}

TEST(Diff, WhatAFailedCollectionDidNotComeToIsNoChange)
{
    const std::string failed = ofSystem(list("Enclosures", with({driveA})));
    EXPECT_EQ(changes(twoPartitions, failed), Lines{});
    EXPECT_EQ(changes(failed, twoPartitions), Lines{});
}

TEST(Diff, WhatIsMissingBeforeTheCutIsRemoved)
{
    const std::string after = ofSystem(list("Enclosures", with({driveA}) + with({driveC}, second)) +
                                       list("Partitions", resource("Tarn01", "SYSTEM-1-1", "")));
    EXPECT_EQ(changes(twoPartitions, cutAt(after, "<Resource displayName=\"Tarn01\"")),
              Lines{"removed   drive U.AB1-P1-D2 (enclosure 1, slot 2, serial B)"});
}

TEST(Diff, PartitionsThatAnIncompleteDocumentLacksAreNotRemoved)
{
    const std::string enclosures = list("Enclosures", with({driveA}));
    const auto named = [&](const std::string& partitions) {
        return ofSystem(enclosures + list("Partitions", partitions));
    };
    const std::string one = resource("Tarn01", "SYSTEM-1-1", "");
    const std::string two = resource("Tarn02", "SYSTEM-1-2", "");
    EXPECT_EQ(changes(named(one + two), ofSystem(enclosures)), Lines{});
    // The enclosure names the first partition, and none names the second.
    EXPECT_EQ(changes(named(one + two), named(two)), Lines{});
    EXPECT_EQ(changes(named(one + two), ofSystem(list("Partitions", two) + enclosures)), Lines{});
    EXPECT_EQ(changes(named(one + two), named(one)), Lines{"removed   partition Tarn02"});
}

// --- What is told

document::KindSet only(document::Kind kind)
{
    return document::KindSet().set(static_cast<size_t>(kind));
}

TEST(Diff, TellsTheKindsThatAreWanted)
{
    const std::string before = ofMachine(with({driveA}));
    const std::string after =
        ofMachine(with({{.slot = "-P1-D1", .serial = "A", .level = "J2"}}) + with({driveB, driveC}, second));
    EXPECT_EQ(report(before, after, {}, only(document::Kind::storageEnclosure)),
              "added     storage enclosure U.AB2 (enclosure 2, serial AB2): with 2 parts\n"
              "1 change: 1 added\n");
    // The drives of an enclosure that is not told are.
    EXPECT_EQ(report(before, after, {}, only(document::Kind::drive)),
              "changed   drive U.AB1-P1-D1 (enclosure 1, slot 1, serial A): EC Level J1 -> J2\n"
              "added     drive U.AB2-P1-D2 (enclosure 2, slot 2, serial B)\n"
              "added     drive U.AB2-P1-D3 (enclosure 2, slot 3, serial C)\n"
              "3 changes: 2 added, 1 changed\n");
    EXPECT_EQ(report(before, after, {}, only(document::Kind::host)), "");
}

// --- The report

/// Two drives of a new level, of three, and one that is gone.
struct Upgrade {
    std::string before = ofMachine(with({driveA, driveB, driveC}));
    std::string after = ofMachine(with({{.slot = "-P1-D1", .serial = "A", .level = "J2"},
                                        {.slot = "-P1-D2", .serial = "B", .level = "J2"}}));
};

TEST(Report, CountsTheChanges)
{
    EXPECT_THAT(report(Upgrade().before, Upgrade().after),
                testing::EndsWith("\n3 changes: 1 removed, 2 changed\n"));
}

TEST(Report, GroupsWhatIsIdenticalButForThePart)
{
    EXPECT_EQ(report(Upgrade().before, Upgrade().after, {.grouped = true}),
              "changed   2 drives (enclosure 1): EC Level J1 -> J2\n"
              "removed   drive U.AB1-P1-D3 (enclosure 1, slot 3, serial C)\n"
              "3 changes: 1 removed, 2 changed\n");
    // Each drive's way is its own.
    const std::string moved = ofMachine(with({in("-P1-D8", driveA), in("-P1-D9", driveB), driveC}));
    EXPECT_EQ(splitLines(report(Upgrade().before, moved, {.grouped = true})).size(), 3U);
}

/// Items are compared one by one where both have the same ones.
TEST(Diff, AValueThatLacksAnItemIsComparedAsAWhole)
{
    const auto withSpace = [](const std::string& space) {
        return ofMachine(resource("OSK Physical Disk Drive", "D", property("DP", "Disk Space", space)));
    };
    EXPECT_EQ(changes(withSpace("DI=1,DM=a"), withSpace("DI=2,DM=b")),
              Lines{"changed   drive D: Disk Space DI 1 -> 2, DM a -> b"});
    EXPECT_EQ(changes(withSpace("DI=1,DM=a"), withSpace("DI=2")),
              Lines{"changed   drive D: Disk Space DI=1,DM=a -> DI=2"});
}

TEST(Report, ColoursTheWordAlone)
{
    EXPECT_THAT(report(Upgrade().before, Upgrade().after, {.colored = true}),
                testing::HasSubstr("\n\x1b[31mremoved\x1b[0m   drive U.AB1-P1-D3 (enclosure 1"));
}

TEST(Report, HasAColourForEachWord)
{
    Drive moved = in("-P1-D8", driveB);
    moved.level = "J2";
    Drive changed = driveC;
    changed.level = "J2";
    const std::string text =
        report(ofMachine(with({driveA, driveB, driveC, in("-P1-D4", {.slot = "", .serial = "D"})})),
               ofMachine(with(
                   {{.slot = "-P1-D1", .serial = "N"}, moved, changed, {.slot = "-P1-D9", .serial = "E"}})),
               {.colored = true});
    for (const char* word : {"\x1b[32madded\x1b[0m     drive", "\x1b[31mremoved\x1b[0m   drive",
                             "\x1b[36mmoved\x1b[0m     drive", "\x1b[35mreplaced\x1b[0m  drive",
                             "\x1b[33mchanged\x1b[0m   drive"})
        EXPECT_THAT(text, testing::HasSubstr(word));
}

/// The numbers of the racks and, within one, of the enclosures; many are counted.
TEST(Report, TellsWhereAGroupIs)
{
    const auto grouped = [](const std::vector<std::pair<std::string, std::string>>& places) {
        std::string before;
        std::string after;
        for (const auto& [number, location] : places) {
            const Enclosure place = {.id = "U." + number, .serial = number, .location = location};
            Drive upgraded = driveA;
            upgraded.serial = number;
            before += with({upgraded}, place);
            upgraded.level = "J2";
            after += with({upgraded}, place);
        }
        const std::string text = report(ofMachine(before), ofMachine(after), {.grouped = true});
        return text.substr(0, text.find('\n'));
    };
    EXPECT_EQ(grouped({{"1", "R-1"}, {"2", "R-2"}}),
              "changed   2 drives (enclosures 1, 2): EC Level J1 -> J2");
    EXPECT_EQ(grouped({{"1", "R-2"}, {"2", "R-2"}}), "changed   2 drives (enclosure 2): EC Level J1 -> J2");
    std::vector<std::pair<std::string, std::string>> many;
    for (int i = 1; i <= 12; ++i)
        many.emplace_back(std::to_string(i), "R-" + std::to_string(i));
    EXPECT_EQ(grouped(many),
              "changed   12 drives (enclosures 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12): EC Level J1 -> J2");
    many.emplace_back("13", "R-13");
    EXPECT_EQ(grouped(many), "changed   13 drives (13 enclosures): EC Level J1 -> J2");
    const auto racks = [](const std::string& part) {
        const auto rackOf = [&](const std::string& id, const std::string& number) {
            return resource("TARN Rack", id,
                            property("R2", "Rack Number", number) +
                                list("Global Resources",
                                     resource("Fan Tray", id + "-A1", property("PN", "Part Number", part))));
        };
        return ofMachine(rackOf("R", "1") + rackOf("S", "2"));
    };
    EXPECT_THAT(report(racks("F1"), racks("F2"), {.grouped = true}),
                testing::StartsWith("changed   2 fan trays (racks 1, 2): Part Number F1 -> F2\n"));
    const auto drives = [](const std::string& level, const std::vector<std::string>& inRacks) {
        std::string all;
        for (const std::string& rack : inRacks) {
            const std::string serial = std::to_string(all.size());
            all += resource("OSK Physical Disk Drive", "D" + serial,
                            property("R2", "Rack Number", rack) + property("R1", "Rack Location", "R-7") +
                                property("EC", "EC Level", level) + property("SN", "Serial Number", serial));
        }
        return ofMachine(all);
    };
    for (const auto& [inRacks, told] : {std::pair(std::vector<std::string>{"1", "1"}, "rack 1, enclosure 7"),
                                        {{"1", "2"}, "racks 1, 2"},
                                        {{"1", "2", "3"}, "racks 1, 2, 3"}})
        EXPECT_THAT(report(drives("A", inRacks), drives("B", inRacks), {.grouped = true}),
                    testing::HasSubstr(" drives (" + std::string(told) + "): "));
}

TEST(Report, CutsALongValue)
{
    const auto console = [](const std::string& name) {
        return ofMachine(resource("Quay", "Q", property("AC", "Account Name", name)));
    };
    const std::string longest(100, 'x');
    EXPECT_EQ(changes(console(longest), console(longest + "y")),
              Lines{"changed   console Q: Account Name " + longest + " -> " + longest.substr(3) + "..."});
}

TEST(Report, NamesAPartWithoutAnIdentifier)
{
    EXPECT_EQ(changes(ofMachine(""), ofMachine(resource("of no known kind", "X", ""))),
              Lines{"added     of no known kind X"});
}

TEST(Report, SummarizesByKind)
{
    const auto summary = [](const std::string& before, const std::string& after) {
        const document::Document old = parse(before);
        const document::Document now = parse(after);
        std::string text;
        document::writeSummary(document::diff(old, now), [&](std::string_view piece) { text += piece; });
        return text;
    };
    EXPECT_EQ(
        summary(Upgrade().before,
                ofMachine(with({driveA, driveB, {.slot = "-P1-D3", .serial = "NEW"}, in("-P1-D4", driveC)}) +
                          with({}, second))),
        "storage enclosures  1 added\n"
        "drives              1 added, 1 moved\n"
        "3 changes: 2 added, 1 moved\n");
    EXPECT_EQ(summary(Upgrade().before, Upgrade().before), "");
}

TEST(Report, ShowsNoControlCharacters)
{
    EXPECT_THAT(report(ofMachine(""), ofMachine(resource("Quay", "\x1b[2J\xFF\xE2\x80\xAE", ""))),
                testing::StartsWith("added     console \\x1B[2J\\xFF\\u{202E}\n"));
}

nlohmann::json jsonOf(const std::string& before, const std::string& after, bool summary = false)
{
    const document::Document old = parse(before);
    const document::Document now = parse(after);
    std::string text;
    const auto write = [&](std::string_view piece) { text += piece; };
    const document::Changes changes = document::diff(old, now);
    if (summary)
        document::writeJsonSummary(changes, write);
    else
        document::writeJson(changes, write);
    return parseJson(text);
}

TEST(Report, IsJsonForPrograms)
{
    const std::string before = ofEnclosures(with({driveA, driveB}));
    const auto json =
        jsonOf(before, ofEnclosures(with({{.slot = "-P1-D1", .serial = "N\"\x01"}, in("-P1-D8", driveB)})));
    EXPECT_EQ(json["old"], "test.xml");
    EXPECT_EQ(json["new"], "test.xml");
    EXPECT_EQ(json["complete"], false);
    EXPECT_EQ(json["missing"], nlohmann::json({"test.xml: the partitions", "test.xml: the partitions"}));
    EXPECT_EQ(jsonOf(twoPartitions, twoPartitions)["complete"], true);
    EXPECT_EQ(jsonOf(twoPartitions, twoPartitions)["missing"], nlohmann::json::array());
    ASSERT_EQ(json["changes"].size(), 2U);
    EXPECT_EQ(json["changes"][0], parseJson(R"({"change": "replaced", "kind": "drive",
        "name": "OSK Physical Disk Drive", "id": "U.AB1-P1-D1", "enclosure": 1, "slot": 1, "serial": "N\"\u0001",
        "parts": 0, "listed": 1,
        "values": [{"code": "SN", "label": "Serial Number", "column": "serial", "old": "A",
                    "new": "N\"\u0001"}]})"));
    EXPECT_EQ(json["changes"][1], parseJson(R"({"change": "moved", "kind": "drive",
        "name": "OSK Physical Disk Drive", "id": "U.AB1-P1-D8", "enclosure": 1, "slot": 8, "serial": "B",
        "from": "U.AB1-P1-D2", "to": "U.AB1-P1-D8", "old_enclosure": 1, "old_slot": 2,
        "parts": 0, "listed": 1, "values": []})"));
    EXPECT_EQ(jsonOf(before, before)["changes"], nlohmann::json::array());
}

/// What an array site tells of its array's number is not the array's own.
TEST(Report, NamesTheColumnOfAnArraysRank)
{
    const auto machine = [](const std::string& rank) {
        return ofSystem(
            list("Partitions",
                 resource("Tarn01", "SYSTEM-1-1",
                          list("Storage Configurations",
                               resource("Storage Logical Configuration", "I_L1",
                                        list("Arrays", resource("Array", "I/A11",
                                                                property("A1", "Rank", "I/R" + rank))))))));
    };
    const nlohmann::json found = jsonOf(machine("1"), machine("2"))["changes"];
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]["values"][0]["column"], "rank");
}

TEST(Report, NamesTheColumnOfEveryItemOfAProperty)
{
    const std::string before = ofEnclosures(with({driveA}));
    for (const auto& [item, column] : {std::pair("DI=", "name"), std::pair("DM=", "manufacturer"),
                                       std::pair("DC=", "capacity_mb"), std::pair("ST=", "state")}) {
        std::string after = before;
        after.insert(after.find(item) + 3, "1");
        const nlohmann::json found = jsonOf(before, after)["changes"];
        ASSERT_EQ(found.size(), 1U) << item;
        ASSERT_EQ(found[0]["values"].size(), 1U) << item;
        EXPECT_EQ(found[0]["values"][0]["column"], column);
    }
}

/// The form is for people, too: a change a block, a value a line.
TEST(Report, IsJsonToBeRead)
{
    using Writer = void (*)(const document::Changes&, const document::Write&);
    const auto text = [](const std::string& before, const std::string& after, Writer writeChanges) {
        const document::Document old = parse(before);
        const document::Document now = parse(after);
        std::string all;
        writeChanges(document::diff(old, now), [&](std::string_view piece) { all += piece; });
        return all;
    };
    const std::string complete =
        "{\n  \"old\": \"test.xml\",\n  \"new\": \"test.xml\",\n  \"complete\": true,\n"
        "  \"missing\": []";
    const std::string before = ofMachine(with({driveA, driveB}));
    const std::string after = ofMachine(with({{.slot = "-P1-D1", .serial = "A", .level = "J2"}}));
    EXPECT_EQ(text(before, before, document::writeJson), complete + ",\n  \"changes\": []\n}\n");
    EXPECT_EQ(
        text(before, after, document::writeJson),
        complete +
            ",\n  \"changes\": [\n"
            "    { \"change\": \"changed\", \"kind\": \"drive\", \"name\": \"OSK Physical Disk Drive\", "
            "\"id\": \"U.AB1-P1-D1\", \"enclosure\": 1, \"slot\": 1, \"serial\": \"A\", \"parts\": 0, "
            "\"listed\": 1, \"values\": [\n"
            "        { \"code\": \"EC\", \"label\": \"EC Level\", \"column\": \"ec_level\", \"old\": \"J1\", "
            "\"new\": \"J2\" }\n"
            "      ] },\n"
            "    { \"change\": \"removed\", \"kind\": \"drive\", \"name\": \"OSK Physical Disk Drive\", "
            "\"id\": \"U.AB1-P1-D2\", \"enclosure\": 1, \"slot\": 2, \"serial\": \"B\", \"parts\": 0, "
            "\"listed\": 1, \"values\": [] }\n"
            "  ]\n}\n");
    EXPECT_EQ(text(before, before, document::writeJsonSummary), complete + ",\n  \"summary\": {}\n}\n");
    EXPECT_EQ(text(before,
                   ofMachine(with({{.slot = "-P1-D1", .serial = "A", .level = "J2"}}) + with({}, second)),
                   document::writeJsonSummary),
              complete + ",\n  \"summary\": {\n    \"storageEnclosure\": { \"added\": 1 },\n"
                         "    \"drive\": { \"removed\": 1, \"changed\": 1 }\n  }\n}\n");
    EXPECT_THAT(text(ofEnclosures(""), ofMachine(""), document::writeJson),
                testing::HasSubstr(
                    "  \"complete\": false,\n  \"missing\": [\n    \"test.xml: the partitions\"\n  ],"));
    EXPECT_THAT(text(ofEnclosures(""), cutAt(ofMachine(""), "</ResourceSet>"), document::writeJson),
                testing::HasSubstr("  \"missing\": [\n    \"test.xml: the partitions\",\n"
                                   "    \"test.xml: the end\"\n"));
}

TEST(Report, TellsAHostInJson)
{
    const auto json = jsonOf(partition("5", "web=2,"), partition("5", "web=3,"));
    ASSERT_EQ(json["changes"].size(), 1U);
    EXPECT_EQ(json["changes"][0], parseJson(R"({"change": "changed", "kind": "host", "name": "web",
        "id": "SYSTEM-1-1", "partition": "Tarn01", "parts": 0, "listed": 1,
        "values": [{"code": "U2", "label": "Host Inventory", "item": "ports", "column": "ports", "old": "2",
                    "new": "3"}]})"));
    const auto renamed = jsonOf(partition("5", "web=2,"), partition("5", "www=2,"));
    EXPECT_EQ(renamed["changes"][0]["values"], parseJson(R"([{"code": "U2", "label": "Host Inventory",
        "column": "description", "old": "web=2", "new": "www=2"}])"));
}

/// A partition's share of an enclosure that comes, and a part of no known kind with it.
TEST(Report, CallsWhatIsOfNoKindOfItsOwnOther)
{
    const auto machine = [](const std::string& shares, const std::string& parts) {
        return ofMachine(resource("Storage Enclosure", "U", list("Enclosures Partitions", shares)) + parts);
    };
    const std::string first = resource("U-1", "U-1", "");
    const std::string before = machine(first, "");
    const std::string after = machine(first + resource("U-2", "U-2", ""), resource("Shelf", "S", ""));
    const nlohmann::json found = jsonOf(before, after)["changes"];
    ASSERT_EQ(found.size(), 2U);
    for (const nlohmann::json& change : found)
        EXPECT_EQ(change["kind"], "other") << change;
    EXPECT_EQ(found[0]["id"], "U-2");
    EXPECT_EQ(jsonOf(before, after, true)["summary"], parseJson(R"({"other": {"added": 2}})"));
    EXPECT_EQ(report(before, after, {.grouped = true}),
              "added     partition's share of an enclosure U-2\nadded     Shelf S\n2 changes: 2 added\n");
}

TEST(Report, IsASummaryInJson)
{
    EXPECT_EQ(jsonOf(Upgrade().before, Upgrade().after, true)["summary"],
              parseJson(R"({"drive": {"removed": 1, "changed": 2}})"));
    EXPECT_EQ(jsonOf(Upgrade().before, Upgrade().before, true)["summary"], nlohmann::json::object());
}

} // namespace
