// Laying out the compiled image: every text once, arrays aligned, offsets from the image's start.

#pragma once

#include "image/image.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace console::facility
{

class ImageWriter
{
public:
    ImageWriter();

    /// The text's place; the same for equal texts.
    image::Offset text(std::string_view text);
    /// Bytes that may hold NUL, followed by one.
    image::Offset bytes(std::string_view bytes);
    /// The array's place, which is never 0, not even for an empty one.
    template <typename Record>
    image::Offset array(std::span<const Record> records)
    {
        return append(records.data(), records.size_bytes());
    }

    /// Writes the header and hands over the image; nothing can be added afterwards.
    std::string finish(const image::Header& header);

private:
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    image::Offset append(const void* data, size_t size);

    std::string buffer;
    std::unordered_map<std::string, image::Offset, Hash, std::equal_to<>> texts;
};

} // namespace console::facility
