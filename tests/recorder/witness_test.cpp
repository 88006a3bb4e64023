// The witness: a program that it runs ends and prints as it would alone, and that is on the tape.

#include "consoleRun.h"
#include "parseJson.h"
#include "process.h"
#include "tempFolder.h"

#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using nlohmann::json;
using Texts = std::vector<std::string>;

const fs::path witness = fs::path(KORD_BUILD_DIR) / "libexec/witness";

class Witness : public testing::Test
{
protected:
    kordTest::TempFolder temporary;
    const fs::path tape = temporary.path() / "tape";

    Witness()
    {
        std::ofstream(tape).close();
        setenv("KORD_CONSOLE_TAPE", tape.c_str(), 1);
    }
    ~Witness() override { unsetenv("KORD_CONSOLE_TAPE"); }

    [[nodiscard]] kordTest::Outcome run(Texts command) const
    {
        command.insert(command.begin(), witness);
        return kordTest::runProcess({.arguments = command, .folder = temporary.path()});
    }
    [[nodiscard]] std::string heard() const { return kordTest::readFile(tape).value_or("(none)"); }
};

TEST_F(Witness, TellsHowAProgramEnded)
{
    struct Case {
        Texts command;
        int status;
        std::string output;
        std::string error;
    };
    const fs::path noProgram = temporary.path() / "file";
    std::ofstream(noProgram).close();
    const std::vector<Case> cases = {
        {{"printf", "%s\\n", "a b"}, 0, "a b\n", ""},
        {{"sh", "-c", "printf half; echo error >&2; exit 3"}, 3, "half", "error\n"},
        {{"sh", "-c", "echo before; kill -TERM $$"}, 128 + SIGTERM, "before\n", ""},
        {{"sh", "-c", "kill -KILL $$"}, 128 + SIGKILL, "", ""},
        {{"/no/such", "x"}, 127, "", "/no/such: No such file or directory\n"},
        {{noProgram}, 126, "", noProgram.string() + ": Permission denied\n"},
    };
    for (const Case& one : cases) {
        std::ofstream(tape).close();
        const kordTest::Outcome outcome = run(one.command);
        EXPECT_EQ(outcome.status, one.status) << one.command[0];
        EXPECT_EQ(outcome.output, one.output);
        EXPECT_EQ(outcome.error, one.error);
        const json expected = {{"program", one.command[0]},
                               {"arguments", Texts(one.command.begin() + 1, one.command.end())},
                               {"status", one.status},
                               {"output", one.output}};
        EXPECT_EQ(heard(), expected.dump() + '\n');
    }
}

TEST_F(Witness, PassesOnAnyBytes)
{
    const kordTest::Outcome outcome = run({"printf", "\\000\\377\\n\\n"});
    EXPECT_EQ(outcome.output, std::string("\0\xFF\n\n", 4));
    EXPECT_EQ(kordTest::parseJson(heard())["output"], std::string("\0\uFFFD\n\n", 6));
}

/// As waitpid tells it.
int endOf(Texts command)
{
    command.insert(command.begin(), witness);
    std::vector<char*> arguments;
    for (std::string& word : command)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = 0;
    int end = 0;
    EXPECT_EQ(posix_spawn(&child, witness.c_str(), nullptr, nullptr, arguments.data(), environ), 0);
    EXPECT_EQ(waitpid(child, &end, 0), child);
    return end;
}

TEST_F(Witness, EndsByTheSameSignal)
{
    const Texts killed = {"env", "--default-signal=TERM", "sh", "-c", "kill -TERM $$"};
    int end = endOf(killed);
    EXPECT_TRUE(WIFSIGNALED(end) && WTERMSIG(end) == SIGTERM) << end;
    std::signal(SIGTERM, SIG_IGN); // the witness ignores it as well, its program does not
    end = endOf(killed);
    std::signal(SIGTERM, SIG_DFL);
    EXPECT_TRUE(WIFSIGNALED(end) && WTERMSIG(end) == SIGTERM) << end;
    end = endOf({"sh", "-c", "kill -HUP $$"});
    EXPECT_TRUE(WIFSIGNALED(end) && WTERMSIG(end) == SIGHUP) << end;
    end = endOf({"sh", "-c", "exit 143"});
    EXPECT_TRUE(WIFEXITED(end) && WEXITSTATUS(end) == 143) << end;
}

/// Where the ends of children are thrown away, a program's end counts as a success; where standard input is
/// closed, the first free number for a file is 0.
TEST_F(Witness, BearsWhatItInherits)
{
    for (const char* script : {"trap '' CHLD; exec \"$@\"", "exec \"$@\" <&-"}) {
        std::ofstream(tape).close();
        const kordTest::Outcome outcome =
            kordTest::runProcess({.arguments = {"/bin/sh", "-c", script, "sh", witness, "printf", "x"},
                                  .folder = temporary.path(),
                                  .limit = std::chrono::seconds(10)});
        EXPECT_FALSE(outcome.timedOut);
        EXPECT_EQ(outcome.status, 0) << script << outcome.error;
        EXPECT_EQ(outcome.output, "x");
        EXPECT_EQ(kordTest::parseJson(heard()),
                  json({{"program", "printf"}, {"arguments", {"x"}}, {"status", 0}, {"output", "x"}}));
    }
}

TEST_F(Witness, NeedsAProgram)
{
    const kordTest::Outcome outcome = run({});
    EXPECT_EQ(outcome.status, 126);
    EXPECT_EQ(outcome.error, witness.string() + ": Invalid argument\n");
    EXPECT_EQ(heard(), "");
}

TEST_F(Witness, SaysThatATapeIsFull)
{
    setenv("KORD_CONSOLE_TAPE", "/dev/full", 1);
    const kordTest::Outcome outcome = run({"true"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "recorder: a call is missing from /dev/full: No space left on device\n");
    unsetenv("KORD_CONSOLE_TAPE");
    EXPECT_EQ(run({"true"}).error, "");
}

/// A console's client that lacks a call ends the program that makes it.
TEST(Recorder, SaysWhatTheClientLacks)
{
    const fs::path library = fs::path(KORD_BUILD_DIR) / "lib/libkord_recorder.so";
    void* const recorder = dlopen(library.c_str(), RTLD_NOW);
    ASSERT_NE(recorder, nullptr) << dlerror();
    using Start = int32_t (*)(const char*, uint32_t, uint32_t, void**);
    const auto start = reinterpret_cast<Start>(dlsym(recorder, "vale_start_session"));
    ASSERT_NE(start, nullptr);
    void* session = nullptr;
    EXPECT_EXIT(start(nullptr, 0, 1, &session), testing::KilledBySignal(SIGABRT),
                "recorder: the console's client has no vale_start_session\n");
}

} // namespace
