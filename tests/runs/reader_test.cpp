// The document's reader finds what is wrong: a reader that accepted everything would make every run pass.

#include <gtest/gtest.h>

#include "consoleRun.h"
#include "documentReader.h"

namespace
{

using kordTest::readDocument;
using Texts = std::vector<std::string>;

const std::string head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<com.orvik.inventory verion=\"1.0\">\n"
    "<ResourceSet class=\"com.orvik.inventory.Hardware\" type=\"Hardware\" version=\"1.0\" "
    "timestamp=\"1121432699.5\">\n";
const std::string tail = "</ResourceSet>\n</com.orvik.inventory>\n";

std::string property(const std::string& name, const std::string& displayName, const std::string& code,
                     const std::string& value)
{
    return "<Property name=\"" + name + "\" displayName=\"" + displayName + "\">\n" + code +
           "\n<Value type=\"string\">" + value + "</Value>\n</Property>\n";
}

std::string resource(const std::string& displayName, const std::string& uniqueId, const std::string& content)
{
    return "<Resource displayName=\"" + displayName + "\" uniqueId=\"" + uniqueId + "\">\n" + uniqueId +
           "\n" + content + "</Resource>\n";
}

std::string list(const std::string& displayName, const std::string& content)
{
    return "<ResourceList displayName=\"" + displayName + "\">\n" + content + "</ResourceList>\n";
}

const std::string facility = property("S3", "Storage Facility MTMS", "S3", "9999-A01-00XY1230");

/// A document of one system with this inside.
std::string document(const std::string& content)
{
    return head + resource("9999-B2C-7ABCD12", "9999-B2C-7ABCD12", facility + content) + tail;
}

/// A document of one system with these processor complex drawers.
std::string drawers(const std::string& content)
{
    return document(list("Enclosures", content));
}

const std::string cards = "<ResourceList displayName=\"Enclosures Partitions\">\n" +
                          resource("U1-001", "U1-001", list("Partition Resources", ""));

Texts faultsOf(const std::string& text)
{
    return readDocument(text).faults;
}

TEST(Reader, readsATree)
{
    const auto read =
        readDocument(drawers(resource("Quay", "U1",
                                      facility + property("DS", "System VPD", "DS", "Quay") +
                                          property("YL", "Hardware Location Code", "YL", "U1"))));
    EXPECT_EQ(read.faults, Texts{});
    EXPECT_FALSE(read.stylesheet);
    EXPECT_EQ(read.timestamp, "1121432699.5");
    EXPECT_EQ(kordTest::outline(read, 3),
              (Texts{"9999-B2C-7ABCD12 = 9999-B2C-7ABCD12", "  [Enclosures]", "    Quay = U1"}));
    EXPECT_EQ(kordTest::outline(read, 1), (Texts{"9999-B2C-7ABCD12 = 9999-B2C-7ABCD12"}));
    const auto& quay = read.resources.at(0).children.at(0).children.at(0);
    ASSERT_EQ(quay.properties.size(), 3U);
    EXPECT_EQ(quay.properties[2].code, "YL");
    EXPECT_EQ(quay.properties[2].value, "U1");
}

TEST(Reader, readsRawValues)
{
    EXPECT_EQ(faultsOf(document(property("U1", "Logcial Configuration String", "U1", "a<b>&\"</Val"))),
              Texts{});
    EXPECT_EQ(faultsOf(document(property("U1", "Logcial Configuration String", "U1", "two\nlines"))),
              Texts{});
    EXPECT_EQ(faultsOf(drawers(resource("CEC", "<\"&\">", facility))), Texts{});
}

TEST(Reader, readsTheHostDescriptions)
{
    const std::string hosts = "<Property name=U2 displayName=\"Host Inventory\">\nU2\n"
                              "<Value type=\"string\">first=2,second=1,</Value>\n</Property>\n";
    const auto read = readDocument(document(hosts));
    EXPECT_EQ(read.faults, Texts{});
    EXPECT_EQ(read.resources.at(0).properties.at(1).value, "first=2,second=1,");
}

TEST(Reader, readsBothOrders)
{
    const std::string card = property("S4", "Storage Facility Image MTMS", "S4", "i") +
                             property("PartNumber of assembly", "PN", "PN", "p") +
                             property("Serial Number", "SN", "SN", "s") +
                             property("Engineering Change Level", "EC", "EC", "e");
    const auto read = readDocument(drawers(resource("Orvik Non Volatile Control Card", "", card)));
    EXPECT_EQ(read.faults, Texts{});
    EXPECT_TRUE(read.resources.at(0).children.at(0).children.at(0).properties.at(1).reversed);
}

TEST(Reader, knowsTheFrame)
{
    std::string text = document("");
    EXPECT_EQ(faultsOf(text), Texts{});
    EXPECT_NE(faultsOf(text.substr(0, text.size() - 1)), Texts{});
    EXPECT_NE(faultsOf(text + "\n"), Texts{});
    EXPECT_NE(faultsOf(text.substr(text.find('\n') + 1)), Texts{});
    for (const std::string from : {"verion", "Hardware\" type", "1121432699.5", "</com.orvik"}) {
        std::string changed = text;
        changed.replace(changed.find(from), 1, "x");
        EXPECT_NE(faultsOf(changed), Texts{}) << from;
    }
    EXPECT_NE(faultsOf(head + resource("a", "a", "") + resource("b", "b", "") + tail), Texts{});
}

TEST(Reader, knowsTheTimestamp)
{
    for (const std::string stamp :
         {"1121432699.05", "1121432699.", ".5", "1121432699", "1121432699.1000000"}) {
        std::string changed = document("");
        changed.replace(changed.find("1121432699.5"), 12, stamp);
        EXPECT_NE(faultsOf(changed), Texts{}) << stamp;
    }
}

TEST(Reader, findsBadNesting)
{
    EXPECT_NE(faultsOf(document("</ResourceList>\n")), Texts{});
    EXPECT_NE(faultsOf(document("<ResourceList displayName=\"Enclosures\">\n")), Texts{});
    EXPECT_NE(faultsOf(document("</Resource>\n")), Texts{});
    EXPECT_NE(faultsOf(document(resource("CEC", "U1", facility))), Texts{});
    EXPECT_NE(faultsOf(document(list("Enclosures", list("Partitions", "")))), Texts{});
    EXPECT_NE(faultsOf(document(list("Enclosures", facility))), Texts{});
    EXPECT_NE(faultsOf(document(list("Enclosures", "") + facility)), Texts{});
    EXPECT_NE(faultsOf(document("text\n")), Texts{});
    EXPECT_NE(faultsOf(document("\n")), Texts{});
}

TEST(Reader, findsAWrongTextLine)
{
    EXPECT_NE(faultsOf(drawers("<Resource displayName=\"CEC\" uniqueId=\"U1\">\nU2\n" + facility +
                               "</Resource>\n")),
              Texts{});
    EXPECT_NE(faultsOf(document(property("S3", "Storage Facility MTMS", "S4", "9999-A01-00XY1230"))),
              Texts{});
}

TEST(Reader, knowsTheVocabulary)
{
    EXPECT_NE(faultsOf(document(property("U1", "Logical Configuration String", "U1", ""))), Texts{});
    EXPECT_NE(faultsOf(document(property("Logcial Configuration String", "U1", "U1", ""))), Texts{});
    EXPECT_NE(faultsOf(document(property("EC", "Engineering Change Level", "EC", ""))), Texts{});
    EXPECT_NE(faultsOf(document(property("OS", "OS", "OS", ""))), Texts{});
    EXPECT_NE(faultsOf(document(list("Enclosure", ""))), Texts{});
    EXPECT_NE(faultsOf(document(property("S3", "Storage Facility MTMS", "S3", "another"))), Texts{});
}

TEST(Reader, knowsWhatAResourceHolds)
{
    const std::string name = property("DS", "System VPD", "DS", "Quay");
    const std::string place = property("YL", "Hardware Location Code", "YL", "U1");
    EXPECT_EQ(faultsOf(drawers(resource("Quay", "U1", facility + name + place))), Texts{});
    EXPECT_NE(faultsOf(drawers(resource("Quay", "U1", facility + place + name))), Texts{});
    EXPECT_NE(faultsOf(drawers(resource("Quay", "U1", facility + name))), Texts{});
    EXPECT_NE(faultsOf(drawers(resource("Quay", "U2", facility + name + place))), Texts{});
    EXPECT_NE(faultsOf(drawers(resource("CEC", "U1", ""))), Texts{});
}

TEST(Reader, countsTheDrawersLists)
{
    const auto balanced =
        readDocument(drawers(resource("CEC", "U1", facility + cards + "</ResourceList>\n")));
    EXPECT_EQ(balanced.faults, Texts{});
    EXPECT_EQ(balanced.missingClosings, 0);
    EXPECT_EQ(balanced.extraClosings, 0);

    const auto missing =
        readDocument(drawers(resource("CEC", "U1", facility + cards + cards + "</ResourceList>\n")));
    EXPECT_EQ(missing.faults, Texts{});
    EXPECT_EQ(missing.missingClosings, 1);
    EXPECT_EQ(missing.resources.at(0).children.at(0).children.at(0).children.size(), 2U);

    const auto extra = readDocument(drawers(resource("CEC", "U1", facility + "</ResourceList>\n")));
    EXPECT_EQ(extra.faults, Texts{});
    EXPECT_EQ(extra.extraClosings, 1);
}

TEST(Reader, isStrictOutsideTheDrawers)
{
    const std::string interface = property("IF", "Storage Facility MTMS - InterfaceID", "IF", "1");
    EXPECT_NE(faultsOf(drawers(resource("Larkspur", "U1", facility + interface + "</ResourceList>\n"))),
              Texts{});
    EXPECT_NE(faultsOf(drawers(resource("Larkspur", "U1", facility + interface + cards))), Texts{});
}

TEST(Timestamp, isFixed)
{
    const std::string text = document("");
    const std::string fixed = kordTest::withFixedTimestamp(text);
    EXPECT_NE(fixed.find("timestamp=\"0.0\">\n"), std::string::npos);
    EXPECT_EQ(fixed.size(), text.size() - std::string("1121432699.5").size() + 3);
}

} // namespace
