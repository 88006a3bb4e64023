#include "writing.h"

#include "document/reader.h"

namespace kordTest
{

namespace
{

std::string propertyOf(const std::string& tag, const std::string& code, const std::string& value)
{
    return "<Property " + tag + ">\n" + code + "\n<Value type=\"string\">" + value +
           "</Value>\n</Property>\n";
}

} // namespace

std::string property(const std::string& code, const std::string& label, const std::string& value)
{
    return propertyOf("name=\"" + code + "\" displayName=\"" + label + '"', code, value);
}

std::string reversed(const std::string& code, const std::string& label, const std::string& value)
{
    return propertyOf("name=\"" + label + "\" displayName=\"" + code + '"', code, value);
}

std::string hosts(const std::string& value)
{
    return propertyOf("name=U2 displayName=\"Host Inventory\"", "U2", value);
}

std::string resource(const std::string& name, const std::string& id, const std::string& content)
{
    return "<Resource displayName=\"" + name + "\" uniqueId=\"" + id + "\">\n" + id + '\n' + content +
           "</Resource>\n";
}

std::string list(const std::string& name, const std::string& content)
{
    return "<ResourceList displayName=\"" + name + "\">\n" + content + listEnd;
}

std::string inventory(const std::string& content, const std::string& timestamp)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<com.orvik.inventory verion=\"1.0\">\n"
           "<ResourceSet class=\"com.orvik.inventory.Hardware\" type=\"Hardware\" version=\"1.0\" "
           "timestamp=\"" +
           timestamp + "\">\n" + content + "</ResourceSet>\n</com.orvik.inventory>\n";
}

std::string styled(std::string document)
{
    const std::string line = "<?xml-stylesheet type=\"text/xsl\" href=\"v03.xsl\"?>\n";
    return document.insert(document.find('\n') + 1, line);
}

std::string ofSystem(const std::string& content)
{
    return inventory(
        resource("SYSTEM-1", "SYSTEM-1", property("S3", "Storage Facility MTMS", "FACILITY") + content));
}

std::string ofEnclosures(const std::string& content)
{
    return ofSystem(list("Enclosures", content));
}

std::string ofPartitions(const std::string& content)
{
    return ofSystem(list("Partitions", content));
}

std::string drive(const std::string& enclosure, const Drive& drive)
{
    const std::string name = "OSK Physical Disk Drive";
    const std::string id = enclosure + drive.slot;
    return resource(name, id,
                    property("S3", "Storage Facility MTMS", "FACILITY") +
                        property("S4", "Storage Facility Image MTMS", drive.image) +
                        property("EC", "EC Level", drive.level) +
                        property("SN", "Serial Number", drive.serial) +
                        property("DP", "Disk Space Characteristics",
                                 "DI=D1,DM=Maker,DC=73400MB,ST=" + std::to_string(drive.state)) +
                        property("DS", "System VPD", name) + property("YL", "Hardware Location Code", id));
}

std::string enclosure(const Enclosure& enclosure, const std::string& content)
{
    return resource("Storage Enclosure", enclosure.id,
                    property("S4", "Storage Facility Image MTMS", enclosure.image) +
                        property("R1", "Rack Location", enclosure.location) +
                        property("TM", "Machine Type-Model", "1234-5X6") +
                        property("SG", "Plant of Manufature code and Serial Number", enclosure.serial) +
                        property("YL", "Hardware Location Code", enclosure.id) +
                        list("Enclosures Partitions", resource("Enclosure's MTMS - Partition Id",
                                                               enclosure.id + '-' + enclosure.partition,
                                                               list("Partition Resources", content))));
}

document::Document parse(const std::string& text)
{
    document::Input input("test.xml", text);
    return document::read(input);
}

} // namespace kordTest
