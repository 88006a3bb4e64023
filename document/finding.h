// Something in a document that the collector would not have written.

#pragma once

#include <cstdint>
#include <string>

namespace document
{

struct Finding {
    uint64_t line = 0;
    std::string what; ///< safe to show
};

} // namespace document
