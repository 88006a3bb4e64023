#include "facility/make.h"

#include "facility/maker.h"

namespace console::facility
{

namespace
{

using making::Maker;
using making::Printer;
using making::Random;

struct ClassMaker {
    std::string_view name;
    void (Maker::*make)();
};
constexpr ClassMaker classMakers[] = {
    {"Orvik.ManagedNode", &Maker::managedNodes},
    {"Orvik.TarnStorageFacility", &Maker::facilities},
    {"Orvik.TarnStorageFacilitySystem", &Maker::facilitySystems},
    {"Orvik.TarnStorageFacilityPartition", &Maker::facilityPartitions},
    {"Orvik.TarnCECDrawer", &Maker::cecDrawers},
    {"Orvik.TarnNVC", &Maker::controlCards},
    {"Orvik.TarnIODrawer", &Maker::ioDrawers},
    {"Orvik.TarnDA", &Maker::deviceAdapters},
    {"Orvik.TarnHA", &Maker::hostAdapters},
    {"Orvik.TarnRack", &Maker::racks},
    {"Orvik.TarnStorageEnclosure", &Maker::storageEnclosures},
    {"Orvik.TarnDDM", &Maker::drives},
    {"Orvik.TarnFCIC", &Maker::interfaceCards},
    {"Orvik.TarnBaffle", &Maker::baffles},
    {"Orvik.TarnPPS", &Maker::powerSupplies},
    {"Orvik.TarnBattery", &Maker::batteries},
    {"Orvik.TarnRPC", &Maker::powerControllers},
    {"Orvik.TarnFanSense", &Maker::fanSenseCards},
    {"Orvik.TarnFanTray", &Maker::fanTrays},
    {"Orvik.TarnQUAY", &Maker::consoles},
    {"Orvik.TarnStoragePlex", &Maker::storagePlexes},
    {"Orvik.TarnServerPartition", &Maker::serverPartitions},
    {"Orvik.TarnStorageFacilityImage", &Maker::facilityImages},
    {"Orvik.TarnVolumeGroup", &Maker::volumeGroups},
    {"Orvik.TarnScsiHostPort", &Maker::scsiHostPorts},
    {"Orvik.TarnTeskHost", &Maker::teskHosts},
    {"Orvik.TarnLogicalSubsystem", &Maker::logicalSubsystems},
    {"Orvik.TarnLogicalVolume", &Maker::logicalVolumes},
    {"Orvik.TarnHAPort", &Maker::hostAdapterPorts},
    {"Orvik.TarnArraySite", &Maker::arraySites},
    {"Orvik.TarnArray", &Maker::arrays},
    {"Orvik.TarnRank", &Maker::ranks},
    {"Orvik.TarnSegmentPool", &Maker::segmentPools},
};

constexpr std::string_view fileStart = R"({
  "console": { "user": "root", "vpd": ["*TM 4821-K7Q", "*SE 10ABCDE"] },
  "systems": { "9999-B2C*7ABCD12": "Operating", "9999-B2C*7ABCD34": "Operating" },
  "resources": {)";
constexpr std::string_view fileEnd = R"(
  },
  "faults": []
}
)";

} // namespace

bool make(const Sizes& sizes, std::FILE* file)
{
    Printer printer(file);
    Maker maker{.sizes = sizes, .printer = printer, .random = Random(sizes.seed)};
    printer.print(fileStart);
    for (const ClassMaker& classMaker : classMakers) {
        printer.startClass(classMaker.name);
        (maker.*classMaker.make)();
        printer.endClass();
    }
    printer.print(fileEnd);
    return printer.flush();
}

} // namespace console::facility
