// Laying out the compiled image: every text once, arrays aligned, offsets from the image's start.

#pragma once

#include "image/image.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

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
    /// A text's place, with as much of its hash as keeps others from being looked at.
    struct Known {
        size_t place = 0; ///< 0: free
        size_t hash = 0;
        size_t size = 0;
    };
    image::Offset append(const void* data, size_t size);
    /// Where in the table the text is, or would be.
    Known& find(std::string_view text, size_t hash);
    void grow();

    std::string buffer;
    std::vector<Known> texts; ///< by hash; a power of two, never more than half of it taken
    size_t known = 0;
};

} // namespace console::facility
