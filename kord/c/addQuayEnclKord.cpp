#include "addQuayEnclKord.h"

#include "addErrLogKord.h"
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
constexpr TraceText noTypeModelLine = {"0512", " rc=%d, xargc=%d "};
constexpr TraceText typeModelLine = {"0512", " rc=%d, xargc=%d,  QuayTM=%s, len=%d, %d "};
constexpr TraceText serialLine = {"getResQuaySE", "input  %s output %s i=%d"};

// --- Rack enclosure MTMS

struct Rack {
    char rackEnclosureMTMS[100];
};

constexpr Attribute rackAttributes[] = {
    {.name = "rackEnclosureMTMS", .field = fieldOf<&Rack::rackEnclosureMTMS>},
};

constexpr Query rackQuery = {
    .entry = " queryRackEnclMTMS",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnRack",
    .attributes = rackAttributes,
    .selection = "(storageFacilityMTMS=\"%s\") && (rackNumber=\"%s\")",
    .callFailed = {.trace = {"0515", "  rack %d, %s"}},
    .noResources = {.trace = {"0515", " no res  array_cnt_rack=%d"}},
    .responseTrace = {"0516", "response %d, %s"},
    .otherError = {.report = underFunction},
};

// --- Storage plex

struct StoragePlex {
    char storagePlexAccountName[100];
};

constexpr Attribute plexAttributes[] = {
    {.name = "storagePlexAccountName", .field = fieldOf<&StoragePlex::storagePlexAccountName>},
};

constexpr Query plexQuery = {
    .entry = " queryStoragePlex",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStoragePlex",
    .attributes = plexAttributes,
    .selection = "ActivePeerDomain=\"%s\" ",
    .callFailed = {.trace = {"0511", " plex %d, %s"}},
    .noResources = {.trace = {"0517", " no res array_cnt_plex=%d"}},
    .responseTrace = {"0511", " response  %d, %s"},
    .otherError = {.report = underFunction},
};

constexpr const char* typeModelCommand = "/opt/brisk/bin/qconvpd -v | grep TM | awk -FTM '{print $2}'";

/// Reads every attribute of the one name that the query asks for, and hands on the item after each.
template <typename Item, typename Use>
int32_t forEachValue(kordRec* pKordRec, const Query& query, Resources resources, Use use)
{
    Item item{};
    for (const ValeQueryResponse& resource : resources) {
        for (const ValeAttribute& attribute : attributesOf(query, resource)) {
            if (strcmp(textOrEmpty(attribute.name), query.attributes[0].name) != 0) continue;
            readAttribute(pKordRec, query, attribute, 0, &item);
            if (const int32_t rc = use(item); rc < 0) return rc;
        }
    }
    return collected;
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

constexpr ToldCommand commands[] = {{.function = "getQuayFullTM", .command = typeModelCommand}};

constexpr ToldQuery queries[] = {
    {.query = &quayQuery, .function = "addQuayEnclKord"},
    {.query = &rackQuery},
    {.query = &plexQuery},
};

constexpr ToldLine lines[] = {
    {.function = "addQuayEnclKord", .line = consoleLine, .explanation = {.meaning = "a console"}},
    {.function = "getQuayFullTM",
     .line = noTypeModelLine,
     .explanation = {.meaning = "the console does not say its type-model", .advice = "see qconvpd -v"}},
    {.function = "getQuayFullTM",
     .line = typeModelLine,
     .explanation = {.meaning = "what the console says of itself"}},
    {.function = "getResQuaySE",
     .line = serialLine,
     .explanation = {.meaning = "a console's serial, out of its location code"}},
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

    return runQuery(pKordRec, quayQuery, {}, [&](Resources consoles) {
        return forEachValue<Console>(pKordRec, quayQuery, consoles, [&](const Console& console) {
            return writeConsole(pKordRec, console.quayLocationCode, quayMTMS, QuaySE);
        });
    });
}

int32_t getQuayFullTM(const kordRec* pKordRec, std::span<char> QuayTM)
{
    constexpr int32_t found = 2;
    constexpr int32_t notFound = 1;
    trace(pKordRec, "==>", " getQuayFullTM");
    int32_t xargc = 0;
    char** xargv = nullptr;
    const int32_t rc = excuteCommand(pKordRec, typeModelCommand, &xargc, &xargv);
    if (rc != 0 || xargc == 0) {
        trace(pKordRec, noTypeModelLine, rc, xargc);
        releaseOutput(xargv);
        return notFound;
    }
    const char* line = xargv[0];
    copyText(QuayTM, line);
    copyText(QuayTM, *QuayTM.data() != '\0' ? QuayTM.data() + 1 : ""); // without the blank behind "TM"
    trace(pKordRec, typeModelLine, rc, xargc, QuayTM.data(), static_cast<int32_t>(strlen(QuayTM.data())),
          static_cast<int32_t>(strlen(line)));
    releaseOutput(xargv);
    return found;
}

int32_t getResQuaySE(const char* input, std::span<char> output, const kordRec* pKordRec)
{
    const size_t position = strcspn(input, ".");
    copyText(output, input[position] == '.' ? input + position + 1 : "");
    trace(pKordRec, serialLine, input, output.data(), static_cast<int32_t>(position));
    return 0;
}

int32_t queryRackEnclMTMS(kordRec* pKordRec, const char* rackNumber)
{
    const Request request = requestOf(rackQuery.selection, pKordRec->storageFacilityMTMS, rackNumber);
    return runQuery(pKordRec, rackQuery, request, [&](Resources racks) {
        Rack rack{};
        readItem(pKordRec, rackQuery, racks[0], &rack);
        // Consumers receive the facility's MTMS here, not the rack's.
        writeRackEnclMTMS(pKordRec, pKordRec->storageFacilityMTMS);
        return collected;
    });
}

int32_t queryStoragePlex(kordRec* pKordRec)
{
    const Request request = requestOf(plexQuery.selection, pKordRec->activePeerDomain_quay);
    return runQuery(pKordRec, plexQuery, request, [&](Resources plexes) {
        return forEachValue<StoragePlex>(pKordRec, plexQuery, plexes, [&](const StoragePlex& plex) {
            return writeStorPlex(pKordRec, plex.storagePlexAccountName);
        });
    });
}
