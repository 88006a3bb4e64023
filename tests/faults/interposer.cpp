// Preloaded into the collector, stands between it and the system's library, counts its calls and makes some
// of them fail. Steered by variables of the environment:
//
//   FAULT_CALL    the kind of call, a name of `Call`; none: nothing fails
//   FAULT_NTH     the first one to fail, counted from 1
//   FAULT_ONWARD  "1": all that follow fail too
//   FAULT_EFFECT  an error number; or for read, pread and the writes "short" (one byte goes through), for
//   read
//                 and pread "end" (of the file), for system "killed" (the shell, by a signal), "noShell" and
//                 "lost" (the command runs, its end is not learned)
//   FAULT_REPORT  the file that gets a line for each kind, its name and how often it was called, and a line
//                 "failed" with how many calls were made to fail
//
// Counted is what happens in main, but not in the client: its calls are bracketed here, and allocations
// within them are a kind of their own. What the collector starts is left alone.
//
// The library's streams do not call through what is interposed here. The document's stream and standard
// output are therefore made anew as streams whose writes and closings do, as kinds of their own; all that can
// go wrong in a stream begins in those. Likewise `system` fails as a whole: for want of a process or a
// shell, or because its end is not learned.

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include "vale.h"

namespace
{

constexpr const char* program = "addTarnKord";

enum class Call {
    malloc,
    calloc,
    realloc,
    clientMemory, ///< any allocation within a call of the client
    open,
    stat,
    lstat,
    fstat,
    statx,
    fchmod,
    ftruncate,
    lseek,
    read,
    pread,
    write,
    close,
    unlink,
    rename,
    fdopen,
    setvbuf,
    streamWrite, ///< a write behind the document's stream
    streamClose,
    consoleWrite, ///< a write behind standard output
    system,
    time,
    localtime,
    gettimeofday,
    errorRecord, ///< the client's record of a failed call
    errorMessage,
    count
};

constexpr size_t callCount = static_cast<size_t>(Call::count);
constexpr std::array<const char*, callCount> callNames = {
    "malloc", "calloc",    "realloc",      "clientMemory", "open",         "stat",
    "lstat",  "fstat",     "statx",        "fchmod",       "ftruncate",    "lseek",
    "read",   "pread",     "write",        "close",        "unlink",       "rename",
    "fdopen", "setvbuf",   "streamWrite",  "streamClose",  "consoleWrite", "system",
    "time",   "localtime", "gettimeofday", "errorRecord",  "errorMessage"};

enum class Effect { error, shortCount, end, killed, noShell, lost };

struct Fault {
    Call call = Call::count;
    Effect effect = Effect::error;
    int error = 0;
    unsigned long nth = 0;
    bool onward = false;
};

Fault fault;
const char* report = nullptr;
std::array<unsigned long, callCount> calls{};
unsigned long failed = 0;
bool armed = false;       ///< main runs
unsigned clientDepth = 0; ///< calls of the client that run

// --- Counting

/// Counts a call of this kind: whether it is to fail.
bool fails(Call call)
{
    if (!armed || (clientDepth > 0 && call != Call::clientMemory)) return false;
    const unsigned long n = ++calls[static_cast<size_t>(call)];
    if (call != fault.call || (fault.onward ? n < fault.nth : n != fault.nth)) return false;
    ++failed;
    return true;
}

int refuse()
{
    errno = fault.error;
    return -1;
}

/// An allocation of this kind, by the collector or for it.
bool failsToAllocate(Call call)
{
    if (!fails(clientDepth > 0 ? Call::clientMemory : call)) return false;
    errno = ENOMEM;
    return true;
}

/// The next function of the name: what was called had this library not been there.
#define NEXT(name)                                                                                           \
    ([] {                                                                                                    \
        static auto* const next = reinterpret_cast<decltype(&::name)>(dlsym(RTLD_NEXT, #name));              \
        return next;                                                                                         \
    }())

// --- Reads, writes and closings

template <typename Transfer>
ssize_t transfer(Call call, size_t size, Transfer transferBytes)
{
    if (!fails(call)) return transferBytes(size);
    if (fault.effect == Effect::shortCount) return transferBytes(size < 1 ? size : 1);
    return fault.effect == Effect::end ? 0 : refuse();
}

ssize_t countedWrite(Call call, int fd, const void* bytes, size_t size)
{
    return transfer(call, size, [&](size_t part) { return NEXT(write)(fd, bytes, part); });
}

constexpr size_t trackedFiles = 256;
std::array<off_t, trackedFiles> sizeAtOpening{};

void trackFile(int fd)
{
    struct stat status {
    };
    if (fd < 0 || static_cast<size_t>(fd) >= trackedFiles) return;
    sizeAtOpening[static_cast<size_t>(fd)] = NEXT(fstat)(fd, &status) == 0 ? status.st_size : 0;
}

/// A closing that fails means that what was written has not reached the disk.
int countedClose(Call call, int fd)
{
    if (!fails(call)) return NEXT(close)(fd);
    const bool isWritten = fd >= 0 && (fcntl(fd, F_GETFL) & O_ACCMODE) != O_RDONLY;
    if (isWritten && static_cast<size_t>(fd) < trackedFiles) {
        [[maybe_unused]] const int ignored = ftruncate(fd, sizeAtOpening[static_cast<size_t>(fd)]);
    }
    NEXT(close)(fd);
    return refuse();
}

// --- Streams whose writes are counted

int fileBehind(void* cookie)
{
    return static_cast<int>(reinterpret_cast<intptr_t>(cookie));
}

/// Goes on after a short write, and ends at the first failure, as the library's own streams do.
template <Call call>
ssize_t writeBehind(void* cookie, const char* bytes, size_t size)
{
    size_t done = 0;
    while (done < size) {
        const ssize_t count = countedWrite(call, fileBehind(cookie), bytes + done, size - done);
        if (count <= 0) break;
        done += static_cast<size_t>(count);
    }
    return static_cast<ssize_t>(done);
}

int closeBehind(void* cookie)
{
    return countedClose(Call::streamClose, fileBehind(cookie));
}

template <Call call>
FILE* countedStream(int fd)
{
    cookie_io_functions_t functions{};
    functions.write = writeBehind<call>;
    functions.close = call == Call::streamWrite ? closeBehind : nullptr;
    void* const cookie =
        reinterpret_cast<void*>(static_cast<intptr_t>(fd)); // NOLINT(performance-no-int-to-ptr)
    return fopencookie(cookie, "w", functions);
}

// --- The life of the process

void readEffect(const char* text)
{
    struct Word {
        const char* word;
        Effect effect;
    };
    constexpr Word words[] = {{"short", Effect::shortCount},
                              {"end", Effect::end},
                              {"killed", Effect::killed},
                              {"noShell", Effect::noShell},
                              {"lost", Effect::lost}};
    fault.error = static_cast<int>(strtol(text, nullptr, 10));
    for (const Word& word : words) {
        if (strcmp(text, word.word) == 0) fault.effect = word.effect;
    }
}

const char* variable(const char* name)
{
    const char* value = getenv(name);
    return value != nullptr ? value : "";
}

void readFault()
{
    report = getenv("FAULT_REPORT");
    fault.nth = strtoul(variable("FAULT_NTH"), nullptr, 10);
    fault.onward = strcmp(variable("FAULT_ONWARD"), "1") == 0;
    readEffect(variable("FAULT_EFFECT"));
    for (size_t i = 0; i < callCount; ++i) {
        if (strcmp(variable("FAULT_CALL"), callNames[i]) == 0) fault.call = static_cast<Call>(i);
    }
}

void writeReport()
{
    FILE* file = report != nullptr ? fopen(report, "w") : nullptr;
    if (file == nullptr) return;
    for (size_t i = 0; i < callCount; ++i)
        fprintf(file, "%s %lu\n", callNames[i], calls[i]);
    fprintf(file, "failed %lu\n", failed);
    fclose(file);
}

using Main = int (*)(int, char**, char**);
Main collectorMain = nullptr;

/// Standard output is flushed as long as its writes are counted; the end of the process would do it else.
int countedMain(int argc, char** argv, char** environment)
{
    readFault();
    unsetenv("LD_PRELOAD");
    stdout = countedStream<Call::consoleWrite>(STDOUT_FILENO);
    armed = true;
    const int status = collectorMain(argc, argv, environment);
    fflush(stdout);
    armed = false;
    writeReport();
    return status;
}

// --- The client

template <typename Function, typename... Arguments>
int32_t callClient(Function* next, Arguments... arguments)
{
    ++clientDepth;
    const int32_t result = next(arguments...);
    --clientDepth;
    return result;
}

} // namespace

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the C library's own name
int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*fini)(), void (*loaderFini)(),
                      void* stackEnd);
int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*fini)(), void (*loaderFini)(),
                      void* stackEnd)
{
    if (strcmp(program_invocation_short_name, program) == 0) {
        collectorMain = main;
        main = countedMain;
    }
    return NEXT(__libc_start_main)(main, argc, argv, init, fini, loaderFini, stackEnd);
}
// NOLINTEND(bugprone-reserved-identifier)

// --- Memory

void* malloc(size_t size) noexcept
{
    return failsToAllocate(Call::malloc) ? nullptr : NEXT(malloc)(size);
}

void* calloc(size_t count, size_t size) noexcept
{
    return failsToAllocate(Call::calloc) ? nullptr : NEXT(calloc)(count, size);
}

void* realloc(void* block, size_t size) noexcept
{
    return failsToAllocate(Call::realloc) ? nullptr : NEXT(realloc)(block, size);
}

// --- Files

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (fails(Call::open)) return refuse();
    const int fd = NEXT(open)(path, flags, mode);
    trackFile(fd);
    return fd;
}

int stat(const char* path, struct stat* status) noexcept
{
    return fails(Call::stat) ? refuse() : NEXT(stat)(path, status);
}

int lstat(const char* path, struct stat* status) noexcept
{
    return fails(Call::lstat) ? refuse() : NEXT(lstat)(path, status);
}

int fstat(int fd, struct stat* status) noexcept
{
    return fails(Call::fstat) ? refuse() : NEXT(fstat)(fd, status);
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) noexcept
{
    return fails(Call::statx) ? refuse() : NEXT(statx)(folder, path, flags, mask, status);
}

int fchmod(int fd, mode_t mode) noexcept
{
    return fails(Call::fchmod) ? refuse() : NEXT(fchmod)(fd, mode);
}

int ftruncate(int fd, off_t length) noexcept
{
    return fails(Call::ftruncate) ? refuse() : NEXT(ftruncate)(fd, length);
}

off_t lseek(int fd, off_t offset, int whence) noexcept
{
    return fails(Call::lseek) ? refuse() : NEXT(lseek)(fd, offset, whence);
}

ssize_t read(int fd, void* bytes, size_t size)
{
    return transfer(Call::read, size, [&](size_t part) { return NEXT(read)(fd, bytes, part); });
}

ssize_t pread(int fd, void* bytes, size_t size, off_t offset)
{
    return transfer(Call::pread, size, [&](size_t part) { return NEXT(pread)(fd, bytes, part, offset); });
}

ssize_t write(int fd, const void* bytes, size_t size)
{
    return countedWrite(Call::write, fd, bytes, size);
}

int close(int fd)
{
    return countedClose(Call::close, fd);
}

int unlink(const char* path) noexcept
{
    return fails(Call::unlink) ? refuse() : NEXT(unlink)(path);
}

int rename(const char* from, const char* to) noexcept
{
    return fails(Call::rename) ? refuse() : NEXT(rename)(from, to);
}

// --- Streams

FILE* fdopen(int fd, const char* mode) noexcept
{
    if (fails(Call::fdopen)) {
        refuse();
        return nullptr;
    }
    return armed && clientDepth == 0 ? countedStream<Call::streamWrite>(fd) : NEXT(fdopen)(fd, mode);
}

int setvbuf(FILE* stream, char* buffer, int mode, size_t size) noexcept
{
    return fails(Call::setvbuf) ? refuse() : NEXT(setvbuf)(stream, buffer, mode, size);
}

// --- Commands

int system(const char* command)
{
    constexpr int notFound = 127;
    if (!fails(Call::system)) return NEXT(system)(command);
    if (fault.effect == Effect::killed) return SIGKILL;
    if (fault.effect == Effect::noShell) return notFound << 8;
    if (fault.effect == Effect::lost) {
        [[maybe_unused]] const int ignored = NEXT(system)(command);
        fault.error = ECHILD;
    }
    return refuse();
}

// --- Time

time_t time(time_t* now) noexcept
{
    return fails(Call::time) ? refuse() : NEXT(time)(now);
}

tm* localtime_r(const time_t* now, tm* local) noexcept
{
    if (!fails(Call::localtime)) return NEXT(localtime_r)(now, local);
    refuse();
    return nullptr;
}

int gettimeofday(timeval* now, void* zone) noexcept
{
    return fails(Call::gettimeofday) ? refuse() : NEXT(gettimeofday)(now, zone);
}

// --- The client

int32_t vale_start_session(const char* const* contacts, uint32_t contactCount, uint32_t scope,
                           ValeSessionHandle* session)
{
    return callClient(NEXT(vale_start_session), contacts, contactCount, scope, session);
}

int32_t vale_end_session(ValeSessionHandle session)
{
    return callClient(NEXT(vale_end_session), session);
}

int32_t vale_query_p_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    return callClient(NEXT(vale_query_p_select), session, responses, count, className, selection, attributes,
                      attributeCount);
}

int32_t vale_query_d_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    return callClient(NEXT(vale_query_d_select), session, responses, count, className, selection, attributes,
                      attributeCount);
}

int32_t vale_enumerate_resources(ValeSessionHandle session, ValeEnumerateResponse** responses,
                                 uint32_t* count, const char* className, const char* selection)
{
    return callClient(NEXT(vale_enumerate_resources), session, responses, count, className, selection);
}

int32_t vale_invoke_action(ValeSessionHandle session, ValeActionResponse** responses, uint32_t* count,
                           ValeResourceHandle resource, const char* action, const ValeStructuredData* input)
{
    return callClient(NEXT(vale_invoke_action), session, responses, count, resource, action, input);
}

int32_t vale_free_response(void* responses)
{
    return callClient(NEXT(vale_free_response), responses);
}

int32_t vale_get_error(ValeErrorHandle* error)
{
    *error = nullptr;
    return fails(Call::errorRecord) ? refuse() : callClient(NEXT(vale_get_error), error);
}

int32_t vale_get_errmsg(ValeErrorHandle error, const char** message)
{
    *message = nullptr;
    return fails(Call::errorMessage) ? refuse() : callClient(NEXT(vale_get_errmsg), error, message);
}

int32_t vale_rel_errmsg(const char* message)
{
    return callClient(NEXT(vale_rel_errmsg), message);
}

int32_t vale_rel_error(ValeErrorHandle error)
{
    return callClient(NEXT(vale_rel_error), error);
}

} // extern "C"
