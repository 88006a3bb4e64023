// Which part of one document is which part of another.

#pragma once

#include "document/document.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

namespace document
{

/// A part among all parts of its document.
struct Node {
    static constexpr uint32_t none = std::numeric_limits<uint32_t>::max();

    const Part* part = nullptr;
    uint32_t parent = none;
    uint32_t match = none;   ///< the same part in the other document
    uint32_t firstChild = 0; ///< children stand one behind the other
    uint32_t childCount = 0;
    std::string_view place = {};  ///< its identifier within the part around it
    std::string_view serial = {}; ///< that goes where the part goes; empty where its kind has none
    std::string_view model = {};  ///< without which the serial number is not unique
};

/// The parts of a document, the managed system first, each level behind the one around it. A part listed
/// twice in one place (fans are listed once for each partition) is there once; an absent one, which the
/// document shows as an empty element, is not.
class Nodes
{
public:
    explicit Nodes(const Part& system);

    Node& operator[](size_t index) { return nodes[index]; }
    const Node& operator[](size_t index) const { return nodes[index]; }
    [[nodiscard]] size_t levelCount() const { return levelStarts.size() - 1; }
    /// The first node of a level; of the level behind the last, the number of nodes.
    [[nodiscard]] uint32_t levelStart(size_t level) const { return levelStarts[level]; }

private:
    void addChildren(uint32_t parent);

    std::vector<Node> nodes;
    std::vector<uint32_t> levelStarts;
};

/// Pairs the parts: those that kept place and serial number, then those found elsewhere by their serial
/// number, then those in the same place.
void match(Nodes& before, Nodes& after);

} // namespace document
