#include "addIoEnclKord.h"

#include "addQueryKord.h"
#include "addQueryTableKord.h"
#include "addUtilKord.h"
#include "addXmlKord.h"

#include <cstring>

namespace
{

// --- I/O drawers. A drawer that lacks an attribute repeats the previous drawer's value.

struct Drawer {
    char locationCode_iod[30];
    char interfaceIdentifier_iod[100];
};

constexpr Attribute drawerAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Drawer::locationCode_iod>, .kept = true},
    {.name = "interfaceIdentifier",
     .field = fieldOf<&Drawer::interfaceIdentifier_iod>,
     .read = readInterfaceList,
     .kept = true},
};

constexpr Query drawerQuery = {
    .entry = " addIoEnclKord",
    .session = &kordRec::sess_hndl_SR,
    .className = "Orvik.TarnIODrawer",
    .attributes = drawerAttributes,
    .selection = "managedSystemMTMS=\"%s\"",
    .selectionTrace = {"0200", " %s"},
    .callFailed = {.trace = {"0201", "  IODrawer %d, %s"}},
    .noResources = {.trace = {"0202", " no res count_iod=%d"}},
    .responseTrace = {"0203", " response  %d, %s"},
    .emptyFirst = {.trace = {"0204", " no res found %d"}, .report = {.type = valeCallFailed}},
};

// --- Adapters

struct Adapter {
    char locationCode[100];
    char interfaceIdentifier[100];
    char daPair[20];
    char partNumber[100];
    char serialNumber[100];
    char ecLevel[100];
    char firmwareLevel[100];
    char CCIN[30];
};

constexpr TraceText interfaceLine = {"0217", " count= %d, %s"};

/// Traces the host adapter's list as it grows.
void readTracedInterfaceList(const kordRec* pKordRec, const ValeAttribute& attribute, Field field)
{
    const std::span<const int32_t> interfaces = integersOf(attribute);
    field.text[0] = '\0';
    for (const int32_t interface : interfaces) {
        appendInterface(field.text, interface);
        trace(pKordRec, interfaceLine, static_cast<int32_t>(interfaces.size()), field.text.data());
    }
}

constexpr Attribute deviceAdapterAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Adapter::locationCode>},
    {.name = "interfaceIdentifier",
     .field = fieldOf<&Adapter::interfaceIdentifier>,
     .read = readInterfaceList},
    {.name = "daPair"}, // taken from the first adapter, see readDaPair
    {.name = "partNumber", .field = fieldOf<&Adapter::partNumber>},
    {.name = "serialNumber", .field = fieldOf<&Adapter::serialNumber>},
    {.name = "ecLevel", .field = fieldOf<&Adapter::ecLevel>},
    {.name = "firmwareLevel", .field = fieldOf<&Adapter::firmwareLevel>},
    {.name = "CCIN", .field = fieldOf<&Adapter::CCIN>},
};

constexpr Attribute hostAdapterAttributes[] = {
    {.name = "locationCode", .field = fieldOf<&Adapter::locationCode>},
    {.name = "interfaceIdentifier",
     .field = fieldOf<&Adapter::interfaceIdentifier>,
     .read = readTracedInterfaceList},
    {.name = "partNumber", .field = fieldOf<&Adapter::partNumber>},
    {.name = "serialNumber", .field = fieldOf<&Adapter::serialNumber>},
    {.name = "ecLevel", .field = fieldOf<&Adapter::ecLevel>},
    {.name = "firmwareLevel", .field = fieldOf<&Adapter::firmwareLevel>},
    {.name = "CCIN", .field = fieldOf<&Adapter::CCIN>},
};

/// Every adapter whose location code begins with the drawer's.
constexpr const char* adapterSelection = "storageFacilityImageMTMS=\"%s\" && locationCode =? '%s%%'  ";

constexpr ErrorCase deviceAdapterErrors[] = {
    {.number = valeError40008, .failure = minorFailure()},
    {.number = valeError4000d, .failure = {.report = {.name = "addIoEnclKord", .type = unknownError}}},
};

constexpr Query deviceAdapterQuery = {
    .entry = " queryDA",
    .function = "addIoEnclKord",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnDA",
    .attributes = deviceAdapterAttributes,
    .selection = adapterSelection,
    .selectionTrace = {"0206", " %s"},
    .callFailed = {.trace = {"0207", " vale_query_p_select TarnDA %d, %s"}},
    .noResources = {.trace = {"0208", " no res  array_cnt_da=%d"}},
    .responseTrace = {"0209", " resp %d, %s"},
    .errors = deviceAdapterErrors,
    .success = {"0210", " array_cnt_da=%d"},
    .progress = " writeDA open/close resource",
};

constexpr ErrorCase hostAdapterErrors[] = {
    {.number = valeError40008, .failure = minorFailure()},
};

constexpr Query hostAdapterQuery = {
    .entry = " queryHA",
    .function = "addIoEnclKord",
    .session = &kordRec::sess_hndl_DM,
    .className = "Orvik.TarnHA",
    .attributes = hostAdapterAttributes,
    .selection = adapterSelection,
    .selectionTrace = {"0213", " %s "},
    .callFailed = {.trace = {"0214", " TarnHA %d, %s"}},
    .noResources = {.trace = {"0215", " no res  array_cnt_ha=%d"}},
    .responseTrace = {"0216", " TarnHA %d, %s"},
    .errors = hostAdapterErrors,
    .success = {"0216", " array_cnt_ha=%d"},
    .progress = " writeHA open/close resource",
    .walksRequested = true,
};

/// An adapter's pair is the first adapter's, at the place where this adapter's own stands.
void readDaPair(Resources adapters, const ValeQueryResponse& adapter, std::span<char> daPair)
{
    daPair[0] = '\0';
    const auto own = attributesOf(deviceAdapterQuery, adapter);
    const auto first = attributesOf(deviceAdapterQuery, adapters[0]);
    for (size_t i = 0; i < own.size() && i < first.size(); ++i) {
        if (strcmp(textOrEmpty(own[i].name), "daPair") == 0) formatText(daPair, "%d", integerOf(first[i]));
    }
}

using QueryAdapters = decltype(&queryDA);

/// What a drawer holds of a partition's, in the document's order.
constexpr QueryAdapters drawerAdapters[] = {queryDA, queryHA};

/// Writes one partition's sub-list of a drawer.
int32_t addPartitionAdapters(kordRec* pKordRec, const Drawer& drawer, int32_t i)
{
    const char* LParID = pKordRec->LParID[i];
    openEnclosurePartitionsIOD(pKordRec, drawer.locationCode_iod, LParID);
    openPartitionResources(pKordRec);
    int32_t rc = collected;
    for (const QueryAdapters queryAdapters : drawerAdapters) {
        rc = queryAdapters(pKordRec, pKordRec->StorageFacilityImageMTMS[i], drawer.interfaceIdentifier_iod,
                           drawer.locationCode_iod, LParID);
        if (rc == failed) break;
    }
    closePartitionResources(pKordRec);
    closeEnclosurePartitionsIOD(pKordRec);
    return rc;
}

// --- What the tables tell

constexpr ToldQuery queries[] = {
    {.query = &drawerQuery,
     .subject = {.things = "the I/O enclosures",
                 .of = "the managed system",
                 .none = {.cause =
                              "the console has not discovered the I/O drawers, or all are disconnected from "
                              "the system",
                          .advice =
                              "see the cables and the power of the I/O drawers, and that the console shows "
                              "them"}}},
    {.query = &deviceAdapterQuery,
     .subject = {.things = "the device adapters",
                 .of = "an I/O enclosure",
                 .none = {.cause =
                              "the enclosure has no device adapter that the image owns; an enclosure of the "
                              "other image alone is such a one",
                          .advice = "see to which image the adapters of the enclosure with the selection's "
                                    "location code belong, and that they are not fenced"}}},
    {.query = &hostAdapterQuery,
     .subject = {.things = "the host adapters",
                 .of = "an I/O enclosure",
                 .none = {.cause = "the enclosure has no host adapter that the image owns; every image of an "
                                   "enclosure must have one",
                          .advice = "see to which image the adapters of the enclosure with the selection's "
                                    "location code belong, and that they are not fenced"}}},
};

constexpr ToldLine lines[] = {
    {.function = "queryHA",
     .line = interfaceLine,
     .explanation = {.meaning = "a host adapter's interfaces, as the list grows"}},
};

} // namespace

const ToldQueries addIoEnclQueries = {.module = "addIoEnclKord", .queries = queries};
const ToldLines addIoEnclLines = {.module = "addIoEnclKord", .lines = lines};

int32_t addIoEnclKord(kordRec* pKordRec)
{
    const Request request = requestOf(drawerQuery.selection, pKordRec->managedSystemMTMS);
    return forEachItem<Drawer>(pKordRec, drawerQuery, request, [&](const Drawer& drawer) {
        openIOEncl(pKordRec, drawer.interfaceIdentifier_iod, drawer.locationCode_iod);
        int32_t rc = collected;
        for (int32_t i = 0; i < partitionCount(pKordRec) && rc != failed; ++i)
            rc = addPartitionAdapters(pKordRec, drawer, i);
        closeIOEncl(pKordRec);
        return rc;
    });
}

int32_t queryDA(kordRec* pKordRec, const char* StorageFacilityImageMTMS,
                const char* /*interfaceIdentifier_iod*/, const char* locationCode_iod, const char* /*LParID*/)
{
    char image[100];
    convertStringFromMMToDash(image, StorageFacilityImageMTMS);
    const Request request =
        requestOf(deviceAdapterQuery.selection, StorageFacilityImageMTMS, locationCode_iod);

    return runQuery(pKordRec, deviceAdapterQuery, request, [&](Resources adapters) {
        Adapter adapter{};
        for (const ValeQueryResponse& resource : adapters) {
            readItem(pKordRec, deviceAdapterQuery, resource, &adapter);
            readDaPair(adapters, resource, adapter.daPair);
            writeDA(pKordRec, adapter.interfaceIdentifier, adapter.daPair, adapter.locationCode, image,
                    adapter.partNumber, adapter.serialNumber, adapter.ecLevel, adapter.firmwareLevel,
                    adapter.CCIN);
        }
        return collected;
    });
}

int32_t queryHA(kordRec* pKordRec, const char* StorageFacilityImageMTMS,
                const char* /*interfaceIdentifier_iod*/, const char* locationCode_iod, const char* /*LParID*/)
{
    char image[100];
    convertStringFromMMToDash(image, StorageFacilityImageMTMS);
    const Request request = requestOf(hostAdapterQuery.selection, StorageFacilityImageMTMS, locationCode_iod);

    return forEachItem<Adapter>(pKordRec, hostAdapterQuery, request, [&](const Adapter& adapter) {
        return writeHA(pKordRec, adapter.interfaceIdentifier, adapter.locationCode, image, adapter.partNumber,
                       adapter.serialNumber, adapter.ecLevel, adapter.firmwareLevel, adapter.CCIN);
    });
}
