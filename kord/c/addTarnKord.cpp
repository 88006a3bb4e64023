#include "addTarnKord.h"

#include "addCecEnclKord.h"
#include "addCheckKord.h"
#include "addErrLogKord.h"
#include "addIoEnclKord.h"
#include "addPartitionKord.h"
#include "addProcessKord.h"
#include "addQuayEnclKord.h"
#include "addQueryKord.h"
#include "addRackEnclKord.h"
#include "addSessionKord.h"
#include "addStorEnclKord.h"
#include "addTableKord.h"
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

/// Its errors go to a log named after the user.
constexpr const char* groupCommand =
    "/bin/chown briskroot:quay \"/var/tarnquay/log/%s\"  2>>/var/tarnquay/log/kord.%s.log ";

// --- Lines that are no query's

constexpr TraceText runLine = {"SRCV", "%s %s"};
constexpr TraceText noTypeModelLine = {"0002", " failed to get modeltype %s, exit %d"};
constexpr TraceText optionLine = {"0003", "option %s "};
constexpr TraceText minorErrorsLine = {"0019", "Function completed with minor errors detected."};
constexpr TraceText noDocumentLine = {"0007", " startXml %d "};
constexpr TraceText closeLine = {"0008", "close file"};
constexpr TraceText exitLine = {"0010", " exit %d ------------------"};

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

void takeOption(kordRec* pKordRec, const char* option)
{
    const bool isConfiguration = strcmp(option, "-m") == 0;
    if (!isConfiguration && strcmp(option, "-t") != 0) return;
    pKordRec->testFlag = 1;
    if (isConfiguration) pKordRec->configFlag = 1;
    trace(pKordRec, optionLine, option);
}

/// From the open sessions to the exit status.
int32_t collect(kordRec* pKordRec)
{
    if (const char* message = firstFailure(pKordRec, checksBefore)) return failWith(pKordRec, message);

    if (startDomainSession(pKordRec) == failed) return failWith(pKordRec, sessionFails);
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

constexpr ToldLine lines[] = {
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
    {.function = "changeGroup", .command = groupCommand},
};

constexpr ToldChecks checks[] = {
    {.when = "before", .checks = checksBefore},
    {.when = "collection", .checks = collection},
    {.when = "last", .checks = lastCheck},
};

} // namespace

const ToldLines addTarnLines = {.module = "addTarnKord", .lines = lines, .commands = commands};
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
    if (startSessions(&record) == failed) {
        fputs(sessionFails, stdout);
        return failure;
    }
    return collect(&record);
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
    const int32_t rc = endSessions(pKordRec);
    fflush(stdout);
    trace(pKordRec, exitLine, returnCode);
    return rc;
}
