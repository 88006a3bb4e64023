// The manual page, the help and the completion of a command name the same subcommands and the same options.

#include "consoleRun.h"
#include "process.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <regex>
#include <set>

namespace
{

using Names = std::set<std::string>;

const std::filesystem::path source = KORD_SOURCE_DIR;

/// Every first group of the expression's matches in the text.
Names found(const std::string& text, const std::string& expression)
{
    const std::regex regex(expression);
    Names names;
    for (auto match = std::sregex_iterator(text.begin(), text.end(), regex); match != std::sregex_iterator();
         ++match)
        names.insert((*match)[1]);
    return names;
}

Names without(Names names, const Names& others)
{
    for (const std::string& other : others)
        names.erase(other);
    return names;
}

/// A command with its page and its completion; the parameter is its name.
class Manual : public testing::TestWithParam<std::string>
{
protected:
    const std::string name = GetParam();
    const std::string program = std::string(KORD_BUILD_DIR) + "/bin/" + name;
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

    /// The commands that the help lists: indented lines behind the heading "Subcommands:".
    [[nodiscard]] Names commandsOfHelp() const
    {
        const std::string help = helpOf({});
        return found(help.substr(help.find("Subcommands:")), "\n  ([a-z]+) ");
    }

    [[nodiscard]] Names optionsOfHelp(const std::string& command) const
    {
        return found(helpOf({command}), "(--[a-z][a-z-]*)");
    }

    /// The page's text from a line on to the next of its kind.
    [[nodiscard]] std::string stretch(const std::string& start, const std::string& next) const
    {
        const size_t at = page.find(start);
        if (at == std::string::npos) return "";
        return page.substr(at, std::min(page.find(next, at + 1), page.find("\n.Sh ", at + 1)) - at);
    }

    /// What the shell offers behind these words.
    [[nodiscard]] Names completions(const std::string& words, int position) const
    {
        std::string function = "_" + name;
        std::ranges::replace(function, '-', '_');
        const std::string script = "source " + (source / "packaging" / (name + ".bash")).string() +
                                   "; COMP_WORDS=(" + name + ' ' + words +
                                   " ''); COMP_CWORD=" + std::to_string(position) +
                                   "; compgen() { if [[ $1 == -W ]]; then builtin compgen \"$@\"; fi; }; " +
                                   function + "; printf '%s\\n' \"${COMPREPLY[@]}\"";
        const kordTest::Outcome outcome =
            kordTest::runProcess({.arguments = {"/bin/bash", "-c", script}, .folder = "/"});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        const std::vector<std::string> lines = kordTest::splitLines(outcome.output);
        return {lines.begin(), lines.end()};
    }
};

Names optionsOfPage(const std::string& text)
{
    Names options;
    for (const std::string& name : found(text, "Fl -([a-z][a-z-]*)"))
        options.insert("--" + name);
    return options;
}

TEST_P(Manual, namesEveryCommand)
{
    const Names commands = commandsOfHelp();
    ASSERT_FALSE(commands.empty());
    EXPECT_EQ(found(page, "\\.Ss " + name + " ([a-z]+)"), commands);
    EXPECT_EQ(without(completions("", 1), {"--help", "--version"}), commands);
}

TEST_P(Manual, namesEveryOption)
{
    for (const std::string& command : commandsOfHelp()) {
        const Names options = without(optionsOfHelp(command), {"--help"});
        EXPECT_EQ(optionsOfPage(stretch(".Ss " + name + ' ' + command + "\n", "\n.Ss ")), options) << command;
        EXPECT_EQ(optionsOfPage(stretch(".Nm\n.Cm " + command + "\n", "\n.Nm\n")), options) << command;
        EXPECT_EQ(without(completions(command, 2), {"--help", "--"}), options) << command;
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, Manual, testing::Values("kord", "kord-console"),
                         [](const auto& instance) { return instance.param == "kord" ? "kord" : "console"; });

TEST(CollectorManual, tellsEveryConsoleLineOfTheCollector)
{
    const std::string manual = kordTest::readFile(source / "docs/man/addTarnKord.8").value();
    const std::string program = kordTest::readFile(source / "kord/c/addTarnKord.cpp").value();
    const Names lines = found(program, "\"([A-Z][A-Za-z ]* fails\\.|XML file was built [^\"\\\\]*)");
    ASSERT_GE(lines.size(), 9U);
    EXPECT_EQ(found(manual, "\\.It \"([^\"]*)\""), lines);
}

} // namespace
