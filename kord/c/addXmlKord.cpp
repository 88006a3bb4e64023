#include "addXmlKord.h"

#include "addElementKord.h"
#include "addLabelKord.h"
#include "addTableKord.h"
#include "addTextKord.h"
#include "addTrcKord.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{

constexpr const char* documentVersion = "1.0";

constexpr TraceText noFileLine = {"0700", " open xmlfile error %s \n"};
constexpr TraceText stampLine = {"0701", " stamp=%s"};

// --- Elements that are opened and closed, in the order of the document's parts

constexpr Frame systemFrame = {" openSystem resource", nullptr, " closeSystem resource"};
constexpr Frame enclosures = {" openEnclosures resourcelist", "Enclosures", " closeEnclosures resourcelist"};
constexpr Frame partitions = {" openPartitionList  resourcelist", "Partitions",
                              " closePartitionList  resourcelist"};

constexpr Frame cec = {" openCecEncl resource", "CEC", " closeCecEncl resource"};
constexpr Frame cecLists = {" openCecEnclosurePartitions resourcelist", "Enclosures Partitions",
                            " closeCecEnclosurePartitions resourcelist"};
constexpr Frame cecPartition = {" openCecEnclosurePartitions  resource", nullptr,
                                " closeCecEnclosurePartitions resource "};
constexpr Frame cecResources = {" openPartitionResourcesList  resourcelist", "Partition Resources",
                                " closePartitionResourcesList resourcelist"};
constexpr Frame resources = {" openPartitionResources  resourcelist", "Partition Resources",
                             " closePartitionResources resourcelist"};

constexpr Frame ioEnclosure = {" openIOEncl resource", "Larkspur", " closeIOEncl resource"};
constexpr Frame ioPartition = {" writeEnclosurePartitionsIOD resourcelist resource", nullptr,
                               " closeEnclosurePartitionsIOD resource resourcelist"};
constexpr Frame storageEnclosure = {" openStorEncl  resource", storName, " closeStorEncl resource"};
constexpr Frame storagePartition = {" writeEnclosurePartitionsStor resourcelist resource",
                                    "Enclosure's MTMS - Partition Id",
                                    " closeEnclosurePartitionsStor resource resourcelist"};
constexpr Frame rack = {" openRackEncl  resource", rackName, " closeRackEncl  resource"};
constexpr Frame global = {" openGlobalResources  resourcelist", "Global Resources",
                          " closeGlobalResources resourcelist"};
constexpr Frame quay = {" openQUAYEncl resource", quayName, " closeQUAYEncl resource"};

constexpr Frame partitionFrame = {" openPartitionResource resource", nullptr,
                                  " closePartitionResource resource"};
constexpr Frame storageConfigurations = {" openStorConfigResourceList  resourcelist",
                                         "Storage Configurations",
                                         " closeStorConfigResourceList  resourcelist"};
constexpr Frame storageConfiguration = {" openStorConfigResource resource", "Storage Logical Configuration",
                                        " closeStorConfigResource resource"};
constexpr Frame arraySiteList = {" openArraySitesResourceList resourcelist", "Array Sites",
                                 " closeArraySitesResourceList resourcelist"};
constexpr Frame arrayList = {" openArraysResourceList  resourcelist", "Arrays",
                             " closeArraysResourceList resourcelist"};
constexpr Frame rankList = {" openRanksResourceList resourcelist", "Ranks",
                            " closeRanksResourceList resourcelist"};
constexpr Frame segmentPoolList = {" openSegmentPoolResourceList resourcelist", segmentPoolName,
                                   " closeSegmentPoolResourceList resourcelist"};

// --- Values and what writers share

Property facility(const kordRec* pKordRec)
{
    return normal(facilityMTMS, pKordRec->kordpStorageFacilityMTMS);
}

/// The R2 value: a rack text without its first character, at most three characters.
struct RackNumber {
    char text[4];
};

RackNumber rackNumberOf(const char* rackText)
{
    RackNumber number;
    const char* text = textOrEmpty(rackText);
    copyText(number.text, *text != '\0' ? text + 1 : "");
    return number;
}

/// A whole part of the facility, with its own properties between those that all parts have.
int32_t writePart(const kordRec* pKordRec, std::string_view displayName, std::string_view uniqueId,
                  const Properties& properties)
{
    return writeResource(pKordRec, displayName, uniqueId, {facility(pKordRec)}, properties,
                         {normal(systemVPD, displayName), normal(hardwareLocation, uniqueId)});
}

/// The two kinds of adapter card differ in their display name alone.
int32_t writeAdapter(const kordRec* pKordRec, const char* displayName, const char* interfaceIdentifier,
                     const char* locationCode, const char* kordpStorageFacilityImageMTMS,
                     const char* partNumber, const char* serialNumber, const char* ecLevel,
                     const char* firmware, const char* ccin)
{
    return writeResource(pKordRec, displayName, textOrEmpty(locationCode),
                         {
                             normal(imageMTMS, kordpStorageFacilityImageMTMS),
                             reversed(assemblyNumber, partNumber),
                             reversed(serialNumberLabel, serialNumber),
                             reversed(changeLevel, ecLevel),
                             reversed(firmwareLevelLabel, firmware),
                             normal(adapterInterface, interfaceIdentifier),
                             reversed(cardIdentification, ccin),
                             normal(systemVPD, displayName),
                             normal(hardwareLocation, locationCode),
                         });
}

bool isSoleFile(const struct stat& status)
{
    return S_ISREG(status.st_mode) && status.st_nlink == 1;
}

/// Makes way for a new document: an empty file of no other name stays, anything else but a folder goes.
/// Whether nothing has the name now.
bool removeEarlier(const char* path)
{
    struct stat status {
    };
    if (lstat(path, &status) != 0) return errno == ENOENT;
    const bool stays = S_ISDIR(status.st_mode) || (status.st_size == 0 && isSoleFile(status));
    return !stays && unlink(path) == 0;
}

bool isSoleNameOf(const char* path, int fd)
{
    struct stat opened {
    };
    struct stat named {
    };
    return fstat(fd, &opened) == 0 && lstat(path, &named) == 0 && isSoleFile(named) &&
           named.st_ino == opened.st_ino;
}

/// The empty file of the document, or -1. Whoever can write to the folder may put another file at its name
/// between two looks: that one is not emptied.
int openDocument(const char* path)
{
    constexpr mode_t defaultMode = 0666;
    constexpr int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    if (removeEarlier(path)) return open(path, flags | O_EXCL, defaultMode);
    const int fd = open(path, flags, defaultMode);
    if (fd < 0 || (isSoleNameOf(path, fd) && ftruncate(fd, 0) == 0)) return fd;
    close(fd);
    return -1;
}

// --- What the tables tell

constexpr ToldLine lines[] = {
    {.function = "startXml",
     .line = noFileLine,
     .explanation =
         {.meaning = "the document's file could not be opened",
          .cause = "/var/adm/stockmere/VPD is not there, is full or read-only, or a folder stands at the "
                   "file's name",
          .advice = "see that the folder is there and takes files of the collector's user, then run again"}},
    {.function = "openInventory", .line = stampLine, .explanation = {.meaning = "the document's timestamp"}},
};

constexpr ToldWriter writers[] = {
    {"openSystem", callWriter<openSystem>},
    {"openEnclosures", callWriter<openEnclosures>},
    {"openPartitionList", callWriter<openPartitionList>},
    {"openCecEncl", callWriter<openCecEncl>},
    {"openCecEnclosurePartitionsList", callWriter<openCecEnclosurePartitionsList>},
    {"openPartitionResourcesList", callWriter<openPartitionResourcesList>},
    {"openPartitionResources", callWriter<openPartitionResources>},
    {"writeNVC", callWriter<writeNVC>},
    {"openIOEncl", callWriter<openIOEncl>},
    {"writeDA", callWriter<writeDA>},
    {"writeHA", callWriter<writeHA>},
    {"openStorEncl", callWriter<openStorEncl>},
    {"writeDDM", callWriter<writeDDM>},
    {"writeFCIC", callWriter<writeFCIC>},
    {"writeBaffle", callWriter<writeBaffle>},
    {"openRackEncl", callWriter<openRackEncl>},
    {"openGlobalResources", callWriter<openGlobalResources>},
    {"writePPS", callWriter<writePPS>},
    {"writeBattery", callWriter<writeBattery>},
    {"writeRPC", callWriter<writeRPC>},
    {"writeFanSense", callWriter<writeFanSense>},
    {"writeFanTray", callWriter<writeFanTray>},
    {"openQUAYEncl", callWriter<openQUAYEncl>},
    {"openPartitionResource", callWriter<openPartitionResource>},
    {"writeSFI", callWriter<writeSFI>},
    {"writeVRMF", callWriter<writeVRMF>},
    {"writeSFImageWWNN", callWriter<writeSFImageWWNN>},
    {"writeHSLPool", callWriter<writeHSLPool>},
    {"writeLogcialConfig", callWriter<writeLogcialConfig>},
    {"writeHostInventory", callWriter<writeHostInventory>},
    {"writeHostDescription", callWriter<writeHostDescription>},
    {"openStorConfigResourceList", callWriter<openStorConfigResourceList>},
    {"openStorConfigResource", callWriter<openStorConfigResource>},
    {"openArraySitesResourceList", callWriter<openArraySitesResourceList>},
    {"openArraysResourceList", callWriter<openArraysResourceList>},
    {"openRanksResourceList", callWriter<openRanksResourceList>},
    {"openSegmentPoolResourceList", callWriter<openSegmentPoolResourceList>},
    {"writeArraySite", callWriter<writeArraySite>},
    {"writeArray", callWriter<writeArray>},
    {"writeRank", callWriter<writeRank>},
    {"writeSegmentPool", callWriter<writeSegmentPool>},
};

} // namespace

const std::span<const ToldWriter> addXmlWriters = writers;
const ToldLines addXmlLines = {.module = "addXmlKord", .lines = lines};

// --- Frame

int32_t startXml(kordRec* pKordRec)
{
    char path[100];
    formatText(path, "%s/addTarnKord_%s.xml", documentFolder, pKordRec->inputSystemMTMS);
    const int fd = openDocument(path);
    FILE* stream = fd >= 0 ? fdopen(fd, "w") : nullptr;
    if (stream == nullptr) {
        if (fd >= 0) close(fd);
        trace(pKordRec, noFileLine, path);
        return 1;
    }
    static char largeWrites[65536]; // a size alone would be passed over
    setvbuf(stream, largeWrites, _IOFBF, sizeof largeWrites);
    pKordRec->inp = stream;
    return 0;
}

int32_t openInventory(const kordRec* pKordRec)
{
    trace(pKordRec, ">>", " openInventory");
    timeval now{};
    gettimeofday(&now, nullptr);
    // Consumers read the microseconds as a plain number, without leading zeros.
    const Composed stamp = compose(now.tv_sec, ".", now.tv_usec);

    put(pKordRec, {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"});
    if (pKordRec->testFlag == 1) put(pKordRec, {"<?xml-stylesheet type=\"text/xsl\" href=\"v03.xsl\"?>\n"});
    put(pKordRec, {"<com.orvik.inventory verion=\"", documentVersion, "\">\n",
                   "<ResourceSet class=\"com.orvik.inventory.Hardware\" type=\"Hardware\" version=\"",
                   documentVersion, "\" timestamp=\"", stamp.text, "\">\n"});
    trace(pKordRec, stampLine, stamp.text);
    return 0;
}

void closeInventory(const kordRec* pKordRec)
{
    trace(pKordRec, ">>", " closeInventory");
    put(pKordRec, {"</ResourceSet>\n</com.orvik.inventory>\n"});
}

// --- System and lists

int32_t openSystem(const kordRec* pKordRec)
{
    const char* system = pKordRec->kordpManagedSystemMTMS;
    return openResource(pKordRec, systemFrame, system, {facility(pKordRec)});
}

// clang-format off
int32_t closeSystem(const kordRec* pKordRec) { return closeResource(pKordRec, systemFrame); }
int32_t openEnclosures(const kordRec* pKordRec) { return openList(pKordRec, enclosures); }
int32_t closeEnclosures(const kordRec* pKordRec) { return closeList(pKordRec, enclosures); }
int32_t openPartitionList(const kordRec* pKordRec) { return openList(pKordRec, partitions); }
int32_t closePartitionList(const kordRec* pKordRec) { return closeList(pKordRec, partitions); }
// clang-format on

// --- Processor complex enclosures

int32_t openCecEncl(const kordRec* pKordRec, const char* locationCode)
{
    return openResource(pKordRec, cec, locationCode, {facility(pKordRec)});
}

int32_t openCecEnclosurePartitions(const kordRec* pKordRec, const char* locationCode_cec, const char* lparId)
{
    return openResource(pKordRec, cecPartition, partitionOf(locationCode_cec, lparId).text);
}

// clang-format off
int32_t closeCecEncl(const kordRec* pKordRec) { return closeResource(pKordRec, cec); }
int32_t openCecEnclosurePartitionsList(const kordRec* pKordRec) { return openList(pKordRec, cecLists); }
int32_t closeCecEnclosurePartitionsList(const kordRec* pKordRec) { return closeList(pKordRec, cecLists); }
int32_t closeCecEnclosurePartitions(const kordRec* pKordRec) { return closeResource(pKordRec, cecPartition); }
int32_t openPartitionResourcesList(const kordRec* pKordRec) { return openList(pKordRec, cecResources); }
int32_t closePartitionResourcesList(const kordRec* pKordRec) { return closeList(pKordRec, cecResources); }
int32_t openPartitionResources(const kordRec* pKordRec) { return openList(pKordRec, resources); }
int32_t closePartitionResources(const kordRec* pKordRec) { return closeList(pKordRec, resources); }
// clang-format on

int32_t writeNVC(const kordRec* pKordRec, const char* locationCode_nvc,
                 const char* kordpStorageFacilityImageMTMS, const char* partNumber_nvc,
                 const char* serialNumber_nvc, const char* ecLevel_nvc)
{
    writeResource(pKordRec, nvcName, textOrEmpty(locationCode_nvc),
                  {
                      normal(imageMTMS, kordpStorageFacilityImageMTMS),
                      reversed(assemblyNumber, partNumber_nvc),
                      reversed(serialNumberLabel, serialNumber_nvc),
                      reversed(changeLevel, ecLevel_nvc),
                  });
    fflush(stdout);
    return 0;
}

// --- I/O enclosures

int32_t openIOEncl(const kordRec* pKordRec, const char* interfaceIdentifier, const char* locationCode)
{
    return openResource(pKordRec, ioEnclosure, locationCode,
                        {
                            facility(pKordRec),
                            normal(drawerInterface, interfaceIdentifier),
                        });
}

int32_t openEnclosurePartitionsIOD(const kordRec* pKordRec, const char* ioDrawerMTMS, const char* lparId)
{
    return openSubList(pKordRec, ioPartition, partitionOf(ioDrawerMTMS, lparId).text);
}

// clang-format off
int32_t closeIOEncl(const kordRec* pKordRec) { return closeResource(pKordRec, ioEnclosure); }
int32_t closeEnclosurePartitionsIOD(const kordRec* pKordRec) { return closeSubList(pKordRec, ioPartition); }
// clang-format on

int32_t writeDA(const kordRec* pKordRec, const char* interfaceIdentifier, const char* /*daPair*/,
                const char* locationCode, const char* kordpStorageFacilityImageMTMS, const char* partNumber,
                const char* serialNumber, const char* ecLevel, const char* firmware, const char* ccin)
{
    return writeAdapter(pKordRec, daName, interfaceIdentifier, locationCode, kordpStorageFacilityImageMTMS,
                        partNumber, serialNumber, ecLevel, firmware, ccin);
}

int32_t writeHA(const kordRec* pKordRec, const char* interfaceIdentifier, const char* locationCode,
                const char* kordpStorageFacilityImageMTMS, const char* partNumber, const char* serialNumber,
                const char* ecLevel, const char* firmware, const char* ccin)
{
    return writeAdapter(pKordRec, haName, interfaceIdentifier, locationCode, kordpStorageFacilityImageMTMS,
                        partNumber, serialNumber, ecLevel, firmware, ccin);
}

// --- Storage enclosures

int32_t openStorEncl(const kordRec* pKordRec, const char* locationCode,
                     const char* kordpStorageFacilityImageMTMS, const char* RackLocation,
                     const char* rackNumber, const char* interfaceID, const char* feature,
                     const char* enclosureTypemodel, const char* encloseSerial)
{
    return openResource(pKordRec, storageEnclosure, locationCode,
                        {
                            facility(pKordRec),
                            normal(imageMTMS, kordpStorageFacilityImageMTMS),
                            normal(rackLocationLabel, RackLocation),
                            normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                            normal(enclosureInterface, interfaceID),
                            normal(featureCode, feature),
                            normal(typeModelLabel, enclosureTypemodel),
                            normal(plantAndSerial, encloseSerial),
                            normal(systemVPD, storName),
                            normal(hardwareLocation, locationCode),
                        });
}

int32_t openEnclosurePartitionsStor(const kordRec* pKordRec, const char* locationCode, const char* lparId)
{
    return openSubList(pKordRec, storagePartition, partitionOf(locationCode, lparId).text);
}

// clang-format off
int32_t closeStorEncl(const kordRec* pKordRec) { return closeResource(pKordRec, storageEnclosure); }
int32_t closeEnclosurePartitionsStor(const kordRec* pKordRec) { return closeSubList(pKordRec, storagePartition); }
// clang-format on

int32_t writeDDM(const kordRec* pKordRec, const char* locationCode, const char* kordpStorageFacilityImageMTMS,
                 const char* ecLevel, const char* firmwareLevel, const char* partNumber,
                 const char* serialNumber, const char* diskName, const char* diskManufacturer,
                 int32_t diskCapacity, int32_t diskRPM, int32_t diskInterfaceRate, int32_t arraySite,
                 int32_t arraySitePosition, const char* diskInterfaceType, int32_t serviceState)
{
    return writeDrive(pKordRec, {.locationCode = textOrEmpty(locationCode),
                                 .image = textOrEmpty(kordpStorageFacilityImageMTMS),
                                 .ecLevel = textOrEmpty(ecLevel),
                                 .firmwareLevel = textOrEmpty(firmwareLevel),
                                 .partNumber = textOrEmpty(partNumber),
                                 .serialNumber = textOrEmpty(serialNumber),
                                 .name = textOrEmpty(diskName),
                                 .manufacturer = textOrEmpty(diskManufacturer),
                                 .interfaceType = textOrEmpty(diskInterfaceType),
                                 .capacity = diskCapacity,
                                 .rpm = diskRPM,
                                 .interfaceRate = diskInterfaceRate,
                                 .arraySite = arraySite,
                                 .arraySitePosition = arraySitePosition,
                                 .serviceState = serviceState});
}

int32_t writeDrive(const kordRec* pKordRec, const DriveValues& drive)
{
    char space[500];
    const std::string_view characteristics =
        joinText(space, "DI=", drive.name, ",DM=", drive.manufacturer, ",DC=", drive.capacity,
                 "MB,DR=", drive.rpm, ",DS=", drive.interfaceRate, ",AS=", drive.arraySite,
                 ",AP=", drive.arraySitePosition, ",IT=", drive.interfaceType, ",ST=", drive.serviceState);
    return writePart(pKordRec, ddmName, drive.locationCode,
                     {
                         normal(imageMTMS, drive.image),
                         normal(ecLevelLabel, drive.ecLevel),
                         normal(firmwareLevelLabel, drive.firmwareLevel),
                         normal(partNumberLabel, drive.partNumber),
                         normal(serialNumberLabel, drive.serialNumber),
                         normal(diskSpace, characteristics),
                     });
}

int32_t writeFCIC(const kordRec* pKordRec, const char* locationCode,
                  const char* kordpStorageFacilityImageMTMS, const char* ecLevel, const char* firmwareLevel,
                  const char* partNumber, const char* serialNumber)
{
    return writePart(pKordRec, fcicName, textOrEmpty(locationCode),
                     {
                         normal(imageMTMS, kordpStorageFacilityImageMTMS),
                         normal(ecLevelLabel, ecLevel),
                         normal(firmwareLevelLabel, firmwareLevel),
                         normal(partNumberLabel, partNumber),
                         normal(serialNumberLabel, serialNumber),
                     });
}

int32_t writeBaffle(const kordRec* pKordRec, const char* locationCode,
                    const char* kordpStorageFacilityImageMTMS, const char* partNumber)
{
    return writePart(pKordRec, baffleName, textOrEmpty(locationCode),
                     {
                         normal(imageMTMS, kordpStorageFacilityImageMTMS),
                         normal(partNumberLabel, partNumber),
                     });
}

// --- Racks

int32_t openRackEncl(const kordRec* pKordRec, const char* locationCode, const char* rackNumber,
                     uint32_t rackIndentifier, const char* Typemodel, const char* Serial)
{
    return openResource(pKordRec, rack, locationCode,
                        {
                            facility(pKordRec),
                            normal(rackUniqueId, compose(rackIndentifier)),
                            normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                            normal(typeModelLabel, Typemodel),
                            normal(plantAndSerial, Serial),
                            normal(systemVPD, rackName),
                            normal(hardwareLocation, locationCode),
                        });
}

// clang-format off
int32_t closeRackEncl(const kordRec* pKordRec) { return closeResource(pKordRec, rack); }
int32_t openGlobalResources(const kordRec* pKordRec) { return openList(pKordRec, global); }
int32_t closeGlobalResources(const kordRec* pKordRec) { return closeList(pKordRec, global); }
// clang-format on

int32_t writePPS(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                 const char* flashFirmwareLevel, const char* partNumber, const char* serialNumber,
                 const char* rackNumber)
{
    return writePart(pKordRec, ppsName, textOrEmpty(locationCode),
                     {
                         normal(ecLevelLabel, ecLevel),
                         normal(firmwareLevelLabel, flashFirmwareLevel),
                         normal(partNumberLabel, partNumber),
                         normal(serialNumberLabel, serialNumber),
                         normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                     });
}

int32_t writeBattery(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                     const char* partNumber, const char* serialNumber, const char* batteryRemainingLife,
                     const char* rackNumber)
{
    return writePart(pKordRec, batteryName, textOrEmpty(locationCode),
                     {
                         normal(ecLevelLabel, ecLevel),
                         normal(partNumberLabel, partNumber),
                         normal(serialNumberLabel, serialNumber),
                         normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                         normal(batteryLife, batteryRemainingLife),
                     });
}

int32_t writeRPC(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                 const char* flashFirmwareLevel, const char* partNumber, const char* serialNumber,
                 const char* kyrosFeatureCode, const char* rackNumber)
{
    // The firmware level follows the rack number here, unlike in a power supply.
    return writePart(pKordRec, rpcName, textOrEmpty(locationCode),
                     {
                         normal(ecLevelLabel, ecLevel),
                         normal(partNumberLabel, partNumber),
                         normal(serialNumberLabel, serialNumber),
                         normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                         normal(firmwareLevelLabel, flashFirmwareLevel),
                         normal(featureCode, kyrosFeatureCode),
                     });
}

int32_t writeFanSense(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                      const char* partNumber, const char* serialNumber, const char* rackNumber)
{
    return writePart(pKordRec, fanSenseName, textOrEmpty(locationCode),
                     {
                         normal(ecLevelLabel, ecLevel),
                         normal(partNumberLabel, partNumber),
                         normal(serialNumberLabel, serialNumber),
                         normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                     });
}

int32_t writeFanTray(const kordRec* pKordRec, const char* locationCode, const char* partNumber,
                     const char* rackNumber)
{
    return writePart(pKordRec, fanTrayName, textOrEmpty(locationCode),
                     {
                         normal(partNumberLabel, partNumber),
                         normal(rackNumberLabel, rackNumberOf(rackNumber).text),
                     });
}

// --- Consoles

int32_t openQUAYEncl(const kordRec* pKordRec, const char* quayLocationCode)
{
    return openResource(pKordRec, quay, quayLocationCode,
                        {
                            facility(pKordRec),
                            normal(systemVPD, quayName),
                            normal(hardwareLocation, quayLocationCode),
                        });
}

// clang-format off
int32_t closeQUAYEncl(const kordRec* pKordRec) { return closeResource(pKordRec, quay); }
// clang-format on

// --- Partitions

void openPartitionResource(const kordRec* pKordRec, const char* uniqueId, const char* lparName)
{
    const Frame named = {partitionFrame.opened, textOrEmpty(lparName), partitionFrame.closed};
    openResource(pKordRec, named, uniqueId, {facility(pKordRec)});
}

// clang-format off
int32_t closePartitionResource(const kordRec* pKordRec) { return closeResource(pKordRec, partitionFrame); }
// clang-format on

int32_t writeSFI(const kordRec* pKordRec, const char* kordpStorageFacilityImageMTMS)
{
    return writeProperty(pKordRec, " writeSFI", normal(imageMTMS, kordpStorageFacilityImageMTMS));
}

int32_t writeVRMF(const kordRec* pKordRec, const char* vrmf)
{
    writeProperty(pKordRec, " writeVRMF", normal(licVRMF, vrmf));
    fflush(stdout);
    return 0;
}

int32_t writeSFImageWWNN(const kordRec* pKordRec, const char* wwnn)
{
    return writeProperty(pKordRec, " writeWWNN", normal(nodeName, wwnn));
}

int32_t writeHSLPool(const kordRec* pKordRec, const char* PoolId)
{
    return writeProperty(pKordRec, " writeHSLPool", normal(hslPool, PoolId));
}

int32_t writeLogcialConfig(const kordRec* pKordRec, const char* logicalConfiguration)
{
    return writeProperty(pKordRec, " writeLogcialConfig", normal(configurationString, logicalConfiguration));
}

int32_t writeHostInventory(const kordRec* pKordRec, const char* description)
{
    return writeProperty(pKordRec, " writeHostInventory", normal(hostInventory, description));
}

int32_t writeHostDescription(const kordRec* pKordRec, const userHostDescr* pFirst)
{
    trace(pKordRec, ">>", " writeHostDescription");
    // Consumers receive this one name without quotation marks.
    put(pKordRec, {"<Property name=U2 displayName=\"Host Inventory\">\nU2\n<Value type=\"string\">"});
    for (const userHostDescr* entry = pFirst; entry != nullptr; entry = entry->nextp) {
        put(pKordRec, {entry->description, "=", compose(entry->count), ","});
    }
    put(pKordRec, {"</Value>\n</Property>\n"});
    return 0;
}

// --- Storage configuration

void openStorConfigResourceList(const kordRec* pKordRec)
{
    openList(pKordRec, storageConfigurations);
}

int32_t openStorConfigResource(const kordRec* pKordRec, const char* kordpStorageFacilityImageMTMS)
{
    return openResource(pKordRec, storageConfiguration, compose(kordpStorageFacilityImageMTMS, "_L1").text);
}

// clang-format off
int32_t closeStorConfigResourceList(const kordRec* pKordRec) { return closeList(pKordRec, storageConfigurations); }
int32_t closeStorConfigResource(const kordRec* pKordRec) { return closeResource(pKordRec, storageConfiguration); }
int32_t openArraySitesResourceList(const kordRec* pKordRec) { return openList(pKordRec, arraySiteList); }
int32_t closeArraySitesResourceList(const kordRec* pKordRec) { return closeList(pKordRec, arraySiteList); }
int32_t openArraysResourceList(const kordRec* pKordRec) { return openList(pKordRec, arrayList); }
int32_t closeArraysResourceList(const kordRec* pKordRec) { return closeList(pKordRec, arrayList); }
int32_t openRanksResourceList(const kordRec* pKordRec) { return openList(pKordRec, rankList); }
int32_t closeRanksResourceList(const kordRec* pKordRec) { return closeList(pKordRec, rankList); }
int32_t openSegmentPoolResourceList(const kordRec* pKordRec) { return openList(pKordRec, segmentPoolList); }
int32_t closeSegmentPoolResourceList(const kordRec* pKordRec) { return closeList(pKordRec, segmentPoolList); }
// clang-format on

int32_t writeArraySite(const kordRec* pKordRec, int32_t arraySite, const char* kordpStorageFacilityImageMTMS,
                       int32_t array, int32_t arrayPostition, int32_t daPair, int32_t diskCapacity,
                       int32_t diskRPM, const char* lparId)
{
    const Composed id = partOf(kordpStorageFacilityImageMTMS, "S", arraySite);
    const Composed space =
        compose("AP=", arrayPostition, ",DP=", daPair, ",DC=", diskCapacity, "MB,DR=", diskRPM);
    return writePart(pKordRec, arraySiteName, id,
                     {
                         normal(imageMTMS, kordpStorageFacilityImageMTMS),
                         normal(arrayBelow, partOf(kordpStorageFacilityImageMTMS, "A", array)),
                         normal(partitionIdentifier, partitionOf(pKordRec->kordpManagedSystemMTMS, lparId)),
                         normal(logicalSpace, space),
                     });
}

int32_t writeArray(const kordRec* pKordRec, const char* arraySites, const char* kordpStorageFacilityImageMTMS,
                   const char* serialNumber, const char* raidType, const char* arraySiteConfiguration,
                   int32_t daPair, int32_t diskCapacity, int32_t diskRPM, int32_t rank, int32_t rankPosition,
                   const char* lparId)
{
    const Composed id = compose(kordpStorageFacilityImageMTMS, "/A", arraySites);
    const Composed space = compose("AN=", serialNumber, ",AC=", arraySiteConfiguration, ",RP=", rankPosition,
                                   ",DP=", daPair, ",DC=", diskCapacity, "MB,DR=", diskRPM, ",RT=", raidType);
    return writePart(pKordRec, arrayName, id,
                     {
                         normal(imageMTMS, kordpStorageFacilityImageMTMS),
                         normal(rankBelow, partOf(kordpStorageFacilityImageMTMS, "R", rank)),
                         normal(partitionIdentifier, partitionOf(pKordRec->kordpManagedSystemMTMS, lparId)),
                         normal(logicalSpace, space),
                     });
}

int32_t writeRank(const kordRec* pKordRec, int32_t rank, const char* kordpStorageFacilityImageMTMS,
                  int32_t segmentPool, const char* serialNumber, int32_t segmentType, int32_t numberSegments,
                  int32_t rankGroup, const char* lparId)
{
    const Composed id = partOf(kordpStorageFacilityImageMTMS, "R", rank);
    const Composed space =
        compose("RN=", serialNumber, ",ET=", segmentType, ",ES=", numberSegments, ",RG=", rankGroup);
    return writePart(pKordRec, rankName, id,
                     {
                         normal(imageMTMS, kordpStorageFacilityImageMTMS),
                         normal(segmentPoolBelow, partOf(kordpStorageFacilityImageMTMS, "P", segmentPool)),
                         normal(partitionIdentifier, partitionOf(pKordRec->kordpManagedSystemMTMS, lparId)),
                         normal(logicalSpace, space),
                     });
}

int32_t writeSegmentPool(const kordRec* pKordRec, int32_t segmentPool,
                         const char* kordpStorageFacilityImageMTMS, int32_t segmentType,
                         int32_t numberSegments, int32_t segmentLimit, int32_t numbervirtualSegments,
                         int32_t virtualSegmentLimit, int32_t rankGroup, const char* lparId)
{
    const Composed id = partOf(kordpStorageFacilityImageMTMS, "P", segmentPool);
    const Composed space =
        compose("ET=", segmentType, ",ES=", numberSegments, ",EL=", segmentLimit,
                ",VE=", numbervirtualSegments, ",VL=", virtualSegmentLimit, ",RG=", rankGroup);
    return writePart(pKordRec, segmentPoolName, id,
                     {
                         normal(imageMTMS, kordpStorageFacilityImageMTMS),
                         normal(partitionIdentifier, partitionOf(pKordRec->kordpManagedSystemMTMS, lparId)),
                         normal(logicalSpace, space),
                     });
}
