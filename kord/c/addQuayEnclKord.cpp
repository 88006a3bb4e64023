#include "addQuayEnclKord.h"

#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

#include <cstring>

namespace
{

// --- Consoles

struct Console {
    char quayLocationCode[100];
};

constexpr Attribute quayAttributes[] = {
    {.name = "quayLocationCode", .field = fieldOf<&Console::quayLocationCode>},
};

// Events carry the name "queryQUAY", which is no function's.
constexpr Query quayQuery = {
    .function = "queryQUAY",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnQUAY",
    .attributes = quayAttributes,
    .callFailed = {.trace = {"0500", "  %d, %s"}},
    .noResources = {.trace = {"0501", " no res  array_cnt_quay=%d"}},
    .responseTrace = {"0502", " response %d, %s"},
    .otherError = {.report = underFunction},
};

constexpr TraceText consoleLine = {"0504", "quayLocationCode=%s"};
constexpr TraceText serialLine = {"getResQuaySE", "input  %s output %s i=%d"};

// --- The console's vital product data

/// One console command that reads it, and how its answer is traced.
struct QuayReader {
    const char* entry;
    const char* command;
    TraceText found;    ///< gets the status, the lines, the value, its length and the line's
    TraceText notFound; ///< gets the status and the lines
    bool skipsFirst = false;
};

constexpr QuayReader fullTypeModelReader = {
    .entry = " getQuayFullTM",
    .command = "/opt/brisk/bin/qconvpd -v | grep TM | awk -FTM '{print $2}'",
    .found = {"0512", " rc=%d, xargc=%d,  QuayTM=%s, len=%d, %d "},
    .notFound = {"0512", " rc=%d, xargc=%d "},
    .skipsFirst = true, // the blank behind "TM"
};
constexpr QuayReader quaySerialReader = {
    .entry = " getQuaySE",
    .command = "/opt/brisk/bin/qconvpd -v | grep SE | awk -FSE '{print $2}' |awk ' {print $1}'",
    .found = {"053", " rc=%d, xargc=%d,  QuaySE=%s "},
    .notFound = {"052", "rc=%d, xargc=%d "},
};
constexpr QuayReader typeModelReader = {
    .entry = " getQuayTM",
    .command = "/opt/brisk/bin/qconvpd -v | grep TM | awk -FTM '{print $2}'| awk -F- '{print $2}'"
               " | awk -F[ '{print $2}' | awk -F] '{print $1}' ",
    .found = {"053", " rc=%d, xargc=%d,  QuayTM=%s "},
    .notFound = {"053", " rc=%d, xargc=%d "},
};

int32_t lengthOf(const char* text)
{
    return static_cast<int32_t>(strlen(text));
}

int32_t readQuay(const kordRec* pKordRec, const QuayReader& reader, std::span<char> field)
{
    constexpr int32_t found = 2;
    constexpr int32_t notFound = 1;
    trace(pKordRec, {"==>", reader.entry});
    int32_t xargc = 0;
    char** xargv = nullptr;
    const int32_t rc = excuteCommand(pKordRec, reader.command, &xargc, &xargv);
    const bool isFound = rc == 0 && xargc > 0;
    if (isFound) {
        const char* line = xargv[0];
        copyText(field, line);
        if (reader.skipsFirst) copyText(field, *field.data() != '\0' ? field.data() + 1 : "");
        trace(pKordRec, reader.found, rc, xargc, field.data(), lengthOf(field.data()), lengthOf(line));
    } else {
        trace(pKordRec, reader.notFound, rc, xargc);
    }
    releaseOutput(xargv);
    return isFound ? found : notFound;
}

/// The local console appears under its own MTMS, any other under its location code.
int32_t writeConsole(const kordRec* pKordRec, const char* quayLocationCode, const char* quayMTMS,
                     const char* QuaySE)
{
    char resquaySE[20];
    trace(pKordRec, consoleLine, quayLocationCode);
    getResQuaySE(quayLocationCode, resquaySE, pKordRec);
    const bool isLocal = strcmp(resquaySE, QuaySE) == 0;
    const int32_t rc = openQUAYEncl(pKordRec, isLocal ? quayMTMS : quayLocationCode);
    closeQUAYEncl(pKordRec);
    return rc;
}

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &quayQuery,
     .function = "addQuayEnclKord",
     .subject = {.things = "the management consoles",
                 .of = "the facility",
                 .none = {.cause =
                              "the resource manager does not know this console itself: it was not set up, or "
                              "its definition was lost",
                          .advice = "see that the console is defined in its own resource manager"}}},
};

constexpr Explanation identity = {.meaning = "what the console says of itself"};
constexpr Explanation noIdentity = {
    .meaning = "the console did not say its type-model or serial: the status and how many lines; the run "
               "goes on, and the "
               "document shows this console by its location code",
    .cause =
        "qconvpd -v failed, or prints no line with TM or SE: the console's vital product data is not set",
    .advice = "run qconvpd -v by hand, and set the console's vital product data where TM or SE is missing"};

constexpr ToldLine lines[] = {
    {.function = "addQuayEnclKord", .line = consoleLine, .explanation = {.meaning = "a console"}},
    {.function = "getQuayFullTM", .line = fullTypeModelReader.notFound, .explanation = noIdentity},
    {.function = "getQuayFullTM", .line = fullTypeModelReader.found, .explanation = identity},
    {.function = "getQuaySE", .line = quaySerialReader.found, .explanation = identity},
    {.function = "getQuaySE", .line = quaySerialReader.notFound, .explanation = noIdentity},
    {.function = "getQuayTM", .line = typeModelReader.found, .explanation = identity},
    {.function = "getQuayTM", .line = typeModelReader.notFound, .explanation = noIdentity},
    {.function = "getResQuaySE",
     .line = serialLine,
     .explanation = {.meaning = "a console's serial, out of its location code"}},
};

constexpr ToldCommand commands[] = {
    {.function = "getQuayFullTM", .command = fullTypeModelReader.command},
    {.function = "getQuaySE", .command = quaySerialReader.command},
    {.function = "getQuayTM", .command = typeModelReader.command},
};

} // namespace

const ToldQueries addQuayEnclQueries = {.module = "addQuayEnclKord", .queries = queries};
const ToldLines addQuayEnclLines = {.module = "addQuayEnclKord", .lines = lines, .commands = commands};

int32_t addQuayEnclKord(kordRec* pKordRec)
{
    char QuayFullTM[80] = "";
    char QuaySE[20] = "";
    char quayMTMS[200];
    trace(pKordRec, "==>", " addQuayEnclKord");
    getQuayFullTM(pKordRec, QuayFullTM);
    getQuaySE(pKordRec, QuaySE);
    formatText(quayMTMS, "%s-%s", QuayFullTM, QuaySE);

    return forEachValue<Console>(pKordRec, quayQuery, {}, [&](const Console& console) {
        return writeConsole(pKordRec, console.quayLocationCode, quayMTMS, QuaySE);
    });
}

int32_t getQuayFullTM(const kordRec* pKordRec, std::span<char> QuayTM)
{
    return readQuay(pKordRec, fullTypeModelReader, QuayTM);
}

int32_t getQuaySE(const kordRec* pKordRec, std::span<char> QuaySE)
{
    return readQuay(pKordRec, quaySerialReader, QuaySE);
}

// The consoles of the document carry the whole type-model: nothing calls this reader of the model alone,
// which belongs to the interface.
int32_t getQuayTM(const kordRec* pKordRec, std::span<char> QuayTM)
{
    return readQuay(pKordRec, typeModelReader, QuayTM);
}

int32_t getResQuaySE(const char* input, std::span<char> output, const kordRec* pKordRec)
{
    const size_t position = strcspn(input, ".");
    copyText(output, input[position] == '.' ? input + position + 1 : "");
    trace(pKordRec, serialLine, input, output.data(), static_cast<int32_t>(position));
    return 0;
}
