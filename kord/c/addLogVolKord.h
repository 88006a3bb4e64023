// Counts of an image's logical volumes, by type.

#pragma once

#include "kordRec.h"

/// Each counts the volumes of one type that belong to the image: 0, -1 on failure (the count stays as it
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
