#include "document/tables.h"

#include "document/tablesText.h"
#include "document/trace.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace document
{

namespace
{

using nlohmann::json;

std::string textIn(const json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

FailureEnd endOf(const json& row)
{
    FailureEnd end;
    if (row.contains("number")) end.number = row["number"].get<uint32_t>();
    end.result = textIn(row, "result");
    end.standsInstead = !textIn(row, "instead").empty();
    if (const auto report = row.find("report"); report != row.end()) {
        end.files = true;
        end.referenceCode = textIn(*report, "referenceCode");
        end.withMessage = report->at("withMessage").get<bool>();
    }
    return end;
}

TableLine lineOf(const json& row, const std::string& function)
{
    TableLine line{.role = textIn(row, "role"),
                   .code = std::string(trimmed(textIn(row, "code"))),
                   .format = LineFormat(textIn(row, "format")),
                   .meaning = textIn(row, "meaning"),
                   .cause = textIn(row, "cause"),
                   .advice = textIn(row, "advice"),
                   .ends = {},
                   .function = function,
                   .session = textIn(row, "session")};
    for (const json& end : row.value("ends", json::array()))
        line.ends.push_back(endOf(end));
    return line;
}

TableQuery queryOf(const json& row)
{
    TableQuery query{.function = textIn(row, "function"),
                     .className = textIn(row, "class"),
                     .session = textIn(row, "session"),
                     .call = textIn(row, "call"),
                     .selection = {},
                     .selectionFormat = {},
                     .action = textIn(row, "action"),
                     .attributes = {},
                     .things = textIn(row, "things"),
                     .counts = row.at("counter").get<bool>(),
                     .entry = {},
                     .lines = {}};
    if (row.at("selection").is_string()) {
        query.selection = row["selection"].get<std::string>();
        query.selectionFormat = LineFormat(*query.selection);
    }
    for (const json& attribute : row.at("attributes"))
        query.attributes.push_back(textIn(attribute, "name"));
    for (const json& line : row.at("lines")) {
        query.lines.push_back(lineOf(line, query.function));
        const std::string& role = query.lines.back().role;
        if (role == "entry") query.entry = trimmed(textIn(line, "format"));
        query.tracesSelection = query.tracesSelection || role == "selection";
    }
    return query;
}

Tables read()
{
    const json rows = json::parse(tablesText());
    Tables tables;
    for (const json& row : rows.at("queries"))
        tables.queries.push_back(queryOf(row));
    for (const json& row : rows.at("lines"))
        tables.lines.push_back(lineOf(row, textIn(row, "function")));
    for (const json& row : rows.at("events")) {
        tables.events.push_back({.type = textIn(row, "type"),
                                 .referenceCode = textIn(row, "referenceCode"),
                                 .text = textIn(row, "text"),
                                 .advice = textIn(row, "advice")});
    }
    return tables;
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

size_t numberAtStart(std::string_view text)
{
    size_t length = text.starts_with('-') ? 1 : 0;
    while (length < text.size() && isDigit(text[length]))
        ++length;
    return length > 0 && isDigit(text[length - 1]) ? length : 0;
}

size_t numberAtEnd(std::string_view text)
{
    size_t length = 0;
    while (length < text.size() && isDigit(text[text.size() - length - 1]))
        ++length;
    if (length > 0 && length < text.size() && text[text.size() - length - 1] == '-') ++length;
    return length;
}

} // namespace

LineFormat::LineFormat(std::string_view format)
{
    std::string literal;
    const auto flush = [&] {
        if (!literal.empty()) pieces.push_back({.kind = 'l', .literal = std::exchange(literal, {})});
    };
    for (size_t at = 0; at < format.size(); ++at) {
        const char next = format[at] == '%' && at + 1 < format.size() ? format[at + 1] : '\0';
        if (next == '\0') {
            literal += format[at];
            continue;
        }
        ++at;
        if (next == '%') {
            literal += '%';
        } else {
            flush();
            pieces.push_back({.kind = next == 's' ? 's' : 'd', .literal = {}});
        }
    }
    flush();
}

std::optional<std::vector<std::string_view>> LineFormat::match(std::string_view text) const
{
    std::vector<std::string_view> front;
    std::vector<std::string_view> back;
    size_t first = 0;
    size_t last = pieces.size();
    for (; first < last && pieces[first].kind != 's'; ++first) {
        const Piece& piece = pieces[first];
        const size_t length = piece.kind == 'l' ? piece.literal.size() : numberAtStart(text);
        if (piece.kind == 'l' ? !text.starts_with(piece.literal) : length == 0) return std::nullopt;
        if (piece.kind == 'd') front.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    for (; last > first && pieces[last - 1].kind != 's'; --last) {
        const Piece& piece = pieces[last - 1];
        const size_t length = piece.kind == 'l' ? piece.literal.size() : numberAtEnd(text);
        if (piece.kind == 'l' ? !text.ends_with(piece.literal) : length == 0) return std::nullopt;
        if (piece.kind == 'd') back.push_back(text.substr(text.size() - length));
        text.remove_suffix(length);
    }
    if (first == last && !text.empty()) return std::nullopt;
    const bool two = std::count_if(pieces.begin(), pieces.end(),
                                   [](const Piece& piece) { return piece.kind == 's'; }) == 2;
    while (first + 1 < last) { // a text, what parts it from the next one, and that one
        const Piece& between = pieces[first + 1];
        if (pieces[first].kind == 'd') {
            const size_t length = numberAtStart(text);
            if (length == 0 || !text.substr(length).starts_with(between.literal)) return std::nullopt;
            front.push_back(text.substr(0, length));
            text.remove_prefix(length + between.literal.size());
        } else {
            const size_t at = two ? text.rfind(between.literal) : text.find(between.literal);
            if (at == std::string_view::npos) return std::nullopt;
            front.push_back(text.substr(0, at));
            text.remove_prefix(at + between.literal.size());
        }
        first += 2;
    }
    if (first < last) front.push_back(text);
    front.insert(front.end(), back.rbegin(), back.rend());
    return front;
}

size_t LineFormat::literals() const
{
    size_t count = 0;
    for (const Piece& piece : pieces)
        count += piece.literal.size();
    return count;
}

const TableQuery* Tables::query(std::string_view function) const
{
    const auto found = std::ranges::find(queries, function, &TableQuery::function);
    return found == queries.end() ? nullptr : &*found;
}

const TableEvent& Tables::event(std::string_view type) const
{
    const auto found = std::ranges::find(events, type, &TableEvent::type);
    return found == events.end() ? events.back() : *found;
}

const Tables& tables()
{
    static const Tables all = read();
    return all;
}

} // namespace document
