// What every program costs that ends at once. It is linked with what it might call.

#ifdef KORD_BENCH_CLIENT
#include "vale.h"
#endif
#ifdef KORD_BENCH_CXX
#include <stdexcept>
#endif

int main(int argc, char*[]) // NOLINT(bugprone-exception-escape): it never comes to that
{
    [[maybe_unused]] constexpr int never = 1000;
#ifdef KORD_BENCH_CXX
    if (argc > never) throw std::runtime_error("");
#endif
#ifdef KORD_BENCH_CLIENT
    if (argc > never) return vale_free_response(nullptr) + vale_rel_error(nullptr); // one of either library
#endif
    return argc > 0 ? 0 : 1;
}
