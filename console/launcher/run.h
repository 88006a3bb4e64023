// `kord-console run`: a program on the simulated console.

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace console::launcher
{

struct RunOptions {
    std::string facility;
    std::string root;
    std::optional<std::string> user;  ///< overrides the facility's
    std::vector<std::string> program; ///< empty: what the facility was recorded of
};

/// Returns the program's status; a Failure when it could not be run.
int run(const RunOptions& options);

} // namespace console::launcher
