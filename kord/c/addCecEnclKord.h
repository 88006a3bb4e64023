// The processor complex enclosures of the document and, per partition, their non-volatile control cards.

#pragma once

#include "kordRec.h"

/// Writes every processor complex drawer of the managed system: 0, or -1 on failure.
int32_t addCecEnclKord(kordRec* pKordRec);

/// Writes a partition's control cards; opens what they stand in, and then sets the caller's flag, with the
/// first card. 0, -1, or -2 for a minor error.
int32_t queryNVC(kordRec* pKordRec, const char* StorageFacilityImageMTMS, const char* locationCode_cec,
                 const char* LParID, int32_t* openCecEnclPartListHeader);

/// 0 when the storage facility's power state is 0, else -1.
int32_t querySFState(kordRec* pKordRec);

/// 0 when the facility system's power run state is 6, else -1.
int32_t querySFSystemState(kordRec* pKordRec);
