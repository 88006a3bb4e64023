#include "document/follow.h"

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

bool Log::read(const std::function<void(std::string_view line)>& take)
{
    const OpenFile log(file);
    if (log.descriptor < 0 && errno == ENOENT) return false;
    struct stat status = {};
    if (log.descriptor < 0 || fstat(log.descriptor, &status) != 0) throw failed(file);

    // A log that grew too long loses its oldest lines, or is started anew.
    const bool other = status.st_ino != inode || status.st_size < offset;
    if (other) {
        inode = status.st_ino;
        offset = 0;
        pending.clear();
    }
    std::array<char, 65536> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    for (ssize_t got = 0; (got = pread(log.descriptor, bytes.data(), bytes.size(), offset)) != 0;) {
        if (got < 0) throw failed(file);
        offset += got;
        pending.append(bytes.data(), static_cast<size_t>(got));
    }
    if (other) skipKnown();

    const size_t end = pending.rfind('\n') + 1; // 0: there is no whole line
    for (size_t at = 0; at < end;) {
        const size_t lineEnd = pending.find('\n', at);
        take(std::string_view(pending).substr(at, lineEnd - at));
        at = lineEnd + 1;
    }
    constexpr size_t enough = 4096;
    known.append(pending, 0, end);
    if (known.size() > enough) known.erase(0, known.size() - enough);
    pending.erase(0, end);
    return true;
}

/// What stays of a log that was cut is not handed over again.
void Log::skipKnown()
{
    const size_t at = known.empty() ? std::string::npos : pending.rfind(known);
    if (at != std::string::npos) pending.erase(0, at + known.size());
}

} // namespace document
