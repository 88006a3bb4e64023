#include "partsCheck.h"

#include "document/list.h"
#include "document/reader.h"
#include "jsonSchema.h"
#include "mendedDocument.h"
#include "parseJson.h"
#include "partsTable.h"

#include <nlohmann/json.hpp>

namespace kordTest
{

namespace
{

using nlohmann::json;

document::Document parse(const std::string& text)
{
    document::Input input("document.xml", text);
    return document::read(input);
}

std::string listed(const std::string& text)
{
    document::ListOptions options;
    options.kind = "all";
    options.format = document::Format::json;
    std::string written;
    document::List list(options, [&](std::string_view piece) { written += piece; });
    list.add(parse(text));
    list.finish();
    return written;
}

std::string treeOf(const std::string& text)
{
    std::string written;
    document::writeJson(parse(text), [&](std::string_view piece) { written += piece; });
    return written;
}

/// Where two values differ first, and how.
std::string differenceOf(const json& expected, const json& found)
{
    if (expected == found) return "";
    const json changes = json::diff(expected, found);
    const std::string place = changes.at(0).at("path");
    const json::json_pointer pointer(place);
    const auto shown = [](const json& value) {
        return value.dump(-1, ' ', true, json::error_handler_t::replace).substr(0, 300);
    };
    const std::string was = expected.contains(pointer) ? shown(expected.at(pointer)) : "nothing";
    const std::string is = found.contains(pointer) ? shown(found.at(pointer)) : "nothing";
    return place + " is " + is + ", not " + was;
}

void addDifference(std::vector<std::string>& faults, const std::string& what, const json& expected,
                   const json& found)
{
    const std::string difference = differenceOf(expected, found);
    if (!difference.empty()) faults.push_back(what + ' ' + difference);
}

void addFaults(std::vector<std::string>& faults, const std::string& what, const json& expected,
               const json& found)
{
    addDifference(faults, what, expected, found);
    for (const std::string& fault : valueFaults(KORD_DOCUMENT_SCHEMA, found))
        faults.push_back(what + ' ' + fault);
}

/// The measure with bytes that are no UTF-8 as JSON has them.
json asJson(const json& measure)
{
    return parseJson(measure.dump(-1, ' ', false, json::error_handler_t::replace));
}

void tell(std::vector<Element>& elements)
{
    for (Element& element : elements) {
        element.displayName = told(element.displayName);
        element.uniqueId = told(element.uniqueId);
        for (Property& property : element.properties)
            property.value = told(property.value);
        tell(element.children);
    }
}

} // namespace

std::vector<std::string> partsFaults(const std::string& text)
{
    return partsFaults(readDocument(text), text);
}

std::vector<std::string> partsFaults(Document document, const std::string& text)
{
    tell(document.resources);
    std::vector<std::string> faults;
    addFaults(faults, "rows", asJson(partRows(document)), parseJson(listed(text)));
    const json found = parseJson(treeOf(text));
    const json tree = {{"timestamp", document.timestamp},
                       {"complete", found.at("complete")},
                       {"missing", found.at("missing")},
                       {"system", asJson(partTree(document))}};
    addFaults(faults, "tree", tree, found);
    if (carried(text) == text)
        addDifference(faults, "mended tree", found, parseJson(treeOf(mendDocument(text).xml)));
    return faults;
}

} // namespace kordTest
