// A recording read back: the calls of a run in order, each as a fault rule would see and answer it.

#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace recorder
{

struct Call { // NOLINT(bugprone-exception-escape): moving JSON does not throw
    /// What a rule has to say to match it: call, scope, class and selection, or the program's bare name.
    nlohmann::json matcher;
    /// What a rule has to say to answer it: "answer", "fails", or "status" and "output". Empty: a call on
    /// sessions that succeeded.
    nlohmann::json outcome;

    std::vector<std::string> attributes; ///< queries: as requested
    /// For each response the resources that it names, by number: one for a query's.
    std::vector<std::vector<uint64_t>> resources;
    uint64_t resource = 0;              ///< actions: of which resource
    std::vector<std::string> arguments; ///< programs
};

/// Reads a tape's lines. A large facility's answers take hundreds of megabytes: a tape that is not needed any
/// more hands its own on.
std::vector<Call> readCalls(std::vector<nlohmann::json> tape);

} // namespace recorder
