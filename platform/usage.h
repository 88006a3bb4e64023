// What --help prints.

#pragma once

#include "platform/commandLine.h"

#include <string>

namespace platform
{

/// The program's commands, a line for each.
std::string helpOf(const Program& program);

/// A command's usage, arguments and options.
std::string helpOf(const Program& program, const Command& command);

/// A command's arguments in one line: "kord list [OPTION]... KIND FILE...".
std::string briefUsage(const Program& program, const Command& command);

/// The words that a choice of words offers; none where the value is something else.
std::vector<std::string> choicesOf(const Option& option);

/// "-o" and "--output".
std::vector<std::string> namesOf(const Option& option);

/// Whether what an option or argument fills takes several values.
bool takesSeveral(const Target& target);

/// Whether an option has a value.
bool takesValue(const Option& option);

} // namespace platform
