#include "document/match.h"

#include <algorithm>
#include <functional>
#include <queue>
#include <set>
#include <unordered_map>

namespace document
{

namespace
{

constexpr char separator = '\0'; // between the texts of a key

std::string serialOf(const Part& part)
{
    const KindRow& row = rowOf(part.kind);
    const std::string_view serial = part.value(row.serial);
    if (serial.empty() || row.model.empty()) return std::string(serial);
    return std::string(part.value(row.model)) + separator + std::string(serial);
}

/// An identifier mostly begins with that of a part around it; what follows is the same after that part moved.
std::string placeOf(const Part& part)
{
    for (const Part* outer = part.around; outer != nullptr; outer = outer->around) {
        const std::string_view id = outer->id;
        if (!id.empty() && part.id.size() > id.size() && part.id.starts_with(id))
            return std::string(part.id.substr(id.size()));
    }
    return std::string(part.id);
}

std::string everythingOf(const Part& part)
{
    std::string text = std::string(part.name) + separator + std::string(part.id);
    for (const Property& property : part.properties)
        text.append(1, separator).append(property.code()).append(1, separator).append(property.value);
    return text;
}

} // namespace

Nodes::Nodes(const Part& system)
{
    nodes.push_back({.part = &system, .children = {}, .place = {}, .serial = {}});
    addChildren(0);
}

void Nodes::addChildren(size_t index)
{
    std::set<std::string> listed;
    for (const Part& child : nodes[index].part->children) {
        if (absent(child)) continue;
        if (child.children.empty() && !listed.insert(everythingOf(child)).second) continue;
        const size_t added = nodes.size();
        nodes[index].children.push_back(added);
        nodes.push_back({.part = &child,
                         .parent = index,
                         .depth = nodes[index].depth + 1,
                         .children = {},
                         .place = placeOf(child),
                         .serial = serialOf(child)});
        addChildren(added);
    }
}

namespace
{

/// What makes two parts the same one; `parent` is the part around them, as the old document counts it. An
/// empty key makes none.
using Key = std::function<std::string(const Node& node, size_t parent)>;

std::string keyOf(const Node& node, std::initializer_list<std::string_view> texts)
{
    std::string key = std::to_string(static_cast<int>(node.part->kind));
    for (const std::string_view text : texts)
        key.append(1, separator).append(text);
    return key;
}

std::string inParent(const Node& node, size_t parent, std::initializer_list<std::string_view> texts)
{
    return parent == Node::none ? std::string{} : std::to_string(parent) + separator + keyOf(node, texts);
}

std::string placeAndSerial(const Node& node, size_t parent)
{
    return inParent(node, parent, {node.place, node.part->value("S4"), node.serial});
}

std::string serialOfImage(const Node& node, size_t)
{
    return node.serial.empty() ? std::string{} : keyOf(node, {node.serial, node.part->value("S4")});
}

std::string serialAlone(const Node& node, size_t)
{
    return node.serial.empty() ? std::string{} : keyOf(node, {node.serial});
}

std::string placeOfImage(const Node& node, size_t parent)
{
    return inParent(node, parent, {node.place, node.part->value("S4")});
}

std::string position(const Node& node, size_t parent)
{
    const std::string_view text = node.part->value(rowOf(node.part->kind).position);
    return text.empty() ? std::string{} : inParent(node, parent, {text, node.part->value("S4")});
}

std::string placeAlone(const Node& node, size_t parent)
{
    return inParent(node, parent, {node.place});
}

class Matcher
{
public:
    Matcher(Nodes& inBefore, Nodes& inAfter) : before(inBefore), after(inAfter) {}

    /// Outer parts come first, for the place of a part is one within the part around it.
    void run()
    {
        pair(0, 0);
        const auto oldLevels = levelsOf(before);
        const auto newLevels = levelsOf(after);
        for (size_t depth = 1; depth < std::min(oldLevels.size(), newLevels.size()); ++depth) {
            pass(oldLevels[depth], newLevels[depth], placeAndSerial);
            pass(oldLevels[depth], newLevels[depth], serialOfImage, only::unique);
            pass(oldLevels[depth], newLevels[depth], serialAlone, only::unique);
            pass(oldLevels[depth], newLevels[depth], placeOfImage);
            pass(oldLevels[depth], newLevels[depth], position);
            pass(oldLevels[depth], newLevels[depth], placeAlone);
        }
    }

private:
    using Level = std::vector<size_t>;
    enum class only { any, unique };

    static std::vector<Level> levelsOf(const Nodes& nodes)
    {
        std::vector<Level> levels;
        for (size_t index = 0; index < nodes.size(); ++index) {
            levels.resize(std::max(levels.size(), nodes[index].depth + 1));
            levels[nodes[index].depth].push_back(index);
        }
        return levels;
    }

    void pair(size_t old, size_t now)
    {
        before[old].match = now;
        after[now].match = old;
    }

    /// Pairs what has the same key; of several, the first with the first.
    void pass(const Level& oldLevel, const Level& newLevel, const Key& key, only which = only::any)
    {
        std::unordered_map<std::string, std::pair<Level, Level>> candidates;
        for (const size_t index : oldLevel) {
            if (before[index].match != Node::none) continue;
            const std::string text = key(before[index], before[index].parent);
            if (!text.empty()) candidates[text].first.push_back(index);
        }
        for (const size_t index : newLevel) {
            if (after[index].match != Node::none) continue;
            const auto found = candidates.find(key(after[index], after[after[index].parent].match));
            if (found != candidates.end()) found->second.second.push_back(index);
        }
        for (const auto& [text, both] : candidates) {
            const auto& [olds, news] = both;
            if (which == only::unique && (olds.size() != 1 || news.size() != 1)) continue;
            for (size_t i = 0; i < std::min(olds.size(), news.size()); ++i)
                pair(olds[i], news[i]);
        }
    }

    Nodes& before;
    Nodes& after;
};

} // namespace

void match(Nodes& before, Nodes& after)
{
    Matcher(before, after).run();
}

} // namespace document
