// The elements of the document, learned from the writers themselves: each is run, and what it writes is read.

#include "tables.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace
{

/// The text of the last line traced. No log is kept here: this takes the trace log's place in the program.
std::string lastLine;

} // namespace

int32_t addTrcKord(const char*, const char*, const char* message)
{
    lastLine = message;
    return 0;
}

void trace(const kordRec*, const char*, const char* format, ...)
{
    char text[traceTextSize];
    va_list arguments;
    va_start(arguments, format);
    formatArguments(text, format, arguments);
    va_end(arguments);
    lastLine = text;
}

namespace tables
{

namespace
{

/// What stands between two texts, the first after `from`, which moves behind it. "": there is none.
std::string_view between(std::string_view text, size_t& from, std::string_view begin, std::string_view end)
{
    const size_t start = text.find(begin, from);
    if (start == std::string_view::npos) return {};
    const size_t first = start + begin.size();
    const size_t last = text.find(end, first);
    from = last + end.size();
    return text.substr(first, last - first);
}

std::vector<ElementProperty> propertiesOf(std::string_view text)
{
    std::vector<ElementProperty> properties;
    for (size_t at = 0;;) {
        std::string_view name = between(text, at, "<Property name=", " displayName=\"");
        if (name.empty()) return properties;
        if (name.front() == '"') name = name.substr(1, name.size() - 2);
        const size_t start = at;
        const std::string_view displayName = text.substr(start, text.find('"', start) - start);
        const std::string_view code = between(text, at, "\">\n", "\n<Value");
        const bool reversed = name != code;
        properties.push_back({std::string(code), std::string(reversed ? name : displayName), reversed});
    }
}

Element elementOf(const ToldWriter& row)
{
    lastLine.clear();
    const std::string text = written(row.write);
    size_t at = 0;
    const bool isResource = text.starts_with("<Resource ");
    const bool isProperty = text.starts_with("<Property ");
    std::string name;
    if (!isProperty) name = between(text, at, "displayName=\"", "\"");
    if (name == anyText) name.clear();
    return {.writer = row.name,
            .kind = isResource   ? "resource"
                    : isProperty ? "property"
                                 : "list",
            .name = name,
            .trace = lastLine,
            .properties = propertiesOf(text)};
}

} // namespace

std::string written(void (*write)(const kordRec*))
{
    char* bytes = nullptr;
    size_t size = 0;
    kordRec record{};
    copyText(record.kordpManagedSystemMTMS, anyText);
    record.inp = open_memstream(&bytes, &size);
    if (record.inp == nullptr) abort();
    write(&record);
    fclose(record.inp);
    std::string text(bytes, size);
    free(bytes);
    return text;
}

std::vector<Element> allElements()
{
    std::vector<Element> elements;
    for (const std::span<const ToldWriter> writers : {addXmlWriters, addUncalledXmlWriters}) {
        for (const ToldWriter& writer : writers)
            elements.push_back(elementOf(writer));
    }
    return elements;
}

} // namespace tables
