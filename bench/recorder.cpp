// The recorder: preloaded into the collector, it keeps a copy of what goes into the trace log and to the
// shell.

#include "kordRec.h"
#include "recording.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace
{

using namespace bench;

FILE* recording = nullptr;
int traceLog = -1; ///< while it is open for a line
std::string line;

template <typename Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void record(EntryKind kind, const std::string& bytes)
{
    if (recording == nullptr) return;
    const EntryHead head{.kind = kind, .length = static_cast<uint32_t>(bytes.size())};
    std::fwrite(&head, sizeof head, 1, recording);
    std::fwrite(bytes.data(), 1, bytes.size(), recording);
}

bool isTraceLine(const char* path, int flags)
{
    return (flags & O_APPEND) != 0 && std::strncmp(path, traceFolder, std::strlen(traceFolder)) == 0;
}

[[gnu::constructor]] void begin()
{
    const char* file = std::getenv(recordingVariable);
    if (file != nullptr) recording = std::fopen(file, "we");
    unsetenv("LD_PRELOAD"); // the shells that the collector starts are none of the recorder's business
}

[[gnu::destructor]] void end()
{
    if (recording != nullptr) std::fclose(recording);
}

} // namespace

extern "C" int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    static auto* const next = real<int(const char*, int, ...)>("open");
    const int fd = next(path, flags, mode);
    if (fd >= 0 && isTraceLine(path, flags)) traceLog = fd;
    return fd;
}

extern "C" ssize_t write(int fd, const void* bytes, size_t length)
{
    static auto* const next = real<ssize_t(int, const void*, size_t)>("write");
    if (fd == traceLog) line.append(static_cast<const char*>(bytes), length);
    return next(fd, bytes, length);
}

extern "C" int close(int fd)
{
    static auto* const next = real<int(int)>("close");
    if (fd == traceLog) {
        record(EntryKind::traceLine, line);
        line.clear();
        traceLog = -1;
    }
    return next(fd);
}

extern "C" int system(const char* command)
{
    static auto* const next = real<int(const char*)>("system");
    record(EntryKind::command, command);
    if (recording != nullptr) std::fflush(recording);
    return next(command);
}
