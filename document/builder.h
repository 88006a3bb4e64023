// Builds a document in memory from its elements, in the order in which they stand.

#pragma once

#include "document/document.h"

#include <array>
#include <unordered_map>

namespace document
{

class Builder
{
public:
    explicit Builder(std::string name);

    void timestamp(std::string_view text);
    void openList(std::string_view name);
    void closeList();
    void openPart(std::string_view name, std::string_view id);
    void property(const PropertyName& name, std::string_view value);
    void closePart();

    [[nodiscard]] bool hasPart() const { return !open.empty() || !parts.empty(); }

    /// Ends the document; what is still open is closed.
    Document finish();

private:
    /// A part whose end is to come.
    struct Open {
        Part part;
        size_t firstProperty = 0; ///< among those of all parts that are open
        size_t firstChild = 0;
        std::string_view list; ///< that is open inside it
    };

    /// The name of properties. Parts of one kind have the same properties in the same order, and values often
    /// repeat.
    struct Name {
        const PropertyName* name = nullptr;
        std::string_view last;    ///< value
        Name* follower = nullptr; ///< of the property that came behind the last of this name
    };

    std::string_view keep(std::string_view text);
    std::string_view keepOnce(std::string_view text);
    Name& nameOf(const PropertyName& name);
    Name& findName(const PropertyName& name);
    template <typename Item>
    std::span<Item> keepFrom(std::vector<Item>& items, size_t first);

    Document document;
    std::unordered_map<std::string_view, std::string_view> texts; ///< of lists, names and labels
    std::unordered_map<std::string, Name> names;
    std::array<Name*, kindCount> firstNames{}; ///< of the last part of each kind
    Name** expected = nullptr;                 ///< where the next property's name is looked for, and noted
    std::vector<Open> open;
    std::vector<Property> properties;
    std::vector<Part> parts; ///< that are closed, inside parts that are open
};

} // namespace document
