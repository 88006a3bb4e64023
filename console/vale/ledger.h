// What the client hands out and must get back, each exactly once.

#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace console::vale
{

/// Ends the process: what it does would corrupt memory with the console's own client.
[[noreturn]] void violation(const char* what, const void* memory);

/// Memory that was handed out. A block that is allocated where an earlier one lay is handed out at another
/// address, so that releasing the earlier one again is noticed.
struct Ledger {
    struct Held {
        void* block;
        uint64_t of; ///< the `seq` of the call that it answers
    };
    std::unordered_map<const void*, Held> held;
    uint64_t serial = 0;

    void* hold(size_t size, uint64_t of);
    /// The `of` of what it was; ends the process when that is not held (any more).
    uint64_t release(const void* memory, const char* what);
};

} // namespace console::vale
