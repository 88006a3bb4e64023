// The I/O enclosures of the document and, per partition, their device and host adapters.

#pragma once

#include "kordRec.h"

/// Writes every I/O drawer of the managed system: 0, or -1 on failure.
int32_t addIoEnclKord(kordRec* pKordRec);

/// Write a partition's adapters in the drawer at `locationCode_iod`; the drawer's interfaces do not matter.
/// 0, -1, or -2 for a minor error.
int32_t queryDA(kordRec* pKordRec, const char* StorageFacilityImageMTMS, const char* interfaceIdentifier_iod,
                const char* locationCode_iod, const char* LParID);
int32_t queryHA(kordRec* pKordRec, const char* StorageFacilityImageMTMS, const char* interfaceIdentifier_iod,
                const char* locationCode_iod, const char* LParID);
