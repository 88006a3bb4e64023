// What a shell offers while a command line is typed.

#pragma once

#include "platform/commandLine.h"

#include <string>
#include <string_view>
#include <vector>

namespace platform
{

/// The shells that `completionScript` knows.
const std::vector<std::string>& shells();

/// The shell's script for a program. It asks the program what to offer, and leaves paths to the shell.
std::string completionScript(const Program& program, std::string_view shell);

/// What may stand in place of the last word. The first line says what kind of thing: `words`, `parts` (words
/// that are not the end of theirs), `files`, `folders` or `programs`; words follow, a line each, with what
/// they mean behind a tabulator.
std::string offered(const Program& program, const std::vector<std::string>& words);

} // namespace platform
