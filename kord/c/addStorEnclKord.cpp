#include "addStorEnclKord.h"

#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addRackKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

#include <cstring>

namespace
{

constexpr Query rackQuery = rackQueryOf({.attributes = storageRackAttributes,
                                         .selectionTrace = {"0322 ", "%s"},
                                         .callFailed = {"0323", "  TarnRack %d, %s"},
                                         .noResources = {"0324 ", "no res  array_cnt_rack=%d"},
                                         .responseTrace = {"0325", "  TarnRack %d, %s"}});

// --- Storage enclosures of a rack, one partition image at a time

struct Enclosure {
    char locationCode_stor[30];
    char featureCode_stor[10];
    char enclosureNumber_stor[30];
    char enclosureMTMS_stor[30];
    char interfaceIdentifier_stor[100];
};

constexpr TraceText interfacesLine = {"0319", " %d %s"};

void readEnclosureInterfaces(const kordRec* pKordRec, const ValeAttribute& attribute, Field field)
{
    readInterfaceList(pKordRec, attribute, field);
    trace(pKordRec, interfacesLine, static_cast<int32_t>(integersOf(attribute).size()), field.text.data());
}

constexpr Attribute enclosureAttributes[] = {
    {.name = "featureCode", .field = fieldOf<&Enclosure::featureCode_stor>},
    {.name = "locationCode", .field = fieldOf<&Enclosure::locationCode_stor>},
    {.name = "enclosureNumber", .field = fieldOf<&Enclosure::enclosureNumber_stor>},
    {.name = "interfaceIdentifier",
     .field = fieldOf<&Enclosure::interfaceIdentifier_stor>,
     .read = readEnclosureInterfaces},
    {.name = "enclosureMTMS", .field = fieldOf<&Enclosure::enclosureMTMS_stor>},
};

constexpr ErrorCase partErrors[] = {
    {.number = valeError40008, .failure = minorFailure()},
};

constexpr Query enclosureQuery = {
    .function = "addStorEnclKord",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnStorageEnclosure",
    .attributes = enclosureAttributes,
    .selection = "storageFacilityImageMTMS=\"%s\" && rackNumber=\"%s\" && ActivePeerDomain=\"%s\" ",
    .selectionTrace = {"0315", "%s"},
    .callFailed = {.trace = {"0316", " stor %d, %s"}},
    .noResources = {.trace = {"0317", " no res  array_cnt=%d"}},
    .responseTrace = {"0318", "response %d, %s"},
    .errors = partErrors,
    .otherError = {.report = {.type = resourcesNotFound}},
};

// --- Disk drives. A drive that lacks a number repeats the previous drive's.

constexpr Attribute driveAttributes[] = {
    {.name = "locationCode", .field = viewOf<&DriveValues::locationCode, 81>},
    {.name = "ecLevel", .field = viewOf<&DriveValues::ecLevel, 10>},
    {.name = "firmwareLevel", .field = viewOf<&DriveValues::firmwareLevel, 20>},
    {.name = "partNumber", .field = viewOf<&DriveValues::partNumber, 8>},
    {.name = "serialNumber", .field = viewOf<&DriveValues::serialNumber, 20>},
    {.name = "ddmname", .field = viewOf<&DriveValues::name, 11>},
    {.name = "diskManufacturer", .field = viewOf<&DriveValues::manufacturer, 17>},
    {.name = "diskCapacity", .field = fieldOf<&DriveValues::capacity>, .kept = true},
    {.name = "diskRPM", .field = fieldOf<&DriveValues::rpm>, .kept = true},
    {.name = "diskInterfaceRate", .field = fieldOf<&DriveValues::interfaceRate>, .kept = true},
    {.name = "arraySite", .field = fieldOf<&DriveValues::arraySite>, .kept = true},
    {.name = "arraySitePosition", .field = fieldOf<&DriveValues::arraySitePosition>, .kept = true},
    {.name = "diskInterfaceType", .field = viewOf<&DriveValues::interfaceType, 9>},
    {.name = "serviceState", .field = fieldOf<&DriveValues::serviceState>, .kept = true},
};

// An enclosure without drives is reported, and the run goes on.
constexpr Query driveQuery = {
    .entry = " queryDDM",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnDDM",
    .attributes = driveAttributes,
    .selection = "storageFacilityImageMTMS=\"%s\" && rackNumber=\"%s\" && enclosureMTMS=\"%s\""
                 " && enclosureNumber=\"%s\" && ActivePeerDomain=\"%s\"",
    .selectionTrace = {"0300", "%s"},
    .callFailed = {.trace = {"0301", "  TarnDDM %d, %s"}},
    .noResources = {.trace = {"0302 ", "no res  array_cnt_ddm=%d"}, .result = reported},
    .responseTrace = {"0303", " response %d, %s"},
    .errors = partErrors,
    .success = {"0304 ", "DDM loop array_cnt_ddm= %d, attr_count_ddm= %d"},
    .progress = " writeDDM open/close resource",
};

// --- Fibre Channel interface cards

struct InterfaceCard {
    char locationCode[81];
    char ecLevel[10];
    char firmwareLevel[20];
    char partNumber[8];
    char serialNumber[9];
};

constexpr Attribute interfaceCardAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&InterfaceCard::locationCode>},
    {.name = "ecLevel", .field = fieldOf<&InterfaceCard::ecLevel>},
    {.name = "firmwareLevel", .field = fieldOf<&InterfaceCard::firmwareLevel>},
    {.name = "partNumber", .field = fieldOf<&InterfaceCard::partNumber>},
    {.name = "serialNumber", .field = fieldOf<&InterfaceCard::serialNumber>},
};

/// Of rack number, enclosure MTMS, enclosure number and image ID.
constexpr const char* enclosurePartSelection =
    "rackNumber=\"%s\" && enclosureMTMS=\"%s\" && enclosureNumber=\"%s\" && ActivePeerDomain=\"%s\" ";

// An enclosure without interface cards fails the whole collector.
constexpr Query interfaceCardQuery = {
    .entry = " queryFCIC",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnFCIC",
    .attributes = interfaceCardAttributes,
    .selection = enclosurePartSelection,
    .selectionTrace = {"0305", "%s"},
    .callFailed = {.trace = {"0306", "  TarnFCIC %d, %s"}},
    .noResources = {.trace = {"0307", " no res  array_cnt_fcic=%d"}},
    .responseTrace = {"0308", " response %d, %s"},
    .errors = partErrors,
    .success = {"0309", " FCIC loop array_cnt_fcic= %d, attr_count_fcic %d"},
    .progress = " writeFCIC open/close resource",
};

// --- Baffles

struct Baffle {
    char locationCode_baf[81];
    char partNumber_baf[8];
};

constexpr Attribute baffleAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Baffle::locationCode_baf>},
    {.name = "partNumber", .field = fieldOf<&Baffle::partNumber_baf>},
};

// An enclosure without baffles is a minor error, and nothing is reported.
constexpr Query baffleQuery = {
    .entry = " queryBaffle",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnBaffle",
    .attributes = baffleAttributes,
    .selection = enclosurePartSelection,
    .selectionTrace = {"0310", "%s"},
    .callFailed = {.trace = {"0311", " TarnBaffle %d, %s"}},
    .noResources = minorFailure({"0312 ", "no res  array_cnt_baf=%d"}),
    .responseTrace = {"0313 ", "response %d, %s"},
    .errors = partErrors,
    .success = {"0314", " Baffle array_cnt_baf= %d, attr_count_baf= %d"},
    .progress = " writeBaffle open/close resource",
};

constexpr TraceText enclosureLine = {"0320", " RackLocation= %s, %s, %s, %d, %s"};
constexpr TraceText partsLine = {"0321", " enclosureMTMS_stor= %s "};
constexpr TraceText rackLine = {"0326", " rack %s, %s, %s"};

using QueryParts = decltype(&queryDDM);

/// What an enclosure holds, in the document's order.
constexpr QueryParts enclosureParts[] = {queryDDM, queryFCIC, queryBaffle};

int32_t addEnclosure(kordRec* pKordRec, const Enclosure& enclosure, const char* rackNumber,
                     const char* rackEnclosureMTMS, int32_t i)
{
    char RackLocation[30];
    char R1[30];
    char typeModel[20];
    char serial[20];
    formatText(RackLocation, "%s-%s", rackEnclosureMTMS, enclosure.enclosureNumber_stor);
    convertStringFromMMToDash(R1, RackLocation);
    getStorageEnclosure_typemodel(enclosure.enclosureMTMS_stor, typeModel);
    getStorageEnclosure_serial(enclosure.enclosureMTMS_stor, serial);
    trace(pKordRec, enclosureLine, RackLocation, R1, enclosure.enclosureNumber_stor,
          static_cast<int32_t>(strlen(enclosure.enclosureNumber_stor)), enclosure.locationCode_stor);

    openStorEncl(pKordRec, enclosure.locationCode_stor, pKordRec->kordpStorageFacilityImageMTMS[i], R1,
                 rackNumber, enclosure.interfaceIdentifier_stor, enclosure.featureCode_stor, typeModel,
                 serial);
    openEnclosurePartitionsStor(pKordRec, enclosure.locationCode_stor, pKordRec->LParID[i]);
    openPartitionResources(pKordRec);
    trace(pKordRec, partsLine, enclosure.enclosureMTMS_stor);

    int32_t rc = collected;
    for (const QueryParts queryParts : enclosureParts) {
        rc = queryParts(pKordRec, enclosure.enclosureMTMS_stor, rackNumber, enclosure.enclosureNumber_stor,
                        pKordRec->StorageFacilityImageMTMS[i], pKordRec->StorageFacilityImageID[i]);
        if (rc == failed) break;
    }
    closePartitionResources(pKordRec);
    closeEnclosurePartitionsStor(pKordRec);
    closeStorEncl(pKordRec);
    return rc == failed ? failed : collected;
}

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &rackQuery, .subject = rackSubject},
    {.query = &enclosureQuery,
     .function = "queryStorageEnclosure",
     .subject = {.things = "the storage enclosures",
                 .of = "a rack",
                 .none = {.cause =
                              "the rack holds no storage enclosure that the image sees, or the rack's number "
                              "or the image in the selection is empty",
                          .advice =
                              "see which images own enclosures in the rack of the selection; a rack without "
                              "any of an image fails the run"}}},
    {.query = &driveQuery,
     .subject = {.things = "the drives",
                 .of = "a storage enclosure",
                 .none = {.cause =
                              "the enclosure has no drive that the image sees: it is empty, switched off, or "
                              "its loop is broken",
                          .advice =
                              "see the enclosure of the selection: its power, its interface cards and its "
                              "drives"}}},
    {.query = &interfaceCardQuery,
     .subject = {.things = "the interface cards",
                 .of = "a storage enclosure",
                 .none = {.cause =
                              "the enclosure does not answer: it is switched off, or both of its cards are "
                              "removed or failed",
                          .advice =
                              "see the power and the interface cards of the enclosure in the selection"}}},
    {.query = &baffleQuery,
     .subject =
         {.things = "the baffles",
          .of = "a storage enclosure",
          .none = {.cause = "every slot of the enclosure holds a drive",
                   .advice = "nothing, where the enclosure is full; else put baffles into its empty slots"}}},
};

constexpr ToldLine lines[] = {
    {.function = "queryStorageEnclosure",
     .line = interfacesLine,
     .explanation = {.meaning = "an enclosure's interfaces: how many, and the list"}},
    {.function = "queryStorageEnclosure",
     .line = enclosureLine,
     .explanation = {.meaning = "an enclosure, before it is written: where it stands, its number and the "
                                "number's length, its location code"}},
    {.function = "queryStorageEnclosure",
     .line = partsLine,
     .explanation = {.meaning = "an enclosure's parts follow"}},
    {.function = "addStorEnclKord",
     .line = rackLine,
     .explanation = {.meaning = "a rack: its location code, number and MTMS"}},
};

} // namespace

const ToldQueries addStorEnclQueries = {.module = "addStorEnclKord", .queries = queries};
const ToldLines addStorEnclLines = {.module = "addStorEnclKord", .lines = lines};

int32_t addStorEnclKord(kordRec* pKordRec)
{
    return forEachRack(pKordRec, rackQuery, [&](const Rack& rack) {
        trace(pKordRec, rackLine, rack.locationCode, rack.rackNumber, rack.rackEnclosureMTMS);
        return queryStorageEnclosure(pKordRec, rack.locationCode, rack.rackNumber, rack.rackEnclosureMTMS);
    });
}

int32_t queryStorageEnclosure(kordRec* pKordRec, const char* /*locationCode_rack*/,
                              const char* rackNumber_rack, const char* rackEnclosureMTMS_rack)
{
    trace(pKordRec, "==>", " queryStorageEnclosure");
    int32_t rc = collected;
    for (int32_t i = 0; i < partitionCount(pKordRec) && rc == collected; ++i) {
        const Request request = requestOf(enclosureQuery.selection, pKordRec->StorageFacilityImageMTMS[i],
                                          rackNumber_rack, pKordRec->StorageFacilityImageID[i]);
        rc = forEachItem<Enclosure>(pKordRec, enclosureQuery, request, [&](const Enclosure& enclosure) {
            return addEnclosure(pKordRec, enclosure, rackNumber_rack, rackEnclosureMTMS_rack, i);
        });
    }
    return rc;
}

int32_t queryDDM(kordRec* pKordRec, const char* enclosureMTMS, const char* rackNumber,
                 const char* enclosureNumber, const char* StorageFacilityImageMTMS,
                 const char* StorageFacilityImageID)
{
    char imageMTMS[30];
    convertStringFromMMToDash(imageMTMS, StorageFacilityImageMTMS);
    const std::string_view image = imageMTMS;
    const Request request = requestOf(driveQuery.selection, StorageFacilityImageMTMS, rackNumber,
                                      enclosureMTMS, enclosureNumber, StorageFacilityImageID);
    return forEachItem<DriveValues>(pKordRec, driveQuery, request, [&](DriveValues& drive) {
        drive.image = image;
        return writeDrive(pKordRec, drive);
    });
}

int32_t queryFCIC(kordRec* pKordRec, const char* enclosureMTMS, const char* rackNumber,
                  const char* enclosureNumber, const char* StorageFacilityImageMTMS,
                  const char* StorageFacilityImageID)
{
    char image[30];
    convertStringFromMMToDash(image, StorageFacilityImageMTMS);
    const Request request = requestOf(interfaceCardQuery.selection, rackNumber, enclosureMTMS,
                                      enclosureNumber, StorageFacilityImageID);
    return forEachItem<InterfaceCard>(pKordRec, interfaceCardQuery, request, [&](const InterfaceCard& card) {
        return writeFCIC(pKordRec, card.locationCode, image, card.ecLevel, card.firmwareLevel,
                         card.partNumber, card.serialNumber);
    });
}

int32_t queryBaffle(kordRec* pKordRec, const char* enclosureMTMS, const char* rackNumber,
                    const char* enclosureNumber, const char* StorageFacilityImageMTMS,
                    const char* StorageFacilityImageID)
{
    char image[30];
    convertStringFromMMToDash(image, StorageFacilityImageMTMS);
    const Request request =
        requestOf(baffleQuery.selection, rackNumber, enclosureMTMS, enclosureNumber, StorageFacilityImageID);
    return forEachItem<Baffle>(pKordRec, baffleQuery, request, [&](const Baffle& baffle) {
        return writeBaffle(pKordRec, baffle.locationCode_baf, image, baffle.partNumber_baf);
    });
}
