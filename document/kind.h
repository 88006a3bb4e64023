// The kinds of parts a document holds: one row says how a kind is recognised, named and counted.

#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace document
{

enum class Kind {
    system,
    processorComplex,
    controlCard,
    ioEnclosure,
    deviceAdapter,
    hostAdapter,
    rack,
    powerSupply,
    battery,
    powerController,
    fanSenseCard,
    fanTray,
    storageEnclosure,
    drive,
    interfaceCard,
    baffle,
    enclosurePartition,
    console,
    partition,
    storageConfiguration,
    arraySite,
    array,
    rank,
    segmentPool,
    other
};

struct KindRow {
    Kind kind;
    std::string_view word; ///< in JSON
    std::string_view singular;
    std::string_view plural;
    std::string_view list; ///< what stands in this list is of this kind, whatever its display name
    std::string_view name; ///< else: what has this display name
    bool counted = true;   ///< in a document's summary
};

constexpr size_t kindCount = static_cast<size_t>(Kind::other) + 1;
extern const std::array<KindRow, kindCount> kinds;

const KindRow& rowOf(Kind kind);

/// The kind of a part by the list it stands in (empty: in none) and its display name.
Kind kindOf(std::string_view list, std::string_view name);

} // namespace document
