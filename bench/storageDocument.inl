// The document's outline and vocabulary, element by element.

#include <cstdio>

namespace bench
{

template <typename Builder>
void nameplate(Builder& builder, const char* name, const std::string& location)
{
    builder.property("DS", "System VPD", name);
    builder.property("YL", "Hardware Location Code", location.c_str());
    builder.endResource();
}

template <typename Builder>
void owners(Builder& builder, const Storage& storage, const Enclosure& enclosure)
{
    builder.property("S3", "Storage Facility MTMS", storage.facility.c_str());
    builder.property("S4", "Storage Facility Image MTMS", enclosure.image.c_str());
}

template <typename Builder>
void levels(Builder& builder, const Part& part)
{
    builder.property("EC", "EC Level", part.ecLevel.c_str());
    builder.property("LE", "Firmware Level", part.firmware.c_str());
    builder.property("PN", "Part Number", part.partNumber.c_str());
    builder.property("SN", "Serial Number", part.serialNumber.c_str());
}

template <typename Builder>
void buildDrive(Builder& builder, const Storage& storage, const Enclosure& enclosure, const Drive& drive)
{
    constexpr const char* name = "OSK Physical Disk Drive";
    char space[500];
    std::snprintf(space, sizeof space, "DI=%s,DM=%s,DC=%dMB,DR=%d,DS=%d,AS=%d,AP=%d,IT=%s,ST=%d",
                  drive.name.c_str(), manufacturer, capacity, speed, rate, drive.arraySite, drive.position,
                  interfaceType, serviceState);
    builder.resource(name, drive.location.c_str());
    owners(builder, storage, enclosure);
    levels(builder, drive);
    builder.property("DP", "Disk Space Characteristics", space);
    nameplate(builder, name, drive.location);
}

template <typename Builder>
void buildCard(Builder& builder, const Storage& storage, const Enclosure& enclosure, const Part& card)
{
    constexpr const char* name = "Fiber Channel Interface Card";
    builder.resource(name, card.location.c_str());
    owners(builder, storage, enclosure);
    levels(builder, card);
    nameplate(builder, name, card.location);
}

template <typename Builder>
void buildBaffle(Builder& builder, const Storage& storage, const Enclosure& enclosure, const Part& baffle)
{
    constexpr const char* name = "Storage Enclosure Slot Baffle";
    builder.resource(name, baffle.location.c_str());
    owners(builder, storage, enclosure);
    builder.property("PN", "Part Number", baffle.partNumber.c_str());
    nameplate(builder, name, baffle.location);
}

template <typename Builder>
void buildEnclosure(Builder& builder, const Storage& storage, const Enclosure& enclosure)
{
    constexpr const char* name = "Storage Enclosure";
    builder.resource(name, enclosure.location.c_str());
    owners(builder, storage, enclosure);
    builder.property("R1", "Rack Location", enclosure.rackLocation.c_str());
    builder.property("R2", "Rack Number", enclosure.rackNumber.c_str() + 1);
    builder.property("IF", "IntefaceID", interfaces);
    builder.property("FC", "Feature Code", feature);
    builder.property("TM", "Machine Type-Model", typeModel);
    builder.property("SG", "Plant of Manufature code and Serial Number", enclosure.serial.c_str());
    builder.property("DS", "System VPD", name);
    builder.property("YL", "Hardware Location Code", enclosure.location.c_str());

    builder.list("Enclosures Partitions");
    builder.resource("Enclosure's MTMS - Partition Id", (enclosure.location + '-' + lparId).c_str());
    builder.list("Partition Resources");
    for (const Drive& drive : enclosure.drives)
        buildDrive(builder, storage, enclosure, drive);
    for (const Part& card : enclosure.cards)
        buildCard(builder, storage, enclosure, card);
    for (const Part& baffle : enclosure.baffles)
        buildBaffle(builder, storage, enclosure, baffle);
    builder.endList();
    builder.endResource();
    builder.endList();
    builder.endResource();
}

template <typename Builder>
void buildDocument(Builder& builder, const Storage& storage)
{
    builder.open();
    builder.resource(storage.system.c_str(), storage.system.c_str());
    builder.property("S3", "Storage Facility MTMS", storage.facility.c_str());
    builder.list("Enclosures");
    for (const Enclosure& enclosure : storage.enclosures)
        buildEnclosure(builder, storage, enclosure);
    builder.endList();
    builder.endResource();
    builder.close();
}

} // namespace bench
