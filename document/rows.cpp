#include "document/rows.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <functional>
#include <memory_resource>
#include <optional>
#include <unordered_set>

namespace document
{

namespace
{

// --- Rows

/// Of a part that two partitions see each tells its own image.
constexpr std::string_view imageCode = "S4";

bool sameValues(const Part& one, const Part& other)
{
    const auto differs = [](const Property& property) { return property.code() != imageCode; };
    auto mine = one.properties.begin();
    auto theirs = other.properties.begin();
    for (;; ++mine, ++theirs) {
        mine = std::find_if(mine, one.properties.end(), differs);
        theirs = std::find_if(theirs, other.properties.end(), differs);
        if (mine == one.properties.end() || theirs == other.properties.end())
            return mine == one.properties.end() && theirs == other.properties.end();
        if (mine->code() != theirs->code() || mine->value != theirs->value) return false;
    }
}

struct SamePart {
    bool operator()(const Part* one, const Part* other) const
    {
        return one->kind == other->kind && one->id == other->id && one->name == other->name &&
               sameValues(*one, *other);
    }
};

struct HashOfPart {
    size_t operator()(const Part* part) const
    {
        constexpr size_t factor = 1'000'003;
        const std::hash<std::string_view> hashOf;
        size_t hash = hashOf(part->id);
        for (const Property& property : part->properties) {
            // What repeats the identifier tells nothing more.
            if (property.code() == imageCode || property.value.data() == part->id.data()) continue;
            hash = hash * factor ^ hashOf(property.value);
        }
        return hash;
    }
};

/// Whether the element stands for a part that is not there.
bool standsForNone(const Part& part)
{
    return part.id.empty() && part.value(rowOf(part.kind).serial).empty() && part.value("PN").empty();
}

class Gatherer
{
public:
    explicit Gatherer(std::span<const Kind> ofKinds)
    {
        for (const Kind kind : ofKinds)
            wanted.at(static_cast<size_t>(kind)) = true;
    }

    void gather(const Part& part)
    {
        if (wants(part.kind) && !standsForNone(part)) add(part);
        if (wants(Kind::host) && part.kind == Kind::partition) {
            for (Row& host : hostsOf(part))
                rows.push_back(std::move(host));
        }
        for (const Part& child : part.children)
            gather(child);
    }

    std::vector<Row> rows;

private:
    [[nodiscard]] bool wants(Kind kind) const { return wanted.at(static_cast<size_t>(kind)); }

    void add(const Part& part)
    {
        const size_t known = part.id.empty() ? rows.size() : rowOf(part);
        if (known < rows.size()) return rows[known].also.push_back(&part);
        rows.push_back({.part = &part, .kind = part.kind});
    }

    /// The row of the same part; a further one where there is none. Most identifiers stand once, and of those
    /// the values need not be looked at.
    size_t rowOf(const Part& part)
    {
        const auto [first, isFirst] = firstRows.try_emplace(part.id, rows.size());
        if (isFirst) return rows.size();
        seen.try_emplace(rows[first->second].part, first->second);
        return seen.try_emplace(&part, rows.size()).first->second;
    }

    std::array<bool, kindCount> wanted{};
    std::pmr::monotonic_buffer_resource memory;
    std::pmr::unordered_map<std::string_view, size_t> firstRows{&memory}; ///< by identifier
    std::pmr::unordered_map<const Part*, size_t, HashOfPart, SamePart> seen{&memory};
};

// --- Values

std::optional<int64_t> numberOf(std::string_view text)
{
    int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, number);
    return fault == std::errc{} && stop == end && !text.empty() ? std::optional(number) : std::nullopt;
}

std::string_view behindLast(std::string_view text, std::string_view mark)
{
    const size_t at = text.rfind(mark);
    return at == std::string_view::npos ? std::string_view{} : text.substr(at + mark.size());
}

/// The first array site's number stands twice, "33" or "1212"; "0" says that there is none.
std::optional<std::vector<int64_t>> sitesOf(std::string_view text)
{
    std::vector<int64_t> sites;
    const std::string_view first = text.substr(0, text.find(','));
    const std::string_view half = first.substr(0, first.size() / 2);
    if (text == "0") return sites;
    if (first.size() % 2 != 0 || !first.ends_with(half)) return std::nullopt;
    for (std::string_view site = half;; site = text.substr(0, text.find(','))) {
        const auto number = numberOf(site);
        if (!number) return std::nullopt;
        sites.push_back(*number);
        if (text.find(',') == std::string_view::npos) return sites;
        text.remove_prefix(text.find(',') + 1);
    }
}

const Part* within(const Part& part)
{
    const Part* outer = part.around;
    while (outer != nullptr && outer->kind == Kind::enclosurePartition)
        outer = outer->around;
    return outer;
}

Value textValue(std::string_view text)
{
    return text.empty() ? Value{} : Value{text};
}

template <typename List>
Value listValue(List list)
{
    return list.empty() ? Value{} : Value{std::move(list)};
}

} // namespace

std::vector<Row> hostsOf(const Part& partition)
{
    std::vector<Row> rows;
    const auto hosts = parseHosts(partition.value("U2"));
    for (const Host& host : hosts.value_or(std::vector<Host>{}))
        rows.push_back({.part = &partition, .kind = Kind::host, .host = host});
    return rows;
}

std::vector<Row> rowsOf(const Document& document, std::span<const Kind> ofKinds)
{
    Gatherer gatherer(ofKinds);
    gatherer.gather(document.system());
    return std::move(gatherer.rows);
}

std::string collectedAt(std::string_view timestamp)
{
    const auto seconds = numberOf(timestamp.substr(0, timestamp.find('.')));
    const auto microseconds = numberOf(behindLast(timestamp, "."));
    std::tm time{};
    const auto whole = static_cast<std::time_t>(seconds.value_or(0));
    if (!seconds || !microseconds || *microseconds > 999'999 || gmtime_r(&whole, &time) == nullptr) return {};
    std::array<char, 64> text{};
    const size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &time);
    const std::string digits = std::to_string(*microseconds);
    return std::string(text.data(), length) + '.' + std::string(6 - digits.size(), '0') + digits + 'Z';
}

Values::Values(const Document& ofDocument)
    : document(ofDocument), collected(collectedAt(ofDocument.timestamp))
{
}

Value Values::of(const Row& row, const Column& column)
{
    Value text = textOf(row, column.source);
    if (column.type != Type::number || !std::holds_alternative<std::string_view>(text)) return text;
    std::string_view digits = std::get<std::string_view>(text);
    if (!digits.ends_with(column.source.unit)) return {};
    digits.remove_suffix(column.source.unit.size());
    const auto number = numberOf(digits);
    return number ? Value{*number} : Value{};
}

Value Values::textOf(const Row& row, const Source& source)
{
    const Part& part = *row.part;
    switch (source.from) {
    case From::system:
        return textValue(document.system().id);
    case From::time:
        return textValue(collected);
    case From::kind:
        return rowOf(row.kind).word;
    case From::id:
        return textValue(row.kind == Kind::host ? row.host.description : part.id);
    case From::name:
    case From::partition:
        return textValue(part.name);
    case From::within: {
        const Part* const outer = row.kind == Kind::host ? &part : within(part);
        return outer == nullptr ? Value{} : textValue(outer->id);
    }
    case From::property:
        return textValue(part.value(source.code));
    case From::around:
        return textValue(part.valueAround(source.code));
    case From::end:
        return textValue(behindLast(part.valueAround(source.code), source.mark));
    case From::idEnd:
        return textValue(behindLast(part.id, source.mark));
    case From::item:
        return textValue(itemOf(row, source));
    case From::sites:
        return listValue(sitesOf(behindLast(part.id, source.mark)).value_or(std::vector<int64_t>{}));
    case From::arrayOfSites:
        return numberOfArray(part, source);
    case From::naming:
        return listValue(numbersNaming(part, source));
    case From::partitions:
        return listValue(partitionsOf(row));
    case From::description:
        return textValue(row.host.description);
    case From::ports:
        return row.host.ports;
    }
    return {};
}

Values::Items& Values::itemsFor(Kind kind, std::string_view code)
{
    Items& known = allItems[{kind, code}];
    if (!known.keys.empty()) return known;
    known.kind = kind;
    known.code = code;
    for (const Column& column : rowOf(kind).columns) {
        if (column.source.from == From::item && column.source.code == code)
            known.keys.push_back(column.source.mark);
    }
    return known;
}

std::string_view Values::itemOf(const Row& row, const Source& source)
{
    if (items == nullptr || items->kind != row.kind || items->code != source.code)
        items = &itemsFor(row.kind, source.code);
    if (items->part != row.part) items->values = itemsOf(row.part->value(source.code), items->keys);
    items->part = row.part;
    return items
        ->values[static_cast<size_t>(std::ranges::find(items->keys, source.mark) - items->keys.begin())];
}

/// Of several parts of one number the first has them, however many there are.
const std::vector<int64_t>& Values::numbersNaming(const Part& part, const Source& source)
{
    static const std::vector<int64_t> none;
    if (part.around == nullptr) return none;
    const auto [known, isNew] = named.try_emplace({part.around, part.kind});
    const Column& number = *std::ranges::find(rowOf(source.kind).columns, "number", &Column::name);
    for (const Part& one : isNew ? std::span<const Part>(part.around->children) : std::span<const Part>{}) {
        if (one.kind == part.kind) {
            const auto own = numberOf(behindLast(one.id, source.mark));
            if (own && known->second[*own].part == nullptr) known->second[*own].part = &one;
        } else if (one.kind == source.kind) {
            const auto owner = numberOf(behindLast(one.value(source.code), source.mark));
            const Value value = of({.part = &one, .kind = one.kind}, number);
            const auto* const found = std::get_if<int64_t>(&value);
            if (owner && found != nullptr) known->second[*owner].by.push_back(*found);
        }
    }
    const auto own = numberOf(behindLast(part.id, source.mark));
    const auto found = own ? known->second.find(*own) : known->second.end();
    return found == known->second.end() || found->second.part != &part ? none : found->second.by;
}

Value Values::numberOfArray(const Part& array, const Source& source)
{
    const auto sites = sitesOf(behindLast(array.id, source.mark));
    if (!sites || sites->empty() || array.around == nullptr) return {};
    const auto [known, isNew] = arrays.try_emplace(array.around);
    for (const Part& part : isNew ? std::span<const Part>(array.around->children) : std::span<const Part>{}) {
        if (part.kind != Kind::arraySite) continue;
        const auto site = numberOf(behindLast(part.id, "/S"));
        const auto number = numberOf(behindLast(part.value(source.code), source.mark));
        if (site && number) known->second.try_emplace(*site, *number);
    }
    const auto found = known->second.find(sites->front());
    return found == known->second.end() ? Value{} : Value{found->second};
}

namespace
{

/// The identifier of the partition that a share of an enclosure belongs to: the share's own begins with the
/// enclosure's, the partition's with the system's.
std::string partitionOf(const Part& share, const Part& system)
{
    const std::string start = std::string(share.around->id) + '-';
    if (!share.id.starts_with(start)) return std::string(share.id);
    return std::string(system.id) + '-' + std::string(share.id.substr(start.size()));
}

void addPartitions(const Part& part, const Part& system, std::vector<std::string>& partitions)
{
    const auto add = [&](const Part& share) {
        std::string partition = partitionOf(share, system);
        if (std::ranges::find(partitions, partition) == partitions.end())
            partitions.push_back(std::move(partition));
    };
    if (part.around != nullptr && part.around->kind == Kind::enclosurePartition) add(*part.around);
    for (const Part& child : part.children) {
        if (child.kind == Kind::enclosurePartition) add(child);
    }
}

} // namespace

std::vector<std::string> Values::partitionsOf(const Row& row) const
{
    std::vector<std::string> partitions;
    addPartitions(*row.part, document.system(), partitions);
    for (const Part* again : row.also)
        addPartitions(*again, document.system(), partitions);
    return partitions;
}

} // namespace document
