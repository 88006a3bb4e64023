// The queries that no run makes. They belong to the interfaces of addCecEnclKord and addQuayEnclKord.

#include "addCecEnclKord.h"
#include "addQuayEnclKord.h"
#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addXmlKord.h"

namespace
{

// --- Power states: the checks ask qmstat whether a system is operating.

constexpr Attribute facilityAttributes[] = {{.name = "PowerState"}};

constexpr Query facilityQuery = {
    .entry = " querySFState",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStorageFacility",
    .call = Call::dynamicQuery,
    .attributes = facilityAttributes,
    .selection = "storageFacilityMTMS=\"%s\"",
    .callFailed = {.trace = {"0100", " SF rRc= %d, %s"}},
    .noResources = {.trace = {"0101", " no res  array_cnt_sf=%d"}},
    .responseTrace = {"0101", " response %d, %s"},
    .otherError = {.report = underFunction},
    .emptyFirst = {.trace = {"0101", " no res  array_cnt_sf=%d"}},
};
constexpr Failure badFacilityState = {.trace = {"0102", " power state =%d"}};

constexpr Attribute systemAttributes[] = {{.name = "powerRunState"}};

constexpr Query systemQuery = {
    .entry = " querySFSystemState",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStorageFacilitySystem",
    .call = Call::dynamicQuery,
    .attributes = systemAttributes,
    .selection = "managedSystemMTMS=\"%s\"",
    .selectionTrace = {"0103", "%s"},
    .callFailed = {.trace = {"0103", " SF returned %d, %s"}},
    .noResources = {.trace = {"0104", " no res  array_cnt_sfs=%d"}},
    .responseTrace = {"0104", " response error %d, %s"},
    .otherError = {.report = underFunction},
    .emptyFirst = {.trace = {"0104", " no res  array_cnt_sfs=%d"}},
};
constexpr Failure badSystemState = {.trace = {"0105", " power run state =%d"}};

/// The one attribute of the first response must have the expected value.
int32_t checkPower(kordRec* pKordRec, const Query& query, const char* mtms, int32_t expected,
                   const Failure& bad)
{
    return runQuery(pKordRec, query, requestOf(query.selection, mtms), [&](Resources found) {
        const int32_t state = integerOf(found[0].attributes[0]);
        return state == expected ? collected : fail(pKordRec, query, bad, state);
    });
}

// --- A console's rack, which the document does not show

struct Enclosure {
    char rackEnclosureMTMS[100];
};

constexpr Attribute enclosureAttributes[] = {
    {.name = "rackEnclosureMTMS", .field = fieldOf<&Enclosure::rackEnclosureMTMS>},
};

constexpr Query enclosureQuery = {
    .entry = " queryRackEnclMTMS",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnRack",
    .attributes = enclosureAttributes,
    .selection = "(storageFacilityMTMS=\"%s\") && (rackNumber=\"%s\")",
    .callFailed = {.trace = {"0515", "  rack %d, %s"}},
    .noResources = {.trace = {"0515", " no res  array_cnt_rack=%d"}},
    .responseTrace = {"0516", "response %d, %s"},
    .otherError = {.report = underFunction},
};

// --- A console's account, which the document does not show

struct StoragePlex {
    char storagePlexAccountName[100];
};

constexpr Attribute plexAttributes[] = {
    {.name = "storagePlexAccountName", .field = fieldOf<&StoragePlex::storagePlexAccountName>},
};

constexpr Query plexQuery = {
    .entry = " queryStoragePlex",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStoragePlex",
    .attributes = plexAttributes,
    .selection = "ActivePeerDomain=\"%s\" ",
    .callFailed = {.trace = {"0511", " plex %d, %s"}},
    .noResources = {.trace = {"0517", " no res array_cnt_plex=%d"}},
    .responseTrace = {"0511", " response  %d, %s"},
    .otherError = {.report = underFunction},
};

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &facilityQuery,
     .subject = {.things = "the power state",
                 .of = "the facility",
                 .none = {.cause = "the facility is not known to the console",
                          .advice = "see that the facility is configured"}}},
    {.query = &systemQuery,
     .subject = {.things = "the power state",
                 .of = "the managed system",
                 .none = {.cause = "the system is not known to the console",
                          .advice = "see that the system is configured"}}},
    {.query = &enclosureQuery,
     .subject = {.things = "the MTMS",
                 .of = "a rack",
                 .none = {.cause = "the facility has no rack of that number",
                          .advice = "see which racks the facility has"}}},
    {.query = &plexQuery,
     .subject = {.things = "the storage plex",
                 .of = "the facility",
                 .none = {.cause = "no storage plex is configured",
                          .advice = "see that the storage plex is configured"}}},
};

constexpr ToldFailure walkFailures[] = {
    {.query = &facilityQuery, .failure = &badFacilityState},
    {.query = &systemQuery, .failure = &badSystemState},
};

} // namespace

const ToldQueries addUncalledQueries = {
    .module = "addUncalledKord", .queries = queries, .failures = walkFailures};

int32_t querySFState(kordRec* pKordRec)
{
    constexpr int32_t off = 0;
    return checkPower(pKordRec, facilityQuery, pKordRec->storageFacilityMTMS, off, badFacilityState);
}

int32_t querySFSystemState(kordRec* pKordRec)
{
    constexpr int32_t running = 6;
    return checkPower(pKordRec, systemQuery, pKordRec->managedSystemMTMS, running, badSystemState);
}

int32_t queryRackEnclMTMS(kordRec* pKordRec, const char* rackNumber)
{
    const Request request = requestOf(enclosureQuery.selection, pKordRec->storageFacilityMTMS, rackNumber);
    return runQuery(pKordRec, enclosureQuery, request, [&](Resources racks) {
        Enclosure rack{};
        readItem(pKordRec, enclosureQuery, racks[0], &rack);
        // Consumers receive the facility's MTMS here, not the rack's.
        writeRackEnclMTMS(pKordRec, pKordRec->storageFacilityMTMS);
        return collected;
    });
}

int32_t queryStoragePlex(kordRec* pKordRec)
{
    const Request request = requestOf(plexQuery.selection, pKordRec->activePeerDomain_quay);
    return forEachValue<StoragePlex>(pKordRec, plexQuery, request, [&](const StoragePlex& plex) {
        return writeStorPlex(pKordRec, plex.storagePlexAccountName);
    });
}
