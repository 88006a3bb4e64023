#include "document/kind.h"

#include <algorithm>
#include <initializer_list>

namespace document
{

namespace
{

// --- Properties that several kinds have

constexpr PropertyRow facility = {.code = "S3", .label = "Storage Facility MTMS"};
constexpr PropertyRow image = {.code = "S4", .label = "Storage Facility Image MTMS"};
constexpr PropertyRow ecLevel = {.code = "EC", .label = "EC Level"};
constexpr PropertyRow firmware = {.code = "LE", .label = "Firmware Level"};
constexpr PropertyRow partNumber = {.code = "PN", .label = "Part Number"};
constexpr PropertyRow serialNumber = {.code = "SN", .label = "Serial Number"};
constexpr PropertyRow rackNumber = {.code = "R2", .label = "Rack Number"};
constexpr PropertyRow featureCode = {.code = "FC", .label = "Feature Code"};
constexpr PropertyRow typeModel = {.code = "TM", .label = "Machine Type-Model"};
constexpr PropertyRow plantAndSerial = {.code = "SG", .label = "Plant of Manufature code and Serial Number"};
constexpr PropertyRow partitionId = {.code = "CI", .label = "Partition identifier"};
constexpr PropertyRow logicalSpace = {.code = "LS", .label = "Logical Space Characteristics"};
constexpr PropertyRow displayName = {.code = "DS", .label = "System VPD"};
constexpr PropertyRow location = {.code = "YL", .label = "Hardware Location Code"};

// Cards that are installed in enclosures with processors have label and code in the other order.
constexpr PropertyRow cardPart = {.code = "PN", .label = "PartNumber of assembly", .order = Order::reversed};
constexpr PropertyRow cardSerial = {.code = "SN", .label = "Serial Number", .order = Order::reversed};
constexpr PropertyRow cardLevel = {
    .code = "EC", .label = "Engineering Change Level", .order = Order::reversed};
constexpr PropertyRow cardFirmware = {.code = "LE", .label = "Firmware Level", .order = Order::reversed};
constexpr PropertyRow cardIdentification = {
    .code = "CC", .label = "Customer Card Indentification Number", .order = Order::reversed};

// --- Each kind's properties, in their order

constexpr auto ofFacility = std::to_array<PropertyRow>({facility});
constexpr auto ofControlCard = std::to_array<PropertyRow>({image, cardPart, cardSerial, cardLevel});
constexpr auto ofIoEnclosure =
    std::to_array<PropertyRow>({facility, {.code = "IF", .label = "Storage Facility MTMS - InterfaceID"}});
constexpr auto ofAdapter = std::to_array<PropertyRow>({image,
                                                       cardPart,
                                                       cardSerial,
                                                       cardLevel,
                                                       cardFirmware,
                                                       {.code = "IF", .label = "InterfaceID"},
                                                       cardIdentification,
                                                       displayName,
                                                       location});
constexpr auto ofRack = std::to_array<PropertyRow>({facility,
                                                    {.code = "RK", .label = "Rack Unique ID"},
                                                    rackNumber,
                                                    typeModel,
                                                    plantAndSerial,
                                                    displayName,
                                                    location});
constexpr auto ofPowerSupply = std::to_array<PropertyRow>(
    {facility, ecLevel, firmware, partNumber, serialNumber, rackNumber, displayName, location});
constexpr auto ofBattery = std::to_array<PropertyRow>({facility,
                                                       ecLevel,
                                                       partNumber,
                                                       serialNumber,
                                                       rackNumber,
                                                       {.code = "BT", .label = "Battery Remaining Life"},
                                                       displayName,
                                                       location});
constexpr auto ofPowerController = std::to_array<PropertyRow>(
    {facility, ecLevel, partNumber, serialNumber, rackNumber, firmware, featureCode, displayName, location});
constexpr auto ofFanSenseCard = std::to_array<PropertyRow>(
    {facility, ecLevel, partNumber, serialNumber, rackNumber, displayName, location});
constexpr auto ofFanTray =
    std::to_array<PropertyRow>({facility, partNumber, rackNumber, displayName, location});
constexpr auto ofStorageEnclosure = std::to_array<PropertyRow>({facility,
                                                                image,
                                                                {.code = "R1", .label = "Rack Location"},
                                                                rackNumber,
                                                                {.code = "IF", .label = "IntefaceID"},
                                                                featureCode,
                                                                typeModel,
                                                                plantAndSerial,
                                                                displayName,
                                                                location});
constexpr auto ofDrive = std::to_array<PropertyRow>({facility,
                                                     image,
                                                     ecLevel,
                                                     firmware,
                                                     partNumber,
                                                     serialNumber,
                                                     {.code = "DP", .label = "Disk Space Characteristics"},
                                                     displayName,
                                                     location});
constexpr auto ofInterfaceCard = std::to_array<PropertyRow>(
    {facility, image, ecLevel, firmware, partNumber, serialNumber, displayName, location});
constexpr auto ofBaffle = std::to_array<PropertyRow>({facility, image, partNumber, displayName, location});
constexpr auto ofConsole = std::to_array<PropertyRow>({facility, displayName, location});
// A partition's properties come one by one, from queries any of which can end the collection.
constexpr auto ofPartition = std::to_array<PropertyRow>({
    facility,
    image,
    {.code = "LE", .label = "LIC VRMF", .times = Times::any},
    {.code = "NN", .label = "WWNN", .times = Times::optional},
    {.code = "H1", .label = "Partition HSL Pool", .times = Times::optional},
    {.code = "U1", .label = "Logcial Configuration String", .times = Times::optional},
    {.code = "U2", .label = "Host Inventory", .times = Times::optional},
});
constexpr auto ofArraySite = std::to_array<PropertyRow>(
    {facility, image, {.code = "A1", .label = "Array"}, partitionId, logicalSpace, displayName, location});
constexpr auto ofArray = std::to_array<PropertyRow>(
    {facility, image, {.code = "A1", .label = "Rank"}, partitionId, logicalSpace, displayName, location});
constexpr auto ofRank = std::to_array<PropertyRow>({facility,
                                                    image,
                                                    {.code = "A1", .label = "Segment Pool"},
                                                    partitionId,
                                                    logicalSpace,
                                                    displayName,
                                                    location});
constexpr auto ofSegmentPool =
    std::to_array<PropertyRow>({facility, image, partitionId, logicalSpace, displayName, location});

// --- Columns that every kind has

constexpr auto common = std::to_array<Column>({
    {.name = "system",
     .meaning = "managed system that the document tells of",
     .source = {.from = From::system},
     .shown = false},
    {.name = "facility",
     .meaning = "machine type, model and serial number of the storage facility",
     .source = {.from = From::around, .code = "S3"},
     .shown = false},
    {.name = "collected",
     .type = Type::time,
     .meaning = "when the document was collected",
     .source = {.from = From::time},
     .shown = false},
    {.name = "kind", .meaning = "kind of the part", .source = {.from = From::kind}, .shown = false},
    {.name = "id",
     .meaning = "identifier: a location code, or a number of the logical configuration",
     .source = {.from = From::id}},
    {.name = "within",
     .meaning = "identifier of the part that it is in",
     .source = {.from = From::within},
     .shown = false},
});

// --- Columns that several kinds have

constexpr Column imageColumn = {.name = "image",
                                .meaning = "storage facility image that it belongs to",
                                .source = {.from = From::property, .code = "S4"},
                                .shown = false};
constexpr Column partitionsColumn = {.name = "partitions",
                                     .type = Type::texts,
                                     .meaning = "identifiers of the partitions that see it",
                                     .source = {.from = From::partitions},
                                     .shown = false};
constexpr Column rackColumn = {.name = "rack",
                               .type = Type::number,
                               .meaning = "number of its rack",
                               .source = {.from = From::around, .code = "R2"}};
constexpr Column enclosureColumn = {.name = "enclosure",
                                    .type = Type::number,
                                    .meaning = "number of its storage enclosure within the rack",
                                    .source = {.from = From::end, .code = "R1", .mark = "-"}};
constexpr Column serialColumn = {
    .name = "serial", .meaning = "serial number", .source = {.from = From::property, .code = "SN"}};
constexpr Column plantColumn = {.name = "serial",
                                .meaning = "code of the plant of manufacture and serial number",
                                .source = {.from = From::property, .code = "SG"}};
constexpr Column partNumberColumn = {
    .name = "part_number", .meaning = "part number", .source = {.from = From::property, .code = "PN"}};
constexpr Column ecLevelColumn = {.name = "ec_level",
                                  .meaning = "engineering change level",
                                  .source = {.from = From::property, .code = "EC"}};
constexpr Column firmwareColumn = {
    .name = "firmware", .meaning = "firmware level", .source = {.from = From::property, .code = "LE"}};
constexpr Column featureColumn = {
    .name = "feature", .meaning = "feature code", .source = {.from = From::property, .code = "FC"}};
constexpr Column typeModelColumn = {.name = "type_model",
                                    .meaning = "machine type and model",
                                    .source = {.from = From::property, .code = "TM"}};
constexpr Column interfacesColumn = {.name = "interfaces",
                                     .meaning =
                                         "interface identifiers; each behind the first lacks its last digit",
                                     .source = {.from = From::property, .code = "IF"}};
constexpr Column cardColumn = {.name = "ccin",
                               .meaning = "customer card identification number",
                               .source = {.from = From::property, .code = "CC"}};

consteval Column item(std::string_view code, std::string_view key, Column column)
{
    column.source.from = From::item;
    column.source.code = code;
    column.source.mark = key;
    column.source.unit = column.unit == "MB" ? "MB" : "";
    return column;
}

consteval Column capacity(std::string_view code)
{
    return item(code, "DC",
                {.name = "capacity_mb",
                 .type = Type::number,
                 .unit = "MB",
                 .meaning = "capacity of a drive",
                 .source = {}});
}

consteval Column speed(std::string_view code)
{
    return item(code, "DR",
                {.name = "rpm",
                 .type = Type::number,
                 .unit = "rpm",
                 .meaning = "rotational speed of a drive",
                 .source = {}});
}

consteval Column number(std::string_view name, std::string_view mark, std::string_view meaning)
{
    return {.name = name,
            .type = Type::number,
            .meaning = meaning,
            .source = {.from = From::idEnd, .mark = mark}};
}

/// The number of the part that an array site, an array or a rank belongs to.
consteval Column below(std::string_view name, std::string_view mark, std::string_view meaning)
{
    return {.name = name,
            .type = Type::number,
            .meaning = meaning,
            .source = {.from = From::end, .code = "A1", .mark = mark}};
}

/// The numbers of the arrays of a rank, or of the ranks of a segment pool.
consteval Column above(Kind kind, std::string_view name, std::string_view mark, std::string_view meaning)
{
    return {.name = name,
            .type = Type::numbers,
            .meaning = meaning,
            .source = {.from = From::naming, .code = "A1", .mark = mark, .kind = kind}};
}

consteval Column numberItem(std::string_view code, std::string_view key, std::string_view name,
                            std::string_view meaning)
{
    return item(code, key, {.name = name, .type = Type::number, .meaning = meaning, .source = {}});
}

consteval Column textItem(std::string_view code, std::string_view key, std::string_view name,
                          std::string_view meaning)
{
    return item(code, key, {.name = name, .meaning = meaning, .source = {}});
}

/// One of the numbers that tell how much of everything a partition has; a table shows them when asked.
consteval Column count(std::string_view key, std::string_view meaning, std::string_view unit = {})
{
    return item(
        "U1", key,
        {.name = key, .type = Type::number, .unit = unit, .meaning = meaning, .source = {}, .shown = false});
}

constexpr Column rankGroup = numberItem("LS", "RG", "rank_group", "rank group");
constexpr Column segmentType = numberItem("LS", "ET", "segment_type", "type of the segments");
constexpr Column segments = numberItem("LS", "ES", "segments", "number of segments");
constexpr Column adapterPair = numberItem("LS", "DP", "da_pair", "pair of device adapters");

// --- Each kind's own columns

constexpr auto controlCardColumns =
    std::to_array<Column>({serialColumn, partNumberColumn, ecLevelColumn, imageColumn, partitionsColumn});
constexpr auto drawerColumns = std::to_array<Column>({partitionsColumn});
constexpr auto ioEnclosureColumns = std::to_array<Column>({interfacesColumn, partitionsColumn});
constexpr auto adapterColumns =
    std::to_array<Column>({serialColumn, partNumberColumn, ecLevelColumn, firmwareColumn, interfacesColumn,
                           cardColumn, imageColumn, partitionsColumn});
constexpr auto rackColumns = std::to_array<Column>({rackColumn,
                                                    {.name = "rack_id",
                                                     .type = Type::number,
                                                     .meaning = "unique number of the rack",
                                                     .source = {.from = From::property, .code = "RK"}},
                                                    typeModelColumn,
                                                    plantColumn});
constexpr auto powerSupplyColumns =
    std::to_array<Column>({rackColumn, serialColumn, partNumberColumn, ecLevelColumn, firmwareColumn});
constexpr auto batteryColumns = std::to_array<Column>({rackColumn,
                                                       serialColumn,
                                                       partNumberColumn,
                                                       ecLevelColumn,
                                                       {.name = "remaining_life",
                                                        .type = Type::number,
                                                        .meaning = "remaining life of the battery",
                                                        .source = {.from = From::property, .code = "BT"}}});
constexpr auto powerControllerColumns = std::to_array<Column>(
    {rackColumn, serialColumn, partNumberColumn, ecLevelColumn, firmwareColumn, featureColumn});
constexpr auto fanSenseCardColumns =
    std::to_array<Column>({rackColumn, serialColumn, partNumberColumn, ecLevelColumn});
constexpr auto fanTrayColumns = std::to_array<Column>({rackColumn, partNumberColumn});
constexpr auto storageEnclosureColumns =
    std::to_array<Column>({rackColumn, enclosureColumn, typeModelColumn, plantColumn, featureColumn,
                           interfacesColumn, imageColumn, partitionsColumn});
constexpr auto driveColumns = std::to_array<Column>({
    rackColumn,
    enclosureColumn,
    {.name = "slot",
     .type = Type::number,
     .meaning = "number of its slot in the enclosure",
     .source = {.from = From::idEnd, .mark = "-D"}},
    serialColumn,
    partNumberColumn,
    ecLevelColumn,
    firmwareColumn,
    textItem("DP", "DI", "name", "name of the drive"),
    textItem("DP", "DM", "manufacturer", "manufacturer"),
    capacity("DP"),
    speed("DP"),
    numberItem("DP", "DS", "interface_rate", "rate of the interface"),
    numberItem("DP", "AS", "array_site", "number of its array site"),
    numberItem("DP", "AP", "position", "position in the array site"),
    textItem("DP", "IT", "interface_type", "type of the interface"),
    numberItem("DP", "ST", "state", "service state"),
    imageColumn,
    partitionsColumn,
});
constexpr auto interfaceCardColumns =
    std::to_array<Column>({rackColumn, enclosureColumn, serialColumn, partNumberColumn, ecLevelColumn,
                           firmwareColumn, imageColumn, partitionsColumn});
constexpr auto baffleColumns =
    std::to_array<Column>({rackColumn, enclosureColumn, partNumberColumn, imageColumn, partitionsColumn});
constexpr auto partitionColumns = std::to_array<Column>({
    {.name = "name", .meaning = "name of the partition", .source = {.from = From::name}},
    {.name = "pool",
     .meaning = "pool that the partition's processors and memory are in",
     .source = {.from = From::property, .code = "H1"}},
    {.name = "wwnn",
     .meaning = "world wide node name of the image",
     .source = {.from = From::property, .code = "NN"}},
    {.name = "firmware",
     .meaning = "level of the licensed code",
     .source = {.from = From::property, .code = "LE"}},
    imageColumn,
    count("v0", "logical volumes of volume type 10"),
    count("v1", "logical volumes of volume type 10 and data type 10"),
    count("v2", "logical volumes of volume type 10 and data type 11"),
    count("v3", "logical volumes of volume type 10 and data type 12"),
    count("v4", "logical volumes of volume type 11"),
    count("v5", "logical volumes of volume type 12"),
    count("v6", "logical volumes of volume type 20 and data type 0"),
    count("v7", "logical volumes of volume type 20 and data type 1 or 2"),
    count("p0", "ports of host adapters"),
    count("p1", "ports of host adapters of port type 20 or 21"),
    count("p2", "ports of host adapters of topology 1"),
    count("p3", "ports of host adapters of topology 0"),
    count("p4", "ports of host adapters of topology 2"),
    count("o0", "volume groups"),
    count("o1", "ports of hosts"),
    count("o2", "mainframe channel hosts, which are not counted: always 0"),
    count("o3", "logical subsystems of device type CKD"),
    count("o4", "logical subsystems of device type FB"),
    count("h0", "memory, which comes too late for its place: always 0"),
    count("h1", "memory that is reserved first, of the first partition", "1,024 of the console's units"),
    count("h2", "memory that is reserved second, of the first partition", "1,024 of the console's units"),
    count("h3", "processors of the first partition"),
});
constexpr auto hostColumns = std::to_array<Column>({
    {.name = "description",
     .meaning = "what people call the host",
     .source = {.from = From::description, .code = "U2"}},
    {.name = "ports",
     .type = Type::number,
     .meaning = "number of its ports",
     .source = {.from = From::ports, .code = "U2"}},
    {.name = "partition",
     .meaning = "name of the partition that knows it",
     .source = {.from = From::partition}},
});
constexpr auto arraySiteColumns = std::to_array<Column>({
    number("number", "/S", "number of the array site"),
    below("array", "/A", "number of its array"),
    numberItem("LS", "AP", "position", "position in the array"),
    adapterPair,
    capacity("LS"),
    speed("LS"),
    imageColumn,
});
constexpr auto arrayColumns = std::to_array<Column>({
    {.name = "number",
     .type = Type::number,
     .meaning = "number of the array",
     .source = {.from = From::arrayOfSites, .code = "A1", .mark = "/A"}},
    {.name = "array_sites",
     .type = Type::numbers,
     .meaning = "numbers of its array sites",
     .source = {.from = From::sites, .mark = "/A"}},
    below("rank", "/R", "number of its rank"),
    textItem("LS", "AN", "serial", "serial number"),
    textItem("LS", "AC", "configuration", "configuration of its array sites"),
    numberItem("LS", "RP", "position", "position in the rank"),
    adapterPair,
    capacity("LS"),
    speed("LS"),
    textItem("LS", "RT", "raid_type", "type of RAID"),
    imageColumn,
});
constexpr auto rankColumns = std::to_array<Column>({
    number("number", "/R", "number of the rank"),
    above(Kind::array, "arrays", "/R", "numbers of its arrays"),
    below("pool", "/P", "number of its segment pool"),
    textItem("LS", "RN", "serial", "serial number"),
    segmentType,
    segments,
    rankGroup,
    imageColumn,
});
constexpr auto segmentPoolColumns = std::to_array<Column>({
    number("number", "/P", "number of the segment pool"),
    above(Kind::rank, "ranks", "/P", "numbers of its ranks"),
    segmentType,
    segments,
    numberItem("LS", "EL", "segment_limit", "limit for its segments"),
    numberItem("LS", "VE", "virtual_segments", "number of virtual segments: always 0"),
    numberItem("LS", "VL", "virtual_segment_limit", "limit for its virtual segments"),
    rankGroup,
    imageColumn,
});
constexpr auto otherColumns = std::to_array<Column>({
    {.name = "name", .meaning = "display name", .source = {.from = From::name}},
    {.name = "rack",
     .type = Type::number,
     .meaning = "number of its rack",
     .source = {.from = From::around, .code = "R2"},
     .shown = false},
    serialColumn,
    partNumberColumn,
    ecLevelColumn,
    firmwareColumn,
    imageColumn,
    partitionsColumn,
});

// --- The table. What has no display name here goes by its list: partitions have names that people gave them.

constexpr std::string_view enclosures = "Enclosures";
constexpr std::string_view resources = "Partition Resources";
constexpr std::string_view global = "Global Resources";

constexpr std::array<KindRow, kindCount> kindTable = {{
    {.kind = Kind::system,
     .word = "system",
     .singular = "managed system",
     .plural = "managed systems",
     .counted = false,
     .properties = ofFacility},
    {.kind = Kind::processorComplex,
     .word = "processorComplex",
     .singular = "processor complex",
     .plural = "processor complexes",
     .list = enclosures,
     .name = "CEC",
     .properties = ofFacility,
     .columns = drawerColumns},
    {.kind = Kind::controlCard,
     .word = "controlCard",
     .singular = "control card",
     .plural = "control cards",
     .list = resources,
     .name = "Orvik Non Volatile Control Card",
     .serial = "SN",
     .properties = ofControlCard,
     .columns = controlCardColumns},
    {.kind = Kind::ioEnclosure,
     .word = "ioEnclosure",
     .singular = "I/O enclosure",
     .plural = "I/O enclosures",
     .list = enclosures,
     .name = "Larkspur",
     .properties = ofIoEnclosure,
     .columns = ioEnclosureColumns},
    {.kind = Kind::deviceAdapter,
     .word = "deviceAdapter",
     .singular = "device adapter",
     .plural = "device adapters",
     .list = resources,
     .name = "OSK FC-AL Cobaltarray Adapter",
     .serial = "SN",
     .properties = ofAdapter,
     .columns = adapterColumns},
    {.kind = Kind::hostAdapter,
     .word = "hostAdapter",
     .singular = "host adapter",
     .plural = "host adapters",
     .list = resources,
     .name = "Orvik Sable HA - LW",
     .serial = "SN",
     .properties = ofAdapter,
     .columns = adapterColumns},
    {.kind = Kind::rack,
     .word = "rack",
     .singular = "rack",
     .plural = "racks",
     .list = enclosures,
     .name = "TARN Rack",
     .serial = "SG",
     .model = "TM",
     .position = "R2",
     .properties = ofRack,
     .columns = rackColumns},
    {.kind = Kind::powerSupply,
     .word = "powerSupply",
     .singular = "power supply",
     .plural = "power supplies",
     .list = global,
     .name = "Primary Power Supply",
     .serial = "SN",
     .properties = ofPowerSupply,
     .columns = powerSupplyColumns},
    {.kind = Kind::battery,
     .word = "battery",
     .singular = "battery",
     .plural = "batteries",
     .list = global,
     .name = "Rack Battery Assembly",
     .serial = "SN",
     .properties = ofBattery,
     .columns = batteryColumns},
    {.kind = Kind::powerController,
     .word = "powerController",
     .singular = "power controller",
     .plural = "power controllers",
     .list = global,
     .name = "Rack Power Control Card",
     .serial = "SN",
     .properties = ofPowerController,
     .columns = powerControllerColumns},
    {.kind = Kind::fanSenseCard,
     .word = "fanSenseCard",
     .singular = "fan sense card",
     .plural = "fan sense cards",
     .list = global,
     .name = "Fan Sense Card",
     .serial = "SN",
     .properties = ofFanSenseCard,
     .columns = fanSenseCardColumns},
    {.kind = Kind::fanTray,
     .word = "fanTray",
     .singular = "fan tray",
     .plural = "fan trays",
     .list = global,
     .name = "Fan Tray",
     .properties = ofFanTray,
     .columns = fanTrayColumns},
    {.kind = Kind::storageEnclosure,
     .word = "storageEnclosure",
     .singular = "storage enclosure",
     .plural = "storage enclosures",
     .list = enclosures,
     .name = "Storage Enclosure",
     .serial = "SG",
     .model = "TM",
     .position = "R1",
     .properties = ofStorageEnclosure,
     .columns = storageEnclosureColumns},
    {.kind = Kind::drive,
     .word = "drive",
     .singular = "drive",
     .plural = "drives",
     .list = resources,
     .name = "OSK Physical Disk Drive",
     .serial = "SN",
     .properties = ofDrive,
     .columns = driveColumns},
    {.kind = Kind::interfaceCard,
     .word = "interfaceCard",
     .singular = "interface card",
     .plural = "interface cards",
     .list = resources,
     .name = "Fiber Channel Interface Card",
     .serial = "SN",
     .properties = ofInterfaceCard,
     .columns = interfaceCardColumns},
    {.kind = Kind::baffle,
     .word = "baffle",
     .singular = "baffle",
     .plural = "baffles",
     .list = resources,
     .name = "Storage Enclosure Slot Baffle",
     .properties = ofBaffle,
     .columns = baffleColumns},
    {.kind = Kind::enclosurePartition,
     .word = "other",
     .singular = "partition's share of an enclosure",
     .plural = "partitions' shares of enclosures",
     .list = "Enclosures Partitions",
     .counted = false,
     .listed = false},
    {.kind = Kind::console,
     .word = "console",
     .singular = "console",
     .plural = "consoles",
     .list = enclosures,
     .name = "Quay",
     .properties = ofConsole},
    {.kind = Kind::partition,
     .word = "partition",
     .singular = "partition",
     .plural = "partitions",
     .list = "Partitions",
     .properties = ofPartition,
     .columns = partitionColumns},
    {.kind = Kind::storageConfiguration,
     .word = "other",
     .singular = "storage configuration",
     .plural = "storage configurations",
     .list = "Storage Configurations",
     .counted = false,
     .columns = otherColumns},
    {.kind = Kind::arraySite,
     .word = "arraySite",
     .singular = "array site",
     .plural = "array sites",
     .list = "Array Sites",
     .properties = ofArraySite,
     .columns = arraySiteColumns},
    {.kind = Kind::array,
     .word = "array",
     .singular = "array",
     .plural = "arrays",
     .list = "Arrays",
     .properties = ofArray,
     .columns = arrayColumns},
    {.kind = Kind::rank,
     .word = "rank",
     .singular = "rank",
     .plural = "ranks",
     .list = "Ranks",
     .properties = ofRank,
     .columns = rankColumns},
    {.kind = Kind::segmentPool,
     .word = "segmentPool",
     .singular = "segment pool",
     .plural = "segment pools",
     .list = "Segment Pool",
     .properties = ofSegmentPool,
     .columns = segmentPoolColumns},
    {.kind = Kind::host,
     .word = "host",
     .singular = "host",
     .plural = "hosts",
     .idShown = false,
     .columns = hostColumns},
    {.kind = Kind::other,
     .word = "other",
     .singular = "part of another kind",
     .plural = "parts of another kind",
     .serial = "SN",
     .columns = otherColumns},
}};

static_assert(std::ranges::all_of(kindTable, [](const KindRow& row) {
    return &row - kindTable.data() == static_cast<std::ptrdiff_t>(row.kind);
}));

/// "arraySite" as "array-site".
std::string withHyphens(std::string_view word)
{
    std::string text;
    for (const char letter : word) {
        const bool capital = letter >= 'A' && letter <= 'Z';
        if (capital) text += '-';
        text += capital ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return text;
}

std::string inPlural(std::string word)
{
    constexpr std::string_view vowels = "aeiou";
    if (word.ends_with('x')) return word + "es";
    const bool changes = word.ends_with('y') && vowels.find(word[word.size() - 2]) == std::string_view::npos;
    if (!changes) return word + 's';
    word.back() = 'i';
    return word + "es";
}

bool isWordOf(const KindRow& row, std::string_view word)
{
    const std::string singular(row.word);
    return word == singular || word == inPlural(singular) || word == withHyphens(singular) ||
           word == inPlural(withHyphens(singular));
}

} // namespace

const std::array<KindRow, kindCount> kinds = kindTable;
const std::span<const Column> commonColumns = common;

const KindRow& rowOf(Kind kind)
{
    return kindTable.at(static_cast<size_t>(kind));
}

Kind kindOf(std::string_view list, std::string_view name)
{
    if (list.empty()) return Kind::system;
    for (const KindRow& row : kindTable) {
        if (row.name.empty() && row.list == list) return row.kind;
    }
    for (const KindRow& row : kindTable) {
        if (!row.name.empty() && row.name == name) return row.kind;
    }
    return Kind::other;
}

std::vector<Kind> kindsOf(std::string_view word)
{
    std::vector<Kind> found;
    for (const KindRow& row : kindTable) {
        if (row.listed && (word == "all" || isWordOf(row, word))) found.push_back(row.kind);
    }
    return found;
}

std::vector<std::string> kindWords()
{
    std::vector<std::string> words;
    for (const KindRow& row : kindTable) {
        const std::string word = inPlural(withHyphens(row.word));
        std::erase(words, word); // two kinds have the last one's word
        if (row.listed) words.push_back(word);
    }
    words.emplace_back("all");
    return words;
}

std::vector<const Column*> columnsOf(Kind kind)
{
    std::vector<const Column*> columns;
    for (const auto& part : {commonColumns, rowOf(kind).columns}) {
        for (const Column& column : part)
            columns.push_back(&column);
    }
    return columns;
}

std::vector<std::string> columnNamesOf(std::span<const Kind> ofKinds, bool onlyShown)
{
    std::vector<std::string> names;
    for (const Kind kind : ofKinds) {
        for (const Column* column : columnsOf(kind)) {
            const bool known = std::ranges::find(names, column->name) != names.end();
            const bool shown = column->shown && (rowOf(kind).idShown || column->source.from != From::id);
            if (!known && (shown || !onlyShown)) names.emplace_back(column->name);
        }
    }
    return names;
}

std::string_view wordOf(Type type)
{
    constexpr auto words = std::to_array<std::string_view>({"text", "number", "texts", "numbers", "time"});
    return words.at(static_cast<size_t>(type));
}

std::string placeOf(const KindRow& row)
{
    if (row.kind == Kind::system) return "the document's one resource";
    if (row.kind == Kind::host) return "property U2 of a partition";
    if (row.kind == Kind::other) return "whatever is of no other kind";
    const std::string list = "list \"" + std::string(row.list) + '"';
    return row.name.empty() ? list : '"' + std::string(row.name) + "\" in the " + list;
}

bool tellsOfOthers(const Column& column)
{
    return column.source.from == From::arrayOfSites || column.source.from == From::naming;
}

std::string sourceOf(const Column& column)
{
    const Source& source = column.source;
    std::string code = '`' + std::string(source.code) + '`';
    const std::string mark = '`' + std::string(source.mark) + '`';
    switch (source.from) {
    case From::system:
        return "identifier of the managed system";
    case From::time:
        return "`timestamp`";
    case From::kind:
        return "list and display name";
    case From::id:
        return "`uniqueId`";
    case From::name:
        return "`displayName`";
    case From::within:
        return "`uniqueId` of the part around it";
    case From::property:
        return code;
    case From::around:
        return code + ", its own or that of the part around it";
    case From::end:
        return "behind the last " + mark + " of " + code;
    case From::idEnd:
        return "behind the last " + mark + " of `uniqueId`";
    case From::item:
        return mark + " in " + code;
    case From::sites:
        return "behind the last " + mark + " of `uniqueId`, where the first number stands twice";
    case From::arrayOfSites:
        return code + " of its array sites";
    case From::naming:
        return code + " of the " + std::string(rowOf(source.kind).plural) + " that name it";
    case From::partitions:
        return "the lists `Enclosures Partitions`";
    case From::description:
    case From::ports:
        return code + " of the partition";
    case From::partition:
        return "`displayName` of the partition";
    }
    return {};
}

} // namespace document
