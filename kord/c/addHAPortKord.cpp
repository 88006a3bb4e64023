#include "addHAPortKord.h"

#include "addQueryKord.h"
#include "addQueryTableKord.h"

namespace
{

constexpr ErrorCase minorErrors[] = {
    {.number = valeError40008, .failure = minorFailure()},
};

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

constexpr Counter portCounters[] = {
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
};

} // namespace

const ToldQueries addHAPortQueries = {.module = "addHAPortKord", .queries = {}, .counters = portCounters};

int32_t enumerateHAPort0(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, portCounters[0], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateHAPort1(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, portCounters[1], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateHAPort2(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, portCounters[2], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateHAPort3(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, portCounters[3], count, storageFacilityImageMTMS, activePeerDomain);
}

int32_t enumerateHAPort4(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    return countResources(pKordRec, portCounters[4], count, storageFacilityImageMTMS, activePeerDomain);
}
