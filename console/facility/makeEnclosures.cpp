// Racks and what stands in them: power, fans, storage enclosures, drives.

#include "facility/maker.h"

namespace console::facility::making
{

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

/// The enclosures of a rack are dealt out to the images; where there are fewer, images share one.
bool Maker::sees(uint32_t image, uint32_t enclosure) const
{
    return enclosure % sizes.images == image || image % sizes.enclosures == enclosure;
}

namespace
{

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

} // namespace

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

} // namespace console::facility::making
