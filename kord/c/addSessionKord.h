// The run's three sessions with the resource manager.

#pragma once

#include "addTrcKord.h"
#include "kordRec.h"

#include <span>

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

extern const std::span<const Session> allSessions;

/// Opens the local and the shared resource session, which the checks need: 0, or -1 when one fails. What is
/// open stays open then.
int32_t startSessions(kordRec* pKordRec);

/// Opens the domain session, which collection needs. Only -1 is a failure: a session that another code leaves
/// closed fails the queries that need it.
int32_t startDomainSession(kordRec* pKordRec);

/// Ends what is open: local, domain, shared resource. Returns the result of the last session end, 0 when none
/// was ended.
int32_t endSessions(const kordRec* pKordRec);
