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

/// Whatever an element holds, or is left out before it: the next one stands in its own line.
TEST(Scanner, CountsTheLinesOfWhatStandsBefore)
{
    const std::string looksSo = "x</Value>\n</Property>\ny";
    for (const std::string& content :
         {std::string(), resource("A", "B", ""), resource("a\nb", "c", ""), resource("a", "c\nd\n", ""),
          resource("a\n", "\n", property("SN", "L", "v\nw\n")),
          resource("A", "B", property("SN", "L", looksSo)),
          std::string("<Resource displayName=\"A\" uniqueId=\"B\">\nC\n</Resource>\n"),
          std::string("<Resource displayName=\"A\" uniqueId=\"B\">\n</Resource>\n"),
          std::string("<Resource displayName=\"A\" uniqueId=\"&#10;&#10;\">\n\n\n\n</Resource>\n"),
          std::string("x\n\n"), property("SN", "L", "v\nw"), list("Nested", "")}) {
        const std::string text = ofEnclosures(content + resource("Behind", "it", ""));
        const Scanned scanned = scan(text);
        const auto behind = std::ranges::find(scanned.events, "resource Behind|it");
        ASSERT_NE(behind, scanned.events.end()) << content;
        const auto before =
            text.begin() + static_cast<std::ptrdiff_t>(text.find("<Resource displayName=\"Behind"));
        EXPECT_EQ(scanned.lines[static_cast<size_t>(behind - scanned.events.begin())],
                  static_cast<uint64_t>(1 + std::count(text.begin(), before, '\n')))
            << content;
    }
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
    // Nor does another one where one may come again.
    const auto image = [](const std::string& value) {
        return property("S4", "Storage Facility Image MTMS", value);
    };
    const Scanned other = scan(ofPartitions(resource("P", "S-1", image("I") + level("1") + image("J"))));
    EXPECT_THAT(other.events, testing::Not(testing::Contains("S4|Storage Facility Image MTMS|J")));
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

/// The code stands in the tag and in the line behind it.
TEST(Scanner, APropertyWhoseCodesDifferIsNone)
{
    for (const std::string tag :
         {"name=\"PN\" displayName=\"SN\"", "name=\"PN\" displayName=\"Label\"",
          "name=\"Label\" displayName=\"PN\"", "name=\"SN\"", "name=\"\"", "name=\"SNdisplayName=\"Label\"",
          "name=\"SN\" displayName=\"Label\"/", "name=U2 displayName=\"Host Inventory\""}) {
        const std::string text =
            "<Property " + tag + ">\nSN\n<Value type=\"string\">v</Value>\n</Property>\n";
        const Scanned scanned = scan(ofSystem(list("A", "") + text + list("B", "")));
        EXPECT_EQ(inside(scanned.events), (Texts{"list A", "/list", "list B", "/list"})) << tag;
        EXPECT_EQ(scanned.findings.size(), 4U) << tag << ": each of its lines is left out";
    }
}

TEST(Scanner, ALabelMayBeEmpty)
{
    EXPECT_THAT(scan(ofEnclosures(resource("of no known kind", "X", property("SN", "", "v")))).events,
                testing::Contains("SN||v"));
}

TEST(Scanner, KnowsTheStylesheetLine)
{
    const std::string text = styled(ofSystem(""));
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

/// The value before a list's end or a further list of its kind is whole.
TEST(Scanner, ADrawersValuesEndWhereItsListsDo)
{
    const std::string value = property("S3", "Storage Facility MTMS", "F");
    const std::string card =
        resource("Orvik Non Volatile Control Card", "N", property("S4", "Storage Facility Image MTMS", "I"));
    const std::string cards = "<ResourceList displayName=\"Enclosures Partitions\">\n" +
                              resource("1", "1", list("Partition Resources", card));
    const Scanned scanned = scan(ofEnclosures(resource("CEC", "C1", value + cards + cards + listEnd) +
                                              resource("CEC", "C2", value + listEnd)));
    EXPECT_EQ(std::ranges::count(scanned.events, "S3|Storage Facility MTMS|F"), 2);
    EXPECT_EQ(std::ranges::count(scanned.events, "S4|Storage Facility Image MTMS|I"), 2);
    EXPECT_EQ(scanned.findings, Texts{});
    // Of several ends that look so it is the one before the list's.
    const std::string odd = "F</Value>\n</Property>\nG";
    EXPECT_THAT(
        scan(ofEnclosures(resource("CEC", "C", property("S3", "Storage Facility MTMS", odd) + listEnd)))
            .events,
        testing::Contains("S3|Storage Facility MTMS|" + odd));
    // Elsewhere such lines belong to the value.
    for (const std::string& other :
         {value + listEnd, cards + "<ResourceList displayName=\"Enclosures Partitions\">\n"})
        EXPECT_THAT(scan(ofEnclosures(resource("Larkspur", "L", other))).findings,
                    testing::Not(testing::IsEmpty()))
            << other;
}

TEST(Scanner, OnlyADrawersListsNeedNotPair)
{
    const auto lists = [](const std::string& first, const std::string& then) {
        return scan(ofEnclosures(resource("CEC", "C",
                                          "<ResourceList displayName=\"" + first + "\">\n" + list(then, ""))))
            .findings;
    };
    const Texts inside = {"14: a list begins inside the list before it, which ends here"};
    EXPECT_EQ(lists("Enclosures Partitions", "Enclosures Partitions"), Texts{});
    EXPECT_EQ(lists("Enclosures Partitions", "Arrays"), inside);
    EXPECT_EQ(lists("Arrays", "Enclosures Partitions"), inside);

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

/// In the lists of a processor complex partitions follow each other without the lists' ends.
TEST(Scanner, AValueEndsBeforeAListWithoutTheEndOfTheOneBeforeOnlyThere)
{
    const std::string shares = "Enclosures Partitions";
    const std::string looksSo =
        "x</Value>\n</Property>\n</Resource>\n<ResourceList displayName=\"" + shares + "\">\ny";
    const auto events = [&](const std::string& part, const std::string& name) {
        return scan(ofEnclosures(
                        resource(part, "C", list(name, resource("P", "P", property("S4", "L", looksSo))))))
            .events;
    };
    EXPECT_THAT(events("CEC", shares), testing::Contains("S4|L|x"));
    for (const auto& [part, name] : {std::pair("CEC", std::string("Arrays")), std::pair("Larkspur", shares),
                                     std::pair("Larkspur", std::string("Arrays"))})
        EXPECT_THAT(events(part, name), testing::Contains("S4|L|" + looksSo)) << part << ' ' << name;
}

TEST(Scanner, SaysThatAValueHoldsWhatLooksLikeTheDocument)
{
    EXPECT_EQ(scan(ofPartitions(resource("P", "S-1", hosts("x</Value>\n</Property>\ny")))).findings,
              Texts{"15: the value of \"U2\" holds lines that look like the document's"});
}

/// Where nothing that can follow a value comes at all, it ends where it first looks so, and so do those
/// behind it.
TEST(Scanner, AValueThatNothingFollowsEndsWhereItLooksSo)
{
    const size_t bound = 1U << 20U;
    for (const size_t lines : {size_t{1}, bound}) {
        std::string odd;
        for (size_t i = 0; i < lines; ++i)
            odd += "x\n";
        const std::string looksSo = property("SN", "L", "a</Value>\n</Property>\nb");
        const std::string end = resource("Q", "S-2", "");
        const std::string text = ofPartitions("<Resource displayName=\"P\" uniqueId=\"S-1\">\nS-1\n" +
                                              hosts("v") + odd + "</Resource>\n" + end);
        const Scanned scanned = scan(text, bound);
        EXPECT_EQ(inside(scanned.events), (Texts{"list Partitions", "resource P|S-1", "U2|Host Inventory|v",
                                                 "/resource", "resource Q|S-2", "/resource", "/list"}))
            << lines;
        EXPECT_EQ(scanned.findings.front(), "17: \"x\" has no place here and is left out");
        EXPECT_TRUE(scanned.complete);
        const Scanned behind =
            scan(ofPartitions(resource("P", "S-1", hosts("v") + odd) + resource("Q", "S-2", looksSo)), bound);
        EXPECT_EQ(std::ranges::count(behind.events, "SN|L|a"), lines == bound ? 1 : 0)
            << "a far end is none, a near one is";
    }
    // An end is far that comes behind a quarter of the bound.
    const std::string head =
        "<Property name=\"SN\" displayName=\"Serial Number\">\nSN\n<Value type=\"string\">";
    for (const size_t beyond : {0U, 1U}) {
        std::string value = "a</Value>\n</Property>\n";
        value += std::string(bound / 4 - head.size() - value.size() - 1 + beyond, 'x') + "\nb";
        const std::string text =
            ofEnclosures(resource("of no known kind", "D", property("SN", "Serial Number", value)));
        EXPECT_THAT(scan(text, bound).events,
                    testing::Contains("SN|Serial Number|" + (beyond == 0 ? value : std::string("a"))));
    }
    // Of a document that is cut, what stands behind may have been lost.
    const std::string whole = ofPartitions(resource("P", "S-1", hosts("v") + "x\n"));
    EXPECT_EQ(scan(upTo(whole, "x\n") + "x\n").events.at(5), "cut");
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
        for (const std::string name :
             {"", "Gadget", "\" uniqueId=\"", "say \"this\"", "a\nb", "\">\n", "a&b"}) {
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
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"x&#10;&quot;&#9;&amp;", "x\n\"\t&amp;"}, // tag, lines
        {"x&#10;", "x\n"},
        {"&#10;x", "\nx"},
        {"&#10;&#10;", "\n\n"},
        {"a&#10;&#10;b", "a\n\nb"},
        {"a&#10;b", "a&#10;b"},
        {"&lt;", "&lt;"},
        {"&quot;", "\""},
    };
    for (const auto& [tag, lines] : cases) {
        const std::string text = ofEnclosures("<Resource displayName=\"a&#10;b\" uniqueId=\"" + tag +
                                              "\">\n" + lines + "\n</Resource>\n");
        Input input("test.xml", text);
        Scanner scanner(input);
        const Event* event = &scanner.next();
        while (event->kind != Event::Kind::end && event->name != "a&#10;b")
            event = &scanner.next();
        EXPECT_EQ(event->id, tag);
        EXPECT_EQ(event->idLine, lines);
        EXPECT_EQ(scanner.next().kind, Event::Kind::resourceEnd);
        EXPECT_EQ(scanner.findings().size(), 0U) << tag;
    }
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
        {"<Resource displayName=\"A\" uniqueId=\"B\"\n", "\"<Resource displayName=\"A\" uniqueId=\"B\"\""},
        {"<Resource displayName=\">\n", "\"<Resource displayName=\">\""},
        {"<Resource displayName=\"\">\n", "\"<Resource displayName=\"\">\""},
        {"<ResourceList displayName=\"A\"\n", "\"<ResourceList displayName=\"A\"\""},
        {"<ResourceList displayName=\">\n", "\"<ResourceList displayName=\">\""},
        {"<?kord incomplete?>\n", "\"<?kord incomplete?>\""},
    };
    for (const auto& [content, what] : odd) {
        const Scanned scanned = scan(ofSystem(list("Arrays", "") + content + list("Ranks", "")));
        EXPECT_EQ(inside(scanned.events), (Texts{"list Arrays", "/list", "list Ranks", "/list"})) << content;
        EXPECT_EQ(scanned.findings, Texts{"12: " + what + " has no place here and is left out"});
        EXPECT_TRUE(scanned.complete) << content;
    }
}

/// A name's end belongs to it alone.
TEST(Scanner, ATagHasRoomForItsNameAndItsIdentifier)
{
    for (const std::string odd :
         {"<Resource displayName=\" uniqueId=\"X\">\nX\n", "<Resource displayName=\"A\n"}) {
        const Scanned scanned = scan(ofEnclosures(odd + resource("B", "C", "")));
        EXPECT_EQ(inside(scanned.events), (Texts{"list Enclosures", "resource B|C", "/resource", "/list"}))
            << odd;
        EXPECT_THAT(scanned.findings.at(0), testing::StartsWith("11: \"<Resource displayName=\"")) << odd;
    }
    // Names of several lines are short.
    const auto named = [](size_t length) {
        return scan(ofEnclosures(resource(std::string(length, 'n') + "\nm", "I", ""))).findings.empty();
    };
    EXPECT_TRUE(named(1001));
    EXPECT_FALSE(named(1002));
    EXPECT_THAT(scan(ofEnclosures(resource(std::string(5000, 'n'), "I", ""))).findings, testing::IsEmpty());
}

TEST(Scanner, NothingStandsOutsideTheManagedSystem)
{
    const std::string second = resource("T", "T", "");
    const Scanned before = scan(inventory("</Resource>\n</ResourceList>\n" + list("A", "") + "x\n" +
                                          property("SN", "L", "S") + resource("S", "S", "")));
    EXPECT_EQ(before.events, (Texts{"start 1795268463.5", "resource S|S", "/resource", "end"}));
    EXPECT_EQ(before.findings.size(), 6U);
    const Scanned behind = scan(inventory(resource("S", "S", "") + "</ResourceSet>\n" + second));
    EXPECT_EQ(behind.events, before.events);
    EXPECT_EQ(behind.findings.size(), 4U);
    EXPECT_TRUE(behind.complete);
}

TEST(Scanner, APropertyStandsInAResourceOnce)
{
    const std::string twice = property("SN", "L", "1") + property("PN", "L", "2") + property("SN", "L", "3");
    const Scanned scanned = scan(ofSystem(
        list("Arrays", "") + list("Enclosures", property("SN", "L", "S") + resource("Gadget", "Q", twice))));
    EXPECT_EQ(
        inside(scanned.events),
        (Texts{"list Arrays", "/list", "list Enclosures", "resource Gadget|Q", "SN|L|1",
               "PN|L|2</Value>\n</Property>\n" +
                   std::string("<Property name=\"SN\" displayName=\"L\">\nSN\n<Value type=\"string\">3"),
               "/resource", "/list"}));
    EXPECT_EQ(scanned.findings, (Texts{"13: the property \"SN\" has no place here and is left out",
                                       "25: the value of \"PN\" holds lines that look like the document's"}));
}

TEST(Scanner, FindsTheElementsBehindWrongNesting)
{
    const std::string open = "<Resource displayName=\"1\" uniqueId=\"1\">\n1\n";
    const std::string whole = ofSystem(list("A", ""));
    const std::string nested = list("B", resource("1", "1", list("C", "")));
    struct Case {
        std::string text;
        Texts events;
        Texts findings;
    };
    const std::vector<Case> cases = {
        {ofEnclosures(open + resource("2", "2", "")),
         {"list Enclosures", "resource 1|1", "!/resource", "resource 2|2", "/resource", "/list"},
         {"13: a resource begins inside the resource before it, which ends here"}},
        {ofSystem(list("A", "") + "<ResourceList displayName=\"B\">\n"),
         {"list A", "/list", "list B", "!/list"},
         {"13: a resource ends inside a list, which ends here"}},
        {ofSystem(list("A", "") + nested + resource("1", "1", "")),
         {"list A", "/list", "list B", "resource 1|1", "list C", "/list", "/resource", "/list", "!list B",
          "resource 1|1", "/resource", "!/list"},
         {"19: a resource begins behind its list, which begins again",
          "22: a resource ends inside a list, which ends here"}},
        {upTo(whole, "</Resource>") + "</ResourceSet>\n</com.orvik.inventory>\n",
         {"list A", "/list"},
         {"12: elements end here that have no end tags"}},
        {whole + "x", {"list A", "/list"}, {"15: there is more after the end, which is left out"}},
        {ofSystem(resource("1", "1", "") + list("A", "")),
         {"list A", "/list"},
         {"10: \"<Resource displayName=\"1\" uniqueId=\"1\">\" has no place here and is left out",
          "11: \"1\" has no place here and is left out",
          "12: \"</Resource>\" has no place here and is left out"}},
    };
    for (const Case& one : cases) {
        const Scanned scanned = scan(one.text);
        EXPECT_EQ(inside(scanned.events), one.events);
        EXPECT_EQ(scanned.findings, one.findings);
        EXPECT_TRUE(scanned.complete);
    }
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
    // A mended tag has one identifier.
    const Scanned two = scan(ofEnclosures(
        "<Resource displayName=\"A\" uniqueId=\"B\" uniqueId=\"x&#38;\">\nx&amp;\n</Resource>\n"));
    EXPECT_THAT(two.events, testing::Contains("resource A\" uniqueId=\"B|x&#38;"));
    EXPECT_EQ(two.findings, scanned.findings);
}

TEST(Scanner, ShowsTheStartOfWhatItLeavesOut)
{
    const auto shown = [](const std::string& odd) {
        return scan(ofSystem(list("A", "") + odd + '\n')).findings.at(0);
    };
    std::string wide;
    for (size_t i = 0; i < 60; ++i)
        wide += "\U0001D538";
    const std::string behind = "\" has no place here and is left out";
    EXPECT_EQ(shown(std::string(60, 'x')), "12: \"" + std::string(60, 'x') + behind);
    EXPECT_EQ(shown(std::string(61, 'x')), "12: \"" + std::string(57, 'x') + "..." + behind);
    EXPECT_EQ(shown(wide), "12: \"" + wide + behind);
    EXPECT_EQ(shown(wide + "x"), "12: \"" + wide.substr(0, std::size_t{57} * 4) + "..." + behind);
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
    // What the buffer holds behind the last byte must not pass for the rest of the last identifier's lines.
    for (const std::string& text :
         {wholeDocument(), ofPartitions(resource("P", std::string(300, '\n'), ""))}) {
        const Texts whole = scan(text).events;
        const size_t rootEndWithoutFeed = text.size() - 1;
        for (size_t length = headSize(text); length < rootEndWithoutFeed; ++length) {
            const Scanned scanned = scan(text.substr(0, length));
            EXPECT_FALSE(scanned.complete) << length;
            EXPECT_EQ(scanned.findings, Texts{}) << length;
            const auto cut = std::ranges::find(scanned.events, "cut");
            ASSERT_NE(cut, scanned.events.end());
            const auto before = cut - scanned.events.begin();
            EXPECT_TRUE(std::equal(scanned.events.begin(), cut, whole.begin(), whole.begin() + before))
                << length;
            EXPECT_TRUE(std::all_of(cut + 1, scanned.events.end() - 1, [](const std::string& event) {
                return event == "!/list" || event == "!/resource";
            })) << length;
        }
        EXPECT_TRUE(scan(text.substr(0, rootEndWithoutFeed)).complete);
        EXPECT_EQ(scan(text.substr(0, rootEndWithoutFeed)).events, whole);
    }
}

/// However much of it is read at once.
TEST(Scanner, ALastLineNeedsNoFeed)
{
    for (const size_t length : {size_t{1}, size_t{5000}}) {
        const std::string text = upTo(ofSystem(list("A", std::string(length, '\n'))), "</ResourceSet>");
        for (const std::string& end :
             {std::string("x\n</com.orvik.inventory>"), std::string("</com.orvik.inventory>")}) {
            const Scanned scanned = scan(text + end);
            const Scanned withFeed = scan(text + end + '\n');
            EXPECT_EQ(scanned.events, withFeed.events) << length << end;
            EXPECT_EQ(scanned.findings, withFeed.findings) << length << end;
            EXPECT_FALSE(scanned.complete);
        }
    }
}

TEST(Scanner, ACutDocumentLosesNothingBehindATagThatCannotBeRead)
{
    const std::string whole = ofPartitions("<Resource displayName=\"P\n" + resource("Q", "S-2", ""));
    const Scanned scanned = scan(upTo(whole, "S-2\n") + "S-2\n");
    EXPECT_EQ(inside(scanned.events),
              (Texts{"list Partitions", "resource Q|S-2", "cut", "!/resource", "!/list"}));
    EXPECT_THAT(scanned.findings.front(), testing::EndsWith("has no place here and is left out"));
    EXPECT_FALSE(scanned.complete);
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
    const auto mark = std::ranges::find(scanned.events, "cut");
    ASSERT_NE(mark, scanned.events.end());
    const auto at = static_cast<size_t>(mark - scanned.events.begin());
    EXPECT_EQ(scanned.events.at(at + 1), "/resource");
    EXPECT_EQ(scanned.lines.at(at + 1), scanned.lines.at(at) + 1);
}

/// Wherever it was cut: its end tags are written, and stand behind the mark.
TEST(Scanner, AMendedDocumentIsWhatWasCut)
{
    const std::string text = wholeDocument();
    const std::string mark = "<?kord incomplete?>\n";
    const std::string end = "</ResourceSet>\n</com.orvik.inventory>\n";
    for (size_t length = headSize(text); length <= text.find(end); length = text.find('\n', length) + 1) {
        const Scanned cut = scan(text.substr(0, length));
        const auto behind = std::ranges::find(cut.events, "cut");
        Texts events(cut.events.begin(), behind);
        std::string tags;
        for (auto event = behind; event != cut.events.end(); ++event) {
            if (*event == "!/list") tags += "</ResourceList>\n";
            if (*event == "!/resource") tags += "</Resource>\n";
            events.push_back(event->substr(event->starts_with('!') ? 1 : 0));
        }
        const auto at = text.begin() + static_cast<std::ptrdiff_t>(length);
        const auto line = static_cast<uint64_t>(1 + std::count(text.begin(), at, '\n'));
        if (cut.lines[static_cast<size_t>(behind - cut.events.begin())] != line)
            continue; // inside an element
        const Scanned mended = scan(text.substr(0, length) + mark + tags + end);
        EXPECT_EQ(mended.events, events) << length;
        EXPECT_EQ(mended.findings, Texts{}) << length;
        EXPECT_FALSE(mended.complete) << length;
    }
}

TEST(Scanner, AMarkWithMoreThanEndsBehindItIsNone)
{
    const std::string marked = ofSystem(list("A", "") + "<?kord incomplete?>\n");
    EXPECT_FALSE(scan(marked).complete);
    const Scanned more = scan(marked + "x");
    EXPECT_TRUE(more.complete);
    EXPECT_EQ(more.findings, (Texts{"12: \"<?kord incomplete?>\" has no place here and is left out",
                                    "16: there is more after the end, which is left out"}));
}

TEST(Scanner, AValueEndsBeforeAListThatTheMarkCuts)
{
    const std::string start = "<ResourceList displayName=\"Arrays\">\n";
    const std::string whole = ofPartitions(resource("P", "S-1", hosts("x") + start));
    const Scanned scanned = scan(whole.substr(0, whole.find(start) + start.size()) + "<?kord incomplete?>\n");
    EXPECT_THAT(scanned.events, testing::IsSupersetOf({"U2|Host Inventory|x", "list Arrays"}));
    EXPECT_FALSE(scanned.complete);
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
        {"", "test.xml:1: the end stands where \"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\" should"},
        {"hello\n",
         "test.xml:1: \"hello\" stands where \"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\" should"},
        {upTo(whole, "<ResourceSet"), "test.xml:3: the document ends before its first part"},
        {replaced("<ResourceSet", "<Set>\n"), "test.xml:3: \"<Set>\" is no start of a resource set"},
        {replaced("\"1795268463.5\"", "\""), "test.xml:3: \"<ResourceSet class="},
        {replaced(".5\">", ".5\""), "test.xml:3: \"<ResourceSet class="},
        {replaced("?>\n", "?>\r\n"), "test.xml:1: \"<?xml"},
        {replaced("verion", "version"), "test.xml:2: "},
        {replaced("Hardware\" type", "Software\" type"), "test.xml:3: "},
        {replaced("1795268463.5", "now"), "test.xml:3: "},
        {std::string().append(100'000'000, '\0'), "test.xml:1: \"\\x00"},
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
    EXPECT_EQ(Scanner::longestElement, 67'108'864U); // 64 MiB, where nothing else is asked for
    const std::string start = upTo(ofSystem(""), "</Resource>");
    const size_t bound = 1U << 20U;
    const std::string value = start + "<Property name=\"SN\" displayName=\"L\">\nSN\n<Value type=\"string\">";
    EXPECT_THROW(scan(value + std::string(3 * bound, 'x'), bound), Malformed);
    EXPECT_THROW(scan(value + std::string(3 * bound, '\n'), bound), Malformed);
    EXPECT_THROW(scan(start + std::string(3 * bound, '\0'), bound), Malformed);
    EXPECT_NO_THROW(scan(ofSystem(property("SN", "L", std::string(bound / 2, 'x'))), bound));
    const size_t block = bound / 4; // that is read beyond the bound
    EXPECT_THROW(scan(ofSystem(property("SN", "L", std::string(bound + block, 'x'))), bound), Malformed);
    const size_t around = property("SN", "L", "").size();
    const std::string longest = property("SN", "L", std::string(bound - around, 'x'));
    EXPECT_NO_THROW(scan(ofSystem(longest + property("PN", "L", std::string(bound / 2, 'x'))), bound));
    try {
        scan(value + std::string(3 * bound, 'x'), bound);
    } catch (const Malformed& fault) {
        EXPECT_STREQ(fault.what(), "test.xml:10: an element is longer than 1 MiB");
    }
}

TEST(Scanner, NestingHasABound)
{
    // Documents are 7 elements deep; the managed system is one of these, its lists and their parts are the
    // rest.
    const auto nested = [](size_t pairs) {
        std::string content;
        for (size_t i = 0; i < pairs; ++i)
            content = list("L", resource("N", "I", content));
        return scan(ofSystem(content)).findings;
    };
    EXPECT_EQ(nested(15), Texts{});
    try {
        nested(16);
        ADD_FAILURE();
    } catch (const Malformed& fault) {
        EXPECT_STREQ(fault.what(), "test.xml:56: elements are nested deeper than in any document");
    }
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

/// Lines of which the last block holds a byte or none.
TEST(Scanner, ReadsALastLineAcrossItsBlocks)
{
    constexpr size_t block = size_t{256} << 10U;
    const std::string odd = "14: \"odd\" has no place here and is left out";
    const std::string empty = "15: \"\" has no place here and is left out";
    for (const auto& [end, findings] : {std::pair("odd\n", Texts{odd}), {"odd\n\n", {odd, empty}}}) {
        const auto cut = [&end = end](size_t length) {
            const std::string name(length, 'n');
            return upTo(ofEnclosures(resource(name, "D", "")), "</ResourceList>") + end;
        };
        for (size_t size = block - 3; size < block + 4; ++size)
            EXPECT_EQ(scan(cut(size - cut(0).size())).findings, findings) << size;
    }
}

/// Lines that begin like the document's, each byte of them at the end of a block once.
TEST(Scanner, TellsWhatALineIsAcrossItsBlocks)
{
    const std::string like = "a</Value>\n</Propertx>\n";
    std::string lines;
    while (lines.size() < 300'000)
        lines += like;
    for (size_t from = 0; from < like.size(); ++from) {
        const std::string value = lines.substr(from);
        const Scanned scanned =
            scan(ofEnclosures(resource("of no known kind", "D", property("DS", "System VPD", value))));
        EXPECT_THAT(scanned.events, testing::Contains("DS|System VPD|" + value)) << from;
        EXPECT_EQ(scanned.findings, Texts{}) << from;
    }
}

TEST(Scanner, ReadsIdentifiersAcrossItsBlocks)
{
    std::string content;
    Texts expected;
    for (size_t i = 0; content.size() < 3'000'000; ++i) {
        const std::string id = "D" + std::to_string(i) + '\n' + std::string(900, 'i');
        content += resource("L", id, "");
        expected.push_back("resource L|" + id);
    }
    Texts events = scan(ofEnclosures(content)).events;
    std::erase_if(events, [](const std::string& event) { return !event.starts_with("resource L"); });
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
    EXPECT_EQ(meant("&#x4a;&#x4F;&#xe9;&#xfF;"), "JO\u00e9\u00ff");
    EXPECT_EQ(meant("&amp;amp;"), "&amp;");
    for (const std::string other :
         {"&", "&&", "&;", "&x;", "&amp", "&AMP;", "&#;", "&#x;", "&#0;", "&#1;", "&#X41;", "&#xD800;",
          "&#xFFFE;", "&#1114112;", "&#99999999999999999999;", "&#65", "&#6a;", "& amp;"})
        EXPECT_EQ(meant(other), other);
}

} // namespace
