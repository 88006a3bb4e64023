// One row a query. Operators and service personnel rely on the differences between the rows: an enclosure
// without drives goes on where one without interface cards does not.

#include "reactions.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <stdexcept>

namespace sweep
{

namespace
{

// ---- the words of the table ----

constexpr std::string_view missing = "BED00000"; // an expected resource
constexpr std::string_view refused = "BED00001"; // a call or response failed
constexpr std::string_view unknown = "BED00002";
constexpr std::string_view degraded = "BED00003"; // a partition is not in its working state

constexpr Reaction on{};
constexpr Reaction minor{.course = Course::minor};
constexpr Reaction stops{.course = Course::stops, .code = refused};
constexpr Reaction stopsMissing{.course = Course::stops, .code = missing};
constexpr Reaction stopsUnknown{.course = Course::stops, .code = unknown};
constexpr Reaction stopsDegraded{.course = Course::stops, .code = degraded};
constexpr Reaction told{.code = refused};
constexpr Reaction toldMissing{.code = missing};
constexpr Reaction minorTold{.course = Course::minor, .code = refused};
constexpr Reaction ends{.course = Course::ends, .code = refused};
constexpr Reaction endsMissing{.course = Course::ends, .code = missing};

struct ForNumber {
    uint32_t number = 0; ///< 0: no entry
    Reaction reaction{};
};

using ForNumbers = std::array<ForNumber, 3>;
constexpr ForNumbers absent = {{{0x40008, minor}}};
constexpr ForNumbers absentOrOff = {{{0x40008, minor}, {0x4000a, minor}}};
constexpr ForNumbers absentOffOrUnknown = {{{0x40008, minor}, {0x4000a, minor}, {0x30002, minor}}};

struct Row {
    std::string_view call = "query_p_select";
    std::string_view className;
    std::string_view contains = {}; ///< the selection does
    std::string_view lacks = {};    ///< the selection does not
    Reaction empty = stopsMissing;
    ForNumbers numbers = {}; ///< errors of a first response that are told apart
    Reaction error = stops;  ///< all others
    Reaction failed = stops;
    Reaction bare = on;
    std::string_view shown = {}; ///< the display name of the resources that stand for the responses
    bool emptyShown = false;
    bool counted = false;
};

constexpr std::string_view enumeration = "enumerate_resources";

// clang-format off
constexpr Row rows[] = {
    // who and where
    {.className = "Orvik.TarnStorageFacilitySystem"},
    {.className = "Orvik.TarnStorageFacility", .error = told},
    {.className = "Orvik.TarnStorageFacilityPartition", .lacks = "&&"},
    {.className = "Orvik.ManagedNode", .empty = stops, .numbers = {{{0x40008, stopsMissing}}}},
    {.call = "query_d_select", .className = "Orvik.ManagedNode", .empty = stops, .numbers = {{{0x40008, stopsMissing}}}, .bare = stopsDegraded},
    // processor complex drawers
    {.className = "Orvik.TarnCECDrawer", .bare = stops},
    {.className = "Orvik.TarnNVC", .numbers = absent, .shown = "Orvik Non Volatile Control Card"},
    // I/O drawers
    {.className = "Orvik.TarnIODrawer", .bare = stops},
    {.className = "Orvik.TarnDA", .numbers = {{{0x40008, minor}, {0x4000d, stopsUnknown}}}, .shown = "OSK FC-AL Cobaltarray Adapter"},
    {.className = "Orvik.TarnHA", .numbers = absent, .shown = "Orvik Sable HA - LW"},
    // storage enclosures, and racks for these and for themselves
    {.className = "Orvik.TarnRack", .error = stopsMissing},
    {.className = "Orvik.TarnStorageEnclosure", .numbers = absent, .error = stopsMissing},
    {.className = "Orvik.TarnDDM", .empty = toldMissing, .numbers = absent, .shown = "OSK Physical Disk Drive"},
    {.className = "Orvik.TarnFCIC", .numbers = absent, .shown = "Fiber Channel Interface Card"},
    {.className = "Orvik.TarnBaffle", .empty = minor, .numbers = absent, .shown = "Storage Enclosure Slot Baffle"},
    {.className = "Orvik.TarnPPS", .empty = minor, .numbers = absent, .shown = "Primary Power Supply", .emptyShown = true},
    {.className = "Orvik.TarnBattery", .empty = minor, .numbers = absent, .shown = "Rack Battery Assembly", .emptyShown = true},
    {.className = "Orvik.TarnRPC", .empty = minor, .numbers = absent, .shown = "Rack Power Control Card", .emptyShown = true},
    {.className = "Orvik.TarnFanSense", .empty = minor, .numbers = absent, .error = told, .shown = "Fan Sense Card"},
    {.className = "Orvik.TarnFanTray", .empty = minor, .numbers = absent, .shown = "Fan Tray"},
    // consoles
    {.className = "Orvik.TarnQUAY"},
    // partitions
    {.className = "Orvik.TarnStorageFacilityPartition", .contains = "hslLumenPoolId"},
    {.call = enumeration, .className = "Orvik.TarnServerPartition", .numbers = absent, .bare = minor},
    {.call = "invoke_action", .className = "Orvik.TarnServerPartition", .empty = stops, .numbers = absentOrOff, .bare = stops},
    {.className = "Orvik.TarnStorageFacilityImage", .empty = endsMissing,
     .numbers = {{{0x40008, minor}, {0x4000a, minor}, {0x4000d, minorTold}}}, .error = ends, .failed = ends},
    // counts
    {.call = enumeration, .className = "Orvik.TarnLogicalVolume", .numbers = absent, .bare = minor, .counted = true},
    {.call = enumeration, .className = "Orvik.TarnHAPort", .contains = "portType", .numbers = absent, .bare = minor, .counted = true},
    {.call = enumeration, .className = "Orvik.TarnHAPort", .contains = "topologyULP", .numbers = absent, .bare = minor, .counted = true},
    {.call = enumeration, .className = "Orvik.TarnHAPort", .numbers = {{{0x40008, on}}}, .error = minorTold, .bare = minor, .counted = true},
    {.call = enumeration, .className = "Orvik.TarnVolumeGroup", .numbers = absentOffOrUnknown, .bare = minor, .counted = true},
    {.call = enumeration, .className = "Orvik.TarnScsiHostPort", .numbers = absentOffOrUnknown, .bare = minor, .counted = true},
    {.call = enumeration, .className = "Orvik.TarnLogicalSubsystem", .numbers = absentOffOrUnknown, .bare = minor, .counted = true},
    {.className = "Orvik.TarnStorageFacilityPartition", .contains = "lparName"},
    // hosts and logical configuration
    {.className = "Orvik.TarnScsiHostPort", .empty = minor, .numbers = absentOrOff, .error = told},
    {.className = "Orvik.TarnArraySite", .numbers = absentOrOff, .shown = "Array Site"},
    {.className = "Orvik.TarnArray", .numbers = absentOrOff, .shown = "Array"},
    {.className = "Orvik.TarnRank", .numbers = absentOrOff, .shown = "Rank"},
    {.className = "Orvik.TarnSegmentPool", .numbers = absentOrOff, .shown = "Segment Pool"},
};
// clang-format on

const Row* findRow(const Call& call)
{
    const auto* found = std::find_if(std::begin(rows), std::end(rows), [&call](const Row& row) {
        return row.call == call.name && row.className == call.className &&
               call.selection.find(row.contains) != std::string::npos &&
               (row.lacks.empty() || call.selection.find(row.lacks) == std::string::npos);
    });
    return found == std::end(rows) ? nullptr : found;
}

const Row& rowOf(const Call& call)
{
    const Row* row = findRow(call);
    if (row == nullptr)
        throw std::runtime_error("no such call is known: " + call.name + " " + call.className);
    return *row;
}

Reaction reactionToError(const Row& row, uint32_t number)
{
    for (const ForNumber& known : row.numbers) {
        if (known.number == number) return known.reaction;
    }
    return row.error;
}

/// Only an explicit refusal of the domain's session is a failure; ending a session never stops a run.
Reaction reactionToSession(const Call& call)
{
    if (call.result == 0) return on;
    if (call.name == "end_session") return told;
    return call.scope != 4 || call.result == -1 ? stops : on;
}

/// An answered status other than 1.
bool isOffline(const Call& call)
{
    const bool answered = call.rule != nullptr && call.rule->contains("answer");
    if (call.name != "query_d_select" || call.answer != Answer::regular || !answered) return false;
    const json& attributes = call.rule->at("answer")[0].at("attributes");
    return std::find(attributes.begin(), attributes.end(), json::array({"Status", 1})) == attributes.end();
}

} // namespace

Reaction reactionTo(const Call& call)
{
    if (call.name == "start_session" || call.name == "end_session") return reactionToSession(call);
    const Row& row = rowOf(call);
    if (isOffline(call)) return stopsDegraded;
    switch (call.answer) {
    case Answer::failed:
        return row.failed;
    case Answer::empty:
        return row.empty;
    case Answer::error:
        return reactionToError(row, call.error);
    case Answer::bare:
        return row.bare;
    case Answer::regular:
        return on;
    }
    return on;
}

bool isCounted(const Call& call)
{
    const Row* row = findRow(call);
    return row != nullptr && row->counted;
}

std::string_view displayNameOf(const Call& call)
{
    const Row* row = findRow(call);
    return row == nullptr ? "" : row->shown;
}

bool showsNothingAsOne(const Call& call)
{
    const Row* row = findRow(call);
    return row != nullptr && row->emptyShown;
}

} // namespace sweep
