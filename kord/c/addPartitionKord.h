// The partitions of the document: identity, microcode level, node name, logical-configuration line, host
// descriptions and storage configuration of every partition image of the managed system.

#pragma once

#include "kordRec.h"

/// Writes every partition: 0, -1 on failure, 1 when the image's node name could not be queried.
int32_t addPartitionKord(kordRec* pKordRec);

/// A partition's memory, in units of 1024 of what the resource manager reports (h0 desired, h1 and h2
/// reserves), and its processors (h3): 0 or -1.
int32_t queryMemoryProc(kordRec* pKordRec, const char* lparName, int32_t* h0, int32_t* h1, int32_t* h2,
                        int32_t* h3);

/// Writes a partition's microcode levels: 0, -1, or -2 for a minor error.
int32_t enumerateVRMF(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* locationCode,
                      const char* activePeerDomain);

/// Writes an image's world-wide node name: 0, -1, or -2 for a minor error.
int32_t querySFImageWWNN(kordRec* pKordRec, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain);

/// Each counts the objects of one class that belong to the image: 0, -1 on failure (the count stays as it
/// was), or -2 for a minor error (the count becomes 0).
int32_t enumerateVolumeGroup(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                             const char* activePeerDomain);
int32_t enumerateScsiHostPort(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                              const char* activePeerDomain);
int32_t enumerateTeskHost(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                          const char* activePeerDomain);
int32_t enumerateLogicalCKDLssObj(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                  const char* activePeerDomain);
int32_t enumerateLogicalFBLssObj(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                 const char* activePeerDomain);

/// Writes the distinct descriptions of an image's host ports, newest first: 0, -1, or -2 for a minor error.
int32_t queryScsiHostPort(kordRec* pKordRec, const char* storageFacilityImageMTMS,
                          const char* activePeerDomain);

/// The list of distinct descriptions. Find: 1 when found, and its count is raised, else 0. Add, at the head:
/// 0, or -1 when out of memory.
int32_t findDescrRecord(const kordRec* pKordRec, userHostDescr** pFirst, const char* description);
int32_t addDescrRecord(const kordRec* pKordRec, userHostDescr** pFirst, const char* description);
void freeDescrRecord(const kordRec* pKordRec, userHostDescr** pFirst);

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
