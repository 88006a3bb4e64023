#include "document/follow.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace document
{

namespace
{

constexpr size_t blockSize = 65536;

class OpenFile
{
public:
    explicit OpenFile(const std::string& file)
        : descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
    }
    ~OpenFile()
    {
        if (descriptor >= 0) ::close(descriptor);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    const int descriptor;
};

std::system_error failed(const std::string& file)
{
    return {errno, std::generic_category(), file};
}

} // namespace

bool Log::read(const std::function<void(std::string_view bytes)>& take)
{
    const OpenFile log(file);
    if (log.descriptor < 0 && errno == ENOENT) return false;
    struct stat status = {};
    if (log.descriptor < 0 || fstat(log.descriptor, &status) != 0) throw failed(file);

    // A log that grew too long loses its oldest lines, or is started anew.
    if (status.st_ino != inode || status.st_size < offset) {
        inode = status.st_ino;
        offset = startIn(log.descriptor);
    }
    std::array<char, blockSize> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    for (ssize_t got = 0; (got = pread(log.descriptor, bytes.data(), bytes.size(), offset)) != 0;) {
        if (got < 0) throw failed(file);
        offset += got;
        note({bytes.data(), static_cast<size_t>(got)});
        take({bytes.data(), static_cast<size_t>(got)});
    }
    return true;
}

off_t Log::startIn(int descriptor) const
{
    constexpr size_t longest = 16U << 20U; // a log of the collector is cut long before
    std::string all;
    std::array<char, blockSize> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    while (!known.empty() && all.size() < longest) {
        const ssize_t got = pread(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(all.size()));
        if (got < 0) throw failed(file);
        if (got == 0) break;
        all.append(bytes.data(), static_cast<size_t>(got));
    }
    const size_t at = known.empty() ? std::string::npos : all.rfind(known);
    return at == std::string::npos ? 0 : static_cast<off_t>(at + known.size());
}

void Log::note(std::string_view bytes)
{
    constexpr size_t enough = 4096;
    known += bytes.substr(bytes.size() - std::min(bytes.size(), enough));
    known.erase(0, known.size() - std::min(known.size(), enough));
}

} // namespace document
