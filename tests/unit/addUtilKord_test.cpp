// The command runner and the text utilities.

#include "unit.h"

#include <climits>
#include <cstdio>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

const std::string outputFile = std::string(commandOutputFolder) + "/tmp.7ABCD12";

struct Output {
    int32_t rc;
    int32_t count;
    std::vector<std::string> lines;
};

Output outputOf(const kordRec& record, const char* command)
{
    Output output{};
    char** lines = nullptr;
    output.rc = excuteCommand(&record, command, &output.count, &lines);
    for (int32_t i = 0; lines != nullptr && i < output.count; ++i)
        output.lines.emplace_back(lines[i]);
    releaseOutput(lines);
    EXPECT_FALSE(std::filesystem::exists(outputFile)) << command;
    return output;
}

using Lines = std::vector<std::string>;

TEST(CommandRunner, splitsOutputIntoLines)
{
    const struct {
        const char* command;
        Lines lines;
    } cases[] = {
        {R"(printf 'abc\n')", {"abc"}},
        {R"(printf 'a\n\nb\n')", {"a", "", "b"}},
        {R"(printf 'abc')", {}},
        {R"(printf 'a\nrest')", {"a"}},
        {R"(printf '\nabc\n')", {"abc", ""}},
        {R"(printf '\n')", {""}},
        {R"(printf '\n\nb\n')", {"", "b", ""}},
        {R"(printf 'a\0b\nc\n')", {"a", "c"}},
        {R"(printf 'two words\n')", {"two words"}},
    };
    const kordRec record = unit::freshRecord();
    for (const auto& [command, lines] : cases) {
        const Output output = outputOf(record, command);
        EXPECT_EQ(output.rc, 0) << command;
        EXPECT_EQ(output.lines, lines) << command;
    }
}

TEST(CommandRunner, readsAMegabyte)
{
    const Output output = outputOf(unit::freshRecord(), "yes 0123456789abcde | head -n 65536");
    EXPECT_EQ(output.count, 65536);
    EXPECT_EQ(output.lines.back(), "0123456789abcde");
}

TEST(CommandRunner, readsWithoutStandardInput)
{
    const kordTest::WithoutInput closed;
    EXPECT_EQ(outputOf(unit::freshRecord(), "echo text").lines, Lines{"text"});
}

TEST(CommandRunner, reportsFailures)
{
    const kordRec record = unit::freshRecord();
    EXPECT_EQ(outputOf(record, "exit 7").rc, 1);
    EXPECT_EQ(unit::traceOf(record), (Lines{"0066: excute cmd rc=7, errno=0 "}));

    const kordRec silent = unit::freshRecord();
    EXPECT_EQ(outputOf(silent, "true").rc, 1);
    const Lines lines = unit::traceOf(silent);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].starts_with("0062: empty file ") && lines[0].ends_with(", 0 ")) << lines[0];
    EXPECT_EQ(lines[1], "0067: parse cmd rc=1 ");
}

TEST(CommandRunner, takesAKilledShellForSuccess)
{
    const kordRec record = unit::freshRecord();
    int32_t count = 0;
    char** lines = nullptr;
    EXPECT_EQ(excuteCommand(&record, "{ printf 'a\\n'; kill -KILL $$; }", &count, &lines), 0);
    EXPECT_EQ(count, 1);
    releaseOutput(lines);
}

TEST(CommandRunner, runsNoCommandThatDoesNotFit)
{
    const std::string end = " >" + outputFile;
    for (const size_t length : {4095U, 4096U}) {
        const kordRec record = unit::freshRecord();
        std::string command = "echo ";
        command.resize(length - end.size(), 'x');
        EXPECT_EQ(outputOf(record, command.c_str()).rc, length < 4096 ? 0 : 1);
        const Lines expected = length < 4096 ? Lines{} : Lines{"0066: excute cmd rc=-1, errno=0 "};
        EXPECT_EQ(unit::traceOf(record), expected);
    }
}

TEST(CommandRunner, dropsOutputThatNobodyWants)
{
    const kordRec record = unit::freshRecord();
    const std::string kept = "/var/brisk/log/kept";
    for (const char* redirection : {" >", " 1>"}) {
        std::filesystem::remove(kept);
        const std::string command = std::string("echo text") + redirection + kept;
        EXPECT_EQ(excuteCommand(&record, command.c_str(), nullptr, nullptr), 1);
        EXPECT_EQ(unit::readFile(kept), "text\n") << command;
    }
    std::filesystem::remove(kept);
    testing::internal::CaptureStdout();
    EXPECT_EQ(excuteCommand(&record, "echo text 2>/dev/null", nullptr, nullptr), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(unit::traceOf(record).empty());
}

TEST(CommandRunner, followsNoLink)
{
    const std::string target = "/var/brisk/log/target";
    unit::writeFile(target, "kept\n");
    std::filesystem::create_symlink(target, outputFile);
    EXPECT_EQ(outputOf(unit::freshRecord(), "echo text").lines, Lines{"text"});
    EXPECT_EQ(unit::readFile(target), "kept\n");
    std::filesystem::remove(target);
}

TEST(CommandRunner, readsTheFileItMade)
{
    const std::string other = "/var/brisk/log/other";
    const std::string replace = "echo forged >" + other + "; mv " + other + " " + outputFile + "; ";
    EXPECT_EQ(outputOf(unit::freshRecord(), ("{ echo text; " + replace + "}").c_str()).lines, Lines{"text"});
    EXPECT_EQ(outputOf(unit::freshRecord(), (replace + "echo forged").c_str()).rc, 1);
}

/// Without the right to change folders that are not writable, as long as it lives.
class WithoutOverride
{
public:
    WithoutOverride()
    {
        syscall(SYS_capget, &header, before);
        __user_cap_data_struct data[] = {before[0], before[1]};
        data[0].effective &= ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_FOWNER));
        dropped = syscall(SYS_capset, &header, data) == 0;
    }
    ~WithoutOverride() { syscall(SYS_capset, &header, before); }
    WithoutOverride(const WithoutOverride&) = delete;
    WithoutOverride& operator=(const WithoutOverride&) = delete;

    bool dropped = false;

private:
    __user_cap_header_struct header = {.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    __user_cap_data_struct before[2] = {};
};

TEST(CommandRunner, writesToNothingThatStaysInTheWay)
{
    using std::filesystem::perms;
    const std::string target = "/var/brisk/log/target";
    unit::writeFile(target, "kept\n");
    std::filesystem::create_symlink(target, outputFile);
    std::filesystem::permissions(commandOutputFolder, perms::owner_read | perms::owner_exec);
    const kordRec record = unit::freshRecord();
    {
        const WithoutOverride limited;
        ASSERT_TRUE(limited.dropped);
        int32_t count = 0;
        char** lines = nullptr;
        EXPECT_EQ(excuteCommand(&record, "echo text 2>/dev/null", &count, &lines), 1);
        EXPECT_EQ(lines, nullptr);
    }
    std::filesystem::permissions(commandOutputFolder, perms::owner_all);
    EXPECT_EQ(unit::readFile(target), "kept\n");
    EXPECT_EQ(unit::traceOf(record), (Lines{"0066: excute cmd rc=2, errno=13 "})); // EACCES of the removal
    std::filesystem::remove(outputFile);
    std::filesystem::remove(target);
}

TEST(CommandRunner, givesNothingWithoutBothPlaces)
{
    const kordRec record = unit::freshRecord();
    int32_t count = 5;
    EXPECT_EQ(excuteCommand(&record, "echo text", &count, nullptr), 1);
    EXPECT_EQ(count, 5);
    char** lines = nullptr;
    EXPECT_EQ(excuteCommand(&record, "echo text", nullptr, &lines), 1);
    EXPECT_EQ(lines, nullptr);
}

TEST(CommandRunner, givesUpOnOutputThatCannotBeRead)
{
    const std::string target = "/var/brisk/log/target";
    unit::writeFile(target, "text\n");
    std::filesystem::create_symlink(target, outputFile);
    for (const char* trace : {"0063:  fd  -1 errno=", "0064: read  errno="}) {
        const kordRec record = unit::freshRecord();
        int32_t count = 0;
        char** lines = nullptr;
        EXPECT_EQ(parseOutput(&record, outputFile.c_str(), &count, &lines), 1);
        EXPECT_EQ(lines, nullptr);
        EXPECT_EQ(unit::traceOf(record), Lines{trace});
        std::filesystem::remove(outputFile);
        std::filesystem::create_directory(outputFile);
    }
    std::filesystem::remove(outputFile);
    std::filesystem::remove(target);
}

TEST(CommandRunner, keepsALeadingRedirectionForItself)
{
    // Nothing stands before this ">", so it is not taken for one, and the second one takes the output.
    const kordRec record = unit::freshRecord();
    const std::string kept = "/var/brisk/log/kept";
    EXPECT_EQ(excuteCommand(&record, (">" + kept + " echo text").c_str(), nullptr, nullptr), 1);
    EXPECT_EQ(unit::readFile(kept), "");
    std::filesystem::remove(kept);
}

TEST(CommandRunner, makesItsOutputFileReadableForAll)
{
    EXPECT_EQ(outputOf(unit::freshRecord(), ("stat -c %a " + outputFile).c_str()).lines, Lines{"666"});
}

TEST(CommandRunner, missingFile)
{
    const kordRec record = unit::freshRecord();
    int32_t count = 5;
    char** lines = nullptr;
    EXPECT_EQ(parseOutput(&record, "/var/brisk/log/none", &count, &lines), 1);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(lines, nullptr);
}

TEST(LoginUser, isWhoamisAnswer)
{
    kordRec record = unit::freshRecord();
    copyText(record.loginUserName, "");
    EXPECT_EQ(getLoginUserName(&record), 0);
    EXPECT_STREQ(record.loginUserName, "root");
    EXPECT_EQ(unit::traceOf(record), (Lines{"0068: rc=0, xargc=1, User=root "}));
}

using Slicer = int32_t (*)(const char*, std::span<char>);

struct Slice {
    const char* name;
    Slicer slicer;
    size_t from;
    size_t length;
};

TEST(Slicers, cutTheirStretchOfEveryInput)
{
    const Slice slices[] = {
        {"get_StorageFacility_type", get_StorageFacility_type, 0, 4},
        {"get_StorageFacility_model", get_StorageFacility_model, 5, 3},
        {"get_StorageFacility_serial", get_StorageFacility_serial, 9, 8},
        {"get_StorageFacilitySystem_type", get_StorageFacilitySystem_type, 0, 4},
        {"get_StorageFacilitySystem_model", get_StorageFacilitySystem_model, 5, 3},
        {"get_StorageFacilitySystem_serial", get_StorageFacilitySystem_serial, 9, 7},
        {"get_StorageFacilitySystem_modeltype", get_StorageFacilitySystem_modeltype, 0, 8},
        {"getStorageEnclosure_typemodel", getStorageEnclosure_typemodel, 0, 8},
        {"getStorageEnclosure_serial", getStorageEnclosure_serial, 9, 8},
    };
    const std::string full = "1234-5X6*AB12C34DEFGH";
    for (const Slice& slice : slices) {
        for (size_t length = 0; length <= full.size(); ++length) {
            const std::string input = full.substr(0, length);
            char part[20] = "left over";
            EXPECT_EQ(slice.slicer(input.c_str(), std::span<char>(part)), 0);
            EXPECT_EQ(std::string(part), length > slice.from ? input.substr(slice.from, slice.length) : "")
                << slice.name << " of " << input;
        }
    }
}

TEST(Converters, replaceOneCharacterThroughout)
{
    char output[30];
    EXPECT_EQ(convertStringFromDotToDash(output, "9999.B2C.7ABCD12"), 0);
    EXPECT_STREQ(output, "9999-B2C-7ABCD12");
    EXPECT_EQ(convertStringFromDotToMM(output, "9999.B2C.7ABCD12"), 0);
    EXPECT_STREQ(output, "9999*B2C*7ABCD12");
    EXPECT_EQ(convertStringFromMMToDash(output, "9999-B2C*7ABCD12"), 0);
    EXPECT_STREQ(output, "9999-B2C-7ABCD12");
    EXPECT_EQ(convertToStorageFacilityImageMTMS(output, "9999-A11-00XY121"), 0);
    EXPECT_STREQ(output, "9999-A11*00XY121");
    EXPECT_EQ(convertToStorageFacilityImageMTMS(output, ""), 0);
    EXPECT_STREQ(output, "*");
}

TEST(Cleaning, takesAngleBracketsOnly)
{
    char text[] = "a<b>c&\"<";
    EXPECT_EQ(removeInvalidCharInString(text), 0);
    EXPECT_STREQ(text, "a-b-c&\"-");
}

TEST(Composers, makeNamesAndMTMS)
{
    char composed[30];
    createStorageFacilityImageMTMS("9999-A01*00XY1230", "1", composed);
    EXPECT_STREQ(composed, "9999-A01*00XY1231");
    createStorageFacilityImageMTMS("", "1", composed);
    EXPECT_STREQ(composed, "1");

    kordRec record{};
    copyText(record.storageFacilityMTMS, "00XY123");
    record.storageFacilityServerNumber = 12;
    createLparName(&record, "1", composed);
    EXPECT_STREQ(composed, "SF00XY123Tarn11");
    copyText(record.storageFacilityMTMS, "0123456789012345678901234567");
    createLparName(&record, "1", composed);
    EXPECT_EQ(std::string(composed), "SF012345678901234567890123456");

    char wide[100];
    createLparName(&record, "1", wide);
    EXPECT_EQ(std::string(wide), "SF012345678901234567890123456");
    createStorageFacilityImageMTMS("1234567890123456789012345678X", "12345", wide);
    EXPECT_STREQ(wide, "12345678901234567890123456781");
}

TEST(BoundedText, leavesNoFieldAlone)
{
    copyText({}, "text");
    formatText({}, "%s", "text");
    char before[] = "ab";
    copyText(std::span(before).first(0), "text");
    EXPECT_STREQ(before, "ab");
}

TEST(Quoting, isCutBeforeAPieceThatDoesNotFit)
{
    char field[5];
    quoteText(field, "abc$d", Quotes::doubled);
    EXPECT_STREQ(field, "abc");
    quoteText(field, "a'bc", Quotes::single);
    EXPECT_STREQ(field, "a");
}

TEST(BoundedText, cutsAtTheField)
{
    char field[5];
    copyText(field, "abcdefg");
    EXPECT_STREQ(field, "abcd");
    copyText(field, nullptr);
    EXPECT_STREQ(field, "");
    formatText(field, "%d", 123456);
    EXPECT_STREQ(field, "1234");
    formatText(field, "%s", "ab");
    appendText(field, "%s", "cdef");
    EXPECT_STREQ(field, "abcd");
}

TEST(BoundedText, formatsLikeTheLibrary)
{
    const auto expectSame = []<typename... Values>(const char* format, Values... values) {
        for (const size_t size : {1U, 2U, 7U, 16U, 100U}) {
            SCOPED_TRACE(testing::Message() << format << " into " << size);
            char own[100];
            char library[100];
            formatText(std::span(own).first(size), format, values...);
            snprintf(library, size, format, values...);
            EXPECT_STREQ(own, library);
        }
    };
    expectSame("%s", "");
    expectSame("a long text before %s", "");
    expectSame("%s and %s", "one", "another");
    expectSame("%d,%d,%d,%d", 0, -1, INT_MAX, INT_MIN);
    expectSame("%u %u", 0U, UINT_MAX);
    expectSame("at =? '%s%%' ", "U9999.D10");
    expectSame("%s %5.2s|%c|%03d %s", "text", "cut", 'x', 7, "after it");
    expectSame("%lld.%ld", 1LL << 40, -1L);
}

TEST(BoundedText, takesANullTextForAnEmptyOne)
{
    const char* volatile none = nullptr; // the compiler is not to see it
    char field[20];
    formatText(field, "<%s>", none);
    EXPECT_STREQ(field, "<>");
}

TEST(Quoting, reachesTheShellAsTheValue)
{
    const std::string values[] = {"plain", "it's",        "\"quoted\"", "$(touch /tmp/canary)",
                                  "`id`",  "back\\slash", "a\nb",       "!$HOME*?"};
    for (const std::string& value : values) {
        for (const Quotes quotes : {Quotes::doubled, Quotes::single}) {
            char quoted[200];
            quoteText(quoted, value.c_str(), quotes);
            const std::string mark = quotes == Quotes::single ? "'" : "\"";
            const std::string command = "printf %s " + mark + quoted + mark + " >/var/brisk/log/value";
            ASSERT_EQ(system(command.c_str()), 0);
            EXPECT_EQ(unit::readFile("/var/brisk/log/value"), value);
        }
    }
    std::filesystem::remove("/var/brisk/log/value");
}

} // namespace
