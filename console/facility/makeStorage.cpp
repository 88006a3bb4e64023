// What the images make of the drives: sites, arrays, ranks, pools, volumes, and the hosts that use them.

#include "facility/maker.h"

namespace console::facility::making
{

void Maker::volumeGroups()
{
    eachImage([&](uint32_t image) {
        for (uint32_t host = 0; host < sizes.hosts; ++host)
            printer.resource({imageMtms(image), imageDomain(image)});
    });
}

/// A host's ports carry its description: one port, two, three, one again.
void Maker::scsiHostPorts()
{
    static constexpr std::array<std::string_view, 6> names = {"ledger", "archive", "payroll",
                                                              "mail",   "render",  "web"};
    eachImage([&](uint32_t image) {
        for (uint32_t host = 0; host < sizes.hosts; ++host) {
            const std::string description =
                std::string(names[host % names.size()]) + "-" + padded(host + 1, 2);
            for (uint32_t port = 0; port <= host % 3; ++port)
                printer.resource(
                    {imageMtms(image), imageDomain(image), text("userHostDescription", description)});
        }
    });
}

void Maker::teskHosts()
{
    eachImage([&](uint32_t image) {
        for (uint32_t host = 0; host < sizes.hosts; host += 2)
            printer.resource({imageMtms(image), imageDomain(image)});
    });
}

void Maker::logicalSubsystems()
{
    constexpr uint32_t volumesEach = 16;
    eachImage([&](uint32_t image) {
        for (uint32_t volume = 0; volume < sizes.volumes; volume += volumesEach) {
            for (const char* device : {"CKD", "FB"})
                printer.resource({imageMtms(image), text("deviceType", device), imageDomain(image)});
        }
    });
}

void Maker::logicalVolumes()
{
    struct Kind {
        int64_t volumeType;
        int64_t dataType;
    };
    static constexpr std::array<Kind, 8> kinds = {
        {{10, 10}, {10, 11}, {10, 12}, {11, 10}, {12, 10}, {20, 0}, {20, 1}, {20, 2}}};
    eachImage([&](uint32_t image) {
        for (uint32_t volume = 0; volume < sizes.volumes; ++volume) {
            const Kind& kind = volume < kinds.size() ? kinds[volume] : random.of(kinds);
            printer.resource({imageMtms(image), imageDomain(image), number("volumeType", kind.volumeType),
                              number("dataType", kind.dataType)});
        }
    });
}

uint32_t Maker::siteCount(uint32_t image) const
{
    uint32_t seen = 0; // enclosures of a rack
    for (uint32_t enclosure = 0; enclosure < sizes.enclosures; ++enclosure)
        seen += sees(image, enclosure) ? 1 : 0;
    return (sizes.racks * seen * sizes.drives + drivesPerSite - 1) / drivesPerSite;
}

namespace
{

/// Arrays of one site and of two take turns: of every three sites, the second and third are one array's.
uint32_t arrayOfSite(uint32_t site)
{
    return site / 3 * 2 + (site % 3 == 0 ? 0 : 1);
}

} // namespace

uint32_t Maker::arrayCount(uint32_t image) const
{
    const uint32_t sites = siteCount(image);
    return sites == 0 ? 0 : arrayOfSite(sites - 1) + 1;
}

void Maker::eachArray(auto visit) const
{
    eachImage([&](uint32_t image) {
        const uint32_t count = arrayCount(image);
        for (uint32_t array = 0; array < count; ++array)
            visit(image, array, count);
    });
}

namespace
{

const DriveModel& arrayModel(uint32_t array)
{
    return driveModels[array % driveModels.size()];
}

} // namespace

void Maker::arraySites()
{
    eachImage([&](uint32_t image) {
        const uint32_t sites = siteCount(image);
        for (uint32_t site = 0; site < sites; ++site) {
            const uint32_t array = arrayOfSite(site);
            const DriveModel& model = arrayModel(array);
            printer.resource({imageMtms(image), imageDomain(image), number("arraySite", site + 1),
                              number("array", array), number("arrayPosition", site % 3 == 2 ? 2 : 1),
                              number("daPair", array % 4), number("diskCapacity", model.capacity),
                              number("diskRPM", model.speed)});
        }
    });
}

void Maker::arrays()
{
    eachArray([&](uint32_t image, uint32_t array, uint32_t count) {
        const uint32_t site = array / 2 * 3 + array % 2;
        const bool two = array % 2 == 1 && (array + 1 < count || site + 1 < siteCount(image));
        const DriveModel& model = arrayModel(array);
        std::vector<std::string> sites = {std::to_string(site + 1)};
        std::vector<std::string> configurations = {quote("6+P+S")};
        if (two) {
            sites.push_back(std::to_string(site + 2));
            configurations.push_back(quote("7+P"));
        }
        printer.resource({imageMtms(image), imageDomain(image), list("arraySites", sites),
                          number("rank", array),
                          text("serialNumber", "A" + random.digits(15, "0123456789ABCDEF")),
                          list("arraySiteConfiguration", configurations), number("rankPosition", 1),
                          number("daPair", array % 4), number("diskCapacity", model.capacity),
                          number("diskRPM", model.speed), text("raidType", two ? "RAID-10" : "RAID-5")});
    });
}

constexpr uint32_t ranksPerPool = 2;
constexpr std::array<uint32_t, ranksPerPool> rankSegments = {388, 517};

void Maker::ranks()
{
    eachArray([&](uint32_t image, uint32_t rank, uint32_t) {
        const uint32_t pool = rank / ranksPerPool;
        printer.resource(
            {imageMtms(image), imageDomain(image), number("rank", rank), number("segmentPool", pool),
             text("serialNumber", "B" + random.digits(15, "0123456789ABCDEF")),
             number("segmentType", pool % 2), number("numberSegments", rankSegments[rank % ranksPerPool]),
             number("rankGroup", pool % 2)});
    });
}

void Maker::segmentPools()
{
    eachArray([&](uint32_t image, uint32_t rank, uint32_t count) {
        if (rank % ranksPerPool != 0) return;
        const uint32_t pool = rank / ranksPerPool;
        const uint32_t segments = rankSegments[0] + (rank + 1 < count ? rankSegments[1] : 0);
        printer.resource({imageMtms(image), imageDomain(image), number("segmentPool", pool),
                          number("segmentType", pool % 2), number("numberSegments", segments),
                          number("segmentLimit", 100), number("numberVirtualSegments", 64),
                          number("virtualSegmentLimit", 128), number("rankGroup", pool % 2)});
    });
}

} // namespace console::facility::making
