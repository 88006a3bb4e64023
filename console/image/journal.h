// The journal: one JSON object a line, numbered over all processes of a run. Whoever replays a run reads the
// order of events from it, so the order of the lines is the order of their numbers.

#pragma once

#include "image/run.h"

#include <concepts>
#include <string>

namespace console::image
{

/// Append a value as JSON. Every line must stay valid JSON whatever a program hands over: bytes that are not
/// UTF-8 show as U+FFFD; a null text is null.
void writeJson(std::string& json, const char* text);
template <std::integral Number>
void writeJson(std::string& json, Number number)
{
    json += std::to_string(number);
}

/// One line in the making, without its number.
struct Line {
    std::string json;

    /// `kind` is "vale" or "program", `name` the call's or the program's name.
    Line(const char* kind, const char* name) { add(kind, name); }

    template <typename Value>
    Line& add(const char* key, const Value& value)
    {
        start(key);
        writeJson(json, value);
        return *this;
    }
    /// A list, each item written by `write(json, item)`.
    template <typename Range, typename Write>
    Line& list(const char* key, const Range& items, Write write)
    {
        start(key);
        json += '[';
        for (const char* separator = ""; const auto& item : items) {
            json += separator;
            write(json, item);
            separator = ",";
        }
        json += ']';
        return *this;
    }

private:
    void start(const char* key);
};

/// Appends the line and returns its number; without an open run it does nothing and returns 0.
uint64_t append(const Run& run, const Line& line);

} // namespace console::image
