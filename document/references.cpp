#include "document/references.h"

#include "platform/utf8.h"

#include <algorithm>
#include <array>

namespace document
{

namespace
{

struct Named {
    std::string_view text;
    char character;
};

constexpr auto named = std::to_array<Named>({
    {"&amp;", '&'},
    {"&lt;", '<'},
    {"&gt;", '>'},
    {"&quot;", '"'},
    {"&apos;", '\''},
});

/// 16 and more: no digit.
uint32_t digitOf(char character)
{
    if (character >= '0' && character <= '9') return static_cast<uint32_t>(character - '0');
    if (character >= 'a' && character <= 'f') return static_cast<uint32_t>(character - 'a') + 10;
    if (character >= 'A' && character <= 'F') return static_cast<uint32_t>(character - 'A') + 10;
    return 16;
}

/// A text that starts with "&#".
Reference numbered(std::string_view text)
{
    constexpr uint32_t last = 0x10FFFF;
    const bool hexadecimal = text.size() > 2 && text[2] == 'x';
    const uint32_t base = hexadecimal ? 16 : 10;
    const size_t first = hexadecimal ? 3 : 2;
    uint32_t character = 0;
    size_t at = first;
    for (; at < text.size() && digitOf(text[at]) < base; ++at)
        character = std::min(character * base + digitOf(text[at]), last + 1);
    const bool whole = at > first && at < text.size() && text[at] == ';' && isXmlCharacter(character);
    return whole ? Reference{.length = at + 1, .character = character} : Reference{};
}

} // namespace

Reference referenceAt(std::string_view text)
{
    if (text.starts_with("&#")) return numbered(text);
    const auto* const found =
        std::ranges::find_if(named, [&](const Named& one) { return text.starts_with(one.text); });
    if (found == named.end()) return {};
    return {.length = found->text.size(), .character = static_cast<uint32_t>(found->character)};
}

void appendMeant(std::string& meant, std::string_view text)
{
    while (!text.empty()) {
        const size_t plain = std::min(text.find('&'), text.size());
        meant += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) return;
        const Reference reference = referenceAt(text);
        if (reference.length == 0)
            meant += '&';
        else
            platform::append(meant, reference.character);
        text.remove_prefix(std::max<size_t>(reference.length, 1));
    }
}

} // namespace document
