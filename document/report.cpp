#include "document/report.h"

#include "platform/text.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <unordered_map>

namespace document
{

namespace
{

using platform::shown;

constexpr size_t widestValue = 100;

// --- Where a part is

/// What people find a part by: rack, enclosure and slot, and its serial number, where its kind has them.
struct Location {
    std::vector<std::pair<std::string_view, int64_t>> numbers; ///< "rack" 1
    std::string serial;
};

bool isPlace(std::string_view column)
{
    return column == "rack" || column == "enclosure" || column == "slot";
}

Location locationOf(const Part& part, Values& values)
{
    Location location;
    for (const Column& column : rowOf(part.kind).columns) {
        if (!isPlace(column.name)) continue;
        const Value value = values.of({.part = &part, .kind = part.kind}, column);
        if (const int64_t* const number = std::get_if<int64_t>(&value))
            location.numbers.emplace_back(column.name, *number);
    }
    location.serial = part.value(rowOf(part.kind).serial);
    return location;
}

std::string placeText(const Location& location)
{
    std::string text;
    for (const auto& [name, number] : location.numbers) {
        if (!text.empty()) text += ", ";
        text.append(name).append(1, ' ').append(std::to_string(number));
    }
    return text;
}

std::string inBrackets(const std::string& text)
{
    return text.empty() ? "" : " (" + text + ')';
}

/// Where the identifier or the position of a part that moved differs, it is its place.
std::string_view placeOf(const Part& part, const Part& other)
{
    return part.id != other.id ? part.id : part.value(rowOf(part.kind).position);
}

// --- Lines

std::string valueText(const std::optional<std::string_view>& value)
{
    if (!value) return "(none)";
    return value->empty() ? "(empty)" : shown(*value, widestValue);
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
    const Part& part = change.part();
    const KindRow& row = rowOf(change.kind);
    if (change.kind == Kind::host) return "host " + shown(change.host) + " of " + shown(part.name);
    const bool named = change.kind == Kind::partition || change.kind == Kind::system;
    const std::string what = change.kind == Kind::other ? shown(part.name) : std::string(row.singular);
    if (named) return what + ' ' + shown(part.name);
    return part.id.empty() ? what + " without an identifier" : what + ' ' + shown(part.id);
}

/// Rack, enclosure, slot and serial number of a part; a moved one's old and new place follow on their own.
std::string whereabouts(const Change& change, Values& values)
{
    if (change.kind == Kind::host) return "";
    const Location location = locationOf(change.part(), values);
    std::string text = change.type == ChangeType::moved ? "" : placeText(location);
    const bool told = change.type == ChangeType::replaced; // both numbers stand behind it
    if (!location.serial.empty() && !told)
        text += (text.empty() ? "serial " : ", serial ") + shown(location.serial, widestValue);
    return inBrackets(text);
}

std::string moveText(const Change& change, Values& values)
{
    const Part& old = *change.before;
    const Part& now = *change.after;
    return shown(placeOf(old, now)) + inBrackets(placeText(locationOf(old, values))) + " -> " +
           shown(placeOf(now, old)) + inBrackets(placeText(locationOf(now, values)));
}

/// What happened to the part, without which part it is.
std::string happened(const Change& change, Values& values)
{
    std::string text = change.type == ChangeType::moved ? ": " + moveText(change, values) : "";
    const char* separator = text.empty() ? ": " : ", ";
    std::string_view last;
    for (const ValueChange& value : change.values) {
        text.append(separator).append(valueText(value, value.item.empty() || value.label != last));
        separator = ", ";
        last = value.label;
    }
    if (change.parts > 0) text.append(separator).append("with ").append(plural(change.parts, "part"));
    return text;
}

std::string wordText(ChangeType type, bool colored)
{
    constexpr size_t wordWidth = 10;
    constexpr std::array<std::string_view, changeTypes.size()> colors = {"32", "31", "36", "35", "33"};
    const std::string word(wordOf(type));
    const std::string gap(wordWidth - word.size(), ' ');
    if (!colored) return word + gap;
    return "\x1b[" + std::string(colors.at(static_cast<size_t>(type))) + 'm' + word + "\x1b[0m" + gap;
}

std::string lineOf(const Change& change, Values& values)
{
    std::string text = subject(change) + whereabouts(change, values) + happened(change, values);
    if (change.listed > 1) text += " (listed " + std::to_string(change.listed) + " times)";
    return text + '\n';
}

std::string total(const Changes& changes)
{
    std::string text;
    for (const ChangeType type : changeTypes) {
        const auto count = std::ranges::count(changes.found, type, &Change::type);
        if (count == 0) continue;
        text += text.empty() ? ": " : ", ";
        text += std::to_string(count) + ' ' + std::string(wordOf(type));
    }
    return plural(changes.found.size(), "change") + text + '\n';
}

// --- Groups

/// Changes of which all that is told is the same but for the part.
struct Group {
    const Change* first = nullptr;
    size_t count = 0;
    std::map<std::string_view, std::set<int64_t>> places = {}; ///< the numbers of racks and enclosures
};

std::vector<Group> groupsOf(const Changes& changes, Values& values)
{
    std::vector<Group> groups;
    std::unordered_map<std::string, size_t> indexes;
    for (const Change& change : changes.found) {
        std::string key(wordOf(change.type));
        key.append(rowOf(change.kind).singular).append(happened(change, values));
        const auto [entry, isNew] = indexes.try_emplace(std::move(key), groups.size());
        if (isNew) groups.push_back({.first = &change});
        Group& group = groups[entry->second];
        ++group.count;
        if (change.kind == Kind::host) continue;
        for (const auto& [name, number] : locationOf(change.part(), values).numbers)
            group.places[name].insert(number);
    }
    return groups;
}

std::string join(const std::set<int64_t>& numbers)
{
    std::string text;
    for (const int64_t number : numbers)
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text;
}

/// The racks of all parts of the group and, where they are in one rack, their enclosures.
std::string placesOf(const Group& group)
{
    constexpr size_t most = 12;
    std::string text;
    for (const std::string_view name : {"rack", "enclosure"}) {
        const auto found = group.places.find(name);
        if (found == group.places.end()) continue;
        const std::set<int64_t>& numbers = found->second;
        if (!text.empty()) text += ", ";
        if (numbers.size() > most)
            text += std::to_string(numbers.size()) + ' ' + std::string(name) + 's';
        else
            text += std::string(name) + (numbers.size() == 1 ? " " : "s ") + join(numbers);
        if (numbers.size() > 1) break;
    }
    return inBrackets(text);
}

std::string lineOf(const Group& group, Values& values)
{
    if (group.count == 1) return lineOf(*group.first, values);
    const KindRow& row = rowOf(group.first->kind);
    return std::to_string(group.count) + ' ' + std::string(row.plural) + placesOf(group) +
           happened(*group.first, values) + '\n';
}

// --- Counts

using Counts = std::map<Kind, std::array<size_t, changeTypes.size()>>;

Counts countsOf(const Changes& changes)
{
    Counts counts;
    for (const Change& change : changes.found)
        ++counts[change.kind].at(static_cast<size_t>(change.type));
    return counts;
}

// --- JSON

void appendValue(std::string& json, const std::optional<std::string_view>& value)
{
    if (value)
        appendQuoted(json, *value);
    else
        json += "null";
}

void appendMember(std::string& json, std::string_view name, std::string_view text)
{
    json.append(", \"").append(name).append("\": ");
    appendQuoted(json, text);
}

void appendValue(std::string& json, const ValueChange& value)
{
    json += R"({ "code": )";
    appendQuoted(json, value.code);
    appendMember(json, "label", value.label);
    if (!value.item.empty()) appendMember(json, "item", value.item);
    if (!value.column.empty()) appendMember(json, "column", value.column);
    json += R"(, "old": )";
    appendValue(json, value.before);
    json += R"(, "new": )";
    appendValue(json, value.after);
    json += " }";
}

/// \param before of what the names begin with: "old_" where it is where the part was
void appendLocation(std::string& json, const Location& location, std::string_view before = "")
{
    for (const auto& [name, number] : location.numbers)
        json.append(", \"").append(before).append(name).append("\": ").append(std::to_string(number));
    if (!location.serial.empty() && before.empty()) appendMember(json, "serial", location.serial);
}

} // namespace

void appendJson(std::string& json, const Change& change, Values& values)
{
    const Part& part = change.part();
    const bool host = change.kind == Kind::host;
    json += R"({ "change": )" + quote(wordOf(change.type));
    appendMember(json, "kind", rowOf(change.kind).word);
    appendMember(json, "name", host ? change.host : part.name);
    appendMember(json, "id", part.id);
    if (host) appendMember(json, "partition", part.name);
    if (!host) appendLocation(json, locationOf(part, values));
    if (change.type == ChangeType::moved) {
        appendMember(json, "from", placeOf(*change.before, part));
        appendMember(json, "to", placeOf(part, *change.before));
        appendLocation(json, locationOf(*change.before, values), "old_");
    }
    json += R"(, "parts": )" + std::to_string(change.parts);
    json += R"(, "listed": )" + std::to_string(change.listed) + R"(, "values": [)";
    for (const char* separator = ""; const ValueChange& value : change.values) {
        json.append(separator).append("\n        ");
        appendValue(json, value);
        separator = ",";
    }
    json += change.values.empty() ? "] }" : "\n      ] }";
}

namespace
{

std::string jsonHead(const Changes& changes)
{
    std::string json =
        "{\n  \"old\": " + quote(changes.before->name) + ",\n  \"new\": " + quote(changes.after->name);
    const bool complete = changes.before->missing.nothing() && changes.after->missing.nothing();
    json.append(",\n  \"complete\": ").append(complete ? "true" : "false").append(",\n  \"missing\": [");
    const char* separator = "";
    for (const Document* document : {changes.before, changes.after}) {
        for (const std::string& what : wordsOf(document->missing)) {
            json.append(separator).append("\n    ");
            appendQuoted(json, document->name + ": " + what);
            separator = ",";
        }
    }
    return json + (complete ? "]" : "\n  ]");
}

} // namespace

void writeLines(const Changes& changes, const LineOptions& options, const Write& write)
{
    if (changes.found.empty()) return;
    Values values(*changes.after);
    if (options.grouped) {
        for (const Group& group : groupsOf(changes, values))
            write(wordText(group.first->type, options.colored) + lineOf(group, values));
    } else {
        for (const Change& change : changes.found)
            write(wordText(change.type, options.colored) + lineOf(change, values));
    }
    write(total(changes));
}

void writeSummary(const Changes& changes, const Write& write)
{
    if (changes.found.empty()) return;
    const Counts counts = countsOf(changes);
    size_t width = 0;
    for (const auto& [kind, ofKind] : counts)
        width = std::max(width, rowOf(kind).plural.size());
    for (const auto& [kind, ofKind] : counts) {
        std::string line(rowOf(kind).plural);
        line.append(width - line.size() + 2, ' ');
        const char* separator = "";
        for (const ChangeType type : changeTypes) {
            const size_t count = ofKind.at(static_cast<size_t>(type));
            if (count == 0) continue;
            line.append(separator).append(std::to_string(count)).append(1, ' ').append(wordOf(type));
            separator = ", ";
        }
        write(line + '\n');
    }
    write(total(changes));
}

void writeJson(const Changes& changes, const Write& write)
{
    Values values(*changes.after);
    write(jsonHead(changes) + ",\n  \"changes\": [");
    for (const char* separator = ""; const Change& change : changes.found) {
        std::string json = separator;
        json += "\n    ";
        appendJson(json, change, values);
        write(json);
        separator = ",";
    }
    write(changes.found.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

void writeJsonSummary(const Changes& changes, const Write& write)
{
    std::string json = jsonHead(changes) + ",\n  \"summary\": {";
    Counts told; // some kinds have one word
    for (const auto& [kind, counts] : countsOf(changes)) {
        auto& ofWord = told[kindsOf(rowOf(kind).word).back()];
        std::ranges::transform(counts, ofWord, ofWord.begin(), std::plus<>());
    }
    for (const char* separator = ""; const auto& [kind, counts] : told) {
        json.append(separator).append("\n    ").append(quote(rowOf(kind).word)).append(": { ");
        separator = "";
        for (const ChangeType type : changeTypes) {
            const size_t count = counts.at(static_cast<size_t>(type));
            if (count == 0) continue;
            json.append(separator).append(quote(wordOf(type))).append(": ").append(std::to_string(count));
            separator = ", ";
        }
        json += " }";
        separator = ",";
    }
    write(json + (changes.found.empty() ? "}\n}\n" : "\n  }\n}\n"));
}

} // namespace document
