// Making facilities of any size, for tests at scale and as a start for files of one's own.

#pragma once

#include <cstdint>
#include <cstdio>

namespace console::facility
{

/// Counts of each kind of part in its parent.
struct Sizes {
    uint32_t images = 2;     ///< of the facility, 1 to 8; each system has a partition for each
    uint32_t cec = 2;        ///< processor complex drawers of a system
    uint32_t io = 4;         ///< I/O drawers, which both systems have
    uint32_t adapters = 2;   ///< of each kind, per I/O drawer and image
    uint32_t racks = 2;      ///< of the facility
    uint32_t enclosures = 4; ///< of a rack, dealt out to the images
    uint32_t drives = 16;    ///< of an enclosure
    uint32_t volumes = 24;   ///< of an image
    uint32_t hosts = 6;      ///< of an image
    uint64_t seed = 1;       ///< of what is not given by the sizes, such as serial numbers
};

/// Writes the facility file; false when it could not be written whole. Equal sizes give equal bytes.
bool make(const Sizes& sizes, std::FILE* file);

} // namespace console::facility
