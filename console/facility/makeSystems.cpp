// The facility, its systems and images, what stands in their drawers.

#include "facility/maker.h"

namespace console::facility::making
{

void Maker::managedNodes()
{
    eachPartition([&](size_t system, uint32_t image) {
        const std::string id = std::to_string(image + 1);
        printer.resource({text("HWModel", systemModel), text("HWSerialNum", systemSerials[system]),
                          text("LParID", id), text("StorageFacilityImageID", imageId(image)),
                          text("Hostname", "tarn" + std::to_string(system) + "-image" + id),
                          number("Status", 1)});
    });
}

void Maker::facilities()
{
    printer.resource({text("storageFacilityMTMS", facilityMtms), text("managedSystem0MTMS", systemMtms(0)),
                      text("managedSystem1MTMS", systemMtms(1)), number("PowerState", 0)});
}

void Maker::facilitySystems()
{
    for (size_t system = 0; system < systemSerials.size(); ++system) {
        printer.resource({text("managedSystemMTMS", systemMtms(system)),
                          text("storageFacilityMTMS", facilityMtms),
                          text("storageFacilityWWNN", "500FACE000001230"),
                          number("storageFacilityServerNumber", static_cast<int64_t>(system)),
                          text("ActivePeerDomain", peerDomain), number("powerRunState", 6)});
    }
}

void Maker::facilityPartitions()
{
    eachPartition([&](size_t system, uint32_t image) {
        const std::string id = std::to_string(image + 1);
        printer.resource({text("managedSystemMTMS", systemMtms(system)), text("lparId", id),
                          text("lparName", "SF00XY123Tarn" + std::to_string(system) + id),
                          text("hslLumenPoolId", id), text("locationCode", partitionLocation(system, image)),
                          text("mmReserve1DesiredMem", "2048"), text("desiredMem", "16384"),
                          text("mmReserve2DesiredMem", "1024"), text("desiredProcs", "4")});
    });
}

void Maker::cecDrawers()
{
    for (size_t system = 0; system < systemSerials.size(); ++system) {
        for (uint32_t drawer = 0; drawer < sizes.cec; ++drawer) {
            printer.resource(
                {text("managedSystemMTMS", systemMtms(system)),
                 text("locationCode", systemLocation(system) + "-P" + std::to_string(drawer + 1))});
        }
    }
}

void Maker::ioDrawers()
{
    for (size_t system = 0; system < systemSerials.size(); ++system) {
        for (uint32_t drawer = 0; drawer < sizes.io; ++drawer) {
            printer.resource({text("managedSystemMTMS", systemMtms(system)),
                              text("locationCode", drawerLocation(drawer)), interfaceIdentifiers(drawer)});
        }
    }
}

void Maker::consoles()
{
    printer.resource({text("quayLocationCode", "4821-K7Q.10ABCDE")});
    printer.resource({text("quayLocationCode", "4821-K7Q.10ABCDF")});
}

void Maker::storagePlexes()
{
    printer.resource(
        {text("ActivePeerDomain", peerDomain), text("storagePlexAccountName", "Northern Harbour Trust")});
}

void Maker::serverPartitions()
{
    eachPartition([&](size_t system, uint32_t image) {
        printer.resource({text("locationCode", partitionLocation(system, image)), imageDomain(image),
                          list("runningImageLevel", {"0", quote(microcode)})});
    });
}

void Maker::facilityImages()
{
    eachImage([&](uint32_t image) {
        printer.resource({imageMtms(image), imageDomain(image),
                          text("storageFacilityImageWWNN", "500FACE00000123" + std::to_string(image + 1))});
    });
}

/// A card's location code starts with its system's MTMS, by which the collector knows whose it is.
void Maker::controlCards()
{
    eachPartition([&](size_t system, uint32_t image) {
        for (uint32_t drawer = 0; drawer < sizes.cec; ++drawer) {
            const Part& card = random.of(cardParts);
            const std::string place = "-P" + std::to_string(drawer + 1) + "-C" + std::to_string(image + 3);
            printer.resource({imageMtms(image), number("server", static_cast<int64_t>(system)),
                              text("locationCode", systemMtms(system) + place),
                              text("partNumber", card.number), cardSerial(), text("ecLevel", card.level)});
        }
    });
}

void Maker::eachAdapter(auto visit) const
{
    eachImage([&](uint32_t image) {
        for (uint32_t drawer = 0; drawer < sizes.io; ++drawer) {
            for (uint32_t adapter = 0; adapter < sizes.adapters; ++adapter)
                visit(image, drawer, image * sizes.adapters + adapter);
        }
    });
}

namespace
{

std::string adapterLocation(uint32_t drawer, uint32_t slot)
{
    return drawerLocation(drawer) + "-P1-C" + std::to_string(slot);
}

} // namespace

void Maker::deviceAdapters()
{
    eachAdapter([&](uint32_t image, uint32_t drawer, uint32_t adapter) {
        const Part& card = random.of(cardParts);
        printer.resource({imageMtms(image), text("locationCode", adapterLocation(drawer, 2 * adapter + 1)),
                          interfaceIdentifiers(drawer + adapter), number("daPair", drawer / 2),
                          text("partNumber", card.number), cardSerial(), text("ecLevel", card.level),
                          text("firmwareLevel", microcode), text("CCIN", "2B4F")});
    });
}

void Maker::hostAdapters()
{
    eachAdapter([&](uint32_t image, uint32_t drawer, uint32_t adapter) {
        const Part& card = random.of(cardParts);
        printer.resource({imageMtms(image), text("locationCode", adapterLocation(drawer, 2 * adapter + 2)),
                          interfaceIdentifiers(drawer + adapter + 1), text("partNumber", card.number),
                          cardSerial(), text("ecLevel", card.level), text("firmwareLevel", microcode),
                          text("CCIN", "2B51")});
    });
}

void Maker::hostAdapterPorts()
{
    struct Kind {
        int64_t portType;
        int64_t topology;
    };
    static constexpr std::array<Kind, 4> kinds = {{{20, 1}, {21, 0}, {20, 2}, {10, 3}}};
    eachAdapter([&](uint32_t image, uint32_t, uint32_t) {
        for (const Kind& kind : kinds) {
            printer.resource({imageMtms(image), imageDomain(image), number("portType", kind.portType),
                              number("topologyULP", kind.topology)});
        }
    });
}

} // namespace console::facility::making
