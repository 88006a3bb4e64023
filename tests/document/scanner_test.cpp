// The scanner: the elements it finds in whatever bytes, and what it says of the rest.

#include "document/references.h"
#include "document/scanner.h"
#include "writing.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using document::Event;
using document::Input;
using document::Malformed;
using document::Scanner;
using namespace kordTest;
using Texts = std::vector<std::string>;

std::string said(const Event& event)
{
    const std::string mark = event.implied ? "!" : "";
    switch (event.kind) {
    case Event::Kind::start:
        return "start " + std::string(event.timestamp);
    case Event::Kind::listStart:
        return mark + "list " + std::string(event.name);
    case Event::Kind::listEnd:
        return mark + "/list";
    case Event::Kind::resourceStart:
        return "resource " + std::string(event.name) + "|" + std::string(event.id);
    case Event::Kind::resourceEnd:
        return mark + "/resource";
    case Event::Kind::property:
        return std::string(event.reversed ? "~" : "") + std::string(event.code) + "|" +
               std::string(event.label) + "|" + std::string(event.value);
    case Event::Kind::cut:
        return "cut";
    case Event::Kind::end:
        return "end";
    }
    return "?";
}

struct Scanned {
    Texts events;
    std::vector<uint64_t> lines;
    Texts findings; ///< "LINE: what"
    bool complete = false;
};

Scanned scan(const std::string& text, size_t longest = Scanner::longestElement)
{
    Input input("test.xml", text);
    Scanner scanner(input, longest);
    Scanned scanned;
    for (;;) {
        const Event& event = scanner.next();
        scanned.events.push_back(said(event));
        scanned.lines.push_back(event.line);
        if (event.kind == Event::Kind::end) break;
    }
    for (const document::Finding& finding : scanner.findings())
        scanned.findings.push_back(std::to_string(finding.line) + ": " + finding.what);
    scanned.complete = scanner.complete();
    return scanned;
}

/// The events inside the managed system, which the writers of documents put around them.
Texts inside(const Texts& events)
{
    const size_t before = 3; // start, system, its property
    const size_t behind = 2;
    return {events.begin() + before, events.end() - behind};
}

std::string opened(const std::string& id)
{
    return "<ResourceList displayName=\"Enclosures Partitions\">\n" + resource(id, id, "");
}

std::string upTo(const std::string& text, const std::string& mark)
{
    return text.substr(0, text.find(mark));
}

TEST(Scanner, TellsEveryElementWithItsLine)
{
    const Scanned scanned = scan(
        ofEnclosures(resource("Orvik Sable HA - LW", "U1",
                              reversed("SN", "Serial Number", "S") + property("IF", "InterfaceID", "1,2"))));
    EXPECT_EQ(scanned.events,
              (Texts{"start 1795268463.5", "resource SYSTEM-1|SYSTEM-1", "S3|Storage Facility MTMS|FACILITY",
                     "list Enclosures", "resource Orvik Sable HA - LW|U1", "~SN|Serial Number|S",
                     "IF|InterfaceID|1,2", "/resource", "/list", "/resource", "end"}));
    EXPECT_EQ(scanned.lines, (std::vector<uint64_t>{3, 4, 6, 10, 11, 13, 17, 21, 22, 23, 26}));
    EXPECT_EQ(scanned.findings, Texts{});
    EXPECT_TRUE(scanned.complete);
}

TEST(Scanner, OnlySomePropertiesComeAgain)
{
    const auto level = [](const std::string& value) { return property("LE", "LIC VRMF", value); };
    const Scanned levels = scan(ofPartitions(resource("P", "S-1", level("1") + level("2") + level("3"))));
    EXPECT_THAT(levels.events, testing::IsSupersetOf({"LE|LIC VRMF|1", "LE|LIC VRMF|2", "LE|LIC VRMF|3"}));
    EXPECT_EQ(levels.findings, Texts{});
    const Scanned late =
        scan(ofPartitions(resource("P", "S-1", level("1") + property("NN", "WWNN", "N") + level("2"))));
    EXPECT_THAT(late.events, testing::Not(testing::Contains("LE|LIC VRMF|2")));
    EXPECT_EQ(late.findings, Texts{"19: the value of \"NN\" holds lines that look like the document's"});
}

TEST(Scanner, SaysThatAPartHasNoSuchProperty)
{
    const auto finding = [](const std::string& content) { return scan(ofEnclosures(content)).findings; };
    const std::string says = "13: the property \"SN\" is none that such a part has there";
    EXPECT_EQ(finding(resource("Quay", "Q", property("SN", "Serial Number", "S"))), Texts{says});
    EXPECT_EQ(finding(resource("Orvik Sable HA - LW", "H", property("SN", "Serial Number", "S"))),
              Texts{says});
    EXPECT_EQ(finding(resource("of no known kind", "X", property("SN", "Serial Number", "S"))), Texts{});
}

TEST(Scanner, KnowsTheHostsWithAndWithoutQuotationMarks)
{
    const std::string raw = ofPartitions(resource("P", "S-1", hosts("web=2,")));
    std::string mended = raw;
    mended.replace(mended.find("name=U2"), 7, "name=\"U2\"");
    EXPECT_THAT(scan(raw).events, testing::Contains("U2|Host Inventory|web=2,"));
    EXPECT_EQ(scan(mended).events, scan(raw).events);
}

TEST(Scanner, AStampIsTwoNumbers)
{
    const auto started = [](const std::string& stamp) {
        std::string text = ofSystem("");
        text.replace(text.find("1795268463.5"), 12, stamp);
        try {
            return scan(text).events.front();
        } catch (const Malformed&) {
            return std::string("none");
        }
    };
    for (const char* stamp : {"0.0", "9.9", "1795268463.999999", "00.00"})
        EXPECT_EQ(started(stamp), std::string("start ") + stamp);
    for (const char* stamp : {"", ".", "1.", ".1", "1", "1.2.3", "-1.2", "1.x", "x.1", "1 .2", "1.:", "/.1"})
        EXPECT_EQ(started(stamp), "none") << stamp;
}

TEST(Scanner, ACodeIsTwoFiguresOrCapitals)
{
    const auto found = [](const std::string& code) {
        return scan(ofEnclosures(resource("of no known kind", "X", property(code, "Label", "v")))).events;
    };
    for (const char* code : {"AA", "ZZ", "00", "99", "A0", "9Z"})
        EXPECT_THAT(found(code), testing::Contains(std::string(code) + "|Label|v"));
    for (const char* code : {"@A", "[A", "/0", ":0", "aA", "Az", "A", "AAA"})
        EXPECT_THAT(found(code), testing::Not(testing::Contains(std::string(code) + "|Label|v"))) << code;
}

TEST(Scanner, ALabelMayBeEmpty)
{
    EXPECT_THAT(scan(ofEnclosures(resource("of no known kind", "X", property("SN", "", "v")))).events,
                testing::Contains("SN||v"));
}

TEST(Scanner, KnowsTheStylesheetLine)
{
    std::string text = ofSystem("");
    text.insert(text.find('\n') + 1, "<?xml-stylesheet type=\"text/xsl\" href=\"v03.xsl\"?>\n");
    Input input("test.xml", text);
    Scanner scanner(input);
    EXPECT_TRUE(scanner.next().stylesheet);
    EXPECT_EQ(scanner.next().line, 5U);
}

TEST(Scanner, PairsTheListsOfADrawer)
{
    const Scanned scanned = scan(ofEnclosures(resource("CEC", "C1", opened("1") + opened("2") + listEnd) +
                                              resource("CEC", "C2", listEnd) + resource("CEC", "C3", "")));
    EXPECT_EQ(
        inside(scanned.events),
        (Texts{"list Enclosures", "resource CEC|C1", "list Enclosures Partitions", "resource 1|1",
               "/resource", "!/list", "list Enclosures Partitions", "resource 2|2", "/resource", "/list",
               "/resource", "resource CEC|C2", "/resource", "resource CEC|C3", "/resource", "/list"}));
    EXPECT_EQ(scanned.findings, Texts{});
}

TEST(Scanner, OnlyADrawersListsNeedNotPair)
{
    const Scanned stray = scan(ofEnclosures(resource("Larkspur", "L", listEnd)));
    EXPECT_EQ(stray.findings, Texts{"13: \"</ResourceList>\" has no place here and is left out"});
    const Scanned twice = scan(ofEnclosures(resource("Larkspur", "L", opened("1") + opened("2") + listEnd)));
    EXPECT_EQ(twice.findings, Texts{"17: a list begins inside the list before it, which ends here"});
    EXPECT_EQ(scan(ofEnclosures(resource("CEC", "C", listEnd + listEnd))).findings.size(), 1U);
}

// --- Values that look like the document

/// What a value of a property can be without the document being anything else.
Texts values()
{
    return {
        "",
        "\n",
        "<b>",
        "a & b",
        "\"quoted\"",
        "</Value>",
        "</Value>\n",
        "</Value>\n</Value>",
        "</Property>",
        "x</Value>\ny",
        "x</Value>\n</Property>\ny",
        "x</Value>\n</Property>\n</Resource>\ny",
        "x</Value>\n</Property>\n</ResourceList>\n",
        "x</Value>\n</Property>\n<Property name=\"XX\" displayName=\"Label\">\nYY\n<Value type=\"string\">",
        "x</Value>\n</Property>\n<Property name=\"S3\" displayName=\"L\">\nS3\n<Value type=\"string\">a",
        "x</Value>\n</Property>\n<ResourceList displayName=\"Arrays\">\ny",
        "x</Value>\n</Property>\n</ResourceSet>\n</com.orvik.inventory>\n",
        "<Resource displayName=\"\" uniqueId=\"\">",
        "<![CDATA[x]]>",
        "]]>",
        "<!-- x",
        "<?php x",
        "<?kord incomplete?>",
        "x</Value>\n</Property>\n<?kord incomplete?>\ny",
        "line\nfeed",
        "\r\n",
        "\xFF\x01\xC0\x80\xED\xA0\x80",
        std::string("\0\f\v", 3),
        "\xEF\xBB\xBF",
        "&lt;/Value&gt;"};
}

TEST(Scanner, AValueEndsWhereTheCollectorCanHaveGoneOn)
{
    for (const std::string& value : values()) {
        for (const std::string& behind :
             {std::string(), property("SN", "Serial Number", "S"), list("Array Sites", ""),
              list("Arrays", resource("Array", "A", ""))}) {
            const Scanned scanned =
                scan(ofPartitions(resource("P", "S-1", property("S3", "L", "F") + hosts(value) + behind)));
            ASSERT_GT(scanned.events.size(), 6U);
            EXPECT_EQ(scanned.events[6], "U2|Host Inventory|" + value) << behind;
            EXPECT_EQ(scanned.events.back(), "end");
            EXPECT_TRUE(scanned.complete) << value << behind;
        }
    }
}

TEST(Scanner, SaysThatAValueHoldsWhatLooksLikeTheDocument)
{
    EXPECT_EQ(scan(ofPartitions(resource("P", "S-1", hosts("x</Value>\n</Property>\ny")))).findings,
              Texts{"15: the value of \"U2\" holds lines that look like the document's"});
}

TEST(Scanner, AForgedPropertyIsReadAsWhatItLooksLike)
{
    const std::string forged = "x</Value>\n</Property>\n<Property name=\"SN\" displayName=\"Serial "
                               "Number\">\nSN\n<Value type=\"string\">y";
    const Scanned scanned = scan(ofPartitions(resource("P", "S-1", hosts(forged + "=1,"))));
    EXPECT_THAT(scanned.events, testing::IsSupersetOf({"U2|Host Inventory|x", "SN|Serial Number|y=1,"}));
}

/// What a value would have to hold so that a document could look like this, the collector cannot have
/// written.
TEST(Scanner, AForgedEndLosesNothingBehindIt)
{
    const std::string end = "x</Value>\n</Property>\n</Resource>\n";
    for (const std::string& forged :
         {end + resource("F", "F", "") + "rest", end + listEnd + list("F", "") + "rest",
          end + listEnd + "</Resource>\n</ResourceSet>\nrest"}) {
        const Scanned scanned =
            scan(ofPartitions(resource("P", "S-1", hosts(forged)) + resource("Q", "S-2", "")));
        EXPECT_THAT(scanned.events, testing::Contains("resource Q|S-2")) << forged;
        EXPECT_THAT(scanned.findings, testing::Not(testing::IsEmpty())) << forged;
        EXPECT_TRUE(scanned.complete) << forged;
    }
}

TEST(Scanner, TellsNameAndIdentifierApart)
{
    for (const std::string id : {"", "a\" uniqueId=\"b", "line\nfeed", "\n", "two\nline\nfeeds", "\">",
                                 "\">\n", "x\">\nx", "&amp;", "&", "&#10;"}) {
        for (const std::string name : {"Gadget", "\" uniqueId=\"", "say \"this\"", "a\nb", "\">\n", "a&b"}) {
            const Scanned scanned = scan(ofEnclosures(resource(name, id, property("SN", "L", "S"))));
            ASSERT_GT(scanned.events.size(), 5U);
            EXPECT_EQ(scanned.events[4], "resource " + name + "|" + id);
            EXPECT_EQ(scanned.events[5], "SN|L|S") << name << "|" << id;
            EXPECT_EQ(scanned.findings, Texts{});
        }
    }
}

TEST(Scanner, ANameAndAnIdentifierMayBeAllLineFeeds)
{
    const std::string feeds(100, '\n');
    EXPECT_THAT(scan(ofPartitions(resource(feeds, feeds, ""))).events,
                testing::Contains("resource " + feeds + "|" + feeds));
}

TEST(Scanner, AMendedTagNeedNotLookLikeItsIdentifier)
{
    const std::string text =
        ofEnclosures("<Resource displayName=\"a&#10;b\" uniqueId=\"x&#10;&quot;&#9;&amp;\">\nx\n\"\t&amp;\n"
                     "</Resource>\n");
    Input input("test.xml", text);
    Scanner scanner(input);
    const Event* event = &scanner.next();
    while (event->kind != Event::Kind::end && event->name != "a&#10;b")
        event = &scanner.next();
    EXPECT_EQ(event->id, "x&#10;&quot;&#9;&amp;");
    EXPECT_EQ(event->idLine, "x\n\"\t&amp;");
    EXPECT_EQ(scanner.next().kind, Event::Kind::resourceEnd);
    EXPECT_EQ(scanner.findings().size(), 0U);
}

// --- What has no place

/// Behind a list, where no value can hold the lines.
TEST(Scanner, LeavesOutWhatHasNoPlace)
{
    const std::vector<std::pair<std::string, std::string>> odd = {
        {"<Foo>\n", "\"<Foo>\""},
        {"\n", "\"\""},
        {"  </Resource>\n", "\"  </Resource>\""},
        {property("SN", "L", "S"), "the property \"SN\""},
        {"</ResourceSet>\n", "\"</ResourceSet>\""},
        {"</Resource>\n", "\"</Resource>\""},
        {"</ResourceList>\n", "\"</ResourceList>\""},
        {"<Property name=\"SN\" displayName=\"L\">\n", "\"<Property name=\"SN\" displayName=\"L\">\""},
        {"<Resource displayName=\"A\">\n", "\"<Resource displayName=\"A\">\""},
        {"<ResourceList displayName=\"A\"\n", "\"<ResourceList displayName=\"A\"\""},
    };
    for (const auto& [content, what] : odd) {
        const Scanned scanned = scan(ofSystem(list("Arrays", "") + content + list("Ranks", "")));
        EXPECT_EQ(inside(scanned.events), (Texts{"list Arrays", "/list", "list Ranks", "/list"})) << content;
        EXPECT_EQ(scanned.findings, Texts{"12: " + what + " has no place here and is left out"});
        EXPECT_TRUE(scanned.complete) << content;
    }
}

TEST(Scanner, APropertyStandsInAResourceOnce)
{
    const std::string twice = property("SN", "L", "1") + property("PN", "L", "2") + property("SN", "L", "3");
    const Scanned scanned = scan(ofSystem(
        list("Arrays", "") + list("Enclosures", property("SN", "L", "S") + resource("Gadget", "Q", twice))));
    EXPECT_EQ(inside(scanned.events),
              (Texts{"list Arrays", "/list", "list Enclosures", "resource Gadget|Q", "SN|L|1",
                     "PN|L|2</Value>\n</Property>\n<Property name=\"SN\" "
                     "displayName=\"L\">\nSN\n<Value type=\"string\">3",
                     "/resource", "/list"}));
    EXPECT_EQ(scanned.findings, (Texts{"13: the property \"SN\" has no place here and is left out",
                                       "25: the value of \"PN\" holds lines that look like the document's"}));
}

TEST(Scanner, FindsTheElementsBehindWrongNesting)
{
    const std::string open = "<Resource displayName=\"1\" uniqueId=\"1\">\n1\n";
    EXPECT_EQ(inside(scan(ofEnclosures(open + resource("2", "2", ""))).events),
              (Texts{"list Enclosures", "resource 1|1", "!/resource", "resource 2|2", "/resource", "/list"}));
    EXPECT_EQ(inside(scan(ofSystem(list("A", "") + "<ResourceList displayName=\"B\">\n")).events),
              (Texts{"list A", "/list", "list B", "!/list"}));
    EXPECT_EQ(inside(scan(ofSystem(list("A", "") + resource("1", "1", ""))).events),
              (Texts{"list A", "/list", "!list A", "resource 1|1", "/resource", "!/list"}));
    const std::string whole = ofSystem(list("A", ""));
    EXPECT_EQ(inside(scan(upTo(whole, "</Resource>") + "</ResourceSet>\n</com.orvik.inventory>\n").events),
              (Texts{"list A", "/list"}));
}

TEST(Scanner, AWrongIdentifierLineIsTold)
{
    const Scanned scanned =
        scan(ofEnclosures("<Resource displayName=\"A\" uniqueId=\"B\">\nC\n</Resource>\n"));
    EXPECT_THAT(scanned.events, testing::Contains("resource A|B"));
    EXPECT_EQ(scanned.findings, Texts{"11: the line behind this tag is not its identifier"});
    const Scanned missing = scan(ofEnclosures("<Resource displayName=\"A\" uniqueId=\"B\">\n" +
                                              property("SN", "L", "S") + "</Resource>\n"));
    EXPECT_EQ(inside(missing.events),
              (Texts{"list Enclosures", "resource A|B", "SN|L|S", "/resource", "/list"}));
    EXPECT_EQ(missing.findings, scanned.findings);
    EXPECT_TRUE(missing.complete);
}

TEST(Scanner, KeepsTheFirstFindingsAndCountsAll)
{
    std::string lines;
    for (int i = 0; i < 1000; ++i)
        lines += "x\n";
    const std::string text = ofSystem(list("Arrays", "") + lines);
    Input input("test.xml", text);
    Scanner scanner(input);
    while (scanner.next().kind != Event::Kind::end) {
    }
    EXPECT_EQ(scanner.findings().size(), Scanner::mostFindings);
    EXPECT_EQ(scanner.findingCount(), 1000U);
}

// --- Documents that end before their time

std::string wholeDocument()
{
    return ofEnclosures(resource("CEC", "C1", opened("C1-1") + opened("C1-2") + listEnd) +
                        enclosure({.id = "E1", .serial = "S", .location = "R-1"},
                                  drive("E1", {.slot = "-D1", .serial = "A"})));
}

size_t headSize(const std::string& text)
{
    return text.find("<Resource ");
}

TEST(Scanner, ACutDocumentGivesWhatItHasAndIsBalanced)
{
    const std::string text = wholeDocument();
    const Texts whole = scan(text).events;
    const size_t rootEndWithoutFeed = text.size() - 1;
    for (size_t length = headSize(text); length < rootEndWithoutFeed; ++length) {
        const Scanned scanned = scan(text.substr(0, length));
        EXPECT_FALSE(scanned.complete) << length;
        EXPECT_EQ(scanned.findings, Texts{}) << length;
        const auto cut = std::ranges::find(scanned.events, "cut");
        ASSERT_NE(cut, scanned.events.end());
        const auto before = cut - scanned.events.begin();
        EXPECT_TRUE(std::equal(scanned.events.begin(), cut, whole.begin(), whole.begin() + before)) << length;
        EXPECT_TRUE(std::all_of(cut + 1, scanned.events.end() - 1, [](const std::string& event) {
            return event == "!/list" || event == "!/resource";
        })) << length;
    }
    EXPECT_TRUE(scan(text.substr(0, rootEndWithoutFeed)).complete);
    EXPECT_EQ(scan(text.substr(0, rootEndWithoutFeed)).events, whole);
}

TEST(Scanner, ADocumentCutInItsHeadIsNone)
{
    const std::string text = wholeDocument();
    for (size_t length = 0; length < headSize(text); ++length)
        EXPECT_THROW(scan(text.substr(0, length)), Malformed) << length;
}

TEST(Scanner, AMendedDocumentSaysThatItWasCut)
{
    std::string text = wholeDocument();
    text.insert(text.find("</Resource>\n</ResourceList>\n</Resource>\n</ResourceList>\n"),
                "<?kord incomplete?>\n");
    const Scanned scanned = scan(text);
    EXPECT_FALSE(scanned.complete);
    EXPECT_EQ(scanned.findings, Texts{});
    EXPECT_THAT(scanned.events, testing::Contains("cut"));
}

// --- Bytes that are no document

TEST(Scanner, SaysWhatIsNoDocumentAndWhere)
{
    const std::string whole = ofSystem("");
    const auto replaced = [&](const std::string& part, const std::string& by) {
        std::string text = whole;
        return text.replace(text.find(part), part.size(), by);
    };
    const std::vector<std::pair<std::string, std::string>> none = {
        {"", "test.xml:1: the end stands where"},
        {"hello\n", "test.xml:1: \"hello\" stands where"},
        {replaced("?>\n", "?>\r\n"), "test.xml:1: \"<?xml"},
        {replaced("verion", "version"), "test.xml:2: "},
        {replaced("Hardware\" type", "Software\" type"), "test.xml:3: "},
        {replaced("1795268463.5", "now"), "test.xml:3: "},
        {std::string(100'000'000, '\0'), "test.xml:1: \"\\x00"},
    };
    for (const auto& [text, says] : none) {
        try {
            scan(text);
            ADD_FAILURE() << "is read without a word: " << says;
        } catch (const Malformed& fault) {
            EXPECT_THAT(fault.what(), testing::StartsWith(says));
            EXPECT_LT(std::string(fault.what()).size(), 300U);
        }
    }
}

TEST(Scanner, AnElementHasABound)
{
    const std::string start = upTo(ofSystem(""), "</Resource>");
    const size_t bound = 1U << 20U;
    const std::string value = start + "<Property name=\"SN\" displayName=\"L\">\nSN\n<Value type=\"string\">";
    EXPECT_THROW(scan(value + std::string(3 * bound, 'x'), bound), Malformed);
    EXPECT_THROW(scan(value + std::string(3 * bound, '\n'), bound), Malformed);
    EXPECT_THROW(scan(start + std::string(3 * bound, '\0'), bound), Malformed);
    EXPECT_NO_THROW(scan(ofSystem(property("SN", "L", std::string(bound / 2, 'x'))), bound));
}

TEST(Scanner, NestingHasABound)
{
    std::string deep;
    for (int i = 0; i < 40; ++i)
        deep += "<ResourceList displayName=\"L\">\n<Resource displayName=\"N\" uniqueId=\"I\">\nI\n";
    EXPECT_THROW(scan(ofSystem(deep)), Malformed);
}

TEST(Scanner, ReadsAcrossItsBlocks)
{
    // Values of many lengths put every kind of line across the end of a block.
    std::string content;
    Texts expected;
    for (size_t i = 0; content.size() < 3'000'000; ++i) {
        const std::string value(i * 37 % 1009, 'v');
        const std::string id = "D" + std::to_string(i);
        content += resource("Larkspur", id, property("SN", "Serial Number", value));
        expected.insert(expected.end(),
                        {"resource Larkspur|" + id, "SN|Serial Number|" + value, "/resource"});
    }
    Texts events = scan(ofEnclosures(content)).events;
    events.erase(events.begin(), events.begin() + 4);
    events.erase(events.end() - 3, events.end());
    EXPECT_TRUE(events == expected);
}

TEST(Scanner, HoldsABlockAndNotTheDocument)
{
    std::string content;
    while (content.size() < 5'000'000)
        content += resource("Larkspur", "D", property("SN", "Serial Number", "S"));
    const std::string text = ofEnclosures(content);
    Input input("test.xml", text);
    Scanner scanner(input);
    while (scanner.next().kind != Event::Kind::end) {
    }
    EXPECT_LE(scanner.held(), 600'000U);
}

// --- References

TEST(References, MeanTheirCharacterAndOthersThemselves)
{
    const auto meant = [](std::string_view text) {
        std::string scratch;
        return std::string(document::meant(text, scratch));
    };
    EXPECT_EQ(meant("a &amp; b"), "a & b");
    EXPECT_EQ(meant("&lt;&gt;&quot;&apos;"), "<>\"'");
    EXPECT_EQ(meant("&#65;&#x42;&#13;&#233;&#x20AC;&#x1F600;"), "AB\r\u00e9\u20ac\U0001F600");
    EXPECT_EQ(meant("&amp;amp;"), "&amp;");
    for (const std::string other :
         {"&", "&&", "&;", "&x;", "&amp", "&AMP;", "&#;", "&#x;", "&#0;", "&#1;", "&#X41;", "&#xD800;",
          "&#xFFFE;", "&#1114112;", "&#99999999999999999999;", "&#65", "&#6a;", "& amp;"})
        EXPECT_EQ(meant(other), other);
}

} // namespace
