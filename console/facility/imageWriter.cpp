// The image's bytes in one growing buffer, the header's place kept free at its start.

#include "facility/imageWriter.h"

#include <cstring>
#include <functional>

namespace console::facility
{

namespace
{

constexpr size_t firstTexts = 1024;

} // namespace

ImageWriter::ImageWriter() : buffer(sizeof(image::Header), '\0'), texts(firstTexts) {}

ImageWriter::Known& ImageWriter::find(std::string_view text, size_t hash)
{
    for (size_t place = hash;; ++place) {
        Known& one = texts[place & (texts.size() - 1)];
        const bool same = one.hash == hash && std::string_view(buffer).substr(one.place, one.size) == text;
        if (one.place == 0 || same) return one;
    }
}

void ImageWriter::grow()
{
    std::vector<Known> before(2 * texts.size());
    before.swap(texts);
    for (const Known& one : before) {
        if (one.place != 0) find(std::string_view(buffer).substr(one.place, one.size), one.hash) = one;
    }
}

image::Offset ImageWriter::text(std::string_view text)
{
    const size_t hash = std::hash<std::string_view>{}(text);
    if (Known& one = find(text, hash); one.place != 0) return one.place;
    if (2 * ++known > texts.size()) grow();
    const size_t place = buffer.size();
    bytes(text);
    find(text, hash) = {.place = place, .hash = hash, .size = text.size()};
    return place;
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
