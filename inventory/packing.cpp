#include "inventory/packing.h"

#include "platform/failure.h"

#include <array>
#include <xxhash.h>
#include <zstd.h>

namespace inventory
{

std::string packed(std::string_view bytes)
{
    constexpr int quickest = 1; // a fiftieth of the document already; more effort takes no tenth off that
    std::string result(ZSTD_compressBound(bytes.size()), '\0');
    const size_t size = ZSTD_compress(result.data(), result.size(), bytes.data(), bytes.size(), quickest);
    if (ZSTD_isError(size) != 0)
        throw platform::Failure(std::string("cannot be packed: ") + ZSTD_getErrorName(size));
    result.resize(size);
    return result;
}

std::string unpacked(std::string_view bytes, const std::string& name)
{
    std::string result;
    const unsigned long long size = ZSTD_getFrameContentSize(bytes.data(), bytes.size());
    if (size > result.max_size()) // as the values for no size and for an unknown one are
        throw platform::Failure(name + ": the document in it is damaged");
    result.resize(static_cast<size_t>(size));
    const size_t got = ZSTD_decompress(result.data(), result.size(), bytes.data(), bytes.size());
    if (got != size) // an error is no size either
        throw platform::Failure(name + ": the document in it is damaged");
    return result;
}

std::string hashOf(std::string_view bytes)
{
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, XXH3_128bits(bytes.data(), bytes.size()));
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : canonical.digest)
        text.append({digits[byte >> 4U], digits[byte & 0xFU]});
    return text;
}

} // namespace inventory
