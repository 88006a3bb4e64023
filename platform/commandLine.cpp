#include "platform/commandLine.h"

#include "platform/completion.h"
#include "platform/failure.h"
#include "platform/nearest.h"
#include "platform/text.h"
#include "platform/usage.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <new>
#include <optional>

namespace platform
{

namespace
{

std::string inQuotes(std::string_view text)
{
    return '"' + std::string(text) + '"';
}

void print(const std::string& text)
{
    const bool whole = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (whole && std::fflush(stdout) == 0) return;
    if (errno == EPIPE) throw ReaderGone();
    throw failedOn("standard output");
}

// --- Values

uint64_t numberOf(const Option& option, const std::string& text, uint64_t most)
{
    uint64_t number = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = problem == std::errc() && end == text.data() + text.size() && !text.empty();
    if (whole && number >= option.least && number <= most) return number;
    std::string range = " from " + std::to_string(option.least);
    if (option.most != std::numeric_limits<uint64_t>::max()) range += " to " + std::to_string(most);
    throw Failure(namesOf(option).back() + ": " + inQuotes(text) + " is no number" + range);
}

void checkChoice(const Option& option, const std::string& text)
{
    const std::vector<std::string> choices = choicesOf(option);
    if (choices.empty() || std::ranges::find(choices, text) != choices.end()) return;
    throw Failure(namesOf(option).back() + ": " + inQuotes(text) + " is none of " +
                  std::string(option.value) + didYouMean(text, choices));
}

/// Puts what was given for an option where it belongs; of several where one is taken, the last.
struct Take {
    const Option& option;
    const std::vector<std::string>& given;

    void operator()(bool* flag) const { *flag = true; }
    void operator()(std::string* text) const
    {
        checkChoice(option, given.back());
        *text = given.back();
    }
    void operator()(std::optional<std::string>* text) const { *text = given.back(); }
    void operator()(std::vector<std::string>* texts) const { *texts = given; }
    void operator()(uint64_t* number) const { *number = numberOf(option, given.back(), option.most); }
    void operator()(uint32_t* number) const
    {
        const auto most = std::min<uint64_t>(option.most, std::numeric_limits<uint32_t>::max());
        *number = static_cast<uint32_t>(numberOf(option, given.back(), most));
    }
};

void addOption(CLI::App& app, const Option& option)
{
    const std::string names(option.names);
    if (!takesValue(option)) {
        app.add_flag_callback(names, [flag = std::get<bool*>(option.into)] { *flag = true; });
        return;
    }
    const auto take = [&option](const std::vector<std::string>& given) {
        std::visit(Take{.option = option, .given = given}, option.into);
        return true;
    };
    app.add_option(names, take)
        ->type_name(std::string(option.value))
        ->required(option.required)
        ->take_all()
        ->allow_extra_args(false);
}

// --- Arguments

bool isOption(const std::string& text)
{
    return text.size() > 1 && text.front() == '-';
}

void refuseUnknownOptions(const Command& command, const std::vector<std::string>& rest)
{
    const auto unknown = std::ranges::find_if(rest, isOption);
    if (unknown == rest.end()) return;
    const std::string name = unknown->substr(0, unknown->find('='));
    std::vector<std::string> known = {"--help"};
    for (const Option& option : command.options) {
        const std::vector<std::string> names = namesOf(option);
        known.insert(known.end(), names.begin(), names.end());
    }
    throw Failure(std::string(command.name) + " has no option " + inQuotes(name) + didYouMean(name, known));
}

void takeArguments(const Program& program, const Command& command, std::vector<std::string> given)
{
    size_t taken = 0;
    for (const Argument& argument : command.arguments) {
        const bool there = taken < given.size();
        if (!there && argument.required)
            throw Failure(std::string(argument.name) + " is required: " + briefUsage(program, command));
        if (!there) break;
        if (auto* const* several = std::get_if<std::vector<std::string>*>(&argument.into)) {
            (*several)->assign(given.begin() + static_cast<std::ptrdiff_t>(taken), given.end());
            taken = given.size();
        } else {
            *std::get<std::string*>(argument.into) = given[taken++];
        }
    }
    if (taken < given.size())
        throw Failure(inQuotes(given[taken]) + " is one too many: " + briefUsage(program, command));
}

/// Whether all words between the commas are among those that are offered for the option.
bool isValueOf(const Option& option, const std::string& text, const std::vector<std::string>& before)
{
    if (!option.offers.words) return false;
    const std::vector<std::string> words = option.offers.words(before);
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find(',', at), text.size());
        if (std::ranges::find(words, text.substr(at, end - at)) == words.end()) return false;
        at = end + 1;
    }
    return true;
}

/// Takes the options whose values may be missing, which the library would not know from arguments.
void takeOpenOptions(const Command& command, std::vector<std::string>& given)
{
    for (const Option& option : command.options) {
        if (!option.mayLackValue) continue;
        auto& target = *std::get<std::optional<std::string>*>(option.into);
        const std::string name = namesOf(option).back();
        for (auto at = given.begin(); at != given.end();) {
            const bool alone = *at == name;
            if (!alone && !at->starts_with(name + '=')) {
                ++at;
                continue;
            }
            target = alone ? "" : at->substr(name.size() + 1);
            at = given.erase(at);
            if (alone && at != given.end() && isValueOf(option, *at, {given.begin(), at})) {
                target = *at;
                at = given.erase(at);
            }
        }
    }
}

/// The options by the library, which leaves the rest in its order.
std::vector<std::string> takeOptions(const Command& command, std::vector<std::string> given)
{
    takeOpenOptions(command, given);
    CLI::App app;
    app.set_help_flag();
    app.allow_extras();
    for (const Option& option : command.options) {
        if (!option.mayLackValue) addOption(app, option);
    }
    std::vector<std::string> reversed(given.rbegin(), given.rend());
    try {
        app.parse(reversed);
    } catch (const CLI::ParseError& problem) {
        refuseUnknownOptions(command, app.remaining());
        throw Failure(problem.what());
    }
    refuseUnknownOptions(command, app.remaining());
    return app.remaining();
}

/// Everything behind "--" is no option, whatever it looks like.
void parse(const Program& program, const Command& command, const std::vector<std::string>& given)
{
    const auto mark = std::ranges::find(given, "--");
    std::vector<std::string> arguments = takeOptions(command, {given.begin(), mark});
    const std::vector<std::string> behind(mark == given.end() ? mark : mark + 1, given.end());
    if (command.program == nullptr)
        arguments.insert(arguments.end(), behind.begin(), behind.end());
    else
        *command.program = behind;
    takeArguments(program, command, std::move(arguments));
    if (command.program != nullptr && command.needsProgram && behind.empty())
        throw Failure("there is no program to run: name it after --");
}

// --- Commands

const Command& commandOf(const Program& program, const std::string& name)
{
    const auto found = std::ranges::find(program.commands, name, &Command::name);
    if (found != program.commands.end()) return *found;
    std::vector<std::string> known = {"--help", "--version"};
    for (const Command& command : program.commands)
        known.emplace_back(command.name);
    const std::string meant = didYouMean(name, known);
    const std::string all = ": \"" + std::string(program.name) + " --help\" lists them";
    throw Failure((isOption(name) ? "no option " : "no command ") + inQuotes(name) +
                  (meant.empty() ? all : meant));
}

bool asksForHelp(const std::vector<std::string>& given)
{
    const auto end = std::ranges::find(given, "--");
    return std::any_of(given.begin(), end, [](const auto& one) { return one == "-h" || one == "--help"; });
}

int runCommand(const Program& program, const Command& command, const std::vector<std::string>& given)
{
    if (asksForHelp(given)) {
        print(helpOf(program, command));
        return 0;
    }
    parse(program, command, given);
    return command.run();
}

/// What no command but the program itself answers.
bool answered(const Program& program, const std::string& first, const std::vector<std::string>& given)
{
    const bool help = first == "-h" || first == "--help" || (first == "help" && given.empty());
    if (help)
        print(helpOf(program));
    else if (first == "help")
        print(helpOf(program, commandOf(program, given.front())));
    else if (first == "--version")
        print(std::string(program.name) + ' ' + std::string(program.version) + '\n');
    else if (first == "complete")
        print(offered(program, {given.begin() + (given.empty() ? 0 : 1), given.end()}));
    return help || first == "help" || first == "--version" || first == "complete";
}

int attempt(std::string_view name, int trouble, const std::function<int()>& work)
{
    try {
        return work();
    } catch (const ReaderGone&) {
        return trouble;
    } catch (const std::bad_alloc&) {
        complain(name, "this machine has not enough memory for it");
    } catch (const std::exception& failure) {
        complain(name, failure.what());
    }
    return trouble;
}

} // namespace

int run(Program program, std::span<char*> arguments)
{
    std::string shell;
    program.commands.push_back(
        {.name = "completion",
         .help = "Print the script that completes commands, options and values in a shell",
         .arguments = {{.name = "SHELL",
                        .into = &shell,
                        .help = "bash, zsh or fish",
                        .offers = {.words = [](const auto&) { return shells(); }}}},
         .run =
             [&] {
                 print(completionScript(program, shell));
                 return 0;
             },
         .trouble = program.trouble});
    const std::vector<std::string> given(arguments.begin() + 1, arguments.end());
    const Command* command = nullptr;
    const int status = attempt(program.name, program.trouble, [&] {
        if (given.empty())
            throw Failure("which command? \"" + std::string(program.name) + " --help\" lists them");
        if (answered(program, given.front(), {given.begin() + 1, given.end()})) return 0;
        command = &commandOf(program, given.front());
        return 0;
    });
    if (command == nullptr) return status;
    return attempt(program.name, command->trouble, [&] {
        return runCommand(program, *command, {given.begin() + 1, given.end()});
    });
}

void complain(std::string_view program, std::string_view what)
{
    const std::string line = std::string(program) + ": " + shown(what) + '\n';
    std::fputs(line.c_str(), stderr);
}

} // namespace platform
