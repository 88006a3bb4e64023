// Text into fixed fields: the one bounded copy and the one bounded format. Both learn the field's size from
// the field, cut at its size less one, and always terminate. A null text reads as an empty one.

#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstdarg>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>

inline const char* textOrEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

/// The part of `text` that fits.
void copyText(std::span<char> field, const char* text);

/// The first `length` bytes of `text`, as far as it has them.
void copyText(std::span<char> field, const char* text, size_t length);

/// What is left of a field that a text is put into piece by piece; one byte stays for the end.
struct TextRoom {
    char* at;
    char* last;

    explicit TextRoom(std::span<char> field) : at(field.data()), last(field.data() + field.size() - 1) {}

    /// In place, and without a bound on its size where it fits: a piece that the compiler knows is an
    /// instruction or two.
    [[gnu::always_inline]] void add(std::string_view piece)
    {
        if (piece.size() > left()) {
            at = cut(at, left(), piece);
            return;
        }
        memmove(at, piece.data(), piece.size());
        at += piece.size();
    }

    [[gnu::always_inline]] void add(const char* text) { add(std::string_view(textOrEmpty(text))); }

    template <std::integral Number>
    [[gnu::always_inline]] void add(Number number)
    {
        if (left() < longest<Number>)
            at = cut(at, left(), number);
        else
            at = decimal(at, number);
    }

private:
    template <std::integral Number>
    static constexpr size_t longest = std::numeric_limits<Number>::digits10 + 2;

    [[nodiscard]] size_t left() const { return static_cast<size_t>(last - at); }

    template <std::integral Number>
    [[gnu::noinline]] static char* decimal(char* at, Number number)
    {
        return std::to_chars(at, at + longest<Number>, number).ptr;
    }

    [[gnu::cold, gnu::noinline]] static char* cut(char* at, size_t left, std::string_view piece)
    {
        return at + piece.copy(at, left);
    }

    template <std::integral Number>
    [[gnu::cold, gnu::noinline]] static char* cut(char* at, size_t left, Number number)
    {
        char whole[longest<Number>];
        return cut(at, left, {whole, decimal(whole, number)});
    }
};

/// Texts and numbers one after another into the field: a format without the reading of it, for what the
/// document has. Gives what the field holds. In place, so that the compiler knows the pieces that are written
/// there.
template <typename... Pieces>
[[gnu::always_inline]] inline std::string_view joinText(std::span<char> field, Pieces... pieces)
{
    TextRoom room(field);
    (room.add(pieces), ...);
    *room.at = '\0';
    return {field.data(), room.at};
}

/// What is left of a field behind the text that it holds.
inline std::span<char> restOf(std::span<char> field)
{
    return field.subspan(strnlen(field.data(), field.size() - 1));
}

/// Formatted printing into the field. The arguments may lie outside the field only.
[[gnu::format(printf, 2, 3)]] void formatText(std::span<char> field, const char* format, ...);

/// The same with a caller's own arguments. Gives what the field holds.
[[gnu::format(printf, 2, 0)]] std::string_view formatArguments(std::span<char> field, const char* format,
                                                               va_list arguments);

/// Formatted printing behind what the field holds.
[[gnu::format(printf, 2, 3)]] void appendText(std::span<char> field, const char* format, ...);

/// Where a value stands in a shell command.
enum class Quotes { doubled, single };

/// `text` as it must be written between such quotes for the shell to read back the very same text. A field of
/// four times the text's size holds the longest result.
void quoteText(std::span<char> field, const char* text, Quotes quotes);
