#include "platform/usage.h"

#include "platform/text.h"

#include <algorithm>

namespace platform
{

namespace
{

constexpr size_t lineWidth = 80;

std::vector<std::string> split(std::string_view text, char separator)
{
    std::vector<std::string> words;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find(separator, at), text.size());
        words.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
    return words;
}

/// Words in lines of a bearable width; lines behind the first one start at the indent.
std::string wrapped(std::string text, const std::vector<std::string>& words, size_t indent)
{
    size_t column = widthOf(text);
    for (bool first = true; const std::string& word : words) {
        const bool fits = first || column + 1 + widthOf(word) <= lineWidth;
        if (!fits) text.append(1, '\n').append(indent, ' ');
        column = fits ? column : indent;
        const size_t blank = first || !fits ? 0 : 1;
        text.append(blank, ' ').append(word);
        column += blank + widthOf(word);
        first = false;
    }
    return text + '\n';
}

std::string valueText(const Option& option)
{
    if (!takesValue(option)) return "";
    const std::string value(option.value);
    return option.mayLackValue ? " [" + value + ']' : ' ' + value;
}

std::string usageOf(const Option& option)
{
    std::string text = namesOf(option).front();
    text += valueText(option);
    if (!option.required) text = '[' + text + ']';
    return takesSeveral(option.into) ? text + "..." : text;
}

std::string usageOf(const Argument& argument)
{
    std::string text(argument.name);
    if (!argument.required) text = '[' + text + ']';
    return takesSeveral(argument.into) ? text + "..." : text;
}

std::string usageOf(const Program& program, const Command& command)
{
    std::vector<std::string> words;
    for (const Option& option : command.options)
        words.push_back(usageOf(option));
    for (const Argument& argument : command.arguments)
        words.push_back(usageOf(argument));
    const char* mark = command.needsProgram ? "--" : "[--";
    const char* rest = command.needsProgram ? "[ARGUMENT]..." : "[ARGUMENT]...]";
    if (command.program != nullptr) words.insert(words.end(), {mark, "PROGRAM", rest});
    std::string start = "usage: ";
    start.append(program.name).append(1, ' ').append(command.name).append(1, ' ');
    const size_t indent = start.size();
    return wrapped(std::move(start), words, indent);
}

/// A name and what it means, in two columns.
std::string entry(const std::string& name, std::string_view help, size_t column)
{
    constexpr size_t gap = 2;
    std::string text = std::string(gap, ' ') + name;
    if (widthOf(text) + gap > column)
        text.append(1, '\n').append(column, ' ');
    else
        text.append(column - widthOf(text), ' ');
    const size_t line = text.rfind('\n');
    const std::string before = line == std::string::npos ? "" : text.substr(0, line + 1);
    return before + wrapped(text.substr(before.size()), split(help, ' '), column);
}

/// What holds where the option is not given. A number that could not be given is none.
std::string defaultOf(const Option& option)
{
    struct Text {
        uint64_t least;

        [[nodiscard]] std::string of(uint64_t number) const
        {
            return number < least ? "" : std::to_string(number);
        }
        std::string operator()(const uint32_t* number) const { return of(*number); }
        std::string operator()(const uint64_t* number) const { return of(*number); }
        std::string operator()(const std::string* text) const { return *text; }
        std::string operator()(const void*) const { return ""; }
    };
    const std::string text = std::visit(Text{option.least}, option.into);
    return text.empty() ? "" : " (else " + text + ")";
}

std::string entryOf(const Option& option)
{
    constexpr size_t column = 26;
    const std::vector<std::string> names = namesOf(option);
    std::string text = names.front().starts_with("--") ? "    " + names.front() : names.front();
    if (names.size() > 1) text += ", " + names[1];
    text += valueText(option);
    return entry(text, std::string(option.help) + defaultOf(option), column);
}

} // namespace

std::string briefUsage(const Program& program, const Command& command)
{
    std::string text = std::string(program.name) + ' ' + std::string(command.name);
    if (!command.options.empty()) text += " [OPTION]...";
    for (const Argument& argument : command.arguments)
        text += ' ' + usageOf(argument);
    return text + (command.program == nullptr ? "" : " -- PROGRAM [ARGUMENT]...");
}

std::vector<std::string> choicesOf(const Option& option)
{
    if (option.value.find('|') == std::string_view::npos) return {};
    return split(option.value, '|');
}

std::vector<std::string> namesOf(const Option& option)
{
    return split(option.names, ',');
}

bool takesSeveral(const Target& target)
{
    return std::holds_alternative<std::vector<std::string>*>(target);
}

bool takesValue(const Option& option)
{
    return !std::holds_alternative<bool*>(option.into);
}

std::string helpOf(const Program& program)
{
    constexpr size_t column = 16;
    const std::string name(program.name);
    std::string text =
        "usage: " + name + " COMMAND [OPTION]... [ARGUMENT]...\n       " + name + " --version\n\n";
    text.append(program.help).append("\n\nCommands:\n");
    for (const Command& command : program.commands)
        text += entry(std::string(command.name), command.help, column);
    text += "\n\"" + name + " COMMAND --help\" tells more of a command";
    if (!program.manual.empty())
        text.append(", the manual page ").append(program.manual).append(" tells all");
    return text + ".\n";
}

std::string helpOf(const Program& program, const Command& command)
{
    constexpr size_t column = 26;
    std::string text = usageOf(program, command) + '\n' + std::string(command.help) + ".\n";
    if (!command.arguments.empty()) text += '\n';
    for (const Argument& argument : command.arguments)
        text += entry(std::string(argument.name), argument.help, column);
    text += '\n';
    for (const Option& option : command.options)
        text += entryOf(option);
    return text + entry("-h, --help", "This help", column);
}

} // namespace platform
