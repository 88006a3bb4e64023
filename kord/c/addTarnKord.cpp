#include "addTarnKord.h"

#include "addCecEnclKord.h"
#include "addErrLogKord.h"
#include "addIoEnclKord.h"
#include "addPartitionKord.h"
#include "addQuayEnclKord.h"
#include "addQueryKord.h"
#include "addRackEnclKord.h"
#include "addStorEnclKord.h"
#include "addTextKord.h"
#include "addTrcKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr int32_t success = 3;
constexpr int32_t failure = -1;
constexpr int usageStatus = 255;

constexpr const char* buildTag = "155968_quay1 07-15-05 "; // with its trailing blank
constexpr const char* sessionFails = "Start VALE session fails.\n";

// --- Identification

constexpr Attribute systemAttributes[] = {
    {.name = "storageFacilityMTMS", .field = fieldOf<&kordRec::storageFacilityMTMS>, .kept = true},
    {.name = "storageFacilityWWNN", .field = fieldOf<&kordRec::storageFacilityWWNN>, .kept = true},
    {.name = "storageFacilityServerNumber",
     .field = fieldOf<&kordRec::storageFacilityServerNumber>,
     .kept = true},
    {.name = "ActivePeerDomain", .field = fieldOf<&kordRec::activePeerDomain_quay>, .kept = true},
};

constexpr Query systemQuery = {
    .function = "querySystem",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStorageFacilitySystem",
    .attributes = systemAttributes,
    .selection = "managedSystemMTMS=\"%s\"",
    .callFailed = {.trace = {"0107", " vale_query_p_select SFS returned %d, %s"}},
    .noResources = {.trace = {"0108", " no res  array_cnt_sfs=%d"}},
    .responseTrace = {"0108", " response %d, %s"},
};

constexpr Attribute facilityAttributes[] = {
    {.name = "managedSystem0MTMS"},
    {.name = "managedSystem1MTMS"},
};

// A response in error is reported, but the run goes on.
constexpr Query facilityQuery = {
    .function = "queryPartnerSystem",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStorageFacility",
    .attributes = facilityAttributes,
    .selection = "storageFacilityMTMS=\"%s\"",
    .callFailed = {.trace = {"0107", " SF returned %d, %s"}},
    .noResources = {.trace = {"0108", " no res  array_cnt_sf=%d"}},
    .responseTrace = {"0108", " response %d, %s"},
    .otherError = {.result = reported},
};

struct Partition {
    char lparId[30];
    char lparName[30];
    char hslLumenPoolId[3];
};

constexpr Attribute partitionAttributes[] = {
    {.name = "lparId", .field = fieldOf<&Partition::lparId>},
    {.name = "lparName", .field = fieldOf<&Partition::lparName>},
    {.name = "hslLumenPoolId", .field = fieldOf<&Partition::hslLumenPoolId>},
};

constexpr Query partitionQuery = {
    .entry = " queryPartition",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStorageFacilityPartition",
    .attributes = partitionAttributes,
    .selection = "managedSystemMTMS=\"%s\" ",
    .callFailed = {.trace = {"0696", "sfp %d %s"}},
    .noResources = {.trace = {"0697", "no res  array_cnt_sfp=%d"}},
    .responseTrace = {"0698", "response %d, %s"},
};

/// The slot of a pool ID "1" to "8"; -1 for any other.
int32_t slotOf(const char* hslLumenPoolId)
{
    for (int32_t k = 0; k < partitionSlots; ++k) {
        char slot[12];
        formatText(slot, "%d", k + 1);
        if (strcmp(slot, hslLumenPoolId) == 0) return k;
    }
    return -1;
}

void storePartition(kordRec* pKordRec, int32_t partner, const Partition& partition)
{
    const int32_t k = slotOf(partition.hslLumenPoolId);
    if (k < 0) return;
    if (partner != 0) {
        copyText(pKordRec->partnerLParID[k], partition.lparId);
        copyText(pKordRec->partnerLparName[k], partition.lparName);
        return;
    }
    copyText(pKordRec->hslLumenPoolId[k], partition.hslLumenPoolId);
    copyText(pKordRec->LParID[k], partition.lparId);
    copyText(pKordRec->lparName[k], partition.lparName);
}

// --- Managed nodes

constexpr const char* nodeSelection = "HWModel=\"%s\" && HWSerialNum=\"%s\" && LParID=\"%s\"";

/// The managed node of one partition of a system.
Request nodeRequest(const char* systemMTMS, const char* LParID, const char* lparName)
{
    char modeltype[20];
    char serial[20];
    get_StorageFacilitySystem_modeltype(systemMTMS, modeltype);
    get_StorageFacilitySystem_serial(systemMTMS, serial);
    Request request = requestOf(nodeSelection, modeltype, serial, LParID);
    request.subject = lparName;
    return request;
}

struct Node {
    char StorageFacilityImageID[30];
    char Hostname[30];
};

constexpr Attribute nodeAttributes[] = {
    {.name = "StorageFacilityImageID", .field = fieldOf<&Node::StorageFacilityImageID>},
    {.name = "Hostname", .field = fieldOf<&Node::Hostname>},
};

constexpr ErrorCase nodeErrors[] = {
    {.number = valeError40008, .failure = {.report = {.name = theSubject, .type = resourcesNotFound}}},
};

constexpr Query nodeQuery = {
    .function = "queryValeId",
    .session = &kordRec::sess_hndl_LC,
    .className = "Orvik.ManagedNode",
    .attributes = nodeAttributes,
    .selection = nodeSelection,
    .selectionTrace = {"0010", " %s"},
    .callFailed = {.trace = {"0011", "  ManagedNode returned %d, %s"}},
    .noResources = {.trace = {"0012", " error array_cnt %d"}, .report = {.type = valeCallFailed}},
    .responseTrace = {"0013", "response %d, %s"},
    .errors = nodeErrors,
    .walksRequested = true,
};

struct NodeStatus {
    int32_t status;
};

constexpr Attribute statusAttributes[] = {
    {.name = "Status", .field = fieldOf<&NodeStatus::status>},
};

/// The status query of one of the two systems' partitions; they differ in the name of their reports.
constexpr Query statusQueryOf(const char* name)
{
    return {
        .function = name,
        .session = &kordRec::sess_hndl_LC,
        .className = "Orvik.ManagedNode",
        .call = Call::dynamicQuery,
        .attributes = statusAttributes,
        .selection = nodeSelection,
        .selectionTrace = {"0010", " %s"},
        .callFailed = {.trace = {"0011", " returned %d, %s, %s"}},
        .noResources = {.trace = {"0012", " error array_cnt %d, %s"}, .report = {.type = valeCallFailed}},
        .responseTrace = {"0013", "response %d, %s, %s"},
        .errors = nodeErrors,
    };
}

constexpr Query statusQuery = statusQueryOf("queryValeStatus");
constexpr Query partnerStatusQuery = statusQueryOf("queryValePartnerStatus");

using PartitionTexts = char[partitionSlots][30];

/// As many partitions as the managed system has are asked for, the partner's too.
int32_t checkStatus(kordRec* pKordRec, const Query& query, const char* systemMTMS, const PartitionTexts& ids,
                    const PartitionTexts& names)
{
    constexpr int32_t online = 1;
    int32_t rc = collected;
    for (int32_t i = 0; i < partitionCount(pKordRec) && rc == collected; ++i) {
        rc = runQuery(pKordRec, query, nodeRequest(systemMTMS, ids[i], names[i]), [&](Resources nodes) {
            NodeStatus node{};
            readItem(pKordRec, query, nodes[0], &node);
            trace(pKordRec, "0016", "%s, status=%d", names[i], node.status);
            return node.status == online ? collected : handleErrKord(pKordRec, names[i], subsystemDegraded);
        });
    }
    return rc;
}

// --- Sessions

/// How a session start is announced and how its failure is traced.
struct SessionStart {
    uint32_t scope;
    ValeSessionHandle kordRec::*session;
    TraceText start;
    TraceText failed; ///< gets the return code, the message and the exit status
    bool reportsFirst;
};

constexpr SessionStart localSession = {
    .scope = 1,
    .session = &kordRec::sess_hndl_LC,
    .start = {"0004", "start local session "},
    .failed = {"0004", " LC scope session failed with error %d, %s, exit %d"},
    .reportsFirst = true,
};
constexpr SessionStart sharedSession = {
    .scope = 2,
    .session = &kordRec::sess_hndl_SR,
    .start = {"0004", "start share resource session "},
    .failed = {"0004", " SR scope session failed with error %d, %s, exit %d"},
    .reportsFirst = true,
};
constexpr SessionStart domainSession = {
    .scope = 4,
    .session = &kordRec::sess_hndl_DM,
    .start = {"0005", "start DM session "},
    .failed = {"0006", " DM scope session failed with error %d, %s"},
    .reportsFirst = false,
};

int32_t startSession(kordRec* pKordRec, const SessionStart& start)
{
    trace(pKordRec, start.start.code, "%s", start.start.format);
    return vale_start_session(nullptr, 0, start.scope, &(pKordRec->*start.session));
}

void reportSessionStart(const kordRec* pKordRec, const SessionStart& start, int32_t rc)
{
    const ClientError error = takeError();
    if (start.reportsFirst) handleErrKord(pKordRec, "addTarnKord", valeCallFailed);
    trace(pKordRec, start.failed.code, start.failed.format, rc, messageOf(error), failure);
    if (!start.reportsFirst) handleErrKord(pKordRec, "addTarnKord", valeCallFailed);
    releaseError(error);
}

struct SessionEnd {
    ValeSessionHandle kordRec::*session;
    const char* end;
    const char* failedCode;
};

/// In the order of ending, whatever the order of opening.
constexpr SessionEnd sessionEnds[] = {
    {&kordRec::sess_hndl_LC, "LC vale_end_session", "0008"},
    {&kordRec::sess_hndl_DM, "DM vale_end_session", "0009"},
    {&kordRec::sess_hndl_SR, "SR vale_end_session", "0009"},
};

int32_t endSession(const kordRec* pKordRec, const SessionEnd& end)
{
    trace(pKordRec, "0008", "%s", end.end);
    const int32_t rc = vale_end_session(pKordRec->*end.session);
    if (rc == 0) return rc;
    const ClientError error = takeError();
    trace(pKordRec, end.failedCode, " end_session failed with error %d, %s", rc, messageOf(error));
    handleErrKord(pKordRec, "cleanUpKord", valeCallFailed);
    releaseError(error);
    return rc;
}

// --- The run

/// One check: what it runs, and the console line when it fails.
struct Check {
    int32_t (*run)(kordRec*);
    const char* message;
};

int32_t queryOwnPartitions(kordRec* pKordRec)
{
    return queryPartition(pKordRec, 0);
}
int32_t queryPartnerPartitions(kordRec* pKordRec)
{
    return queryPartition(pKordRec, 1);
}

/// Before collection. The first line names the partner system too, and one line has a blank before its
/// newline: the operator's scripts match them so.
constexpr Check checksBefore[] = {
    {querySystem, "Query Partner System fails.\n"},
    {queryPartnerSystem, "Query Partner System fails.\n"},
    {checkState, "Check State fails.\n"},
    {queryOwnPartitions, "Query Partition fails.\n"},
    {queryValeId, "Query VALE Id fails.\n"},
    {queryValeStatus, "Query VALE Status fails. \n"},
    {queryPartnerPartitions, "Query Partition fails.\n"},
    {queryValePartnerStatus, "Query VALE Partner Status fails.\n"},
};

/// Collection and the checks after it, but for the last.
constexpr Check collection[] = {
    {addSystemKord, "Add System Kord fails.\n"},
    {checkState, "Check State fails.\n"},
    {queryValeStatus, "Query VALE Status fails.\n"},
};

/// Runs the checks; the console line of the first that fails, null when all pass.
const char* firstFailure(kordRec* pKordRec, std::span<const Check> checks)
{
    for (const Check& check : checks) {
        if (check.run(pKordRec) == failed) return check.message;
    }
    return nullptr;
}

int32_t failWith(kordRec* pKordRec, const char* message)
{
    cleanUpKord(pKordRec, nullptr, failure);
    fputs(message, stdout);
    return failure;
}

/// Nothing but these characters may come into file names and commands, and a serial has no separator.
bool isUsable(const char* mtms, const char* serial)
{
    for (const char* at = mtms; *at != '\0'; ++at) {
        const bool isPlain =
            (*at >= '0' && *at <= '9') || (*at >= 'A' && *at <= 'Z') || (*at >= 'a' && *at <= 'z');
        if (!isPlain && strchr("-*._", *at) == nullptr) return false;
    }
    return *serial != '\0' && strchr(serial, '*') == nullptr;
}

/// Names the run after its MTMS and learns who runs it: 0, or -1 when the MTMS has no serial or no
/// type-model.
int32_t identifyRun(kordRec* pKordRec, const char* mtms)
{
    char serial[20];
    char modeltype[20];
    copyText(pKordRec->inputSystemMTMS, mtms);
    get_StorageFacilitySystem_serial(pKordRec->inputSystemMTMS, serial);
    if (!isUsable(mtms, serial)) return failure;
    copyText(pKordRec->systemSerial, serial);
    formatText(pKordRec->trcfile, "kord.%s.log", serial);
    trace(pKordRec, "SRCV", "%s %s", buildTag, mtms);
    getLoginUserName(pKordRec);
    changeGroup(pKordRec);

    get_StorageFacilitySystem_modeltype(pKordRec->inputSystemMTMS, modeltype);
    if (*modeltype == '\0') {
        trace(pKordRec, "0002", " failed to get modeltype %s, exit %d", pKordRec->inputSystemMTMS, failure);
        return failure; // no type-model
    }
    formatText(pKordRec->managedSystemMTMS, "%s*%s", modeltype, serial);
    formatText(pKordRec->kordpManagedSystemMTMS, "%s-%s", modeltype, serial);
    return 0;
}

void takeOption(kordRec* pKordRec, const char* option)
{
    const bool isConfiguration = strcmp(option, "-m") == 0;
    if (!isConfiguration && strcmp(option, "-t") != 0) return;
    pKordRec->testFlag = 1;
    if (isConfiguration) pKordRec->configFlag = 1;
    trace(pKordRec, "0003", "option %s ", option);
}

/// Opens the two sessions that the checks need. What is open stays open when one fails.
int32_t startSessions(kordRec* pKordRec)
{
    for (const SessionStart* start : {&localSession, &sharedSession}) {
        const int32_t rc = startSession(pKordRec, *start);
        if (rc == 0) continue;
        reportSessionStart(pKordRec, *start, rc);
        fputs(sessionFails, stdout);
        return failure;
    }
    return 0;
}

/// From the open sessions to the exit status.
int32_t collect(kordRec* pKordRec)
{
    if (const char* message = firstFailure(pKordRec, checksBefore)) return failWith(pKordRec, message);

    // Only -1 is a failure here; a session that another code leaves closed fails the queries that need it.
    if (const int32_t rc = startSession(pKordRec, domainSession); rc == failed) {
        reportSessionStart(pKordRec, domainSession, rc);
        return failWith(pKordRec, sessionFails);
    }
    if (const char* message = firstFailure(pKordRec, collection)) return failWith(pKordRec, message);

    int32_t exitStatus = success;
    if (queryValePartnerStatus(pKordRec) == failed) {
        exitStatus = failure;
        fputs("Query VALE Partner Status fails.\n", stdout);
    } else {
        if (pKordRec->Flag == 1) trace(pKordRec, "0019", "Function completed with minor errors detected.");
        fputs("XML file was built successfully. This is the normal return.\n", stdout);
    }
    cleanUpKord(pKordRec, nullptr, exitStatus);
    return exitStatus;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 3) {
        fputs("usage: addTarnKord OPTION MTMS\n"
              "  OPTION  -t (test), -m (configuration), or any other word for neither\n"
              "  MTMS    the managed system, such as 9999-B2C*7ABCD12\n",
              stderr);
        return usageStatus;
    }
    kordRec record{};
    if (identifyRun(&record, argv[2]) != 0) return failure;
    takeOption(&record, argv[1]);
    if (startSessions(&record) != 0) return failure;
    return collect(&record);
}

int32_t querySystem(kordRec* pKordRec)
{
    const Request request = requestOf(systemQuery.selection, pKordRec->managedSystemMTMS);
    return runQuery(pKordRec, systemQuery, request, [&](Resources systems) {
        if (systems.size() != 1) {
            return fail(pKordRec, systemQuery, systemQuery.noResources, static_cast<int32_t>(systems.size()));
        }
        readItem(pKordRec, systemQuery, systems[0], pKordRec);
        convertStringFromMMToDash(pKordRec->kordpStorageFacilityMTMS, pKordRec->storageFacilityMTMS);
        trace(pKordRec, "0109", "wwnn=%s, server=%d ", pKordRec->storageFacilityWWNN,
              pKordRec->storageFacilityServerNumber);
        return collected;
    });
}

int32_t queryPartnerSystem(kordRec* pKordRec)
{
    const Request request = requestOf(facilityQuery.selection, pKordRec->storageFacilityMTMS);
    return runQuery(pKordRec, facilityQuery, request, [&](Resources facilities) {
        for (const ValeAttribute& attribute : attributesOf(facilityQuery, facilities[0])) {
            if (!holdsText(facilityQuery, attribute)) continue;
            if (strcmp(textOf(attribute), pKordRec->managedSystemMTMS) == 0) continue;
            copyText(pKordRec->partnerSystemMTMS, textOf(attribute));
            break;
        }
        trace(pKordRec, "0109", " partner %s", pKordRec->partnerSystemMTMS);
        return collected;
    });
}

int32_t checkState(kordRec* pKordRec)
{
    for (const char* system : {pKordRec->managedSystemMTMS, pKordRec->partnerSystemMTMS}) {
        if (checkSystemState(pKordRec, system) == failed)
            return handleErrKord(pKordRec, "addTarnKord", subsystemDegraded);
    }
    return 0;
}

int32_t checkSystemState(kordRec* pKordRec, const char* SystemMTMS)
{
    char mtms[4 * sizeof pKordRec->partnerSystemMTMS];
    char command[sizeof mtms + 100];
    const bool isRoot = strcmp(pKordRec->loginUserName, "root") == 0;
    quoteText(mtms, SystemMTMS, Quotes::doubled);
    formatText(command, "%s/opt/brisk/bin/qmstat -r sys -m \"%s\" -F state",
               isRoot ? "" : "/opt/tarnquay/bin/mmquaycmd ", mtms);

    int32_t xargc = 0;
    char** xargv = nullptr;
    const int32_t rc = excuteCommand(pKordRec, command, &xargc, &xargv);
    if (rc != 0 || xargc == 0) {
        trace(pKordRec, "0017", "rc=%d, xargc=%d, %s ", rc, xargc, SystemMTMS);
        releaseOutput(xargv);
        return reported;
    }
    char state[100];
    copyText(state, xargv[0]);
    trace(pKordRec, "0017", "rc=%d, xargc=%d, %s, state=%s ", rc, xargc, SystemMTMS, state);
    releaseOutput(xargv);
    return strcmp(state, "Operating") == 0 ? 0 : failed;
}

int32_t queryPartition(kordRec* pKordRec, int32_t partner)
{
    const Request request = requestOf(partitionQuery.selection, partner != 0 ? pKordRec->partnerSystemMTMS
                                                                             : pKordRec->managedSystemMTMS);
    return runQuery(pKordRec, partitionQuery, request, [&](Resources partitions) {
        if (partner == 0) {
            pKordRec->num_contacts = static_cast<int32_t>(partitions.size());
            trace(pKordRec, "0697", "num_contacts =%d", pKordRec->num_contacts);
        }
        Partition partition{};
        for (const ValeQueryResponse& resource : partitions) {
            readItem(pKordRec, partitionQuery, resource, &partition);
            storePartition(pKordRec, partner, partition);
        }
        return collected;
    });
}

int32_t queryValeId(kordRec* pKordRec)
{
    int32_t rc = collected;
    for (int32_t i = 0; i < partitionCount(pKordRec) && rc == collected; ++i) {
        const Request request =
            nodeRequest(pKordRec->inputSystemMTMS, pKordRec->LParID[i], pKordRec->lparName[i]);
        rc = runQuery(pKordRec, nodeQuery, request, [&](Resources nodes) {
            Node node{};
            readItem(pKordRec, nodeQuery, nodes[0], &node);
            const char* id = node.StorageFacilityImageID;
            copyText(pKordRec->StorageFacilityImageID[i], id);
            convertStringFromDotToMM(pKordRec->StorageFacilityImageMTMS[i], id);
            convertStringFromDotToDash(pKordRec->kordpStorageFacilityImageMTMS[i], id);
            copyText(pKordRec->Hostname[i], node.Hostname);
            trace(pKordRec, "0016", " StorageFacilityImageID=%s, HostName=%s", id, node.Hostname);
            return collected;
        });
    }
    return rc;
}

int32_t queryValeStatus(kordRec* pKordRec)
{
    return checkStatus(pKordRec, statusQuery, pKordRec->inputSystemMTMS, pKordRec->LParID,
                       pKordRec->lparName);
}

int32_t queryValePartnerStatus(kordRec* pKordRec)
{
    return checkStatus(pKordRec, partnerStatusQuery, pKordRec->partnerSystemMTMS, pKordRec->partnerLParID,
                       pKordRec->partnerLparName);
}

int32_t addSystemKord(kordRec* pKordRec)
{
    using Collector = int32_t (*)(kordRec*);
    constexpr Collector enclosures[] = {
        addCecEnclKord, addIoEnclKord, addStorEnclKord, addRackEnclKord, addQuayEnclKord,
    };

    if (startXml(pKordRec) != 0) {
        handleErrKord(pKordRec, "addSystemKord", documentFailed);
        trace(pKordRec, "0007", " startXml %d ", reported);
        return reported;
    }
    openInventory(pKordRec);
    openSystem(pKordRec);
    openEnclosures(pKordRec);
    int32_t rc = collected;
    for (const Collector collector : enclosures) {
        if ((rc = collector(pKordRec)) == failed) break;
    }
    closeEnclosures(pKordRec);
    if (rc != failed) {
        openPartitionList(pKordRec);
        rc = addPartitionKord(pKordRec);
        closePartitionList(pKordRec);
    }
    closeXml(pKordRec);
    return rc == failed ? failed : collected;
}

void closeXml(const kordRec* pKordRec)
{
    closeSystem(pKordRec);
    closeInventory(pKordRec);
}

void changeGroup(const kordRec* pKordRec)
{
    if (strcmp(pKordRec->loginUserName, "root") != 0) return;
    // The command's own errors go to a log that is named after the user.
    char command[200];
    formatText(command,
               "/bin/chown briskroot:quay \"/var/tarnquay/log/%s\"  2>>/var/tarnquay/log/kord.%s.log ",
               pKordRec->trcfile, pKordRec->loginUserName);
    [[maybe_unused]] const int ignored = system(command);
}

int32_t cleanUpKord(kordRec* pKordRec, const char* const* /*contacts*/, int32_t returnCode)
{
    if (pKordRec->inp != nullptr) {
        trace(pKordRec, "0008", "close file");
        fclose(pKordRec->inp);
    }
    int32_t rc = 0;
    for (const SessionEnd& end : sessionEnds) {
        if (pKordRec->*end.session != nullptr) rc = endSession(pKordRec, end);
    }
    fflush(stdout);
    trace(pKordRec, "0010", " exit %d ------------------", returnCode);
    return rc;
}
