// Counts of an image's host adapter ports, by kind.

#pragma once

#include "kordRec.h"

/// Each counts the ports of one kind that belong to the image: 0, -1 on failure (the count stays as it was),
/// or -2 for a minor error (the count becomes 0).
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
