// The host inventory of an image: the descriptions of its host ports, each with how many ports carry it.

#pragma once

#include "kordRec.h"

/// Writes the distinct descriptions of an image's host ports, newest first: 0, -1, or -2 for a minor error.
int32_t queryScsiHostPort(kordRec* pKordRec, const char* storageFacilityImageMTMS,
                          const char* activePeerDomain);

/// The list of distinct descriptions. Find: 1 when found, and its count is raised, else 0. Add, at the head:
/// 0, or -1 when out of memory.
int32_t findDescrRecord(const kordRec* pKordRec, userHostDescr** pFirst, const char* description);
int32_t addDescrRecord(const kordRec* pKordRec, userHostDescr** pFirst, const char* description);
void freeDescrRecord(const kordRec* pKordRec, userHostDescr** pFirst);
