// How a made facility is written: attributes as JSON, a resource a line.

#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace console::facility::making
{

/// An attribute with its value as JSON. No text of a made facility needs an escape.
struct Field {
    std::string_view name;
    std::string value;
};

inline std::string quote(std::string_view text)
{
    std::string quoted = "\"";
    return quoted.append(text).append(1, '"');
}

inline Field text(std::string_view name, std::string_view value)
{
    return {name, quote(value)};
}

inline Field number(std::string_view name, int64_t value)
{
    return {name, std::to_string(value)};
}

inline Field list(std::string_view name, const std::vector<std::string>& items)
{
    std::string json = "[";
    for (const char* separator = ""; const std::string& item : items) {
        json.append(separator).append(item);
        separator = ", ";
    }
    return {name, json + ']'};
}

/// Prints the file, a resource a line.
class Printer
{
public:
    explicit Printer(std::FILE* toFile) : file(toFile) {}

    void print(std::string_view text)
    {
        constexpr size_t enough = 1 << 20;
        pending += text;
        if (pending.size() >= enough) flush();
    }
    void startClass(std::string_view name)
    {
        print(firstClass ? "\n" : ",\n");
        print("    \"" + std::string(name) + "\": [");
        firstClass = false;
        firstResource = true;
    }
    void endClass() { print(firstResource ? "]" : "\n    ]"); }
    void resource(std::initializer_list<Field> fields)
    {
        print(firstResource ? "\n      { " : ",\n      { ");
        firstResource = false;
        for (const char* separator = ""; const Field& field : fields) {
            pending.append(separator).append(1, '"').append(field.name).append("\": ").append(field.value);
            separator = ", ";
        }
        print(" }");
    }
    bool flush()
    {
        whole = std::fwrite(pending.data(), 1, pending.size(), file) == pending.size() && whole;
        pending.clear();
        return std::fflush(file) == 0 && whole;
    }

private:
    std::FILE* file;
    std::string pending;
    bool firstClass = true;
    bool firstResource = true;
    bool whole = true;
};

} // namespace console::facility::making
