#include "addLogVolKord.h"

#include "addQueryKord.h"
#include "addQueryTableKord.h"

namespace
{

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

constexpr Counter volumeCounters[] = {
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
};

} // namespace

const ToldQueries addLogVolQueries = {.module = "addLogVolKord", .queries = {}, .counters = volumeCounters};

int32_t enumerateLogicalVolume0(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, volumeCounters[0], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume1(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, volumeCounters[1], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume2(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, volumeCounters[2], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume3(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, volumeCounters[3], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume4(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, volumeCounters[4], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume5(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, volumeCounters[5], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume6(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, volumeCounters[6], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateLogicalVolume7(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain)
{
    return countResources(pKordRec, volumeCounters[7], count, storageFacilityImageMTMS, activePeerDomain);
}
