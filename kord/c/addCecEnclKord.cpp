#include "addCecEnclKord.h"

#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

#include <cstring>

namespace
{

// --- Processor complex drawers

struct Drawer {
    char locationCode_cec[25];
};

constexpr Attribute drawerAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Drawer::locationCode_cec>},
};

// Consumers of the trace and of events know this query's failure under the I/O drawers' name.
constexpr Query drawerQuery = {
    .entry = " addCecEnclKord",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnCECDrawer",
    .attributes = drawerAttributes,
    .selection = "managedSystemMTMS=\"%s\"",
    .callFailed = {.trace = {"0114", "IODrawer %d, %s"}, .report = {.name = "addIoEnclKord"}},
    .noResources = {.trace = {"0115", " no res count_iod=%d"}},
    .responseTrace = {"0116", " response  %d, %s"},
    .emptyFirst = {.trace = {"0117", " no res found %d"}, .report = {.type = valeCallFailed}},
    .success = {"0117", " array_cnt_cec=%d"},
};

constexpr TraceText drawerLine = {"0118", " locationCode_cec=%s "};

// --- Non-volatile control cards

struct Card {
    char locationCode_nvc[25];
    char partNumber_nvc[30];
    char serialNumber_nvc[30];
    char ecLevel_nvc[30];
};

/// A card of another system keeps an empty location code.
void readOwnLocation(const kordRec* pKordRec, const ValeAttribute& attribute, Field field)
{
    constexpr size_t mtmsLength = 16;
    if (strncmp(textOf(attribute), pKordRec->managedSystemMTMS, mtmsLength) == 0) {
        copyText(field.text, textOf(attribute));
    }
}

constexpr Attribute cardAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Card::locationCode_nvc>, .read = readOwnLocation},
    {.name = "partNumber", .field = fieldOf<&Card::partNumber_nvc>},
    {.name = "serialNumber", .field = fieldOf<&Card::serialNumber_nvc>},
    {.name = "ecLevel", .field = fieldOf<&Card::ecLevel_nvc>},
};

constexpr ErrorCase cardErrors[] = {
    {.number = valeError40008, .failure = minorFailure()},
    {.number = valeError4000d, .failure = {.report = underFunction}},
};

constexpr Query cardQuery = {
    .entry = " queryNVC",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnNVC",
    .attributes = cardAttributes,
    .selection = "storageFacilityImageMTMS=\"%s\" && server=%d ",
    .selectionTrace = {"0120", " %s "},
    .callFailed = {.trace = {"0120", " handle_bp %d, %s"}},
    .noResources = {.trace = {"0120", " no res  array_cnt_nvc=%d"}},
    .responseTrace = {"0121", "response %d, %s"},
    .errors = cardErrors,
    .success = {"0121", " nvc array_cnt_nvc=%d "},
    .progress = " writeNVC open/close resource",
};

/// Writes one drawer with its partitions' cards.
int32_t addDrawer(kordRec* pKordRec, const char* locationCode_cec, int32_t* openCecEnclPartListHeader)
{
    int32_t rc = collected;
    openCecEncl(pKordRec, locationCode_cec);
    for (int32_t i = 0; i < partitionCount(pKordRec) && rc != failed; ++i) {
        rc = queryNVC(pKordRec, pKordRec->StorageFacilityImageMTMS[i], locationCode_cec, pKordRec->LParID[i],
                      openCecEnclPartListHeader);
    }
    // Every partition with cards has opened a list, but a drawer closes one; and once any drawer has opened
    // one, each later drawer closes one too. Consumers read the document with this pairing.
    if (*openCecEnclPartListHeader == 1) closeCecEnclosurePartitionsList(pKordRec);
    closeCecEncl(pKordRec);
    return rc;
}

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &drawerQuery,
     .subject = {.things = "the processor complexes",
                 .of = "the managed system",
                 .none = {.cause =
                              "the console has not discovered the system's drawers, as while the system is "
                              "installed or its service processor does not answer",
                          .advice = "see that the console shows the system's processor drawers; discover the "
                                    "system anew where it does not"}}},
    {.query = &cardQuery,
     .subject = {.things = "the control cards",
                 .of = "an image",
                 .none = {.cause =
                              "the image does not tell of its cards: its domain is not the one that owns "
                              "them, or the server number of the line 0109 is the other server's; an empty "
                              "image in the selection is a partition whose node named none",
                          .advice =
                              "see that the image has its control cards in the server of the selection; a "
                              "card that is being replaced is absent until it is taken over"}}},
};

constexpr ToldLine lines[] = {
    {.function = "addCecEnclKord",
     .line = drawerLine,
     .explanation = {.meaning = "a drawer's attribute was read"}},
};

} // namespace

const ToldQueries addCecEnclQueries = {.module = "addCecEnclKord", .queries = queries};
const ToldLines addCecEnclLines = {.module = "addCecEnclKord", .lines = lines};

int32_t addCecEnclKord(kordRec* pKordRec)
{
    const Request request = requestOf(drawerQuery.selection, pKordRec->managedSystemMTMS);
    return runQuery(pKordRec, drawerQuery, request, [&](Resources drawers) {
        Drawer drawer{};
        int32_t openCecEnclPartListHeader = 0;
        for (const ValeQueryResponse& resource : drawers) {
            const auto attributes = attributesOf(drawerQuery, resource);
            for (size_t i = 0; i < attributes.size(); ++i) {
                readAttribute(pKordRec, drawerQuery, attributes[i], i, &drawer);
                trace(pKordRec, drawerLine, drawer.locationCode_cec);
            }
            if (addDrawer(pKordRec, drawer.locationCode_cec, &openCecEnclPartListHeader) == failed)
                return failed;
        }
        return collected;
    });
}

int32_t queryNVC(kordRec* pKordRec, const char* StorageFacilityImageMTMS, const char* locationCode_cec,
                 const char* LParID, int32_t* openCecEnclPartListHeader)
{
    char StorageFacilityImageMTMS_nvc[25];
    convertStringFromMMToDash(StorageFacilityImageMTMS_nvc, StorageFacilityImageMTMS);
    const Request request =
        requestOf(cardQuery.selection, StorageFacilityImageMTMS, pKordRec->storageFacilityServerNumber);

    return runQuery(pKordRec, cardQuery, request, [&](Resources cards) {
        Card card{};
        openCecEnclosurePartitionsList(pKordRec);
        openCecEnclosurePartitions(pKordRec, locationCode_cec, LParID);
        openPartitionResourcesList(pKordRec);
        *openCecEnclPartListHeader = 1;
        for (const ValeQueryResponse& resource : cards) {
            readItem(pKordRec, cardQuery, resource, &card);
            writeNVC(pKordRec, card.locationCode_nvc, StorageFacilityImageMTMS_nvc, card.partNumber_nvc,
                     card.serialNumber_nvc, card.ecLevel_nvc);
        }
        closePartitionResourcesList(pKordRec);
        closeCecEnclosurePartitions(pKordRec);
        return collected;
    });
}
