#include "addCountKord.h"

#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addXmlKord.h"

#include <cstdlib>
#include <cstring>
#include <iterator>

namespace
{

// --- Logical volumes

constexpr ErrorCase minorErrors[] = {
    {.number = valeError40008, .failure = minorFailure()},
};

/// The volumes report under common names: an empty enumeration under one that is no function's, a response in
/// error under the first counter's.
constexpr CounterFamily volumes = {
    .className = "Orvik.TarnLogicalVolume",
    .selectionTrace = " %s",
    .emptyEnumeration = " no enum response enumCount_vol=%d",
    .emptyReport = {.name = "enumerateLogicalVolume"},
    .responseReport = {.kind = Report::Kind::plain, .name = "enumerateLogicalVolume0"},
    .minorErrors = minorErrors,
};

constexpr Counter volume(const CounterRow& row)
{
    return counterOf(row, volumes);
}

// --- Host adapter ports

/// The ports report under a common name that is no function's.
constexpr CounterFamily ports = {
    .className = "Orvik.TarnHAPort",
    .selectionTrace = " %s",
    .emptyEnumeration = " no enum response enumCount_hap=%d",
    .emptyReport = {.name = "enumerateHAPort"},
    .responseReport = {.kind = Report::Kind::plain, .name = "enumerateHAPort"},
    .minorErrors = minorErrors,
};

constexpr Counter port(const CounterRow& row)
{
    return counterOf(row, ports);
}

constexpr ErrorCase firstPortErrors[] = {
    {.number = valeError40008, .failure = {.report = noReport, .result = collected}},
};

/// The count of all ports takes error 0x40008 for a plain 0 and every other one for a minor error, which it
/// reports; and an empty enumeration sets its count to 0.
constexpr Counter firstPort(const CounterRow& row)
{
    Counter counter = port(row);
    counter.query.errors = firstPortErrors;
    counter.query.otherError.result = minorError;
    counter.query.otherError.flag = true;
    counter.zeroWhenEmpty = true;
    return counter;
}

// --- Objects

constexpr const char* imageSelection = "storageFacilityImageMTMS=\"%s\" && ActivePeerDomain=\"%s\"";

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

// --- All counters, by the order of their functions

constexpr Counter counters[] = {
    volume({.entry = " enumerateLogicalVolume0",
            .codes = {"0800", "0801", "0802", "0803", "0804"},
            .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                         " && (volumeType=10)",
            .callFailed = "  LogicalVolume %d, %s"}),
    volume({.entry = " enumerateLogicalVolume1",
            .codes = {"0805", "0806", "0807", "0808", "0809"},
            .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                         " && (volumeType=10) && (dataType=10)",
            .callFailed = "  LogicalVolume %d, %s"}),
    volume({.entry = " enumerateLogicalVolume2",
            .codes = {"0810", "0811", "0812", "0813", "0814"},
            .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                         " && (volumeType=10) && (dataType=11)",
            .callFailed = " LogicalVolume %d, %s"}),
    volume({.entry = " enumerateLogicalVolume3",
            .codes = {"0815", "0816", "0817", "0818", "0819"},
            .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                         " && (volumeType=10) && (dataType=12)",
            .callFailed = " LogicalVolume %d, %s",
            .responseError = " reesponse %d, %s"}),
    volume({.entry = " enumerateLogicalVolume4",
            .codes = {"0820", "0821", "0822", "0823", "0824"},
            .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                         " && (volumeType=11) ",
            .callFailed = "  LogicalVolume %d, %s"}),
    volume({.entry = " enumerateLogicalVolume5",
            .codes = {"0825", "0826", "0827", "0828", "0829"},
            .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                         " && (volumeType=12)",
            .callFailed = " LogicalVolume %d, %s"}),
    volume({.entry = " enumerateLogicalVolume6",
            .codes = {"0830", "0831", "0832", "0833", "0834"},
            .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                         " && (volumeType=20) && (dataType=0)",
            .callFailed = " LogicalVolume %d, %s"}),
    volume({.entry = " enumerateLogicalVolume7",
            .codes = {"0835", "0836", "0837", "0838", "0839"},
            .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                         " && (volumeType=20) && (dataType=1 || dataType=2)",
            .callFailed = " LogicalVolume %d, %s"}),
    firstPort({.entry = " enumerateHAPort0",
               .codes = {"0900", "0901", "0902", "0903", "904"},
               .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")",
               .callFailed = " HAPort %d, %s"}),
    port({.entry = " enumerateHAPort1",
          .codes = {"0905", "0906", "0907", "0908", "0909"},
          .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                       " && (portType=20 || portType=21)",
          .callFailed = " HAPort %d, %s"}),
    port({.entry = " enumerateHAPort2",
          .codes = {"0910", "0911", "0912", "0913", "0914"},
          .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                       " && (topologyULP=1)",
          .callFailed = " HAPort %d, %s"}),
    port({.entry = " enumerateHAPort3",
          .codes = {"0915", "0916", "0917", "0918", "0919"},
          .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                       " && (topologyULP=0)",
          .callFailed = " HAPort %d, %s"}),
    port({.entry = " enumerateHAPort4",
          .codes = {"0920", "0921", "0922", "0923", "0924"},
          .selection = "(storageFacilityImageMTMS=\"%s\") && (ActivePeerDomain=\"%s\")"
                       " && (topologyULP=2)",
          .callFailed = " HAPort %d, %s"}),
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

// --- The line

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

// --- What the tables tell

// An image that has none of a kind answers with one response without handles.
constexpr ToldSubject counted(const char* things)
{
    return {
        .things = things,
        .of = "an image",
        .none = {
            .cause =
                "the image's domain answered without a response, which is not how it tells that there are "
                "none",
            .advice = "see that the domain of the selection is online and not just starting"}};
}

constexpr ToldSubject countedThings[] = {
    counted("the volumes of type 10 (v0)"),
    counted("the volumes of type 10 with data type 10 (v1)"),
    counted("the volumes of type 10 with data type 11 (v2)"),
    counted("the volumes of type 10 with data type 12 (v3)"),
    counted("the volumes of type 11 (v4)"),
    counted("the volumes of type 12 (v5)"),
    counted("the volumes of type 20 with data type 0 (v6)"),
    counted("the volumes of type 20 with data type 1 or 2 (v7)"),
    counted("the adapter ports (p0)"),
    counted("the adapter ports of type 20 or 21 (p1)"),
    counted("the adapter ports of topology 1 (p2)"),
    counted("the adapter ports of topology 0 (p3)"),
    counted("the adapter ports of topology 2 (p4)"),
    counted("the volume groups (o0)"),
    counted("the host ports (o1)"),
    counted("the mainframe channel hosts (o2)"),
    counted("the logical subsystems for CKD (o3)"),
    counted("the logical subsystems for FB (o4)"),
};
static_assert(std::size(countedThings) == std::size(counters));

constexpr ToldQuery queries[] = {
    {.query = &memoryQuery,
     .subject = {.things = "the memory and processors (h0 to h3)",
                 .of = "the first partition",
                 .none = {.cause =
                              "the partition's name in the selection is empty, or the partition was renamed "
                              "during the run",
                          .advice =
                              "see that the partition of the selection is configured under this name"}}},
};

} // namespace

const ToldQueries addCountQueries = {
    .module = "addCountKord", .queries = queries, .counters = counters, .counted = countedThings};

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

int32_t enumerateLogicalVolume0(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, counters[0], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume1(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, counters[1], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume2(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, counters[2], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume3(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, counters[3], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume4(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, counters[4], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume5(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, counters[5], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume6(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, counters[6], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume7(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, counters[7], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateHAPort0(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, counters[8], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateHAPort1(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, counters[9], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateHAPort2(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, counters[10], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateHAPort3(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, counters[11], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateHAPort4(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, counters[12], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateVolumeGroup(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                             const char* activePeerDomain)
{
    return countResources(pKordRec, counters[13], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateScsiHostPort(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                              const char* activePeerDomain)
{
    return countResources(pKordRec, counters[14], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalCKDLssObj(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                  const char* activePeerDomain)
{
    return countResources(pKordRec, counters[16], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalFBLssObj(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                 const char* activePeerDomain)
{
    return countResources(pKordRec, counters[17], count, storageFacilityImageMTMS, activePeerDomain);
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

// The line's slot o2 stays 0: nothing calls this counter, which belongs to the interface.
int32_t enumerateTeskHost(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                          const char* activePeerDomain)
{
    return countResources(pKordRec, counters[15], count, storageFacilityImageMTMS, activePeerDomain);
}
