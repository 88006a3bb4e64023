#include "platform/utf8.h"

#include <algorithm>
#include <array>

namespace platform
{

namespace
{

/// Lead bytes, and between what bounds the byte behind them has to be so that no character has two forms.
struct Form {
    unsigned char firstLead;
    unsigned char lastLead;
    unsigned char least;
    unsigned char most;
    size_t length;
};

constexpr std::array forms = {
    Form{0x00, 0x7F, 0x00, 0x00, 1}, Form{0xC2, 0xDF, 0x80, 0xBF, 2}, Form{0xE0, 0xE0, 0xA0, 0xBF, 3},
    Form{0xE1, 0xEC, 0x80, 0xBF, 3}, Form{0xED, 0xED, 0x80, 0x9F, 3}, Form{0xEE, 0xEF, 0x80, 0xBF, 3},
    Form{0xF0, 0xF0, 0x90, 0xBF, 4}, Form{0xF1, 0xF3, 0x80, 0xBF, 4}, Form{0xF4, 0xF4, 0x80, 0x8F, 4},
};

constexpr unsigned char byteAt(std::string_view text, size_t at)
{
    return static_cast<unsigned char>(text[at]);
}

} // namespace

Character firstOf(std::string_view text)
{
    const unsigned char lead = byteAt(text, 0);
    const auto* const form = std::ranges::find_if(
        forms, [lead](const Form& one) { return lead >= one.firstLead && lead <= one.lastLead; });
    if (form == forms.end()) return {.number = replacement, .length = 1, .valid = false};
    // The lead byte's own bits are those behind its marks.
    uint32_t number = form->length == 1 ? lead : lead & (0x7FU >> form->length);
    for (size_t at = 1; at < form->length; ++at) {
        const unsigned char least = at == 1 ? form->least : 0x80;
        const unsigned char most = at == 1 ? form->most : 0xBF;
        if (at == text.size() || byteAt(text, at) < least || byteAt(text, at) > most)
            return {.number = replacement, .length = at, .valid = false};
        number = number << 6U | (byteAt(text, at) & 0x3FU);
    }
    return {.number = number, .length = form->length, .valid = true};
}

void append(std::string& text, uint32_t character)
{
    const auto byte = [&](uint32_t bits) { text += static_cast<char>(bits); };
    if (character < 0x80) return byte(character);
    const uint32_t more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr std::array<uint32_t, 4> leads = {0, 0xC0, 0xE0, 0xF0};
    byte(leads.at(more) | character >> (6 * more));
    for (uint32_t left = more; left-- > 0;)
        byte(0x80U | (character >> (6 * left) & 0x3FU));
}

void appendUnicode(std::string& to, std::string_view text)
{
    while (!text.empty()) {
        const auto* const ascii =
            std::ranges::find_if(text, [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
        const auto plain = static_cast<size_t>(ascii - text.begin());
        to += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) return;
        const Character character = firstOf(text);
        append(to, character.number);
        text.remove_prefix(character.length);
    }
}

} // namespace platform
