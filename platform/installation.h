// Where a program's companions lie: the same places relative to it in the build folder and installed.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace platform
{

struct Installation {
    std::filesystem::path executable;
    std::filesystem::path bin; ///< the program's own folder

    /// The folder of the helper program of that name; a Failure when there is none.
    [[nodiscard]] std::filesystem::path folderOfProgram(const char* name) const;
    /// The folder of the library of that file name; a Failure when there is none.
    [[nodiscard]] std::filesystem::path folderOfLibrary(const char* name) const;
    /// The command with its program's place: a bare name means a program of the own folder, if there is one
    /// of that name.
    [[nodiscard]] std::vector<std::string> find(std::vector<std::string> command) const;
};

/// Of the running program.
Installation findInstallation();

} // namespace platform
