// The command kord, run as its users run it.

#pragma once

#include "process.h"

#include <filesystem>
#include <string>
#include <vector>

namespace toolTest
{

inline const std::string kord = kordTest::triedBuild() / "bin/kord";

/// The documents that whole runs leave.
inline const std::filesystem::path expected = std::filesystem::path(KORD_SOURCE_DIR) / "tests/runs/expected";

inline kordTest::Outcome run(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), kord);
    return kordTest::runProcess({.arguments = arguments, .folder = {}});
}

} // namespace toolTest
