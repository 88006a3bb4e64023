#include "addTextKord.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace
{

[[gnu::format(printf, 2, 0)]] void formatInto(std::span<char> field, const char* format, va_list arguments)
{
    if (!field.empty()) vsnprintf(field.data(), field.size(), format, arguments);
}

/// What the shell needs in place of one character between quotes.
std::string_view quoted(const char& character, Quotes quotes)
{
    switch (character) {
    case '\'':
        return quotes == Quotes::single ? R"('\'')" : "'";
    case '"':
        return quotes == Quotes::doubled ? R"(\")" : "\"";
    case '$':
        return quotes == Quotes::doubled ? R"(\$)" : "$";
    case '`':
        return quotes == Quotes::doubled ? R"(\`)" : "`";
    case '\\':
        return quotes == Quotes::doubled ? R"(\\)" : "\\";
    default:
        return {&character, 1};
    }
}

} // namespace

void copyText(std::span<char> field, const char* text)
{
    copyText(field, text, field.size());
}

void copyText(std::span<char> field, const char* text, size_t length)
{
    if (field.empty()) return;
    text = textOrEmpty(text);
    length = std::min({length, strnlen(text, length), field.size() - 1});
    memmove(field.data(), text, length);
    field[length] = '\0';
}

void formatText(std::span<char> field, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    formatInto(field, format, arguments);
    va_end(arguments);
}

void appendText(std::span<char> field, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    formatInto(field.subspan(strnlen(field.data(), field.size())), format, arguments);
    va_end(arguments);
}

TextPieces& TextPieces::add(std::string_view piece)
{
    const size_t length = std::min(piece.size(), field.size() - used - 1);
    memcpy(field.data() + used, piece.data(), length);
    used += length;
    field[used] = '\0';
    return *this;
}

TextPieces& TextPieces::add(int32_t number)
{
    char decimal[12];
    const char* end = std::to_chars(decimal, decimal + sizeof decimal, number).ptr;
    return add(std::string_view(decimal, static_cast<size_t>(end - decimal)));
}

void quoteText(std::span<char> field, const char* text, Quotes quotes)
{
    size_t used = 0;
    for (text = textOrEmpty(text); *text != '\0'; ++text) {
        const std::string_view piece = quoted(*text, quotes);
        if (used + piece.size() >= field.size()) break;
        memcpy(field.data() + used, piece.data(), piece.size());
        used += piece.size();
    }
    field[used] = '\0';
}
