// The console's programs: what they print, the status they end with, and their lines in the journal.

#include "client_run.h"
#include "parseJson.h"
#include "process.h"

#include <gtest/gtest.h>

using namespace clientTest;
using kordTest::Outcome;

namespace
{

constexpr const char* facility = R"({
    "console": {"user": "root", "vpd": ["*TM 4821-K7Q", "*SE 10ABCDE"]},
    "systems": {"9999-B2C*7ABCD12": "Operating", "9999-B2C*7ABCD34": ""},
    "faults": [)";

class ConsolePrograms : public testing::Test
{
protected:
    void use(const std::string& text)
    {
        folder = std::make_unique<ConsoleFolder>(text);
        setenv(console::image::rootVariable, folder->path().c_str(), 1);
    }
    void useRules(const std::string& rules) { use(std::string(facility).append(rules).append("]}")); }
    void TearDown() override { unsetenv(console::image::rootVariable); }

    /// Starts a program by its bare name with these arguments.
    static Outcome start(std::vector<std::string> command)
    {
        command[0] = libexec() / command[0];
        return kordTest::runProcess({.arguments = command, .folder = {}});
    }
    static std::filesystem::path libexec()
    {
        return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "libexec";
    }
    [[nodiscard]] Json lastLine() const { return withoutNumber(folder->journal().back()); }

    std::unique_ptr<ConsoleFolder> folder;
};

TEST_F(ConsolePrograms, QmstatPrintsTheStateOfASystem)
{
    useRules("");
    const Outcome known = start({"qmstat", "-r", "sys", "-m", "9999-B2C*7ABCD12", "-F", "state"});
    EXPECT_EQ(known.status, 0);
    EXPECT_EQ(known.output, "Operating\n");
    EXPECT_EQ(lastLine(), kordTest::parseJson(R"({"program": "/opt/brisk/bin/qmstat",
        "arguments": ["-r", "sys", "-m", "9999-B2C*7ABCD12", "-F", "state"], "status": 0})"));

    const Outcome unknown = start({"qmstat", "-r", "sys", "-m", "9999-B2C*7", "-F", "state"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.output, "");
    EXPECT_NE(unknown.error.find("9999-B2C*7"), std::string::npos);
    EXPECT_EQ(lastLine()["status"], 1);
}

TEST_F(ConsolePrograms, WithoutStandardInputTellTheJournal)
{
    useRules("");
    const Outcome outcome = kordTest::runProcess(
        {.arguments = {"/bin/sh", "-c", "exec \"$0\" <&-", libexec() / "whoami"}, .folder = {}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, start({"whoami"}).output);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(folder->journal().size(), 2U);
}

TEST_F(ConsolePrograms, QconvpdPrintsTheVpdLines)
{
    useRules("");
    EXPECT_EQ(start({"qconvpd", "-v"}).output, "*TM 4821-K7Q\n*SE 10ABCDE\n");
    EXPECT_EQ(lastLine(), kordTest::parseJson(
                              R"({"program": "/opt/brisk/bin/qconvpd", "arguments": ["-v"], "status": 0})"));
    for (const auto& arguments :
         {std::vector<std::string>{"qconvpd"}, {"qconvpd", "-x"}, {"qconvpd", "-v", "-v"}}) {
        const Outcome outcome = start(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.error, "qconvpd: usage: qconvpd -v\n");
    }
    use(R"({"console": {"vpd": []}})");
    EXPECT_EQ(start({"qconvpd", "-v"}).status, 0) << "no lines are not the same as none to be had";
    use("{}");
    EXPECT_EQ(start({"qconvpd", "-v"}).status, 1);
}

TEST_F(ConsolePrograms, WhoamiPrintsTheUser)
{
    useRules("");
    EXPECT_EQ(start({"whoami"}).output, "root\n");
    EXPECT_EQ(lastLine(), kordTest::parseJson(R"({"program": "whoami", "arguments": [], "status": 0})"));
    setenv(console::image::userVariable, "operator", 1);
    EXPECT_EQ(start({"whoami"}).output, "operator\n");
    unsetenv(console::image::userVariable);

    use(R"({"console": {"user": null}})");
    const Outcome nobody = start({"whoami"});
    EXPECT_EQ(nobody.status, 1);
    EXPECT_EQ(nobody.output + nobody.error, "");
}

TEST_F(ConsolePrograms, MmquaycmdBecomesItsArguments)
{
    useRules("");
    const Outcome outcome = start({"mmquaycmd", libexec() / "qmstat", "-x"});
    EXPECT_EQ(outcome.status, 1);
    const auto journal = folder->journal();
    ASSERT_EQ(journal.size(), 2U);
    EXPECT_EQ(journal[0]["program"], "/opt/tarnquay/bin/mmquaycmd");
    EXPECT_EQ(journal[0]["arguments"], Json::array({libexec() / "qmstat", "-x"}));
    EXPECT_EQ(journal[0]["status"], 0);
    EXPECT_EQ(journal[1]["program"], "/opt/brisk/bin/qmstat");
    EXPECT_EQ(journal[1]["status"], 1);

    EXPECT_EQ(start({"mmquaycmd", "sh", "-c", "echo out; exit 7"}).status, 7) << "found in PATH";
    EXPECT_EQ(start({"mmquaycmd", "/no/such/program"}).status, 127);
    EXPECT_EQ(start({"mmquaycmd", "/dev/null"}).status, 126);
}

TEST_F(ConsolePrograms, PmProblemEventPosterOnlyTellsTheJournal)
{
    useRules("");
    const Outcome outcome = start({"pmProblemEventPoster", "-f", "a b", "", "-X", "\"\xFF\n"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output + outcome.error, "");
    EXPECT_EQ(lastLine(), (Json{{"program", "/opt/tarnquay/bin/pmProblemEventPoster"},
                                {"arguments", {"-f", "a b", "", "-X", "\"\xEF\xBF\xBD\n"}},
                                {"status", 0}}));
}

TEST_F(ConsolePrograms, FaultRulesAnswerInTheirPlace)
{
    useRules(R"({"program": "qmstat", "nth": 2, "status": 5, "output": "no line end"},
                {"program": "mmquaycmd", "status": 9, "output": ""},
                {"program": "qconvpd", "delay": 30},
                {"call": "program", "status": 3, "output": "any\n"})");
    EXPECT_EQ(start({"qmstat", "-x"}).output, "any\n");
    const Outcome second = start({"qmstat", "-r", "sys", "-m", "9999-B2C*7ABCD12", "-F", "state"});
    EXPECT_EQ(second.status, 5);
    EXPECT_EQ(second.output, "no line end");
    EXPECT_EQ(lastLine()["status"], 5);

    EXPECT_EQ(start({"mmquaycmd", "sh", "-c", "exit 7"}).status, 9);
    EXPECT_EQ(lastLine()["status"], 9);
    EXPECT_EQ(start({"qconvpd", "-v"}).output, "*TM 4821-K7Q\n*SE 10ABCDE\n");
    EXPECT_EQ(start({"whoami"}).status, 3);
}

TEST_F(ConsolePrograms, OutsideARunSayHowToStartOne)
{
    const Outcome outcome = start({"whoami"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("kord-console run"), std::string::npos);
}

TEST_F(ConsolePrograms, UnderAnotherNameAreNone)
{
    useRules("");
    const std::filesystem::path other = folder->path() / "other";
    std::filesystem::create_symlink(libexec() / "whoami", other);
    const Outcome outcome = kordTest::runProcess({.arguments = {other}, .folder = {}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "this is one of the console's programs under a name that none of them has\n");
}

} // namespace
