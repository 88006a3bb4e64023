#include "platform/text.h"

#include "platform/utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cwchar>

#include <clocale>

namespace platform
{

namespace
{

struct Range {
    uint32_t first;
    uint32_t last;
};

/// Characters beyond ASCII that control, turn the direction of the text, or have no shape: what Unicode calls
/// default-ignorable, its line and paragraph separators, and the marks of annotations.
constexpr std::array obeyedOrHidden = {
    Range{0x80, 0x9F},       Range{0xAD, 0xAD},      Range{0x34F, 0x34F},   Range{0x61C, 0x61C},
    Range{0x115F, 0x1160},   Range{0x17B4, 0x17B5},  Range{0x180B, 0x180F}, Range{0x200B, 0x200F},
    Range{0x2028, 0x202E},   Range{0x2060, 0x206F},  Range{0x3164, 0x3164}, Range{0xFE00, 0xFE0F},
    Range{0xFEFF, 0xFEFF},   Range{0xFFA0, 0xFFA0},  Range{0xFFF0, 0xFFFB}, Range{0x1BCA0, 0x1BCA3},
    Range{0x1D173, 0x1D17A}, Range{0xE0000, 0xE0FFF}};

bool isShown(uint32_t character)
{
    if (character < 0x80) return character >= 0x20 && character != 0x7F;
    return std::ranges::none_of(obeyedOrHidden, [&](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

std::string hexadecimal(uint32_t number)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (; number > 0 || text.size() < 2; number >>= 4U)
        text.insert(text.begin(), digits[number & 0xFU]);
    return text;
}

std::string escaped(uint32_t character)
{
    if (character == '\n') return "\\n";
    if (character == '\t') return "\\t";
    return character < 0x80 ? "\\x" + hexadecimal(character) : "\\u{" + hexadecimal(character) + '}';
}

/// How the C library counts the columns of characters, whatever the user's locale is.
class Columns
{
public:
    Columns() : before(uselocale(unicode())) {}
    ~Columns() { uselocale(before); }
    Columns(const Columns&) = delete;
    Columns& operator=(const Columns&) = delete;

    [[nodiscard]] size_t operator()(uint32_t character) const
    {
        const int columns = wcwidth(static_cast<wchar_t>(character));
        return columns < 0 ? 1 : static_cast<size_t>(columns);
    }

private:
    static locale_t unicode()
    {
        static const locale_t made = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return made;
    }

    locale_t before;
};

bool isAscii(std::string_view text)
{
    return std::ranges::all_of(text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

/// The bytes of the longest start of a text that takes so many columns; of marks that take none, no more
/// than people use.
size_t startOf(std::string_view text, size_t width)
{
    constexpr size_t marksOfOne = 4;
    const Columns columnsOf;
    size_t marks = 0;
    for (size_t at = 0; at < text.size();) {
        const Character character = firstOf(text.substr(at));
        const size_t columns = !character.valid ? 1 : columnsOf(character.number);
        marks = columns == 0 ? marks + 1 : 0;
        if (columns > width || marks > marksOfOne) return at;
        width -= columns;
        at += character.length;
    }
    return text.size();
}

} // namespace

std::string shown(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Character character = firstOf(text);
        const size_t length = character.valid ? character.length : 1;
        if (!character.valid)
            result += "\\x" + hexadecimal(static_cast<unsigned char>(text.front()));
        else if (isShown(character.number))
            result += text.substr(0, length);
        else
            result += escaped(character.number);
        text.remove_prefix(length);
    }
    return result;
}

std::string shown(std::string_view text, size_t width)
{
    constexpr size_t bytesOfColumn = 20; // a character and the marks that people put on one
    const std::string start = shown(text.substr(0, bytesOfColumn * width));
    const bool whole = text.size() <= bytesOfColumn * width;
    return cutTo(whole ? start : start + std::string(width, ' '), width);
}

size_t widthOf(std::string_view text)
{
    if (isAscii(text)) return text.size();
    const Columns columnsOf;
    size_t width = 0;
    while (!text.empty()) {
        const Character character = firstOf(text);
        width += !character.valid ? 1 : columnsOf(character.number);
        text.remove_prefix(character.length);
    }
    return width;
}

std::string cutTo(std::string text, size_t width)
{
    constexpr std::string_view mark = "...";
    if (startOf(text, width) == text.size()) return text;
    text.resize(startOf(text, width - mark.size()));
    return text.append(mark);
}

} // namespace platform
