// The client of one process: the run it has joined and all that it has handed out, so that every release can
// be checked and what was never released shows in the journal. It lives in libvale_cu; libvale_mc shares it.

#pragma once

#include "image/journal.h"
#include "ledger.h"
#include "vale.h"

#include <map>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <unordered_map>

namespace console::vale
{

/// The result of a failed call that no fault rule decides.
constexpr int32_t callFailed = 1;

struct Failure {
    int32_t code = 0;
    std::string message;
};

struct Client {
    image::Run run;
    std::string closed; ///< why no run could be joined, empty when one was
    pid_t process = 0;  ///< a forked child has its parent's memory but nothing to account for

    uint64_t lastHandle = 0;               ///< handles of sessions and error records never come again
    std::map<uint64_t, uint32_t> sessions; ///< open ones: their scopes
    Ledger responses;
    Failure lastFailure;
    std::unordered_map<uint64_t, std::string> errors; ///< records handed out: their messages
    Ledger messages;

    std::mutex mutex; ///< held for the length of each call
};

/// Handles are numbers that stand for themselves; 0 is the null handle.
template <typename Handle>
uint64_t numberOf(Handle handle)
{
    return reinterpret_cast<uintptr_t>(handle);
}
template <typename Handle>
Handle handleOf(uint64_t number)
{
    return reinterpret_cast<Handle>(number); // NOLINT(performance-no-int-to-ptr): it is never dereferenced
}

} // namespace console::vale

/// The process's client; it joins the run at the first call.
extern "C" console::vale::Client* vale_cu_client();
