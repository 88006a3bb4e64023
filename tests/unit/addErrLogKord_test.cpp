// Events as the console's tool receives them, and the readers of the console's identity.

#include "unit.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace
{

/// The event tool's journal line that `report` adds.
template <typename Report>
std::string journalOf(Report report)
{
    return unit::journaled([&] { EXPECT_EQ(report(), -1); });
}

/// The tool's arguments as the journal shows them; `text` is the event's, as JSON.
std::string argumentsOf(const std::string& code, const std::string& text)
{
    return R"("arguments":["-f","9999-B2C*7ABCD12","-l","Microcode-rs-quay_sff","-o","addTarnKord","-s",")" +
           code + R"(","-n","0","-h","no","-c","no","-E","/var/tarnquay/log/kord.unit.log","-X","\")" + text +
           R"(\""])";
}

struct Kind {
    const char* type;
    const char* code;
    const char* text;
};

constexpr Kind kinds[] = {
    {"e", "BED00000", "Expected resources were not found"},
    {"r", "BED00001", "VALE call resulted in a non zero return value"},
    {"u", "BED00002", "Unknown error"},
    {"s", "BED00003", "Subsystem is degraded"},
    {"i", "BED00004", "Invalid managed system MTMS"},
    {"d", "BED00005", "Microcode logic error"},
    {"m", "BED00005", "Microcode logic error"},
    {"", "BED00005", "Microcode logic error"},
};

TEST(Events, carryTheirTypesCodeAndText)
{
    for (const Kind& kind : kinds) {
        const kordRec record = unit::freshRecord();
        const std::string expected = argumentsOf(kind.code, std::string("queryDDM : ") + kind.text);
        EXPECT_NE(journalOf([&] { return handleErrKord(&record, "queryDDM", kind.type); }).find(expected),
                  std::string::npos)
            << expected;
        EXPECT_NE(
            journalOf([&] { return handleErrKord_new(&record, "queryDDM", kind.type, ""); }).find(expected),
            std::string::npos)
            << expected;
        EXPECT_EQ(unit::traceOf(record)[0], std::string("==>:  handleErrKord queryDDM, ") + kind.type);
    }
}

TEST(Events, carryTheManagersMessageWithoutItsLastCharacter)
{
    const kordRec record = unit::freshRecord();
    const auto textOf = [&](const char* type, const std::string& message) {
        return journalOf([&] { return handleErrKord_new(&record, "Orvik.TarnDDM", type, message.c_str()); });
    };
    for (const Kind& kind : kinds) {
        const bool isLogicError = std::string(kind.code) == "BED00005";
        const std::string text =
            isLogicError ? "Orvik.TarnDDM : Microcode logic error" : "Orvik.TarnDDM : gone ";
        EXPECT_NE(textOf(kind.type, "gone\n").find(argumentsOf(kind.code, text)), std::string::npos)
            << kind.type;
    }
    EXPECT_NE(textOf("r", "gone").find(argumentsOf("BED00001", "Orvik.TarnDDM : gon ")), std::string::npos);
    EXPECT_NE(textOf("r", "x").find(argumentsOf("BED00001", "Orvik.TarnDDM :  ")), std::string::npos);
    EXPECT_NE(textOf("r", "it's \"$(id)\" `id` \\\n").find(R"(Orvik.TarnDDM : it's \"$(id)\" `id` \\ )"),
              std::string::npos);
}

TEST(Events, cutALongMessage)
{
    const kordRec record = unit::freshRecord();
    const std::string message(600, 'x');
    const std::string expected = argumentsOf("BED00001", "C : " + std::string(499 - 4, 'x'));
    EXPECT_NE(journalOf([&] { return handleErrKord_new(&record, "C", "r", message.c_str()); }).find(expected),
              std::string::npos);
    // An event without the manager's message has twice the room.
    const std::string name(1100, 'x');
    const std::string whole = argumentsOf("BED00001", std::string(999, 'x'));
    EXPECT_NE(journalOf([&] { return handleErrKord(&record, name.c_str(), "r"); }).find(whole),
              std::string::npos);
}

TEST(Events, goThroughTheWrapperForAnyoneButRoot)
{
    kordRec record = unit::freshRecord();
    const auto file = [&] { return handleErrKord(&record, "queryDDM", "r"); };
    EXPECT_EQ(journalOf(file).find("mmquaycmd"), std::string::npos);
    for (const char* user : {"briskroot", "roo", "root2", ""}) {
        copyText(record.loginUserName, user);
        const std::string journal = journalOf(file);
        EXPECT_LT(journal.find("/opt/tarnquay/bin/mmquaycmd"),
                  journal.rfind("/opt/tarnquay/bin/pmProblemEventPoster"))
            << user;
    }
}

// Whoever may write to the log's folder can give its name, or that of the ownership command's errors, to
// something else. No shell of the run opens it, and the run goes on.

const std::string oddTarget = unit::logPath("target");

struct OddLog {
    const char* name;
    void (*lay)(const std::string& log);
};

constexpr OddLog oddLogs[] = {
    {"a link", [](const std::string& log) { std::filesystem::create_symlink(oddTarget, log); }},
    {"a FIFO", [](const std::string& log) { ASSERT_EQ(mkfifo(log.c_str(), 0666), 0); }},
    {"a folder", [](const std::string& log) { std::filesystem::create_directory(log); }},
    {"another file",
     [](const std::string& log) {
         unit::writeFile(oddTarget, "");
         std::filesystem::create_hard_link(oddTarget, log);
     }},
};

/// The name is odd as long as this lives. A shell that waits for a FIFO's reader gets one, late.
class Laid
{
public:
    Laid(const OddLog& odd, const std::string& name)
    {
        log = unit::logPath(name);
        waited = 0;
        std::filesystem::remove_all(log);
        odd.lay(log);
        signal(SIGALRM, [](int) {
            waited = 1;
            open(log.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        });
        alarm(10);
    }
    ~Laid()
    {
        alarm(0);
        EXPECT_EQ(waited, 0);
        std::filesystem::remove_all(log);
        std::filesystem::remove(oddTarget);
    }
    Laid(const Laid&) = delete;
    Laid& operator=(const Laid&) = delete;

    /// A link's target is not made, and a file's stays empty.
    static bool isSpared() { return unit::readFile(oddTarget).empty() && unit::modeOf(oddTarget) != 0666; }

private:
    inline static std::string log;
    inline static volatile sig_atomic_t waited = 0;
};

TEST(Events, areFiledWhateverLiesAtTheLogsName)
{
    for (const OddLog& odd : oddLogs) {
        const kordRec record = unit::freshRecord();
        const Laid laid(odd, record.trcfile);
        const std::string journal = journalOf([&] { return handleErrKord(&record, "queryDDM", "r"); });
        EXPECT_NE(journal.find("BED00001"), std::string::npos) << odd.name;
        EXPECT_NE(
            journalOf([&] { return handleErrKord_new(&record, "queryDDM", "e", "m\n"); }).find("BED00000"),
            std::string::npos)
            << odd.name;
        EXPECT_TRUE(Laid::isSpared()) << odd.name;
        EXPECT_EQ(std::filesystem::exists(oddTarget), odd.name == std::string("another file")) << odd.name;
    }
}

TEST(Ownership, isGivenOfTheLogAlone)
{
    const std::string errors = unit::logPath("kord.root.log");
    std::filesystem::remove_all(errors);
    for (const OddLog& odd : oddLogs) {
        const kordRec record = unit::freshRecord();
        const Laid laid(odd, record.trcfile);
        changeGroup(&record); // would leave an error: the simulated console has no such user
        EXPECT_FALSE(std::filesystem::exists(errors)) << odd.name;
        EXPECT_TRUE(Laid::isSpared()) << odd.name;
    }
    const kordRec record = unit::freshRecord();
    trace(&record, "0001", "text");
    changeGroup(&record);
    EXPECT_NE(unit::readFile(errors).find("chown"), std::string::npos);
    std::filesystem::remove(errors);
}

TEST(Ownership, losesItsErrorsWhereTheirLogIsNone)
{
    for (const OddLog& odd : oddLogs) {
        const kordRec record = unit::freshRecord();
        trace(&record, "0001", "text");
        const Laid laid(odd, "kord.root.log");
        changeGroup(&record);
        EXPECT_TRUE(Laid::isSpared()) << odd.name;
        EXPECT_EQ(std::filesystem::exists(oddTarget), odd.name == std::string("another file")) << odd.name;
    }
}

TEST(Console, readsItsIdentity)
{
    const kordRec record = unit::freshRecord();
    char QuaySE[20] = "";
    EXPECT_EQ(getQuaySE(&record, QuaySE), 2);
    EXPECT_STREQ(QuaySE, "10ABCDE");
    char small[5] = "";
    EXPECT_EQ(getQuaySE(&record, small), 2);
    EXPECT_STREQ(small, "10AB");
    EXPECT_EQ(unit::traceOf(record),
              (std::vector<std::string>{"==>:  getQuaySE", "053:  rc=0, xargc=1,  QuaySE=10ABCDE ",
                                        "==>:  getQuaySE", "053:  rc=0, xargc=1,  QuaySE=10AB "}));
}

TEST(Console, readsTheBracketedTypeModel)
{
    // The bundled console's type-model has no brackets: its line comes back empty, and still counts as a
    // line.
    const kordRec record = unit::freshRecord();
    char QuayTM[20] = "before";
    EXPECT_EQ(getQuayTM(&record, QuayTM), 2);
    EXPECT_STREQ(QuayTM, "");
    EXPECT_EQ(unit::traceOf(record),
              (std::vector<std::string>{"==>:  getQuayTM", "053:  rc=0, xargc=1,  QuayTM= "}));
}

/// The console's program, replaced by a script as long as this lives.
class VitalProductData
{
public:
    explicit VitalProductData(const std::string& script)
    {
        std::filesystem::rename(program, aside);
        unit::writeFile(program, "#!/bin/sh\n" + script);
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }
    ~VitalProductData() { std::filesystem::rename(aside, program); }
    VitalProductData(const VitalProductData&) = delete;
    VitalProductData& operator=(const VitalProductData&) = delete;

private:
    const std::string program = "/opt/brisk/bin/qconvpd";
    const std::string aside = program + ".aside";
};

TEST(Console, takesTheTypeModelFromItsBrackets)
{
    const VitalProductData data("echo '*TM 4821-[K7Q]'");
    const kordRec record = unit::freshRecord();
    char QuayTM[20] = "";
    EXPECT_EQ(getQuayTM(&record, QuayTM), 2);
    EXPECT_STREQ(QuayTM, "K7Q");
}

TEST(Console, isUnknownWithoutData)
{
    const VitalProductData data("echo '*MN nothing of use'");
    char field[20] = "before";
    const kordRec serial = unit::freshRecord();
    EXPECT_EQ(getQuaySE(&serial, field), 1);
    EXPECT_EQ(unit::traceOf(serial).back(), "052: rc=1, xargc=0 ");
    const kordRec typeModel = unit::freshRecord();
    EXPECT_EQ(getQuayTM(&typeModel, field), 1);
    EXPECT_EQ(unit::traceOf(typeModel).back(), "053:  rc=1, xargc=0 ");
    EXPECT_STREQ(field, "before");
}

} // namespace
