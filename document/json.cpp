#include "document/json.h"

#include "platform/utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <vector>

namespace document
{

namespace
{

constexpr std::string_view replacement = "\xEF\xBF\xBD";

bool isPlain(char byte)
{
    return static_cast<unsigned char>(byte) >= 0x20 && static_cast<unsigned char>(byte) < 0x80 &&
           byte != '"' && byte != '\\';
}

void appendEscape(std::string& json, char byte)
{
    constexpr std::string_view digits = "0123456789abcdef";
    switch (byte) {
    case '"':
    case '\\':
        json.append({'\\', byte});
        break;
    case '\n':
        json += "\\n";
        break;
    case '\t':
        json += "\\t";
        break;
    case '\r':
        json += "\\r";
        break;
    default:
        json.append("\\u00").append({digits[static_cast<unsigned char>(byte) >> 4U], digits[byte & 0xF]});
    }
}

template <typename Items, typename Append>
void appendList(std::string& json, const Items& items, Append append)
{
    json += '[';
    for (const char* separator = ""; const auto& item : items) {
        json += separator;
        append(json, item);
        separator = ",";
    }
    json += ']';
}

void appendNumber(std::string& json, int64_t number)
{
    std::array<char, 24> digits{};
    const auto [end, fault] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    json.append(digits.data(), end);
}

struct AppendValue {
    std::string& json;

    void operator()(std::monostate) const { json += "null"; }
    void operator()(std::string_view text) const { appendQuoted(json, text); }
    void operator()(int64_t number) const { appendNumber(json, number); }
    void operator()(const std::vector<std::string>& texts) const { appendList(json, texts, appendQuoted); }
    void operator()(const std::vector<int64_t>& numbers) const { appendList(json, numbers, appendNumber); }
};

} // namespace

void appendQuoted(std::string& json, std::string_view text)
{
    json += '"';
    while (!text.empty()) {
        const auto plain = static_cast<size_t>(std::ranges::find_if_not(text, isPlain) - text.begin());
        json += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) break;
        const platform::Character character = platform::firstOf(text);
        if (character.length == 1 && character.valid)
            appendEscape(json, text.front());
        else
            json += character.valid ? text.substr(0, character.length) : replacement;
        text.remove_prefix(character.length);
    }
    json += '"';
}

std::string quote(std::string_view text)
{
    std::string json;
    appendQuoted(json, text);
    return json;
}

void appendJson(std::string& json, const Value& value)
{
    std::visit(AppendValue{json}, value);
}

namespace
{

class Writer
{
public:
    Writer(const Document& ofDocument, const Write& toWrite)
        : document(ofDocument), values(ofDocument), write(toWrite)
    {
        for (const KindRow& row : kinds)
            columns.at(static_cast<size_t>(row.kind)) = columnsOf(row.kind);
    }

    void run()
    {
        json = "{\n\"timestamp\": " + quote(document.timestamp) +
               ",\n\"complete\": " + (document.missing.nothing() ? "true" : "false") + ",\n\"missing\": ";
        appendJson(json, Value{wordsOf(document.missing)});
        json += ",\n\"system\": ";
        part({.part = &document.system(), .kind = document.system().kind});
        json += "\n}\n";
        write(json);
    }

private:
    void part(const Row& row)
    {
        json += '{';
        for (const Column* column : columns.at(static_cast<size_t>(row.kind))) {
            const Value value = values.of(row, *column);
            if (isEmpty(value)) continue;
            json.append(1, '"').append(column->name).append("\":");
            appendJson(json, value);
            json += ',';
        }
        json += "\"properties\":{";
        if (row.kind != Kind::host) properties(*row.part);
        json += "},\"parts\":[";
        separator = "\n";
        if (row.kind == Kind::partition) {
            for (const Row& host : hostsOf(*row.part))
                inner(host);
        }
        if (row.kind != Kind::host) children(*row.part);
        json += "]}";
        constexpr size_t block = size_t{64} << 10U;
        if (json.size() < block) return;
        write(json);
        json.clear();
    }

    void children(const Part& outer)
    {
        for (const Part& child : outer.children) {
            if (child.kind == Kind::enclosurePartition)
                children(child);
            else
                inner({.part = &child, .kind = child.kind});
        }
    }

    void inner(const Row& row)
    {
        json += separator;
        part(row);
        separator = ",\n";
    }

    void properties(const Part& part)
    {
        codes.clear();
        for (const Property& property : part.properties)
            codes.push_back(property.code());
        std::ranges::sort(codes);
        if (std::ranges::adjacent_find(codes) != codes.end()) return severalOfACode(part);
        for (const char* comma = ""; const Property& property : part.properties) {
            member(comma, property.code());
            appendQuoted(json, property.value);
            comma = ",";
        }
    }

    /// A partition has a firmware level for each image level that runs.
    void severalOfACode(const Part& part)
    {
        std::map<std::string_view, std::vector<std::string_view>> texts;
        for (const Property& property : part.properties)
            texts[property.code()].push_back(property.value);
        for (const char* comma = ""; const auto& [code, several] : texts) {
            member(comma, code);
            if (several.size() == 1)
                appendQuoted(json, several.front());
            else
                appendList(json, several, appendQuoted);
            comma = ",";
        }
    }

    void member(const char* comma, std::string_view name)
    {
        json += comma;
        appendQuoted(json, name);
        json += ':';
    }

    const Document& document;
    Values values;
    const Write& write;
    std::array<std::vector<const Column*>, kindCount> columns;
    std::vector<std::string_view> codes;
    const char* separator = ""; ///< before the next of the parts that are listed
    std::string json;
};

} // namespace

void writeJson(const Document& document, const Write& write)
{
    Writer(document, write).run();
}

} // namespace document
