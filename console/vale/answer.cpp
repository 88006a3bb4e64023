// Turning the image's values into the client's.

#include "answer.h"

namespace console::vale
{

namespace
{

ValeValue integersOf(const image::Image& image, const image::Value& value, Room& room)
{
    auto* list = room.take<ValeIntegerList>(1);
    *list = {.count = value.count, .values = image.at<int32_t>(value.data)};
    return {.integers = list};
}

ValeValue textsOf(const image::Image& image, const image::Value& value, Room& room)
{
    auto* list = room.take<ValeTextList>(1);
    auto* texts = room.take<const char*>(value.count);
    const auto offsets = image.span<image::Offset>(value.data, value.count);
    for (size_t i = 0; i < offsets.size(); ++i)
        texts[i] = image.text(offsets[i]);
    *list = {.count = value.count, .values = texts};
    return {.texts = list};
}

ValeValue valueOf(const image::Image& image, const image::Value& value, Room& room)
{
    switch (value.type) {
    case image::Type::text:
        return {.text = image.text(value.data)};
    case image::Type::integer:
        return {.integer = static_cast<int32_t>(value.data)};
    case image::Type::uinteger:
        return {.uinteger = static_cast<uint32_t>(value.data)};
    case image::Type::integers:
        return integersOf(image, value, room);
    case image::Type::texts:
        return textsOf(image, value, room);
    case image::Type::mixed:
        break; // vale.h has no such value: nobody plans one
    }
    return {};
}

} // namespace

void fill(ValeAttribute& item, const image::Attribute* source, const image::Image& image, Room& room)
{
    item.name = image.text(source->name);
    item.identifier = static_cast<uint32_t>(source->name);
    item.type = static_cast<int32_t>(source->value.type);
    item.value = valueOf(image, source->value, room);
}

void fill(ValeElement& item, const image::Value* source, const image::Image& image, Room& room)
{
    item.type = static_cast<int32_t>(source->type);
    item.value = valueOf(image, *source, room);
}

} // namespace console::vale
