// Which part of one document is which part of another.

#pragma once

#include "document/document.h"

#include <cstddef>
#include <string>
#include <vector>

namespace document
{

/// A part among all parts of its document.
struct Node {
    static constexpr size_t none = static_cast<size_t>(-1);

    const Part* part = nullptr;
    size_t parent = none;
    size_t match = none; ///< the same part in the other document
    size_t depth = 0;
    std::vector<size_t> children;
    std::string place;  ///< its identifier within the part around it
    std::string serial; ///< empty where its kind has none
};

/// The parts of a document, the managed system first. A part listed twice in one place (fans are listed once
/// for each partition) is there once; an absent one, which the document shows as an empty element, is not.
class Nodes
{
public:
    explicit Nodes(const Part& system);

    Node& operator[](size_t index) { return nodes[index]; }
    const Node& operator[](size_t index) const { return nodes[index]; }
    [[nodiscard]] size_t size() const { return nodes.size(); }

private:
    void addChildren(size_t index);

    std::vector<Node> nodes;
};

/// Pairs the parts: those that kept place and serial number, then those found elsewhere by their serial
/// number, then those in the same place.
void match(Nodes& before, Nodes& after);

} // namespace document
