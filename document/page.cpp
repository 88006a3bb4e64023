#include "document/page.h"

#include "document/json.h"
#include "document/pageText.h"

#include <map>
#include <unordered_map>

namespace document
{

namespace
{

/// The document as the page's script reads it. Facilities have tens of thousands of parts that share their
/// labels and most of their values, so every text stands once, in "texts", and goes by its index:
/// a part is [kind, list, name, id, shape, [value, ...], [part, ...]], a shape the [code, label] of each
/// value.
class PageData
{
public:
    std::string write(const Document& document)
    {
        const std::string system = part(document.system());
        return "{\"timestamp\":" + quote(document.timestamp) + ",\n\"kinds\":" + kindRows() +
               ",\n\"shapes\":[" + shapeTexts + "],\n\"system\":" + system + ",\n\"texts\":[" + texts + "]}";
    }

private:
    static std::string kindRows()
    {
        std::string rows;
        for (const KindRow& row : kinds) {
            rows += rows.empty() ? "[" : ",";
            rows += '[' + quote(row.word) + ',' + quote(row.singular) + ',' + quote(row.plural) + ',' +
                    (row.counted ? "1]" : "0]");
        }
        return rows + ']';
    }

    std::string text(std::string_view text)
    {
        const auto [known, added] = indexes.try_emplace(text, indexes.size());
        if (added) texts += (known->second == 0 ? "" : ",\n") + quote(text);
        return std::to_string(known->second);
    }

    std::string shape(const Part& part)
    {
        std::string key;
        for (const Property& property : part.properties) {
            key += key.empty() ? "[" : ",";
            key += '[' + text(property.code()) + ',' + text(property.label()) + ']';
        }
        key += key.empty() ? "[]" : "]";
        const auto [known, added] = shapes.try_emplace(key, shapes.size());
        if (added) shapeTexts += (known->second == 0 ? "" : ",\n") + key;
        return std::to_string(known->second);
    }

    std::string part(const Part& part)
    {
        std::string item = '[' + std::to_string(static_cast<int>(part.kind)) + ',' + text(part.list) + ',' +
                           text(part.name) + ',' + text(part.id) + ',' + shape(part) + ",[";
        for (const char* separator = ""; const Property& property : part.properties) {
            item.append(separator).append(text(property.value));
            separator = ",";
        }
        item += "],[";
        for (const char* separator = ""; const Part& child : part.children) {
            item.append(separator).append(this->part(child));
            separator = ",\n";
        }
        return item + "]]";
    }

    std::unordered_map<std::string_view, size_t> indexes;
    std::map<std::string, size_t> shapes;
    std::string texts;
    std::string shapeTexts;
};

/// Without "<" and "&" no text can end the element that the data stands in, nor begin another.
std::string withoutMarkup(const std::string& data)
{
    std::string safe;
    safe.reserve(data.size());
    for (const char byte : data) {
        switch (byte) {
        case '<':
            safe += "\\u003c";
            break;
        case '>':
            safe += "\\u003e";
            break;
        case '&':
            safe += "\\u0026";
            break;
        default:
            safe += byte;
        }
    }
    return safe;
}

} // namespace

std::string page(const Document& document)
{
    return std::string(pageStart) + withoutMarkup(PageData().write(document)) + std::string(pageEnd);
}

} // namespace document
