#include "document/document.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <set>

namespace document
{

namespace
{

/// Looked for so often that a call of the library for two letters would tell.
const Property* find(std::span<const Property> properties, std::string_view code)
{
    if (code.empty()) return nullptr;
    for (const Property& property : properties) {
        const std::string_view other = property.code();
        if (other.size() == code.size() && other.back() == code.back() && other == code) return &property;
    }
    return nullptr;
}

} // namespace

std::string_view Part::value(std::string_view code) const
{
    const Property* const found = find(properties, code);
    return found == nullptr ? std::string_view{} : found->value;
}

std::string_view Part::valueAround(std::string_view code) const
{
    for (const Part* part = this; part != nullptr; part = part->around) {
        if (const Property* const found = find(part->properties, code)) return found->value;
    }
    return {};
}

/// Facility, image and rack number, which parts repeat from the part that they are in.
static bool isInherited(std::string_view code)
{
    return code == "S3" || code == "S4" || code == "R2";
}

bool repeats(const Property& property, const Part& part)
{
    if (property.code() == "DS" && property.value == part.name) return true;
    if (property.code() == "YL" && property.value == part.id) return true;
    for (const Part* outer = part.around; outer != nullptr; outer = outer->around) {
        if (property.code() == "CI" && property.value == outer->id) return true;
        if (isInherited(property.code()) &&
            std::ranges::find(outer->properties, property) != outer->properties.end())
            return true;
    }
    return false;
}

bool absent(const Part& part)
{
    return part.id.empty() && part.children.empty() &&
           std::ranges::all_of(part.properties, [&](const Property& property) {
               return property.value.empty() || repeats(property, part);
           });
}

std::string timeOf(std::string_view timestamp)
{
    std::time_t seconds = 0;
    const char* const end = timestamp.data() + std::min(timestamp.find('.'), timestamp.size());
    const auto [stop, fault] = std::from_chars(timestamp.data(), end, seconds);
    std::tm time{};
    if (fault != std::errc{} || stop != end || gmtime_r(&seconds, &time) == nullptr)
        return std::string(timestamp);
    std::array<char, 64> text{};
    const size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &time);
    return {text.data(), length};
}

namespace
{

/// A part that several partitions see is listed for each of them, and is one part all the same.
using Seen = std::array<std::set<std::string_view>, kindCount>;
using Counts = std::array<size_t, kindCount>;

void count(const Part& part, Seen& seen, Counts& counts)
{
    const auto kind = static_cast<size_t>(part.kind);
    if (part.id.empty() || seen.at(kind).insert(part.id).second) ++counts.at(kind);
    for (const Part& child : part.children)
        count(child, seen, counts);
}

} // namespace

std::string summary(const Document& document)
{
    Seen seen;
    Counts counts{};
    count(document.system(), seen, counts);
    std::string text;
    for (const KindRow& row : kinds) {
        const size_t found = counts.at(static_cast<size_t>(row.kind));
        if (found == 0 || !row.counted) continue;
        text += text.empty() ? "" : ", ";
        text += std::to_string(found) + ' ';
        text += found == 1 ? row.singular : row.plural;
    }
    return text;
}

} // namespace document
