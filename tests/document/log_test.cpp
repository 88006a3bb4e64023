// The progress of a collection by its trace log, and the log while it is written, cut and replaced.

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
    for (const std::string& line : lines)
        progress.read(line);
    return progress;
}

TEST(Progress, HasNotStartedBeforeARunDoes)
{
    EXPECT_FALSE(after({}).started());
    EXPECT_FALSE(after({"112126 13:41:03 ==>:  addIoEnclKord", "", "SRCV: x", "no stamp"}).started());
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

TEST(Progress, TheRacksCollectorTracesTheNameOfAnother)
{
    EXPECT_EQ(after({receive, "112126 13:41:05 ==>:  addStorEnclKord",
                     "112126 13:41:06 ==>:  addStorEnclKord", "112126 13:41:06 >>:  openRackEncl  resource"})
                  .line(),
              "9999-B2C*7ABCD12: racks, 3 s: 1 rack");
}

TEST(Progress, ChecksComeBeforeAndAfter)
{
    EXPECT_EQ(after({receive, "112126 13:41:05 ==>:  queryPartition"}).phase(), "partition checks");
    EXPECT_EQ(after({receive, "112126 13:41:05 >>:  closeInventory"}).phase(), "final checks");
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
    std::vector<std::string> read()
    {
        std::vector<std::string> lines;
        log.read([&](std::string_view line) { lines.emplace_back(line); });
        return lines;
    }
    using Lines = std::vector<std::string>;

    kordTest::TempFolder folder;
    fs::path file = folder.path() / "kord.log";
    Log log{file};
};

TEST_F(LogTest, NeedNotExist)
{
    EXPECT_FALSE(log.read([](std::string_view) { FAIL(); }));
    append("one\n");
    EXPECT_TRUE(log.read([](std::string_view line) { EXPECT_EQ(line, "one"); }));
}

TEST_F(LogTest, HandsOverWholeLinesOnce)
{
    append("one\ntw");
    EXPECT_EQ(read(), Lines{"one"});
    EXPECT_EQ(read(), Lines{});
    append("o\n\nthree\n");
    EXPECT_EQ(read(), (Lines{"two", "", "three"}));
}

TEST_F(LogTest, HandsOverNoLineOfACutLogTwice)
{
    append("one\ntwo\nthree\n");
    ASSERT_EQ(read().size(), 3U);
    std::string rest;
    for (int i = 0; i < 2000; ++i)
        rest += "line " + std::to_string(i) + '\n';
    append(rest);
    ASSERT_EQ(read().size(), 2000U);
    replaceBy(rest.substr(rest.find("line 1000\n")) + "new\n");
    EXPECT_EQ(read(), Lines{"new"});
}

TEST_F(LogTest, ReadsALogThatWasStartedAnew)
{
    append("one\ntwo\n");
    ASSERT_EQ(read().size(), 2U);
    replaceBy("three\n");
    EXPECT_EQ(read(), Lines{"three"});
    fs::resize_file(file, 0);
    EXPECT_EQ(read(), Lines{});
    append("4\n");
    EXPECT_EQ(read(), Lines{"4"});
}

TEST_F(LogTest, SaysWhenItCannotBeRead)
{
    fs::create_directory(file);
    EXPECT_THROW(read(), std::system_error);
}

} // namespace
