#include "document/match.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <unordered_set>

namespace document
{

namespace
{

size_t hashOf(std::initializer_list<std::string_view> texts, size_t hash = 0)
{
    constexpr auto factor = static_cast<size_t>(0x9E3779B97F4A7C15U); // of 32 bits, where those are all
    for (const std::string_view text : texts)
        hash = (hash ^ std::hash<std::string_view>{}(text)) * factor;
    return hash;
}

/// An identifier mostly begins with that of a part around it; what follows is the same after that part moved.
std::string_view placeOf(const Part& part)
{
    for (const Part* outer = part.around; outer != nullptr; outer = outer->around) {
        const std::string_view id = outer->id;
        if (!id.empty() && part.id.starts_with(id)) return part.id.substr(id.size());
    }
    return part.id;
}

struct SameText {
    bool operator()(const Part* one, const Part* other) const
    {
        return one->id == other->id && one->name == other->name &&
               std::ranges::equal(one->properties, other->properties);
    }
};

struct HashOfText {
    size_t operator()(const Part* part) const
    {
        size_t hash = hashOf({part->id, part->name});
        for (const Property& property : part->properties)
            hash = hashOf({property.code(), property.value}, hash);
        return hash;
    }
};

} // namespace

Nodes::Nodes(const Part& system)
{
    nodes.push_back({.part = &system});
    levelStarts = {0, 1};
    while (levelStarts.back() > levelStarts.end()[-2]) {
        for (uint32_t index = levelStarts.end()[-2]; index < levelStarts.back(); ++index)
            addChildren(index);
        levelStarts.push_back(static_cast<uint32_t>(nodes.size()));
    }
    levelStarts.pop_back();
}

void Nodes::addChildren(uint32_t parent)
{
    const Part& part = *nodes[parent].part;
    const auto first = static_cast<uint32_t>(nodes.size());
    std::unordered_set<const Part*, HashOfText, SameText> listed;
    for (const Part& child : part.children) {
        if (absent(child)) continue;
        if (child.children.empty() && part.children.size() > 1 && !listed.insert(&child).second) continue;
        const KindRow& row = rowOf(child.kind);
        const std::string_view serial = child.value(row.serial);
        nodes.push_back({.part = &child,
                         .parent = parent,
                         .place = placeOf(child),
                         .serial = serial,
                         .model = serial.empty() ? std::string_view{} : child.value(row.model)});
    }
    nodes[parent].firstChild = first;
    nodes[parent].childCount = static_cast<uint32_t>(nodes.size()) - first;
}

namespace
{

/// What makes two parts the same one. A key that is not whole makes none.
struct Key {
    bool whole = true;
    Kind kind = Kind::other;
    uint32_t parent = 0; ///< the part around them, as the old document counts it
    std::string_view place = {};
    std::string_view image = {};
    std::string_view serial = {};
    std::string_view model = {};

    bool operator==(const Key&) const = default;
};

struct HashOfKey {
    size_t operator()(const Key& key) const
    {
        const auto numbers = static_cast<size_t>(key.parent) << 8U | static_cast<size_t>(key.kind);
        return hashOf({key.place, key.image, key.serial, key.model}, numbers);
    }
};

using KeyOf = Key (*)(const Node& node, uint32_t parent);

std::string_view imageOf(const Node& node)
{
    return node.part->value("S4");
}

/// The same place in the same part around it.
Key placeAlone(const Node& node, uint32_t parent)
{
    return {.whole = parent != Node::none, .kind = node.part->kind, .parent = parent, .place = node.place};
}

Key placeOfImage(const Node& node, uint32_t parent)
{
    Key key = placeAlone(node, parent);
    key.image = imageOf(node);
    return key;
}

Key placeAndSerial(const Node& node, uint32_t parent)
{
    Key key = placeOfImage(node, parent);
    key.serial = node.serial;
    key.model = node.model;
    return key;
}

Key serialAlone(const Node& node, uint32_t)
{
    return {
        .whole = !node.serial.empty(), .kind = node.part->kind, .serial = node.serial, .model = node.model};
}

Key serialOfImage(const Node& node, uint32_t parent)
{
    Key key = serialAlone(node, parent);
    key.image = imageOf(node);
    return key;
}

/// The position that stays when the enclosure in it is exchanged.
Key position(const Node& node, uint32_t parent)
{
    Key key = placeOfImage(node, parent);
    key.place = node.part->value(rowOf(node.part->kind).position);
    key.whole = key.whole && !key.place.empty();
    return key;
}

class Matcher
{
public:
    Matcher(Nodes& inBefore, Nodes& inAfter) : before(inBefore), after(inAfter) {}

    /// Outer parts come first, for the place of a part is one within the part around it.
    void run()
    {
        pair(0, 0);
        for (size_t level = 1; level < std::min(before.levelCount(), after.levelCount()); ++level) {
            olds = indexesOf(before, level);
            news = indexesOf(after, level);
            pass(placeAndSerial);
            pass(serialOfImage, Only::unique);
            pass(serialAlone, Only::unique);
            pass(placeOfImage);
            pass(position);
            pass(placeAlone);
        }
    }

private:
    enum class Only { any, unique };

    /// The parts of one key: the old ones in a chain, of the new ones the first.
    struct Group {
        uint32_t firstOld = Node::none;
        uint32_t lastOld = Node::none;
        uint32_t oldCount = 0;
        uint32_t firstNew = Node::none;
        uint32_t newCount = 0;
    };

    static std::vector<uint32_t> indexesOf(const Nodes& nodes, size_t level)
    {
        std::vector<uint32_t> indexes;
        for (uint32_t index = nodes.levelStart(level); index < nodes.levelStart(level + 1); ++index)
            indexes.push_back(index);
        return indexes;
    }

    void pair(uint32_t old, uint32_t now)
    {
        before[old].match = now;
        after[now].match = old;
    }

    /// Pairs what has the same key; of several, the first with the first.
    void pass(KeyOf keyOf, Only which = Only::any)
    {
        if (olds.empty() || news.empty()) return;
        groups.clear();
        nextOld.assign(olds.size(), Node::none);
        for (uint32_t turn = 0; turn < olds.size(); ++turn)
            addOld(keyOf(before[olds[turn]], before[olds[turn]].parent), turn);
        for (const uint32_t now : news) {
            const Key key = keyOf(after[now], after[after[now].parent].match);
            const auto found = key.whole ? groups.find(key) : groups.end();
            if (found != groups.end()) addNew(found->second, now, which);
        }
        if (which == Only::unique) pairUnique();
        std::erase_if(olds, [&](uint32_t old) { return before[old].match != Node::none; });
        std::erase_if(news, [&](uint32_t now) { return after[now].match != Node::none; });
    }

    void addOld(const Key& key, uint32_t turn)
    {
        if (!key.whole) return;
        Group& group = groups[key];
        if (group.oldCount++ == 0)
            group.firstOld = turn;
        else
            nextOld[group.lastOld] = turn;
        group.lastOld = turn;
    }

    void addNew(Group& group, uint32_t now, Only which)
    {
        if (group.newCount++ == 0) group.firstNew = now;
        if (which == Only::unique || group.firstOld == Node::none) return;
        pair(olds[group.firstOld], now);
        group.firstOld = nextOld[group.firstOld];
    }

    void pairUnique()
    {
        for (const auto& [key, group] : groups) {
            if (group.oldCount == 1 && group.newCount == 1) pair(olds[group.firstOld], group.firstNew);
        }
    }

    Nodes& before;
    Nodes& after;
    std::vector<uint32_t> olds; ///< of the level, those without a match
    std::vector<uint32_t> news;
    std::vector<uint32_t> nextOld; ///< the next of the same key, by turn among the old ones
    std::unordered_map<Key, Group, HashOfKey> groups;
};

} // namespace

void match(Nodes& before, Nodes& after)
{
    Matcher(before, after).run();
}

} // namespace document
