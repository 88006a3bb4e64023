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
#include <optional>
#include <sstream>
#include <sys/stat.h>
#include <zlib.h>

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

/// What the key ends with: an image that was damaged since then has another.
std::string checksumOf(std::string_view image)
{
    return "crc32 " + std::to_string(crc32_z(0, reinterpret_cast<const Bytef*>(image.data()), image.size())) +
           '\n';
}

/// The image that was made for the key, unless it was damaged since then.
std::optional<FacilityImage> keptImage(const std::string& key, const fs::path& root)
{
    if (key.empty()) return std::nullopt;
    // Nothing is waited for that may lie there in place of a file.
    const platform::FileDescriptor file(open((root / keyFile).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) return std::nullopt;
    const std::string made = readAll(file.get(), root / keyFile);
    if (!made.starts_with(key)) return std::nullopt;
    try {
        FacilityImage image(root);
        if (made == key + checksumOf(image.bytes())) return image;
    } catch (const platform::Failure&) { // an image that cannot be read is made anew like any other
    }
    return std::nullopt;
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

FacilityImage provideImage(const fs::path& path, const fs::path& root,
                           const platform::Installation& installation)
{
    const platform::FileDescriptor file = openFacility(path);
    struct stat status {
    };
    if (fstat(file.get(), &status) != 0) throw platform::failedOn(path.string());
    const std::string key = keyOf(status, installation);
    if (std::optional<FacilityImage> kept = keptImage(key, root)) return std::move(*kept);

    const facility::Compilation compilation = facility::compile(readAll(file.get(), path));
    if (!compilation.faults.empty()) throw malformed(path, compilation.faults);
    unlink((root / keyFile).c_str()); // a key never stands beside an image that is not its own
    unlink((root / image::imageFile).c_str());
    using platform::WholeFile;
    platform::writeWhole(root / image::imageFile, compilation.image, WholeFile::Safety::inMemory);
    if (!key.empty())
        platform::writeWhole(root / keyFile, key + checksumOf(compilation.image),
                             WholeFile::Safety::inMemory);
    return FacilityImage(root);
}

} // namespace console::launcher
