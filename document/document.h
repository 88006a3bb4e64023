// An inventory document as its reader finds it: the managed system and the parts inside it.

#pragma once

#include "document/kind.h"

#include <string>
#include <string_view>
#include <vector>

namespace document
{

struct Property {
    std::string code; ///< two letters
    std::string label;
    std::string value;

    bool operator==(const Property&) const = default;
};

/// A resource of the document. The lists between a part and the parts inside it are told by those parts.
struct Part {
    std::string list; ///< the display name of the list it stands in; empty for the managed system
    Kind kind = Kind::other;
    std::string name; ///< its display name
    std::string id;   ///< its unique identifier: a location code, or a number of the logical configuration
    std::vector<Property> properties;
    std::vector<Part> children;

    /// A property's value; empty where the part has no such property.
    [[nodiscard]] std::string_view value(std::string_view code) const;
};

struct Document {
    std::string timestamp; ///< seconds.microseconds, the microseconds without leading zeros
    Part system;
};

/// The parts around a part, the outermost first.
using Surroundings = std::vector<const Part*>;

/// Whether a property only repeats what the part, or a part around it, tells already.
bool repeats(const Property& property, const Part& part, const Surroundings& around);

/// The collection's time as "2026-11-21 13:41:03 UTC"; as it stands where it is no time.
std::string timeOf(const std::string& timestamp);

/// How many parts of each kind there are, in the order in which kinds are shown.
std::string summary(const Document& document);

} // namespace document
