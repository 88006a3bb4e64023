#include "document/diff.h"

#include "document/gaps.h"
#include "document/hostDiff.h"
#include "document/hosts.h"
#include "document/match.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace document
{

std::string_view wordOf(ChangeType type)
{
    constexpr std::array<std::string_view, changeTypes.size()> words = {"added", "removed", "moved",
                                                                        "replaced", "changed"};
    return words.at(static_cast<size_t>(type));
}

namespace
{

constexpr std::string_view hostsCode = "U2";

// --- Values

/// The keys under which a kind's property holds many values, in their order.
const std::vector<std::string_view>& keysOf(Kind kind, std::string_view code)
{
    // A document's code goes with the document.
    static std::map<std::pair<Kind, std::string>, std::vector<std::string_view>> known;
    const auto [entry, isNew] = known.try_emplace({kind, std::string(code)});
    if (!isNew) return entry->second;
    for (const Column* column : columnsOf(kind)) {
        if (column->source.from == From::item && column->source.code == code)
            entry->second.push_back(column->source.mark);
    }
    return entry->second;
}

/// The column that tells a property, or one item of it.
std::string_view columnOf(Kind kind, std::string_view code, std::string_view item)
{
    for (const Column* column : columnsOf(kind)) {
        const Source& source = column->source;
        if (source.code != code || code.empty() || tellsOfOthers(*column)) continue;
        if (source.from == From::item ? source.mark == item : item.empty()) return column->name;
    }
    return {};
}

std::optional<std::string_view> valueOf(const Property* property)
{
    return property == nullptr ? std::nullopt : std::optional(property->value);
}

/// Collects what differs in the values of one part.
class ValueChanges
{
public:
    explicit ValueChanges(const Part& ofPart) : part(ofPart) {}

    void add(const Property* before, const Property* after)
    {
        const PropertyName& name = *(after == nullptr ? before : after)->name;
        if (before != nullptr && after != nullptr && addItems(name, before->value, after->value)) return;
        changes.push_back({.code = name.code,
                           .label = name.label,
                           .column = columnOf(part.kind, name.code, {}),
                           .before = valueOf(before),
                           .after = valueOf(after)});
    }

    void addName(std::string_view before, std::string_view after)
    {
        changes.push_back({.code = {}, .label = "name", .before = before, .after = after});
    }

    std::vector<ValueChange> changes;

private:
    /// The items that differ; false where it is not items that do.
    bool addItems(const PropertyName& name, std::string_view before, std::string_view after)
    {
        const auto& keys = keysOf(part.kind, name.code);
        const auto old = itemsOf(before, keys);
        const auto now = itemsOf(after, keys);
        const size_t already = changes.size();
        for (size_t i = 0; i < keys.size(); ++i) {
            const bool there = old[i].data() != nullptr && now[i].data() != nullptr;
            if (!there && old[i].data() != now[i].data()) {
                changes.resize(already);
                return false;
            }
            if (old[i] == now[i]) continue;
            changes.push_back({.code = name.code,
                               .label = name.label,
                               .item = keys[i],
                               .column = columnOf(part.kind, name.code, keys[i]),
                               .before = old[i],
                               .after = now[i]});
        }
        return changes.size() > already;
    }

    const Part& part;
};

/// Pairs the properties of two parts: those of the same code, in their turn where a part has several.
class Counterparts
{
public:
    Counterparts(const Part& before, const Part& after) : olds(before.properties), news(after.properties)
    {
        newOf.resize(olds.size());
        oldOf.resize(news.size());
        if (sameCodes()) {
            for (size_t i = 0; i < olds.size(); ++i)
                pair(i, i);
        } else {
            pairByCode();
        }
    }

    /// By turn among the properties of the new part, and of the old one; none: there is none.
    std::vector<const Property*> oldOf;
    std::vector<const Property*> newOf;

private:
    [[nodiscard]] bool sameCodes() const
    {
        return std::ranges::equal(olds, news, {}, &Property::code, &Property::code);
    }

    void pair(size_t old, size_t now)
    {
        oldOf[now] = &olds[old];
        newOf[old] = &news[now];
    }

    void pairByCode()
    {
        std::unordered_map<std::string_view, std::pair<size_t, std::vector<size_t>>> turns;
        for (size_t i = 0; i < olds.size(); ++i)
            turns[olds[i].code()].second.push_back(i);
        for (size_t i = 0; i < news.size(); ++i) {
            const auto found = turns.find(news[i].code());
            if (found == turns.end()) continue;
            auto& [turn, indexes] = found->second;
            if (turn < indexes.size()) pair(indexes[turn++], i);
        }
    }

    std::span<const Property> olds;
    std::span<const Property> news;
};

// --- Parts

struct SameChange {
    bool operator()(const Change* one, const Change* other) const
    {
        return one->type == other->type && one->kind == other->kind && one->host == other->host &&
               sameId(one->before, other->before) && sameId(one->after, other->after) &&
               one->part().name == other->part().name && one->values == other->values &&
               one->parts == other->parts;
    }

private:
    static bool sameId(const Part* one, const Part* other)
    {
        return one == nullptr || other == nullptr ? one == other : one->id == other->id;
    }
};

struct HashOfChange {
    size_t operator()(const Change* change) const
    {
        constexpr size_t factor = 1'000'003;
        const std::hash<std::string_view> hashOf;
        size_t hash = hashOf(change->part().id) * factor ^ hashOf(change->host);
        for (const ValueChange& value : change->values) {
            hash = hash * factor ^ hashOf(value.before.value_or(""));
            hash = hash * factor ^ hashOf(value.after.value_or(""));
        }
        return hash;
    }
};

/// How many parts without a match are inside each part; a partition's share of an enclosure is none.
std::vector<size_t> unmatchedInside(const Nodes& nodes)
{
    std::vector<size_t> counts(nodes.levelStart(nodes.levelCount()));
    for (size_t index = counts.size(); index-- > 1;) {
        const bool counted = nodes[index].match == Node::none && rowOf(nodes[index].part->kind).listed;
        counts[nodes[index].parent] += counts[index] + (counted ? 1 : 0);
    }
    return counts;
}

class Diff
{
public:
    Diff(const Document& before, const Document& after, const KindSet& wantedKinds)
        : wanted(wantedKinds), olds(before.system()), news(after.system()), oldGaps(before),
          newGaps(after), result{.before = &before, .after = &after}
    {
        match(olds, news);
        goneInside = unmatchedInside(olds);
        newInside = unmatchedInside(news);
    }

    Changes changes()
    {
        walk(0);
        result.found.assign(std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
        return std::move(result);
    }

private:
    void walk(uint32_t index)
    {
        const Node& now = news[index];
        if (now.match == Node::none) {
            const uint32_t around = news[now.parent].match;
            if (around == Node::none || !isHidden(*now.part, oldGaps, *olds[around].part))
                addWhole(ChangeType::added, news, index);
            return walkMatched(now);
        }
        const Node& old = olds[now.match];
        compare(old, now);
        for (uint32_t child = 0; child < now.childCount; ++child)
            walk(now.firstChild + child);
        for (uint32_t child = old.firstChild; child < old.firstChild + old.childCount; ++child) {
            if (olds[child].match == Node::none && !isHidden(*olds[child].part, newGaps, *now.part))
                addWhole(ChangeType::removed, olds, child);
        }
    }

    /// What the other document may lack because it is incomplete is no change.
    bool isHidden(const Part& part, const Gaps& gaps, const Part& around)
    {
        const bool hidden = gaps.mayHide(part, around);
        result.unknown += hidden ? 1 : 0;
        return hidden;
    }

    /// What came into an added part from elsewhere; the rest is told with the part.
    void walkMatched(const Node& node)
    {
        for (uint32_t child = node.firstChild; child < node.firstChild + node.childCount; ++child) {
            if (news[child].match == Node::none)
                walkMatched(news[child]);
            else
                walk(child);
        }
    }

    void addWhole(ChangeType type, const Nodes& nodes, uint32_t index)
    {
        const Node& node = nodes[index];
        const bool added = type == ChangeType::added;
        if (!wanted.test(static_cast<size_t>(node.part->kind))) {
            for (uint32_t child = node.firstChild; child < node.firstChild + node.childCount; ++child) {
                if (nodes[child].match == Node::none) addWhole(type, nodes, child);
            }
            return;
        }
        add({.type = type,
             .kind = node.part->kind,
             .before = added ? nullptr : node.part,
             .after = added ? node.part : nullptr,
             .parts = added ? newInside[index] : goneInside[index]});
    }

    void add(Change change)
    {
        if (!wanted.test(static_cast<size_t>(change.kind))) return;
        found.push_back(std::move(change));
        const auto [same, isNew] = known.insert(&found.back());
        if (isNew) return;
        ++(*same)->listed;
        found.pop_back();
    }

    [[nodiscard]] bool moved(const Node& old, const Node& now) const
    {
        if (now.parent == Node::none || old.serial.empty()) return false;
        if (news[now.parent].match != old.parent) return true;
        if (old.serial != now.serial || old.model != now.model) return false;
        const std::string_view position = rowOf(now.part->kind).position;
        return old.place != now.place || old.part->value(position) != now.part->value(position);
    }

    void compare(const Node& old, const Node& now)
    {
        Change change = {.kind = now.part->kind, .before = old.part, .after = now.part};
        std::vector<Change> hosts;
        if (!std::ranges::equal(old.part->properties, now.part->properties) ||
            old.part->name != now.part->name)
            change.values = valueChanges(old, now, hosts);
        if (moved(old, now)) {
            change.type = ChangeType::moved;
            std::erase_if(change.values, [](const ValueChange& value) {
                return value.column == "rack" || value.column == "enclosure";
            });
        } else if (!old.serial.empty() && !now.serial.empty() &&
                   (old.serial != now.serial || old.model != now.model)) {
            change.type = ChangeType::replaced;
        }
        if (change.type != ChangeType::changed || !change.values.empty()) add(std::move(change));
        for (Change& host : hosts)
            add(std::move(host));
    }

    std::vector<ValueChange> valueChanges(const Node& old, const Node& now, std::vector<Change>& hosts)
    {
        ValueChanges values(*now.part);
        if (old.part->name != now.part->name) values.addName(old.part->name, now.part->name);
        const Counterparts counterparts(*old.part, *now.part);
        for (size_t i = 0; i < now.part->properties.size(); ++i) {
            const Property& property = now.part->properties[i];
            const Property* const before = counterparts.oldOf[i];
            if (before == nullptr && oldGaps.endsWithin(*old.part)) continue;
            if (before != nullptr && before->value == property.value) continue;
            const bool told =
                repeats(property, *now.part) && (before == nullptr || repeats(*before, *old.part));
            if (told || takeHosts(before, property, old, now, hosts)) continue;
            values.add(before, &property);
        }
        for (size_t i = 0; i < old.part->properties.size(); ++i) {
            const Property& property = old.part->properties[i];
            if (counterparts.newOf[i] == nullptr && !newGaps.endsWithin(*now.part) &&
                !repeats(property, *old.part))
                values.add(&property, nullptr);
        }
        moveHostCounts(values.changes, hosts);
        return std::move(values.changes);
    }

    bool takeHosts(const Property* before, const Property& after, const Node& old, const Node& now,
                   std::vector<Change>& hosts)
    {
        if (before == nullptr || after.code() != hostsCode) return false;
        const auto oldHosts = parseHosts(before->value);
        const auto newHosts = parseHosts(after.value);
        if (!oldHosts || !newHosts) return false;
        hosts = hostChanges({.part = old.part, .hosts = *oldHosts}, {.part = now.part, .hosts = *newHosts},
                            after.label(), result.texts);
        return true;
    }

    KindSet wanted;
    Nodes olds;
    Nodes news;
    Gaps oldGaps;
    Gaps newGaps;
    std::vector<size_t> goneInside;
    std::vector<size_t> newInside;
    std::deque<Change> found; ///< whose places stay
    std::unordered_set<Change*, HashOfChange, SameChange> known;
    Changes result;
};

} // namespace

Changes diff(const Document& before, const Document& after, const KindSet& wanted)
{
    return Diff(before, after, wanted).changes();
}

} // namespace document
