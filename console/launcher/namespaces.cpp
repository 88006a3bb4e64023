// Mounting the console's folders in a private namespace. Where the way to one of them is missing, nothing is
// made on the machine: the last folder that exists is mirrored instead (a folder in memory takes its place,
// everything in it is mounted back), and the missing part is made in the mirror.

#include "namespaces.h"

#include "console.h"
#include "platform/failure.h"
#include "platform/fileDescriptor.h"

#include <algorithm>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <vector>

namespace console::launcher
{

namespace
{

namespace fs = std::filesystem;

bool writeText(const char* path, const std::string& text)
{
    const platform::FileDescriptor file(open(path, O_WRONLY | O_CLOEXEC));
    return file.isOpen() && write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

/// The user and group keep their numbers, so that files look as they do outside.
bool mapOwner(uid_t user, gid_t group)
{
    const auto itself = [](unsigned id) { return std::to_string(id) + ' ' + std::to_string(id) + " 1"; };
    return writeText("/proc/self/setgroups", "deny") && writeText("/proc/self/uid_map", itself(user)) &&
           writeText("/proc/self/gid_map", itself(group));
}

void mount(const std::string& source, const fs::path& target, unsigned long flags, const char* type = nullptr,
           const char* options = nullptr)
{
    if (::mount(source.c_str(), target.c_str(), type, flags, options) != 0) {
        throw platform::failedOn("mounting " + source + " at " + target.string());
    }
}

/// A folder's mirror, and what the folder was for the user.
struct Mirror {
    fs::path folder;
    dev_t device;
    bool writable;
};

/// Puts one entry of the working folder back at its place in the mirror.
void mountBack(const std::string& name, const fs::path& place)
{
    struct stat status {
    };
    if (lstat(name.c_str(), &status) != 0) return; // gone by now
    if (S_ISLNK(status.st_mode)) {
        std::error_code failure;
        fs::copy_symlink(name, place, failure);
        if (failure) throw platform::Failure(place.string() + ": " + failure.message());
        return;
    }
    const bool made = S_ISDIR(status.st_mode) ? mkdir(place.c_str(), 0755) == 0
                                              : mknod(place.c_str(), S_IFREG | 0644, 0) == 0;
    if (!made) throw platform::failedOn(place.string());
    mount(name, place, MS_BIND | MS_REC);
}

std::vector<std::string> entriesOf(const fs::path& folder)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.c_str()), closedir);
    if (open == nullptr) throw platform::failedOn(folder.string());
    std::vector<std::string> names;
    while (const dirent* entry = readdir(open.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    return names;
}

/// Mirrors a folder. The working folder stays in the folder that the mirror covers, through which alone its
/// entries can still be reached.
Mirror mirror(const fs::path& folder)
{
    struct stat status {
    };
    if (chdir(folder.c_str()) != 0 || stat(".", &status) != 0) throw platform::failedOn(folder.string());
    const bool writable = access(".", W_OK) == 0;
    const std::vector<std::string> names = entriesOf(folder);
    mount("kord-console", folder, MS_NOSUID | MS_NODEV, "tmpfs", "mode=0755");
    for (const std::string& name : names)
        mountBack(name, folder / name);
    struct stat mirrored {
    };
    if (stat(folder.c_str(), &mirrored) != 0) throw platform::failedOn(folder.string());
    // Only root's namespace knows the owner.
    [[maybe_unused]] const int unknown = chown(folder.c_str(), status.st_uid, status.st_gid);
    if (chmod(folder.c_str(), status.st_mode & 07777) != 0) throw platform::failedOn(folder.string());
    return {.folder = folder, .device = mirrored.st_dev, .writable = writable};
}

/// The console's folders, one by one, and the mirrors they need.
struct Mounter {
    std::vector<Mirror> mirrors;

    [[nodiscard]] bool isInMirror(const fs::path& folder) const
    {
        struct stat status {
        };
        return stat(folder.c_str(), &status) == 0 &&
               std::ranges::find(mirrors, status.st_dev, &Mirror::device) != mirrors.end();
    }

    /// Makes a folder in a mirror of what is to hold it, in place of what has its name and is no folder.
    void makeFolder(const fs::path& holder, const fs::path& name)
    {
        if (!isInMirror(holder)) {
            if (holder == "/")
                throw platform::Failure("/" + name.string() + " is missing: make this folder first");
            mirrors.push_back(mirror(holder));
        }
        const fs::path folder = holder / name;
        umount2(folder.c_str(), MNT_DETACH | UMOUNT_NOFOLLOW);
        unlink(folder.c_str());
        constexpr mode_t openToAll = 0755;
        if (mkdir(folder.c_str(), openToAll) != 0 || chmod(folder.c_str(), openToAll) != 0) {
            throw platform::failedOn(folder.string());
        }
    }

    /// Makes the way to a folder without touching the machine.
    void provide(const fs::path& target)
    {
        fs::path reached = "/";
        for (const fs::path& step : target.relative_path()) {
            std::error_code missing;
            fs::path next = fs::canonical(reached / step, missing);
            if (missing || !fs::is_directory(next)) {
                makeFolder(reached, step);
                next = reached / step;
            }
            reached = next;
        }
    }

    void mountAll(const fs::path& root)
    {
        for (const char* folder : consoleFolders) {
            const fs::path target = fs::path("/") / folder;
            provide(target);
            mount((root / folder).string(), target, MS_BIND | MS_REC);
        }
        // The machine's folder was not the user's to write, so neither is its mirror.
        for (const Mirror& made : mirrors) {
            if (!made.writable)
                mount("", made.folder, MS_REMOUNT | MS_BIND | MS_RDONLY | MS_NOSUID | MS_NODEV);
        }
    }
};

} // namespace

std::string enterNamespace()
{
    constexpr const char* refused = "KORD_CONSOLE_NO_NAMESPACES";
    const char* value = std::getenv(refused);
    if (value != nullptr && std::string(value) == "1") return refused;
    const uid_t user = geteuid();
    const gid_t group = getegid();
    const bool entered = unshare(CLONE_NEWNS) == 0 ||
                         (user != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && mapOwner(user, group));
    const bool own = entered && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return own ? "" : std::strerror(errno);
}

void mountConsole(const fs::path& root)
{
    const platform::FileDescriptor before(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::error_code unknown;
    const fs::path working = fs::current_path(unknown);
    Mounter().mountAll(root);
    // The same path now leads through the mirrors; where it leads nowhere, the folder itself still does.
    if ((unknown || chdir(working.c_str()) != 0) && before.isOpen() && fchdir(before.get()) != 0) {
        throw platform::failedOn(working.string());
    }
}

} // namespace console::launcher
