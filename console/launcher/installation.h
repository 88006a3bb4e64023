// Where the launcher's companions lie: the same places relative to it in the build folder and installed.

#pragma once

#include <filesystem>

namespace console::launcher
{

struct Installation {
    std::filesystem::path executable;
    std::filesystem::path bin;      ///< the launcher's own folder
    std::filesystem::path programs; ///< the console's programs
    std::filesystem::path client;   ///< the simulated client's libraries
};

Installation findInstallation();

} // namespace console::launcher
