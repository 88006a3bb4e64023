// The image's key is what tells a facility file from its successors without reading it, and the same of the
// launcher, since another launcher may lay images out differently.

#include "facilityCache.h"

#include "facility/compile.h"
#include "image/image.h"
#include "platform/failure.h"
#include "platform/fileDescriptor.h"
#include "platform/wholeFile.h"

#include <ctime>
#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>

namespace console::launcher
{

namespace
{

namespace fs = std::filesystem;

constexpr const char* keyFile = ".console/image.key";

std::string nanoseconds(const timespec& time)
{
    return std::to_string(time.tv_sec * 1'000'000'000 + time.tv_nsec);
}

std::string identity(const struct stat& status)
{
    std::ostringstream text;
    text << status.st_dev << ' ' << status.st_ino << ' ' << status.st_size << ' '
         << nanoseconds(status.st_mtim) << ' ' << nanoseconds(status.st_ctim) << '\n';
    return text.str();
}

/// A file changed this moment may change again without its times showing it, and what is no regular file has
/// no lasting content: those have no key.
std::string keyOf(const struct stat& facility, const platform::Installation& installation)
{
    constexpr int64_t settled = 1'000'000'000;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const int64_t age =
        (now.tv_sec - facility.st_ctim.tv_sec) * 1'000'000'000 + now.tv_nsec - facility.st_ctim.tv_nsec;
    struct stat launcher {
    };
    if (!S_ISREG(facility.st_mode) || age < settled || stat(installation.executable.c_str(), &launcher) != 0)
        return {};
    return identity(facility) + identity(launcher);
}

std::string readAll(int file, const fs::path& path)
{
    constexpr size_t piece = 1 << 16;
    struct stat status {
    };
    fstat(file, &status);
    std::string text;
    ssize_t length = 1;
    for (size_t size = 0; length != 0; size += static_cast<size_t>(length)) {
        const size_t left =
            static_cast<size_t>(status.st_size) > size ? static_cast<size_t>(status.st_size) - size : 0;
        text.resize(size + left + piece);
        length = read(file, text.data() + size, text.size() - size);
        if (length < 0) throw platform::failedOn(path.string());
        if (length == 0) text.resize(size);
    }
    return text;
}

platform::FileDescriptor openFacility(const fs::path& path)
{
    platform::FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) throw platform::failedOn(path.string());
    return file;
}

bool isCurrent(const std::string& key, const fs::path& root)
{
    if (key.empty() || access((root / image::imageFile).c_str(), R_OK) != 0) return false;
    const platform::FileDescriptor file(open((root / keyFile).c_str(), O_RDONLY | O_CLOEXEC));
    return file.isOpen() && readAll(file.get(), root / keyFile) == key;
}

platform::Failure malformed(const fs::path& path, const facility::Faults& faults)
{
    std::string line = path.string() + ": " + facility::toLine(faults.front());
    if (faults.size() > 1) {
        line += " (and " + std::to_string(faults.size() - 1) + " more; see kord-console check)";
    }
    return platform::Failure(line);
}

} // namespace

std::string readFacility(const fs::path& path)
{
    const platform::FileDescriptor file = openFacility(path);
    return readAll(file.get(), path);
}

void provideImage(const fs::path& path, const fs::path& root, const platform::Installation& installation)
{
    const platform::FileDescriptor file = openFacility(path);
    struct stat status {
    };
    if (fstat(file.get(), &status) != 0) throw platform::failedOn(path.string());
    const std::string key = keyOf(status, installation);
    if (isCurrent(key, root)) return;

    const facility::Compilation compilation = facility::compile(readAll(file.get(), path));
    if (!compilation.faults.empty()) throw malformed(path, compilation.faults);
    unlink((root / keyFile).c_str()); // a key never stands beside an image that is not its own
    using platform::WholeFile;
    platform::writeWhole(root / image::imageFile, compilation.image, WholeFile::Safety::inMemory);
    if (!key.empty()) platform::writeWhole(root / keyFile, key, WholeFile::Safety::inMemory);
}

} // namespace console::launcher
