// References in a document's texts: the five that XML knows by name, and characters by their number. They
// mean their character; any other ampersand is itself, for the collector escapes nothing.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace document
{

struct Reference {
    size_t length = 0; ///< from the ampersand to the semicolon; 0: it is no reference
    uint32_t character = 0;
};

/// The reference that a text starts with.
Reference referenceAt(std::string_view text);

/// Whether XML 1.0 can hold the character.
constexpr bool isXmlCharacter(uint32_t character)
{
    return character == '\t' || character == '\n' || character == '\r' ||
           (character >= 0x20 && character < 0xD800) || (character >= 0xE000 && character < 0xFFFE) ||
           (character >= 0x10000 && character <= 0x10FFFF);
}

/// Appends a text as it is meant, with characters where references stand.
void appendMeant(std::string& meant, std::string_view text);

/// The text as it is meant; it stands in the scratch where it holds references.
inline std::string_view meant(std::string_view text, std::string& scratch)
{
    if (text.find('&') == std::string_view::npos) return text;
    scratch.clear();
    appendMeant(scratch, text);
    return scratch;
}

} // namespace document
