// Looking for the companions beside the program, first where they are installed.

#include "platform/installation.h"

#include "platform/failure.h"

#include <array>
#include <unistd.h>

namespace platform
{

namespace
{

namespace fs = std::filesystem;

/// The first of the folders that holds the file.
fs::path folderWith(const char* file, const std::array<fs::path, 3>& folders)
{
    for (const fs::path& folder : folders) {
        if (access((folder / file).c_str(), F_OK) == 0) return folder.lexically_normal();
    }
    throw Failure(std::string("the installation is broken: there is no ") + file + " in " +
                  folders.back().lexically_normal().string());
}

/// A relative way from the folder for programs leads to the same prefix wherever that was moved.
fs::path prefixOf(const fs::path& bin)
{
    return bin / fs::path(".").lexically_relative(fs::path(KORD_INSTALL_BINDIR));
}

} // namespace

fs::path Installation::folderOfProgram(const char* name) const
{
    const fs::path libexec = prefixOf(bin) / KORD_INSTALL_LIBEXECDIR;
    return folderWith(name, {libexec / "kord", libexec, bin / "../libexec"});
}

fs::path Installation::folderOfLibrary(const char* name) const
{
    const fs::path lib = prefixOf(bin) / KORD_INSTALL_LIBDIR;
    return folderWith(name, {lib / "kord", lib, bin / "../lib"});
}

std::vector<std::string> Installation::find(std::vector<std::string> command) const
{
    const std::string own = (bin / command[0]).string();
    const bool bare = command[0].find('/') == std::string::npos;
    if (bare && access(own.c_str(), X_OK) == 0) command[0] = own;
    return command;
}

Installation findInstallation()
{
    Installation found;
    std::error_code unreadable;
    found.executable = fs::read_symlink("/proc/self/exe", unreadable);
    if (unreadable) throw Failure("/proc/self/exe: " + unreadable.message());
    found.bin = found.executable.parent_path();
    return found;
}

} // namespace platform
