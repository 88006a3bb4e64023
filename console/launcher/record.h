// `kord-console record`: a program on a console, and a facility file that replays what it met there.

#pragma once

#include <string>
#include <vector>

namespace console::launcher
{

struct RecordOptions {
    std::string output; ///< the facility file
    bool redact = false;
    bool verify = false; ///< replay it at once and compare
    std::vector<std::string> program;
};

/// Returns the program's status; a Failure when it could not be run or recorded, or its replay differs.
int record(const RecordOptions& options);

} // namespace console::launcher
