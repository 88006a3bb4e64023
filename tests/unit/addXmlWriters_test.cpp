// The document's writers one by one, each handed a value of its own for every argument: its result, its bytes
// and its trace lines. A column that is lost or changes places shows in the bytes.

#include "elements.h"
#include "unit.h"

#include <gtest/gtest.h>

namespace
{

using unit::list;
using unit::normal;
using unit::resource;
using unit::reversed;

const std::string endResource = "</Resource>\n";
const std::string endList = "</ResourceList>\n";

struct Writer {
    const char* trace; ///< null: it traces nothing
    int32_t (*write)(kordRec*);
    std::string bytes;
};

/// The writers' results, bytes and traces, from a record with fields of its own.
void expectEach(std::span<const Writer> writers)
{
    for (const Writer& writer : writers) {
        kordRec record = unit::freshRecord();
        copyText(record.kordpStorageFacilityMTMS, "facility");
        copyText(record.kordpManagedSystemMTMS, "system");
        int32_t result = -1;
        const std::string bytes = unit::written(record, [&](kordRec* r) { result = writer.write(r); });
        EXPECT_EQ(bytes, writer.bytes);
        EXPECT_EQ(result, 0) << bytes;
        std::vector<std::string> lines;
        if (writer.trace != nullptr) lines.push_back(std::string(">>: ") + writer.trace);
        EXPECT_EQ(unit::traceOf(record), lines) << bytes;
    }
}

const std::string facility = normal("S3", "Storage Facility MTMS", "facility");
const std::string image = normal("S4", "Storage Facility Image MTMS", "image");
const std::string rackNumber = normal("R2", "Rack Number", "2");
const std::string ecLevel = normal("EC", "EC Level", "ec");
const std::string firmwareLevel = normal("LE", "Firmware Level", "firmware");
const std::string partNumber = normal("PN", "Part Number", "part");
const std::string serialNumber = normal("SN", "Serial Number", "serial");
const std::string card = reversed("PN", "PartNumber of assembly", "part") +
                         reversed("SN", "Serial Number", "serial") +
                         reversed("EC", "Engineering Change Level", "ec");
const std::string partition = normal("CI", "Partition identifier", "system-lpar");

std::string systemVPD(const std::string& displayName, const std::string& location)
{
    return normal("DS", "System VPD", displayName) + normal("YL", "Hardware Location Code", location);
}

/// A whole resource that stands at "location".
std::string part(const std::string& displayName, const std::string& properties)
{
    return resource(displayName, "location") + properties + systemVPD(displayName, "location") + endResource;
}

std::string adapter(const std::string& displayName)
{
    return part(displayName, image + card + reversed("LE", "Firmware Level", "firmware") +
                                 normal("IF", "InterfaceID", "interface") +
                                 reversed("CC", "Customer Card Indentification Number", "ccin"));
}

/// A whole part of the storage configuration.
std::string logical(const std::string& displayName, const std::string& id, const std::string& below,
                    const std::string& space)
{
    return resource(displayName, id) + facility + image + below + partition +
           normal("LS", "Logical Space Characteristics", space) + systemVPD(displayName, id) + endResource;
}

TEST(Writers, ofHardware)
{
    const Writer writers[] = {
        {nullptr, [](kordRec* r) { return writeNVC(r, "location", "image", "part", "serial", "ec"); },
         resource("Orvik Non Volatile Control Card", "location") + image + card + endResource},
        {nullptr,
         [](kordRec* r) {
             return writeDA(r, "interface", "pair", "location", "image", "part", "serial", "ec", "firmware",
                            "ccin");
         },
         adapter("OSK FC-AL Cobaltarray Adapter")},
        {nullptr,
         [](kordRec* r) {
             return writeHA(r, "interface", "location", "image", "part", "serial", "ec", "firmware", "ccin");
         },
         adapter("Orvik Sable HA - LW")},
        {nullptr,
         [](kordRec* r) {
             return writeDDM(r, "location", "image", "ec", "firmware", "part", "serial", "name", "maker", 1,
                             2, 3, 4, 5, "type", 6);
         },
         part("OSK Physical Disk Drive",
              facility + image + ecLevel + firmwareLevel + partNumber + serialNumber +
                  normal("DP", "Disk Space Characteristics",
                         "DI=name,DM=maker,DC=1MB,DR=2,DS=3,AS=4,AP=5,IT=type,ST=6"))},
        {nullptr,
         [](kordRec* r) { return writeFCIC(r, "location", "image", "ec", "firmware", "part", "serial"); },
         part("Fiber Channel Interface Card",
              facility + image + ecLevel + firmwareLevel + partNumber + serialNumber)},
        {nullptr, [](kordRec* r) { return writeBaffle(r, "location", "image", "part"); },
         part("Storage Enclosure Slot Baffle", facility + image + partNumber)},
        {nullptr,
         [](kordRec* r) { return writePPS(r, "location", "ec", "firmware", "part", "serial", "R2"); },
         part("Primary Power Supply",
              facility + ecLevel + firmwareLevel + partNumber + serialNumber + rackNumber)},
        {nullptr,
         [](kordRec* r) { return writeBattery(r, "location", "ec", "part", "serial", "life", "R2"); },
         part("Rack Battery Assembly", facility + ecLevel + partNumber + serialNumber + rackNumber +
                                           normal("BT", "Battery Remaining Life", "life"))},
        {nullptr,
         [](kordRec* r) {
             return writeRPC(r, "location", "ec", "firmware", "part", "serial", "feature", "R2");
         },
         part("Rack Power Control Card", facility + ecLevel + partNumber + serialNumber + rackNumber +
                                             firmwareLevel + normal("FC", "Feature Code", "feature"))},
        {nullptr, [](kordRec* r) { return writeFanSense(r, "location", "ec", "part", "serial", "R2"); },
         part("Fan Sense Card", facility + ecLevel + partNumber + serialNumber + rackNumber)},
        {nullptr, [](kordRec* r) { return writeFanTray(r, "location", "part", "R2"); },
         part("Fan Tray", facility + partNumber + rackNumber)},
        {nullptr, [](kordRec* r) { return writeFanTray(r, "location", "part", nullptr); },
         part("Fan Tray", facility + partNumber + normal("R2", "Rack Number", ""))},
    };
    expectEach(writers);
}

TEST(Writers, ofEnclosures)
{
    const Writer writers[] = {
        {" openSystem resource", [](kordRec* r) { return openSystem(r); },
         resource("system", "system") + facility},
        {" openCecEncl resource", [](kordRec* r) { return openCecEncl(r, "location"); },
         resource("CEC", "location") + facility},
        {" openIOEncl resource", [](kordRec* r) { return openIOEncl(r, "interface", "location"); },
         resource("Larkspur", "location") + facility +
             normal("IF", "Storage Facility MTMS - InterfaceID", "interface")},
        {" openStorEncl  resource",
         [](kordRec* r) {
             return openStorEncl(r, "location", "image", "rack", "R2", "interface", "feature", "typemodel",
                                 "plant");
         },
         resource("Storage Enclosure", "location") + facility + image +
             normal("R1", "Rack Location", "rack") + rackNumber + normal("IF", "IntefaceID", "interface") +
             normal("FC", "Feature Code", "feature") + normal("TM", "Machine Type-Model", "typemodel") +
             normal("SG", "Plant of Manufature code and Serial Number", "plant") +
             systemVPD("Storage Enclosure", "location")},
        {" openRackEncl  resource",
         [](kordRec* r) { return openRackEncl(r, "location", "R2", 7, "typemodel", "plant"); },
         resource("TARN Rack", "location") + facility + normal("RK", "Rack Unique ID", "7") + rackNumber +
             normal("TM", "Machine Type-Model", "typemodel") +
             normal("SG", "Plant of Manufature code and Serial Number", "plant") +
             systemVPD("TARN Rack", "location")},
        {" openQUAYEncl resource", [](kordRec* r) { return openQUAYEncl(r, "location"); },
         resource("Quay", "location") + facility + systemVPD("Quay", "location")},
        {" openCecEnclosurePartitions  resource",
         [](kordRec* r) { return openCecEnclosurePartitions(r, "location", "lpar"); },
         resource("location-lpar", "location-lpar")},
        {" writeEnclosurePartitionsIOD resourcelist resource",
         [](kordRec* r) { return openEnclosurePartitionsIOD(r, "drawer", "lpar"); },
         list("Enclosures Partitions") + resource("drawer-lpar", "drawer-lpar")},
        {" writeEnclosurePartitionsStor resourcelist resource",
         [](kordRec* r) { return openEnclosurePartitionsStor(r, "location", "lpar"); },
         list("Enclosures Partitions") + resource("Enclosure's MTMS - Partition Id", "location-lpar")},
    };
    expectEach(writers);
}

TEST(Writers, ofPartitions)
{
    const Writer writers[] = {
        {" openPartitionResource resource",
         [](kordRec* r) {
             openPartitionResource(r, "id", "name");
             return 0;
         },
         resource("name", "id") + facility},
        {" writeSFI", [](kordRec* r) { return writeSFI(r, "image"); }, image},
        {" writeVRMF", [](kordRec* r) { return writeVRMF(r, "vrmf"); }, normal("LE", "LIC VRMF", "vrmf")},
        {" writeOnyx", [](kordRec* r) { return writeOnyx(r, "onyx"); }, normal("OS", "OS", "onyx")},
        {" writeWWNN", [](kordRec* r) { return writeSFImageWWNN(r, "wwnn"); }, normal("NN", "WWNN", "wwnn")},
        {" writeHSLPool", [](kordRec* r) { return writeHSLPool(r, "pool"); },
         normal("H1", "Partition HSL Pool", "pool")},
        {" writeLogcialConfig", [](kordRec* r) { return writeLogcialConfig(r, "counts"); },
         normal("U1", "Logcial Configuration String", "counts")},
        {" writeHostInventory", [](kordRec* r) { return writeHostInventory(r, "host"); },
         normal("U2", "Host Inventory", "host")},
        {" openStorConfigResource resource", [](kordRec* r) { return openStorConfigResource(r, "image"); },
         resource("Storage Logical Configuration", "image_L1")},
    };
    expectEach(writers);
}

TEST(Writers, ofTheStorageConfiguration)
{
    const Writer writers[] = {
        {nullptr, [](kordRec* r) { return writeArraySite(r, 1, "image", 2, 3, 4, 5, 6, "lpar"); },
         logical("Array Site", "image/S1", normal("A1", "Array", "image/A2"), "AP=3,DP=4,DC=5MB,DR=6")},
        {nullptr,
         [](kordRec* r) {
             return writeArray(r, "sites", "image", "serial", "raid", "configuration", 1, 2, 3, 4, 5, "lpar");
         },
         logical("Array", "image/Asites", normal("A1", "Rank", "image/R4"),
                 "AN=serial,AC=configuration,RP=5,DP=1,DC=2MB,DR=3,RT=raid")},
        {nullptr, [](kordRec* r) { return writeRank(r, 1, "image", 2, "serial", 3, 4, 5, "lpar"); },
         logical("Rank", "image/R1", normal("A1", "Segment Pool", "image/P2"), "RN=serial,ET=3,ES=4,RG=5")},
        {nullptr, [](kordRec* r) { return writeSegmentPool(r, 1, "image", 2, 3, 4, 5, 6, 7, "lpar"); },
         logical("Segment Pool", "image/P1", "", "ET=2,ES=3,EL=4,VE=5,VL=6,RG=7")},
    };
    expectEach(writers);
}

TEST(Writers, ofLists)
{
    const Writer writers[] = {
        {" openEnclosures resourcelist", [](kordRec* r) { return openEnclosures(r); }, list("Enclosures")},
        {" closeEnclosures resourcelist", [](kordRec* r) { return closeEnclosures(r); }, endList},
        {" openPartitionList  resourcelist", [](kordRec* r) { return openPartitionList(r); },
         list("Partitions")},
        {" closePartitionList  resourcelist", [](kordRec* r) { return closePartitionList(r); }, endList},
        {" openCecEnclosurePartitions resourcelist",
         [](kordRec* r) { return openCecEnclosurePartitionsList(r); }, list("Enclosures Partitions")},
        {" closeCecEnclosurePartitions resourcelist",
         [](kordRec* r) { return closeCecEnclosurePartitionsList(r); }, endList},
        {" openPartitionResourcesList  resourcelist",
         [](kordRec* r) { return openPartitionResourcesList(r); }, list("Partition Resources")},
        {" closePartitionResourcesList resourcelist",
         [](kordRec* r) { return closePartitionResourcesList(r); }, endList},
        {" openPartitionResources  resourcelist", [](kordRec* r) { return openPartitionResources(r); },
         list("Partition Resources")},
        {" closePartitionResources resourcelist", [](kordRec* r) { return closePartitionResources(r); },
         endList},
        {" openGlobalResources  resourcelist", [](kordRec* r) { return openGlobalResources(r); },
         list("Global Resources")},
        {" closeGlobalResources resourcelist", [](kordRec* r) { return closeGlobalResources(r); }, endList},
        {" openStorConfigResourceList  resourcelist",
         [](kordRec* r) {
             openStorConfigResourceList(r);
             return 0;
         },
         list("Storage Configurations")},
        {" closeStorConfigResourceList  resourcelist",
         [](kordRec* r) { return closeStorConfigResourceList(r); }, endList},
        {" openArraySitesResourceList resourcelist", [](kordRec* r) { return openArraySitesResourceList(r); },
         list("Array Sites")},
        {" closeArraySitesResourceList resourcelist",
         [](kordRec* r) { return closeArraySitesResourceList(r); }, endList},
        {" openArraysResourceList  resourcelist", [](kordRec* r) { return openArraysResourceList(r); },
         list("Arrays")},
        {" closeArraysResourceList resourcelist", [](kordRec* r) { return closeArraysResourceList(r); },
         endList},
        {" openRanksResourceList resourcelist", [](kordRec* r) { return openRanksResourceList(r); },
         list("Ranks")},
        {" closeRanksResourceList resourcelist", [](kordRec* r) { return closeRanksResourceList(r); },
         endList},
        {" openSegmentPoolResourceList resourcelist",
         [](kordRec* r) { return openSegmentPoolResourceList(r); }, list("Segment Pool")},
        {" closeSegmentPoolResourceList resourcelist",
         [](kordRec* r) { return closeSegmentPoolResourceList(r); }, endList},
    };
    expectEach(writers);
}

TEST(Writers, thatCloseResources)
{
    const Writer writers[] = {
        {" closeSystem resource", [](kordRec* r) { return closeSystem(r); }, endResource},
        {" closeCecEncl resource", [](kordRec* r) { return closeCecEncl(r); }, endResource},
        {" closeCecEnclosurePartitions resource ", [](kordRec* r) { return closeCecEnclosurePartitions(r); },
         endResource},
        {" closeIOEncl resource", [](kordRec* r) { return closeIOEncl(r); }, endResource},
        {" closeEnclosurePartitionsIOD resource resourcelist",
         [](kordRec* r) { return closeEnclosurePartitionsIOD(r); }, endResource + endList},
        {" closeStorEncl resource", [](kordRec* r) { return closeStorEncl(r); }, endResource},
        {" closeEnclosurePartitionsStor resource resourcelist",
         [](kordRec* r) { return closeEnclosurePartitionsStor(r); }, endResource + endList},
        {" closeRackEncl  resource", [](kordRec* r) { return closeRackEncl(r); }, endResource},
        {" closeQUAYEncl resource", [](kordRec* r) { return closeQUAYEncl(r); }, endResource},
        {" closePartitionResource resource", [](kordRec* r) { return closePartitionResource(r); },
         endResource},
        {" closeStorConfigResource resource", [](kordRec* r) { return closeStorConfigResource(r); },
         endResource},
    };
    expectEach(writers);
}

TEST(Writers, thatNoCollectorCalls)
{
    const Writer writers[] = {
        {" openEnclosurePartitions resourcelist resource",
         [](kordRec* r) { return openEnclosurePartitions(r, "L", "7"); },
         "<ResourceList displayName=\"Enclosures Partitions\">\n" + resource("L-7", "L-7")},
        {" closeEnclosurePartitions resource resourcelist",
         [](kordRec* r) { return closeEnclosurePartitions(r); }, "</Resource>\n</ResourceList>\n"},
        {" openNVC", [](kordRec* r) { return openNVC(r, "L"); },
         resource("Orvik Non Volatile Control Card", "L")},
        {" openDDM", [](kordRec* r) { return openDDM(r, "L"); }, resource("OSK Physical Disk Drive", "L")},
        {" openFCIC", [](kordRec* r) { return openFCIC(r, "L"); },
         resource("Fiber Channel Interface Card", "L")},
        {" openBaffle", [](kordRec* r) { return openBaffle(r, "L"); },
         resource("Storage Enclosure Slot Baffle", "L")},
        {" openPPS", [](kordRec* r) { return openPPS(r, "L"); }, resource("Primary Power Supply", "L")},
        {" openBattery ", [](kordRec* r) { return openBattery(r, "L"); },
         resource("Rack Battery Assembly", "L")},
        {" openRPC", [](kordRec* r) { return openRPC(r, "L"); }, resource("Rack Power Control Card", "L")},
        {" openFanSense", [](kordRec* r) { return openFanSense(r, "L"); }, resource("Fan Sense Card", "L")},
        {" openFanTray", [](kordRec* r) { return openFanTray(r, "L"); }, resource("Fan Tray", "L")},
        {" closeNVC", [](kordRec* r) { return closeNVC(r); }, endResource},
        {" closeDA", [](kordRec* r) { return closeDA(r); }, endResource},
        {" closeHA", [](kordRec* r) { return closeHA(r); }, endResource},
        {" closeDDM", [](kordRec* r) { return closeDDM(r); }, endResource},
        {" closeFCIC", [](kordRec* r) { return closeFCIC(r); }, endResource},
        {" closeBaffle", [](kordRec* r) { return closeBaffle(r); }, endResource},
        {" closePPS", [](kordRec* r) { return closePPS(r); }, endResource},
        {" closeBattery", [](kordRec* r) { return closeBattery(r); }, endResource},
        {" closeRPC", [](kordRec* r) { return closeRPC(r); }, endResource},
        {" closeFanSense", [](kordRec* r) { return closeFanSense(r); }, endResource},
        {" closeFanTray", [](kordRec* r) { return closeFanTray(r); }, endResource},
        {" writeRackEnclMTMS", [](kordRec* r) { return writeRackEnclMTMS(r, "R12"); },
         normal("R2", "Rack Number", "R12")},
        {" writeStorPlex", [](kordRec* r) { return writeStorPlex(r, "plex"); },
         normal("AC", "Account Name", "plex")},
        {" openArraySite resource", [](kordRec* r) { return openArraySite(r, 4, "I"); },
         resource("Array Site", "I/S4")},
        {" openRank", [](kordRec* r) { return openRank(r, -1, "I"); }, resource("Rank", "I/R-1")},
        {" openSegmentPool", [](kordRec* r) { return openSegmentPool(r, 2, "I"); },
         resource("Segment Pool", "I/P2")},
        {" closeArraySite resource", [](kordRec* r) { return closeArraySite(r); }, endResource},
        {" closeArray resource", [](kordRec* r) { return closeArray(r); }, endResource},
        {" closeRank", [](kordRec* r) { return closeRank(r); }, endResource},
        {" closeSegmentPool", [](kordRec* r) { return closeSegmentPool(r); }, endResource},
    };
    expectEach(writers);
}

} // namespace
