// The partitions of the document: identity, microcode level, node name, logical-configuration line, host
// descriptions and storage configuration of every partition image of the managed system.

#pragma once

#include "kordRec.h"

/// Writes every partition: 0, -1 on failure, 1 when the image's node name could not be queried.
int32_t addPartitionKord(kordRec* pKordRec);

/// Writes a partition's microcode levels: 0, -1, or -2 for a minor error.
int32_t enumerateVRMF(kordRec* pKordRec, const char* storageFacilityImageMTMS, const char* locationCode,
                      const char* activePeerDomain);

/// Writes an image's world-wide node name: 0, -1, or -2 for a minor error.
int32_t querySFImageWWNN(kordRec* pKordRec, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain);
