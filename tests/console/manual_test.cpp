// The manual page, the help and the completion of kord-console name the same commands and the same options.

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
const std::string console = std::string(KORD_BUILD_DIR) + "/bin/kord-console";

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

std::string helpOf(const std::vector<std::string>& arguments)
{
    std::vector<std::string> command = {console};
    command.insert(command.end(), arguments.begin(), arguments.end());
    command.emplace_back("--help");
    const kordTest::Outcome outcome = kordTest::runProcess({.arguments = command, .folder = "/"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    return outcome.output;
}

/// The commands that the help lists: indented lines behind the heading "Subcommands:".
Names commandsOfHelp()
{
    const std::string help = helpOf({});
    return found(help.substr(help.find("Subcommands:")), "\n  ([a-z]+) ");
}

Names optionsOfHelp(const std::string& command)
{
    return found(helpOf({command}), "(--[a-z][a-z-]*)");
}

std::string page()
{
    return kordTest::readFile(source / "docs/man/kord-console.1").value();
}

/// The page's subsection on a command.
std::string subsection(const std::string& command)
{
    const std::string text = page();
    const size_t start = text.find(".Ss kord-console " + command + "\n");
    if (start == std::string::npos) return "";
    return text.substr(start,
                       std::min(text.find("\n.Ss ", start + 1), text.find("\n.Sh ", start + 1)) - start);
}

/// The page's synopsis of a command.
std::string synopsis(const std::string& command)
{
    const std::string text = page();
    const size_t start = text.find(".Nm\n.Cm " + command + "\n");
    if (start == std::string::npos) return "";
    return text.substr(start,
                       std::min(text.find("\n.Nm\n", start + 1), text.find("\n.Sh ", start + 1)) - start);
}

Names optionsOfPage(const std::string& text)
{
    Names options;
    for (const std::string& name : found(text, "Fl -([a-z][a-z-]*)"))
        options.insert("--" + name);
    return options;
}

/// What the shell offers behind these words.
Names completions(const std::string& words, int position)
{
    const std::string script = "source " + (source / "packaging/kord-console.bash").string() +
                               "; COMP_WORDS=(kord-console " + words +
                               " ''); COMP_CWORD=" + std::to_string(position) +
                               "; compgen() { if [[ $1 == -W ]]; then builtin compgen \"$@\"; fi; }"
                               "; _kord_console; printf '%s\\n' \"${COMPREPLY[@]}\"";
    const kordTest::Outcome outcome =
        kordTest::runProcess({.arguments = {"/bin/bash", "-c", script}, .folder = "/"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    const std::vector<std::string> lines = kordTest::splitLines(outcome.output);
    return {lines.begin(), lines.end()};
}

Names without(Names names, const Names& others)
{
    for (const std::string& other : others)
        names.erase(other);
    return names;
}

TEST(Manual, namesEveryCommand)
{
    const Names commands = commandsOfHelp();
    ASSERT_TRUE(commands.contains("run"));
    EXPECT_EQ(found(page(), "\\.Ss kord-console ([a-z]+)"), commands);
    EXPECT_EQ(without(completions("", 1), {"--help"}), commands);
}

TEST(Manual, namesEveryOption)
{
    for (const std::string& command : commandsOfHelp()) {
        const Names options = without(optionsOfHelp(command), {"--help"});
        EXPECT_EQ(optionsOfPage(subsection(command)), options) << command;
        EXPECT_EQ(optionsOfPage(synopsis(command)), options) << command;
        EXPECT_EQ(without(completions(command, 2), {"--help", "--"}), options) << command;
    }
}

TEST(Manual, tellsEveryConsoleLineOfTheCollector)
{
    const std::string manual = kordTest::readFile(source / "docs/man/addTarnKord.8").value();
    const std::string program = kordTest::readFile(source / "kord/c/addTarnKord.cpp").value();
    const Names lines = found(program, "\"([A-Z][A-Za-z ]* fails\\.|XML file was built [^\"\\\\]*)");
    ASSERT_GE(lines.size(), 9U);
    EXPECT_EQ(found(manual, "\\.It \"([^\"]*)\""), lines);
}

} // namespace
