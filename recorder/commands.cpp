// The console's programs are started by the shell. A command that begins with one of them is given to the
// shell with the witness in front, which runs the program and writes down how it ended; other commands pass
// as they are. Behind the console's wrapper a witness would ask for rights that only the console's programs
// have. There, the recorder itself says what has started, where the wrapper passes it on.

#include "recorder/tape.h"

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>

namespace
{

using namespace recorder;

bool isConsoleProgram(std::string_view word)
{
    return std::ranges::find(consolePrograms, word) != consolePrograms.end();
}

std::string_view firstWord(std::string_view command)
{
    command.remove_prefix(std::min(command.find_first_not_of(' '), command.size()));
    return command.substr(0, command.find(' '));
}

[[gnu::constructor]] void noteStart(int count, char** arguments, char**)
{
    if (count > 0 && isConsoleProgram(arguments[0])) append({{"started", arguments[0]}});
}

} // namespace

extern "C" int system(const char* command)
{
    static auto* const next = reinterpret_cast<decltype(system)*>(dlsym(RTLD_NEXT, "system"));
    if (command == nullptr || !isConsoleProgram(firstWord(command))) return next(command);
    return next((std::string("\"$") + witnessVariable + "\" " + command).c_str());
}
