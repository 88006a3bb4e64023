// `kord record`: a program on a console, and a facility file that replays what it met there.

#pragma once

#include <string>
#include <vector>

namespace recorder
{

/// What `kord record` ends with when it could not run, record or replay the program.
constexpr int recordingFailed = 125;

struct Options {
    std::string output; ///< the facility file
    bool redact = false;
    std::string map; ///< with redact: the file that keeps the pairs of originals and stand-ins; empty: none
    bool verify = false; ///< replay it at once and compare
    std::vector<std::string> program;
};

/// Returns the program's status; a platform::Failure when it could not be run or recorded, or its replay
/// differs.
int record(const Options& options);

} // namespace recorder
