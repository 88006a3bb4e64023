// The recorder: preloaded into the collector, it keeps a copy of what goes into the trace log, to the shell
// and to the client, and measures how long the collector waits for shell and client.

#include "kordRec.h"
#include "recording.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace bench;

FILE* recording = nullptr;
int traceLog = -1; ///< while it is open for a line
std::string line;
std::string output; ///< the file that was made for the next command's output
uint64_t answerCount = 0;
std::map<const void*, uint64_t>& answers()
{
    static auto* held = new std::map<const void*, uint64_t>; // a client may release in its last destructor
    return *held;
}

template <typename Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Nanoseconds by the wall clock.
double now() noexcept
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

/// What the run waited for.
struct Waits {
    double start = now();
    double commands = 0;
    double client = 0;
    double removals = 0; ///< of files
    int count = 0;       ///< commands
};
Waits waits;

template <typename Call>
auto timed(double& account, Call call)
{
    const double start = now();
    const auto result = call();
    account += now() - start;
    return result;
}

void record(EntryKind kind, std::string_view bytes)
{
    if (recording == nullptr) return;
    const EntryHead head{.kind = kind, .length = static_cast<uint32_t>(bytes.size())};
    std::fwrite(&head, sizeof head, 1, recording);
    std::fwrite(bytes.data(), 1, bytes.size(), recording);
}

void recordCall(const CallHead& head, std::initializer_list<const char*> texts = {},
                std::span<const char* const> attributes = {})
{
    if (recording == nullptr) return;
    std::string bytes(reinterpret_cast<const char*>(&head), sizeof head);
    const auto add = [&bytes](const char* text) { bytes.append(text == nullptr ? noText : text) += '\0'; };
    for (const char* text : texts)
        add(text);
    for (const char* attribute : attributes)
        add(attribute);
    record(EntryKind::clientCall, bytes);
}

template <typename Pointer>
uint64_t numberOf(Pointer* handle)
{
    return reinterpret_cast<uint64_t>(handle);
}

/// A call that answers, and the number of its answer.
template <typename Responses, typename Call>
int32_t answered(Responses** responses, Call call)
{
    const int32_t rc = timed(waits.client, call);
    answers()[*responses] = answerCount++;
    return rc;
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

/// Whole time, commands, client, removals, and what as many shells take that do nothing.
void writeWaits(FILE* file)
{
    const double whole = now() - waits.start;
    double shells = 0;
    for (int i = 0; i < waits.count; ++i)
        timed(shells, [] { return real<int(const char*)>("system")(":"); });
    std::fprintf(file, "%.0f %.0f %.0f %.0f %.0f\n", whole, waits.commands, waits.client, waits.removals,
                 shells);
    std::fclose(file);
}

[[gnu::destructor]] void end()
{
    if (recording != nullptr) std::fclose(recording);
    const char* path = std::getenv(waitsVariable);
    if (FILE* file = path == nullptr ? nullptr : std::fopen(path, "we")) writeWaits(file);
}

int32_t query(const char* name, ClientCall kind, ValeSessionHandle session, ValeQueryResponse** responses,
              uint32_t* count, const char* className, const char* selection, const char* const* attributes,
              uint32_t attributeCount)
{
    auto* const next = real<decltype(vale_query_p_select)>(name);
    recordCall({.call = kind, .attributes = attributeCount, .session = numberOf(session), .handle = 0},
               {className, selection}, {attributes, attributeCount});
    return answered(responses, [&] {
        return next(session, responses, count, className, selection, attributes, attributeCount);
    });
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
    if (fd >= 0 && (flags & O_EXCL) != 0 && std::string_view(path).starts_with(commandOutputFolder))
        output = std::string(path) + '\0';
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

extern "C" int rename(const char* from, const char* to)
{
    static auto* const next = real<int(const char*, const char*)>("rename");
    struct stat kept {
    };
    struct stat whole {
    };
    if (stat(from, &kept) == 0 && stat(to, &whole) == 0) {
        const Cut cut{.offset = static_cast<uint64_t>(whole.st_size - kept.st_size),
                      .size = static_cast<uint64_t>(whole.st_size)};
        record(EntryKind::cut, {reinterpret_cast<const char*>(&cut), sizeof cut});
    }
    return next(from, to);
}

extern "C" int system(const char* command)
{
    static auto* const next = real<int(const char*)>("system");
    record(output.empty() ? EntryKind::command : EntryKind::output, output + command);
    output.clear();
    if (recording != nullptr) std::fflush(recording);
    ++waits.count;
    return timed(waits.commands, [command] { return next(command); });
}

extern "C" int unlink(const char* path) noexcept
{
    static auto* const next = real<int(const char*)>("unlink");
    return timed(waits.removals, [path] { return next(path); });
}

int32_t vale_start_session(const char* const* contacts, uint32_t contactCount, uint32_t scope,
                           ValeSessionHandle* session)
{
    static auto* const next = real<decltype(vale_start_session)>("vale_start_session");
    const int32_t rc = timed(waits.client, [&] { return next(contacts, contactCount, scope, session); });
    recordCall(
        {.call = ClientCall::startSession, .attributes = scope, .session = numberOf(*session), .handle = 0});
    return rc;
}

int32_t vale_end_session(ValeSessionHandle session)
{
    static auto* const next = real<decltype(vale_end_session)>("vale_end_session");
    recordCall({.call = ClientCall::endSession, .attributes = 0, .session = numberOf(session), .handle = 0});
    return timed(waits.client, [session] { return next(session); });
}

int32_t vale_query_p_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    return query("vale_query_p_select", ClientCall::persistentQuery, session, responses, count, className,
                 selection, attributes, attributeCount);
}

int32_t vale_query_d_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    return query("vale_query_d_select", ClientCall::dynamicQuery, session, responses, count, className,
                 selection, attributes, attributeCount);
}

int32_t vale_enumerate_resources(ValeSessionHandle session, ValeEnumerateResponse** responses,
                                 uint32_t* count, const char* className, const char* selection)
{
    static auto* const next = real<decltype(vale_enumerate_resources)>("vale_enumerate_resources");
    recordCall({.call = ClientCall::enumeration, .attributes = 0, .session = numberOf(session), .handle = 0},
               {className, selection});
    return answered(responses, [&] { return next(session, responses, count, className, selection); });
}

int32_t vale_invoke_action(ValeSessionHandle session, ValeActionResponse** responses, uint32_t* count,
                           ValeResourceHandle resource, const char* action, const ValeStructuredData* input)
{
    static auto* const next = real<decltype(vale_invoke_action)>("vale_invoke_action");
    recordCall({.call = ClientCall::action,
                .attributes = 0,
                .session = numberOf(session),
                .handle = numberOf(resource)},
               {action, input->elements[0].value.text});
    return answered(responses, [&] { return next(session, responses, count, resource, action, input); });
}

int32_t vale_free_response(void* responses)
{
    static auto* const next = real<decltype(vale_free_response)>("vale_free_response");
    const auto answer = answers().find(responses);
    const uint64_t number = answer == answers().end() ? noAnswer : answer->second;
    recordCall({.call = ClientCall::release, .attributes = 0, .session = 0, .handle = number});
    return timed(waits.client, [responses] { return next(responses); });
}
