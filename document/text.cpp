#include "document/text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace document
{

namespace
{

bool continues(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// A lead byte's share of the character and the least character that needs so many bytes.
struct Sequence {
    size_t length;
    uint32_t bits;
    uint32_t least;
};

Sequence sequenceOf(unsigned char lead)
{
    if (lead < 0x80) return {.length = 1, .bits = lead, .least = 0};
    if (lead >= 0xC0 && lead < 0xE0) return {.length = 2, .bits = lead & 0x1FU, .least = 0x80};
    if (lead >= 0xE0 && lead < 0xF0) return {.length = 3, .bits = lead & 0x0FU, .least = 0x800};
    if (lead >= 0xF0 && lead < 0xF8) return {.length = 4, .bits = lead & 0x07U, .least = 0x10000};
    return {.length = 0, .bits = 0, .least = 0};
}

/// The length of the printable character that a text starts with; 0: there is none.
size_t printable(std::string_view text)
{
    const Sequence sequence = sequenceOf(static_cast<unsigned char>(text.front()));
    if (sequence.length == 0 || text.size() < sequence.length) return 0;
    uint32_t character = sequence.bits;
    for (const char byte : text.substr(1, sequence.length - 1)) {
        if (!continues(byte)) return 0;
        character = character << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    const bool control = character < 0x20 || (character >= 0x7F && character < 0xA0);
    const bool turnsText = (character >= 0x202A && character <= 0x202E) ||
                           (character >= 0x2066 && character <= 0x2069) || character == 0x2028 ||
                           character == 0x2029;
    const bool none =
        character < sequence.least || character > 0x10FFFF || (character >= 0xD800 && character < 0xE000);
    return control || turnsText || none ? 0 : sequence.length;
}

std::string escaped(char byte)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    if (byte == '\n') return "\\n";
    if (byte == '\t') return "\\t";
    const auto value = static_cast<unsigned char>(byte);
    return {'\\', 'x', digits[value >> 4U], digits[value & 0xFU]};
}

} // namespace

std::string shown(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const size_t length = printable(text);
        if (length == 0)
            result += escaped(text.front());
        else
            result += text.substr(0, length);
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return result;
}

size_t widthOf(std::string_view text)
{
    return static_cast<size_t>(std::ranges::count_if(text, [](char byte) { return !continues(byte); }));
}

std::string cutTo(std::string text, size_t width)
{
    constexpr std::string_view mark = "...";
    if (widthOf(text) <= width) return text;
    size_t end = 0;
    for (size_t left = width - mark.size(); left > 0; --left) {
        ++end;
        while (end < text.size() && continues(text[end]))
            ++end;
    }
    return text.substr(0, end).append(mark);
}

} // namespace document
