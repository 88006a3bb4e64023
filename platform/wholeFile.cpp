// Writing beside the place and renaming.

#include "platform/wholeFile.h"

#include "platform/failure.h"

#include <fcntl.h>
#include <string>

namespace platform
{

namespace
{

namespace fs = std::filesystem;

constexpr mode_t permissions = 0777;
constexpr mode_t newFile = 0666;

/// What is open under a descriptor: the way to it has no more links.
fs::path pathOf(const FileDescriptor& file)
{
    std::error_code unknown;
    fs::path path = fs::read_symlink("/proc/self/fd/" + std::to_string(file.get()), unknown);
    if (unknown) throw Failure("/proc/self/fd: " + unknown.message());
    return path;
}

bool isOwn(const fs::path& path)
{
    struct stat there {
    };
    return stat(path.c_str(), &there) == 0 && there.st_uid == geteuid();
}

/// What is there, for writing. Nobody else's pipe is waited for until it is read, which may be never.
FileDescriptor openThere(const fs::path& path)
{
    constexpr int flags = O_WRONLY | O_NOCTTY | O_CLOEXEC;
    FileDescriptor file(open(path.c_str(), flags | O_NONBLOCK));
    if (file.isOpen()) {
        fcntl(file.get(), F_SETFL, flags);
    } else if (errno == ENXIO) {
        if (!isOwn(path)) throw Failure(path.string() + ": nobody reads this pipe of somebody else's");
        file = FileDescriptor(open(path.c_str(), flags));
    }
    return file;
}

fs::path folderOf(const fs::path& path)
{
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

} // namespace

/// Opening what is there asks the kernel whether this user may write it, also through a link of somebody
/// else.
WholeFile::WholeFile(fs::path path, std::optional<mode_t> mode)
    : named(std::move(path)), place(named), file(openThere(named))
{
    if (!file.isOpen() && errno != ENOENT) throw failedOn(named.string());
    if (file.isOpen()) {
        struct stat there {
        };
        if (fstat(file.get(), &there) != 0) throw failedOn(named.string());
        if (!S_ISREG(there.st_mode) || there.st_nlink == 0) return;
        place = pathOf(file);
        if (!mode) mode = there.st_mode & permissions;
    }
    start(mode.value_or(newFile));
    if (mode && fchmod(file.get(), *mode) != 0) throw failedOn(named.string());
}

WholeFile::~WholeFile()
{
    if (!made.empty()) unlink(made.c_str());
}

/// Under a name that nothing has.
void WholeFile::start(mode_t mode)
{
    for (unsigned i = 0; made.empty(); ++i) {
        const fs::path beside =
            folderOf(place) / (".kord." + std::to_string(getpid()) + "." + std::to_string(i));
        file = FileDescriptor(open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (!file.isOpen() && errno != EEXIST) throw failedOn(named.string());
        if (file.isOpen()) made = beside;
    }
}

void WholeFile::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) throw failedOn(named.string());
        if (written > 0) bytes.remove_prefix(static_cast<size_t>(written));
    }
}

void WholeFile::putInPlace(Safety safety)
{
    if (made.empty()) return;
    const bool safe = safety == Safety::onDisk;
    if (safe && fsync(file.get()) != 0) throw failedOn(named.string());
    if (rename(made.c_str(), place.c_str()) != 0) throw failedOn(named.string());
    made.clear();
    const FileDescriptor folder(open(folderOf(place).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (safe && folder.isOpen()) fsync(folder.get()); // the name; some file systems know no such thing
}

void writeWhole(const fs::path& path, std::string_view content, WholeFile::Safety safety)
{
    WholeFile file(path);
    file.write(content);
    file.putInPlace(safety);
}

} // namespace platform
