// The inventory document: its frame, its three element shapes (list, resource, property) and every element
// that the collectors write.
//
// An opener writes a start tag, some with properties, and leaves the element open; a closer writes the end
// tags; a `write` function of a resource writes the whole of it. Nesting is the callers' business. Values are
// written as they stand: consumers compare the texts as the resource manager reports them, so nothing is
// escaped. Without a document (`inp` null) nothing is written. Functions that return an int return 0.

#pragma once

#include "kordRec.h"

#include <string_view>

// --- Frame

/// Creates the document file and puts its stream into `inp`. An earlier document of the name, or a link,
/// goes. Returns 1, and traces "0700", when the file cannot be opened.
int32_t startXml(kordRec* pKordRec);

int32_t openInventory(const kordRec* pKordRec);
void closeInventory(const kordRec* pKordRec);

// --- System and lists

int32_t openSystem(const kordRec* pKordRec);
int32_t closeSystem(const kordRec* pKordRec);
int32_t openEnclosures(const kordRec* pKordRec);
int32_t closeEnclosures(const kordRec* pKordRec);
int32_t openPartitionList(const kordRec* pKordRec);
int32_t closePartitionList(const kordRec* pKordRec);

// --- Processor complex enclosures

int32_t openCecEncl(const kordRec* pKordRec, const char* locationCode);
int32_t closeCecEncl(const kordRec* pKordRec);
int32_t openCecEnclosurePartitionsList(const kordRec* pKordRec);
int32_t closeCecEnclosurePartitionsList(const kordRec* pKordRec);
int32_t openCecEnclosurePartitions(const kordRec* pKordRec, const char* locationCode_cec, const char* lparId);
int32_t closeCecEnclosurePartitions(const kordRec* pKordRec);
int32_t openPartitionResourcesList(const kordRec* pKordRec);
int32_t closePartitionResourcesList(const kordRec* pKordRec);
int32_t openPartitionResources(const kordRec* pKordRec);
int32_t closePartitionResources(const kordRec* pKordRec);
int32_t openEnclosurePartitions(const kordRec* pKordRec, const char* locationCode_cec, const char* lparId);
int32_t closeEnclosurePartitions(const kordRec* pKordRec);
int32_t openNVC(const kordRec* pKordRec, const char* locationCode_nvc);
int32_t closeNVC(const kordRec* pKordRec);
int32_t writeNVC(const kordRec* pKordRec, const char* locationCode_nvc,
                 const char* kordpStorageFacilityImageMTMS, const char* partNumber_nvc,
                 const char* serialNumber_nvc, const char* ecLevel_nvc);

// --- I/O enclosures

int32_t openIOEncl(const kordRec* pKordRec, const char* interfaceIdentifier, const char* locationCode);
int32_t closeIOEncl(const kordRec* pKordRec);
int32_t openEnclosurePartitionsIOD(const kordRec* pKordRec, const char* ioDrawerMTMS, const char* lparId);
int32_t closeEnclosurePartitionsIOD(const kordRec* pKordRec);
int32_t closeDA(const kordRec* pKordRec);
int32_t closeHA(const kordRec* pKordRec);

/// `daPair` is not part of the document.
int32_t writeDA(const kordRec* pKordRec, const char* interfaceIdentifier, const char* daPair,
                const char* locationCode, const char* kordpStorageFacilityImageMTMS, const char* partNumber,
                const char* serialNumber, const char* ecLevel, const char* firmware, const char* ccin);
int32_t writeHA(const kordRec* pKordRec, const char* interfaceIdentifier, const char* locationCode,
                const char* kordpStorageFacilityImageMTMS, const char* partNumber, const char* serialNumber,
                const char* ecLevel, const char* firmware, const char* ccin);

// --- Storage enclosures

int32_t openStorEncl(const kordRec* pKordRec, const char* locationCode,
                     const char* kordpStorageFacilityImageMTMS, const char* RackLocation,
                     const char* rackNumber, const char* interfaceID, const char* feature,
                     const char* enclosureTypemodel, const char* encloseSerial);
int32_t closeStorEncl(const kordRec* pKordRec);
int32_t openEnclosurePartitionsStor(const kordRec* pKordRec, const char* locationCode, const char* lparId);
int32_t closeEnclosurePartitionsStor(const kordRec* pKordRec);
int32_t openDDM(const kordRec* pKordRec, const char* locationCode);
int32_t closeDDM(const kordRec* pKordRec);

/// Capacity in MB, speed in revolutions a minute.
int32_t writeDDM(const kordRec* pKordRec, const char* locationCode, const char* kordpStorageFacilityImageMTMS,
                 const char* ecLevel, const char* firmwareLevel, const char* partNumber,
                 const char* serialNumber, const char* ddmName, const char* diskManufacturer,
                 int32_t diskCapacity, int32_t diskRPM, int32_t diskInterfaceRate, int32_t arraySite,
                 int32_t arraySitePosition, const char* diskInterfaceType, int32_t serviceState);

/// The same values where their texts' lengths are known: there are more drives than all else together.
struct DriveValues {
    std::string_view locationCode = "";
    std::string_view image = "";
    std::string_view ecLevel = "";
    std::string_view firmwareLevel = "";
    std::string_view partNumber = "";
    std::string_view serialNumber = "";
    std::string_view name = "";
    std::string_view manufacturer = "";
    std::string_view interfaceType = "";
    int32_t capacity;
    int32_t rpm;
    int32_t interfaceRate;
    int32_t arraySite;
    int32_t arraySitePosition;
    int32_t serviceState;
};
int32_t writeDrive(const kordRec* pKordRec, const DriveValues& drive);
int32_t openFCIC(const kordRec* pKordRec, const char* locationCode);
int32_t closeFCIC(const kordRec* pKordRec);
int32_t writeFCIC(const kordRec* pKordRec, const char* locationCode,
                  const char* kordpStorageFacilityImageMTMS, const char* ecLevel, const char* firmwareLevel,
                  const char* partNumber, const char* serialNumber);
int32_t openBaffle(const kordRec* pKordRec, const char* locationCode);
int32_t closeBaffle(const kordRec* pKordRec);
int32_t writeBaffle(const kordRec* pKordRec, const char* locationCode,
                    const char* kordpStorageFacilityImageMTMS, const char* partNumber);

// --- Racks

int32_t openRackEncl(const kordRec* pKordRec, const char* locationCode, const char* rackNumber,
                     uint32_t rackIndentifier, const char* Typemodel, const char* Serial);
int32_t closeRackEncl(const kordRec* pKordRec);
int32_t openGlobalResources(const kordRec* pKordRec);
int32_t closeGlobalResources(const kordRec* pKordRec);
int32_t openPPS(const kordRec* pKordRec, const char* locationCode);
int32_t closePPS(const kordRec* pKordRec);
int32_t writePPS(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                 const char* flashFirmwareLevel, const char* partNumber, const char* serialNumber,
                 const char* rackNumber);
int32_t openBattery(const kordRec* pKordRec, const char* locationCode);
int32_t closeBattery(const kordRec* pKordRec);
int32_t writeBattery(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                     const char* partNumber, const char* serialNumber, const char* batteryRemainingLife,
                     const char* rackNumber);
int32_t openRPC(const kordRec* pKordRec, const char* locationCode);
int32_t closeRPC(const kordRec* pKordRec);
int32_t writeRPC(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                 const char* flashFirmwareLevel, const char* partNumber, const char* serialNumber,
                 const char* kyrosFeatureCode, const char* rackNumber);
int32_t openFanSense(const kordRec* pKordRec, const char* locationCode);
int32_t closeFanSense(const kordRec* pKordRec);
int32_t writeFanSense(const kordRec* pKordRec, const char* locationCode, const char* ecLevel,
                      const char* partNumber, const char* serialNumber, const char* rackNumber);
int32_t openFanTray(const kordRec* pKordRec, const char* locationCode);
int32_t closeFanTray(const kordRec* pKordRec);
int32_t writeFanTray(const kordRec* pKordRec, const char* locationCode, const char* partNumber,
                     const char* rackNumber);

// --- Consoles

int32_t openQUAYEncl(const kordRec* pKordRec, const char* quayLocationCode);
int32_t closeQUAYEncl(const kordRec* pKordRec);
int32_t writeRackEnclMTMS(const kordRec* pKordRec, const char* rackEnclosureMTMS);
int32_t writeStorPlex(const kordRec* pKordRec, const char* storagePlexAccountName);

// --- Partitions

void openPartitionResource(const kordRec* pKordRec, const char* uniqueId, const char* lparName);
int32_t closePartitionResource(const kordRec* pKordRec);
int32_t writeSFI(const kordRec* pKordRec, const char* kordpStorageFacilityImageMTMS);
int32_t writeVRMF(const kordRec* pKordRec, const char* vrmf);
int32_t writeOnyx(const kordRec* pKordRec, const char* onyx);
int32_t writeSFImageWWNN(const kordRec* pKordRec, const char* wwnn);
int32_t writeHSLPool(const kordRec* pKordRec, const char* PoolId);
int32_t writeLogcialConfig(const kordRec* pKordRec, const char* logicalConfiguration);
int32_t writeHostInventory(const kordRec* pKordRec, const char* description);

/// One property for the whole chain from `pFirst` on (null: an empty value).
int32_t writeHostDescription(const kordRec* pKordRec, const userHostDescr* pFirst);

// --- Storage configuration

void openStorConfigResourceList(const kordRec* pKordRec);
int32_t closeStorConfigResourceList(const kordRec* pKordRec);
int32_t openStorConfigResource(const kordRec* pKordRec, const char* kordpStorageFacilityImageMTMS);
int32_t closeStorConfigResource(const kordRec* pKordRec);
int32_t openArraySitesResourceList(const kordRec* pKordRec);
int32_t closeArraySitesResourceList(const kordRec* pKordRec);
int32_t openArraysResourceList(const kordRec* pKordRec);
int32_t closeArraysResourceList(const kordRec* pKordRec);
int32_t openRanksResourceList(const kordRec* pKordRec);
int32_t closeRanksResourceList(const kordRec* pKordRec);
int32_t openSegmentPoolResourceList(const kordRec* pKordRec);
int32_t closeSegmentPoolResourceList(const kordRec* pKordRec);

int32_t openArraySite(const kordRec* pKordRec, int32_t arraySite, const char* kordpStorageFacilityImageMTMS);
int32_t closeArraySite(const kordRec* pKordRec);
int32_t writeArraySite(const kordRec* pKordRec, int32_t arraySite, const char* kordpStorageFacilityImageMTMS,
                       int32_t array, int32_t arrayPostition, int32_t daPair, int32_t diskCapacity,
                       int32_t diskRPM, const char* lparId);
int32_t openArray(const kordRec* pKordRec, int32_t arraySites, const char* kordpStorageFacilityImageMTMS);
int32_t closeArray(const kordRec* pKordRec);
int32_t writeArray(const kordRec* pKordRec, const char* arraySites, const char* kordpStorageFacilityImageMTMS,
                   const char* serialNumber, const char* raidType, const char* arraySiteConfiguration,
                   int32_t daPair, int32_t diskCapacity, int32_t diskRPM, int32_t rank, int32_t rankPosition,
                   const char* lparId);
int32_t openRank(const kordRec* pKordRec, int32_t rank, const char* kordpStorageFacilityImageMTMS);
int32_t closeRank(const kordRec* pKordRec);
int32_t writeRank(const kordRec* pKordRec, int32_t rank, const char* kordpStorageFacilityImageMTMS,
                  int32_t segmentPool, const char* serialNumber, int32_t segmentType, int32_t numberSegments,
                  int32_t rankGroup, const char* lparId);
int32_t openSegmentPool(const kordRec* pKordRec, int32_t segmentPool,
                        const char* kordpStorageFacilityImageMTMS);
int32_t closeSegmentPool(const kordRec* pKordRec);
int32_t writeSegmentPool(const kordRec* pKordRec, int32_t segmentPool,
                         const char* kordpStorageFacilityImageMTMS, int32_t segmentType,
                         int32_t numberSegments, int32_t segmentLimit, int32_t numbervirtualSegments,
                         int32_t virtualSegmentLimit, int32_t rankGroup, const char* lparId);
