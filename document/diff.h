// What was added, removed, moved, replaced and changed between two documents, part by part.

#pragma once

#include "document/document.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

enum class ChangeType { added, removed, moved, replaced, changed };

std::string_view wordOf(ChangeType type);

/// A value that differs: a property's, or that of one item of a property that holds many ("o1" of U1).
struct ValueChange {
    std::string code;
    std::string label;
    std::string item; ///< empty: the whole property
    std::optional<std::string> before;
    std::optional<std::string> after;

    bool operator==(const ValueChange&) const = default;
};

struct Change {
    ChangeType type = ChangeType::changed;
    std::string kind;  ///< as in JSON: a part's kind, or "host"
    std::string what;  ///< as people call it: "drive", "host"
    std::string name;  ///< display name, of a host its description
    std::string id;    ///< of a host the partition's
    std::string where; ///< of a host the partition's name
    std::string from;  ///< of a moved part: its old place and its new one
    std::string to;
    std::vector<ValueChange> values;
    size_t parts = 0;  ///< of an added or removed part: how many parts came or went inside it
    size_t listed = 1; ///< how often the document lists it: once for each partition that sees it

    /// The same change of the same part, however often it is listed.
    [[nodiscard]] bool sameAs(const Change& other) const;
};

/// The times of collection are no difference, nor is the order of the parts.
std::vector<Change> diff(const Document& before, const Document& after);

} // namespace document
