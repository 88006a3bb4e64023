// The reader: what it makes of the documents that the collector writes, and what it says of others.

#include "consoleRun.h"
#include "document/reader.h"
#include "documentReader.h"
#include "writing.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

namespace fs = std::filesystem;
using document::Document;
using document::Kind;
using document::Malformed;
using document::Part;
using namespace kordTest;

TEST(Reader, ReadsTheThreeShapes)
{
    const Document document = parse(ofEnclosures(
        resource("Larkspur", "U1",
                 property("IF", "InterfaceID", "1,2") + reversed("PN", "PartNumber of assembly", "P9"))));
    EXPECT_EQ(document.timestamp, "1795268463.5");
    EXPECT_EQ(document.system().name, "SYSTEM-1");
    EXPECT_EQ(document.system().value("S3"), "FACILITY");
    ASSERT_EQ(document.system().children.size(), 1U);
    const Part& drawer = document.system().children[0];
    EXPECT_EQ(drawer.list, "Enclosures");
    EXPECT_EQ(drawer.kind, Kind::ioEnclosure);
    EXPECT_EQ(drawer.id, "U1");
    ASSERT_EQ(drawer.properties.size(), 2U);
    EXPECT_EQ(drawer.properties[0].label(), "InterfaceID");
    EXPECT_EQ(drawer.properties[0].value, "1,2");
    EXPECT_EQ(drawer.properties[1].code(), "PN");
    EXPECT_EQ(drawer.properties[1].label(), "PartNumber of assembly");
}

TEST(Reader, ReadsTheHostDescriptionsWhoseNameHasNoQuotationMarks)
{
    const Document document = parse(ofPartitions(resource("P", "S-1", hosts("web=2,mail=1,"))));
    const Part& partition = document.system().children[0];
    EXPECT_EQ(partition.properties[0].code(), "U2");
    EXPECT_EQ(partition.properties[0].label(), "Host Inventory");
    EXPECT_EQ(partition.value("U2"), "web=2,mail=1,");
}

TEST(Reader, APartitionIsAPartitionWhateverItsName)
{
    const Document document = parse(ofPartitions(resource("CEC", "S-1", "")));
    EXPECT_EQ(document.system().children[0].kind, Kind::partition);
}

TEST(Reader, KeepsValuesThatLookLikeMarkup)
{
    for (const std::string value : {"<b>", "a & b", "\"quoted\"", "</Value>", "</Property>", "x</Value>\ny",
                                    "<Resource displayName=\"\" uniqueId=\"\">", "line\nfeed", "\n", "",
                                    "</Value>\n</Value>", "\xFF\x01"}) {
        const Document document = parse(ofSystem(property("PN", "Part Number", value)));
        EXPECT_EQ(document.system().value("PN"), value);
    }
}

TEST(Reader, TellsNameAndIdentifierApart)
{
    for (const std::string id : {"", "a\" uniqueId=\"b", "line\nfeed", "two\nline\nfeeds", "\">"}) {
        for (const std::string name : {"Larkspur", "\" uniqueId=\"", "say \"this\""}) {
            const Document document = parse(ofEnclosures(resource(name, id, "")));
            EXPECT_EQ(document.system().children[0].name, name) << id;
            EXPECT_EQ(document.system().children[0].id, id) << name;
        }
    }
}

std::string start(const std::string& name)
{
    return "<ResourceList displayName=\"" + name + "\">\n";
}

std::string drawer(const std::string& id, const std::string& content)
{
    return resource("CEC", id, content);
}

/// A partition's share of a drawer, whose list is opened.
std::string opened(const std::string& id)
{
    return start("Enclosures Partitions") + resource(id, id, "");
}

std::vector<std::string> idsInside(const Part& part)
{
    std::vector<std::string> ids;
    for (const Part& child : part.children)
        ids.emplace_back(child.id);
    return ids;
}

TEST(Reader, ADrawerOpensAListForEachPartitionAndClosesOne)
{
    const Document document =
        parse(ofEnclosures(drawer("C1", opened("C1-1") + opened("C1-2") + opened("C1-3") + listEnd) +
                           drawer("C2", opened("C2-1") + listEnd)));
    ASSERT_EQ(idsInside(document.system()), (std::vector<std::string>{"C1", "C2"}));
    EXPECT_EQ(idsInside(document.system().children[0]), (std::vector<std::string>{"C1-1", "C1-2", "C1-3"}));
    EXPECT_EQ(idsInside(document.system().children[1]), (std::vector<std::string>{"C2-1"}));
}

TEST(Reader, ADrawerWithoutCardsMayCloseAListItNeverOpened)
{
    const Document document =
        parse(ofEnclosures(drawer("C1", opened("C1-1") + listEnd) + drawer("C2", listEnd) + drawer("C3", "") +
                           resource("Quay", "Q", "")));
    EXPECT_EQ(idsInside(document.system()), (std::vector<std::string>{"C1", "C2", "C3", "Q"}));
}

TEST(Reader, AcceptsTheStylesheetLine)
{
    EXPECT_EQ(parse(styled(ofSystem(""))).system().name, "SYSTEM-1");
}

// --- Documents that are none, or not whole

std::string faultOf(const std::string& text)
{
    try {
        parse(text);
        return "none";
    } catch (const Malformed& fault) {
        return fault.what();
    }
}

TEST(Reader, SaysWhatIsNoDocument)
{
    EXPECT_THAT(faultOf(""), testing::StartsWith("test.xml:1: "));
    EXPECT_THAT(faultOf("hello\n"), testing::StartsWith("test.xml:1: \"hello\" stands where"));
    EXPECT_THAT(faultOf(inventory("")), testing::EndsWith(": there is no managed system"));
}

TEST(Reader, NoDocumentThatIsCutIsTakenForAWholeOne)
{
    const std::string whole =
        ofSystem(list("Enclosures", drawer("C1", opened("C1-1") + opened("C1-2") + listEnd) +
                                        enclosure({.id = "E1", .serial = "S", .location = "R-1"},
                                                  drive("E1", {.slot = "-D1", .serial = "A"}))) +
                 list("Partitions", resource("P1", "SYSTEM-1-1", "") + resource("P2", "SYSTEM-1-2", "")));
    ASSERT_TRUE(parse(whole).missing.nothing());
    // Without its last line feed it is as whole as with it.
    for (size_t length = 0; length + 1 < whole.size(); ++length) {
        const std::string text = whole.substr(0, length);
        if (faultOf(text) == "none") {
            EXPECT_TRUE(parse(text).missing.end) << length;
        }
    }
}

TEST(Reader, ALostLastLineFeedIsNothingMissing)
{
    // In a short document the end has been looked at with the head; in a long one it is met by the last tag.
    for (const size_t enclosures : {size_t{1}, size_t{400}}) {
        std::string text;
        for (size_t i = 0; i < enclosures; ++i)
            text += enclosure({.id = "E" + std::to_string(i), .serial = "S", .location = "R-1"}, "");
        std::string whole =
            ofSystem(list("Enclosures", text) +
                     list("Partitions", resource("P1", "SYSTEM-1-1", "") + resource("P2", "SYSTEM-1-2", "")));
        ASSERT_TRUE(parse(whole).missing.nothing());
        whole.pop_back();
        EXPECT_TRUE(parse(whole).missing.nothing()) << enclosures;
    }
}

TEST(Reader, TellsWhatTheCollectorWouldNotHaveWritten)
{
    const Document document = parse(ofEnclosures("<Foo>\n" + resource("Quay", "Q", "")));
    ASSERT_EQ(document.findings.size(), 1U);
    EXPECT_EQ(document.findings[0].line, 11U);
    EXPECT_EQ(document.findingCount, 1U);
    EXPECT_EQ(idsInside(document.system()), std::vector<std::string>{"Q"});
}

TEST(Reader, ReferencesMeanTheirCharacter)
{
    const Document document = parse(
        ofEnclosures(resource("A &amp; B", "x&#10;y", property("PN", "L &lt;", "a &amp; b & c &#x41;"))));
    const Part& part = document.system().children[0];
    EXPECT_EQ(part.name, "A & B");
    EXPECT_EQ(part.id, "x\ny");
    EXPECT_EQ(part.properties[0].label(), "L <");
    EXPECT_EQ(part.properties[0].value, "a & b & c A");
}

TEST(Reader, EveryPartKnowsThePartAroundIt)
{
    const Document document = parse(ofEnclosures(enclosure({.id = "E1", .serial = "S", .location = "R-1"},
                                                           drive("E1", {.slot = "-D1", .serial = "A"}))));
    const Part& system = document.system();
    const Part& box = system.children[0];
    const Part& share = box.children[0];
    EXPECT_EQ(system.around, nullptr);
    EXPECT_EQ(box.around, &system);
    EXPECT_EQ(share.around, &box);
    EXPECT_EQ(share.children[0].around, &share);
    EXPECT_EQ(share.children[0].valueAround("R1"), "R-1");
}

TEST(Reader, NamesAFileThatItCannotRead)
{
    EXPECT_THROW(document::readFile("/no/such/file"), Malformed);
    EXPECT_THROW(document::readFile("/"), Malformed);
}

// --- The documents of whole runs, against the tests' own reader

/// The tests' reader keeps lists as elements of their own.
void expectSame(const Part& part, const Element& element)
{
    EXPECT_EQ(part.name, element.displayName);
    EXPECT_EQ(part.id, element.uniqueId);
    ASSERT_EQ(part.properties.size(), element.properties.size());
    for (size_t i = 0; i < part.properties.size(); ++i) {
        EXPECT_EQ(part.properties[i].code(), element.properties[i].code);
        EXPECT_EQ(part.properties[i].label(), element.properties[i].label);
        EXPECT_EQ(part.properties[i].value, element.properties[i].value);
    }
    size_t next = 0;
    for (const Element& inner : element.children) {
        for (const Element& child : inner.children) {
            ASSERT_LT(next, part.children.size());
            EXPECT_EQ(part.children[next].list, inner.displayName);
            expectSame(part.children[next++], child);
        }
    }
    EXPECT_EQ(next, part.children.size());
}

TEST(Reader, AgreesWithTheTestsReaderOnWholeDocuments)
{
    size_t documents = 0;
    for (const auto& entry : fs::directory_iterator(fs::path(KORD_SOURCE_DIR) / "tests/runs/expected")) {
        if (entry.path().extension() != ".xml") continue;
        const std::string text = kordTest::readFile(entry.path()).value();
        const auto other = readDocument(text);
        ASSERT_EQ(other.resources.size(), 1U) << entry.path();
        expectSame(parse(text).system(), other.resources[0]);
        ++documents;
    }
    EXPECT_GE(documents, 4U);
}

} // namespace
