#include "addPartitionKord.h"

#include "addErrLogKord.h"
#include "addHAPortKord.h"
#include "addLogVolKord.h"
#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string_view>

namespace
{

constexpr const char* imageSelection = "storageFacilityImageMTMS=\"%s\" && ActivePeerDomain=\"%s\"";

// --- Partitions

struct Partition {
    char locationCode[30];
};

constexpr Attribute partitionAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Partition::locationCode>},
};

constexpr Query partitionQuery = {
    .function = "addPartitionKord",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStorageFacilityPartition",
    .attributes = partitionAttributes,
    .selection = "managedSystemMTMS=\"%s\" && hslLumenPoolId=\"%s\" ",
    .selectionTrace = {"0695 ", "%s"},
    .callFailed = {.trace = {"0696", "sfp %d %s"}},
    .noResources = {.trace = {"0697", "no res  array_cnt_sfp=%d"}},
    .responseTrace = {"0698", "response %d, %s"},
};

// --- Memory and processors

/// The texts as they arrive; each fits a field of its own.
struct Memory {
    char mmReserve1DesiredMem[9];
    char desiredMem[9];
    char mmReserve2DesiredMem[9];
    char desiredProcs[9];
};

constexpr Attribute memoryAttributes[] = {
    {.name = "mmReserve1DesiredMem", .field = fieldOf<&Memory::mmReserve1DesiredMem>},
    {.name = "desiredMem", .field = fieldOf<&Memory::desiredMem>},
    {.name = "mmReserve2DesiredMem", .field = fieldOf<&Memory::mmReserve2DesiredMem>},
    {.name = "desiredProcs", .field = fieldOf<&Memory::desiredProcs>},
};

constexpr Query memoryQuery = {
    .entry = " queryMemoryProc",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStorageFacilityPartition",
    .attributes = memoryAttributes,
    .selection = "managedSystemMTMS=\"%s\" && lparName=\"%s\"",
    .selectionTrace = {"0600", "  %s"},
    .callFailed = {.trace = {"0601", " %d, %s"}},
    .noResources = {.trace = {"0602", " no res  array_cnt=%d"}},
    .responseTrace = {"0603", " response  %d, %s"},
};

// --- Microcode levels

void writeNoVRMF(const kordRec* pKordRec)
{
    writeVRMF(pKordRec, "");
}

constexpr Failure noVRMF = minorFailure({}, writeNoVRMF);

constexpr ErrorCase serverPartitionErrors[] = {
    {.number = valeError40008, .failure = noVRMF},
};

constexpr Query serverPartitionQuery = {
    .entry = " enumerateVRMF",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnServerPartition",
    .call = Call::enumeration,
    .selection = "locationCode=\"%s\" && ActivePeerDomain=\"%s\"",
    .selectionTrace = {"0607", "  %s"},
    .callFailed = {.trace = {"0608", " svp %d, %s"}},
    .noResources = {.trace = {"0609", "  no enum response enumCount_svp=%d"}},
    .responseTrace = {"0610", " enum response %d, %s"},
    .errors = serverPartitionErrors,
    .emptyFirst = minorFailure({"0611", " Orvik.TarnServerPartition  no res handle found %d"}, writeNoVRMF),
};

constexpr ErrorCase imageLevelErrors[] = {
    {.number = valeError40008, .failure = noVRMF},
    {.number = valeError4000a, .failure = noVRMF},
};

constexpr Report levelMessage = {
    .kind = Report::Kind::withMessage, .name = "queryImageLevel", .type = valeCallFailed};

/// The class action on a server partition; events carry the name "queryImageLevel", which is no function's.
constexpr Query imageLevelAction = {
    .function = "queryImageLevel",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnServerPartition",
    .call = Call::action,
    .action = "queryRunningImageLevel",
    .callFailed = {.trace = {"0612", " %d, %s"}, .report = {.name = "enumerateVRMF"}},
    .noResources = {.trace = {"0613", " response  %d, %s"}, .report = levelMessage},
    .responseTrace = {"0613", " response  %d, %s"},
    .errors = imageLevelErrors,
    .otherError = {.report = levelMessage},
    .success = {"0613", " array_cnt_svp=%d"},
};
constexpr Failure emptyImageLevel = {.trace = {"614", " element_count=%d"},
                                     .report = {.type = valeCallFailed}};
constexpr Failure imageLevelRefused = {.trace = {"614", " error rc=%d"}, .report = {.type = valeCallFailed}};

constexpr TraceText levelLine = {"0614", " vrmf=%s"};
constexpr TraceText handlesLine = {"0611", " vale_rsrc_handle_count=%d"};

/// One element of the action's result: a return code, which must be 0, or a level.
int32_t writeLevel(kordRec* pKordRec, const ValeElement& element)
{
    if (element.type == VALE_INTEGER || element.type == VALE_UNSIGNED) {
        const int32_t rc = element.value.integer;
        return rc != 0 ? fail(pKordRec, imageLevelAction, imageLevelRefused, rc) : collected;
    }
    const char* text = element.type == VALE_TEXT ? textOrEmpty(element.value.text) : "";
    char vrmf[100];
    trace(pKordRec, levelLine, text);
    copyText(vrmf, text);
    writeVRMF(pKordRec, vrmf);
    return collected;
}

int32_t writeLevels(kordRec* pKordRec, ActionResults results)
{
    for (const ValeActionResponse& response : results) {
        if (sizeOf(response) == 0) return fail(pKordRec, imageLevelAction, emptyImageLevel, 0);
        for (const ValeElement& element : std::span{response.result.elements, response.result.count}) {
            if (writeLevel(pKordRec, element) == failed) return failed;
        }
    }
    return collected;
}

// --- The image's node name

void writeNoWWNN(const kordRec* pKordRec)
{
    writeSFImageWWNN(pKordRec, "");
}

constexpr Attribute imageAttributes[] = {{.name = "storageFacilityImageWWNN"}};

constexpr Failure noWWNN = minorFailure({}, writeNoWWNN);

constexpr ErrorCase imageErrors[] = {
    {.number = valeError40008, .failure = noWWNN},
    {.number = valeError4000a, .failure = noWWNN},
    {.number = valeError4000d,
     .failure = {.report = underFunction, .result = minorError, .flag = true, .instead = writeNoWWNN}},
};

// The entry line's misspelling is what consumers of the trace look for.
constexpr Query imageQuery = {
    .entry = " SFIamgeWWNN",
    .function = "querySFImageWWNN",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnStorageFacilityImage",
    .attributes = imageAttributes,
    .selection = imageSelection,
    .selectionTrace = {"0621", "  %s"},
    .callFailed = {.trace = {"0622", " sfi %d, %s"}},
    .noResources = {.trace = {"0623", " no res  array_cnt_sfi=%d"}},
    .responseTrace = {"0624", " response %d, %s"},
    .errors = imageErrors,
};

// --- Counts of objects

constexpr ErrorCase objectErrors[] = {
    {.number = valeError40008, .failure = minorFailure()},
    {.number = valeError4000a, .failure = minorFailure()},
    {.number = valeError30002, .failure = minorFailure()},
};

constexpr CounterFamily objects = {
    .selectionTrace = "  %s",
    .emptyEnumeration = " no enum response enumCount_hap=%d",
    .minorErrors = objectErrors,
    .total = " cound %d, %d",
};

constexpr Counter object(const CounterRow& row)
{
    return counterOf(row, objects);
}

constexpr Counter objectCounters[] = {
    object({.entry = " enumerateVolumeGroup",
            .className = "Orvik.TarnVolumeGroup",
            .codes = {"0625", "0625", "0627", "0628", "0629"},
            .selection = imageSelection,
            .callFailed = " HAPort %d, %s"}),
    object({.entry = " enumerateScsiHostPort",
            .className = "Orvik.TarnScsiHostPort",
            .codes = {"0630", "0631 ", "0632", "0634", "0635"},
            .selection = imageSelection,
            .callFailed = "ScsiHostPort %d, %s"}),
    object({.entry = " enumerateTeskHost",
            .className = "Orvik.TarnTeskHost",
            .codes = {"0636", "0637 ", "0638 ", "0639", "0640"},
            .selection = imageSelection,
            .callFailed = " TeskHost %d, %s"}),
    object({.entry = " enumerateLogicalCKDLssObj",
            .className = "Orvik.TarnLogicalSubsystem",
            .codes = {"0641", "0642", "0643", "0644", "0645"},
            .selection = "storageFacilityImageMTMS=\"%s\" && deviceType=\"CKD\" && ActivePeerDomain=\"%s\"",
            .callFailed = " LogicalSubSystem %d, %s"}),
    object({.entry = " enumerateLogicalFBLssObj",
            .className = "Orvik.TarnLogicalSubsystem",
            .codes = {"0646 ", "0647", "0648", "0649", "0650"},
            .selection = "storageFacilityImageMTMS=\"%s\" && deviceType=\"FB\" && ActivePeerDomain=\"%s\" ",
            .callFailed = "  LogicalSubSystem %d, %s"}),
};

/// All counts of a partition's logical-configuration line. They are not cleared between partitions.
struct Counts {
    int32_t v0, v1, v2, v3, v4, v5, v6, v7; ///< logical volumes
    int32_t p0, p1, p2, p3, p4;             ///< host adapter ports
    int32_t obj0, obj1, obj2, obj3, obj4;   ///< objects; obj2 is never counted
    int32_t h0, h1, h2, h3;                 ///< memory and processors
};

struct Count {
    int32_t (*enumerate)(kordRec*, int32_t*, const char*, const char*);
    int32_t Counts::*slot;
};

/// In the order in which they are taken.
constexpr Count counts[] = {
    {enumerateLogicalVolume0, &Counts::v0},    {enumerateLogicalVolume1, &Counts::v1},
    {enumerateLogicalVolume2, &Counts::v2},    {enumerateLogicalVolume3, &Counts::v3},
    {enumerateLogicalVolume4, &Counts::v4},    {enumerateLogicalVolume5, &Counts::v5},
    {enumerateLogicalVolume6, &Counts::v6},    {enumerateLogicalVolume7, &Counts::v7},
    {enumerateHAPort0, &Counts::p0},           {enumerateHAPort1, &Counts::p1},
    {enumerateHAPort2, &Counts::p2},           {enumerateHAPort3, &Counts::p3},
    {enumerateHAPort4, &Counts::p4},           {enumerateVolumeGroup, &Counts::obj0},
    {enumerateScsiHostPort, &Counts::obj1},    {enumerateLogicalCKDLssObj, &Counts::obj3},
    {enumerateLogicalFBLssObj, &Counts::obj4},
};

void writeCounts(const kordRec* pKordRec, const Counts& c)
{
    char logicalConfiguration1[100];
    char logicalConfiguration2[100];
    char logicalConfiguration3[100];
    char logicalConfiguration4[100];
    char logicalConfiguration[500];
    formatText(logicalConfiguration1, "v0=%d,v1=%d,v2=%d,v3=%d,v4=%d,v5=%d,v6=%d,v7=%d", c.v0, c.v1, c.v2,
               c.v3, c.v4, c.v5, c.v6, c.v7);
    formatText(logicalConfiguration2, "p0=%d,p1=%d,p2=%d,p3=%d,p4=%d", c.p0, c.p1, c.p2, c.p3, c.p4);
    formatText(logicalConfiguration3, "o0=%d,o1=%d,o2=%d,o3=%d,o4=%d", c.obj0, c.obj1, c.obj2, c.obj3,
               c.obj4);
    formatText(logicalConfiguration4, "h0=%d,h1=%d,h2=%d,h3=%d", c.h0, c.h1, c.h2, c.h3);
    formatText(logicalConfiguration, "%s,%s,%s,%s", logicalConfiguration1, logicalConfiguration2,
               logicalConfiguration3, logicalConfiguration4);
    writeLogcialConfig(pKordRec, logicalConfiguration);
}

// --- Host descriptions

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

// --- Storage configuration. All four kinds are collected alike.

constexpr const char* storageSelection = "storageFacilityImageMTMS=\"%s\" && ActivePeerDomain=\"%s\" ";

constexpr ErrorCase storageErrors[] = {
    {.number = valeError40008, .failure = minorFailure()},
    {.number = valeError4000a, .failure = minorFailure()},
};

/// Queries the parts and writes each, inside a list that is opened with the first of them.
template <typename Item, typename Write>
int32_t collectParts(kordRec* pKordRec, const Query& query, const char* storageFacilityImageMTMS,
                     const char* activePeerDomain, int32_t* listIsOpen, int32_t (*openList)(const kordRec*),
                     int32_t (*closeList)(const kordRec*), Write write)
{
    char kordpStorageFacilityImageMTMS[30];
    convertStringFromMMToDash(kordpStorageFacilityImageMTMS, storageFacilityImageMTMS);
    const Request request = requestOf(query.selection, storageFacilityImageMTMS, activePeerDomain);

    return runQuery(pKordRec, query, request, [&](Resources parts) {
        Item item{};
        for (const ValeQueryResponse& resource : parts) { // never none
            readItem(pKordRec, query, resource, &item);
            if (*listIsOpen == 0) openList(pKordRec);
            *listIsOpen = 1;
            write(item, kordpStorageFacilityImageMTMS);
        }
        closeList(pKordRec);
        return collected;
    });
}

struct ArraySite {
    int32_t arraySite;
    int32_t array;
    int32_t arrayPosition;
    int32_t daPair;
    int32_t diskCapacity;
    int32_t diskRPM;
};

constexpr Attribute arraySiteAttributes[] = {
    {.name = "arraySite", .field = fieldOf<&ArraySite::arraySite>},
    {.name = "array", .field = fieldOf<&ArraySite::array>},
    {.name = "arrayPosition", .field = fieldOf<&ArraySite::arrayPosition>},
    {.name = "daPair", .field = fieldOf<&ArraySite::daPair>},
    {.name = "diskCapacity", .field = fieldOf<&ArraySite::diskCapacity>},
    {.name = "diskRPM", .field = fieldOf<&ArraySite::diskRPM>},
};

constexpr Query arraySiteQuery = {
    .entry = " queryArraySites",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnArraySite",
    .attributes = arraySiteAttributes,
    .selection = storageSelection,
    .selectionTrace = {"0677", "  %s"},
    .callFailed = {.trace = {"0678 ", " %d, %s"}},
    .noResources = {.trace = {"0679", " no res  array_cnt_sit=%d"}},
    .responseTrace = {"0680", " response %d, %s"},
    .errors = storageErrors,
    .success = {"0679", " array_cnt_sit=%d, attr_count_sit=%d"},
    .progress = " writeArraySite open/close resource",
};

struct Array {
    char arraySites[30];
    int32_t rank;
    char serialNumber[17];
    char arraySiteConfiguration[20];
    int32_t rankPosition;
    int32_t daPair;
    int32_t diskCapacity;
    int32_t diskRPM;
    char raidType[9];
};

constexpr TraceText sitesLine = {"0686", "element_count=%d, arraySites= %s"};
constexpr TraceText sitesConfigurationLine = {"0687 ", "count= %d, arraySiteConfiguration=%s"};

/// The first site's digits stand twice, [3, 4] gives 33,4, and no site gives 0: the array's identifier
/// carries this text.
void readArraySites(const kordRec* pKordRec, const ValeAttribute& attribute, Field field)
{
    const std::span<const int32_t> sites = integersOf(attribute);
    if (sites.empty())
        copyText(field.text, "0");
    else
        formatText(field.text, "%d%d", sites[0], sites[0]);
    for (size_t i = 1; i < sites.size(); ++i)
        appendText(field.text, ",%d", sites[i]);
    trace(pKordRec, sitesLine, static_cast<int32_t>(sites.size()), field.text.data());
}

void readArraySiteConfiguration(const kordRec* pKordRec, const ValeAttribute& attribute, Field field)
{
    const std::span<const char* const> texts = textsOf(attribute);
    copyText(field.text, texts.empty() ? "" : texts[0]);
    for (size_t i = 1; i < texts.size(); ++i)
        appendText(field.text, ",%s", textOrEmpty(texts[i]));
    trace(pKordRec, sitesConfigurationLine, static_cast<int32_t>(texts.size()), field.text.data());
}

constexpr Attribute arrayAttributes[] = {
    {.name = "arraySites", .field = fieldOf<&Array::arraySites>, .read = readArraySites},
    {.name = "rank", .field = fieldOf<&Array::rank>},
    {.name = "serialNumber", .field = fieldOf<&Array::serialNumber>},
    {.name = "arraySiteConfiguration",
     .field = fieldOf<&Array::arraySiteConfiguration>,
     .read = readArraySiteConfiguration},
    {.name = "rankPosition", .field = fieldOf<&Array::rankPosition>},
    {.name = "daPair", .field = fieldOf<&Array::daPair>},
    {.name = "diskCapacity", .field = fieldOf<&Array::diskCapacity>},
    {.name = "diskRPM", .field = fieldOf<&Array::diskRPM>},
    {.name = "raidType", .field = fieldOf<&Array::raidType>},
};

constexpr Query arrayQuery = {
    .entry = " queryArrays",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnArray",
    .attributes = arrayAttributes,
    .selection = storageSelection,
    .selectionTrace = {"0681", "  %s"},
    .callFailed = {.trace = {"0682", "  %d, %s"}},
    .noResources = {.trace = {"0683", " no res  array_cnt_arr=%d"}},
    .responseTrace = {"0684", " response %d, %s"},
    .errors = storageErrors,
    .success = {"0685 ", " array_cnt_arr=%d, attr_count_arr=%d"},
    .progress = " writeArray open/close resource",
};

struct Rank {
    int32_t rank;
    int32_t segmentPool;
    char serialNumber[17];
    int32_t segmentType;
    int32_t numberSegments;
    int32_t rankGroup;
};

constexpr Attribute rankAttributes[] = {
    {.name = "rank", .field = fieldOf<&Rank::rank>},
    {.name = "segmentPool", .field = fieldOf<&Rank::segmentPool>},
    {.name = "serialNumber", .field = fieldOf<&Rank::serialNumber>},
    {.name = "segmentType", .field = fieldOf<&Rank::segmentType>},
    {.name = "numberSegments", .field = fieldOf<&Rank::numberSegments>},
    {.name = "rankGroup", .field = fieldOf<&Rank::rankGroup>, .kept = true},
};

constexpr Query rankQuery = {
    .entry = " queryRanks",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnRank",
    .attributes = rankAttributes,
    .selection = storageSelection,
    .selectionTrace = {"0687", "  %s"},
    .callFailed = {.trace = {"0688", " %d, %s"}},
    .noResources = {.trace = {"0689", " no res  array_cnt_rank=%d"}},
    .responseTrace = {"0690 ", "response  %d, %s"},
    .errors = storageErrors,
    .success = {"0691", "array_cnt_rank=%d, attr_count_rank=%d"},
    .progress = " writeRank open/close resource",
};

struct SegmentPool {
    int32_t segmentPool;
    int32_t segmentType;
    int32_t numberSegments;
    int32_t segmentLimit;
    int32_t numbervirtualSegments;
    int32_t virtualSegmentLimit;
    int32_t rankGroup;
};

// Virtual segments are requested under one spelling and looked for under another: consumers know pools with
// 0.
constexpr Attribute segmentPoolAttributes[] = {
    {.name = "segmentPool", .field = fieldOf<&SegmentPool::segmentPool>},
    {.name = "segmentType", .field = fieldOf<&SegmentPool::segmentType>},
    {.name = "numberSegments", .field = fieldOf<&SegmentPool::numberSegments>},
    {.name = "segmentLimit", .field = fieldOf<&SegmentPool::segmentLimit>},
    {.name = "numberVirtualSegments",
     .field = fieldOf<&SegmentPool::numbervirtualSegments>,
     .matched = "numbervirtualSegments"},
    {.name = "virtualSegmentLimit", .field = fieldOf<&SegmentPool::virtualSegmentLimit>},
    {.name = "rankGroup", .field = fieldOf<&SegmentPool::rankGroup>},
};

constexpr Query segmentPoolQuery = {
    .entry = " querySegmentPools",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnSegmentPool",
    .attributes = segmentPoolAttributes,
    .selection = storageSelection,
    .selectionTrace = {"0691", "%s"},
    .callFailed = {.trace = {"0692", "%d, %s"}, .print = "%s %d, %s\n"},
    .noResources = {.trace = {"0693", "no res  array_cnt_seg=%d"}},
    .responseTrace = {"0694 ", "response %d, %s"},
    .errors = storageErrors,
    .success = {"0695", "array_cnt_seg=%d, attr_count_seg=%d"},
    .progress = " writeSegmentPool open/close resource",
};

using QueryParts = decltype(&queryArraySites);

/// What an image's storage configuration holds, in the document's order.
constexpr QueryParts storageParts[] = {queryArraySites, queryArrays, queryRanks, querySegmentPools};

// --- One partition

int32_t addCounts(kordRec* pKordRec, int32_t i, Counts& values)
{
    for (const Count& count : counts) {
        const int32_t rc =
            count.enumerate(pKordRec, &(values.*count.slot), pKordRec->StorageFacilityImageMTMS[i],
                            pKordRec->StorageFacilityImageID[i]);
        if (rc == failed) return failed;
    }
    // The first partition's name stands for every partition here.
    if (queryMemoryProc(pKordRec, pKordRec->lparName[0], &values.h0, &values.h1, &values.h2, &values.h3) ==
        failed) {
        return failed;
    }
    writeCounts(pKordRec, values);
    return collected;
}

int32_t addStorageConfiguration(kordRec* pKordRec, int32_t i, const char* kordpStorageFacilityImageMTMS)
{
    int32_t rc = collected;
    openStorConfigResourceList(pKordRec);
    openStorConfigResource(pKordRec, kordpStorageFacilityImageMTMS);
    for (const QueryParts queryParts : storageParts) {
        int32_t listIsOpen = 0;
        rc = queryParts(pKordRec, pKordRec->StorageFacilityImageMTMS[i], pKordRec->LParID[i],
                        pKordRec->StorageFacilityImageID[i], &listIsOpen);
        if (rc == failed) break;
    }
    closeStorConfigResource(pKordRec);
    closeStorConfigResourceList(pKordRec);
    return rc;
}

/// Everything inside a partition's resource, in the document's order: 0, -1, or 1 when the node name failed.
int32_t addPartitionContent(kordRec* pKordRec, int32_t i, const char* locationCode, Counts& values)
{
    const char* image = pKordRec->StorageFacilityImageMTMS[i];
    const char* domain = pKordRec->StorageFacilityImageID[i];
    char kordpStorageFacilityImageMTMS[30];
    convertStringFromMMToDash(kordpStorageFacilityImageMTMS, image);

    writeSFI(pKordRec, kordpStorageFacilityImageMTMS);
    if (enumerateVRMF(pKordRec, image, locationCode, domain) == failed) return failed;
    if (querySFImageWWNN(pKordRec, image, domain) == failed) return reported;
    writeHSLPool(pKordRec, pKordRec->hslLumenPoolId[i]);
    if (addCounts(pKordRec, i, values) == failed) return failed;
    if (queryScsiHostPort(pKordRec, image, domain) == failed) return failed;
    return addStorageConfiguration(pKordRec, i, kordpStorageFacilityImageMTMS) == failed ? failed : collected;
}

int32_t addPartition(kordRec* pKordRec, int32_t i, Counts& values)
{
    const Request request =
        requestOf(partitionQuery.selection, pKordRec->managedSystemMTMS, pKordRec->hslLumenPoolId[i]);
    return runQuery(pKordRec, partitionQuery, request, [&](Resources partitions) {
        Partition partition{};
        readItem(pKordRec, partitionQuery, partitions[0], &partition);
        char uniqueId[50];
        formatText(uniqueId, "%s-%s", pKordRec->kordpManagedSystemMTMS, pKordRec->LParID[i]);
        openPartitionResource(pKordRec, uniqueId, pKordRec->lparName[i]);
        const int32_t rc = addPartitionContent(pKordRec, i, partition.locationCode, values);
        closePartitionResource(pKordRec);
        return rc;
    });
}

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &partitionQuery},
    {.query = &memoryQuery},
    {.query = &serverPartitionQuery},
    {.query = &imageLevelAction, .function = "enumerateVRMF"},
    {.query = &imageQuery, .function = "querySFImageWWNN"},
    {.query = &hostPortQuery},
    {.query = &arraySiteQuery},
    {.query = &arrayQuery},
    {.query = &rankQuery},
    {.query = &segmentPoolQuery},
};

constexpr ToldFailure walkFailures[] = {
    {.query = &imageLevelAction, .failure = &emptyImageLevel},
    {.query = &imageLevelAction, .failure = &imageLevelRefused},
};

constexpr ToldLine lines[] = {
    {.function = "enumerateVRMF", .line = levelLine, .explanation = {.meaning = "a microcode level"}},
    {.function = "enumerateVRMF",
     .line = handlesLine,
     .explanation = {.meaning = "how many server partitions there are"}},
    {.function = "queryScsiHostPort",
     .line = knownHostLine,
     .explanation = {.meaning = "one more port with a known host description: how many there are now"}},
    {.function = "queryScsiHostPort",
     .line = noMemoryLine,
     .explanation = {.meaning = "memory ran out at this host description"}},
    {.function = "queryScsiHostPort",
     .line = newHostLine,
     .explanation = {.meaning = "a new host description"}},
    {.function = "queryArrays",
     .line = sitesLine,
     .explanation = {.meaning = "an array's sites: how many, and the list"}},
    {.function = "queryArrays",
     .line = sitesConfigurationLine,
     .explanation = {.meaning = "an array's configuration: how many texts, and the list"}},
};

} // namespace

const ToldQueries addPartitionQueries = {
    .module = "addPartitionKord", .queries = queries, .counters = objectCounters, .failures = walkFailures};
const ToldLines addPartitionLines = {.module = "addPartitionKord", .lines = lines};

int32_t addPartitionKord(kordRec* pKordRec)
{
    trace(pKordRec, "==>", " addPartitionKord");
    Counts values{};
    int32_t rc = collected;
    for (int32_t i = 0; i < partitionCount(pKordRec) && rc == collected; ++i)
        rc = addPartition(pKordRec, i, values);
    return rc;
}

int32_t queryMemoryProc(kordRec* pKordRec, const char* lparName, int32_t* h0, int32_t* h1, int32_t* h2,
                        int32_t* h3)
{
    constexpr int base = 10;
    constexpr int32_t unit = 1024;
    const auto numberOf = [](const char* text) { return static_cast<int32_t>(strtol(text, nullptr, base)); };
    const Request request = requestOf(memoryQuery.selection, pKordRec->managedSystemMTMS, lparName);

    return runQuery(pKordRec, memoryQuery, request, [&](Resources partitions) {
        Memory memory{};
        const auto attributes = attributesOf(memoryQuery, partitions[0]);
        for (size_t i = 0; i < attributes.size(); ++i) {
            const char* name = textOrEmpty(attributes[i].name);
            readAttribute(pKordRec, memoryQuery, attributes[i], i, &memory);
            if (strcmp(name, "mmReserve1DesiredMem") == 0) *h1 = numberOf(memory.mmReserve1DesiredMem) / unit;
            // The desired memory is taken from the second reserve, as far as that has arrived before it.
            if (strcmp(name, "desiredMem") == 0) *h0 = numberOf(memory.mmReserve2DesiredMem) / unit;
            if (strcmp(name, "mmReserve2DesiredMem") == 0) *h2 = numberOf(memory.mmReserve2DesiredMem) / unit;
            if (strcmp(name, "desiredProcs") == 0) *h3 = numberOf(memory.desiredProcs);
        }
        return collected;
    });
}

int32_t enumerateVRMF(kordRec* pKordRec, const char* /*storageFacilityImageMTMS*/, const char* locationCode,
                      const char* activePeerDomain)
{
    const Request request = requestOf(serverPartitionQuery.selection, locationCode, activePeerDomain);
    return runEnumeration(pKordRec, serverPartitionQuery, request, [&](Enumeration found) {
        trace(pKordRec, handlesLine, static_cast<int32_t>(found[0].handleCount));
        return runAction(pKordRec, imageLevelAction, found[0].handles[0], "S",
                         [&](ActionResults results) { return writeLevels(pKordRec, results); });
    });
}

int32_t querySFImageWWNN(kordRec* pKordRec, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    const Request request = requestOf(imageQuery.selection, storageFacilityImageMTMS, activePeerDomain);
    return runQuery(pKordRec, imageQuery, request, [&](Resources images) {
        char wwnn[100] = "";
        for (const ValeAttribute& attribute : attributesOf(imageQuery, images[0])) {
            if (!holdsText(imageQuery, attribute)) continue;
            copyText(wwnn, textOf(attribute));
            break;
        }
        writeSFImageWWNN(pKordRec, wwnn);
        return collected;
    });
}

int32_t enumerateVolumeGroup(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                             const char* activePeerDomain)
{
    return countResources(pKordRec, objectCounters[0], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateScsiHostPort(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                              const char* activePeerDomain)
{
    return countResources(pKordRec, objectCounters[1], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateTeskHost(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                          const char* activePeerDomain)
{
    return countResources(pKordRec, objectCounters[2], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalCKDLssObj(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                  const char* activePeerDomain)
{
    return countResources(pKordRec, objectCounters[3], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalFBLssObj(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                 const char* activePeerDomain)
{
    return countResources(pKordRec, objectCounters[4], count, storageFacilityImageMTMS, activePeerDomain);
}

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
        if (strcmp(record->description, description) != 0) continue;
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

int32_t queryArraySites(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                        const char* activePeerDomain, int32_t* openArraySitesResList)
{
    const auto write = [&](const ArraySite& site, const char* image) {
        writeArraySite(pKordRec, site.arraySite, image, site.array, site.arrayPosition, site.daPair,
                       site.diskCapacity, site.diskRPM, lparId);
    };
    return collectParts<ArraySite>(pKordRec, arraySiteQuery, storageFacilityImageMTMS, activePeerDomain,
                                   openArraySitesResList, openArraySitesResourceList,
                                   closeArraySitesResourceList, write);
}

int32_t queryArrays(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                    const char* activePeerDomain, int32_t* openArraysResList)
{
    const auto write = [&](const Array& array, const char* image) {
        writeArray(pKordRec, array.arraySites, image, array.serialNumber, array.raidType,
                   array.arraySiteConfiguration, array.daPair, array.diskCapacity, array.diskRPM, array.rank,
                   array.rankPosition, lparId);
    };
    return collectParts<Array>(pKordRec, arrayQuery, storageFacilityImageMTMS, activePeerDomain,
                               openArraysResList, openArraysResourceList, closeArraysResourceList, write);
}

int32_t queryRanks(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                   const char* activePeerDomain, int32_t* openRanksResList)
{
    const auto write = [&](const Rank& rank, const char* image) {
        writeRank(pKordRec, rank.rank, image, rank.segmentPool, rank.serialNumber, rank.segmentType,
                  rank.numberSegments, rank.rankGroup, lparId);
    };
    return collectParts<Rank>(pKordRec, rankQuery, storageFacilityImageMTMS, activePeerDomain,
                              openRanksResList, openRanksResourceList, closeRanksResourceList, write);
}

int32_t querySegmentPools(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                          const char* activePeerDomain, int32_t* openSegmentPoolResList)
{
    const auto write = [&](const SegmentPool& pool, const char* image) {
        writeSegmentPool(pKordRec, pool.segmentPool, image, pool.segmentType, pool.numberSegments,
                         pool.segmentLimit, pool.numbervirtualSegments, pool.virtualSegmentLimit,
                         pool.rankGroup, lparId);
    };
    return collectParts<SegmentPool>(pKordRec, segmentPoolQuery, storageFacilityImageMTMS, activePeerDomain,
                                     openSegmentPoolResList, openSegmentPoolResourceList,
                                     closeSegmentPoolResourceList, write);
}
