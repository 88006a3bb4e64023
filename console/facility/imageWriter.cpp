// The image's bytes in one growing buffer, the header's place kept free at its start.

#include "facility/imageWriter.h"

#include <cstring>

namespace console::facility
{

ImageWriter::ImageWriter() : buffer(sizeof(image::Header), '\0') {}

image::Offset ImageWriter::text(std::string_view text)
{
    const auto known = texts.find(text);
    if (known != texts.end()) return known->second;
    return texts.emplace(text, bytes(text)).first->second;
}

image::Offset ImageWriter::bytes(std::string_view bytes)
{
    const image::Offset offset = buffer.size();
    buffer.append(bytes).append(1, '\0');
    return offset;
}

image::Offset ImageWriter::append(const void* data, size_t size)
{
    constexpr size_t alignment = alignof(image::Header);
    buffer.append((alignment - buffer.size() % alignment) % alignment, '\0');
    const image::Offset offset = buffer.size();
    if (size != 0) buffer.append(static_cast<const char*>(data), size);
    return offset;
}

std::string ImageWriter::finish(const image::Header& header)
{
    std::memcpy(buffer.data(), &header, sizeof header);
    return std::move(buffer);
}

} // namespace console::facility
