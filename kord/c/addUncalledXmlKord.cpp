// The writers that no collector calls. They belong to the interface of addXmlKord.

#include "addElementKord.h"
#include "addLabelKord.h"
#include "addTableKord.h"
#include "addXmlKord.h"

namespace
{

constexpr Frame enclosurePartition = {" openEnclosurePartitions resourcelist resource", nullptr,
                                      " closeEnclosurePartitions resource resourcelist"};
constexpr Frame nvc = {" openNVC", nvcName, " closeNVC"};
constexpr Frame da = {nullptr, nullptr, " closeDA"};
constexpr Frame ha = {nullptr, nullptr, " closeHA"};
constexpr Frame ddm = {" openDDM", ddmName, " closeDDM"};
constexpr Frame fcic = {" openFCIC", fcicName, " closeFCIC"};
constexpr Frame baffle = {" openBaffle", baffleName, " closeBaffle"};
constexpr Frame pps = {" openPPS", ppsName, " closePPS"};
constexpr Frame battery = {" openBattery ", batteryName, " closeBattery"};
constexpr Frame rpc = {" openRPC", rpcName, " closeRPC"};
constexpr Frame fanSense = {" openFanSense", fanSenseName, " closeFanSense"};
constexpr Frame fanTray = {" openFanTray", fanTrayName, " closeFanTray"};
constexpr Frame arraySiteFrame = {" openArraySite resource", arraySiteName, " closeArraySite resource"};
constexpr Frame arrayFrame = {" openArray resource", arrayName, " closeArray resource"};
constexpr Frame rankFrame = {" openRank", rankName, " closeRank"};
constexpr Frame segmentPoolFrame = {" openSegmentPool", segmentPoolName, " closeSegmentPool"};

constexpr TraceText openArrayLine = {"0703", " arraySites = %d, %s"};
constexpr ToldLine lines[] = {
    {.function = "openArray", .line = openArrayLine, .explanation = {.meaning = "an array is opened"}}};

constexpr ToldWriter writers[] = {
    {"writeRackEnclMTMS", callWriter<writeRackEnclMTMS>},
    {"writeStorPlex", callWriter<writeStorPlex>},
    {"writeOnyx", callWriter<writeOnyx>},
};

} // namespace

const std::span<const ToldWriter> addUncalledXmlWriters = writers;
const ToldLines addUncalledXmlLines = {.module = "addUncalledXmlKord", .lines = lines};

// --- A partition in an enclosure of any kind: I/O and storage enclosures have their own, with trace lines of
// their own, and processor complex enclosures open list and resource one by one.

int32_t openEnclosurePartitions(const kordRec* pKordRec, const char* locationCode_cec, const char* lparId)
{
    return openSubList(pKordRec, enclosurePartition, partitionOf(locationCode_cec, lparId).text);
}

// clang-format off
int32_t closeEnclosurePartitions(const kordRec* pKordRec) { return closeSubList(pKordRec, enclosurePartition); }
// clang-format on

// --- Parts, piece by piece: collectors have all of a part at hand, and write it whole.

// clang-format off
int32_t openNVC(const kordRec* pKordRec, const char* locationCode_nvc) { return openResource(pKordRec, nvc, locationCode_nvc); }
int32_t closeNVC(const kordRec* pKordRec) { return closeResource(pKordRec, nvc); }
int32_t closeDA(const kordRec* pKordRec) { return closeResource(pKordRec, da); }
int32_t closeHA(const kordRec* pKordRec) { return closeResource(pKordRec, ha); }
int32_t openDDM(const kordRec* pKordRec, const char* locationCode) { return openResource(pKordRec, ddm, locationCode); }
int32_t closeDDM(const kordRec* pKordRec) { return closeResource(pKordRec, ddm); }
int32_t openFCIC(const kordRec* pKordRec, const char* locationCode) { return openResource(pKordRec, fcic, locationCode); }
int32_t closeFCIC(const kordRec* pKordRec) { return closeResource(pKordRec, fcic); }
int32_t openBaffle(const kordRec* pKordRec, const char* locationCode) { return openResource(pKordRec, baffle, locationCode); }
int32_t closeBaffle(const kordRec* pKordRec) { return closeResource(pKordRec, baffle); }
int32_t openPPS(const kordRec* pKordRec, const char* locationCode) { return openResource(pKordRec, pps, locationCode); }
int32_t closePPS(const kordRec* pKordRec) { return closeResource(pKordRec, pps); }
int32_t openBattery(const kordRec* pKordRec, const char* locationCode) { return openResource(pKordRec, battery, locationCode); }
int32_t closeBattery(const kordRec* pKordRec) { return closeResource(pKordRec, battery); }
int32_t openRPC(const kordRec* pKordRec, const char* locationCode) { return openResource(pKordRec, rpc, locationCode); }
int32_t closeRPC(const kordRec* pKordRec) { return closeResource(pKordRec, rpc); }
int32_t openFanSense(const kordRec* pKordRec, const char* locationCode) { return openResource(pKordRec, fanSense, locationCode); }
int32_t closeFanSense(const kordRec* pKordRec) { return closeResource(pKordRec, fanSense); }
int32_t openFanTray(const kordRec* pKordRec, const char* locationCode) { return openResource(pKordRec, fanTray, locationCode); }
int32_t closeFanTray(const kordRec* pKordRec) { return closeResource(pKordRec, fanTray); }
// clang-format on

// --- Parts of the storage configuration, likewise.

int32_t openArraySite(const kordRec* pKordRec, int32_t arraySite, const char* kordpStorageFacilityImageMTMS)
{
    return openResource(pKordRec, arraySiteFrame, partOf(kordpStorageFacilityImageMTMS, "S", arraySite).text);
}

int32_t openArray(const kordRec* pKordRec, int32_t arraySites, const char* kordpStorageFacilityImageMTMS)
{
    trace(pKordRec, openArrayLine, arraySites, kordpStorageFacilityImageMTMS);
    return openResource(pKordRec, arrayFrame, partOf(kordpStorageFacilityImageMTMS, "A", arraySites).text);
}

int32_t openRank(const kordRec* pKordRec, int32_t rank, const char* kordpStorageFacilityImageMTMS)
{
    return openResource(pKordRec, rankFrame, partOf(kordpStorageFacilityImageMTMS, "R", rank).text);
}

int32_t openSegmentPool(const kordRec* pKordRec, int32_t segmentPool,
                        const char* kordpStorageFacilityImageMTMS)
{
    return openResource(pKordRec, segmentPoolFrame,
                        partOf(kordpStorageFacilityImageMTMS, "P", segmentPool).text);
}

// clang-format off
int32_t closeArraySite(const kordRec* pKordRec) { return closeResource(pKordRec, arraySiteFrame); }
int32_t closeArray(const kordRec* pKordRec) { return closeResource(pKordRec, arrayFrame); }
int32_t closeRank(const kordRec* pKordRec) { return closeResource(pKordRec, rankFrame); }
int32_t closeSegmentPool(const kordRec* pKordRec) { return closeResource(pKordRec, segmentPoolFrame); }
// clang-format on

// --- Properties whose values no collector brings: the operating system, which no class has, and a console's
// rack and account, whose queries no run makes.

int32_t writeOnyx(const kordRec* pKordRec, const char* onyx)
{
    return writeProperty(pKordRec, " writeOnyx", normal(operatingSystem, onyx));
}

int32_t writeRackEnclMTMS(const kordRec* pKordRec, const char* rackEnclosureMTMS)
{
    return writeProperty(pKordRec, " writeRackEnclMTMS", normal(rackNumberLabel, rackEnclosureMTMS));
}

int32_t writeStorPlex(const kordRec* pKordRec, const char* storagePlexAccountName)
{
    return writeProperty(pKordRec, " writeStorPlex", normal(accountName, storagePlexAccountName));
}
