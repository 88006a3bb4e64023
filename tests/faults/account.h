// What a run must have come to, worked out from the answers that it was given.

#pragma once

#include "calls.h"

namespace sweep
{

struct Account {
    bool failed = false;   ///< a step stopped the run
    bool cleanedUp = true; ///< the run's end was reached; a first session that cannot be had skips it
    bool minorErrors = false;
    std::string output;     ///< standard output
    std::vector<int> toEnd; ///< scopes of the sessions that must be ended, in order
    std::vector<int> ended; ///< those that were
    std::vector<int> open;  ///< scopes of the sessions that stay open
    Texts events;           ///< reference codes in order
    std::string wrongCall;  ///< the first call that must not have been made, and why; empty: none

    bool document = false;   ///< one is written
    int missingClosings = 0; ///< of the drawers' lists of partitions
    int extraClosings = 0;
    std::map<std::string, size_t> resources; ///< by display name: those that stand for responses
    Texts counts; ///< each complete partition's counts of the logical configuration

    [[nodiscard]] int status() const { return failed ? 255 : 3; }
};

Account accountOf(const Result& result);

} // namespace sweep
