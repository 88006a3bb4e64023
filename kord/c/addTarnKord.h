// The run itself: command line, sessions, the checks before and after collection, assembly of the document,
// clean-up. Checks give 0, or -1 to stop the run; anything else lets it go on.

#pragma once

#include "addTrcKord.h"
#include "kordRec.h"

#include <span>

/// The program: its exit status.
int addTarnKord(int argc, const char* const* argv);

/// One of the run's sessions with the resource manager.
struct Session {
    const char* name;
    uint32_t scope;
    ValeSessionHandle kordRec::*handle;
    TraceText start;
    TraceText startFailed; ///< gets the return code, the message and the exit status
    bool reportsFirst;     ///< a failed start is reported before it is traced
    TraceText end;
    TraceText endFailed; ///< gets the return code and the message
};

/// One check: what it runs, and the console line when it fails.
struct Check {
    const char* name;
    int32_t (*run)(kordRec*);
    const char* message;
};

/// Checks that follow one another, and when they do.
struct ToldChecks {
    const char* when;
    std::span<const Check> checks;
};

extern const std::span<const Session> addTarnSessions;
extern const std::span<const ToldChecks> addTarnChecks;

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
