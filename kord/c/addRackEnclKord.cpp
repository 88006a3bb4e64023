#include "addRackEnclKord.h"

#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addRackKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

namespace
{

// --- Racks

constexpr Query rackQuery = rackQueryOf({.attributes = rackAttributes,
                                         .selectionTrace = {"0400", "%s"},
                                         .callFailed = {"0401", "  TarnRack %d, %s"},
                                         .noResources = {"0402", " no res  array_cnt_rack=%d"},
                                         .responseTrace = {"0403", "  TarnRack %d, %s"}});

constexpr TraceText rackLine = {"0404 ", "rackIdentifier=%u, %s, %s, %s"};

/// One part of a rack; each query picks the attributes that its class has.
struct Part {
    char locationCode[100];
    char partNumber[100];
    char serialNumber[100];
    char ecLevel[100];
    char flashFirmwareLevel[100];
    char flashFirmwareLevel_pps[200];
    char remainingBatteryLife[100];
    char kyrosFeatureCode[100];
};

/// Text that goes into the document without angle brackets.
void readCleaned(const kordRec*, const ValeAttribute& attribute, Field field)
{
    copyText(field.text, textOf(attribute));
    removeInvalidCharInString(field.text.data());
}

constexpr const char* rackPartSelection = "storageFacilityMTMS=\"%s\" && rackEnclosureMTMS=\"%s\" ";

constexpr ErrorCase partErrors[] = {
    {.number = valeError40008, .failure = minorFailure()},
};

// --- Primary power supplies

constexpr Attribute ppsAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Part::locationCode>},
    {.name = "partNumber", .field = fieldOf<&Part::partNumber>, .read = readCleaned},
    {.name = "serialNumber", .field = fieldOf<&Part::serialNumber>, .read = readCleaned},
    {.name = "ecLevel", .field = fieldOf<&Part::ecLevel>, .read = readCleaned},
    {.name = "flashFirmwareLevel", .field = fieldOf<&Part::flashFirmwareLevel_pps>, .read = readCleaned},
};

void writeEmptyPPS(const kordRec* pKordRec)
{
    writePPS(pKordRec, "", "", "", "", "", "");
}

constexpr Query ppsQuery = {
    .entry = " queryPPS",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnPPS",
    .attributes = ppsAttributes,
    .selection = rackPartSelection,
    .selectionTrace = {"0405", "%s"},
    .callFailed = {.trace = {"0406", "  pps %d, %s"}},
    .noResources = minorFailure({"0407 ", "no res  array_cnt_pps=%d"}, writeEmptyPPS),
    .responseTrace = {"0408", " response %d, %s"},
    .errors = partErrors,
    .success = {"409 ", " array_cnt_pps=%d"},
    .progress = " writePPS open/close resource",
};

// --- Batteries

constexpr Attribute batteryAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Part::locationCode>},
    {.name = "ecLevel", .field = fieldOf<&Part::ecLevel>, .read = readCleaned},
    {.name = "partNumber", .field = fieldOf<&Part::partNumber>, .read = readCleaned},
    {.name = "serialNumber"}, // never read: consumers know batteries without a serial number
    {.name = "remainingBatteryLife", .field = fieldOf<&Part::remainingBatteryLife>},
};

void writeEmptyBattery(const kordRec* pKordRec)
{
    writeBattery(pKordRec, "", "", "", "", "", "");
}

constexpr Query batteryQuery = {
    .entry = " queryBattery",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnBattery",
    .attributes = batteryAttributes,
    .selection = rackPartSelection,
    .selectionTrace = {"0411", "%s"},
    .callFailed = {.trace = {"0412", "  battery %d, %s"}},
    .noResources = minorFailure({"0413", " no res  array_cnt_bat=%d"}, writeEmptyBattery),
    .responseTrace = {"0414", " response %d, %s"},
    .errors = partErrors,
    .success = {"0413", " array_cnt_bat=%d"},
    .progress = " writeBattery open/close resource",
};

// --- Rack power controllers

constexpr Attribute rpcAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Part::locationCode>},
    {.name = "ecLevel", .field = fieldOf<&Part::ecLevel>, .read = readCleaned},
    {.name = "flashFirmwareLevel", .field = fieldOf<&Part::flashFirmwareLevel>},
    {.name = "partNumber", .field = fieldOf<&Part::partNumber>, .read = readCleaned},
    {.name = "serialNumber", .field = fieldOf<&Part::serialNumber>, .read = readCleaned},
    {.name = "kyrosFeatureCode", .field = fieldOf<&Part::kyrosFeatureCode>},
};

void writeEmptyRPC(const kordRec* pKordRec)
{
    writeRPC(pKordRec, "", "", "", "", "", "", "");
}

constexpr Query rpcQuery = {
    .entry = " queryRPC",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnRPC",
    .attributes = rpcAttributes,
    .selection = rackPartSelection,
    .selectionTrace = {"0416", "%s"},
    .callFailed = {.trace = {"0417", "  rpc %d, %s"}},
    .noResources = minorFailure({"0418", " no res  array_cnt_rpc=%d"}, writeEmptyRPC),
    .responseTrace = {"0419", " response %d, %s"},
    .errors = partErrors,
    .success = {"0413", " array_cnt_rpc=%d"},
    .progress = " writeRPC open/close resource",
};

// --- Fan sense cards

constexpr Attribute fanSenseAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Part::locationCode>},
    {.name = "ecLevel", .field = fieldOf<&Part::ecLevel>},
    {.name = "partNumber", .field = fieldOf<&Part::partNumber>},
    {.name = "serialNumber", .field = fieldOf<&Part::serialNumber>},
};

// A response in error is reported and the rack goes on; the same for a fan tray fails the collector.
constexpr Query fanSenseQuery = {
    .function = "queryFanSense",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnFanSense",
    .attributes = fanSenseAttributes,
    .selection = "rackEnclosureMTMS=\"%s\" ",
    .selectionTrace = {"0422", "%s"},
    .callFailed = {.trace = {"0422", "  FanSense %d, %s"}},
    .noResources = minorFailure({"0423", " no res  array_cnt_fan=%d"}),
    .responseTrace = {"0424", " response  %d, %s"},
    .errors = partErrors,
    .otherError = {.result = reported},
    .progress = " writeFanSense open/close resource",
};

// --- Fan trays

constexpr Attribute fanTrayAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Part::locationCode>},
    {.name = "partNumber", .field = fieldOf<&Part::partNumber>},
};

constexpr Query fanTrayQuery = {
    .function = "queryFanTray",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnFanTray",
    .attributes = fanTrayAttributes,
    .selection = "rackEnclosureMTMS=\"%s\"",
    .selectionTrace = {"0426", "%s"},
    .callFailed = {.trace = {"0427", "  FanTray %d, %s"}},
    .noResources = minorFailure({"0428", " no res  array_cnt_tra=%d"}),
    .responseTrace = {"0429", " response %d, %s"},
    .errors = partErrors,
    .progress = " writeFanTray open/close resource",
};

using QueryParts = decltype(&queryPPS);

/// What a rack holds, in the document's order.
constexpr QueryParts rackParts[] = {queryPPS, queryBattery, queryRPC, queryFanSense, queryFanTray};

/// The fans are queried anew for each partition image, with the same selection: a facility with two images
/// lists each of them twice, and consumers count on it.
template <typename Write>
int32_t writeFans(kordRec* pKordRec, const Query& query, const char* rackEnclosureMTMS, Write write)
{
    int32_t rc = collected;
    for (int32_t i = 0; i < pKordRec->num_contacts && rc == collected; ++i) {
        rc = forEachItem<Part>(pKordRec, query, requestOf(query.selection, rackEnclosureMTMS), write);
    }
    return rc;
}

int32_t addRack(kordRec* pKordRec, const Rack& rack)
{
    char typeModel[20];
    char serial[20];
    const uint32_t rackIdentifier = static_cast<uint32_t>(rack.rackIdentifier);
    getStorageEnclosure_typemodel(rack.rackEnclosureMTMS, typeModel);
    getStorageEnclosure_serial(rack.rackEnclosureMTMS, serial);
    trace(pKordRec, rackLine, rackIdentifier, rack.locationCode, rack.rackNumber, rack.rackEnclosureMTMS);

    openRackEncl(pKordRec, rack.locationCode, rack.rackNumber, rackIdentifier, typeModel, serial);
    openGlobalResources(pKordRec);
    int32_t rc = collected;
    for (const QueryParts queryParts : rackParts) {
        rc = queryParts(pKordRec, rack.rackEnclosureMTMS, rack.rackNumber);
        if (rc == failed) break;
    }
    closeGlobalResources(pKordRec);
    closeRackEncl(pKordRec);
    return rc;
}

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &rackQuery, .function = "addRackEnclKord", .subject = rackSubject},
    {.query = &ppsQuery,
     .subject = {.things = "the power supplies",
                 .of = "a rack",
                 .none = {.cause = "the rack's power control does not report its supplies",
                          .advice = "see the rack's power control cards and their connection; a rack without "
                                    "supplies of its own has none to show"}}},
    {.query = &batteryQuery,
     .subject =
         {.things = "the batteries",
          .of = "a rack",
          .none = {.cause = "the rack's power control does not report batteries, or the rack has none",
                   .advice =
                       "see the rack's power control cards, and whether the rack should have batteries"}}},
    {.query = &rpcQuery,
     .subject = {.things = "the power control cards",
                 .of = "a rack",
                 .none = {.cause = "the console has lost both power control cards of the rack",
                          .advice = "see the cards' network connection to the console"}}},
    {.query = &fanSenseQuery,
     .subject = {.things = "the fan sense cards",
                 .of = "a rack",
                 .none = {.cause =
                              "the rack's power control does not report its fan sense cards, or the rack has "
                              "none",
                          .advice =
                              "see the rack's power control cards; a rack without cooling of its own has "
                              "none to show"}}},
    {.query = &fanTrayQuery,
     .subject = {.things = "the fan trays",
                 .of = "a rack",
                 .none = {.cause =
                              "the rack's power control does not report its fan trays, or the rack has none",
                          .advice =
                              "see the rack's power control cards; a rack without cooling of its own has "
                              "none to show"}}},
};

constexpr ToldLine lines[] = {
    {.function = "addRackEnclKord",
     .line = rackLine,
     .explanation = {.meaning =
                         "a rack, before it is written: its identifier, location code, number and MTMS"}},
};

} // namespace

const ToldQueries addRackEnclQueries = {.module = "addRackEnclKord", .queries = queries};
const ToldLines addRackEnclLines = {.module = "addRackEnclKord", .lines = lines};

int32_t addRackEnclKord(kordRec* pKordRec)
{
    return forEachRack(pKordRec, rackQuery, [&](const Rack& rack) { return addRack(pKordRec, rack); });
}

int32_t queryPPS(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber)
{
    const Request request = requestOf(ppsQuery.selection, pKordRec->storageFacilityMTMS, rackEnclosureMTMS);
    return forEachItem<Part>(pKordRec, ppsQuery, request, [&](const Part& part) {
        return writePPS(pKordRec, part.locationCode, part.ecLevel, part.flashFirmwareLevel_pps,
                        part.partNumber, part.serialNumber, rackNumber);
    });
}

int32_t queryBattery(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber)
{
    const Request request =
        requestOf(batteryQuery.selection, pKordRec->storageFacilityMTMS, rackEnclosureMTMS);
    return forEachItem<Part>(pKordRec, batteryQuery, request, [&](const Part& part) {
        return writeBattery(pKordRec, part.locationCode, part.ecLevel, part.partNumber, part.serialNumber,
                            part.remainingBatteryLife, rackNumber);
    });
}

int32_t queryRPC(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber)
{
    const Request request = requestOf(rpcQuery.selection, pKordRec->storageFacilityMTMS, rackEnclosureMTMS);
    return forEachItem<Part>(pKordRec, rpcQuery, request, [&](const Part& part) {
        return writeRPC(pKordRec, part.locationCode, part.ecLevel, part.flashFirmwareLevel, part.partNumber,
                        part.serialNumber, part.kyrosFeatureCode, rackNumber);
    });
}

int32_t queryFanSense(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber)
{
    trace(pKordRec, "==>", " queryFanSense");
    return writeFans(pKordRec, fanSenseQuery, rackEnclosureMTMS, [&](const Part& part) {
        return writeFanSense(pKordRec, part.locationCode, part.ecLevel, part.partNumber, part.serialNumber,
                             rackNumber);
    });
}

int32_t queryFanTray(kordRec* pKordRec, const char* rackEnclosureMTMS, const char* rackNumber)
{
    trace(pKordRec, "==>", " queryFanTray");
    return writeFans(pKordRec, fanTrayQuery, rackEnclosureMTMS, [&](const Part& part) {
        return writeFanTray(pKordRec, part.locationCode, part.partNumber, rackNumber);
    });
}
