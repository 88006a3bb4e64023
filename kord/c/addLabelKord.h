// The words of the document. Consumers match codes, labels and names to the letter, misspellings included.

#pragma once

#include "addElementKord.h"

// --- Properties

constexpr Label facilityMTMS = label({.code = "S3", .text = "Storage Facility MTMS"});
constexpr Label imageMTMS = label({.code = "S4", .text = "Storage Facility Image MTMS"});
constexpr Label ecLevelLabel = label({.code = "EC", .text = "EC Level"});
constexpr Label changeLevel = label({.code = "EC", .text = "Engineering Change Level"});
constexpr Label firmwareLevelLabel = label({.code = "LE", .text = "Firmware Level"});
constexpr Label partNumberLabel = label({.code = "PN", .text = "Part Number"});
constexpr Label assemblyNumber = label({.code = "PN", .text = "PartNumber of assembly"});
constexpr Label serialNumberLabel = label({.code = "SN", .text = "Serial Number"});
constexpr Label cardIdentification = label({.code = "CC", .text = "Customer Card Indentification Number"});
constexpr Label adapterInterface = label({.code = "IF", .text = "InterfaceID"});
constexpr Label enclosureInterface = label({.code = "IF", .text = "IntefaceID"});
constexpr Label drawerInterface = label({.code = "IF", .text = "Storage Facility MTMS - InterfaceID"});
constexpr Label rackLocationLabel = label({.code = "R1", .text = "Rack Location"});
constexpr Label rackNumberLabel = label({.code = "R2", .text = "Rack Number"});
constexpr Label rackUniqueId = label({.code = "RK", .text = "Rack Unique ID"});
constexpr Label featureCode = label({.code = "FC", .text = "Feature Code"});
constexpr Label typeModelLabel = label({.code = "TM", .text = "Machine Type-Model"});
constexpr Label plantAndSerial = label({.code = "SG", .text = "Plant of Manufature code and Serial Number"});
constexpr Label batteryLife = label({.code = "BT", .text = "Battery Remaining Life"});
constexpr Label diskSpace = label({.code = "DP", .text = "Disk Space Characteristics"});
constexpr Label accountName = label({.code = "AC", .text = "Account Name"});
constexpr Label systemVPD = label({.code = "DS", .text = "System VPD"});
constexpr Label hardwareLocation = label({.code = "YL", .text = "Hardware Location Code"});
constexpr Label licVRMF = label({.code = "LE", .text = "LIC VRMF"});
constexpr Label operatingSystem = label({.code = "OS", .text = "OS"});
constexpr Label nodeName = label({.code = "NN", .text = "WWNN"});
constexpr Label hslPool = label({.code = "H1", .text = "Partition HSL Pool"});
constexpr Label configurationString = label({.code = "U1", .text = "Logcial Configuration String"});
constexpr Label hostInventory = label({.code = "U2", .text = "Host Inventory"});
constexpr Label arrayBelow = label({.code = "A1", .text = "Array"});
constexpr Label rankBelow = label({.code = "A1", .text = "Rank"});
constexpr Label segmentPoolBelow = label({.code = "A1", .text = "Segment Pool"});
constexpr Label partitionIdentifier = label({.code = "CI", .text = "Partition identifier"});
constexpr Label logicalSpace = label({.code = "LS", .text = "Logical Space Characteristics"});

// --- Display names of resources

constexpr const char* nvcName = "Orvik Non Volatile Control Card";
constexpr const char* daName = "OSK FC-AL Cobaltarray Adapter";
constexpr const char* haName = "Orvik Sable HA - LW";
constexpr const char* storName = "Storage Enclosure";
constexpr const char* ddmName = "OSK Physical Disk Drive";
constexpr const char* fcicName = "Fiber Channel Interface Card";
constexpr const char* baffleName = "Storage Enclosure Slot Baffle";
constexpr const char* rackName = "TARN Rack";
constexpr const char* ppsName = "Primary Power Supply";
constexpr const char* batteryName = "Rack Battery Assembly";
constexpr const char* rpcName = "Rack Power Control Card";
constexpr const char* fanSenseName = "Fan Sense Card";
constexpr const char* fanTrayName = "Fan Tray";
constexpr const char* quayName = "Quay";
constexpr const char* arraySiteName = "Array Site";
constexpr const char* arrayName = "Array";
constexpr const char* rankName = "Rank";
constexpr const char* segmentPoolName = "Segment Pool";
