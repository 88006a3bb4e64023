// A made facility is whole: whatever the collector selects by the values of one resource finds the resources
// that belong to it. Places and numbers follow from the sizes; serial numbers and models from the seed.

#include "facility/make.h"

#include <array>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace console::facility
{

namespace
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

/// An attribute with its value as JSON. No text of a made facility needs an escape.
struct Field {
    std::string_view name;
    std::string value;
};

std::string quote(std::string_view text)
{
    std::string quoted = "\"";
    return quoted.append(text).append(1, '"');
}

Field text(std::string_view name, std::string_view value)
{
    return {name, quote(value)};
}

Field number(std::string_view name, int64_t value)
{
    return {name, std::to_string(value)};
}

Field list(std::string_view name, const std::vector<std::string>& items)
{
    std::string json = "[";
    for (const char* separator = ""; const std::string& item : items) {
        json.append(separator).append(item);
        separator = ", ";
    }
    return {name, json + ']'};
}

/// Prints the file, a resource a line.
class Printer
{
public:
    explicit Printer(std::FILE* toFile) : file(toFile) {}

    void print(std::string_view text)
    {
        constexpr size_t enough = 1 << 20;
        pending += text;
        if (pending.size() >= enough) flush();
    }
    void startClass(std::string_view name)
    {
        print(firstClass ? "\n" : ",\n");
        print("    \"" + std::string(name) + "\": [");
        firstClass = false;
        firstResource = true;
    }
    void endClass() { print(firstResource ? "]" : "\n    ]"); }
    void resource(std::initializer_list<Field> fields)
    {
        print(firstResource ? "\n      { " : ",\n      { ");
        firstResource = false;
        for (const char* separator = ""; const Field& field : fields) {
            pending.append(separator).append(1, '"').append(field.name).append("\": ").append(field.value);
            separator = ", ";
        }
        print(" }");
    }
    bool flush()
    {
        whole = std::fwrite(pending.data(), 1, pending.size(), file) == pending.size() && whole;
        pending.clear();
        return std::fflush(file) == 0 && whole;
    }

private:
    std::FILE* file;
    std::string pending;
    bool firstClass = true;
    bool firstResource = true;
    bool whole = true;
};

std::string padded(uint64_t value, size_t width)
{
    const std::string digits = std::to_string(value);
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

/// A count of things in base 36, for serial numbers that must differ.
std::string serial36(uint64_t value, size_t width)
{
    constexpr std::string_view alphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    std::string text(width, '0');
    for (size_t i = width; i-- > 0; value /= alphabet.size())
        text[i] = alphabet[static_cast<size_t>(value % alphabet.size())];
    return text;
}

constexpr std::array<std::string_view, 2> systemSerials = {"7ABCD12", "7ABCD34"};
constexpr std::string_view systemModel = "9999-B2C";
constexpr std::string_view facilityMtms = "9999-A01*00XY1230";
constexpr std::string_view peerDomain = "9999.A01.00XY1230";
constexpr std::string_view microcode = "5.1.0.309";

std::string systemMtms(size_t system)
{
    return std::string(systemModel) + '*' + std::string(systemSerials[system]);
}

std::string systemLocation(size_t system)
{
    return "U9999.B2C." + std::string(systemSerials[system]);
}

std::string partitionLocation(size_t system, uint32_t image)
{
    return systemLocation(system) + "-V" + std::to_string(image + 1);
}

std::string imageId(uint32_t image)
{
    return "9999.A01.00XY12" + std::to_string(image + 1);
}

Field imageMtms(uint32_t image)
{
    return text("storageFacilityImageMTMS", "9999*A01*00XY12" + std::to_string(image + 1));
}

Field imageDomain(uint32_t image)
{
    return text("ActivePeerDomain", imageId(image));
}

std::string drawerLocation(uint32_t drawer)
{
    return "U9999.D10.AD" + padded(drawer + 1, 5);
}

std::string rackMtms(uint32_t rack)
{
    return "1234-5R0*RK" + padded(rack + 1, 6);
}

std::string rackNumber(uint32_t rack)
{
    return std::string(1, 'R').append(std::to_string(rack + 1));
}

/// Texts that several kinds of parts carry.
struct Part {
    std::string_view number; ///< 7 characters
    std::string_view level;
};
constexpr std::array<Part, 4> cardParts = {
    {{"CA40011", "H82417"}, {"CA40172", "H82419"}, {"CA41021", "H82611"}, {"CA41554", "H83005"}}};
constexpr std::array<Part, 3> powerParts = {
    {{"PW12071", "P10341"}, {"PW12153", "P10342"}, {"PW13011", "P10507"}}};

struct DriveModel {
    std::string_view part;
    std::string_view maker;
    std::string_view firmware;
    int64_t capacity; ///< in MB
    int64_t speed;
};
constexpr std::array<DriveModel, 3> driveModels = {{
    {"DK22011", "Kestrel Storage", "T0A4", 73400, 15000},
    {"DK22142", "Kestrel Storage", "T0B1", 146800, 10000},
    {"DK30501", "Fenwick Disk", "2C07", 300000, 10000},
}};

/// One facility in the making.
struct Maker {
    const Sizes& sizes;
    Printer& printer;
    Random random;

    using Fields = std::initializer_list<Field>;
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

/// Lists of one to four identifiers.
Field interfaceIdentifiers(uint32_t index)
{
    std::vector<std::string> identifiers;
    for (uint32_t i = 0; i <= index % 4; ++i)
        identifiers.push_back(std::to_string(index % 64 + 3 + i * 11));
    return list("interfaceIdentifier", identifiers);
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

void Maker::racks()
{
    for (uint32_t rack = 0; rack < sizes.racks; ++rack) {
        printer.resource({text("storageFacilityMTMS", facilityMtms),
                          text("locationCode", "U1234.5R0.RK" + padded(rack + 1, 6)),
                          text("rackNumber", rackNumber(rack)), text("rackEnclosureMTMS", rackMtms(rack)),
                          number("rackIdentifier", int64_t{0xC0000001} + rack)});
    }
}

void Maker::eachRackPart(uint32_t count, auto visit) const
{
    for (uint32_t rack = 0; rack < sizes.racks; ++rack) {
        for (uint32_t part = 1; part <= count; ++part)
            visit(rack, "U1234.5R0.RK" + padded(rack + 1, 6), std::to_string(part));
    }
}

void Maker::powerSupplies()
{
    eachRackPart(2, [&](uint32_t rack, const std::string& place, const std::string& part) {
        const Part& power = random.of(powerParts);
        printer.resource({text("storageFacilityMTMS", facilityMtms),
                          text("rackEnclosureMTMS", rackMtms(rack)),
                          text("locationCode", place + "-E" + part), text("partNumber", power.number),
                          cardSerial(), text("ecLevel", power.level), text("flashFirmwareLevel", "0307")});
    });
}

void Maker::batteries()
{
    eachRackPart(3, [&](uint32_t rack, const std::string& place, const std::string& part) {
        const Part& power = random.of(powerParts);
        printer.resource({text("storageFacilityMTMS", facilityMtms),
                          text("rackEnclosureMTMS", rackMtms(rack)),
                          text("locationCode", place + "-F" + part), text("ecLevel", power.level),
                          text("partNumber", power.number), cardSerial(),
                          text("remainingBatteryLife", std::to_string(60 + random.below(40)))});
    });
}

void Maker::powerControllers()
{
    eachRackPart(2, [&](uint32_t rack, const std::string& place, const std::string& part) {
        const Part& card = random.of(cardParts);
        printer.resource({text("storageFacilityMTMS", facilityMtms),
                          text("rackEnclosureMTMS", rackMtms(rack)),
                          text("locationCode", place + "-G" + part), text("ecLevel", card.level),
                          text("flashFirmwareLevel", "0211"), text("partNumber", card.number), cardSerial(),
                          text("kyrosFeatureCode", "8600")});
    });
}

void Maker::fanSenseCards()
{
    eachRackPart(2, [&](uint32_t rack, const std::string& place, const std::string& part) {
        const Part& card = random.of(cardParts);
        printer.resource({text("storageFacilityMTMS", facilityMtms),
                          text("rackEnclosureMTMS", rackMtms(rack)),
                          text("locationCode", place + "-A" + part + "-C1"), text("ecLevel", card.level),
                          text("partNumber", card.number), cardSerial()});
    });
}

void Maker::fanTrays()
{
    eachRackPart(3, [&](uint32_t rack, const std::string& place, const std::string& part) {
        printer.resource({text("storageFacilityMTMS", facilityMtms),
                          text("rackEnclosureMTMS", rackMtms(rack)),
                          text("locationCode", place + "-A" + part), text("partNumber", "FT13401")});
    });
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

std::string adapterLocation(uint32_t drawer, uint32_t slot)
{
    return drawerLocation(drawer) + "-P1-C" + std::to_string(slot);
}

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

/// The enclosures of a rack are dealt out to the images; where there are fewer, images share one.
bool Maker::sees(uint32_t image, uint32_t enclosure) const
{
    return enclosure % sizes.images == image || image % sizes.enclosures == enclosure;
}

/// An enclosure as one image sees it.
struct Enclosure {
    uint32_t rack;
    uint32_t index; ///< within the facility
    uint32_t image;
    std::string serial;
    std::string number;

    [[nodiscard]] Field rackField() const { return text("rackNumber", rackNumber(rack)); }
    [[nodiscard]] Field mtmsField() const { return text("enclosureMTMS", "1234-5X6*" + serial); }
    [[nodiscard]] Field numberField() const { return text("enclosureNumber", number); }
    [[nodiscard]] Field location(const std::string& place) const
    {
        return text("locationCode", "U1234.5X6." + serial + place);
    }
};

void Maker::eachEnclosure(auto visit) const
{
    for (uint32_t rack = 0; rack < sizes.racks; ++rack) {
        for (uint32_t enclosure = 0; enclosure < sizes.enclosures; ++enclosure) {
            const uint32_t index = rack * sizes.enclosures + enclosure;
            for (uint32_t image = 0; image < sizes.images; ++image) {
                if (!sees(image, enclosure)) continue;
                visit(Enclosure{.rack = rack,
                                .index = index,
                                .image = image,
                                .serial = "AB1" + serial36(index + 1, 5),
                                .number = std::to_string(enclosure + 1)});
            }
        }
    }
}

void Maker::storageEnclosures()
{
    eachEnclosure([&](const Enclosure& enclosure) {
        printer.resource({imageMtms(enclosure.image), enclosure.rackField(), imageDomain(enclosure.image),
                          text("featureCode", "2207"), enclosure.location(""), enclosure.numberField(),
                          interfaceIdentifiers(enclosure.index), enclosure.mtmsField()});
    });
}

constexpr uint32_t drivesPerSite = 8;

void Maker::drives()
{
    std::vector<uint32_t> count(sizes.images); // of each image, so far
    eachEnclosure([&](const Enclosure& enclosure) {
        const DriveModel& model = driveModels[enclosure.index % driveModels.size()];
        for (uint32_t drive = 1; drive <= sizes.drives; ++drive) {
            const uint32_t ordinal = count[enclosure.image]++;
            printer.resource({imageMtms(enclosure.image), enclosure.rackField(), enclosure.mtmsField(),
                              enclosure.numberField(), imageDomain(enclosure.image),
                              enclosure.location("-P1-D" + std::to_string(drive)), text("ecLevel", "J17504"),
                              text("firmwareLevel", model.firmware), text("partNumber", model.part),
                              text("serialNumber", "WK" + random.digits(8)),
                              text("ddmname", "D" + serial36(ordinal, 5)),
                              text("diskManufacturer", model.maker), number("diskCapacity", model.capacity),
                              number("diskRPM", model.speed), number("diskInterfaceRate", 2),
                              number("arraySite", ordinal / drivesPerSite + 1),
                              number("arraySitePosition", ordinal % drivesPerSite + 1),
                              text("diskInterfaceType", "FC-AL"), number("serviceState", 0)});
        }
    });
}

void Maker::interfaceCards()
{
    eachEnclosure([&](const Enclosure& enclosure) {
        for (const char* place : {"-P1-C1", "-P1-C2"}) {
            const Part& card = random.of(cardParts);
            printer.resource({enclosure.rackField(), enclosure.mtmsField(), enclosure.numberField(),
                              imageDomain(enclosure.image), enclosure.location(place),
                              text("ecLevel", card.level), text("firmwareLevel", "F0112"),
                              text("partNumber", card.number),
                              text("serialNumber", "SK" + random.digits(6))});
        }
    });
}

void Maker::baffles()
{
    eachEnclosure([&](const Enclosure& enclosure) {
        printer.resource({enclosure.rackField(), enclosure.mtmsField(), enclosure.numberField(),
                          imageDomain(enclosure.image), enclosure.location("-P1-B1"),
                          text("partNumber", "BF94001")});
    });
}

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

uint32_t Maker::siteCount(uint32_t image) const
{
    uint32_t seen = 0; // enclosures of a rack
    for (uint32_t enclosure = 0; enclosure < sizes.enclosures; ++enclosure)
        seen += sees(image, enclosure) ? 1 : 0;
    return (sizes.racks * seen * sizes.drives + drivesPerSite - 1) / drivesPerSite;
}

/// Arrays of one site and of two take turns: of every three sites, the second and third are one array's.
uint32_t arrayOfSite(uint32_t site)
{
    return site / 3 * 2 + (site % 3 == 0 ? 0 : 1);
}

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

const DriveModel& arrayModel(uint32_t array)
{
    return driveModels[array % driveModels.size()];
}

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
