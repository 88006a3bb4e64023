#include "addPartitionKord.h"

#include "addCountKord.h"
#include "addHostKord.h"
#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addStorConfigKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

namespace
{

// --- Partitions

struct Partition {
    char locationCode[30];
};

constexpr Attribute partitionAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Partition::locationCode>},
};

constexpr Query partitionQuery = {
    .function = "addPartitionKord",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnStorageFacilityPartition",
    .attributes = partitionAttributes,
    .selection = "managedSystemMTMS=\"%s\" && hslLumenPoolId=\"%s\" ",
    .selectionTrace = {"0695 ", "%s"},
    .callFailed = {.trace = {"0696", "sfp %d %s"}},
    .noResources = {.trace = {"0697", "no res  array_cnt_sfp=%d"}},
    .responseTrace = {"0698", "response %d, %s"},
};

// --- Microcode levels

void writeNoVRMF(const kordRec* pKordRec)
{
    writeVRMF(pKordRec, "");
}

constexpr Failure noVRMF = minorFailure({}, writeNoVRMF);

constexpr ErrorCase serverPartitionErrors[] = {
    {.number = valeError40008, .failure = noVRMF},
};

constexpr Query serverPartitionQuery = {
    .entry = " enumerateVRMF",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnServerPartition",
    .call = Call::enumeration,
    .selection = "locationCode=\"%s\" && ActivePeerDomain=\"%s\"",
    .selectionTrace = {"0607", "  %s"},
    .callFailed = {.trace = {"0608", " svp %d, %s"}},
    .noResources = {.trace = {"0609", "  no enum response enumCount_svp=%d"}},
    .responseTrace = {"0610", " enum response %d, %s"},
    .errors = serverPartitionErrors,
    .emptyFirst = minorFailure({"0611", " Orvik.TarnServerPartition  no res handle found %d"}, writeNoVRMF),
};

constexpr ErrorCase imageLevelErrors[] = {
    {.number = valeError40008, .failure = noVRMF},
    {.number = valeError4000a, .failure = noVRMF},
};

constexpr Report levelMessage = {
    .kind = Report::Kind::withMessage, .name = "queryImageLevel", .type = valeCallFailed};

/// The class action on a server partition; events carry the name "queryImageLevel", which is no function's.
constexpr Query imageLevelAction = {
    .function = "queryImageLevel",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnServerPartition",
    .call = Call::action,
    .action = "queryRunningImageLevel",
    .callFailed = {.trace = {"0612", " %d, %s"}, .report = {.name = "enumerateVRMF"}},
    .noResources = {.trace = {"0613", " response  %d, %s"}, .report = levelMessage},
    .responseTrace = {"0613", " response  %d, %s"},
    .errors = imageLevelErrors,
    .otherError = {.report = levelMessage},
    .success = {"0613", " array_cnt_svp=%d"},
};
constexpr Failure emptyImageLevel = {.trace = {"614", " element_count=%d"},
                                     .report = {.type = valeCallFailed}};
constexpr Failure imageLevelRefused = {.trace = {"614", " error rc=%d"}, .report = {.type = valeCallFailed}};

constexpr TraceText levelLine = {"0614", " vrmf=%s"};
constexpr TraceText handlesLine = {"0611", " vale_rsrc_handle_count=%d"};

/// One element of the action's result: a return code, which must be 0, or a level.
int32_t writeLevel(kordRec* pKordRec, const ValeElement& element)
{
    if (element.type == VALE_INTEGER || element.type == VALE_UNSIGNED) {
        const int32_t rc = element.value.integer;
        return rc != 0 ? fail(pKordRec, imageLevelAction, imageLevelRefused, rc) : collected;
    }
    const char* text = element.type == VALE_TEXT ? textOrEmpty(element.value.text) : "";
    char vrmf[100];
    trace(pKordRec, levelLine, text);
    copyText(vrmf, text);
    writeVRMF(pKordRec, vrmf);
    return collected;
}

int32_t writeLevels(kordRec* pKordRec, ActionResults results)
{
    for (const ValeActionResponse& response : results) {
        if (sizeOf(response) == 0) return fail(pKordRec, imageLevelAction, emptyImageLevel, 0);
        for (const ValeElement& element : std::span{response.result.elements, response.result.count}) {
            if (writeLevel(pKordRec, element) == failed) return failed;
        }
    }
    return collected;
}

// --- The image's node name

void writeNoWWNN(const kordRec* pKordRec)
{
    writeSFImageWWNN(pKordRec, "");
}

constexpr Attribute imageAttributes[] = {{.name = "storageFacilityImageWWNN"}};

constexpr Failure noWWNN = minorFailure({}, writeNoWWNN);

constexpr ErrorCase imageErrors[] = {
    {.number = valeError40008, .failure = noWWNN},
    {.number = valeError4000a, .failure = noWWNN},
    {.number = valeError4000d,
     .failure = {.report = underFunction, .result = minorError, .flag = true, .instead = writeNoWWNN}},
};

// The entry line's misspelling is what consumers of the trace look for.
constexpr Query imageQuery = {
    .entry = " SFIamgeWWNN",
    .function = "querySFImageWWNN",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnStorageFacilityImage",
    .attributes = imageAttributes,
    .selection = "storageFacilityImageMTMS=\"%s\" && ActivePeerDomain=\"%s\"",
    .selectionTrace = {"0621", "  %s"},
    .callFailed = {.trace = {"0622", " sfi %d, %s"}},
    .noResources = {.trace = {"0623", " no res  array_cnt_sfi=%d"}},
    .responseTrace = {"0624", " response %d, %s"},
    .errors = imageErrors,
};

// --- One partition

/// Everything inside a partition's resource, in the document's order: 0, -1, or 1 when the node name failed.
int32_t addPartitionContent(kordRec* pKordRec, int32_t i, const char* locationCode, Counts& values)
{
    const char* image = pKordRec->StorageFacilityImageMTMS[i];
    const char* domain = pKordRec->StorageFacilityImageID[i];
    char kordpStorageFacilityImageMTMS[30];
    convertStringFromMMToDash(kordpStorageFacilityImageMTMS, image);

    writeSFI(pKordRec, kordpStorageFacilityImageMTMS);
    if (enumerateVRMF(pKordRec, image, locationCode, domain) == failed) return failed;
    if (querySFImageWWNN(pKordRec, image, domain) == failed) return reported;
    writeHSLPool(pKordRec, pKordRec->hslLumenPoolId[i]);
    if (addCounts(pKordRec, i, values) == failed) return failed;
    if (queryScsiHostPort(pKordRec, image, domain) == failed) return failed;
    return addStorConfigKord(pKordRec, i, kordpStorageFacilityImageMTMS) == failed ? failed : collected;
}

int32_t addPartition(kordRec* pKordRec, int32_t i, Counts& values)
{
    const Request request =
        requestOf(partitionQuery.selection, pKordRec->managedSystemMTMS, pKordRec->hslLumenPoolId[i]);
    return runQuery(pKordRec, partitionQuery, request, [&](Resources partitions) {
        Partition partition{};
        readItem(pKordRec, partitionQuery, partitions[0], &partition);
        char uniqueId[50];
        formatText(uniqueId, "%s-%s", pKordRec->kordpManagedSystemMTMS, pKordRec->LParID[i]);
        openPartitionResource(pKordRec, uniqueId, pKordRec->lparName[i]);
        const int32_t rc = addPartitionContent(pKordRec, i, partition.locationCode, values);
        closePartitionResource(pKordRec);
        return rc;
    });
}

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &partitionQuery,
     .subject = {.things = "the location code",
                 .of = "a partition",
                 .none = {.cause =
                              "the partition was removed or got another pool ID during the run; an empty "
                              "pool ID in the selection is a partition without one",
                          .advice =
                              "see that the partition with the pool ID of the selection is configured"}}},
    {.query = &serverPartitionQuery,
     .subject =
         {.things = "the server partition",
          .of = "a partition",
          .none = {.cause = "the image's domain does not know a server partition at that location code",
                   .advice =
                       "see that the partition of the selection's location code runs its storage code"}}},
    {.query = &imageLevelAction,
     .function = "enumerateVRMF",
     .subject = {.things = "the running microcode level",
                 .of = "the server partition",
                 .none = {.cause = "the server partition gave no answer to the action queryRunningImageLevel",
                          .advice =
                              "see that the partition's storage code runs, and ask for its level by the "
                              "console's own panels"}}},
    {.query = &imageQuery,
     .function = "querySFImageWWNN",
     .subject = {.things = "the node name",
                 .of = "an image",
                 .none = {.cause =
                              "the image is not configured yet, or the domain in the selection is another "
                              "image's",
                          .advice =
                              "see that the image of the selection is configured; the rest of this partition "
                              "and all behind it are missing from the document"}},
     .callFailed = {.advice =
                        "see that a node of the domain in the selection is online and reachable from the "
                        "console, then run again; the rest of this partition and all behind it are missing "
                        "from the document"},
     .response = {.advice =
                      "act on the message; where it is no minor error, the rest of this partition and all "
                      "behind it are missing from the document"},
     .failsAs = reported},
};

constexpr ToldFailure walkFailures[] = {
    {.query = &imageLevelAction, .failure = &emptyImageLevel},
    {.query = &imageLevelAction, .failure = &imageLevelRefused},
};

constexpr ToldLine lines[] = {
    {.function = "enumerateVRMF", .line = levelLine, .explanation = {.meaning = "a microcode level"}},
    {.function = "enumerateVRMF",
     .line = handlesLine,
     .explanation = {.meaning = "how many server partitions there are"}},
};

} // namespace

const ToldQueries addPartitionQueries = {
    .module = "addPartitionKord", .queries = queries, .failures = walkFailures};
const ToldLines addPartitionLines = {.module = "addPartitionKord", .lines = lines};

int32_t addPartitionKord(kordRec* pKordRec)
{
    trace(pKordRec, "==>", " addPartitionKord");
    Counts values{};
    int32_t rc = collected;
    for (int32_t i = 0; i < partitionCount(pKordRec) && rc == collected; ++i)
        rc = addPartition(pKordRec, i, values);
    return rc;
}

int32_t enumerateVRMF(kordRec* pKordRec, const char* /*storageFacilityImageMTMS*/, const char* locationCode,
                      const char* activePeerDomain)
{
    const Request request = requestOf(serverPartitionQuery.selection, locationCode, activePeerDomain);
    return runEnumeration(pKordRec, serverPartitionQuery, request, [&](Enumeration found) {
        trace(pKordRec, handlesLine, static_cast<int32_t>(found[0].handleCount));
        return runAction(pKordRec, imageLevelAction, found[0].handles[0], "S",
                         [&](ActionResults results) { return writeLevels(pKordRec, results); });
    });
}

int32_t querySFImageWWNN(kordRec* pKordRec, const char* storageFacilityImageMTMS,
                         const char* activePeerDomain)
{
    const Request request = requestOf(imageQuery.selection, storageFacilityImageMTMS, activePeerDomain);
    return runQuery(pKordRec, imageQuery, request, [&](Resources images) {
        char wwnn[100] = "";
        for (const ValeAttribute& attribute : attributesOf(imageQuery, images[0])) {
            if (!holdsText(imageQuery, attribute)) continue;
            copyText(wwnn, textOf(attribute));
            break;
        }
        writeSFImageWWNN(pKordRec, wwnn);
        return collected;
    });
}
