#include "addStorConfigKord.h"

#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

namespace
{

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

    const int32_t rc = forEachItem<Item>(pKordRec, query, request, [&](const Item& item) {
        if (*listIsOpen == 0) openList(pKordRec);
        *listIsOpen = 1;
        return write(item, kordpStorageFacilityImageMTMS);
    });
    if (rc == collected) closeList(pKordRec); // a good answer is never empty
    return rc;
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
        joinText(field.text, sites[0], sites[0]);
    for (size_t i = 1; i < sites.size(); ++i)
        joinText(restOf(field.text), ",", sites[i]);
    trace(pKordRec, sitesLine, static_cast<int32_t>(sites.size()), field.text.data());
}

void readArraySiteConfiguration(const kordRec* pKordRec, const ValeAttribute& attribute, Field field)
{
    const std::span<const char* const> texts = textsOf(attribute);
    copyText(field.text, texts.empty() ? "" : texts[0]);
    for (size_t i = 1; i < texts.size(); ++i)
        joinText(restOf(field.text), ",", texts[i]);
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

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &arraySiteQuery,
     .subject = {.things = "the array sites",
                 .of = "an image",
                 .none = {.cause =
                              "the image has no array sites: it has no drives, or they are not assigned to "
                              "sites",
                          .advice =
                              "see that the image has drives; a facility that was never configured has sites "
                              "all the same"}}},
    {.query = &arrayQuery,
     .subject = {.things = "the arrays",
                 .of = "an image",
                 .none = {.cause = "no array has been created on the image's array sites",
                          .advice =
                              "create arrays, or take the failure of an image without configuration as what "
                              "it is"}}},
    {.query = &rankQuery,
     .subject = {.things = "the ranks",
                 .of = "an image",
                 .none = {.cause = "no rank has been created on the image's arrays",
                          .advice =
                              "create ranks, or take the failure of an image without configuration as what "
                              "it is"}}},
    {.query = &segmentPoolQuery,
     .subject = {.things = "the segment pools",
                 .of = "an image",
                 .none = {.cause = "no segment pool has been created for the image",
                          .advice =
                              "create segment pools, or take the failure of an image without configuration "
                              "as what it is"}}},
};

constexpr ToldLine lines[] = {
    {.function = "queryArrays",
     .line = sitesLine,
     .explanation = {.meaning = "an array's sites: how many, and the list"}},
    {.function = "queryArrays",
     .line = sitesConfigurationLine,
     .explanation = {.meaning = "an array's configuration: how many texts, and the list"}},
};

} // namespace

const ToldQueries addStorConfigQueries = {.module = "addStorConfigKord", .queries = queries};
const ToldLines addStorConfigLines = {.module = "addStorConfigKord", .lines = lines};

int32_t addStorConfigKord(kordRec* pKordRec, int32_t i, const char* kordpStorageFacilityImageMTMS)
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

int32_t queryArraySites(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                        const char* activePeerDomain, int32_t* openArraySitesResList)
{
    const auto write = [&](const ArraySite& site, const char* image) {
        return writeArraySite(pKordRec, site.arraySite, image, site.array, site.arrayPosition, site.daPair,
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
        return writeArray(pKordRec, array.arraySites, image, array.serialNumber, array.raidType,
                          array.arraySiteConfiguration, array.daPair, array.diskCapacity, array.diskRPM,
                          array.rank, array.rankPosition, lparId);
    };
    return collectParts<Array>(pKordRec, arrayQuery, storageFacilityImageMTMS, activePeerDomain,
                               openArraysResList, openArraysResourceList, closeArraysResourceList, write);
}

int32_t queryRanks(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                   const char* activePeerDomain, int32_t* openRanksResList)
{
    const auto write = [&](const Rank& rank, const char* image) {
        return writeRank(pKordRec, rank.rank, image, rank.segmentPool, rank.serialNumber, rank.segmentType,
                         rank.numberSegments, rank.rankGroup, lparId);
    };
    return collectParts<Rank>(pKordRec, rankQuery, storageFacilityImageMTMS, activePeerDomain,
                              openRanksResList, openRanksResourceList, closeRanksResourceList, write);
}

int32_t querySegmentPools(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                          const char* activePeerDomain, int32_t* openSegmentPoolResList)
{
    const auto write = [&](const SegmentPool& pool, const char* image) {
        return writeSegmentPool(pKordRec, pool.segmentPool, image, pool.segmentType, pool.numberSegments,
                                pool.segmentLimit, pool.numbervirtualSegments, pool.virtualSegmentLimit,
                                pool.rankGroup, lparId);
    };
    return collectParts<SegmentPool>(pKordRec, segmentPoolQuery, storageFacilityImageMTMS, activePeerDomain,
                                     openSegmentPoolResList, openSegmentPoolResourceList,
                                     closeSegmentPoolResourceList, write);
}
