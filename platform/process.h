// Running the program: as a child whose end and signals are passed on.

#pragma once

#include <csignal>
#include <string>
#include <vector>

namespace platform
{

/// The signals that runProgram takes, and what the program gets of the mask before.
struct HeldSignals {
    sigset_t held;
    sigset_t before;
};

/// Holds back the signals that end a program, for runProgram to pass on. They stay held until this process
/// ends, so that what it has to tidy up is tidied up.
HeldSignals holdSignals();

/// Runs the program in the environment and working folder of this process, passes signals on to it, and
/// returns its exit status, or 128 and the signal that ended it. A Failure when it cannot be started.
int runProgram(const std::vector<std::string>& program, const HeldSignals& signals);

/// The command as somebody would type it into a shell.
std::string commandText(const std::vector<std::string>& command);

} // namespace platform
