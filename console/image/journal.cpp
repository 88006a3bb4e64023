// Writing the journal: JSON texts and the numbered append.

#include "image/journal.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/file.h>
#include <unistd.h>

namespace console::image
{

namespace
{

struct Utf8Form {
    unsigned char mask;
    unsigned char lead;
    int length;
    uint32_t least; ///< smaller code points in this length are overlong
};
constexpr Utf8Form utf8Forms[] = {
    {.mask = 0x80, .lead = 0x00, .length = 1, .least = 0},
    {.mask = 0xE0, .lead = 0xC0, .length = 2, .least = 0x80},
    {.mask = 0xF0, .lead = 0xE0, .length = 3, .least = 0x800},
    {.mask = 0xF8, .lead = 0xF0, .length = 4, .least = 0x10000},
};

/// The length of the character at the start of the text, 0 when it is not valid UTF-8. The text's final NUL
/// is no continuation byte and so ends every look ahead.
int characterLength(const char* text)
{
    const auto byte = [text](int i) { return static_cast<unsigned char>(text[i]); };
    for (const Utf8Form& form : utf8Forms) {
        if ((byte(0) & form.mask) != form.lead) continue;
        uint32_t point = byte(0) & static_cast<unsigned char>(~form.mask);
        for (int i = 1; i < form.length; ++i) {
            if ((byte(i) & 0xC0) != 0x80) return 0;
            point = point << 6 | (byte(i) & 0x3F);
        }
        const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
        return point < form.least || point > 0x10FFFF || surrogate ? 0 : form.length;
    }
    return 0;
}

void writeAscii(std::string& json, char character)
{
    if (character == '"' || character == '\\') {
        json += {'\\', character};
    } else if (static_cast<unsigned char>(character) < 0x20) {
        char escape[7];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(character));
        json += escape;
    } else {
        json += character;
    }
}

} // namespace

void writeJson(std::string& json, const char* text)
{
    if (text == nullptr) {
        json += "null";
        return;
    }
    json += '"';
    while (*text != '\0') {
        const int length = characterLength(text);
        if (length == 0) {
            json += "\xEF\xBF\xBD";
        } else if (length == 1) {
            writeAscii(json, *text);
        } else {
            json.append(text, static_cast<size_t>(length));
        }
        text += length == 0 ? 1 : length;
    }
    json += '"';
}

void Line::start(const char* key)
{
    json += ',';
    writeJson(json, key);
    json += ':';
}

uint64_t append(const Run& run, const Line& line)
{
    if (run.journal < 0) return 0;
    flock(run.journal, LOCK_EX);
    const uint64_t number = ++run.state->sequence;
    const std::string text = "{\"seq\":" + std::to_string(number) + line.json + "}\n";
    if (write(run.journal, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        std::fprintf(stderr, "console: line %llu is missing from the journal: %s\n",
                     static_cast<unsigned long long>(number), std::strerror(errno));
    }
    flock(run.journal, LOCK_UN);
    return number;
}

} // namespace console::image
