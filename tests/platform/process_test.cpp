// A program that is run in the place of another: what it is started with, and how it ends.

#include "platform/process.h"

#include "platform/failure.h"
#include "platform/installation.h"
#include "tempFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

/// In a process of its own, since signals stay held: what the program's end gave.
int statusOf(const std::vector<std::string>& program)
{
    const pid_t child = fork();
    if (child == 0) _exit(platform::runProgram(program, platform::holdSignals()));
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Process, EndsAsTheProgramDoes)
{
    EXPECT_EQ(statusOf({"true"}), 0);
    EXPECT_EQ(statusOf({"sh", "-c", "exit 77"}), 77);
    EXPECT_EQ(statusOf({"sh", "-c", "kill -KILL $$"}), 128 + SIGKILL);
    EXPECT_EQ(statusOf({"sh", "-c", "kill -TERM $$"}), 128 + SIGTERM);
    EXPECT_EQ(statusOf({"sh", "-c", "test \"$1 $2\" = 'a b c'", "sh", "a b", "c"}), 0);
}

TEST(Process, HandsSignalsOn)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        const std::string number = std::to_string(signal);
        EXPECT_EQ(statusOf({"sh", "-c",
                            "trap 'exit 5' " + number + "; kill -" + number +
                                " $PPID; while :; do sleep 0.01; done"}),
                  5)
            << signal;
    }
}

TEST(Process, EndsAsTheProgramDoesWhereItsCallerIgnoresChildren)
{
    const pid_t caller = fork();
    if (caller == 0) {
        alarm(60);                     // without the child's signal it would wait for ever
        std::signal(SIGCHLD, SIG_IGN); // the kernel would keep no child's status then
        _exit(platform::runProgram({"sh", "-c", "exit 77"}, platform::holdSignals()));
    }
    int status = 0;
    ASSERT_EQ(waitpid(caller, &status, 0), caller);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 77);
}

TEST(Process, LeavesTheProgramWhatItsCallerHeldBack)
{
    sigset_t held;
    sigset_t before;
    sigemptyset(&held);
    sigaddset(&held, SIGUSR1);
    sigprocmask(SIG_BLOCK, &held, &before);
    const std::vector<std::string> program = {"sh", "-c", "kill -USR1 $$; exit 3"};
    EXPECT_EQ(statusOf(program), 3);
    sigprocmask(SIG_UNBLOCK, &held, nullptr);
    EXPECT_EQ(statusOf(program), 128 + SIGUSR1);
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

TEST(Process, SaysWhyAProgramDoesNotStart)
{
    sigset_t mask;
    sigprocmask(SIG_SETMASK, nullptr, &mask);
    const platform::HeldSignals signals = {.held = mask, .before = mask};
    try {
        platform::runProgram({"/no/such", "x"}, signals);
        ADD_FAILURE();
    } catch (const platform::Failure& failure) {
        EXPECT_STREQ(failure.what(), "/no/such: No such file or directory");
    }
}

TEST(Process, TellsACommandAsAShellTakesIt)
{
    const std::string plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./:";
    EXPECT_EQ(platform::commandText({plain, plain}), plain + ' ' + plain);
    EXPECT_EQ(platform::commandText({""}), "''");
    EXPECT_EQ(platform::commandText({"a", "b c", "it's"}), "a 'b c' 'it'\\''s'");
    for (int letter = ' '; letter < 0x7F; ++letter) {
        const std::string word(1, static_cast<char>(letter));
        if (letter == '\'' || plain.find(word) != std::string::npos) continue;
        EXPECT_EQ(platform::commandText({word}), '\'' + word + '\'');
    }
}

TEST(Installation, FindsCompanionsWhereTheyAreInstalledFirst)
{
    const kordTest::TempFolder temporary;
    const fs::path& top = temporary.path();
    const platform::Installation installation = {.executable = top / "bin/kord", .bin = top / "bin"};
    const auto put = [&](const fs::path& file) {
        fs::create_directories(file.parent_path());
        std::ofstream{file} << "";
    };
    fs::create_directories(top / "bin");
    try {
        static_cast<void>(installation.folderOfProgram("helper"));
        ADD_FAILURE();
    } catch (const platform::Failure& failure) {
        EXPECT_EQ(failure.what(),
                  "the installation is broken: there is no helper in " + (top / "libexec").string());
    }
    EXPECT_THROW(static_cast<void>(installation.folderOfLibrary("library.so")), platform::Failure);
    put(top / "libexec/helper");
    EXPECT_EQ(installation.folderOfProgram("helper"), top / "libexec");
    put(top / "libexec/kord/helper");
    EXPECT_EQ(installation.folderOfProgram("helper"), top / "libexec/kord");
    put(top / "lib/library.so");
    EXPECT_EQ(installation.folderOfLibrary("library.so"), top / "lib");
}

TEST(Installation, ABareNameMeansAProgramOfTheOwnFolder)
{
    const kordTest::TempFolder temporary;
    const fs::path& bin = temporary.path();
    const platform::Installation installation = {.executable = bin / "kord", .bin = bin};
    using Command = std::vector<std::string>;
    std::ofstream{bin / "other"} << "";
    EXPECT_EQ(installation.find({"other", "x"}), (Command{"other", "x"})); // it is no program
    fs::permissions(bin / "other", fs::perms::owner_all);
    EXPECT_EQ(installation.find({"other", "x"}), (Command{(bin / "other").string(), "x"}));
    EXPECT_EQ(installation.find({"./other"}), (Command{"./other"}));
    EXPECT_EQ(installation.find({"none"}), (Command{"none"}));
}

} // namespace
