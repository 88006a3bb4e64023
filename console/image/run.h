// A run of the console as one of its processes sees it: the facility's image, mapped and read in place, the
// state that all processes of the run share, and the journal.

#pragma once

#include "image/image.h"

#include <span>
#include <string>
#include <string_view>

namespace console::image
{

/// The mapped image. What an accessor gives points into the mapping and lives as long as the process.
struct Image {
    const char* base = nullptr;

    template <typename Record>
    const Record* at(Offset offset) const
    {
        return offset == 0 ? nullptr : reinterpret_cast<const Record*>(base + offset);
    }
    template <typename Record>
    std::span<const Record> span(Offset offset, uint64_t count) const
    {
        return {at<Record>(offset), static_cast<size_t>(count)}; // what is mapped can be counted
    }

    /// Null for offset 0.
    const char* text(Offset offset) const { return at<char>(offset); }

    const Header& header() const { return *reinterpret_cast<const Header*>(base); }
    std::span<const Class> classes() const { return span<Class>(header().classes, header().classCount); }
    std::span<const Resource> resources() const
    {
        return span<Resource>(header().resources, header().resourceCount);
    }
    std::span<const Rule> rules() const { return span<Rule>(header().rules, header().ruleCount); }
    std::span<const Attribute> attributes(const Resource& resource) const
    {
        return span<Attribute>(resource.attributes, resource.attributeCount);
    }

    /// The class of that name; null when there is none, and for a null name.
    const Class* findClass(const char* name) const;
};

struct Run {
    Image image;
    RunState* state = nullptr;
    RuleState* ruleStates = nullptr; ///< one for each rule of the image
    int journal = -1;                ///< -1: no run is open, nothing is journaled
};

/// Joins the run that KORD_CONSOLE_ROOT names. Returns an empty text, or why there is no run to join.
[[nodiscard]] std::string openRun(Run& run);

/// Finds the attribute of one name in many resources. Texts are stored once each, so that after the first hit
/// an offset says it all, and most resources of a class have it in the same place.
struct AttributeFinder {
    std::string_view name;
    Offset known = 0;
    size_t place = 0;

    /// Null when the resource lacks it.
    const Attribute* find(const Image& image, const Resource& resource);
};

} // namespace console::image
