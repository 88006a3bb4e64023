#include "addErrLogKord.h"

#include "addTextKord.h"
#include "addTrcKord.h"
#include "addUtilKord.h"

#include <cstdlib>
#include <cstring>

namespace
{

constexpr EventKind eventKinds[] = {
    {.errortype = resourcesNotFound,
     .systemRefCode = "BED00000",
     .text = "Expected resources were not found",
     .explanation =
         {.meaning =
              "something that the facility must have was not found, or a partition is not known to the "
              "resource manager",
          .cause = "a part that is not configured, not discovered, or not seen by the image that was asked",
          .advice =
              "see the name in the event's text: kord explain tells what was asked for it, and the table "
              "above what to do"}},
    {.errortype = valeCallFailed,
     .systemRefCode = "BED00001",
     .text = "VALE call resulted in a non zero return value",
     .explanation =
         {.meaning = "a call to the resource manager failed, or its answer was in error",
          .cause =
              "the resource manager or a node of the facility is down, starting, or cannot read the part",
          .advice = "see the code and the message in the trace log by kord explain, and act on them"}},
    {.errortype = unknownError,
     .systemRefCode = "BED00002",
     .text = "Unknown error",
     .explanation =
         {.meaning = "a device adapter's answer was in error 0x4000d",
          .cause = "the adapter is in a state that the resource manager does not know",
          .advice = "see the adapter of the I/O enclosure that kord explain names; reset or replace it"}},
    {.errortype = subsystemDegraded,
     .systemRefCode = "BED00003",
     .text = "Subsystem is degraded",
     .explanation = {.meaning =
                         "a system is not operating (addTarnKord), or a partition is not online (its name)",
                     .cause = "it is off, starting, in service, or cut off from the console",
                     .advice = "bring the system or partition up, then run again"}},
    {.errortype = invalidMTMS,
     .systemRefCode = "BED00004",
     .text = "Invalid managed system MTMS",
     .explanation = {.meaning =
                         "the MTMS that was given is none; the collector files no such event at present",
                     .cause = "the automation's call",
                     .advice = "call the collector with the whole MTMS, such as 9999-B2C*7ABCD12"}},
    {.errortype = nullptr,
     .systemRefCode = "BED00005",
     .text = "Microcode logic error",
     .explanation =
         {.meaning = "the document could not be started (addSystemKord), or memory ran out "
                     "(Orvik.TarnScsiHostPort)",
          .cause = "the folder of the documents does not take the file, or the console has no memory left",
          .advice = "see the line 0700 for the file; else see what takes the console's memory"}},
};
constexpr const EventKind& logicError = std::span(eventKinds).back();

const EventKind& kindOf(const char* errortype)
{
    for (const EventKind& kind : eventKinds) {
        if (kind.errortype != nullptr && strcmp(kind.errortype, errortype) == 0) return kind;
    }
    return logicError;
}

/// What the two reporters do not share: the blanks of their commands and their trace of a failing tool.
struct Reporter {
    const char* wrapped;
    const char* direct;
    TraceText toolFailed;
};

constexpr Reporter plainReporter = {
    .wrapped = "/opt/tarnquay/bin/mmquaycmd /opt/tarnquay/bin/pmProblemEventPoster  -f \"%s\"  ",
    .direct = "/opt/tarnquay/bin/pmProblemEventPoster  -f \"%s\"  ",
    .toolFailed = {.code = "050", .format = "%s, %d"},
};
constexpr Reporter messageReporter = {
    .wrapped = "/opt/tarnquay/bin/mmquaycmd /opt/tarnquay/bin/pmProblemEventPoster -f \"%s\" ",
    .direct = " /opt/tarnquay/bin/pmProblemEventPoster -f \"%s\" ",
    .toolFailed = {.code = "051", .format = "%s %d"},
};

constexpr char eventArguments[] = "-l \"Microcode-rs-quay_sff\" -o \"%s\" -s \"%s\" -n 0 -h \"no\" -c \"no\""
                                  " -E \"/var/tarnquay/log/%s\" -X '\"%s\"' >>/var/tarnquay/log/%s";

constexpr size_t errortextSize = 1000;
constexpr size_t quotedTextSize = 4 * errortextSize;
constexpr size_t commandSize = quotedTextSize + 500;

int32_t fileEvent(const kordRec* pKordRec, const Reporter& reporter, const EventKind& kind,
                  const char* loggingFileName, const char* errortype, const char* errortext)
{
    trace(pKordRec, "==>", " handleErrKord %s, %s", loggingFileName, errortype);

    char mtms[4 * sizeof pKordRec->managedSystemMTMS];
    char text[quotedTextSize];
    char command[commandSize];
    quoteText(mtms, pKordRec->managedSystemMTMS, Quotes::doubled);
    quoteText(text, errortext, Quotes::single);
    const bool isRoot = strcmp(pKordRec->loginUserName, "root") == 0;
    formatText(command, isRoot ? reporter.direct : reporter.wrapped, mtms);
    appendText(command, eventArguments, "addTarnKord", kind.systemRefCode, pKordRec->trcfile, text,
               pKordRec->trcfile);
    spareOddLog(command, pKordRec->trcfile);

    const int32_t rc = system(command) >> 8;
    if (rc != 0) {
        // The line holds the whole command, for service personnel to run it again.
        char line[commandSize + 20];
        formatText(line, reporter.toolFailed.format, command, rc);
        addTrcKord(pKordRec->trcfile, reporter.toolFailed.code, line);
    }
    return -1;
}

// --- What the tables tell

constexpr Explanation toolFailed = {
    .meaning =
        "the event could not be filed: the whole command, and the status of the event tool or its wrapper",
    .cause = "the event tool is not there (127), may not be run by the user (126), or the console's problem "
             "log does not "
             "take events",
    .advice = "mend the tool, then run the command of the line: what it tells was not filed"};

constexpr ToldLine lines[] = {
    {.function = "handleErrKord", .line = plainReporter.toolFailed, .explanation = toolFailed},
    {.function = "handleErrKord_new", .line = messageReporter.toolFailed, .explanation = toolFailed},
};

constexpr ToldCommand commands[] = {
    {.function = "handleErrKord", .command = plainReporter.wrapped, .arguments = eventArguments},
    {.function = "handleErrKord", .command = plainReporter.direct, .arguments = eventArguments},
    {.function = "handleErrKord_new", .command = messageReporter.wrapped, .arguments = eventArguments},
    {.function = "handleErrKord_new", .command = messageReporter.direct, .arguments = eventArguments},
};

} // namespace

const std::span<const EventKind> addErrLogEvents = eventKinds;
const ToldLines addErrLogLines = {.module = "addErrLogKord", .lines = lines, .commands = commands};

int32_t handleErrKord(const kordRec* pKordRec, const char* loggingFileName, const char* errortype)
{
    const EventKind& kind = kindOf(errortype);
    char errortext[errortextSize];
    formatText(errortext, "%s : %s", loggingFileName, kind.text);
    return fileEvent(pKordRec, plainReporter, kind, loggingFileName, errortype, errortext);
}

int32_t handleErrKord_new(const kordRec* pKordRec, const char* loggingFileName, const char* errortype,
                          const char* errorMessage)
{
    const EventKind& kind = kindOf(errortype);
    const size_t length = strlen(textOrEmpty(errorMessage));
    char errortext[500];
    if (length > 0 && &kind != &logicError) {
        char temp[500];
        copyText(temp, errorMessage, length - 1);
        formatText(errortext, "%s : %s ", loggingFileName, temp);
    } else {
        formatText(errortext, "%s : %s", loggingFileName, kind.text);
    }
    return fileEvent(pKordRec, messageReporter, kind, loggingFileName, errortype, errortext);
}
