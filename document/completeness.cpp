#include "document/completeness.h"

#include "document/references.h"
#include "platform/text.h"

#include <algorithm>
#include <iterator>

namespace document
{

namespace
{

constexpr size_t mostPartitions = 100; ///< a system has at most 8
constexpr size_t ofSections = 3;       ///< depth of what stands in the managed system's lists
constexpr size_t ofShares = 5;         ///< depth of what partitions see in an enclosure

std::string meantBy(std::string_view text)
{
    std::string result;
    appendMeant(result, text);
    return result;
}

/// Notes the partition of an identifier, which stands behind the owner's and a hyphen.
void note(std::set<std::string>& partitions, const std::string& id, const std::string& owner)
{
    if (id.starts_with(owner + '-') && partitions.size() < mostPartitions)
        partitions.insert(id.substr(owner.size() + 1));
}

} // namespace

void Completeness::see(const Event& event)
{
    switch (event.kind) {
    case Event::Kind::listStart:
        if (++depth == ofSections - 1) section = event.name;
        if (depth == ofShares - 1) list = event.name;
        return;
    case Event::Kind::resourceStart:
        ++depth;
        return seeResource(event);
    case Event::Kind::listEnd:
    case Event::Kind::resourceEnd:
        --depth;
        return;
    case Event::Kind::cut:
        cut = true;
        return;
    default:
        return;
    }
}

void Completeness::seeResource(const Event& event)
{
    if (depth > ofShares) return;
    const std::string id = meantBy(event.id);
    if (depth == 1) system = id;
    if (depth == ofSections && section == rowOf(Kind::partition).list) {
        partitions = true;
        note(told, id, system);
    } else if (depth == ofSections) {
        enclosure = id;
    } else if (depth == ofShares && list == rowOf(Kind::enclosurePartition).list) {
        note(named, id, enclosure);
    }
}

Missing Completeness::missing() const
{
    Missing lacking = {.allPartitions = !partitions, .end = cut};
    if (partitions) std::ranges::set_difference(named, told, std::back_inserter(lacking.partitions));
    return lacking;
}

std::vector<std::string> wordsOf(const Missing& missing)
{
    std::vector<std::string> words;
    if (missing.allPartitions) words.emplace_back("the partitions");
    for (const std::string& partition : missing.partitions)
        words.push_back("partition " + platform::shown(partition));
    if (missing.end) words.emplace_back("the end");
    return words;
}

} // namespace document
