// Characters in UTF-8 bytes.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace platform
{

struct Character {
    uint32_t number = 0;
    size_t length = 0; ///< in bytes
    bool valid = false;
};

/// What stands for bytes that are no UTF-8.
constexpr uint32_t replacement = 0xFFFD;

/// The character that a text starts with. Bytes that are none are told as the replacement for as many of them
/// as could have begun one, at least for one.
Character firstOf(std::string_view text);

/// Appends a character's bytes.
void append(std::string& text, uint32_t character);

/// Appends a text as it is, but for bytes that are no UTF-8: the replacement stands for them.
void appendUnicode(std::string& to, std::string_view text);

} // namespace platform
