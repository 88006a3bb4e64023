// The checks before and after collection, and what they learn of the systems and their partitions. Checks
// give 0, or -1 to stop the run; anything else lets it go on.

#pragma once

#include "kordRec.h"

/// Learns the facility that the managed system belongs to, by its one facility-system resource.
int32_t querySystem(kordRec* pKordRec);

/// Learns the facility's other system. 1 when the response is in error: the run goes on without.
int32_t queryPartnerSystem(kordRec* pKordRec);

/// Both systems must be operating, as far as the console answers.
int32_t checkState(kordRec* pKordRec);

/// Asks the console for one system's state: 0 operating, -1 not, 1 unanswered.
int32_t checkSystemState(kordRec* pKordRec, const char* SystemMTMS);

/// Learns the partitions of the managed system (partner 0) or of its partner, slotted by pool ID.
int32_t queryPartition(kordRec* pKordRec, int32_t partner);

/// Learns the image ID and host name of every partition.
int32_t queryValeId(kordRec* pKordRec);

/// All partitions of the managed system, or of its partner, must be online.
int32_t queryValeStatus(kordRec* pKordRec);
int32_t queryValePartnerStatus(kordRec* pKordRec);
