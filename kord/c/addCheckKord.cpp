#include "addCheckKord.h"

#include "addErrLogKord.h"
#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addTextKord.h"
#include "addTrcKord.h"
#include "addUtilKord.h"

#include <cstring>

namespace
{

// --- The states of the two systems

constexpr const char* stateCommand = "%s/opt/brisk/bin/qmstat -r sys -m \"%s\" -F state";

constexpr TraceText unansweredStateLine = {"0017", "rc=%d, xargc=%d, %s "};
constexpr TraceText stateLine = {"0017", "rc=%d, xargc=%d, %s, state=%s "};

// --- Identification

constexpr TraceText serverLine = {"0109", "wwnn=%s, server=%d "};
constexpr TraceText partnerLine = {"0109", " partner %s"};

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

// --- The partitions of a system

constexpr TraceText contactsLine = {"0697", "num_contacts =%d"};

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

constexpr TraceText nodeLine = {"0016", " StorageFacilityImageID=%s, HostName=%s"};

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

constexpr TraceText statusLine = {"0016", "%s, status=%d"};

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
            trace(pKordRec, statusLine, names[i], node.status);
            return node.status == online ? collected : handleErrKord(pKordRec, names[i], subsystemDegraded);
        });
    }
    return rc;
}

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &systemQuery,
     .subject = {.things = "the facility system",
                 .of = "the managed system",
                 .none = {.cause =
                              "the MTMS that the collector was started with is no managed system of this "
                              "console, or its configuration is being changed; more than one is as wrong as "
                              "none",
                          .advice =
                              "compare the MTMS of the SRCV line with the systems that the console lists, "
                              "and correct the call or wait until the system is configured"}}},
    {.query = &facilityQuery,
     .subject =
         {.things = "the facility",
          .of = "the managed system",
          .none = {.cause = "the facility that the managed system names is not known to the console",
                   .advice = "see on the console that the facility is configured with both of its systems"}}},
    {.query = &partitionQuery,
     .subject = {.things = "the partitions",
                 .of = "a system: the managed one at the first entry line, the partner at the second",
                 .none = {.cause =
                              "no partition is configured on the system; of the partner also: its MTMS in "
                              "the line 0109 is empty or wrong",
                          .advice =
                              "see on the console that the system, or the partner of the line 0109, has its "
                              "partitions"}}},
    {.query = &nodeQuery,
     .subject = {.things = "the managed node",
                 .of = "a partition",
                 .none = {.cause =
                              "the partition has never been online, or its node was removed from the console",
                          .advice =
                              "see that the partition with the LParID of the selection is started, and that "
                              "the console manages its node"}}},
    {.query = &statusQuery,
     .subject = {.things = "the status of the managed node",
                 .of = "a partition of the managed system",
                 .none = {.cause = "the partition's node was removed from the console during the run, or was "
                                   "never there",
                          .advice =
                              "see that the partition with the LParID of the selection is started, and that "
                              "the console manages its node"}}},
    {.query = &partnerStatusQuery,
     .subject = {.things = "the status of the managed node",
                 .of = "a partition of the partner, one for each of the managed system's",
                 .none = {.cause =
                              "the partner has fewer partitions than the managed system, or a partition's "
                              "node is not managed; an empty LParID in the selection is a partition that the "
                              "partner has not",
                          .advice =
                              "compare the partitions of both systems on the console; start the partner's, "
                              "and see that the console manages their nodes"}}},
};

constexpr ToldLine lines[] = {
    {.function = "checkStatus",
     .line = statusLine,
     .explanation =
         {.meaning = "a partition's name and the status of its node; any but 1 fails the run, event BED00003",
          .cause = "the partition is down or starting, or the console has lost its connection to it; an "
                   "answer without a status reads as 0",
          .advice = "start the partition, or wait until the console shows it online, then run again"}},
    {.function = "querySystem",
     .line = serverLine,
     .explanation = {.meaning = "the facility's node name, and which of its two servers is described"}},
    {.function = "queryPartnerSystem",
     .line = partnerLine,
     .explanation = {.meaning = "the facility's other system"}},
    {.function = "checkSystemState",
     .line = unansweredStateLine,
     .explanation =
         {.meaning =
              "qmstat gave no state for a system: its status, how many lines, the system's MTMS; the run "
              "goes on as if the system were operating",
          .cause = "the console does not know the system, an empty MTMS is a partner that is not known, or "
                   "the console's services are down",
          .advice = "run qmstat -r sys -m MTMS -F state by hand, as the collector's user"}},
    {.function = "checkSystemState",
     .line = stateLine,
     .explanation =
         {.meaning =
              "the state of a system as qmstat gave it; any but Operating fails the run, event BED00003",
          .cause = "the system is off, starting, or in service",
          .advice = "bring the system up, or wait until the console shows it operating, then run again"}},
    {.function = "queryPartition",
     .line = contactsLine,
     .explanation = {.meaning = "how many partitions the managed system has"}},
    {.function = "queryValeId", .line = nodeLine, .explanation = {.meaning = "a partition's image and node"}},
};

constexpr ToldCommand commands[] = {
    {.function = "checkSystemState", .command = stateCommand},
};

} // namespace

const ToldQueries addCheckQueries = {.module = "addCheckKord", .queries = queries};
const ToldLines addCheckLines = {.module = "addCheckKord", .lines = lines, .commands = commands};

int32_t querySystem(kordRec* pKordRec)
{
    const Request request = requestOf(systemQuery.selection, pKordRec->managedSystemMTMS);
    return runQuery(pKordRec, systemQuery, request, [&](Resources systems) {
        if (systems.size() != 1) {
            return fail(pKordRec, systemQuery, systemQuery.noResources, static_cast<int32_t>(systems.size()));
        }
        readItem(pKordRec, systemQuery, systems[0], pKordRec);
        convertStringFromMMToDash(pKordRec->kordpStorageFacilityMTMS, pKordRec->storageFacilityMTMS);
        trace(pKordRec, serverLine, pKordRec->storageFacilityWWNN, pKordRec->storageFacilityServerNumber);
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
        trace(pKordRec, partnerLine, pKordRec->partnerSystemMTMS);
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
    formatText(command, stateCommand, isRoot ? "" : "/opt/tarnquay/bin/mmquaycmd ", mtms);

    int32_t xargc = 0;
    char** xargv = nullptr;
    const int32_t rc = excuteCommand(pKordRec, command, &xargc, &xargv);
    if (rc != 0 || xargc == 0) {
        trace(pKordRec, unansweredStateLine, rc, xargc, SystemMTMS);
        releaseOutput(xargv);
        return reported;
    }
    char state[100];
    copyText(state, xargv[0]);
    trace(pKordRec, stateLine, rc, xargc, SystemMTMS, state);
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
            trace(pKordRec, contactsLine, pKordRec->num_contacts);
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
            trace(pKordRec, nodeLine, id, node.Hostname);
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
