// Text into fixed fields: the one bounded copy and the one bounded format. Both learn the field's size from
// the field, cut at its size less one, and always terminate. A null text reads as an empty one.

#pragma once

#include <cstdarg>
#include <span>

inline const char* textOrEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

/// The part of `text` that fits.
void copyText(std::span<char> field, const char* text);

/// The first `length` bytes of `text`, as far as it has them.
void copyText(std::span<char> field, const char* text, size_t length);

/// Formatted printing into the field. The arguments may lie outside the field only.
[[gnu::format(printf, 2, 3)]] void formatText(std::span<char> field, const char* format, ...);

/// The same with a caller's own arguments.
[[gnu::format(printf, 2, 0)]] void formatArguments(std::span<char> field, const char* format,
                                                   va_list arguments);

/// Formatted printing behind what the field holds.
[[gnu::format(printf, 2, 3)]] void appendText(std::span<char> field, const char* format, ...);

/// Where a value stands in a shell command.
enum class Quotes { doubled, single };

/// `text` as it must be written between such quotes for the shell to read back the very same text. A field of
/// four times the text's size holds the longest result.
void quoteText(std::span<char> field, const char* text, Quotes quotes);
