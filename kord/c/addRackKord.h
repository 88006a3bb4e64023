// The facility's racks, as the two collectors that walk them ask for them: their queries differ in trace
// lines and in the attributes requested.

#pragma once

#include "addErrLogKord.h"
#include "addQueryTableKord.h"

struct Rack {
    char locationCode[30];
    char rackNumber[10];
    char rackEnclosureMTMS[30];
    int32_t rackIdentifier; ///< unsigned
};

inline constexpr Attribute rackAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Rack::locationCode>},
    {.name = "rackNumber", .field = fieldOf<&Rack::rackNumber>},
    {.name = "rackEnclosureMTMS", .field = fieldOf<&Rack::rackEnclosureMTMS>},
    {.name = "rackIdentifier", .field = fieldOf<&Rack::rackIdentifier>},
};

/// Storage enclosures want no identifier.
inline constexpr std::span<const Attribute> storageRackAttributes = std::span(rackAttributes).first(3);

struct RackQuery {
    std::span<const Attribute> attributes;
    TraceText selectionTrace;
    TraceText callFailed;
    TraceText noResources;
    TraceText responseTrace;
};

/// Consumers of the trace and of events know both under the storage enclosures' name.
constexpr Query rackQueryOf(const RackQuery& row)
{
    return {
        .entry = " addStorEnclKord",
        .session = &kordRec::sess_hndl_SR,
        .className = "Orvik.TarnRack",
        .attributes = row.attributes,
        .selection = "storageFacilityMTMS=\"%s\" ",
        .selectionTrace = row.selectionTrace,
        .callFailed = {.trace = row.callFailed},
        .noResources = {.trace = row.noResources},
        .responseTrace = row.responseTrace,
        .otherError = {.report = {.type = resourcesNotFound}},
    };
}

inline constexpr ToldSubject rackSubject = {
    .things = "the racks",
    .of = "the facility",
    .none = {.cause = "the facility's racks are not configured on the console, or the facility's "
                      "MTMS in the selection is empty",
             .advice = "see that the console shows the racks of the facility in the selection"}};

template <typename Use>
[[nodiscard]] int32_t forEachRack(kordRec* pKordRec, const Query& query, Use use)
{
    return forEachItem<Rack>(pKordRec, query, requestOf(query.selection, pKordRec->storageFacilityMTMS), use);
}
