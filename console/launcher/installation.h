// Where the launcher's companions lie: the same places relative to it in the build folder and installed.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace console::launcher
{

struct Installation {
    std::filesystem::path executable;
    std::filesystem::path bin;      ///< the launcher's own folder
    std::filesystem::path programs; ///< the console's programs
    std::filesystem::path client;   ///< the simulated client's libraries
};

Installation findInstallation();

/// The command with its program's place: a bare name means a program of the launcher's own folder, if there
/// is one of that name.
std::vector<std::string> findProgram(std::vector<std::string> program, const Installation& installation);

} // namespace console::launcher
