// A document as a tree.

#include "document/tree.h"
#include "writing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace kordTest;
using document::Lines;

std::string tree(const document::Document& document, Lines lines)
{
    std::string text;
    document::writeTree(document, lines, [&](std::string_view piece) { text += piece; });
    return text;
}

const std::string twoDrives = ofEnclosures(enclosure({.id = "U.AB1", .serial = "AB1", .location = "R-1"},
                                                     drive("U.AB1", {.slot = "-D1", .serial = "A"}) +
                                                         drive("U.AB1", {.slot = "-D10", .serial = "LONG"})) +
                                           resource("Quay", "Q", ""));

TEST(Tree, AlignsWhatStandsTogether)
{
    EXPECT_EQ(
        tree(parse(twoDrives), Lines::ascii),
        "SYSTEM-1 of storage facility FACILITY, collected 2026-11-21 13:41:03 UTC\n"
        "1 storage enclosure, 2 drives, 1 console\n"
        "|-- Storage Enclosure  U.AB1  S4 IMAGE-1  R1 R-1  TM 1234-5X6  SG AB1\n"
        "|   `-- Enclosure's MTMS - Partition Id  U.AB1-1\n"
        "|       |-- OSK Physical Disk Drive  U.AB1-D1   EC J1  SN A     DP DI=D1,DM=Maker,DC=73400MB,ST=0\n"
        "|       `-- OSK Physical Disk Drive  U.AB1-D10  EC J1  SN LONG  DP DI=D1,DM=Maker,DC=73400MB,ST=0\n"
        "`-- Quay  Q\n");
}

/// Where it is the part's own name or identifier, or the same around it, a value is told once.
TEST(Tree, LeavesOutWhatIsToldAlready)
{
    const auto line = [](const std::string& properties) {
        const std::string inner = resource("Gadget", "G", properties);
        const std::string text =
            tree(parse(ofEnclosures(resource("Around", "A",
                                             property("S4", "Image", "I") + property("R2", "Rack", "1") +
                                                 property("SN", "Serial", "S") + list("Parts", inner)))),
                 Lines::ascii);
        const size_t at = text.find("Gadget");
        return text.substr(at, text.find('\n', at) - at);
    };
    EXPECT_EQ(line(property("S4", "Image", "I") + property("R2", "Rack", "1") +
                   property("S3", "Storage Facility MTMS", "FACILITY") + property("DS", "VPD", "Gadget") +
                   property("YL", "Location", "G") + property("CI", "Partition", "A")),
              "Gadget  G");
    EXPECT_EQ(line(property("CI", "Partition", "SYSTEM-1")), "Gadget  G");
    EXPECT_EQ(line(property("S4", "Image", "J") + property("R2", "Rack", "2") + property("S3", "MTMS", "F") +
                   property("DS", "VPD", "G") + property("YL", "Location", "Gadget") +
                   property("CI", "Partition", "G") + property("SN", "Serial", "S") +
                   property("DI", "Other", "A")),
              "Gadget  G  S4 J  R2 2  S3 F  DS G  YL Gadget  CI G  SN S  DI A");
    EXPECT_EQ(line(property("S4", "Another label", "I")), "Gadget  G  S4 I");
}

TEST(Tree, DrawsLinesWhereTheTerminalHasThem)
{
    EXPECT_THAT(tree(parse(twoDrives), Lines::unicode), testing::HasSubstr("│       └── OSK"));
}

TEST(Tree, ShowsValuesOnOneLineAndWithoutControlCharacters)
{
    const std::string text =
        tree(parse(ofPartitions(resource("a\x1b[31m\nb", "P",
                                         property("NN", "WWNN", std::string(300, 'w')) + hosts("a=1,b=2,")))),
             Lines::ascii);
    EXPECT_THAT(
        text, testing::HasSubstr("`-- a\\x1B[31m\\nb  P  NN " + std::string(97, 'w') + "...  U2 2 hosts\n"));
}

TEST(Tree, IsNoWiderForALongIdentifier)
{
    const std::string huge(1'000'000, 'i');
    std::string siblings = resource("Quay", huge, property("AC", "Account Name", "me"));
    for (int i = 0; i < 100; ++i)
        siblings += resource("Quay", "Q", property("AC", "Account Name", "me"));
    const std::string text = tree(parse(ofEnclosures(siblings)), Lines::ascii);
    EXPECT_THAT(text, testing::HasSubstr("|-- Quay  " + std::string(97, 'i') + "...  AC me\n"));
    EXPECT_LT(text.size(), 20'000U);
}

TEST(Tree, CountsAPartThatTwoPartitionsSeeOnce)
{
    const std::string shared = enclosure({.id = "E", .serial = "S", .location = "R-1"}, "");
    EXPECT_THAT(tree(parse(ofEnclosures(shared + shared)), Lines::ascii),
                testing::HasSubstr("\n1 storage enclosure\n"));
}

} // namespace
