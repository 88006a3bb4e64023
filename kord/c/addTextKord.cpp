#include "addTextKord.h"

#include <cstdio>

namespace
{

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
    if (field.empty()) return;
    text = textOrEmpty(text);
    const size_t length = strnlen(text, field.size() - 1);
    memmove(field.data(), text, length);
    field[length] = '\0';
}

void copyText(std::span<char> field, const char* text, size_t length)
{
    copyText(length < field.size() ? field.first(length + 1) : field, text);
}

void formatText(std::span<char> field, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    formatArguments(field, format, arguments);
    va_end(arguments);
}

std::string_view formatArguments(std::span<char> field, const char* format, va_list arguments)
{
    if (field.empty()) return {};
    // Nearly every format is made of these few; from the first other conversion on the library prints.
    TextRoom room(field);
    for (const char* next;; format = next + 2) {
        next = strchrnul(format, '%');
        if (next != format) room.add({format, next});
        if (*next == '\0') break;
        switch (next[1]) {
        case 's':
            room.add(textOrEmpty(va_arg(arguments, const char*)));
            break;
        case 'd':
            room.add(va_arg(arguments, int));
            break;
        case 'u':
            room.add(va_arg(arguments, unsigned));
            break;
        default:
            vsnprintf(room.at, static_cast<size_t>(room.last - room.at) + 1, next, arguments);
            return field.data();
        }
    }
    *room.at = '\0';
    return {field.data(), room.at};
}

void appendText(std::span<char> field, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    formatArguments(restOf(field), format, arguments);
    va_end(arguments);
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
