// An inventory document as its reader finds it: the managed system and the parts inside it.
//
// Facilities have a hundred thousand parts: texts and parts lie in memory that the document owns, each text
// once where its neighbours repeat it, and go as views and spans.

#pragma once

#include "document/finding.h"
#include "document/kind.h"
#include "document/missing.h"

#include <cstdint>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

/// What the tag of a property says, once for all properties that say the same.
struct PropertyName {
    std::string_view code; ///< two letters
    std::string_view label;
    bool reversed = false; ///< the tag has the label in front of the code

    bool operator==(const PropertyName&) const = default;
};

struct Property {
    const PropertyName* name = nullptr;
    std::string_view value;

    [[nodiscard]] std::string_view code() const { return name->code; }
    [[nodiscard]] std::string_view label() const { return name->label; }

    bool operator==(const Property& other) const { return value == other.value && *name == *other.name; }
};

/// A resource of the document. The lists between a part and the parts inside it are told by those parts.
struct Part {
    std::string_view list; ///< the display name of the list it stands in; empty for the managed system
    std::string_view name; ///< its display name
    std::string_view id; ///< its unique identifier: a location code, or a number of the logical configuration
    std::span<const Property> properties;
    std::span<Part> children;
    const Part* around = nullptr; ///< the part it stands in; none for the managed system
    Kind kind = Kind::other;

    /// A property's value; empty where the part has no such property.
    [[nodiscard]] std::string_view value(std::string_view code) const;
    /// The value of the part or, where it has no such property, of the nearest part around it that has one.
    [[nodiscard]] std::string_view valueAround(std::string_view code) const;
};

struct Document {
    std::string name;           ///< the file it was read from, as messages call it
    std::string_view timestamp; ///< seconds.microseconds, the microseconds without leading zeros
    Missing missing;            ///< nothing: the document is complete
    /// The first of what the collector would not have written, and how much there is of it.
    std::vector<Finding> findings;
    uint64_t findingCount = 0;

    [[nodiscard]] const Part& system() const { return *root; }

    const Part* root = nullptr;
    std::unique_ptr<std::pmr::monotonic_buffer_resource> memory;
};

/// Whether a property only repeats what the part, or a part around it, tells already.
bool repeats(const Property& property, const Part& part);

/// Whether the part is an empty element that stands where a part could be.
bool absent(const Part& part);

/// The collection's time as "2026-11-21 13:41:03 UTC"; as it stands where it is no time.
std::string timeOf(std::string_view timestamp);

/// How many parts of each kind there are, in the order in which kinds are shown.
std::string summary(const Document& document);

} // namespace document
