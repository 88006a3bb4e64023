// What commands show on a terminal and nowhere else: lines that are written over, colour, groups, drawn
// lines.

#include "consoleRun.h"
#include "kordRun.h"
#include "process.h"
#include "tempFolder.h"

#include <filesystem>
#include <fstream>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace
{

namespace fs = std::filesystem;
using toolTest::expected;
using toolTest::kord;
using toolTest::run;

/// What a terminal gets from a shell's command line, in which $kord is the program.
/// \param typescript a file that gets it at once
std::string shownBy(const std::string& commandLine, const std::string& columns = "80",
                    const std::string& typescript = "/dev/null")
{
    const std::string prepared = "stty cols " + columns + " -opost; kord='" + kord + "'; " + commandLine;
    const kordTest::Outcome outcome = kordTest::runProcess(
        {.arguments = {"/usr/bin/env", "-u", "NO_COLOR", "script", "-qefc", prepared, typescript},
         .folder = {}});
    EXPECT_EQ(outcome.error, "");
    return outcome.output;
}

void waitFor(const std::string& text, const std::string& file)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (kordTest::readFile(file).value_or("").find(text) == std::string::npos) {
        ASSERT_LT(std::chrono::steady_clock::now(), end) << text;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

class OnATerminal : public testing::Test
{
protected:
    [[nodiscard]] std::string write(const std::string& name, const std::string& text) const
    {
        std::ofstream(folder.path() / name) << text;
        return folder.path() / name;
    }

    /// The bundled facility's document with another level of so many drives.
    [[nodiscard]] std::string withNewLevel(size_t drives) const
    {
        const std::string old = ">T0A4<";
        std::string text = kordTest::readFile(facility).value();
        size_t at = 0;
        for (size_t i = 0; i < drives; ++i) {
            at = text.find(old, at);
            text.replace(at, old.size(), ">T0A5<");
        }
        return write(std::to_string(drives) + ".xml", text);
    }

    const std::string facility = expected / "facility.xml";
    const std::string small = expected / "small.xml";
    kordTest::TempFolder folder;
};

TEST_F(OnATerminal, MoreThanTwentyChangesAreGrouped)
{
    const auto lines = [&](size_t drives) {
        return kordTest::splitLines(
            shownBy("NO_COLOR=1 $kord diff '" + facility + "' '" + withNewLevel(drives) + '\''));
    };
    EXPECT_EQ(lines(20).size(), 21U);
    EXPECT_THAT(lines(21), testing::ElementsAre(
                               "changed   21 drives (rack 1, enclosures 1, 4): Firmware Level T0A4 -> T0A5",
                               "21 changes: 21 changed"));
    EXPECT_EQ(kordTest::splitLines(run({"diff", facility, withNewLevel(21)}).output).size(), 22U);
}

TEST_F(OnATerminal, ChangesAreColoured)
{
    const std::string files = " '" + facility + "' '" + withNewLevel(1) + '\'';
    const std::string colored = "\x1b[33mchanged\x1b[0m   drive ";
    const std::string plain = "changed   drive ";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"$kord diff" + files, colored},
        {"NO_COLOR= $kord diff" + files, colored},
        {"NO_COLOR=0 $kord diff" + files, plain},
        {"NO_COLOR=1 $kord diff --color auto" + files, plain},
        {"NO_COLOR=1 $kord diff --color always" + files, colored},
        {"$kord diff --color never" + files, plain},
        {"$kord diff -o -" + files, colored},
        {"$kord diff" + files + " | cat", plain},
        {"cd '" + folder.path().string() + "'; $kord diff -o out" + files + "; cat out", plain}};
    for (const auto& [command, start] : cases)
        EXPECT_THAT(shownBy(command), testing::StartsWith(start)) << command;
}

TEST_F(OnATerminal, ATreeHasTheLinesThatTheLocaleCanShow)
{
    const auto second = [&](const std::string& locale) {
        return kordTest::splitLines(shownBy("LC_ALL=" + locale + " $kord show '" + small + '\'')).at(2);
    };
    EXPECT_THAT(second("C"), testing::StartsWith("|-- CEC  "));
    EXPECT_THAT(second("C.UTF-8"), testing::StartsWith("├── CEC  "));
}

TEST_F(OnATerminal, FollowWritesOverItsLine)
{
    const std::string log = write("log", "112126 13:41:03 SRCV: 155968_quay1 07-15-05  M*S\n");
    const auto follow = [&](const std::string& quietAfter) {
        return std::async(std::launch::async, [=, this] {
            return shownBy("$kord follow --quiet-after " + quietAfter + " '" + log + '\'', "80",
                           folder.path() / ("quiet" + quietAfter));
        });
    };
    auto shown = follow("1");
    auto silence = follow("0");
    std::ofstream file(log, std::ios::app);
    waitFor("nothing new for 1 s", folder.path() / "quiet1");
    waitFor("nothing new for 1 s", folder.path() / "quiet0");
    file << "112126 13:41:04 0109:  " << std::endl;
    waitFor("system checks, 1 s", folder.path() / "quiet1");
    file << "112126 13:41:05 0108:  " << std::endl; // checks, too
    waitFor("system checks, 2 s", folder.path() / "quiet1");
    file << "112126 13:41:06 0010:  exit 3 ------------------" << std::endl;
    EXPECT_THAT(shown.get(), testing::MatchesRegex("\rM.S: start, 0 s\x1b\\[K"
                                                   "(\rM.S: start, 0 s; nothing new for [1-9] s\x1b\\[K)+"
                                                   "\rM.S: system checks, 1 s\x1b\\[K"
                                                   "\rM.S: system checks, 2 s\x1b\\[K"
                                                   "\rM.S: done, 3 s\x1b\\[K\n"));
    EXPECT_THAT(silence.get(), testing::StartsWith("\rM*S: start, 0 s; nothing new for 0 s\x1b[K"
                                                   "\rM*S: start, 0 s; nothing new for 1 s\x1b[K"));
}

/// A terminal that does not tell its width, or a foolish one, counts as one of 80 columns.
TEST_F(OnATerminal, ALineIsCutToItsWidth)
{
    const std::string file = write(std::string(100, 'x'), "no document\n");
    const auto width = [&](const std::string& columns) {
        const std::string shown =
            shownBy("cd '" + folder.path().string() + "'; $kord import fleet.db xxx*", columns);
        EXPECT_THAT(shown, testing::StartsWith("\r1: xxx")) << columns;
        const size_t end = shown.find("...\x1b[K\r\x1b[Kkord: xxx");
        return end == std::string::npos ? 0 : end + 3 - 1;
    };
    EXPECT_EQ(width("60"), 59U);
    EXPECT_EQ(width("11"), 10U);
    EXPECT_EQ(width("10"), 79U);
    EXPECT_EQ(width("0"), 79U);
}

TEST_F(OnATerminal, ImportTellsNothingBehindItsLine)
{
    fs::copy_file(small, folder.path() / "a.xml");
    const std::string bad = write("b.xml", "no document\n");
    const std::string text = kordTest::readFile(small).value();
    const std::string cut =
        write("c.xml", text.substr(0, text.find("<ResourceList displayName=\"Partitions\"")));
    const std::string gone = "\x1b[K\r\x1b[K";
    const std::string lacks = "kord: c.xml: the document is incomplete: the ";
    EXPECT_EQ(
        shownBy("cd '" + folder.path().string() + "'; $kord import fleet.db a.xml a.xml no.xml b.xml c.xml"),
        "\r1: a.xml" + gone + "\r2: a.xml" + gone + "\r3: no.xml" + gone +
            "kord: no.xml: No such file or directory\n" + "\r3: b.xml" + gone +
            "kord: b.xml:1: \"no document\" stands where \"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\" "
            "should\n" +
            "\r3: c.xml" + gone + lacks + "partitions\n" + lacks +
            "end\n2 documents imported, 1 there already\n");
    EXPECT_EQ(run({"import", folder.path() / "fleet.db", folder.path() / "a.xml"}).error, "");
}

} // namespace
