// kord-console: what a program finds on the console, what passes through, and what is left behind.

#include "consoleRun.h"
#include "image/image.h"
#include "process.h"
#include "tempFolder.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using kordTest::Outcome;
using kordTest::runProcess;

const fs::path buildFolder = KORD_BUILD_DIR;
const std::string console = buildFolder / "bin/kord-console";
const std::string smallFacility = fs::path(KORD_SOURCE_DIR) / "console/facilities/small.json";

Outcome inShell(const std::string& script, const fs::path& folder = {})
{
    return runProcess({.arguments = {"/bin/sh", "-c", script}, .folder = folder});
}

/// The start of a shell command whose mounts are its own.
const std::string inNamespace = geteuid() == 0 ? "unshare -m " : "unshare -Urm ";

std::string quote(const std::string& text)
{
    return '\'' + text + '\'';
}

std::string textOf(const fs::path& file)
{
    return kordTest::readFile(file).value_or("(no file)");
}

void write(const fs::path& file, const std::string& text)
{
    std::ofstream(file) << text;
}

class Launcher : public testing::Test
{
protected:
    kordTest::TempFolder temporary;
    fs::path root = temporary.path() / "the root";
    std::string facility = smallFacility;

    [[nodiscard]] std::vector<std::string> command(const std::vector<std::string>& program) const
    {
        std::vector<std::string> all = {console, "run", "--facility", facility, "--root", root, "--"};
        all.insert(all.end(), program.begin(), program.end());
        return all;
    }
    [[nodiscard]] Outcome run(const std::vector<std::string>& program) const
    {
        return runProcess({.arguments = command(program), .folder = temporary.path()});
    }
    /// Runs a script on the console.
    [[nodiscard]] Outcome runScript(const std::string& script) const
    {
        return run({"/bin/sh", "-c", script});
    }
    /// The start of a shell command that runs a program.
    [[nodiscard]] std::string runText() const
    {
        return quote(console) + " run --facility " + quote(facility) + " --root " + quote(root) + " -- ";
    }
    void useFacility(const std::string& text)
    {
        facility = temporary.path() / "facility.json";
        write(facility, text);
    }
};

/// One line on standard error that starts as it should, and nothing else.
void expectRefusal(const Outcome& outcome, const std::string& part)
{
    EXPECT_EQ(outcome.status, 125);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.error.starts_with("kord-console: ")) << outcome.error;
    EXPECT_EQ(outcome.error.find('\n'), outcome.error.size() - 1) << outcome.error;
    EXPECT_NE(outcome.error.find(part), std::string::npos) << outcome.error;
}

TEST_F(Launcher, LaysOutTheConsole)
{
    ASSERT_EQ(run({"true"}).status, 0);
    for (const char* folder :
         {"opt/brisk/bin", "opt/tarnquay/bin", "var/adm/stockmere/VPD", "var/tarnquay/log", "var/brisk/log"})
        EXPECT_TRUE(fs::is_directory(root / folder)) << folder;
    for (const char* program : {"opt/brisk/bin/qmstat", "opt/brisk/bin/qconvpd", "opt/tarnquay/bin/mmquaycmd",
                                "opt/tarnquay/bin/pmProblemEventPoster"})
        EXPECT_EQ(access((root / program).c_str(), X_OK), 0) << program;
    EXPECT_EQ(textOf(root / "journal.jsonl"), "");
}

TEST_F(Launcher, LeavesWhatLiesThere)
{
    fs::create_directories(root / "var/tarnquay/log");
    write(root / "var/tarnquay/log/kord.7ABCD12.log", "old\n");
    ASSERT_EQ(runScript("echo new >> /var/tarnquay/log/kord.7ABCD12.log").status, 0);
    EXPECT_EQ(textOf(root / "var/tarnquay/log/kord.7ABCD12.log"), "old\nnew\n");
}

TEST_F(Launcher, BringsTheFoldersToTheirPlaces)
{
    const Outcome outcome =
        runScript("for f in /opt/brisk/bin /opt/tarnquay/bin /var/adm/stockmere/VPD /var/tarnquay/log "
                  "/var/brisk/log; do echo here > $f/mark && echo $f; done");
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    for (const char* folder :
         {"opt/brisk/bin", "opt/tarnquay/bin", "var/adm/stockmere/VPD", "var/tarnquay/log", "var/brisk/log"})
        EXPECT_EQ(textOf(root / folder / "mark"), "here\n");
}

/// What one folder lacks of the console's is made in one mirror of it.
TEST_F(Launcher, MirrorsAFolderOnce)
{
    if (!kordTest::hasNamespaces()) GTEST_SKIP() << "there are links instead of mirrors";
    const Outcome outcome = run({"cat", "/proc/self/mounts"});
    const auto mirrors = [&](const std::string& folder) {
        const std::vector<std::string> lines = kordTest::splitLines(outcome.output);
        return std::ranges::count_if(lines, [&](const std::string& line) {
            return line.starts_with("kord-console " + folder + " tmpfs ");
        });
    };
    EXPECT_EQ(mirrors("/opt"), fs::exists("/opt/brisk") && fs::exists("/opt/tarnquay") ? 0 : 1);
    EXPECT_EQ(mirrors("/var"),
              fs::exists("/var/brisk") && fs::exists("/var/tarnquay") && fs::exists("/var/adm") ? 0 : 1);
}

TEST_F(Launcher, MirrorsAreWritableWhereTheFoldersAre)
{
    if (!kordTest::hasNamespaces()) GTEST_SKIP() << "there are links instead of mirrors";
    const std::string script = "for f in /opt /var; do test -w $f && echo $f; done; true";
    const Outcome inside = runScript(script);
    ASSERT_EQ(inside.status, 0) << inside.error;
    EXPECT_EQ(inside.output, inShell(script).output);
}

/// On a machine that lacks /opt: a stand-in root with everything else mounted into it.
TEST_F(Launcher, SaysWhichFolderTheMachineLacks)
{
    if (!kordTest::hasNamespaces()) GTEST_SKIP() << "there are links instead";
    const std::string machine = quote(temporary.path() / "machine");
    const Outcome outcome =
        inShell("mkdir " + machine + "; " + inNamespace + "sh -c 'mount -t tmpfs none " + machine + "; cd " +
                machine +
                "; for d in /*; do"
                " if [ $d = /opt ]; then continue; elif [ -L $d ]; then cp -P $d .; "
                "elif [ -d $d ]; then mkdir .$d; mount --rbind $d .$d; fi; done; "
                "exec chroot . \"$@\"' sh " +
                quote(console) + " run --facility " + quote(facility) + " --root /console -- true");
    expectRefusal(outcome, "/opt is missing: make this folder first");
}

/// Whoever may change a folder on the way to the root could put another one in its place.
TEST_F(Launcher, TakesNoWayThroughAStrangersFolder)
{
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
    const fs::path given = temporary.path() / "given";
    fs::create_directory(given);
    ASSERT_EQ(chown(given.c_str(), 1, 1), 0);
    root = given / "root";
    expectRefusal(run({"true"}), " belongs to ");
}

TEST_F(Launcher, OpensTheWayToItsFoldersToAll)
{
    if (!kordTest::hasNamespaces()) GTEST_SKIP() << "the folders are the machine's";
    if (fs::exists("/opt/brisk")) GTEST_SKIP() << "it is the machine's";
    const Outcome outcome = inShell("umask 077; " + runText() + "stat -c %a /opt/brisk");
    EXPECT_EQ(outcome.output, "755\n") << outcome.error;
}

TEST_F(Launcher, LeavesTheMachineAsItIs)
{
    const std::string listing = "ls -A /opt /var; ls /var/lib";
    const Outcome before = inShell(listing);
    const Outcome inside = runScript(
        "ls -A /opt /var; ls /var/lib; test -w /var/tmp && echo x > /var/tmp/kord-$$ && rm /var/tmp/kord-$$");
    EXPECT_EQ(inside.status, 0) << inside.error;
    for (const std::string& line : kordTest::splitLines(before.output))
        EXPECT_NE(inside.output.find(line), std::string::npos) << line;
    EXPECT_EQ(inShell(listing).output, before.output);
}

TEST_F(Launcher, RunsTheConsolesPrograms)
{
    const Outcome outcome = runScript(
        "/opt/brisk/bin/qmstat -r sys -m '9999-B2C*7ABCD12' -F state; whoami; /opt/brisk/bin/qconvpd -v");
    EXPECT_EQ(outcome.output, "Operating\nroot\n*TM 4821-K7Q\n*SE 10ABCDE\n");
    const auto journal = kordTest::readJournal(root);
    ASSERT_EQ(journal.size(), 3U);
    EXPECT_EQ(journal[0]["program"], "/opt/brisk/bin/qmstat");
    EXPECT_EQ(journal[1]["program"], "whoami");
}

TEST_F(Launcher, UserOverridesTheFacilitys)
{
    const std::string start =
        quote(console) + " run --facility " + quote(facility) + " --root " + quote(root);
    EXPECT_EQ(inShell(start + " --user anna -- whoami").output, "anna\n");
    EXPECT_EQ(inShell(console::image::userVariable + std::string("=left ") + start + " -- whoami").output,
              "root\n");
}

TEST_F(Launcher, SetsTheEnvironment)
{
    const Outcome outcome = runScript("echo \"$KORD_CONSOLE_ROOT\"; command -v whoami; echo "
                                      "\"$LD_LIBRARY_PATH\"; cd \"$KORD_CONSOLE_ROOT\" && ls journal.jsonl");
    const auto found = kordTest::splitLines(outcome.output);
    ASSERT_EQ(found.size(), 4U) << outcome.output << outcome.error;
    EXPECT_EQ(found[0], fs::canonical(root).string());
    EXPECT_EQ(fs::canonical(found[1]).filename(), "whoami");
    EXPECT_TRUE(fs::exists(fs::path(found[2].substr(0, found[2].find(':'))) / "libvale_mc.so")) << found[2];
}

TEST_F(Launcher, PassesStatusesThrough)
{
    for (const int status : {0, 1, 3, 125, 126, 255})
        EXPECT_EQ(runScript("exit " + std::to_string(status)).status, status);
    EXPECT_EQ(runScript("kill -KILL $$").status, 128 + 9);
    EXPECT_EQ(runScript("kill -ABRT $$").status, 128 + 6);
}

TEST_F(Launcher, PassesArgumentsAndStreamsThrough)
{
    const Outcome outcome =
        inShell("printf 'a\\n b' | " + runText() +
                "/bin/sh -c 'cat; printf \"[%s]\" \"$@\" >&2' sh '' '--' '[a,b]' --help 'x y'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "a\n b");
    EXPECT_EQ(outcome.error, "[][--][[a,b]][--help][x y]");
}

TEST_F(Launcher, StaysInTheWorkingFolder)
{
    const fs::path folder = fs::canonical(temporary.path());
    EXPECT_EQ(runProcess({.arguments = command({"/bin/pwd"}), .folder = folder}).output,
              folder.string() + '\n');
    const Outcome inVar =
        runProcess({.arguments = command({"/bin/sh", "-c", "/bin/pwd; ls"}), .folder = "/var/lib"});
    EXPECT_EQ(inVar.output, "/var/lib\n" + inShell("ls", "/var/lib").output);
}

TEST_F(Launcher, StaysInAWorkingFolderThatIsGone)
{
    const Outcome outcome = inShell(
        "mkdir gone; cd gone; rmdir ../gone; " + runText() + "/bin/sh -c 'echo ran'", temporary.path());
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, "ran\n");
}

TEST_F(Launcher, TakesARelativeRoot)
{
    root = "in/here";
    EXPECT_EQ(runScript("echo $KORD_CONSOLE_ROOT").output,
              (fs::canonical(temporary.path()) / "in/here\n").string());
}

TEST_F(Launcher, TakesARootBelowAFolderThatItStandsInFor)
{
    const std::string made = kordTest::splitLines(inShell("mktemp -d /var/tmp/kord-XXXXXX").output).at(0);
    root = fs::path(made) / "root";
    const Outcome outcome =
        runScript("echo x > /var/brisk/log/x; ls $KORD_CONSOLE_ROOT/var/brisk/log; whoami");
    EXPECT_EQ(outcome.output, "x\nroot\n") << outcome.error;
    EXPECT_EQ(textOf(root / "var/brisk/log/x"), "x\n");
    fs::remove_all(made);
}

TEST_F(Launcher, FindsProgramsByTheirBareName)
{
    EXPECT_EQ(run({"kord-console", "check", smallFacility}).status, 0);
    EXPECT_EQ(run({"sh", "-c", "exit 4"}).status, 4);
    write(temporary.path() / "own", "#!/bin/sh\nexit 6\n");
    fs::permissions(temporary.path() / "own", fs::perms::owner_all);
    EXPECT_EQ(run({"./own"}).status, 6);
}

/// What a facility is compiled to is kept beside a root, unless the file may change without its times showing
/// it.
TEST_F(Launcher, CompilesAFacilityAgainWhereItMustBe)
{
    const fs::path image = root / ".console/image";
    const fs::path key = root / ".console/image.key";
    const auto runsAs = [&](const std::string& user) { EXPECT_EQ(run({"whoami"}).output, user + '\n'); };
    runsAs("root"); // of the bundled facility, which is older than a moment
    const std::string first = textOf(key);
    const auto made = fs::last_write_time(image);
    runsAs("root");
    EXPECT_EQ(fs::last_write_time(image), made);
    EXPECT_EQ(textOf(key), first);

    const std::string whole = textOf(image);
    std::string damaged = whole;
    damaged.back() = static_cast<char>(damaged.back() ^ 1);
    for (const std::string& other : {damaged, whole.substr(0, 9), std::string()}) {
        write(image, other);
        runsAs("root");
        EXPECT_TRUE(textOf(image) == whole);
    }
    for (const std::string& other : {std::string(), first.substr(0, first.size() - 2), first + "x"}) {
        write(key, other);
        runsAs("root");
        EXPECT_EQ(textOf(key), first);
    }

    const auto start = std::chrono::steady_clock::now();
    useFacility(R"({"console": {"user": "one"}})");
    runsAs("one");
    const bool inAMoment = std::chrono::steady_clock::now() - start < std::chrono::seconds(1);
    EXPECT_TRUE(!fs::exists(key) || !inAMoment);
    useFacility(R"({"console": {"user": "two"}})");
    runsAs("two");
}

TEST_F(Launcher, StartsTheJournalAfresh)
{
    ASSERT_EQ(run({"whoami"}).status, 0);
    ASSERT_EQ(runScript("whoami; whoami").status, 0);
    const auto journal = kordTest::readJournal(root);
    ASSERT_EQ(journal.size(), 2U);
    EXPECT_EQ(journal[0]["seq"], 1);
    EXPECT_EQ(fs::status(root / "journal.jsonl").permissions(), fs::perms{0644});
}

TEST_F(Launcher, CountsFaultRulesAfresh)
{
    useFacility(R"({"console": {"user": "root"}, "faults": [{"program": "whoami", "nth": 1, "status": 9}]})");
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(runScript("whoami; echo $?; whoami").output, "9\nroot\n");
}

TEST_F(Launcher, NoticesAnotherFacility)
{
    useFacility(R"({"console": {"user": "anna"}})");
    EXPECT_EQ(run({"whoami"}).output, "anna\n");
    useFacility(R"({"console": {"user": "otto"}})"); // as long, and within the same moment
    EXPECT_EQ(run({"whoami"}).output, "otto\n");
}

TEST_F(Launcher, KeepsTheImageOfAnUnchangedFacility)
{
    useFacility(R"({"console": {"user": "anna"}})");
    inShell("sleep 1.1"); // only then does a change show for sure
    EXPECT_EQ(run({"whoami"}).output, "anna\n");
    const auto made = fs::last_write_time(root / ".console/image");
    EXPECT_EQ(run({"whoami"}).output, "anna\n");
    EXPECT_EQ(fs::last_write_time(root / ".console/image"), made);
    useFacility(R"({"console": {"user": "otto"}})");
    EXPECT_EQ(run({"whoami"}).output, "otto\n");
}

TEST_F(Launcher, TakesAFacilityFromAPipe)
{
    const std::string start =
        quote(console) + " run --facility /dev/stdin --root " + quote(root) + " -- whoami";
    EXPECT_EQ(inShell("echo '{\"console\": {\"user\": \"anna\"}}' | " + start).output, "anna\n");
    EXPECT_EQ(inShell("echo '{\"console\": {\"user\": \"otto\"}}' | " + start).output, "otto\n");
}

TEST_F(Launcher, RunsAtOnceDoNotSeeEachOther)
{
    constexpr size_t runs = 8;
    std::vector<std::future<std::string>> outcomes;
    for (size_t i = 0; i < runs; ++i) {
        outcomes.push_back(std::async(std::launch::async, [this, i] {
            std::vector<std::string> arguments = command(
                {"/bin/sh", "-c",
                 "echo " + std::to_string(i) + " > /var/brisk/log/mine; sleep 0.2; cat /var/brisk/log/*"});
            arguments[5] = temporary.path() / std::to_string(i);
            return runProcess({.arguments = arguments, .folder = temporary.path()}).output;
        }));
    }
    for (size_t i = 0; i < runs; ++i)
        EXPECT_EQ(outcomes[i].get(), std::to_string(i) + '\n');
}

/// A shell starts its background jobs with SIGINT ignored; the programs of these tests want it back.
constexpr const char* withSignals = "/usr/bin/env --default-signal=INT ";

TEST_F(Launcher, ForwardsSignals)
{
    for (const std::string name : {"INT", "TERM"}) {
        const std::string program =
            "trap \"echo got; exit 7\" " + name + "; : > ready; while :; do sleep 0.02; done";
        const Outcome outcome = inShell("rm -f ready; " + runText() + withSignals + "/bin/sh -c '" + program +
                                            "' & p=$!; until [ -f ready ]; do sleep 0.02; done; kill -" +
                                            name + " $p; wait $p; echo $?",
                                        temporary.path());
        EXPECT_EQ(outcome.output, "got\n7\n") << name << outcome.error;
    }
}

TEST_F(Launcher, RefusesABadCommandLine)
{
    const std::vector<std::vector<std::string>> lines = {
        {"run"},
        {"run", "--facility", facility, "--root", root},
        {"run", "--facility", facility, "--root", root, "--"},
        {"run", "--facility", facility, "--root", root, "true"},
        {"run", "--facility", facility, "--", "true"},
        {"run", "--root", root, "--", "true"},
        {"run", "--facility", facility, "--root", root, "--verbose", "--", "true"},
    };
    for (std::vector<std::string> line : lines) {
        line.insert(line.begin(), console);
        expectRefusal(runProcess({.arguments = line, .folder = temporary.path()}), "");
    }
}

TEST_F(Launcher, RefusesWhatCannotBeRun)
{
    expectRefusal(run({"no-such-program"}), "no-such-program");
    expectRefusal(run({"/no/such/program"}), "/no/such/program");
    expectRefusal(run({temporary.path()}), "ermission denied");
}

TEST_F(Launcher, RefusesAFacilityThatCannotBeRead)
{
    facility = temporary.path() / "none.json";
    expectRefusal(run({"true"}), facility);
    facility = temporary.path();
    expectRefusal(run({"true"}), "directory");
}

TEST_F(Launcher, RefusesAMalformedFacility)
{
    useFacility(R"({"console": {"user": 1}})");
    expectRefusal(run({"true"}), facility + ": /console/user: ");
    useFacility(R"({"console": {"user": 1, "vpd": 2, "x": 3}})");
    expectRefusal(run({"true"}), "and 2 more");
    EXPECT_FALSE(fs::exists(root / ".console/image"));
}

TEST_F(Launcher, RefusesARootThatCannotBeMade)
{
    write(temporary.path() / "file", "");
    root = temporary.path() / "file/root";
    expectRefusal(run({"true"}), "file");
    root = "/opt/brisk/bin/root";
    expectRefusal(run({"true"}), "/opt/brisk/bin");
    EXPECT_FALSE(fs::exists(root));
}

TEST_F(Launcher, RefusesARootThatPathCannotName)
{
    root = temporary.path() / "a:b";
    expectRefusal(run({"whoami"}), "a:b holds a colon");
    EXPECT_FALSE(fs::exists(root));
    fs::create_directory(root);
    fs::create_directory_symlink(root, temporary.path() / "link");
    root = temporary.path() / "link";
    expectRefusal(run({"whoami"}), "a:b holds a colon");
}

TEST_F(Launcher, ARefusedRunLeavesNoJournalOfTheRunBefore)
{
    ASSERT_EQ(run({"whoami"}).status, 0);
    ASSERT_EQ(kordTest::readJournal(root).size(), 1U);
    useFacility(R"({"console": {"user": 1}})");
    ASSERT_EQ(run({"whoami"}).status, 125);
    EXPECT_EQ(textOf(root / "journal.jsonl"), "");
}

TEST_F(Launcher, FollowsItsUsersOwnLinks)
{
    const fs::path own = temporary.path() / "own";
    fs::create_directory(own);
    fs::create_symlink(own, root);
    fs::create_directories(root / "var/adm/stockmere");
    fs::create_directory(temporary.path() / "documents");
    fs::create_directory_symlink(temporary.path() / "documents", root / "var/adm/stockmere/VPD");
    ASSERT_EQ(runScript("echo x > /var/adm/stockmere/VPD/x").status, 0);
    EXPECT_EQ(textOf(temporary.path() / "documents/x"), "x\n");
}

TEST_F(Launcher, JournalsNothingThroughALink)
{
    write(temporary.path() / "other", "other");
    const Outcome outcome =
        runScript("rm \"$KORD_CONSOLE_ROOT/journal.jsonl\"; ln -s " + quote(temporary.path() / "other") +
                  " \"$KORD_CONSOLE_ROOT/journal.jsonl\"; whoami");
    EXPECT_NE(outcome.error.find("cannot use"), std::string::npos) << outcome.error;
    EXPECT_EQ(textOf(temporary.path() / "other"), "other");
}

/// Without namespaces, tried where nothing on the machine can be hurt: in a namespace with an empty /opt and
/// /var and whatever the test has put there.
class LauncherWithoutNamespaces : public Launcher
{
protected:
    static constexpr const char* listing = "find /opt /var -mindepth 1";

    void SetUp() override
    {
        if (!kordTest::hasNamespaces()) GTEST_SKIP() << "this machine gives no namespace to try it in";
    }
    [[nodiscard]] Outcome inOwnNamespace(const std::string& script) const
    {
        const std::string prepared = "mount -t tmpfs none /opt && mount -t tmpfs none /var && export "
                                     "KORD_CONSOLE_NO_NAMESPACES=1 && { " +
                                     script + "\n}";
        write(temporary.path() / "script", prepared);
        return inShell(inNamespace + "/bin/sh ./script", temporary.path());
    }
};

TEST_F(LauncherWithoutNamespaces, LinksTheFoldersForTheRun)
{
    const Outcome outcome = inOwnNamespace(
        runText() +
        "/bin/sh -c 'readlink /opt/brisk/bin; echo x > /var/adm/stockmere/VPD/x; whoami; exit 3'; echo $?; " +
        listing);
    EXPECT_EQ(outcome.output, (fs::canonical(root) / "opt/brisk/bin").string() + "\nroot\n3\n")
        << outcome.error;
    EXPECT_EQ(textOf(root / "var/adm/stockmere/VPD/x"), "x\n");
}

TEST_F(LauncherWithoutNamespaces, KeepsFoldersThatWereThereOrAreInUse)
{
    const Outcome outcome =
        inOwnNamespace("mkdir /opt/brisk; " + runText() + "/bin/sh -c ': > /var/tarnquay/kept'; " + listing);
    EXPECT_EQ(outcome.output, "/opt/brisk\n/var/tarnquay\n/var/tarnquay/kept\n") << outcome.error;
}

TEST_F(LauncherWithoutNamespaces, RefusesWhereSomethingElseLies)
{
    for (const char* obstacle : {"mkdir -p /var/brisk/log", "mkdir /var/brisk; : > /var/brisk/log",
                                 "mkdir /var/brisk; ln -s /nowhere /var/brisk/log"}) {
        const Outcome outcome = inOwnNamespace(std::string(obstacle) + "; " + runText() + "true; s=$?; " +
                                               listing + " > listing; exit $s");
        EXPECT_EQ(textOf(temporary.path() / "listing"), "/var/brisk\n/var/brisk/log\n");
        expectRefusal(outcome, "/var/brisk/log");
    }
}

TEST_F(LauncherWithoutNamespaces, TidiesUpAfterSignals)
{
    for (const std::string name : {"INT", "TERM"}) {
        const Outcome outcome = inOwnNamespace("rm -f ready; " + runText() + withSignals +
                                               "/bin/sh -c ': > ready; exec sleep 20' & p=$!; "
                                               "until [ -f ready ]; do sleep 0.02; done; kill -" +
                                               name + " $p; wait $p; echo $?; " + listing);
        EXPECT_EQ(outcome.output, name == "INT" ? "130\n" : "143\n") << outcome.error;
    }
}

TEST_F(LauncherWithoutNamespaces, RunsOneAtATime)
{
    const std::string program = "/bin/sh -c 'mkdir /opt/alone && sleep 0.1 && rmdir /opt/alone'";
    const std::string other =
        quote(console) + " run --facility " + quote(facility) + " --root other -- " + program;
    const Outcome outcome =
        inOwnNamespace(runText() + program + " & p=$!; " + other + "; echo $?; wait $p; echo $?; " + listing);
    EXPECT_EQ(outcome.output, "0\n0\n") << outcome.error;
}

TEST_F(LauncherWithoutNamespaces, ARunThatWaitsLeavesTheJournalOfTheOneBefore)
{
    const std::string held =
        R"(/bin/sh -c 'whoami; : > ready; sleep 0.5; cp "$KORD_CONSOLE_ROOT/journal.jsonl" kept')";
    const Outcome outcome =
        inOwnNamespace(runText() + held + " & p=$!; until [ -f ready ]; do sleep 0.02; done; " + runText() +
                       "true; echo $?; wait $p; echo $?");
    EXPECT_EQ(outcome.output, "root\n0\n0\n") << outcome.error;
    EXPECT_NE(textOf(temporary.path() / "kept").find("whoami"), std::string::npos);
    EXPECT_EQ(textOf(root / "journal.jsonl"), "");
}

TEST_F(LauncherWithoutNamespaces, RefusesARunWithinARun)
{
    write(temporary.path() / "inner",
          quote(console) + " run --facility " + quote(facility) + " --root inside -- true");
    expectRefusal(inOwnNamespace("timeout 20 " + runText() + "/bin/sh ./inner"), "within a run");
}

TEST_F(Launcher, NeedsRootWhereThereAreNoNamespaces)
{
    if (geteuid() == 0) GTEST_SKIP() << "root can do without";
    expectRefusal(inShell("KORD_CONSOLE_NO_NAMESPACES=1 " + runText() + "true"), "run as root");
}

TEST(Check, IsSilentOnAGoodFile)
{
    const Outcome outcome = runProcess({.arguments = {console, "check", smallFacility}, .folder = {}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output + outcome.error, "");
}

TEST_F(Launcher, CheckPrintsALineForEveryFault)
{
    useFacility(R"({"console": {"user": 1}, "systems": {"a": "b"}, "faults": [{}]})");
    const Outcome outcome = runProcess({.arguments = {console, "check", facility}, .folder = {}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "/console/user: must be a text or null\n/faults/0: has no effect\n");
    useFacility(R"({"faults": [{}, {"delay": 1}, {"fails": {"code": 1}, "answer": []}]})");
    const Outcome rules = runProcess({.arguments = {console, "check", facility}, .folder = {}});
    EXPECT_EQ(rules.output, "/faults/0: has no effect\n/faults/2: has more than one effect: fails, answer\n");
}

TEST(MakeCommand, WritesTheSameBytesThatCheckAccepts)
{
    const std::string make = quote(console) + " make --images 1 --drives 3 --seed 9";
    const Outcome outcome = inShell(make);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output == inShell(make).output);
    EXPECT_EQ(inShell(make + " | " + quote(console) + " check /dev/stdin").status, 0);
}

TEST(MakeCommand, RefusesSenselessCounts)
{
    for (const char* arguments : {"--drives -1", "--drives x", "--drives 1.5", "--drives ''", "--images 0",
                                  "--images 9", "--seed -1", "--shelves 2", "4"}) {
        expectRefusal(inShell(quote(console) + " make " + arguments), "");
    }
}

TEST(MakeCommand, SaysWhenItsOutputIsLost)
{
    expectRefusal(inShell(quote(console) + " make > /dev/full"), "standard output");
}

} // namespace
