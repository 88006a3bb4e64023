// The storage enclosures of the document with their disk drives, interface cards and baffles.

#pragma once

#include "kordRec.h"

/// Writes the storage enclosures of every rack: 0, or -1 on failure.
int32_t addStorEnclKord(kordRec* pKordRec);

/// Writes one rack's enclosures as each partition image sees them: 0, -1, or -2 (the rack is left there).
int32_t queryStorageEnclosure(kordRec* pKordRec, const char* locationCode_rack, const char* rackNumber_rack,
                              const char* rackEnclosureMTMS_rack);

/// Write one enclosure's parts: 0, -1, or -2 for a minor error; `queryDDM` 1 when there are no drives.
int32_t queryDDM(kordRec* pKordRec, const char* enclosureMTMS, const char* rackNumber,
                 const char* enclosureNumber, const char* StorageFacilityImageMTMS,
                 const char* StorageFacilityImageID);
int32_t queryFCIC(kordRec* pKordRec, const char* enclosureMTMS, const char* rackNumber,
                  const char* enclosureNumber, const char* StorageFacilityImageMTMS,
                  const char* StorageFacilityImageID);
int32_t queryBaffle(kordRec* pKordRec, const char* enclosureMTMS, const char* rackNumber,
                    const char* enclosureNumber, const char* StorageFacilityImageMTMS,
                    const char* StorageFacilityImageID);
