// The heap meter: preloaded into the collector, it keeps account of the memory in use, apart for what the
// collector allocates itself and what the client does in its calls: its answers and how it finds them.
//
// At the end it writes a line of three numbers, in bytes, into the file that KORD_BENCH_HEAP names: the
// collector's own peak, the peak of both together, and the largest anonymous resident memory that was met
// when an answer was released (stack and libraries' data included).

#include "vale.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

// The names that the C library gives its own allocator.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" void* __libc_malloc(size_t size);
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void* __libc_realloc(void* block, size_t size);
extern "C" void* __libc_memalign(size_t alignment, size_t size);
extern "C" void __libc_free(void* block);
// NOLINTEND(bugprone-reserved-identifier)

namespace
{

int clientDepth = 0;
long own = 0;
long client = 0;
long ownPeak = 0;
long peak = 0;
long residentPeak = 0;

/// Whose memory it is, is told by who asks for it; and the client releases what it gave.
void account(long bytes)
{
    (clientDepth > 0 ? client : own) += bytes;
    ownPeak = std::max(ownPeak, own);
    peak = std::max(peak, own + client);
}

long sizeOf(void* block)
{
    return block != nullptr ? static_cast<long>(malloc_usable_size(block)) : 0;
}

void* counted(void* block)
{
    account(sizeOf(block));
    return block;
}

void sampleResident()
{
    char text[100] = ""; // size, resident and shared pages
    const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    const bool known = read(file, text, sizeof text - 1) > 0;
    close(file);
    if (!known) return;
    char* at = std::strchr(text, ' ');
    const long resident = at != nullptr ? std::strtol(at, &at, 10) : 0;
    const long shared = at != nullptr ? std::strtol(at, nullptr, 10) : 0;
    residentPeak = std::max(residentPeak, (resident - shared) * sysconf(_SC_PAGESIZE));
}

template <typename Function, typename... Arguments>
int32_t inClient(const char* name, Function*, Arguments... arguments)
{
    auto* const next = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
    ++clientDepth;
    const int32_t result = next(arguments...);
    --clientDepth;
    return result;
}

[[gnu::constructor]] void begin()
{
    unsetenv("LD_PRELOAD"); // the shells that the collector starts are not measured
}

[[gnu::destructor]] void end()
{
    const char* name = std::getenv("KORD_BENCH_HEAP");
    FILE* file = name != nullptr ? std::fopen(name, "we") : nullptr;
    if (file == nullptr) return;
    std::fprintf(file, "%ld %ld %ld\n", ownPeak, peak, residentPeak);
    std::fclose(file);
}

} // namespace

extern "C" {

void* malloc(size_t size)
{
    return counted(__libc_malloc(size));
}
void* calloc(size_t count, size_t size)
{
    return counted(__libc_calloc(count, size));
}
void* realloc(void* block, size_t size)
{
    account(-sizeOf(block));
    return counted(__libc_realloc(block, size));
}
void* aligned_alloc(size_t alignment, size_t size)
{
    return counted(__libc_memalign(alignment, size));
}
void free(void* block)
{
    account(-sizeOf(block));
    __libc_free(block);
}

int32_t vale_start_session(const char* const* contacts, uint32_t contactCount, uint32_t scope,
                           ValeSessionHandle* session)
{
    return inClient("vale_start_session", &vale_start_session, contacts, contactCount, scope, session);
}
int32_t vale_end_session(ValeSessionHandle session)
{
    return inClient("vale_end_session", &vale_end_session, session);
}
int32_t vale_query_p_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    return inClient("vale_query_p_select", &vale_query_p_select, session, responses, count, className,
                    selection, attributes, attributeCount);
}
int32_t vale_query_d_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    return inClient("vale_query_d_select", &vale_query_d_select, session, responses, count, className,
                    selection, attributes, attributeCount);
}
int32_t vale_enumerate_resources(ValeSessionHandle session, ValeEnumerateResponse** responses,
                                 uint32_t* count, const char* className, const char* selection)
{
    return inClient("vale_enumerate_resources", &vale_enumerate_resources, session, responses, count,
                    className, selection);
}
int32_t vale_invoke_action(ValeSessionHandle session, ValeActionResponse** responses, uint32_t* count,
                           ValeResourceHandle resource, const char* action, const ValeStructuredData* input)
{
    return inClient("vale_invoke_action", &vale_invoke_action, session, responses, count, resource, action,
                    input);
}
int32_t vale_free_response(void* responses)
{
    sampleResident();
    return inClient("vale_free_response", &vale_free_response, responses);
}
int32_t vale_get_error(ValeErrorHandle* error)
{
    return inClient("vale_get_error", &vale_get_error, error);
}
int32_t vale_get_errmsg(ValeErrorHandle error, const char** message)
{
    return inClient("vale_get_errmsg", &vale_get_errmsg, error, message);
}
int32_t vale_rel_errmsg(const char* message)
{
    return inClient("vale_rel_errmsg", &vale_rel_errmsg, message);
}
int32_t vale_rel_error(ValeErrorHandle error)
{
    return inClient("vale_rel_error", &vale_rel_error, error);
}
}
