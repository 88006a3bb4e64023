// A big facility has a hundred thousand resources of a few dozen shapes (a class, its attribute names, the
// kinds of their values). Whether the schema allows a resource depends on its shape alone, so it is asked
// once for each shape, and again only for those that it refuses.

#include "facility/resources.h"

#include <algorithm>
#include <limits>

namespace console::facility
{

namespace
{

using nlohmann::json;

/// A letter for every kind of value that the schema can tell from another.
char kindOf(const json& value)
{
    if (value.is_string()) return 't';
    if (!value.is_number_integer()) return '?';
    if (value.is_number_unsigned()) {
        const uint64_t number = value.get<uint64_t>();
        if (number <= std::numeric_limits<int32_t>::max()) return 'i';
        return number <= std::numeric_limits<uint32_t>::max() ? 'u' : '?';
    }
    const int64_t number = value.get<int64_t>();
    if (number >= 0) return 'i'; // "-0"
    return number >= std::numeric_limits<int32_t>::min() ? 'n' : '?';
}

std::string listKind(const json& list)
{
    std::string kinds = "[";
    for (const json& item : list) {
        const char kind = kindOf(item);
        if (kinds.find(kind) == std::string::npos) kinds += kind;
    }
    return kinds;
}

/// Empty for a resource with a value that may need a closer look.
std::string shapeOf(size_t classIndex, const json& resource)
{
    if (!resource.is_object()) return {};
    std::string shape = std::to_string(classIndex);
    for (const auto& [name, value] : resource.items()) {
        shape.append(1, '\0').append(name).append(1, '\0');
        if (value.is_array()) {
            shape += listKind(value);
        } else {
            shape += kindOf(value);
        }
    }
    return shape.find('?') == std::string::npos ? shape : std::string{};
}

std::optional<uint32_t> lookupHash(const json& value, image::Type type)
{
    if (type == image::Type::text) {
        const std::string& text = value.get_ref<const std::string&>();
        return image::hashBytes(text.data(), text.size());
    }
    const bool number = type == image::Type::integer || type == image::Type::uinteger;
    return number ? std::optional(image::hashInteger(value.get<int64_t>())) : std::nullopt;
}

image::Value writeList(ImageWriter& writer, const json& list, image::Type type)
{
    image::Offset place = 0;
    if (type == image::Type::integers) {
        const auto integers = list.get<std::vector<int32_t>>();
        place = writer.array(std::span(integers));
    } else if (type == image::Type::texts) {
        std::vector<image::Offset> texts;
        for (const json& item : list)
            texts.push_back(writer.text(item.get_ref<const std::string&>()));
        place = writer.array(std::span<const image::Offset>(texts));
    } else {
        std::vector<image::Value> values;
        for (const json& item : list)
            values.push_back(
                writeValue(writer, item, item.is_number() ? image::Type::integer : image::Type::text));
        place = writer.array(std::span<const image::Value>(values));
    }
    return {.type = type, .count = static_cast<uint32_t>(list.size()), .data = place};
}

} // namespace

image::Value writeValue(ImageWriter& writer, const json& value, image::Type type)
{
    if (value.is_null()) return {.type = image::Type::text, .count = 0, .data = 0};
    if (value.is_array()) return writeList(writer, value, type);
    const uint64_t data = type == image::Type::text ? writer.text(value.get_ref<const std::string&>())
                                                    : static_cast<uint64_t>(value.get<int64_t>());
    return {.type = type, .count = 0, .data = data};
}

Resources::Resources(Schema& ofFile, ImageWriter& ofImage) : schema(ofFile), writer(ofImage)
{
    for (const ClassForm& form : schema.classes()) {
        Collected& collected = collectedClasses.emplace_back();
        for (const AttributeForm& attribute : form.attributes)
            collected.names.push_back(writer.text(attribute.name));
        collected.entries.resize(form.attributes.size());
    }
}

bool Resources::isFaultless(size_t classIndex, json& resource, const std::string& pointer, Faults& faults)
{
    std::string shape = shapeOf(classIndex, resource);
    if (!shape.empty() && goodShapes.contains(shape)) return true;
    const size_t before = faults.size();
    schema.checkResource(classIndex, resource, pointer, faults);
    if (faults.size() != before) return false;
    goodShapes.insert(std::move(shape));
    return true;
}

void Resources::add(size_t classIndex, json& resource, const std::string& pointer, Faults& faults)
{
    if (isFaultless(classIndex, resource, pointer, faults)) takeUp(classIndex, resource);
}

/// The resource's attributes and the form's are both sorted by name, so one walk over the form meets them
/// all.
void Resources::takeUp(size_t classIndex, const json& resource)
{
    const std::vector<AttributeForm>& forms = schema.classes()[classIndex].attributes;
    Collected& collected = collectedClasses[classIndex];
    const auto index = static_cast<uint32_t>(collected.resources.size());
    std::vector<image::Attribute> attributes;
    size_t form = 0;
    for (const auto& [name, value] : resource.items()) {
        while (forms[form].name != name)
            ++form;
        const image::Type type = forms[form].type;
        attributes.push_back({.name = collected.names[form], .value = writeValue(writer, value, type)});
        if (const auto hash = lookupHash(value, type)) collected.entries[form].push_back({*hash, index});
    }
    collected.resources.push_back({.attributes = writer.array(std::span<const image::Attribute>(attributes)),
                                   .attributeCount = static_cast<uint32_t>(attributes.size()),
                                   .classIndex = static_cast<uint32_t>(classIndex)});
}

std::vector<image::Lookup> Resources::writeLookups(Collected& collected, uint32_t firstResource)
{
    std::vector<image::Lookup> lookups;
    for (size_t i = 0; i < collected.entries.size(); ++i) {
        std::vector<image::Entry>& entries = collected.entries[i];
        if (entries.empty()) continue;
        for (image::Entry& entry : entries)
            entry.resource += firstResource;
        std::ranges::sort(entries, {}, [](const image::Entry& entry) {
            return uint64_t{entry.hash} << 32 | entry.resource;
        });
        lookups.push_back({.name = collected.names[i],
                           .entries = writer.array(std::span<const image::Entry>(entries)),
                           .entryCount = entries.size()});
    }
    return lookups;
}

void Resources::finish(image::Header& header)
{
    std::vector<image::Class> classes;
    std::vector<image::Resource> all;
    for (size_t i = 0; i < collectedClasses.size(); ++i) {
        Collected& collected = collectedClasses[i];
        const ClassForm& form = schema.classes()[i];
        const auto first = static_cast<uint32_t>(all.size());
        const std::vector<image::Lookup> lookups = writeLookups(collected, first);
        classes.push_back({.name = writer.text(form.name),
                           .scope = form.scope,
                           .firstResource = first,
                           .resourceCount = static_cast<uint32_t>(collected.resources.size()),
                           .lookupCount = static_cast<uint32_t>(lookups.size()),
                           .lookups = writer.array(std::span<const image::Lookup>(lookups))});
        all.insert(all.end(), collected.resources.begin(), collected.resources.end());
    }
    header.classCount = static_cast<uint32_t>(classes.size());
    header.classes = writer.array(std::span<const image::Class>(classes));
    header.resources = writer.array(std::span<const image::Resource>(all));
    header.resourceCount = all.size();
}

} // namespace console::facility
