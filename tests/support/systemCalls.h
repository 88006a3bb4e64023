// Runs a program and keeps account of the system calls that it makes itself, so that a test can tell what a
// step costs without a timer.

#pragma once

#include "process.h"

#include <optional>
#include <string>
#include <vector>

namespace kordTest
{

struct SystemCall {
    std::string
        name; ///< "openat"; its number in decimal for a call that is not on a file and makes no process
    std::string file; ///< the path given, or that of the descriptor given; empty for any other call
};

struct CallRecord {
    int status = 0; ///< the command's exit status, or 128 and the signal that ended it
    std::vector<SystemCall> calls;
};

/// Runs the command, which starts `program` (a bare name) sooner or later, and records that process's calls
/// from its start to its end, none of the processes' that it makes. Nothing where the kernel lets no process
/// trace another.
std::optional<CallRecord> recordSystemCalls(const Command& command, const std::string& program);

} // namespace kordTest
