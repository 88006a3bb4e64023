#include "document/report.h"

#include "document/json.h"
#include "document/text.h"

#include <algorithm>

namespace document
{

namespace
{

constexpr size_t widestValue = 100;

std::string valueText(const std::optional<std::string>& value)
{
    if (!value) return "(none)";
    return value->empty() ? "(empty)" : cutTo(shown(*value), widestValue);
}

/// \param label whether to tell it: the items of one property follow each other
std::string valueText(const ValueChange& value, bool label)
{
    std::string text = label ? shown(value.label) + ' ' : "";
    if (!value.item.empty()) text += shown(value.item) + ' ';
    return text + valueText(value.before) + " -> " + valueText(value.after);
}

std::string plural(size_t count, std::string_view one)
{
    return std::to_string(count) + ' ' + std::string(one) + (count == 1 ? "" : "s");
}

/// What a person calls the part: by its identifier, or by the name that people gave it.
std::string subject(const Change& change)
{
    if (!change.where.empty()) return "host " + shown(change.name) + " of " + shown(change.where);
    const bool named = change.kind == rowOf(Kind::partition).word || change.kind == rowOf(Kind::system).word;
    if (named) return change.what + ' ' + shown(change.name);
    const std::string what = change.kind == rowOf(Kind::other).word ? shown(change.name) : change.what;
    return change.id.empty() ? what + " without an identifier" : what + ' ' + shown(change.id);
}

std::string line(const Change& change)
{
    constexpr size_t wordWidth = 10;
    std::string text(wordOf(change.type));
    text.append(wordWidth - text.size(), ' ').append(subject(change));
    if (change.type == ChangeType::moved) text += ": " + shown(change.from) + " -> " + shown(change.to);
    const char* separator = change.type == ChangeType::moved ? ", " : ": ";
    std::string_view last;
    for (const ValueChange& value : change.values) {
        text.append(separator).append(valueText(value, value.item.empty() || value.label != last));
        separator = ", ";
        last = value.label;
    }
    if (change.parts > 0) text.append(separator).append("with ").append(plural(change.parts, "part"));
    if (change.listed > 1) text += " (listed " + std::to_string(change.listed) + " times)";
    return text + '\n';
}

std::string total(const std::vector<Change>& changes)
{
    std::string text;
    for (const ChangeType type : {ChangeType::added, ChangeType::removed, ChangeType::moved,
                                  ChangeType::replaced, ChangeType::changed}) {
        const auto count = std::ranges::count(changes, type, &Change::type);
        if (count == 0) continue;
        text += text.empty() ? ": " : ", ";
        text += std::to_string(count) + ' ' + std::string(wordOf(type));
    }
    return plural(changes.size(), "change") + text + '\n';
}

std::string jsonOf(const ValueChange& value)
{
    std::string text = R"({ "code": )" + quote(value.code) + R"(, "label": )" + quote(value.label);
    if (!value.item.empty()) text += R"(, "item": )" + quote(value.item);
    text += R"(, "old": )" + (value.before ? quote(*value.before) : "null");
    return text + R"(, "new": )" + (value.after ? quote(*value.after) : "null") + " }";
}

std::string jsonOf(const Change& change)
{
    std::string text = R"({ "change": )" + quote(wordOf(change.type)) + R"(, "kind": )" + quote(change.kind) +
                       R"(, "name": )" + quote(change.name) + R"(, "id": )" + quote(change.id);
    if (!change.where.empty()) text += R"(, "partition": )" + quote(change.where);
    if (change.type == ChangeType::moved)
        text += R"(, "from": )" + quote(change.from) + R"(, "to": )" + quote(change.to);
    text += R"(, "parts": )" + std::to_string(change.parts);
    text += R"(, "listed": )" + std::to_string(change.listed) + R"(, "values": [)";
    for (const char* separator = ""; const ValueChange& value : change.values) {
        text.append(separator).append("\n        ").append(jsonOf(value));
        separator = ",";
    }
    return text + (change.values.empty() ? "] }" : "\n      ] }");
}

} // namespace

std::string lines(const std::vector<Change>& changes)
{
    if (changes.empty()) return "";
    std::string text;
    for (const Change& change : changes)
        text += line(change);
    return text + total(changes);
}

std::string json(const std::vector<Change>& changes, const std::string& oldFile, const std::string& newFile)
{
    std::string text =
        "{\n  \"old\": " + quote(oldFile) + ",\n  \"new\": " + quote(newFile) + ",\n  \"changes\": [";
    for (const char* separator = ""; const Change& change : changes) {
        text.append(separator).append("\n    ").append(jsonOf(change));
        separator = ",";
    }
    return text + (changes.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

} // namespace document
