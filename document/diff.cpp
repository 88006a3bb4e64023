#include "document/diff.h"

#include "document/hosts.h"
#include "document/match.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace document
{

std::string_view wordOf(ChangeType type)
{
    constexpr std::array<std::string_view, 5> words = {"added", "removed", "moved", "replaced", "changed"};
    return words.at(static_cast<size_t>(type));
}

bool Change::sameAs(const Change& other) const
{
    return type == other.type && kind == other.kind && name == other.name && id == other.id &&
           from == other.from && to == other.to && values == other.values && parts == other.parts;
}

namespace
{

constexpr std::string_view hostsCode = "U2";
constexpr std::string_view countsCode = "U1";

// --- Values

std::optional<std::string> valueOf(const Property* property)
{
    return property == nullptr ? std::nullopt : std::optional(std::string(property->value));
}

/// The items that differ, where both values are lists of the same named items.
std::optional<std::vector<ValueChange>> itemChanges(const Property& before, const Property& after)
{
    const auto old = parseNamedValues(before.value);
    const auto now = parseNamedValues(after.value);
    if (!old || !now || old->size() != now->size()) return std::nullopt;
    std::vector<ValueChange> changes;
    for (size_t i = 0; i < old->size(); ++i) {
        const auto& [name, value] = (*old)[i];
        const auto& [newName, newValue] = (*now)[i];
        if (name != newName) return std::nullopt;
        if (value == newValue) continue;
        changes.push_back({.code = std::string(after.code()),
                           .label = std::string(after.label()),
                           .item = name,
                           .before = value,
                           .after = newValue});
    }
    return changes;
}

void addChanges(std::vector<ValueChange>& changes, const Property* before, const Property* after)
{
    const Property& known = after == nullptr ? *before : *after;
    if (before != nullptr && after != nullptr && holdsItems(known.code())) {
        if (const auto items = itemChanges(*before, *after)) {
            changes.insert(changes.end(), items->begin(), items->end());
            return;
        }
    }
    changes.push_back({.code = std::string(known.code()),
                       .label = std::string(known.label()),
                       .item = {},
                       .before = valueOf(before),
                       .after = valueOf(after)});
}

/// The property of the same code, and of the same turn where a part has several of a code.
const Property* counterpart(const Property& property, const Part& mine, const Part& other)
{
    const auto sameCode = [&](const Property& one) { return one.code() == property.code(); };
    auto turn = std::count_if(mine.properties.data(), &property, sameCode);
    for (const Property& candidate : other.properties) {
        if (sameCode(candidate) && turn-- == 0) return &candidate;
    }
    return nullptr;
}

// --- Hosts

/// How many ports of each description one list has more than another, in the list's order.
std::vector<Host> surplus(const std::vector<Host>& list, const std::vector<Host>& other)
{
    std::unordered_map<std::string_view, int64_t> ports;
    for (const Host& host : other)
        ports[host.description] += host.ports;
    std::vector<Host> more;
    for (const Host& host : list) {
        const auto found = ports.find(host.description);
        const int64_t there = found == ports.end() ? 0 : found->second;
        if (host.ports > there) more.push_back({host.description, host.ports - there});
    }
    return more;
}

std::optional<std::string> portsOf(const std::vector<Host>& hosts, std::string_view description)
{
    const auto found = std::ranges::find(hosts, description, &Host::description);
    return found == hosts.end() ? std::nullopt : std::optional(std::to_string(found->ports));
}

class Hosts
{
public:
    Hosts(std::vector<Host> inBefore, std::vector<Host> inAfter, const Part& ofPartition)
        : before(std::move(inBefore)), after(std::move(inAfter)), partition(ofPartition)
    {
    }

    std::vector<Change> changes()
    {
        std::vector<Host> gone = surplus(before, after);
        for (const Host& host : surplus(after, before)) {
            // As many ports less of one description as there are more of another: they were renamed.
            const auto old = std::ranges::find(gone, host.ports, &Host::ports);
            if (old != gone.end()) {
                rename(*old, host);
                gone.erase(old);
            } else {
                recount(host);
            }
        }
        for (const Host& host : gone)
            recount(host);
        return std::move(found);
    }

private:
    void add(ChangeType type, std::string_view description, const ValueChange& change)
    {
        found.push_back({.type = type,
                         .kind = "host",
                         .what = "host",
                         .name = std::string(description),
                         .id = std::string(partition.id),
                         .where = std::string(partition.name),
                         .from = {},
                         .to = {},
                         .values = {change}});
    }

    void rename(const Host& old, const Host& host)
    {
        add(ChangeType::changed, old.description,
            {.code = std::string(hostsCode),
             .label = "Host Inventory",
             .item = {},
             .before = std::string(old.description) + '=' + std::to_string(old.ports),
             .after = std::string(host.description) + '=' + std::to_string(host.ports)});
    }

    void recount(const Host& host)
    {
        const auto old = portsOf(before, host.description);
        const auto now = portsOf(after, host.description);
        add(!old   ? ChangeType::added
            : !now ? ChangeType::removed
                   : ChangeType::changed,
            host.description,
            {.code = std::string(hostsCode),
             .label = "Host Inventory",
             .item = "ports",
             .before = old,
             .after = now});
    }

    std::vector<Host> before;
    std::vector<Host> after;
    const Part& partition;
    std::vector<Change> found;
};

// --- Parts

class Diff
{
public:
    Diff(const Document& before, const Document& after) : olds(before.system()), news(after.system())
    {
        match(olds, news);
    }

    std::vector<Change> changes()
    {
        walk(0);
        return std::move(found);
    }

private:
    void walk(size_t index)
    {
        const Node& now = news[index];
        if (now.match == Node::none) {
            addWhole(ChangeType::added, news, index);
            return walkMatched(now);
        }
        const Node& old = olds[now.match];
        compare(old, now);
        for (const size_t child : now.children)
            walk(child);
        for (const size_t child : old.children) {
            if (olds[child].match == Node::none) addWhole(ChangeType::removed, olds, child);
        }
    }

    /// What came into an added part from elsewhere; the rest is told with the part.
    void walkMatched(const Node& node)
    {
        for (const size_t child : node.children) {
            if (news[child].match == Node::none)
                walkMatched(news[child]);
            else
                walk(child);
        }
    }

    static size_t unmatchedInside(const Nodes& nodes, size_t index)
    {
        size_t count = 0;
        for (const size_t child : nodes[index].children) {
            const bool part = nodes[child].part->kind != Kind::enclosurePartition;
            count += nodes[child].match == Node::none && part ? 1 : 0;
            count += unmatchedInside(nodes, child);
        }
        return count;
    }

    static Change changeOf(ChangeType type, const Part& part)
    {
        const KindRow& row = rowOf(part.kind);
        return {.type = type,
                .kind = std::string(row.word),
                .what = std::string(row.singular),
                .name = std::string(part.name),
                .id = std::string(part.id),
                .where = {},
                .from = {},
                .to = {},
                .values = {}};
    }

    void addWhole(ChangeType type, const Nodes& nodes, size_t index)
    {
        Change change = changeOf(type, *nodes[index].part);
        change.parts = unmatchedInside(nodes, index);
        add(std::move(change));
    }

    void add(Change change)
    {
        const std::string key = change.kind + '\0' + change.id + '\0' + change.name;
        for (const size_t index : byPart[key]) {
            if (!found[index].sameAs(change)) continue;
            ++found[index].listed;
            return;
        }
        byPart[key].push_back(found.size());
        found.push_back(std::move(change));
    }

    [[nodiscard]] bool moved(const Node& old, const Node& now) const
    {
        if (now.parent == Node::none) return false;
        if (news[now.parent].match != old.parent || old.serial.empty()) return !old.serial.empty();
        if (old.serial != now.serial) return false;
        const bool enclosure = now.part->kind == Kind::storageEnclosure;
        return old.place != now.place || (enclosure && old.part->value("R1") != now.part->value("R1"));
    }

    static std::string_view placeOf(const Part& part, const Part& other)
    {
        return part.id != other.id ? part.id : part.value("R1");
    }

    void compare(const Node& old, const Node& now)
    {
        Change change = changeOf(ChangeType::changed, *now.part);
        std::vector<Change> hosts;
        if (!std::ranges::equal(old.part->properties, now.part->properties) ||
            old.part->name != now.part->name)
            change.values = valueChanges(old, now, hosts);
        if (moved(old, now)) {
            change.type = ChangeType::moved;
            change.from = placeOf(*old.part, *now.part);
            change.to = placeOf(*now.part, *old.part);
            std::erase_if(change.values,
                          [](const ValueChange& value) { return value.code == "R1" || value.code == "R2"; });
        } else if (!old.serial.empty() && !now.serial.empty() && old.serial != now.serial) {
            change.type = ChangeType::replaced;
        }
        if (change.type != ChangeType::changed || !change.values.empty()) add(std::move(change));
        for (Change& host : hosts)
            add(std::move(host));
    }

    std::vector<ValueChange> valueChanges(const Node& old, const Node& now, std::vector<Change>& hosts)
    {
        std::vector<ValueChange> values;
        if (old.part->name != now.part->name) {
            values.push_back({.code = {},
                              .label = "name",
                              .item = {},
                              .before = std::string(old.part->name),
                              .after = std::string(now.part->name)});
        }
        for (const Property& property : now.part->properties) {
            const Property* const before = counterpart(property, *now.part, *old.part);
            if (before != nullptr && before->value == property.value) continue;
            const bool told =
                repeats(property, *now.part) && (before == nullptr || repeats(*before, *old.part));
            if (told || takeHosts(before, property, *now.part, hosts)) continue;
            addChanges(values, before, &property);
        }
        for (const Property& property : old.part->properties) {
            const bool gone = counterpart(property, *old.part, *now.part) == nullptr;
            if (gone && !repeats(property, *old.part)) addChanges(values, &property, nullptr);
        }
        moveCounts(values, hosts);
        return values;
    }

    static bool takeHosts(const Property* before, const Property& after, const Part& partition,
                          std::vector<Change>& hosts)
    {
        if (before == nullptr || after.code() != hostsCode) return false;
        auto old = parseHosts(before->value);
        auto now = parseHosts(after.value);
        if (!old || !now) return false;
        hosts = Hosts(std::move(*old), std::move(*now), partition).changes();
        return true;
    }

    /// With a host come its volume group and its ports, which the counts tell: that is one change.
    static void moveCounts(std::vector<ValueChange>& values, std::vector<Change>& hosts)
    {
        if (hosts.empty()) return;
        const auto follows = [](const ValueChange& value) {
            return value.code == countsCode && (value.item == "o0" || value.item == "o1");
        };
        std::ranges::copy_if(values, std::back_inserter(hosts.front().values), follows);
        std::erase_if(values, follows);
    }

    Nodes olds;
    Nodes news;
    std::vector<Change> found;
    std::unordered_map<std::string, std::vector<size_t>> byPart; ///< indexes of what was found
};

} // namespace

std::vector<Change> diff(const Document& before, const Document& after)
{
    return Diff(before, after).changes();
}

} // namespace document
