// Running programs to their end.

#pragma once

#include <string>
#include <vector>

namespace bench
{

using Command = std::vector<std::string>;

/// The folder of this program, where all the others lie; with a slash at its end.
std::string programFolder();

struct Ended {
    std::string output;
    double time;   ///< nanoseconds of the program's own user and system time, without its children's
    double peak;   ///< bytes of memory, but no less than this program has in use
    double faults; ///< pages that it or its children touched first
};

enum class Errors { shown, thrownAway };

/// Runs the program, which is named by its path, and keeps its standard output. Throws when it cannot be
/// started, ends in another way than with this status, or its time cannot be told.
Ended run(const Command& command, int status = 0, Errors errors = Errors::shown);

} // namespace bench
