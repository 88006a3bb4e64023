// The progress of a collection by its trace log, and the log while it is written, cut and replaced.

#include "descriptors.h"
#include "document/follow.h"
#include "document/progress.h"
#include "tempFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <system_error>

namespace
{

namespace fs = std::filesystem;
using document::Log;
using document::Progress;

constexpr const char* receive = "112126 13:41:03 SRCV: 155968_quay1 07-15-05  9999-B2C*7ABCD12";
constexpr const char* closing = "112126 13:41:09 0010:  exit 3 ------------------";

Progress after(const std::vector<std::string>& lines)
{
    Progress progress;
    document::TraceReader reader([&](const document::TraceLine& line) { progress.read(line); });
    for (const std::string& line : lines)
        reader.read(line + '\n');
    reader.settle();
    return progress;
}

std::string phaseAfter(std::vector<std::string> lines)
{
    lines.insert(lines.begin(), receive);
    return std::string(after(lines).phase());
}

TEST(Progress, HasNotStartedBeforeARunDoes)
{
    EXPECT_FALSE(after({}).started());
    EXPECT_FALSE(after({"", "SRCV: x", "no stamp", "112126 13:41:03 no code"}).started());
    EXPECT_TRUE(after({receive}).started());
    EXPECT_EQ(after({receive}).line(), "9999-B2C*7ABCD12: start, 0 s");
}

TEST(Progress, CountsWhatIsCollected)
{
    EXPECT_EQ(after({receive, "112126 13:41:05 ==>:  addStorEnclKord",
                     "112126 13:41:05 >>:  openStorEncl  resource",
                     "112126 13:41:06 0304 : DDM loop array_cnt_ddm= 16, attr_count_ddm= 14",
                     "112126 13:41:06 >>:  openStorEncl  resource",
                     "112126 13:41:13 0304 : DDM loop array_cnt_ddm= 8, attr_count_ddm= 14"})
                  .line(),
              "9999-B2C*7ABCD12: storage enclosures, 10 s: 24 drives, 2 storage enclosures");
}

TEST(Progress, WhatFollowsAnEndIsOfAnotherRun)
{
    const std::string line = after({receive, "112126 13:41:05 ==>:  addStorEnclKord",
                                    "112126 13:41:06 0304 : DDM loop array_cnt_ddm= 16, attr_count_ddm= 14",
                                    closing, "112126 13:45:00 ==>:  addStorEnclKord",
                                    "112126 13:45:02 0304 : DDM loop array_cnt_ddm= 8, attr_count_ddm= 14"})
                                 .line();
    EXPECT_EQ(line, "a run whose start the log has lost: storage enclosures, the last 2 s: 8 drives");
}

TEST(Progress, TheRacksCollectorTracesTheNameOfAnother)
{
    EXPECT_EQ(after({receive, "112126 13:41:05 ==>:  addStorEnclKord",
                     "112126 13:41:06 ==>:  addStorEnclKord", "112126 13:41:06 >>:  openRackEncl  resource"})
                  .line(),
              "9999-B2C*7ABCD12: racks, 3 s: 1 rack");
}

TEST(Progress, ChecksComeBeforeAndAfter)
{
    const std::string state = "112126 13:41:05 0017: rc=0, xargc=1, 9999-B2C*7ABCD12, state=Operating ";
    EXPECT_EQ(phaseAfter({"112126 13:41:05 0004: start local session "}), "sessions");
    EXPECT_EQ(phaseAfter({"112126 13:41:05 0109: wwnn=500FACE000001230, server=0 "}), "system checks");
    EXPECT_EQ(phaseAfter({state}), "state checks");
    EXPECT_EQ(phaseAfter({state, "112126 13:41:05 ==>:  queryPartition"}), "partition checks");
    EXPECT_EQ(phaseAfter({"112126 13:41:05 0005: start DM session "}), "domain session");
    EXPECT_EQ(phaseAfter({"112126 13:41:05 ==>:  addPartitionKord", state}), "final checks");
    EXPECT_EQ(phaseAfter({"112126 13:41:05 0005: start DM session ", state,
                          "112126 13:41:05 0010:  HWModel=\"9999-B2C\" && HWSerialNum=\"7ABCD12\""}),
              "final checks");
}

TEST(Progress, EveryPhaseBeginsWithItsLine)
{
    // The phase that a line of the systems' states begins.
    const char* const checksBefore = "state checks";
    const char* const checksAfter = "final checks";
    const struct {
        const char* line;
        const char* phase;
        const char* states;
    } cases[] = {
        {"0004: start local session ", "sessions", checksBefore},
        {"0107:  managedSystemMTMS=\"9999-B2C*7ABCD12\" ", "system checks", checksBefore},
        {"0108:  array_cnt_sfs=1", "system checks", checksBefore},
        {"0109: wwnn=500FACE000001230, server=0 ", "system checks", checksBefore},
        {"0017: rc=0, xargc=1, 9999-B2C*7ABCD12, state=Operating ", "state checks", checksBefore},
        {"==>:  queryPartition", "partition checks", checksBefore},
        {"0005: start DM session ", "domain session", checksAfter},
        {"==>:  addCecEnclKord", "processor complexes", checksAfter},
        {"==>:  addIoEnclKord", "I/O enclosures", checksAfter},
        {"==>:  queryDA", "I/O enclosures", checksAfter},
        {"==>:  addStorEnclKord", "storage enclosures", checksAfter},
        {"==>:  queryDDM", "storage enclosures", checksAfter},
        {"0400: storageFacilityMTMS=\"9999-A01*00XY1230\" ", "racks", checksAfter},
        {">>:  openRackEncl  resource", "racks", checksAfter},
        {"==>:  addQuayEnclKord", "consoles", checksAfter},
        {"==>:  addPartitionKord", "partitions", checksAfter},
        {">>:  openPartitionResource resource", "partitions", checksAfter},
    };
    const std::string state = "112126 13:41:06 0017: rc=0, xargc=1, 9999-B2C*7ABCD12, state=Operating ";
    for (const auto& [text, phase, states] : cases) {
        const std::string line = std::string("112126 13:41:05 ") + text;
        EXPECT_EQ(phaseAfter({line}), phase) << line;
        EXPECT_EQ(phaseAfter({line, state}), states) << line;
    }
}

TEST(Progress, OtherLinesBeginNoPhase)
{
    for (const char* line :
         {"0004:  LC scope session", "0018: ", "==>:  queryRackParts", ">>:  openRackEnclosures",
          ">>:  openPartitionResources", "0010:  HWModel=", "0005x: start DM session"})
        EXPECT_EQ(phaseAfter({std::string("112126 13:41:05 ") + line}), "start") << line;
}

TEST(Progress, CountsEveryKindOfPart)
{
    const struct {
        const char* line;
        const char* one;
        const char* two;
    } cases[] = {
        {"0304 : DDM loop array_cnt_ddm= 1, attr_count_ddm= 14", "1 drive", "2 drives"},
        {">>:  openStorEncl  resource", "1 storage enclosure", "2 storage enclosures"},
        {">>:  openRackEncl  resource", "1 rack", "2 racks"},
        {">>:  openPartitionResource resource", "1 partition", "2 partitions"},
        {">>:  openIOEncl resource", "1 I/O enclosure", "2 I/O enclosures"},
        {">>:  openCecEncl resource", "1 processor complex", "2 processor complexes"},
    };
    for (const auto& [text, one, two] : cases) {
        const std::string line = std::string("112126 13:41:03 ") + text;
        const std::string first = after({receive, line}).line();
        const std::string second = after({receive, line, line}).line();
        EXPECT_TRUE(first.ends_with(std::string(", 0 s: ") + one)) << first;
        EXPECT_TRUE(second.ends_with(std::string(", 0 s: ") + two)) << second;
    }
}

TEST(Progress, CountsStandInOneOrder)
{
    std::vector<std::string> lines = {receive};
    for (const char* text :
         {">>:  openCecEncl resource", ">>:  openIOEncl resource", ">>:  openPartitionResource resource",
          ">>:  openRackEncl  resource", ">>:  openStorEncl  resource",
          "0304 : DDM loop array_cnt_ddm= 16, attr_count_ddm= 14"})
        lines.push_back(std::string("112126 13:41:03 ") + text);
    EXPECT_EQ(after(lines).line(), "9999-B2C*7ABCD12: racks, 0 s: 16 drives, 1 storage enclosure, 1 rack, "
                                   "1 partition, 1 I/O enclosure, 1 processor complex");
}

TEST(Progress, AFailureBelongsToThePhaseThatItBroke)
{
    // A collector that fails closes what is open on its way out.
    EXPECT_EQ(phaseAfter({"112126 13:41:05 ==>:  addIoEnclKord", "112126 13:41:05 0201:   IODrawer 7, no",
                          "112126 13:41:05 ==>:  handleErrKord addIoEnclKord, r",
                          "112126 13:41:05 >>:  closeEnclosures resourcelist",
                          "112126 13:41:05 >>:  closeSystem resource", "112126 13:41:05 >>:  closeInventory",
                          "112126 13:41:05 0008: close file"}),
              "I/O enclosures");
    EXPECT_EQ(phaseAfter({"112126 13:41:05 0017: rc=0, xargc=1, 9999-B2C*7ABCD12, state=Standby ",
                          "112126 13:41:05 ==>:  handleErrKord addTarnKord, s"}),
              "state checks");
}

TEST(Progress, ARunWhoseStartWasCutOffIsFollowedFromWhatIsLeft)
{
    const Progress progress = after({"erDomain=\"9999.A01.00XY121\"", "112126 13:41:05 0400: rack",
                                     "112126 13:41:06 >>:  openRackEncl  resource",
                                     "112126 13:41:07 0010:  exit 3 ------------------"});
    EXPECT_EQ(progress.status(), 3);
    EXPECT_EQ(progress.line(), "a run whose start the log has lost: done, the last 2 s: 1 rack");
}

TEST(Progress, ARunWithoutSessionsHasNoClosingLine)
{
    const Progress progress =
        after({receive, "112126 13:41:05 0004: start local session ",
               "112126 13:41:05 0004:  LC scope session failed with error 7, none, exit -", "1"});
    EXPECT_EQ(progress.status(), -1);
    EXPECT_EQ(progress.line(), "9999-B2C*7ABCD12: failed (sessions), 2 s");
}

TEST(Progress, TakesNoNumberThatTheCollectorCannotHaveWritten)
{
    const Progress progress =
        after({receive, "112126 13:41:05 0304 : DDM loop array_cnt_ddm= 99999999999999999999, attr",
               "112126 13:41:05 0304 : DDM loop array_cnt_ddm= 2, attr_count_ddm= 14"});
    EXPECT_EQ(progress.line(), "9999-B2C*7ABCD12: start, 2 s: 3 drives");
}

TEST(Progress, EndsWithTheClosingLine)
{
    EXPECT_EQ(after({receive}).status(), std::nullopt);
    EXPECT_EQ(after({receive, closing}).status(), 3);
    EXPECT_EQ(after({receive, closing}).line(), "9999-B2C*7ABCD12: done, 6 s");
    EXPECT_EQ(
        after({receive, "112126 13:41:05 0019: Function completed with minor errors detected.", closing})
            .line(),
        "9999-B2C*7ABCD12: done, with minor errors, 6 s");
    const Progress failed = after({receive, "112126 13:41:04 ==>:  addIoEnclKord",
                                   "112126 13:41:04 0010:  exit -1 ------------------"});
    EXPECT_EQ(failed.status(), -1);
    EXPECT_EQ(failed.line(), "9999-B2C*7ABCD12: failed (I/O enclosures), 1 s");
}

TEST(Progress, OtherLinesOfTheSameCodeDoNotEndARun)
{
    EXPECT_EQ(after({receive,
                     "112126 13:41:05 0010:  HWModel=\"9999-B2C\" && HWSerialNum=\"7ABCD12\" && LParID=\"1"})
                  .status(),
              std::nullopt);
    EXPECT_EQ(after({receive, "112126 13:41:05 0010:  HWModel=\"---"}).status(), std::nullopt);
    EXPECT_EQ(after({receive, " exit 3 ------------------"}).status(), std::nullopt);
}

TEST(Progress, ANewRunStartsAnew)
{
    const Progress progress = after({receive, "112126 13:41:05 >>:  openRackEncl  resource", closing,
                                     "112126 14:00:00 SRCV: 155968_quay1 07-15-05  9999-B2C*OTHER12"});
    EXPECT_EQ(progress.status(), std::nullopt);
    EXPECT_EQ(progress.line(), "9999-B2C*OTHER12: start, 0 s");
}

TEST(Progress, ShowsNoControlCharacters)
{
    EXPECT_EQ(after({std::string(receive) + "\x1b[2J"}).line(), "9999-B2C*7ABCD12\\x1B[2J: start, 0 s");
}

// --- The log

class LogTest : public testing::Test
{
protected:
    void append(const std::string& text) const { std::ofstream(file, std::ios::app) << text; }
    /// What kord does to a log that grew too long, and what others do: another file takes its place.
    void replaceBy(const std::string& text) const
    {
        std::ofstream(folder.path() / "piece") << text;
        fs::rename(folder.path() / "piece", file);
    }
    std::string read()
    {
        std::string bytes;
        log.read([&](std::string_view more) { bytes += more; });
        return bytes;
    }

    kordTest::TempFolder folder;
    fs::path file = folder.path() / "kord.log";
    Log log{file};
};

TEST_F(LogTest, NeedNotExist)
{
    EXPECT_FALSE(log.read([](std::string_view) { FAIL(); }));
    append("one\n");
    EXPECT_TRUE(log.read([](std::string_view bytes) { EXPECT_EQ(bytes, "one\n"); }));
}

TEST_F(LogTest, IsReadWithoutStandardInput)
{
    append("one\n");
    const kordTest::WithoutInput closed;
    EXPECT_EQ(read(), "one\n");
}

TEST_F(LogTest, HandsOverWhatIsNewOnce)
{
    append("one\ntw");
    EXPECT_EQ(read(), "one\ntw");
    EXPECT_EQ(read(), "");
    append("o\n\nthree\n");
    EXPECT_EQ(read(), "o\n\nthree\n");
}

TEST_F(LogTest, HandsOverNothingOfACutLogTwice)
{
    append("one\ntwo\nthree\n");
    ASSERT_EQ(read().size(), 14U);
    std::string rest;
    for (int i = 0; i < 20000; ++i)
        rest += "line " + std::to_string(i) + '\n';
    append(rest);
    ASSERT_EQ(read(), rest);
    replaceBy(rest.substr(rest.find("line 10000\n")) + "new\n");
    EXPECT_EQ(read(), "new\n");
}

TEST_F(LogTest, ReadsALogThatWasStartedAnew)
{
    append("one\ntwo\n");
    ASSERT_EQ(read(), "one\ntwo\n");
    replaceBy("three\n");
    EXPECT_EQ(read(), "three\n");
    fs::resize_file(file, 0);
    EXPECT_EQ(read(), "");
    append("4\n");
    EXPECT_EQ(read(), "4\n");
}

/// No collector's log grows as long.
TEST_F(LogTest, LooksForWhatItKnowsInTheFirst16MiB)
{
    constexpr size_t most = size_t{16} << 20U;
    append("known\n");
    ASSERT_EQ(read(), "known\n");
    replaceBy(std::string(most - 6, 'x') + "known\nnew\n");
    EXPECT_EQ(read(), "new\n");
    const std::string longer = std::string(most, 'x') + "known\nnew\nnewer\n";
    replaceBy(longer);
    EXPECT_EQ(read(), longer);
}

TEST_F(LogTest, SaysWhenItCannotBeRead)
{
    const auto fault = [&]() -> std::string {
        try {
            read();
        } catch (const std::system_error& error) {
            return error.what();
        }
        return "";
    };
    fs::create_symlink(file, file);
    EXPECT_EQ(fault(), file.string() + ": Too many levels of symbolic links");
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_EQ(fault(), file.string() + ": Is a directory");
}

} // namespace
