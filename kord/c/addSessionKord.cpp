#include "addSessionKord.h"

#include "addErrLogKord.h"
#include "addQueryKord.h"

namespace
{

constexpr const char* sessionEndFailed = " end_session failed with error %d, %s";

/// In the order of ending, whatever the order of opening.
constexpr Session sessions[] = {
    {.name = "local",
     .scope = 1,
     .handle = &kordRec::sess_hndl_LC,
     .start = {"0004", "start local session "},
     .startFailed = {"0004", " LC scope session failed with error %d, %s, exit %d"},
     .reportsFirst = true,
     .end = {"0008", "LC vale_end_session"},
     .endFailed = {"0008", sessionEndFailed}},
    {.name = "domain",
     .scope = 4,
     .handle = &kordRec::sess_hndl_DM,
     .start = {"0005", "start DM session "},
     .startFailed = {"0006", " DM scope session failed with error %d, %s"},
     .reportsFirst = false,
     .end = {"0008", "DM vale_end_session"},
     .endFailed = {"0009", sessionEndFailed}},
    {.name = "shared resource",
     .scope = 2,
     .handle = &kordRec::sess_hndl_SR,
     .start = {"0004", "start share resource session "},
     .startFailed = {"0004", " SR scope session failed with error %d, %s, exit %d"},
     .reportsFirst = true,
     .end = {"0008", "SR vale_end_session"},
     .endFailed = {"0009", sessionEndFailed}},
};
constexpr const Session& localSession = sessions[0];
constexpr const Session& domainSession = sessions[1];
constexpr const Session& sharedSession = sessions[2];

int32_t startSession(kordRec* pKordRec, const Session& session)
{
    trace(pKordRec, session.start);
    return vale_start_session(nullptr, 0, session.scope, &(pKordRec->*session.handle));
}

void reportSessionStart(const kordRec* pKordRec, const Session& session, int32_t rc)
{
    const ClientError error = takeError();
    if (session.reportsFirst) handleErrKord(pKordRec, "addTarnKord", valeCallFailed);
    trace(pKordRec, session.startFailed, rc, messageOf(error), failed);
    if (!session.reportsFirst) handleErrKord(pKordRec, "addTarnKord", valeCallFailed);
    releaseError(error);
}

int32_t endSession(const kordRec* pKordRec, const Session& session)
{
    trace(pKordRec, session.end);
    const int32_t rc = vale_end_session(pKordRec->*session.handle);
    if (rc == 0) return rc;
    const ClientError error = takeError();
    trace(pKordRec, session.endFailed, rc, messageOf(error));
    handleErrKord(pKordRec, "cleanUpKord", valeCallFailed);
    releaseError(error);
    return rc;
}
} // namespace

const std::span<const Session> allSessions = sessions;

int32_t startSessions(kordRec* pKordRec)
{
    for (const Session* session : {&localSession, &sharedSession}) {
        const int32_t rc = startSession(pKordRec, *session);
        if (rc == 0) continue;
        reportSessionStart(pKordRec, *session, rc);
        return failed;
    }
    return 0;
}

int32_t startDomainSession(kordRec* pKordRec)
{
    const int32_t rc = startSession(pKordRec, domainSession);
    if (rc == failed) reportSessionStart(pKordRec, domainSession, rc);
    return rc;
}

int32_t endSessions(const kordRec* pKordRec)
{
    int32_t rc = 0;
    for (const Session& session : sessions) {
        if (pKordRec->*session.handle != nullptr) rc = endSession(pKordRec, session);
    }
    return rc;
}
