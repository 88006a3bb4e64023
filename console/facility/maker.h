// A made facility is whole: whatever the collector selects by the values of one resource finds the resources
// that belong to it. Places and numbers follow from the sizes; serial numbers and models from the seed.

#pragma once

#include "facility/make.h"
#include "facility/makePrinter.h"

#include <array>
#include <random>

namespace console::facility::making
{

/// A generator whose numbers are the same everywhere; the library's distributions are not.
class Random
{
public:
    explicit Random(uint64_t seed) : engine(seed) {}
    size_t below(size_t limit) { return static_cast<size_t>(engine() % limit); }

    template <typename Item, size_t count>
    const Item& of(const std::array<Item, count>& items)
    {
        return items[below(count)];
    }
    std::string digits(size_t length, std::string_view alphabet = "0123456789ABCDEFGHJKLMNPQRSTUVWXYZ")
    {
        std::string text;
        while (text.size() < length)
            text += alphabet[below(alphabet.size())];
        return text;
    }

private:
    std::mt19937_64 engine;
};

inline constexpr std::array<std::string_view, 2> systemSerials = {"7ABCD12", "7ABCD34"};
inline constexpr std::string_view systemModel = "9999-B2C";
inline constexpr std::string_view facilityMtms = "9999-A01*00XY1230";
inline constexpr std::string_view peerDomain = "9999.A01.00XY1230";
inline constexpr std::string_view microcode = "5.1.0.309";
inline constexpr uint32_t drivesPerSite = 8;

std::string padded(uint64_t value, size_t width);
/// A count of things in base 36, for serial numbers that must differ.
std::string serial36(uint64_t value, size_t width);
std::string systemMtms(size_t system);
std::string systemLocation(size_t system);
std::string partitionLocation(size_t system, uint32_t image);
std::string imageId(uint32_t image);
Field imageMtms(uint32_t image);
Field imageDomain(uint32_t image);
std::string drawerLocation(uint32_t drawer);
std::string rackMtms(uint32_t rack);
std::string rackNumber(uint32_t rack);
/// Lists of one to four identifiers.
Field interfaceIdentifiers(uint32_t index);

/// Texts that several kinds of parts carry.
struct Part {
    std::string_view number; ///< 7 characters
    std::string_view level;
};
inline constexpr std::array<Part, 4> cardParts = {
    {{"CA40011", "H82417"}, {"CA40172", "H82419"}, {"CA41021", "H82611"}, {"CA41554", "H83005"}}};
inline constexpr std::array<Part, 3> powerParts = {
    {{"PW12071", "P10341"}, {"PW12153", "P10342"}, {"PW13011", "P10507"}}};

struct DriveModel {
    std::string_view part;
    std::string_view maker;
    std::string_view firmware;
    int64_t capacity; ///< in MB
    int64_t speed;
};
inline constexpr std::array<DriveModel, 3> driveModels = {{
    {"DK22011", "Kestrel Storage", "T0A4", 73400, 15000},
    {"DK22142", "Kestrel Storage", "T0B1", 146800, 10000},
    {"DK30501", "Fenwick Disk", "2C07", 300000, 10000},
}};

/// One facility in the making.
struct Maker {
    const Sizes& sizes;
    Printer& printer;
    Random random;

    Field cardSerial() { return text("serialNumber", "SK" + random.digits(10)); }

    // Each writes the resources of one class.
    void managedNodes();
    void facilities();
    void facilitySystems();
    void facilityPartitions();
    void cecDrawers();
    void ioDrawers();
    void racks();
    void powerSupplies();
    void batteries();
    void powerControllers();
    void fanSenseCards();
    void fanTrays();
    void consoles();
    void storagePlexes();
    void serverPartitions();
    void facilityImages();
    void controlCards();
    void deviceAdapters();
    void hostAdapters();
    void storageEnclosures();
    void drives();
    void interfaceCards();
    void baffles();
    void volumeGroups();
    void scsiHostPorts();
    void teskHosts();
    void logicalSubsystems();
    void logicalVolumes();
    void hostAdapterPorts();
    void arraySites();
    void arrays();
    void ranks();
    void segmentPools();

    void eachImage(auto visit) const
    {
        for (uint32_t image = 0; image < sizes.images; ++image)
            visit(image);
    }
    void eachPartition(auto visit) const
    {
        for (size_t system = 0; system < systemSerials.size(); ++system)
            eachImage([&](uint32_t image) { visit(system, image); });
    }
    void eachAdapter(auto visit) const;
    void eachRackPart(uint32_t count, auto visit) const;
    void eachEnclosure(auto visit) const;
    void eachArray(auto visit) const;
    [[nodiscard]] bool sees(uint32_t image, uint32_t enclosure) const;
    [[nodiscard]] uint32_t siteCount(uint32_t image) const;
    [[nodiscard]] uint32_t arrayCount(uint32_t image) const;
};

} // namespace console::facility::making
