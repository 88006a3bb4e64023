// Runs a program without a shell, within a time limit, and keeps what it printed.

#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace kordTest
{

struct Command {
    std::vector<std::string> arguments; ///< the program, then its arguments
    std::filesystem::path folder;       ///< where it runs
    std::chrono::milliseconds limit{60'000};
};

struct Outcome {
    int status = 0; ///< the exit status, or 128 and the signal that ended the program
    bool timedOut = false;
    std::string output;
    std::string error;
};

/// Runs the program with an empty standard input and the umask 022. A program that outlives its limit,
/// times KORD_PATIENCE where that is set, is killed with all that it started.
Outcome runProcess(const Command& command);

/// The folder of the build whose programs are tried: the tests' own, or where KORD_TRIED is set, that one.
std::filesystem::path triedBuild();

/// Whether runs on the console get a mount namespace of their own here.
bool hasNamespaces();

} // namespace kordTest
