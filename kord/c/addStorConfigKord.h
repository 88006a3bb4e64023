// The storage configuration of an image: its array sites, arrays, ranks and segment pools.

#pragma once

#include "kordRec.h"

/// Writes the storage configuration of partition slot `i`: 0, -1 on failure, or what its last part gave.
int32_t addStorConfigKord(kordRec* pKordRec, int32_t i, const char* kordpStorageFacilityImageMTMS);

/// Each writes one kind of part of an image's storage configuration, in a list of its own that it opens with
/// the first part when the flag is 0: 0, -1, or -2 for a minor error.
int32_t queryArraySites(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                        const char* activePeerDomain, int32_t* openArraySitesResList);
int32_t queryArrays(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                    const char* activePeerDomain, int32_t* openArraysResList);
int32_t queryRanks(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                   const char* activePeerDomain, int32_t* openRanksResList);
int32_t querySegmentPools(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* lparId,
                          const char* activePeerDomain, int32_t* openSegmentPoolResList);
