// The run itself: command line, sessions, the checks before and after collection, assembly of the document,
// clean-up. Checks give 0, or -1 to stop the run; anything else lets it go on.

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

/// Writes the whole document: 0, -1 when a section failed, 1 when the document could not be started.
int32_t addSystemKord(kordRec* pKordRec);

/// Closes the system element and the inventory.
void closeXml(const kordRec* pKordRec);

/// Gives the trace log to the console's own user, where the program may.
void changeGroup(const kordRec* pKordRec);

/// Closes the document and ends the sessions: local, domain, shared resource. Returns the result of the last
/// session end, 0 when none was ended. `contacts` is not used.
int32_t cleanUpKord(kordRec* pKordRec, const char* const* contacts, int32_t returnCode);
