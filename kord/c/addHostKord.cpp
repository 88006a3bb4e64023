#include "addHostKord.h"

#include "addErrLogKord.h"
#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addXmlKord.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string_view>

namespace
{

struct HostPort {
    char userHostDescription[sizeof userHostDescr::description];
};

constexpr Attribute hostPortAttributes[] = {
    {.name = "userHostDescription", .field = fieldOf<&HostPort::userHostDescription>},
};

void writeNoHosts(const kordRec* pKordRec)
{
    writeHostInventory(pKordRec, "");
}

constexpr Failure noHosts = minorFailure({}, writeNoHosts);

constexpr ErrorCase hostPortErrors[] = {
    {.number = valeError40008, .failure = noHosts},
    {.number = valeError4000a, .failure = noHosts},
};

// No response error fails the run, whatever its number.
constexpr Query hostPortQuery = {
    .entry = " queryScsiHostPort",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnScsiHostPort",
    .attributes = hostPortAttributes,
    .selection = "storageFacilityImageMTMS=\"%s\" && ActivePeerDomain=\"%s\" ",
    .selectionTrace = {"0677", "  %s"},
    .callFailed = {.trace = {"0678 ", " %d, %s"}},
    .noResources = minorFailure({"0679", " no res  array_cnt_shp=%d"}, writeNoHosts),
    .responseTrace = {"0680", " response %d, %s"},
    .errors = hostPortErrors,
    .otherError = {.result = minorError, .instead = writeNoHosts, .writesFirst = true},
    .success = {"0679", " array_cnt_shp=%d"},
};

/// A new record in front of `next`; null when out of memory.
userHostDescr* newDescrRecord(const char* description, userHostDescr* next)
{
    auto* record = static_cast<userHostDescr*>(calloc(1, sizeof(userHostDescr)));
    if (record == nullptr) return nullptr;
    record->count = 1;
    copyText(record->description, description);
    record->nextp = next;
    return record;
}

constexpr TraceText knownHostLine = {"0676", "find %s, %d"};
constexpr TraceText noMemoryLine = {"0677", " add %s"};
constexpr TraceText newHostLine = {"0677", " add %s, %d"};

/// One more port carries the record's description.
void countPort(const kordRec* pKordRec, userHostDescr* record)
{
    ++record->count;
    trace(pKordRec, knownHostLine, record->description, record->count);
}

/// Where a list's records are found by their descriptions, so that a port costs the same however many
/// descriptions there are. Without memory for it there are no slots, and the list itself is searched.
struct DescrIndex {
    size_t size; ///< a power of two, at least twice the number of ports
    userHostDescr** slots;

    explicit DescrIndex(size_t ports)
        : size(std::bit_ceil(2 * ports)), slots(static_cast<userHostDescr**>(malloc(size * sizeof(void*))))
    {
        if (slots != nullptr) std::fill_n(slots, size, nullptr);
    }
    ~DescrIndex() { free(static_cast<void*>(slots)); }
    DescrIndex(const DescrIndex&) = delete;
    DescrIndex& operator=(const DescrIndex&) = delete;

    /// The record's slot, or the empty one where it belongs.
    userHostDescr** slotOf(const char* description) const
    {
        size_t at = std::hash<std::string_view>()(description) & (size - 1);
        while (slots[at] != nullptr && strcmp(slots[at]->description, description) != 0)
            at = (at + 1) & (size - 1);
        return &slots[at];
    }
};

/// Counts a port whose description the list has: 1, or 0 when it has none such.
int32_t findDescr(const kordRec* pKordRec, const DescrIndex& index, userHostDescr** pFirst,
                  const char* description)
{
    if (index.slots == nullptr) return findDescrRecord(pKordRec, pFirst, description);
    userHostDescr* record = *index.slotOf(description);
    if (record == nullptr) return 0;
    countPort(pKordRec, record);
    return 1;
}

/// Folds the ports' descriptions into the list: 0, or -1 when out of memory.
int32_t foldDescriptions(const kordRec* pKordRec, Resources ports, userHostDescr** pFirst)
{
    HostPort port{};
    const DescrIndex index(ports.size());
    for (const ValeQueryResponse& resource : ports) {
        readItem(pKordRec, hostPortQuery, resource, &port);
        const char* description = port.userHostDescription;
        if (*pFirst == nullptr) {
            *pFirst = newDescrRecord(description, nullptr);
            if (*pFirst == nullptr) {
                handleErrKord_new(pKordRec, "Orvik.TarnScsiHostPort", outOfMemory, "out of memory");
                printf("%s %s\n", "Orvik.TarnScsiHostPort", "Out of memory");
                return failed;
            }
        } else if (findDescr(pKordRec, index, pFirst, description) == 1) {
            continue;
        } else if (addDescrRecord(pKordRec, pFirst, description) != 0) {
            return handleErrKord_new(pKordRec, "Orvik.TarnScsiHostPort", outOfMemory, "out of memory");
        }
        if (index.slots != nullptr) *index.slotOf(description) = *pFirst;
    }
    return collected;
}

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &hostPortQuery,
     .subject = {.things = "the host ports, for their descriptions",
                 .of = "an image",
                 .none = {.cause = "no host is configured for the image",
                          .advice = "nothing, where the image has no hosts yet"}}},
};

constexpr ToldLine lines[] = {
    {.function = "queryScsiHostPort",
     .line = knownHostLine,
     .explanation = {.meaning = "one more port with a known host description: how many there are now"}},
    {.function = "queryScsiHostPort",
     .line = noMemoryLine,
     .explanation = {.meaning = "memory ran out at this host description; the run fails, event BED00005",
                     .cause = "the console has no memory left, or the collector's is limited",
                     .advice = "see what takes the console's memory, then run again"}},
    {.function = "queryScsiHostPort",
     .line = newHostLine,
     .explanation = {.meaning = "a new host description"}},
};

} // namespace

const ToldQueries addHostQueries = {.module = "addHostKord", .queries = queries};
const ToldLines addHostLines = {.module = "addHostKord", .lines = lines};

int32_t queryScsiHostPort(kordRec* pKordRec, const char* storageFacilityImageMTMS,
                          const char* activePeerDomain)
{
    const Request request = requestOf(hostPortQuery.selection, storageFacilityImageMTMS, activePeerDomain);
    return runQuery(pKordRec, hostPortQuery, request, [&](Resources ports) {
        userHostDescr* pFirst = nullptr;
        const int32_t rc = foldDescriptions(pKordRec, ports, &pFirst);
        if (rc != failed) writeHostDescription(pKordRec, pFirst);
        freeDescrRecord(pKordRec, &pFirst);
        return rc;
    });
}

int32_t findDescrRecord(const kordRec* pKordRec, userHostDescr** pFirst, const char* description)
{
    for (userHostDescr* record = *pFirst; record != nullptr; record = record->nextp) {
        if (strncmp(record->description, description, sizeof record->description - 1) != 0) continue;
        countPort(pKordRec, record);
        return 1;
    }
    return 0;
}

int32_t addDescrRecord(const kordRec* pKordRec, userHostDescr** pFirst, const char* description)
{
    userHostDescr* record = newDescrRecord(description, *pFirst);
    if (record == nullptr) {
        trace(pKordRec, noMemoryLine, description);
        return -1;
    }
    *pFirst = record;
    trace(pKordRec, newHostLine, record->description, record->count);
    return 0;
}

void freeDescrRecord(const kordRec* /*pKordRec*/, userHostDescr** pFirst)
{
    while (*pFirst != nullptr) {
        userHostDescr* next = (*pFirst)->nextp;
        free(*pFirst);
        *pFirst = next;
    }
}
