// The counts of an image's resources, and the logical-configuration line that they make up.

#pragma once

#include "kordRec.h"

/// All counts of a partition's logical-configuration line. They are not cleared between partitions.
struct Counts {
    int32_t v0, v1, v2, v3, v4, v5, v6, v7; ///< logical volumes
    int32_t p0, p1, p2, p3, p4;             ///< host adapter ports
    int32_t obj0, obj1, obj2, obj3, obj4;   ///< objects; obj2 is never counted
    int32_t h0, h1, h2, h3;                 ///< memory and processors
};

/// Takes every count of partition slot `i` and writes its line: 0, or -1 on failure.
int32_t addCounts(kordRec* pKordRec, int32_t i, Counts& values);

/// Each counts the resources of one kind that belong to the image: 0, -1 on failure (the count stays as it
/// was), or -2 for a minor error (the count becomes 0).
int32_t enumerateLogicalVolume0(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain);
int32_t enumerateLogicalVolume1(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain);
int32_t enumerateLogicalVolume2(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain);
int32_t enumerateLogicalVolume3(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain);
int32_t enumerateLogicalVolume4(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain);
int32_t enumerateLogicalVolume5(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain);
int32_t enumerateLogicalVolume6(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain);
int32_t enumerateLogicalVolume7(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                                const char* activePeerDomain);

int32_t enumerateHAPort0(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain);
int32_t enumerateHAPort1(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain);
int32_t enumerateHAPort2(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain);
int32_t enumerateHAPort3(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain);
int32_t enumerateHAPort4(kordRec* pKordRec, int32_t* count, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain);

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

/// A partition's memory, in units of 1024 of what the resource manager reports (h0 desired, h1 and h2
/// reserves), and its processors (h3): 0 or -1.
int32_t queryMemoryProc(kordRec* pKordRec, const char* lparName, int32_t* h0, int32_t* h1, int32_t* h2,
                        int32_t* h3);
