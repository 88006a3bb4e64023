// What differs between two documents: one line for each thing that happened to the machine.

#include "document/diff.h"
#include "document/report.h"
#include "writing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace
{

using namespace kordTest;
using document::Change;
using Lines = std::vector<std::string>;

/// The report without its last line, which counts.
Lines changes(const std::string& before, const std::string& after)
{
    std::istringstream text(document::lines(document::diff(parse(before), parse(after))));
    Lines lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    if (!lines.empty()) lines.pop_back();
    return lines;
}

const Enclosure first = {.id = "U.AB1", .serial = "AB1", .location = "R-1"};
const Enclosure second = {.id = "U.AB2", .serial = "AB2", .location = "R-2"};

/// One enclosure and its drives.
std::string with(const std::vector<Drive>& drives, const Enclosure& in = first)
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
    const std::string text = ofEnclosures(with({driveA, driveB}) + with({driveC}, second));
    EXPECT_EQ(changes(text, text), Lines{});
    EXPECT_EQ(document::lines({}), "");
}

TEST(Diff, TimesAndTheStylesheetAreNone)
{
    const std::string system = resource("S", "S", "");
    std::string styled = inventory(system, "99.999999");
    styled.insert(styled.find('\n') + 1, "<?xml-stylesheet type=\"text/xsl\" href=\"v03.xsl\"?>\n");
    EXPECT_EQ(changes(inventory(system, "1.1"), styled), Lines{});
}

TEST(Diff, OrderIsNone)
{
    EXPECT_EQ(changes(ofEnclosures(with({driveA, driveB}) + with({driveC}, second)),
                      ofEnclosures(with({driveC}, second) + with({driveB, driveA}))),
              Lines{});
}

TEST(Diff, AReplacedDriveIsOneLine)
{
    EXPECT_EQ(changes(ofEnclosures(with({driveA, driveB})),
                      ofEnclosures(with({driveA, {.slot = "-P1-D2", .serial = "NEW", .level = "J2"}}))),
              Lines{"replaced  drive U.AB1-P1-D2: EC Level J1 -> J2, Serial Number B -> NEW"});
}

TEST(Diff, AMovedDriveIsOneLine)
{
    EXPECT_EQ(changes(ofEnclosures(with({driveA}) + with({}, second)),
                      ofEnclosures(with({}) + with({in("-P1-D9", driveA)}, second))),
              Lines{"moved     drive U.AB2-P1-D9: U.AB1-P1-D1 -> U.AB2-P1-D9"});
}

TEST(Diff, TwoDrivesThatChangedPlacesAreTwoMoves)
{
    EXPECT_EQ(changes(ofEnclosures(with({driveA, driveB})),
                      ofEnclosures(with({in("-P1-D1", driveB), in("-P1-D2", driveA)}))),
              (Lines{"moved     drive U.AB1-P1-D1: U.AB1-P1-D2 -> U.AB1-P1-D1",
                     "moved     drive U.AB1-P1-D2: U.AB1-P1-D1 -> U.AB1-P1-D2"}));
}

TEST(Diff, ADriveThatTookTheSlotOfAnotherMovedAndTheOtherIsGone)
{
    EXPECT_EQ(
        changes(ofEnclosures(with({driveA, driveB})), ofEnclosures(with({in("-P1-D2", driveA)}))),
        (Lines{"moved     drive U.AB1-P1-D2: U.AB1-P1-D1 -> U.AB1-P1-D2", "removed   drive U.AB1-P1-D2"}));
}

TEST(Diff, AMoveTellsWhatElseChanged)
{
    Drive changed = in("-P1-D5", driveA);
    changed.state = 2;
    EXPECT_EQ(changes(ofEnclosures(with({driveA})), ofEnclosures(with({changed}))),
              Lines{"moved     drive U.AB1-P1-D5: U.AB1-P1-D1 -> U.AB1-P1-D5, "
                    "Disk Space Characteristics ST 0 -> 2"});
}

TEST(Diff, SerialNumbersThatSeveralDrivesShareTellNothing)
{
    const Drive blankA = {.slot = "-P1-D1", .serial = "0000"};
    const Drive blankB = {.slot = "-P1-D2", .serial = "0000"};
    EXPECT_EQ(changes(ofEnclosures(with({blankA, blankB})),
                      ofEnclosures(with({in("-P1-D3", blankA), in("-P1-D4", blankB)}))),
              (Lines{"added     drive U.AB1-P1-D3", "added     drive U.AB1-P1-D4",
                     "removed   drive U.AB1-P1-D1", "removed   drive U.AB1-P1-D2"}));
}

TEST(Diff, AddedAndRemovedDrives)
{
    EXPECT_EQ(changes(ofEnclosures(with({driveA, driveB})), ofEnclosures(with({driveB, driveC}))),
              (Lines{"added     drive U.AB1-P1-D3", "removed   drive U.AB1-P1-D1"}));
}

TEST(Diff, AChangedValueTellsItsItem)
{
    Drive failed = driveA;
    failed.state = 5;
    EXPECT_EQ(changes(ofEnclosures(with({driveA})), ofEnclosures(with({failed}))),
              Lines{"changed   drive U.AB1-P1-D1: Disk Space Characteristics ST 0 -> 5"});
}

TEST(Diff, ASerialNumberThatCameToLightIsAChange)
{
    EXPECT_EQ(changes(ofEnclosures(with({{.slot = "-P1-D1", .serial = ""}})), ofEnclosures(with({driveA}))),
              Lines{"changed   drive U.AB1-P1-D1: Serial Number (empty) -> A"});
}

TEST(Diff, AnAddedEnclosureIsOneLineWithItsParts)
{
    const std::string before = ofEnclosures(with({driveA}));
    const std::string after = ofEnclosures(with({driveA}) + with({driveB, driveC}, second));
    EXPECT_EQ(changes(before, after), Lines{"added     storage enclosure U.AB2: with 2 parts"});
    EXPECT_EQ(changes(after, before), Lines{"removed   storage enclosure U.AB2: with 2 parts"});
}

TEST(Diff, DrivesThatCameIntoANewEnclosureMoved)
{
    EXPECT_EQ(changes(ofEnclosures(with({driveA, driveB})),
                      ofEnclosures(with({driveA}) + with({driveB, driveC}, second))),
              (Lines{"added     storage enclosure U.AB2: with 1 part",
                     "moved     drive U.AB2-P1-D2: U.AB1-P1-D2 -> U.AB2-P1-D2"}));
}

TEST(Diff, AMovedEnclosureIsOneLineAndItsDrivesStay)
{
    Enclosure elsewhere = first;
    elsewhere.location = "R-7";
    EXPECT_EQ(changes(ofEnclosures(with({driveA, driveB})), ofEnclosures(with({driveA, driveB}, elsewhere))),
              Lines{"moved     storage enclosure U.AB1: R-1 -> R-7"});
    elsewhere.id = "U.ELSEWHERE";
    EXPECT_EQ(changes(ofEnclosures(with({driveA, driveB})), ofEnclosures(with({driveA, driveB}, elsewhere))),
              Lines{"moved     storage enclosure U.ELSEWHERE: U.AB1 -> U.ELSEWHERE"});
}

TEST(Diff, AnEnclosureThatTookThePlaceOfAnotherReplacedIt)
{
    Enclosure spare = second;
    spare.location = first.location;
    EXPECT_EQ(
        changes(ofEnclosures(with({driveA})), ofEnclosures(with({driveA}, spare))),
        Lines{"replaced  storage enclosure U.AB2: Plant of Manufature code and Serial Number AB1 -> AB2"});
}

/// The same enclosure and drive as two partitions see them.
std::string seenTwice(Drive drive)
{
    Enclosure shared = first;
    shared.image = "IMAGE-2";
    shared.partition = "2";
    const std::string one = with({drive});
    drive.image = "IMAGE-2";
    return ofEnclosures(one + with({drive}, shared));
}

TEST(Diff, WhatTwoPartitionsSeeIsOneChange)
{
    EXPECT_EQ(changes(seenTwice(driveA), seenTwice({.slot = "-P1-D1", .serial = "NEW"})),
              Lines{"replaced  drive U.AB1-P1-D1: Serial Number A -> NEW (listed 2 times)"});
    EXPECT_EQ(changes(seenTwice(driveA), seenTwice(in("-P1-D4", driveA))),
              Lines{"moved     drive U.AB1-P1-D4: U.AB1-P1-D1 -> U.AB1-P1-D4 (listed 2 times)"});
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
    EXPECT_EQ(changes(ofEnclosures(rack(fan("F1"))), ofEnclosures(rack(fan("F1") + fan("F1")))), Lines{});
    EXPECT_EQ(changes(ofEnclosures(rack(fan("F1") + fan("F1"))), ofEnclosures(rack(fan("F2") + fan("F2")))),
              Lines{"changed   fan tray R-A1: Part Number F1 -> F2"});
}

TEST(Diff, AnEmptyElementIsNoPart)
{
    const auto supply = [](const std::string& id, const std::string& serial) {
        return resource("Primary Power Supply", id,
                        property("SN", "Serial Number", serial) + property("YL", "L", id));
    };
    EXPECT_EQ(changes(ofEnclosures(rack(supply("R-E1", "A"))), ofEnclosures(rack(supply("", "")))),
              Lines{"removed   power supply R-E1"});
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
    EXPECT_EQ(changes(partition("5", ""), partition("5", "a, b=c=2,")),
              Lines{"added     host a, b=c of Tarn01: Host Inventory ports (none) -> 2"});
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

TEST(Diff, WhatThePartsRepeatOfThePartsAroundThemIsToldOnce)
{
    Enclosure other = first;
    other.image = "IMAGE-9";
    const auto card = [](const Enclosure& in) {
        return enclosure(in, resource("Fiber Channel Interface Card", in.id + "-C1",
                                      property("S4", "Storage Facility Image MTMS", in.image)));
    };
    EXPECT_EQ(changes(ofEnclosures(card(first)), ofEnclosures(card(other))),
              Lines{"changed   storage enclosure U.AB1: Storage Facility Image MTMS IMAGE-1 -> IMAGE-9"});
}

TEST(Diff, PropertiesThatCameAndWent)
{
    const auto console = [](const std::string& properties) {
        return ofEnclosures(resource("Quay", "Q", properties));
    };
    EXPECT_EQ(
        changes(console(property("AC", "Account Name", "me")), console(property("PN", "Part Number", ""))),
        Lines{"changed   console Q: Part Number (none) -> (empty), Account Name me -> (none)"});
}

// --- The report

TEST(Report, CountsTheChanges)
{
    const auto found =
        document::diff(parse(ofEnclosures(with({driveA, driveB}))),
                       parse(ofEnclosures(with({{.slot = "-P1-D1", .serial = "NEW"}, driveB, driveC}))));
    EXPECT_THAT(document::lines(found), testing::EndsWith("\n2 changes: 1 added, 1 replaced\n"));
}

TEST(Report, ShowsNoControlCharacters)
{
    const std::string text = document::lines(
        document::diff(parse(ofEnclosures("")), parse(ofEnclosures(resource("Quay", "\x1b[2J\xFF", "")))));
    EXPECT_THAT(text, testing::StartsWith("added     console \\x1B[2J\\xFF\n"));
}

TEST(Report, IsJsonForPrograms)
{
    const auto found = document::diff(
        parse(ofEnclosures(with({driveA, driveB}))),
        parse(ofEnclosures(with({{.slot = "-P1-D1", .serial = "N\"\x01"}, in("-P1-D8", driveB)}))));
    const auto json = nlohmann::json::parse(document::json(found, "old.xml", "new.xml"));
    EXPECT_EQ(json["old"], "old.xml");
    EXPECT_EQ(json["new"], "new.xml");
    ASSERT_EQ(json["changes"].size(), 2U);
    EXPECT_EQ(json["changes"][0], nlohmann::json::parse(R"({"change": "replaced", "kind": "drive",
        "name": "OSK Physical Disk Drive", "id": "U.AB1-P1-D1", "parts": 0, "listed": 1,
        "values": [{"code": "SN", "label": "Serial Number", "old": "A", "new": "N\"\u0001"}]})"));
    EXPECT_EQ(json["changes"][1]["change"], "moved");
    EXPECT_EQ(json["changes"][1]["from"], "U.AB1-P1-D2");
    EXPECT_EQ(json["changes"][1]["to"], "U.AB1-P1-D8");
    EXPECT_EQ(nlohmann::json::parse(document::json({}, "a", "b"))["changes"], nlohmann::json::array());
}

} // namespace
