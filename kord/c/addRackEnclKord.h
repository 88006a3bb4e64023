// The racks of the document with the power and cooling parts that belong to no enclosure.

#pragma once

#include "kordRec.h"

/// Writes every rack of the facility: 0, or -1 on failure.
int32_t addRackEnclKord(kordRec* pKordRec);

/// Write one rack's parts: 0, -1, or -2 for a minor error; `queryFanSense` also 1.
int32_t queryPPS(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber);
int32_t queryBattery(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber);
int32_t queryRPC(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber);
int32_t queryFanSense(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber);
int32_t queryFanTray(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber);
