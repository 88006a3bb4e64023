// The trace log: stamp, wrapping, mode, size limits.

#include "unit.h"

#include <ctime>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

bool isLinkedMeanwhile = false;

} // namespace

/// In the C library's place: the collector asks by it for a log's state only before it cuts it.
extern "C" int fstat(int file, struct stat* status) noexcept
{
    const int result = fstatat(file, "", status, AT_EMPTY_PATH);
    if (isLinkedMeanwhile) status->st_nlink = 2;
    return result;
}

namespace
{

const std::string name = "trace.log";
const std::string path = unit::logPath(name);

void removeLog()
{
    for (const char* suffix : {"", "00", "01"})
        std::filesystem::remove_all(path + suffix);
}

std::string messageOf(size_t length)
{
    std::string message;
    for (size_t i = 0; i < length; ++i)
        message += static_cast<char>('a' + i % 26);
    return message;
}

/// What the log must hold behind the stamp: one line up to 79 bytes in all, else a first line of 79 and lines
/// of 80.
std::string expectedAfterStamp(const std::string& code, const std::string& message)
{
    const std::string head = code + ": ";
    if (code.size() + message.size() + 19 <= 79) return head + message + "\n";
    const size_t first = 61 - code.size();
    std::string text = head + message.substr(0, first) + "\n";
    for (size_t at = first; at < message.size(); at += 80)
        text += message.substr(at, 80) + "\n";
    return text;
}

class TraceLog : public testing::Test
{
protected:
    void SetUp() override { removeLog(); }
    void TearDown() override { removeLog(); }
};

TEST_F(TraceLog, wrapsAtEveryLength)
{
    for (const std::string code : {"0100", "409 ", "904", "==>", ">>", "getResQuaySE"}) {
        for (size_t length = 0; length <= 800; ++length) {
            removeLog();
            EXPECT_EQ(addTrcKord(name.c_str(), code.c_str(), messageOf(length).c_str()), 0);
            ASSERT_EQ(unit::readFile(path).substr(unit::stampLength),
                      expectedAfterStamp(code, messageOf(length)))
                << code << " and " << length << " bytes";
        }
    }
}

TEST_F(TraceLog, wrapsThreeHundredBytes)
{
    addTrcKord(name.c_str(), "0100", messageOf(300).c_str());
    std::istringstream text(unit::readFile(path));
    std::vector<size_t> lengths;
    for (std::string line; std::getline(text, line);)
        lengths.push_back(line.size());
    EXPECT_EQ(lengths, (std::vector<size_t>{79, 80, 80, 80, 3}));
}

TEST_F(TraceLog, wrapsALineBeyondItsBuffer)
{
    const std::string message = messageOf(5000);
    addTrcKord(name.c_str(), "0050", message.c_str());
    EXPECT_EQ(unit::readFile(path).substr(unit::stampLength), expectedAfterStamp("0050", message));
}

TEST_F(TraceLog, leavesNoRoomBesideALongCode)
{
    const std::string code(61, 'c');
    addTrcKord(name.c_str(), code.c_str(), "text");
    EXPECT_EQ(unit::readFile(path).substr(unit::stampLength), code + ": \ntext\n");
}

TEST_F(TraceLog, staysWholeWhereNothingCanBeMadeBesideIt)
{
    std::filesystem::create_directory(path + "01");
    std::string lines;
    while (lines.size() <= 3'000'000)
        lines += messageOf(199) + "\n";
    unit::writeFile(path, lines);
    addTrcKord(name.c_str(), "0001", "text");
    EXPECT_EQ(unit::readFile(path).substr(0, lines.size()), lines);
}

TEST_F(TraceLog, stampsWithTheLocalTime)
{
    const time_t before = time(nullptr);
    addTrcKord(name.c_str(), "0100", "text");
    const time_t after = time(nullptr);
    const std::string line = unit::readFile(path);
    bool isNow = false;
    for (time_t now = before; now <= after; ++now) {
        char written[64];
        tm local{};
        strftime(written, sizeof written, "%m%d%y %H:%M:%S 0100: text\n", localtime_r(&now, &local));
        isNow = isNow || line == written;
    }
    EXPECT_TRUE(isNow) << line;
}

TEST_F(TraceLog, isNotTheOneWhoseNameEndsLikeIts)
{
    const std::string longer = "x" + name;
    std::filesystem::remove(unit::logPath(longer));
    addTrcKord(longer.c_str(), "0100", "one");
    addTrcKord(name.c_str(), "0100", "other");
    EXPECT_EQ(unit::readFile(path).substr(unit::stampLength), "0100: other\n");
    EXPECT_EQ(unit::readFile(unit::logPath(longer)).substr(unit::stampLength), "0100: one\n");
    std::filesystem::remove(unit::logPath(longer));
}

TEST_F(TraceLog, emptyAndNullTexts)
{
    const std::string fallback = unit::logPath("addTrcKord.log");
    std::filesystem::remove(fallback);
    addTrcKord("", "0100", "named by nobody");
    addTrcKord(nullptr, nullptr, nullptr);
    EXPECT_EQ(unit::readFile(fallback).substr(unit::stampLength, 22), "0100: named by nobody\n");
    EXPECT_TRUE(unit::readFile(fallback).ends_with(" : \n"));
    std::filesystem::remove(fallback);
}

TEST_F(TraceLog, isWritableForAllAfterEveryCall)
{
    const mode_t before = umask(077);
    addTrcKord(name.c_str(), "0100", "one");
    umask(before);
    EXPECT_EQ(unit::modeOf(path), 0666U);
    chmod(path.c_str(), 0600);
    addTrcKord(name.c_str(), "0100", "two");
    EXPECT_EQ(unit::modeOf(path), 0666U);
}

TEST_F(TraceLog, writesThroughNoLink)
{
    const std::string target = path + ".target";
    unit::writeFile(target, "kept\n");
    std::filesystem::create_symlink(target, path);
    EXPECT_EQ(addTrcKord(name.c_str(), "0100", "text"), 0);
    EXPECT_EQ(unit::readFile(target), "kept\n");
    std::filesystem::remove(target);
}

TEST_F(TraceLog, isNoFileOfAnotherName)
{
    const std::string target = path + ".target";
    for (const size_t size : {5U, 3'000'005U, 3'010'005U}) {
        unit::writeFile(target, std::string(size, '\n'));
        chmod(target.c_str(), 0600);
        std::filesystem::create_hard_link(target, path);
        EXPECT_EQ(addTrcKord(name.c_str(), "0100", "text"), 0);
        EXPECT_EQ(std::filesystem::file_size(target), size);
        EXPECT_EQ(unit::modeOf(target), 0600U);
        EXPECT_EQ(std::filesystem::hard_link_count(target), 2U) << "nothing is removed";
        std::filesystem::remove(path);
    }
    std::filesystem::remove(target);
}

TEST_F(TraceLog, losesTheLineWhenItCannotBeOpened)
{
    std::filesystem::create_directory(path);
    EXPECT_EQ(addTrcKord(name.c_str(), "0100", "text"), 0);
    EXPECT_TRUE(std::filesystem::is_empty(path));
}

/// `lines` numbered lines, `bytes` bytes in all.
std::string grownLog(int lines, size_t bytes, bool endsInNewline = true)
{
    std::string log;
    log.reserve(bytes);
    for (int i = 1; i <= lines; ++i) {
        std::string line = std::to_string(i) + " ";
        const size_t left = bytes - log.size();
        const size_t length = i < lines ? bytes / static_cast<size_t>(lines) : left;
        line.resize(length - 1, '.');
        log += line + "\n";
    }
    if (!endsInNewline) log.back() = '.';
    return log;
}

std::string fromLine(const std::string& log, int number)
{
    size_t at = 0;
    for (int line = 1; line < number; ++line)
        at = log.find('\n', at) + 1;
    return log.substr(at);
}

struct Growth {
    int lines;
    size_t bytes;
    enum { keeps, cuts, removes } what;
};

class TraceLogGrowth : public TraceLog, public testing::WithParamInterface<Growth>
{
};

TEST_P(TraceLogGrowth, isBounded)
{
    const auto& [lines, bytes, what] = GetParam();
    const std::string before = grownLog(lines, bytes);
    ASSERT_EQ(before.size(), bytes);
    unit::writeFile(path, before);
    unit::writeFile(path + "00", "an earlier head\n");
    unit::writeFile(path + "01", "an earlier tail\n");
    const size_t open = kordTest::openFiles();
    addTrcKord(name.c_str(), "0100", "text");
    EXPECT_EQ(kordTest::openFiles(), open);
    const std::string after = unit::readFile(path);

    if (what == Growth::removes) {
        EXPECT_EQ(after, "");
    } else {
        const std::string kept = what == Growth::cuts ? fromLine(before, 10000) : before;
        ASSERT_EQ(after.size(), kept.size() + unit::stampLength + 11);
        EXPECT_EQ(after.substr(0, kept.size()), kept);
        EXPECT_TRUE(after.ends_with(" 0100: text\n"));
    }
    EXPECT_EQ(unit::modeOf(path), 0666U);
    if (what == Growth::cuts) {
        EXPECT_FALSE(std::filesystem::exists(path + "00"));
        EXPECT_FALSE(std::filesystem::exists(path + "01"));
    }
}

// A log of 9,998 lines has 9,999 once the line is written, and none from 10,000 on.
INSTANTIATE_TEST_SUITE_P(
    , TraceLogGrowth,
    testing::Values(Growth{10'000, 2'999'999, Growth::keeps}, Growth{10'000, 3'000'000, Growth::keeps},
                    Growth{9'998, 3'000'001, Growth::keeps}, Growth{9'999, 3'000'001, Growth::cuts},
                    Growth{10'000, 3'000'001, Growth::cuts}, Growth{25'000, 3'000'001, Growth::cuts},
                    Growth{25'000, 3'009'999, Growth::cuts}, Growth{25'000, 3'010'000, Growth::cuts},
                    Growth{25'000, 3'010'001, Growth::removes}, Growth{100, 3'010'001, Growth::removes},
                    Growth{100, 9'000'000, Growth::removes}));

TEST_F(TraceLog, isKeptWithoutStandardInput)
{
    const kordTest::WithoutInput closed;
    unit::writeFile(path, grownLog(25'000, 3'000'001));
    addTrcKord(name.c_str(), "0100", "text");
    const std::string cut = unit::readFile(path);
    EXPECT_EQ(cut.substr(0, 6), "10000 ");
    EXPECT_TRUE(cut.ends_with(" 0100: text\n"));
    unit::writeFile(path, grownLog(100, 3'010'001));
    chmod(path.c_str(), 0600);
    addTrcKord(name.c_str(), "0100", "text");
    EXPECT_EQ(unit::readFile(path), "");
    EXPECT_EQ(unit::modeOf(path), 0666U);
}

TEST_F(TraceLog, cutsThroughNoLink)
{
    const std::string target = path + ".target";
    unit::writeFile(target, "kept\n");
    unit::writeFile(path, grownLog(25'000, 3'000'001));
    std::filesystem::create_symlink(target, path + "01");
    addTrcKord(name.c_str(), "0100", "text");
    EXPECT_EQ(unit::readFile(target), "kept\n");
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(path)));
    EXPECT_EQ(unit::readFile(path).substr(0, 6), "10000 ");
    std::filesystem::remove(target);
}

TEST_F(TraceLog, staysWholeWhereItCannotBeReplaced)
{
    const std::string grown = grownLog(25'000, 3'000'001);
    unit::writeFile(path, grown);
    if (mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) != 0)
        GTEST_SKIP() << "a file cannot be mounted here";
    addTrcKord(name.c_str(), "0100", "text");
    const std::string log = unit::readFile(path);
    const bool hasPiece = std::filesystem::exists(path + "01");
    umount2(path.c_str(), MNT_DETACH);
    EXPECT_TRUE(log.starts_with(grown));
    EXPECT_TRUE(log.ends_with(" 0100: text\n"));
    EXPECT_FALSE(hasPiece);
}

/// Somebody gives it another name after a line was written and before it is cut.
TEST_F(TraceLog, staysWholeWhereItIsNoLongerOursWhenItIsCut)
{
    const std::string grown = grownLog(25'000, 3'000'001);
    unit::writeFile(path, grown);
    isLinkedMeanwhile = true;
    addTrcKord(name.c_str(), "0100", "text");
    isLinkedMeanwhile = false;
    const std::string log = unit::readFile(path);
    EXPECT_TRUE(log.starts_with(grown));
    EXPECT_TRUE(log.ends_with(" 0100: text\n"));
}

TEST_F(TraceLog, removesThroughTheWrapper)
{
    unit::writeFile(path, grownLog(100, 3'010'001));
    const std::string added = unit::journaled([&] { addTrcKord(name.c_str(), "0100", "text"); });
    EXPECT_NE(added.find("/opt/tarnquay/bin/mmquaycmd"), std::string::npos) << added;
    EXPECT_NE(added.find(R"("/bin/rm","-f",")" + path + R"(")"), std::string::npos) << added;
}

} // namespace
