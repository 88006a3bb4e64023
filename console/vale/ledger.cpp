// The account of what is handed out; each of the two libraries has this code of its own.

#include "ledger.h"

#include <cstdio>
#include <cstdlib>

namespace console::vale
{

void* Ledger::hold(size_t size, uint64_t of)
{
    constexpr size_t step = 16;
    constexpr uint64_t places = 64;
    const size_t shift = step * (serial++ % places);
    auto* block = static_cast<char*>(std::malloc(size + shift));
    if (block == nullptr) {
        std::fprintf(stderr, "vale: no memory for an answer of %zu bytes\n", size);
        std::abort();
    }
    held.emplace(block + shift, Held{.block = block, .of = of});
    return block + shift;
}

uint64_t Ledger::release(const void* memory, const char* what)
{
    const auto found = held.find(memory);
    if (found == held.end()) violation(what, memory);
    const Held was = found->second;
    held.erase(found);
    std::free(was.block);
    return was.of;
}

void violation(const char* what, const void* memory)
{
    std::fprintf(stderr, "vale: %s (%p)\n", what, memory);
    std::abort();
}

} // namespace console::vale
