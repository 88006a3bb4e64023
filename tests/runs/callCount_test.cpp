// What a run costs in system calls: a line of the trace that takes one more, or a shell where none is needed,
// shows here without a timer.

#include "consoleRun.h"
#include "systemCalls.h"
#include "tempFolder.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <nlohmann/json.hpp>

namespace kordTest
{

namespace
{

const std::string mtms = "9999-B2C*7ABCD12";

/// The calls of one run on the small facility, and what it left.
class CallCount : public testing::Test
{
protected:
    void SetUp() override
    {
        setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // the search for leaks cannot be traced
        const std::string build = triedBuild();
        const Command command{.arguments = {build + "/bin/kord-console", "run", "--facility",
                                            std::string(KORD_SOURCE_DIR) + "/console/facilities/small.json",
                                            "--root", folder.path() / "root", "--",
                                            build + "/bin/addTarnKord", "x", mtms},
                              .folder = folder.path()};
        const std::optional<CallRecord> record = recordSystemCalls(command, "addTarnKord");
        unsetenv("ASAN_OPTIONS");
        if (!record) {
            std::cerr
                << "\n*** NOT CHECKED: this kernel lets no process trace another, so the run's system calls"
                   " cannot be counted. Allow ptrace to have them checked. ***\n\n";
            GTEST_SKIP() << "ptrace is forbidden";
        }
        ASSERT_EQ(record->status, 3);
        calls = record->calls;
        ASSERT_FALSE(calls.empty());
    }

    /// The calls on files whose path ends like this; of one name, if it is given.
    [[nodiscard]] long count(const std::string& fileEnd, const std::string& name = "") const
    {
        return std::ranges::count_if(calls, [&](const SystemCall& call) {
            return call.file.ends_with(fileEnd) && (name.empty() || call.name == name);
        });
    }

    [[nodiscard]] long processesMade() const
    {
        return std::ranges::count_if(calls, [](const SystemCall& call) {
            return call.name == "clone" || call.name == "clone3" || call.name.ends_with("fork");
        });
    }

    [[nodiscard]] std::filesystem::path root() const { return folder.path() / "root"; }

private:
    TempFolder folder;
    std::vector<SystemCall> calls;
};

constexpr long commandsOfARun =
    8;                            ///< whoami, chown, two systems' states twice, the console's type and serial
constexpr long outputsOfARun = 7; ///< all but chown's
const std::string commandOutput = "/var/brisk/log/tmp.7ABCD12";

TEST_F(CallCount, ofATraceLineIsFour)
{
    const long lines = static_cast<long>(readTrace(traceFile(root(), mtms)).size());
    const std::string log = "/var/tarnquay/log/kord.7ABCD12.log";
    ASSERT_GT(lines, 100);
    EXPECT_EQ(count(log, "openat"), lines);
    EXPECT_EQ(count(log, "write"), lines);
    EXPECT_EQ(count(log, "close"), lines);
    EXPECT_EQ(count(log, "fchmod"), 1) << "only the line that makes the log has a mode to change";
    constexpr long once = 2; // its mode, and a look at it before it is given to the console's user
    EXPECT_LE(count(log), 4 * lines + once);
}

TEST_F(CallCount, ofTheDocumentGrowsWithItsSizeOnly)
{
    const std::filesystem::path document = documentFile(root(), mtms);
    constexpr long largeWrite = 65536;
    const long writes =
        (static_cast<long>(std::filesystem::file_size(document)) + largeWrite - 1) / largeWrite;
    const std::string name = document.filename();
    EXPECT_EQ(count(name, "openat"), 1);
    EXPECT_EQ(count(name, "write"), writes);
    EXPECT_LE(count(name), writes + 4)
        << "one look at what is in the way, an open, a close, and one to spare";
}

TEST_F(CallCount, makesOneProcessForEachCommand)
{
    EXPECT_EQ(processesMade(), commandsOfARun);
}

TEST_F(CallCount, ofACommandsOutputIsNine)
{
    EXPECT_EQ(count(commandOutput, "unlink") + count(commandOutput, "unlinkat"), outputsOfARun);
    EXPECT_LE(count(commandOutput), 9 * outputsOfARun)
        << "made, opened to all and closed; looked at, opened, read and closed; removed; and one to spare";
}

TEST_F(CallCount, readsTheTimeZoneOnce)
{
    EXPECT_LE(count("/etc/localtime"), 1) << "the time zone is read once, not for every line";
}

} // namespace
} // namespace kordTest
