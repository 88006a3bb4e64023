// A program's command line: each command, argument and option is named once. Parsing, help, completion and
// the messages about what was mistyped are made from it.

#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace platform
{

/// Where values go: a flag sets a bool, what may be given several times fills a vector.
using Target = std::variant<bool*, std::string*, std::optional<std::string>*, std::vector<std::string>*,
                            uint32_t*, uint64_t*>;

/// What a shell offers where a value is typed; files where nothing else is said.
struct Offers {
    enum class Paths { none, files, folders } paths = Paths::files;
    /// Words, by the arguments before; none: paths.
    std::function<std::vector<std::string>(const std::vector<std::string>& arguments)> words = {};
    bool several = false; ///< words with commas between them, each perhaps with a sign before it
};

struct Argument {
    std::string_view name; ///< as in texts: "FILE"
    Target into;
    std::string_view help;
    bool required = true;
    Offers offers = {};
};

struct Option {
    std::string_view names; ///< "-o,--output"
    Target into;
    std::string_view help;
    std::string_view value = {}; ///< what stands for the value in texts; "a|b": one of these words
    bool required = false;
    Offers offers = {};
    /// The value may be missing: the word behind the option is it only where the offered words are what it
    /// consists of. Fills an optional text.
    bool mayLackValue = false;
    uint64_t least = 0;
    uint64_t most = std::numeric_limits<uint64_t>::max();
};

struct Command {
    std::string_view name;
    std::string_view help;
    std::vector<Argument> arguments = {};
    std::vector<Option> options = {};
    std::vector<std::string>* program = nullptr; ///< takes a program and its arguments behind "--"
    bool needsProgram = true;                    ///< where it takes one
    std::function<int()> run = {};
    int trouble = 2; ///< the status of a failure
};

struct Program {
    std::string_view name;
    std::string_view version;
    std::string_view help;
    std::string_view manual = {}; ///< the page that tells all: "kord(1)"
    std::vector<Command> commands;
    int trouble = 2; ///< the status where no command could be made out
};

/// The program's whole work: runs the command that the arguments name. What fails is told in one line.
/// \return the status to end with
int run(Program program, std::span<char*> arguments);

/// One line on standard error: "kord: what".
void complain(std::string_view program, std::string_view what);

/// Thrown where nobody reads standard output any more; it is told to nobody either.
class ReaderGone : public std::exception
{
};

} // namespace platform
