// The manual page and the help of a program name the same commands with the same options.

#include "consoleRun.h"
#include "pattern.h"
#include "process.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <set>

namespace
{

using kordTest::Pattern;
using Names = std::set<std::string>;

const std::filesystem::path source = KORD_SOURCE_DIR;

/// Every first group of the expression's matches in the text.
Names found(const std::string& text, const std::string& expression)
{
    Names names;
    for (const Pattern::Match& match : Pattern(expression).all(text))
        names.insert(match[1]);
    return names;
}

std::string replaced(const std::string& text, const std::string& expression, const std::string& by)
{
    return Pattern(expression).replaced(text, by);
}

/// The synopsis of a command in the page's own language as its help has it: "[--json] FILE ...".
std::string plain(const std::string& synopsis)
{
    std::string text = replaced(synopsis, "\n?\\.Op ([^\n]*)", " [$1]");
    text = replaced(text, " Op ([^\n\\]]*)", " [$1]"); // within another
    text = replaced(text, "\n\\.", " ");
    text = replaced(text, "\\b(Fl|Cm) ", "$1");
    text = replaced(text, "Fl", "-");
    text = replaced(text, "Cm|Ar ", "");
    text = replaced(text, "\\s+", " ");
    std::ranges::transform(text, text.begin(), [](char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

/// A command with its page; the parameter is its name.
class Manual : public testing::TestWithParam<std::string>
{
protected:
    const std::string name = GetParam();
    const std::string program = kordTest::triedBuild() / "bin" / name;
    const std::string page = kordTest::readFile(source / "docs/man" / (name + ".1")).value();

    [[nodiscard]] std::string helpOf(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> command = {program};
        command.insert(command.end(), arguments.begin(), arguments.end());
        command.emplace_back("--help");
        const kordTest::Outcome outcome = kordTest::runProcess({.arguments = command, .folder = "/"});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        return outcome.output;
    }

    [[nodiscard]] Names commandsOfHelp() const
    {
        const std::string help = helpOf({});
        return found(help.substr(help.find("Commands:")), "\n  ([a-z]+) ");
    }

    /// What the usage says behind the command's name, in the words of a synopsis.
    [[nodiscard]] std::string usageOf(const std::string& command) const
    {
        const std::string help = helpOf({command});
        std::string usage = help.substr(0, help.find("\n\n"));
        usage = replaced(usage.substr(usage.find(name + ' ' + command) + name.size()), "\\s+", " ");
        usage = replaced(usage, "\\]\\.\\.\\.", " ...]");
        return plain(replaced(usage, "([^ ])\\.\\.\\.( |$)", "$1 ...$2"));
    }

    /// The page's text from a line on to the next of its kind.
    [[nodiscard]] std::string stretch(const std::string& start, const std::string& next) const
    {
        const size_t at = page.find(start);
        if (at == std::string::npos) return "";
        return page.substr(at, std::min(page.find(next, at + 1), page.find("\n.Sh ", at + 1)) - at);
    }
};

TEST_P(Manual, namesEveryCommand)
{
    const Names commands = commandsOfHelp();
    ASSERT_FALSE(commands.empty());
    EXPECT_EQ(found(page, "\\.Ss " + name + " ([a-z]+)"), commands);
}

TEST_P(Manual, hasTheSynopsisOfEveryCommand)
{
    for (const std::string& command : commandsOfHelp()) {
        const std::string synopsis = stretch("\n.Cm " + command + "\n", "\n.Nm\n");
        EXPECT_EQ(plain(synopsis), usageOf(command)) << command;
    }
}

/// Options that several commands have are described once, in a section of their own.
TEST_P(Manual, describesEveryOption)
{
    const Names common = found(stretch("\n.Sh OPTIONS\n", "\n.Sh "), "\\.It[^\n]* Fl -([a-z][a-z-]*)");
    for (const std::string& command : commandsOfHelp()) {
        const std::string section = stretch(".Ss " + name + ' ' + command + "\n", "\n.Ss ");
        Names described = found(section, "\\.It[^\n]* Fl -([a-z][a-z-]*)");
        for (const std::string& option :
             found(helpOf({command}), "\n  [^-\n]*(?:-[a-z], )? *--([a-z][a-z-]*)"))
            EXPECT_TRUE(described.contains(option) || common.contains(option)) << command << " --" << option;
    }
}

/// What every command says of itself. KORD_UPDATE=1 renews the file, for somebody to read it over.
TEST_P(Manual, hasTheHelpThatWasReadOver)
{
    const std::filesystem::path file = source / "tests/tool/help" / (name + ".txt");
    std::string help = helpOf({});
    for (const std::string& command : commandsOfHelp())
        help.append("\n$ ")
            .append(name)
            .append(1, ' ')
            .append(command)
            .append(" --help\n")
            .append(helpOf({command}));
    if (std::getenv("KORD_UPDATE") != nullptr) std::ofstream(file) << help;
    EXPECT_EQ(kordTest::readFile(file), help);
}

INSTANTIATE_TEST_SUITE_P(Commands, Manual, testing::Values("kord", "kord-console"),
                         [](const auto& instance) { return instance.param == "kord" ? "kord" : "console"; });

TEST(CollectorManual, tellsEveryConsoleLineOfTheCollector)
{
    const std::string manual = kordTest::readFile(source / "docs/man/addTarnKord.8").value();
    const std::string program = kordTest::readFile(source / "kord/c/addTarnKord.cpp").value();
    const Names lines = found(program, "\"([A-Z][A-Za-z ]* fails\\. ?|XML file was built [^\"\\\\]*)");
    ASSERT_GE(lines.size(), 9U);
    EXPECT_EQ(found(manual, "\\.It \"([^\"]*)\""), lines);
}

} // namespace
