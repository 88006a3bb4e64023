// Looking for the companions beside the launcher, first where they are installed.

#include "installation.h"

#include "failure.h"

#include <array>
#include <unistd.h>

namespace console::launcher
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

} // namespace

Installation findInstallation()
{
    Installation found;
    std::error_code unreadable;
    found.executable = fs::read_symlink("/proc/self/exe", unreadable);
    if (unreadable) throw Failure("/proc/self/exe: " + unreadable.message());
    found.bin = found.executable.parent_path();
    // A relative way from the folder for programs leads to the same prefix wherever that was moved.
    const fs::path up = found.bin / fs::path(".").lexically_relative(fs::path(KORD_INSTALL_BINDIR));
    const fs::path libexec = up / KORD_INSTALL_LIBEXECDIR;
    const fs::path lib = up / KORD_INSTALL_LIBDIR;
    found.programs = folderWith("whoami", {libexec / "kord", libexec, found.bin / "../libexec"});
    found.client = folderWith("libvale_mc.so", {lib / "kord", lib, found.bin / "../lib"});
    return found;
}

std::vector<std::string> findProgram(std::vector<std::string> program, const Installation& installation)
{
    const std::string own = (installation.bin / program[0]).string();
    const bool bare = program[0].find('/') == std::string::npos;
    if (bare && access(own.c_str(), X_OK) == 0) program[0] = own;
    return program;
}

} // namespace console::launcher
