// The elements of the document, learned from the writers themselves: each is run, and what it writes is read.

#include "addXmlKord.h"
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

/// What stands for every text that a writer is given.
constexpr const char* given = "*";

template <typename Value>
Value valueFor()
{
    if constexpr (std::is_same_v<Value, const char*>)
        return given;
    else
        return {};
}

template <typename Result, typename... Values>
void call(Result (*writer)(const kordRec*, Values...), const kordRec* pKordRec)
{
    writer(pKordRec, valueFor<Values>()...);
}

template <auto Writer>
void callWriter(const kordRec* pKordRec)
{
    call(Writer, pKordRec);
}

struct WriterRow {
    const char* name;
    void (*write)(const kordRec*);
};

/// Every writer that the collectors call, in the order of the document's parts.
constexpr WriterRow writers[] = {
    {"openSystem", callWriter<openSystem>},
    {"openEnclosures", callWriter<openEnclosures>},
    {"openPartitionList", callWriter<openPartitionList>},
    {"openCecEncl", callWriter<openCecEncl>},
    {"openCecEnclosurePartitionsList", callWriter<openCecEnclosurePartitionsList>},
    {"openPartitionResourcesList", callWriter<openPartitionResourcesList>},
    {"openPartitionResources", callWriter<openPartitionResources>},
    {"writeNVC", callWriter<writeNVC>},
    {"openIOEncl", callWriter<openIOEncl>},
    {"writeDA", callWriter<writeDA>},
    {"writeHA", callWriter<writeHA>},
    {"openStorEncl", callWriter<openStorEncl>},
    {"writeDDM", callWriter<writeDDM>},
    {"writeFCIC", callWriter<writeFCIC>},
    {"writeBaffle", callWriter<writeBaffle>},
    {"openRackEncl", callWriter<openRackEncl>},
    {"openGlobalResources", callWriter<openGlobalResources>},
    {"writePPS", callWriter<writePPS>},
    {"writeBattery", callWriter<writeBattery>},
    {"writeRPC", callWriter<writeRPC>},
    {"writeFanSense", callWriter<writeFanSense>},
    {"writeFanTray", callWriter<writeFanTray>},
    {"openQUAYEncl", callWriter<openQUAYEncl>},
    {"writeRackEnclMTMS", callWriter<writeRackEnclMTMS>},
    {"writeStorPlex", callWriter<writeStorPlex>},
    {"openPartitionResource", callWriter<openPartitionResource>},
    {"writeSFI", callWriter<writeSFI>},
    {"writeVRMF", callWriter<writeVRMF>},
    {"writeOnyx", callWriter<writeOnyx>},
    {"writeSFImageWWNN", callWriter<writeSFImageWWNN>},
    {"writeHSLPool", callWriter<writeHSLPool>},
    {"writeLogcialConfig", callWriter<writeLogcialConfig>},
    {"writeHostInventory", callWriter<writeHostInventory>},
    {"writeHostDescription", callWriter<writeHostDescription>},
    {"openStorConfigResourceList", callWriter<openStorConfigResourceList>},
    {"openStorConfigResource", callWriter<openStorConfigResource>},
    {"openArraySitesResourceList", callWriter<openArraySitesResourceList>},
    {"openArraysResourceList", callWriter<openArraysResourceList>},
    {"openRanksResourceList", callWriter<openRanksResourceList>},
    {"openSegmentPoolResourceList", callWriter<openSegmentPoolResourceList>},
    {"writeArraySite", callWriter<writeArraySite>},
    {"writeArray", callWriter<writeArray>},
    {"writeRank", callWriter<writeRank>},
    {"writeSegmentPool", callWriter<writeSegmentPool>},
};

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

Element elementOf(const WriterRow& row)
{
    lastLine.clear();
    const std::string text = written(row.write);
    size_t at = 0;
    const bool isResource = text.starts_with("<Resource ");
    const bool isProperty = text.starts_with("<Property ");
    std::string name;
    if (!isProperty) name = between(text, at, "displayName=\"", "\"");
    if (name == given) name.clear();
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
    copyText(record.kordpManagedSystemMTMS, given);
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
    for (const WriterRow& row : writers)
        elements.push_back(elementOf(row));
    return elements;
}

} // namespace tables
