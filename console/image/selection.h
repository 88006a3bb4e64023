// The selection language of queries and enumerations: comparisons of attributes with texts, patterns and
// numbers, joined by && (which binds tighter) and ||, with parentheses.

#pragma once

#include "image/run.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace console::image
{

/// A selection that was read once and is tried on many resources. It refers to the text that it was read
/// from.
struct Selection {
    enum class Kind : uint8_t { all, any, text, pattern, number };

    /// Nodes stand behind their operands, the root is the last one.
    struct Node {
        Kind kind;
        bool required = false; ///< nothing matches that this node does not match
        size_t left = 0;       ///< all, any: the operands
        size_t right = 0;
        AttributeFinder attribute{}; ///< the others: what is compared with what
        std::string_view text{};
        std::optional<int64_t> number{}; ///< none: beyond every attribute's range
    };

    std::vector<Node> nodes;
    std::vector<uint8_t> results{}; ///< of the nodes, for one resource

    bool matches(const Image& image, const Resource& resource);
};

/// Reads a selection. A malformed one leaves `fault` saying what is wrong and at which column, 1-based.
std::optional<Selection> parseSelection(std::string_view text, std::string& fault);

/// `%` in the pattern stands for any run of characters, also an empty one.
bool matchesPattern(std::string_view text, std::string_view pattern);

/// The indexes of the resources of a class that match, in the order of the file; no selection: all of them.
std::vector<uint32_t> select(const Image& image, const Class& from, Selection* selection);

} // namespace console::image
