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

const std::string listEnd = "</ResourceList>\n";

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
    std::string text = ofSystem("");
    text.insert(text.find('\n') + 1, "<?xml-stylesheet type=\"text/xsl\" href=\"v03.xsl\"?>\n");
    EXPECT_EQ(parse(text).system().name, "SYSTEM-1");
}

// --- Documents that are none

struct Broken {
    std::string what;
    std::string text;
    size_t line;
    std::string says;
};

std::string withoutLine(std::string text, const std::string& line)
{
    const size_t at = text.find(line + '\n');
    return at == std::string::npos ? "no such line" : text.erase(at, line.size() + 1);
}

std::string replaced(std::string text, const std::string& part, const std::string& by)
{
    const size_t at = text.find(part);
    return at == std::string::npos ? "no such part" : text.replace(at, part.size(), by);
}

std::string upTo(const std::string& text, const std::string& mark)
{
    return text.substr(0, text.find(mark));
}

/// The frame has three lines, the system's start two, its property four: what follows is on line 10.
std::vector<Broken> brokenDocuments()
{
    const std::string whole = ofSystem("");
    const std::string enclosures = ofEnclosures(drawer("C1", ""));
    std::string deep;
    for (int i = 0; i < 20; ++i)
        deep += start("L") + "<Resource displayName=\"N\" uniqueId=\"I\">\nI\n";
    return {
        {"empty", "", 1, "the end stands where"},
        {"another file", "hello\n", 1, "\"hello\" stands where"},
        {"no last line feed", whole.substr(0, whole.size() - 1), 12, "in the middle of a line"},
        {"a byte order mark", "\xEF\xBB\xBF" + whole, 1, "stands where"},
        {"Windows line ends", replaced(whole, "?>\n", "?>\r\n"), 1, "\\x0D"},
        {"a mended root", replaced(whole, "verion", "version"), 2, "stands where"},
        {"another set", replaced(whole, "Hardware\" type", "Software\" type"), 3,
         "no start of a resource set"},
        {"no time", replaced(whole, "1795268463.5", "now"), 3, "no start of a resource set"},
        {"no system", inventory(""), 4, "no managed system"},
        {"two systems", inventory(resource("A", "A", "") + resource("B", "B", "")), 7,
         "\"B\" does not stand in a list"},
        {"a list at the top", inventory(list("Enclosures", "")), 4, "not inside a resource"},
        {"a property at the top", inventory(property("S3", "L", "V")), 4, "not inside a resource"},
        {"a list in a list", ofSystem(list("Enclosures", list("Arrays", ""))), 11, "not inside a resource"},
        {"a resource in a resource", ofSystem(resource("A", "A", "")), 10, "does not stand in a list"},
        {"a property in a list", ofSystem(list("Enclosures", property("S3", "L", "V"))), 11,
         "not inside a resource"},
        {"a property after a list", ofSystem(list("Enclosures", "") + property("PN", "L", "V")), 12,
         "after a list"},
        {"an unknown line", ofSystem("<Foo>\n"), 10, "\"<Foo>\" is no line of"},
        {"an indented line", ofSystem("  " + list("Enclosures", "")), 10, "is no line of"},
        {"an empty line", ofSystem("\n"), 10, "is no line of"},
        {"another identifier", replaced(whole, "\nSYSTEM-1\n", "\nSYSTEM-2\n"), 5,
         "stands where the identifier"},
        {"no identifier", withoutLine(whole, "SYSTEM-1"), 5, "stands where the identifier"},
        {"another code", replaced(whole, "\nS3\n", "\nS4\n"), 7, "stands where the code"},
        {"hosts of another code", ofSystem(replaced(hosts(""), "\nU2\n", "\nU1\n")), 11,
         "stands where the code"},
        {"no value", replaced(whole, "<Value type=\"string\">", "<Value>"), 8, "is no value"},
        {"a value without end", replaced(whole, "</Value>", ""), 8, "the value that begins here"},
        {"a property without end", withoutLine(whole, "</Property>"), 9, "stands where \"</Property>\""},
        {"an unquoted name", replaced(whole, "name=\"S3\"", "name=S3"), 6, "is no line of"},
        {"a tag without end", replaced(whole, "MTMS\">", "MTMS\""), 6, "has no end"},
        {"a system that does not end", withoutLine(whole, "</Resource>"), 10, "inside \"SYSTEM-1\""},
        {"a list that does not end", withoutLine(enclosures, "</ResourceList>"), 14,
         "a resource ends inside the list"},
        {"a drawer's open list", ofEnclosures(drawer("C1", opened("C1-1"))), 17,
         "a resource ends inside the list"},
        {"a drawer that closes twice", ofEnclosures(drawer("C1", listEnd + listEnd)), 14,
         "a list ends that is not open"},
        {"an enclosure that closes a list", ofEnclosures(resource("Larkspur", "L", listEnd)), 13, "not open"},
        {"an enclosure's list opened twice",
         ofEnclosures(resource("Larkspur", "L", opened("1") + opened("2") + listEnd)), 17,
         "not inside a resource"},
        {"a resource too many", replaced(whole, "</ResourceSet>", "</Resource>\n</ResourceSet>"), 11,
         "not open"},
        {"no end of the set", withoutLine(whole, "</ResourceSet>"), 11, "is no line of"},
        {"no end of the root", upTo(whole, "</com"), 12, "the end stands where"},
        {"cut between lines", upTo(whole, "<Property"), 6, "ends before its end tags"},
        {"cut in a property", upTo(whole, "<Value"), 8, "ends here"},
        {"text after the end", whole + "more\n", 13, "more after the end"},
        {"deeper than any", ofSystem(deep), 57, "nested deeper"},
    };
}

TEST(Reader, SaysWhatIsWrongAndWhere)
{
    for (const Broken& broken : brokenDocuments()) {
        try {
            parse(broken.text);
            ADD_FAILURE() << broken.what << " is read without a word";
        } catch (const Malformed& fault) {
            const std::string place = "test.xml:" + std::to_string(broken.line) + ": ";
            EXPECT_THAT(fault.what(), testing::StartsWith(place)) << broken.what;
            EXPECT_THAT(fault.what(), testing::HasSubstr(broken.says)) << broken.what;
            EXPECT_THAT(fault.what(), testing::Not(testing::HasSubstr("\n"))) << broken.what;
        }
    }
}

TEST(Reader, NoDocumentThatIsCutIsTakenForAWholeOne)
{
    const std::string whole = ofEnclosures(drawer("C1", opened("C1-1") + opened("C1-2") + listEnd) +
                                           enclosure({.id = "E1", .serial = "S", .location = "R-1"},
                                                     drive("E1", {.slot = "-D1", .serial = "A"})));
    ASSERT_NO_THROW(parse(whole));
    for (size_t length = 0; length < whole.size(); ++length)
        EXPECT_THROW(parse(whole.substr(0, length)), Malformed) << length;
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
