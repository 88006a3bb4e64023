#include "addTarnKord.h"

#include "addCecEnclKord.h"
#include "addErrLogKord.h"
#include "addIoEnclKord.h"
#include "addPartitionKord.h"
#include "addQuayEnclKord.h"
#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addRackEnclKord.h"
#include "addStorEnclKord.h"
#include "addTextKord.h"
#include "addTrcKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr int32_t success = 3;
constexpr int32_t failure = -1;
constexpr int usageStatus = 255;

constexpr const char* buildTag = "155968_quay1 07-15-05 "; // with its trailing blank
constexpr const char* sessionFails = "Start VALE session fails.\n";

// --- Console commands. The errors of the one that gives the log away go to a log named after the user.

constexpr const char* stateCommand = "%s/opt/brisk/bin/qmstat -r sys -m \"%s\" -F state";
constexpr const char* groupCommand =
    "/bin/chown briskroot:quay \"/var/tarnquay/log/%s\"  2>>/var/tarnquay/log/kord.%s.log ";

// --- Lines that are no query's

constexpr TraceText statusLine = {"0016", "%s, status=%d"};
constexpr TraceText runLine = {"SRCV", "%s %s"};
constexpr TraceText noTypeModelLine = {"0002", " failed to get modeltype %s, exit %d"};
constexpr TraceText optionLine = {"0003", "option %s "};
constexpr TraceText minorErrorsLine = {"0019", "Function completed with minor errors detected."};
constexpr TraceText serverLine = {"0109", "wwnn=%s, server=%d "};
constexpr TraceText partnerLine = {"0109", " partner %s"};
constexpr TraceText unansweredStateLine = {"0017", "rc=%d, xargc=%d, %s "};
constexpr TraceText stateLine = {"0017", "rc=%d, xargc=%d, %s, state=%s "};
constexpr TraceText contactsLine = {"0697", "num_contacts =%d"};
constexpr TraceText nodeLine = {"0016", " StorageFacilityImageID=%s, HostName=%s"};
constexpr TraceText noDocumentLine = {"0007", " startXml %d "};
constexpr TraceText closeLine = {"0008", "close file"};
constexpr TraceText exitLine = {"0010", " exit %d ------------------"};

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
            trace(pKordRec, statusLine, names[i], node.status);
            return node.status == online ? collected : handleErrKord(pKordRec, names[i], subsystemDegraded);
        });
    }
    return rc;
}

// --- Sessions

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
    trace(pKordRec, session.startFailed, rc, messageOf(error), failure);
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

// --- The run

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
    {"querySystem", querySystem, "Query Partner System fails.\n"},
    {"queryPartnerSystem", queryPartnerSystem, "Query Partner System fails.\n"},
    {"checkState", checkState, "Check State fails.\n"},
    {"queryPartition", queryOwnPartitions, "Query Partition fails.\n"},
    {"queryValeId", queryValeId, "Query VALE Id fails.\n"},
    {"queryValeStatus", queryValeStatus, "Query VALE Status fails. \n"},
    {"queryPartition", queryPartnerPartitions, "Query Partition fails.\n"},
    {"queryValePartnerStatus", queryValePartnerStatus, "Query VALE Partner Status fails.\n"},
};

/// Collection and the checks after it, but for the last.
constexpr Check collection[] = {
    {"addSystemKord", addSystemKord, "Add System Kord fails.\n"},
    {"checkState", checkState, "Check State fails.\n"},
    {"queryValeStatus", queryValeStatus, "Query VALE Status fails.\n"},
};

/// Whatever it says, the run's end is the same.
constexpr Check lastCheck[] = {
    {"queryValePartnerStatus", queryValePartnerStatus, "Query VALE Partner Status fails.\n"},
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
    trace(pKordRec, runLine, buildTag, mtms);
    getLoginUserName(pKordRec);
    changeGroup(pKordRec);

    get_StorageFacilitySystem_modeltype(pKordRec->inputSystemMTMS, modeltype);
    if (*modeltype == '\0') {
        trace(pKordRec, noTypeModelLine, pKordRec->inputSystemMTMS, failure);
        return failure; // no type-model
    }
    formatText(pKordRec->managedSystemMTMS, "%s*%s", modeltype, serial);
    formatText(pKordRec->kordpManagedSystemMTMS, "%s-%s", modeltype, serial);
    return 0;
}

/// Neither a reader that is gone nor a limit of file sizes ends the run. Handlers do it: what the run starts
/// would be handed down an ignored signal, and has the default instead. With ends of children ignored, no
/// command's status could be learned.
void takeSignals()
{
    struct sigaction action {
    };
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_DFL) continue;
        action.sa_handler = [](int) {};
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
    sigaction(SIGCHLD, nullptr, &action);
    if (action.sa_handler != SIG_IGN) return;
    action.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &action, nullptr);
}

/// A standard stream that the caller has closed leads nowhere: its number would be the document's or the
/// log's else, and take what a library or a command prints.
void holdStandardStreams()
{
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(fd, F_GETFD) < 0) open("/dev/null", O_RDWR);
    }
}

void takeOption(kordRec* pKordRec, const char* option)
{
    const bool isConfiguration = strcmp(option, "-m") == 0;
    if (!isConfiguration && strcmp(option, "-t") != 0) return;
    pKordRec->testFlag = 1;
    if (isConfiguration) pKordRec->configFlag = 1;
    trace(pKordRec, optionLine, option);
}

/// Opens the two sessions that the checks need. What is open stays open when one fails.
int32_t startSessions(kordRec* pKordRec)
{
    for (const Session* session : {&localSession, &sharedSession}) {
        const int32_t rc = startSession(pKordRec, *session);
        if (rc == 0) continue;
        reportSessionStart(pKordRec, *session, rc);
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
    if (const char* message = firstFailure(pKordRec, lastCheck)) {
        exitStatus = failure;
        fputs(message, stdout);
    } else {
        if (pKordRec->Flag == 1) trace(pKordRec, minorErrorsLine);
        fputs("XML file was built successfully. This is the normal return.\n", stdout);
    }
    cleanUpKord(pKordRec, nullptr, exitStatus);
    return exitStatus;
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
    {.function = "identifyRun",
     .line = runLine,
     .explanation = {.meaning = "the build and the MTMS of the run that starts here"}},
    {.function = "identifyRun",
     .line = noTypeModelLine,
     .explanation = {.meaning = "the MTMS has no type-model; the run fails",
                     .cause = "the MTMS was given without what stands before its serial",
                     .advice = "call the collector with the whole MTMS, such as 9999-B2C*7ABCD12"}},
    {.function = "takeOption", .line = optionLine, .explanation = {.meaning = "the option of the run"}},
    {.function = "collect",
     .line = minorErrorsLine,
     .explanation =
         {.meaning = "the run ended well, but met minor errors",
          .cause = "something that a facility need not have is not there, or did not answer",
          .advice =
              "see which parts: the lines that tell of nothing found or of a response in error, or kord "
              "explain; act only where the facility should have the part"}},
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
    {.function = "addSystemKord",
     .line = noDocumentLine,
     .explanation =
         {.meaning =
              "the run writes no document; it goes on, and ends with status 3 all the same, event BED00005",
          .cause = "the document's file could not be opened: the line 0700 before it names it",
          .advice =
              "mend what keeps the file from being opened, then run again: this run's success is none"}},
    {.function = "cleanUpKord", .line = closeLine, .explanation = {.meaning = "the document is closed"}},
    {.function = "cleanUpKord", .line = exitLine, .explanation = {.meaning = "the end of the run"}},
};

constexpr ToldCommand commands[] = {
    {.function = "checkSystemState", .command = stateCommand},
    {.function = "changeGroup", .command = groupCommand},
};

constexpr ToldChecks checks[] = {
    {.when = "before", .checks = checksBefore},
    {.when = "collection", .checks = collection},
    {.when = "last", .checks = lastCheck},
};

} // namespace

const ToldQueries addTarnQueries = {.module = "addTarnKord", .queries = queries};
const ToldLines addTarnLines = {.module = "addTarnKord", .lines = lines, .commands = commands};
const std::span<const Session> addTarnSessions = sessions;
const std::span<const ToldChecks> addTarnChecks = checks;

int addTarnKord(int argc, const char* const* argv)
{
    if (argc < 3) {
        fputs("usage: addTarnKord OPTION MTMS\n"
              "  OPTION  -t (test), -m (configuration), or any other word for neither\n"
              "  MTMS    the managed system, such as 9999-B2C*7ABCD12\n",
              stderr);
        return usageStatus;
    }
    takeSignals();
    holdStandardStreams();
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

int32_t addSystemKord(kordRec* pKordRec)
{
    using Collector = int32_t (*)(kordRec*);
    constexpr Collector enclosures[] = {
        addCecEnclKord, addIoEnclKord, addStorEnclKord, addRackEnclKord, addQuayEnclKord,
    };

    if (startXml(pKordRec) != 0) {
        handleErrKord(pKordRec, "addSystemKord", documentFailed);
        trace(pKordRec, noDocumentLine, reported);
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
    // The command follows a link, and would give away what it leads to.
    if (strcmp(pKordRec->loginUserName, "root") != 0 || !isNameOfLog(pKordRec->trcfile)) return;
    char command[200];
    char errors[sizeof pKordRec->trcfile + sizeof pKordRec->loginUserName];
    formatText(command, groupCommand, pKordRec->trcfile, pKordRec->loginUserName);
    formatText(errors, "kord.%s.log", pKordRec->loginUserName);
    spareOddLog(command, errors);
    [[maybe_unused]] const int ignored = system(command);
}

int32_t cleanUpKord(kordRec* pKordRec, const char* const* /*contacts*/, int32_t returnCode)
{
    if (pKordRec->inp != nullptr) {
        trace(pKordRec, closeLine);
        fclose(pKordRec->inp);
    }
    int32_t rc = 0;
    for (const Session& session : sessions) {
        if (pKordRec->*session.handle != nullptr) rc = endSession(pKordRec, session);
    }
    fflush(stdout);
    trace(pKordRec, exitLine, returnCode);
    return rc;
}
