// A command line and what is made of its one definition.

#include "platform/commandLine.h"
#include "platform/completion.h"
#include "platform/failure.h"
#include "platform/nearest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>

namespace
{

using namespace platform;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

/// A program with a command of each sort, and what one run of it gave.
struct Sample {
    bool loud = false;
    std::string color = "auto";
    std::string columns;
    std::vector<std::string> conditions;
    uint32_t count = 7;
    std::optional<std::string> user;
    std::optional<std::string> by;
    std::string kind;
    std::vector<std::string> files;
    std::vector<std::string> program;
    int runs = 0;
    std::function<int()> act = [] { return 0; };
    std::string output;
    std::string error;

    Program make()
    {
        const auto run = [this] {
            ++runs;
            return act();
        };
        const auto kinds = [](const auto&) { return std::vector<std::string>{"drives", "racks"}; };
        const auto names = [](const std::vector<std::string>& arguments) {
            if (arguments.empty()) return std::vector<std::string>{"id"};
            return std::vector<std::string>{"id", "serial", arguments.front() + "_size"};
        };
        Command list = {
            .name = "list",
            .help = "List things",
            .arguments = {{.name = "KIND", .into = &kind, .help = "The kind", .offers = {.words = kinds}},
                          {.name = "FILE", .into = &files, .help = "Documents"}},
            .options = {{.names = "-l,--loud", .into = &loud, .help = "Louder"},
                        {.names = "--color", .into = &color, .help = "Colour", .value = "auto|always|never"},
                        {.names = "-c,--columns",
                         .into = &columns,
                         .help = "Columns",
                         .value = "COLUMN,...",
                         .offers = {.words = names, .several = true}},
                        {.names = "--where", .into = &conditions, .help = "Condition", .value = "WHAT"},
                        {.names = "-n,--count",
                         .into = &count,
                         .help = "How many",
                         .value = "N",
                         .least = 1,
                         .most = 8},
                        {.names = "--user",
                         .into = &user,
                         .help = "Who",
                         .value = "NAME",
                         .offers = {.paths = Offers::Paths::none}},
                        {.names = "--root",
                         .into = &user,
                         .help = "Where",
                         .value = "DIR",
                         .offers = {.paths = Offers::Paths::folders}},
                        {.names = "--by",
                         .into = &by,
                         .help = "By what",
                         .value = "COLUMN,...",
                         .offers = {.words = names, .several = true},
                         .mayLackValue = true}},
            .run = run};
        Command start = {.name = "start",
                         .help = "Start a program",
                         .options = {{.names = "--loud", .into = &loud, .help = "Louder"}},
                         .program = &program,
                         .run = run,
                         .trouble = 125};
        return {.name = "sample", .version = "1.2", .help = "Samples.", .commands = {list, start}};
    }

    int operator()(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), "/bin/sample");
        std::vector<char*> pointers;
        for (std::string& argument : arguments)
            pointers.push_back(argument.data());
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = platform::run(make(), pointers);
        output = testing::internal::GetCapturedStdout();
        error = testing::internal::GetCapturedStderr();
        return status;
    }
};

TEST(CommandLine, TakesOptionsAndArgumentsInAnyOrder)
{
    Sample run;
    EXPECT_EQ(
        run({"list", "-l", "drives", "--where", "-a", "x.xml", "--where=b=c", "-n3", "-", "--color=never"}),
        0);
    EXPECT_EQ(run.error, "");
    EXPECT_EQ(run.runs, 1);
    EXPECT_TRUE(run.loud);
    EXPECT_EQ(run.color, "never");
    EXPECT_THAT(run.conditions, ElementsAre("-a", "b=c"));
    EXPECT_EQ(run.count, 3U);
    EXPECT_EQ(run.kind, "drives");
    EXPECT_THAT(run.files, ElementsAre("x.xml", "-"));
    EXPECT_EQ(run.user, std::nullopt);
}

TEST(CommandLine, TakesAnythingBehindTheMarkAsItIs)
{
    Sample list;
    EXPECT_EQ(list({"list", "drives", "--", "--loud", "[a,b]", "--", "-h"}), 0);
    EXPECT_FALSE(list.loud);
    EXPECT_THAT(list.files, ElementsAre("--loud", "[a,b]", "--", "-h"));
    Sample start;
    EXPECT_EQ(start({"start", "--", "prog", "--loud", "--", "--help"}), 0);
    EXPECT_FALSE(start.loud);
    EXPECT_THAT(start.program, ElementsAre("prog", "--loud", "--", "--help"));
}

TEST(CommandLine, TakesFileNamesAsTheyAre)
{
    Sample run;
    EXPECT_EQ(run({"list", "drives", "[a,b]", "two words", "new\nline", "--user", "", "list"}), 0);
    EXPECT_THAT(run.files, ElementsAre("[a,b]", "two words", "new\nline", "list"));
    EXPECT_EQ(run.user, "");
}

TEST(CommandLine, AnOptionMayLackItsValue)
{
    const auto given = [](const std::vector<std::string>& arguments) {
        Sample run;
        EXPECT_EQ(run(arguments), 0) << run.error;
        return std::pair(run.by, run.files);
    };
    using Files = std::vector<std::string>;
    EXPECT_EQ(given({"list", "drives", "x"}), (std::pair{std::optional<std::string>{}, Files{"x"}}));
    EXPECT_EQ(given({"list", "drives", "--by", "x"}),
              (std::pair{std::optional<std::string>{""}, Files{"x"}}));
    EXPECT_EQ(given({"list", "drives", "x", "--by"}),
              (std::pair{std::optional<std::string>{""}, Files{"x"}}));
    EXPECT_EQ(given({"list", "drives", "--by", "id,serial", "x"}),
              (std::pair{std::optional<std::string>{"id,serial"}, Files{"x"}}));
    EXPECT_EQ(given({"list", "drives", "--by", "id,x"}),
              (std::pair{std::optional<std::string>{""}, Files{"id,x"}}));
    EXPECT_EQ(given({"list", "drives", "--by=whatever", "x"}),
              (std::pair{std::optional<std::string>{"whatever"}, Files{"x"}}));
}

TEST(CommandLine, TheLastOfSeveralCounts)
{
    Sample run;
    EXPECT_EQ(run({"list", "drives", "x", "-n", "2", "--count", "4"}), 0);
    EXPECT_EQ(run.count, 4U);
}

TEST(CommandLine, SaysWhatIsWrongInOneLine)
{
    struct Case {
        std::vector<std::string> arguments;
        int status;
        std::string says;
    };
    const std::vector<Case> cases = {
        {{}, 2, "which command? \"sample --help\" lists them"},
        {{"lsit"}, 2, "no command \"lsit\": did you mean \"list\"?"},
        {{"stat", "x"}, 2, "no command \"stat\": did you mean \"start\"?"},
        {{"wherever"}, 2, "no command \"wherever\": \"sample --help\" lists them"},
        {{"--hlep"}, 2, "no option \"--hlep\": did you mean \"--help\"?"},
        {{"--verison"}, 2, "no option \"--verison\": did you mean \"--version\"?"},
        {{"list", "--hepl"}, 2, "list has no option \"--hepl\": did you mean \"--help\"?"},
        {{"list", "--lod", "drives", "x"}, 2, "list has no option \"--lod\": did you mean \"--loud\"?"},
        {{"list", "--wher", "a=b"}, 2, "list has no option \"--wher\": did you mean \"--where\"?"},
        {{"list", "--col=x"}, 2, "list has no option \"--col\": did you mean \"--color\"?"},
        {{"list", "-x", "drives", "x"}, 2, "list has no option \"-x\""},
        {{"list"}, 2, "KIND is required: sample list [OPTION]... KIND FILE..."},
        {{"list", "drives"}, 2, "FILE is required: sample list [OPTION]... KIND FILE..."},
        {{"list", "a", "b", "--color", "alway"},
         2,
         "--color: \"alway\" is none of auto|always|never: did you mean \"always\"?"},
        {{"list", "a", "b", "-n", "9"}, 2, "--count: \"9\" is no number from 1 to 8"},
        {{"list", "a", "b", "-n", "0"}, 2, "--count: \"0\" is no number from 1 to 8"},
        {{"list", "a", "b", "-n", "-1"}, 2, "--count: \"-1\" is no number from 1 to 8"},
        {{"list", "a", "b", "-n", "4294967297"}, 2, "--count: \"4294967297\" is no number from 1 to 8"},
        {{"list", "a", "b", "--where"}, 2, "--where: 1 required WHAT missing"},
        {{"list", "--lod", "a", "b", "--where"}, 2, "list has no option \"--lod\": did you mean \"--loud\"?"},
        {{"start", "x", "--", "p"},
         125,
         "\"x\" is one too many: sample start [OPTION]... -- PROGRAM [ARGUMENT]..."},
        {{"start"}, 125, "there is no program to run: name it after --"},
        {{"start", "--"}, 125, "there is no program to run: name it after --"},
        {{"list", "--\x1b[31m", "a", "b"}, 2, "list has no option \"--\\x1B[31m\""},
    };
    for (const Case& one : cases) {
        Sample run;
        EXPECT_EQ(run(one.arguments), one.status) << one.says;
        EXPECT_EQ(run.error, "sample: " + one.says + '\n');
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.runs, 0);
    }
}

/// What a program with one command says, on standard output and behind its name on standard error.
struct Said {
    int status = 0;
    std::string output;
    std::string error;
};
Said runOne(Command command, std::vector<std::string> arguments)
{
    const Program program = {.name = "one-two",
                             .version = "3",
                             .help = "Ones.",
                             .manual = "one-two(1)",
                             .commands = {std::move(command)},
                             .trouble = 9};
    arguments.insert(arguments.begin(), "one-two");
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = platform::run(program, pointers);
    return {.status = status,
            .output = testing::internal::GetCapturedStdout(),
            .error = testing::internal::GetCapturedStderr()};
}

TEST(CommandLine, TakesWholeNumbersWithinTheirBounds)
{
    struct Case {
        uint64_t least;
        uint64_t most;
        std::string given;
        std::string refused = {}; ///< empty: taken
    };
    constexpr uint64_t any = std::numeric_limits<uint64_t>::max();
    const std::vector<Case> cases = {
        {0, any, "0"},
        {0, any, "18446744073709551615"},
        {0, any, "18446744073709551616", " from 0"},
        {0, any, "", " from 0"},
        {0, any, "4x", " from 0"},
        {0, any, "x4", " from 0"},
        {0, any, "1.5", " from 0"},
        {2, any, "1", " from 2"},
        {2, any, "2"},
        {2, 5, "5"},
        {2, 5, "6", " from 2 to 5"},
    };
    for (const Case& one : cases) {
        uint64_t number = 77;
        const Said said = runOne({.name = "size",
                                  .help = {},
                                  .options = {{.names = "--size",
                                               .into = &number,
                                               .help = {},
                                               .value = "N",
                                               .least = one.least,
                                               .most = one.most}},
                                  .run = [] { return 0; }},
                                 {"size", "--size", one.given});
        EXPECT_EQ(said.status, one.refused.empty() ? 0 : 2) << one.given;
        EXPECT_EQ(said.error, one.refused.empty() ? ""
                                                  : "one-two: --size: \"" + one.given + "\" is no number" +
                                                        one.refused + "\n");
        EXPECT_EQ(number, one.refused.empty() ? std::stoull(one.given) : 77);
    }
    uint32_t narrow = 77; // takes what 32 bits hold, whatever its bounds
    const auto give = [&](const char* number) {
        return runOne({.name = "size",
                       .help = {},
                       .options = {{.names = "--size", .into = &narrow, .help = {}, .value = "N"}},
                       .run = [] { return 0; }},
                      {"size", "--size", number});
    };
    EXPECT_EQ(give("4294967295").error, "");
    EXPECT_EQ(narrow, 4294967295U);
    EXPECT_EQ(give("4294967296").error, "one-two: --size: \"4294967296\" is no number from 0\n");
}

TEST(CommandLine, SaysWhatIsRequired)
{
    std::string size;
    const Command command = {
        .name = "size",
        .help = {},
        .options = {{.names = "-s,--size", .into = &size, .help = {}, .value = "N", .required = true}}};
    const Said said = runOne(command, {"size"});
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.error, "one-two: --size is required\n");
    EXPECT_THAT(runOne(command, {"size", "--help"}).output, StartsWith("usage: one-two size -s N\n"));
}

TEST(CommandLine, TellsTheProgramsOwnTrouble)
{
    const Command command = {.name = "size", .help = {}, .run = [] { return 4; }, .trouble = 3};
    EXPECT_EQ(runOne(command, {}).status, 9);
    EXPECT_EQ(runOne(command, {"such"}).status, 9);
    EXPECT_EQ(runOne(command, {"help", "such"}).status, 9);
    EXPECT_EQ(runOne(command, {"help", "such"}).error,
              "one-two: no command \"such\": \"one-two --help\" lists them\n");
    EXPECT_EQ(runOne(command, {"size", "-x"}).status, 3);
    EXPECT_EQ(runOne(command, {"size"}).status, 4);
    EXPECT_EQ(runOne(command, {"completion", "bsh"}).status, 9);
    EXPECT_EQ(runOne(command, {"completion", "bsh"}).error,
              "one-two: no completion for the shell \"bsh\": did you mean \"bash\"?\n");
    EXPECT_EQ(runOne(command, {"completion"}).error,
              "one-two: SHELL is required: one-two completion SHELL\n");
}

/// A shell that keeps to POSIX takes no function of another name.
TEST(CommandLine, CompletionScriptsNameFunctionsByIdentifiers)
{
    const Command command = {.name = "size", .help = {}, .run = [] { return 0; }};
    const auto script = [&](const char* shell) { return runOne(command, {"completion", shell}).output; };
    EXPECT_THAT(script("bash"), testing::HasSubstr("\n_one_two()\n"));
    EXPECT_THAT(script("zsh"), testing::HasSubstr("\n_one_two()\n"));
    EXPECT_THAT(script("fish"), testing::HasSubstr("\nfunction __one_two_kind\n"));
}

TEST(CommandLine, APrograMayBeLeftOut)
{
    std::vector<std::string> program = {"before"};
    const Command command = {
        .name = "start", .help = {}, .program = &program, .needsProgram = false, .run = [] { return 0; }};
    EXPECT_EQ(runOne(command, {"start"}).status, 0);
    EXPECT_TRUE(program.empty());
    EXPECT_THAT(runOne(command, {"start", "-h"}).output,
                StartsWith("usage: one-two start [-- PROGRAM [ARGUMENT]...]\n"));
}

TEST(CommandLine, TellsFailuresAsTrouble)
{
    Sample run;
    run.act = []() -> int { throw Failure("x.xml:3: no\nsuch thing"); };
    EXPECT_EQ(run({"list", "drives", "x.xml"}), 2);
    EXPECT_EQ(run.error, "sample: x.xml:3: no\\nsuch thing\n");
    EXPECT_EQ(run({"start", "--", "p"}), 125);
    run.act = []() -> int { throw std::bad_alloc(); };
    EXPECT_EQ(run({"list", "drives", "x.xml"}), 2);
    EXPECT_EQ(run.error, "sample: this machine has not enough memory for it\n");
    run.act = []() -> int { throw ReaderGone(); };
    EXPECT_EQ(run({"list", "drives", "x.xml"}), 2);
    EXPECT_EQ(run.error, "");
}

TEST(CommandLine, PrintsHelpAndVersion)
{
    Sample run;
    EXPECT_EQ(run({"--version"}), 0);
    EXPECT_EQ(run.output, "sample 1.2\n");
    for (const std::vector<std::string>& asked : {std::vector<std::string>{"--help"}, {"-h"}, {"help"}}) {
        EXPECT_EQ(run(asked), 0);
        EXPECT_EQ(run.output,
                  "usage: sample COMMAND [OPTION]... [ARGUMENT]...\n"
                  "       sample --version\n"
                  "\n"
                  "Samples.\n"
                  "\n"
                  "Commands:\n"
                  "  list          List things\n"
                  "  start         Start a program\n"
                  "  completion    Print the script that completes commands, options and values in\n"
                  "                a shell\n"
                  "\n"
                  "\"sample COMMAND --help\" tells more of a command.\n");
    }
    EXPECT_THAT(
        runOne({.name = "size", .help = {}}, {"-h"}).output,
        EndsWith("\"one-two COMMAND --help\" tells more of a command, the manual page one-two(1) tells"
                 " all.\n"));
    for (const std::vector<std::string>& asked :
         {std::vector<std::string>{"list", "--help"}, {"list", "--lod", "-h"}, {"help", "list"}}) {
        EXPECT_EQ(run(asked), 0);
        EXPECT_EQ(run.output, "usage: sample list [-l] [--color auto|always|never] [-c COLUMN,...]\n"
                              "                   [--where WHAT]... [-n N] [--user NAME] [--root DIR]\n"
                              "                   [--by [COLUMN,...]] KIND FILE...\n"
                              "\n"
                              "List things.\n"
                              "\n"
                              "  KIND                    The kind\n"
                              "  FILE                    Documents\n"
                              "\n"
                              "  -l, --loud              Louder\n"
                              "      --color auto|always|never\n"
                              "                          Colour (else auto)\n"
                              "  -c, --columns COLUMN,...\n"
                              "                          Columns\n"
                              "      --where WHAT        Condition\n"
                              "  -n, --count N           How many (else 7)\n"
                              "      --user NAME         Who\n"
                              "      --root DIR          Where\n"
                              "      --by [COLUMN,...]   By what\n"
                              "  -h, --help              This help\n");
    }
    EXPECT_EQ(run({"help", "start"}), 0);
    EXPECT_THAT(run.output, StartsWith("usage: sample start [--loud] -- PROGRAM [ARGUMENT]...\n"));
    EXPECT_EQ(run.runs, 0);
}

/// Lines end where the 80th column does; a name that reaches the second column stands alone.
TEST(CommandLine, WrapsHelp)
{
    const std::string word(54, 'x'); // as many as there are behind the 26 columns of names
    uint32_t number = 5;
    std::string text;
    const auto entryOf = [&](std::string_view names, const std::string& help) {
        const std::string output =
            runOne({.name = "size",
                    .help = {},
                    .options = {{.names = names, .into = &text, .help = help, .value = "N"}}},
                   {"size", "-h"})
                .output;
        const size_t at = output.find("\n\n", output.find("\n\n") + 1) + 2;
        return output.substr(at, output.find("  -h, --help") - at);
    };
    const std::string indent(26, ' ');
    EXPECT_EQ(entryOf("--size", word), "      --size N            " + word + "\n");
    EXPECT_EQ(entryOf("--size", word + "x y"), "      --size N            " + word + "x\n" + indent + "y\n");
    EXPECT_EQ(entryOf("--size", word.substr(2) + " y"),
              "      --size N            " + word.substr(2) + " y\n");
    EXPECT_EQ(entryOf("--size", word.substr(1) + " y"),
              "      --size N            " + word.substr(1) + "\n" + indent + "y\n");
    EXPECT_EQ(entryOf("--size", word + " a b"),
              "      --size N            " + word + "\n" + indent + "a b\n");
    EXPECT_EQ(entryOf("--size9012345678", "help"), "      --size9012345678 N  help\n");
    EXPECT_EQ(entryOf("--size90123456789", "help"), "      --size90123456789 N\n" + indent + "help\n");
    text = "this";
    EXPECT_EQ(entryOf("-s,--size", "help"), "  -s, --size N            help (else this)\n");
    const Command command = {.name = "size",
                             .help = {},
                             .options = {{.names = "--n", .into = &number, .help = "So many", .value = "N"}}};
    EXPECT_THAT(runOne(command, {"size", "-h"}).output,
                testing::HasSubstr("\n      --n N               So many (else 5)\n"));
    Command bounded = command;
    bounded.options[0].least = 6; // what could not be given stands for nothing
    EXPECT_THAT(runOne(bounded, {"size", "-h"}).output,
                testing::HasSubstr("\n      --n N               So many\n"));
}

/// What is offered behind these words; the last one is being typed.
std::vector<std::string> offersFor(const std::vector<std::string>& words)
{
    Sample run;
    std::vector<std::string> arguments = {"complete", "--"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    EXPECT_EQ(run(arguments), 0);
    std::vector<std::string> lines;
    for (size_t at = 0; at < run.output.size(); at = run.output.find('\n', at) + 1) {
        const std::string line = run.output.substr(at, run.output.find('\n', at) - at);
        lines.push_back(line.substr(0, line.find('\t')));
    }
    return lines;
}

TEST(Completion, OffersCommandsOptionsAndValues)
{
    EXPECT_THAT(offersFor({""}), ElementsAre("words", "list", "start", "completion"));
    EXPECT_THAT(offersFor({"l"}), ElementsAre("words", "list"));
    EXPECT_THAT(offersFor({"--"}), ElementsAre("words", "--help", "--version"));
    EXPECT_THAT(offersFor({"list", "--co"}), ElementsAre("words", "--color", "--columns", "--count"));
    EXPECT_THAT(offersFor({"list", "--color", ""}), ElementsAre("words", "auto", "always", "never"));
    EXPECT_THAT(offersFor({"list", "--color=a"}), ElementsAre("words", "--color=auto", "--color=always"));
    EXPECT_THAT(offersFor({"list", "--color", "=", "n"}), ElementsAre("words", "never")); // as bash has it
    EXPECT_THAT(offersFor({"list", "--color", "="}), ElementsAre("words", "auto", "always", "never"));
    EXPECT_THAT(offersFor({"list", "d"}), ElementsAre("words", "drives"));
    EXPECT_THAT(offersFor({"completion", "z"}), ElementsAre("words", "zsh"));
    EXPECT_THAT(offersFor({"completion", "zsh", ""}), ElementsAre("words"));
}

TEST(Completion, OffersOneOfSeveralWordsAfterTheOther)
{
    EXPECT_THAT(offersFor({"list", "-c", ""}), ElementsAre("parts", "id"));
    EXPECT_THAT(offersFor({"list", "drives", "-c", ""}), ElementsAre("parts", "id", "serial", "drives_size"));
    EXPECT_THAT(offersFor({"list", "drives", "-c", "+s"}), ElementsAre("parts", "+serial"));
    EXPECT_THAT(offersFor({"list", "drives", "-c", "id,"}),
                ElementsAre("parts", "id,serial", "id,drives_size"));
    EXPECT_THAT(offersFor({"list", "drives", "-c", "serial,-i"}), ElementsAre("parts", "serial,-id"));
    EXPECT_THAT(offersFor({"list", "drives", "-c", "id,serial,"}),
                ElementsAre("parts", "id,serial,drives_size"));
    EXPECT_THAT(offersFor({"list", "drives", "-c", "x+"}), ElementsAre("parts"));
    EXPECT_THAT(offersFor({"list", "drives", "--columns=id,s"}), ElementsAre("parts", "--columns=id,serial"));
    EXPECT_THAT(offersFor({"list", "drives", "--columns=id,serial,"}),
                ElementsAre("parts", "--columns=id,serial,drives_size"));
}

/// Behind a tabulator stands what a word means, where there is something to say.
TEST(Completion, TellsWhatWordsMean)
{
    const auto offered = [](std::vector<std::string> words) {
        Sample run;
        words.insert(words.begin(), {"complete", "--"});
        EXPECT_EQ(run(words), 0);
        return run.output;
    };
    EXPECT_EQ(offered({"st"}), "words\nstart\tStart a program\n");
    EXPECT_EQ(offered({"--v"}), "words\n--version\n");
    EXPECT_EQ(offered({"start", "-"}), "words\n--loud\tLouder\n--help\tThis help\n--\tThe program follows\n");
    EXPECT_EQ(offered({"list", "--color", "al"}), "words\nalways\n");
    EXPECT_EQ(offered({"list", "ra"}), "words\nracks\n");
    EXPECT_EQ(offered({"list", "racks", "-c", "-se"}), "parts\n-serial\n");
}

TEST(Completion, LeavesPathsToTheShell)
{
    EXPECT_THAT(offersFor({"list", "drives", ""}), ElementsAre("files"));
    EXPECT_THAT(offersFor({"list", "drives", "a", "b"}), ElementsAre("files"));
    EXPECT_THAT(offersFor({"list", "drives", "--", "--x"}), ElementsAre("files"));
    EXPECT_THAT(offersFor({"list", "--", "r"}), ElementsAre("words", "racks"));
    EXPECT_THAT(offersFor({"list", "--", "drives", "r"}), ElementsAre("files"));
    EXPECT_THAT(offersFor({"list", "--root", "x"}), ElementsAre("folders"));
    EXPECT_THAT(offersFor({"list", "--user", ""}), ElementsAre("words"));
    EXPECT_THAT(offersFor({"start", "--"}), ElementsAre("words", "--loud", "--help", "--"));
    EXPECT_THAT(offersFor({"start", "--", ""}), ElementsAre("programs"));
    EXPECT_THAT(offersFor({"start", "--", "ls", "-"}), ElementsAre("files"));
    EXPECT_THAT(offersFor({"nothing", "such"}), ElementsAre("words"));
    EXPECT_THAT(offersFor({"list", "drives", "--by", ""}),
                ElementsAre("parts", "id", "serial", "drives_size"));
    EXPECT_THAT(offersFor({"list", "drives", "--by", "--lo"}), ElementsAre("words", "--loud"));
    EXPECT_THAT(offersFor({"list", "--user", "x", "--lo"}), ElementsAre("words", "--loud"));
    EXPECT_THAT(offersFor({"list", "-l", "ra"}), ElementsAre("words", "racks"));
    EXPECT_THAT(offersFor({"list", "-", ""}), ElementsAre("files")); // one that is named "-"
    EXPECT_THAT(offersFor({"start", ""}), ElementsAre("words"));
}

TEST(Nearest, IsAWordWithFewMistakesOrTheStartOfOne)
{
    const std::vector<std::string> words = {"list", "xml", "history", "explain"};
    EXPECT_EQ(nearest("lsit", words), "list");
    EXPECT_EQ(nearest("lst", words), "list");
    EXPECT_EQ(nearest("xlm", words), "xml");
    EXPECT_EQ(nearest("hist", words), "history");
    EXPECT_EQ(nearest("explian", words), "explain");
    EXPECT_EQ(nearest("LIST", words), "list");
    EXPECT_EQ(nearest("drives", words), "");
    EXPECT_EQ(nearest("li", words), ""); // two letters may be anything
    EXPECT_EQ(nearest("lis", words), "list");
    EXPECT_EQ(nearest("", words), "");
    EXPECT_EQ(nearest(std::string(1'000'000, 'l'), words), "");
}

TEST(Nearest, ALongerWordMayHaveMoreMistakes)
{
    struct Case {
        std::string typed;
        std::string known;
        bool near;
    };
    const std::string longest(64, 'x');
    const std::vector<Case> cases = {
        {"abc", "axy", true},                                      // two of three letters
        {"abc", "xyz", false},        {"abcde", "abxy", false},    // three
        {"abcdef", "abcxyz", true},   {"abcdef", "abwxyz", false}, // four
        {"abc", "cb", false},                                      // nothing of it is left
        {"abcd", "badc", true},                                    // two pairs swapped
        {"abcdefg", "badcfeg", true}, {"abcd", "xabc", true},      // one put in, one left out
        {"AZa", "aza", true},         {longest, longest + "y", true}, {longest + "x", longest + "y", false},
    };
    for (const Case& one : cases)
        EXPECT_EQ(nearest(one.typed, {one.known}), one.near ? one.known : "") << one.typed;
}

TEST(Nearest, TheFirstOfTheNearestIsMeant)
{
    EXPECT_EQ(nearest("rack", {"rock", "ruck"}), "rock");
    EXPECT_EQ(nearest("rack", {"rook", "ruck"}), "ruck");
    EXPECT_EQ(nearest("rack", {"back", "racks"}), "racks"); // what was begun is nearer than any mistake
    EXPECT_EQ(nearest("AZA", {"xzx", "aza"}), "aza");
    EXPECT_EQ(nearest("aza", {"XZX", "AZA"}), "AZA");
    EXPECT_EQ(didYouMean("rack", {"racks"}), ": did you mean \"racks\"?");
    EXPECT_EQ(didYouMean("rack", {"drives"}), "");
}

} // namespace
