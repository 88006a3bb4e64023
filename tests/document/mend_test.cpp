// Mended documents: what changes and what does not.

#include "consoleRun.h"
#include "document/kind.h"
#include "document/mend.h"
#include "mendedDocument.h"
#include "pattern.h"
#include "process.h"
#include "writing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace
{

using namespace kordTest;
using Texts = std::vector<std::string>;

std::string mended(const std::string& text)
{
    document::Input input("test.xml", text);
    document::Scanner scanner(input);
    document::Completeness completeness;
    std::string xml;
    document::mend(scanner, completeness, [&](std::string_view piece) { xml += piece; });
    return xml;
}

std::string partition(const std::string& content)
{
    return ofPartitions(resource("P", "S-1", content));
}

const std::string listStart = "<ResourceList displayName=\"Enclosures Partitions\">\n";

TEST(Mend, ADocumentWithNothingWrongComesOutAsItIs)
{
    const std::string level =
        property("LE", "LIC VRMF", "5.4 > 5.3, 'it' \"is\" &amp; &#233; \u00e9 \U0001F600 ]] >\t\n x");
    for (const std::string& text : {ofSystem(""), styled(ofSystem("")), partition(level),
                                    ofEnclosures(resource("A &lt; B", "x&quot;", "")),
                                    ofEnclosures(enclosure({.id = "E", .serial = "S", .location = "R"},
                                                           drive("E", {.slot = "-D1", .serial = "1"})))}) {
        EXPECT_EQ(mended(text), text);
    }
}

TEST(Mend, TheHostsGetTheirQuotationMarks)
{
    const std::string raw = partition(hosts("web=2,"));
    std::string expected = raw;
    expected.replace(expected.find("name=U2"), 7, "name=\"U2\"");
    EXPECT_EQ(mended(raw), expected);
}

TEST(Mend, ADrawersListsAreEndedWhereItsPartitionsEnd)
{
    const std::string one = resource("1", "1", "");
    const std::string two = resource("2", "2", "");
    EXPECT_EQ(mended(ofEnclosures(resource("CEC", "C", listStart + one + listStart + two + listEnd) +
                                  resource("CEC", "D", listEnd))),
              ofEnclosures(resource("CEC", "C", listStart + one + listEnd + listStart + two + listEnd) +
                           resource("CEC", "D", "")));
}

struct Text {
    std::string raw;
    std::string mended;
};

TEST(Mend, EscapesWhatIsNoText)
{
    const std::string none = "\uFFFD";
    const std::vector<Text> texts = {
        {"a & b", "a &amp; b"},
        {"&amp; &lt; &gt; &quot; &apos; &#65; &#x41;", "&amp; &lt; &gt; &quot; &apos; &#65; &#x41;"},
        {"&amp &x; &#0; &#x1F; &#xD800; &#; &;",
         "&amp;amp &amp;x; &amp;#0; &amp;#x1F; &amp;#xD800; &amp;#; &amp;;"},
        {"<b>", "&lt;b>"},
        {"]]>", "]]&gt;"},
        {"]]]>>", "]]]&gt;>"},
        {"<![CDATA[x]]>", "&lt;![CDATA[x]]&gt;"},
        {"<!-- x -->", "&lt;!-- x -->"},
        {"<?x y?>", "&lt;?x y?>"},
        {"\r\n\r", "&#13;\n&#13;"},
        {"\t\n", "\t\n"},
        {std::string("\0\1\f\v\x1b\x7f", 6), none + none + none + none + none + "\x7f"},
        {"\xFF\xC0\x80", none + none + none},
        {"\xED\xA0\x80", none + none + none},
        {"\xF0\x9F\x98", none},
        {"\xF0\x9F\x98x", none + "x"},
        {"\xF4\x90\x80\x80", none + none + none + none},
        {"\xE2\x28\xA1", none + "(" + none},
        {"\uFFFE\uFFFF\uFFFD", none + none + none},
        {"\xEF\xBB\xBF", "\xEF\xBB\xBF"},
        {"\u0080\u202E\U0010FFFF", "\u0080\u202E\U0010FFFF"},
        {"x</Value>\n</Property>\ny", "x&lt;/Value>\n&lt;/Property>\ny"},
    };
    for (const Text& text : texts)
        EXPECT_EQ(mended(partition(property("LE", "LIC VRMF", text.raw))),
                  partition(property("LE", "LIC VRMF", text.mended)));
}

TEST(Mend, EscapesWhatEndsAnAttribute)
{
    const std::string raw = ofEnclosures(resource("a \"b\" <c> & ]]>", "x\n\ty\r\"<>", ""));
    EXPECT_EQ(mended(raw),
              ofEnclosures("<Resource displayName=\"a &quot;b&quot; &lt;c> &amp; ]]>\" "
                           "uniqueId=\"x&#10;&#9;y&#13;&quot;&lt;>\">\nx\n\ty&#13;\"&lt;>\n</Resource>\n"));
}

TEST(Mend, ACutDocumentIsEndedAndSaysSo)
{
    const std::string whole =
        ofEnclosures(resource("Larkspur", "L", property("S3", "Storage Facility MTMS", "F")));
    const std::string cut = whole.substr(0, whole.find("<Value", whole.find("Larkspur")));
    EXPECT_EQ(mended(cut), ofEnclosures(resource("Larkspur", "L", "<?kord incomplete?>\n")));
}

TEST(Mend, MendingAgainChangesNothing)
{
    const std::string reference = mended(ofEnclosures(resource("A", "\"x&#10;y\"\n&#10;", "")));
    EXPECT_EQ(mended(reference), reference);
    const std::string whole = ofEnclosures(
        resource("CEC", "C\n\"1\"",
                 listStart + resource("1\n2", "x<y", "") + listStart + resource("2", "", "") + listEnd) +
        resource("\"&\"", "&", property("SN", "Serial & Number", "a\r\n]]>\xFF</Value>\n</Property>\n<")));
    for (size_t length = whole.find("<Resource "); length <= whole.size(); ++length) {
        const std::string once = mended(whole.substr(0, length));
        EXPECT_EQ(mended(once), once) << length;
    }
}

// --- The schema, and what parsers of XML make of mended documents

Texts enumerated(const std::string& schema, const std::string& type)
{
    const size_t from = schema.find("<xs:simpleType name=\"" + type + '"');
    const std::string part = schema.substr(from, schema.find("</xs:simpleType>", from) - from);
    static const Pattern value("<xs:enumeration value=\"([^\"]*)\"");
    Texts values;
    for (const Pattern::Match& match : value.all(part))
        values.push_back(match[1]);
    return values;
}

TEST(Schema, KnowsTheWordsOfTheTableOfParts)
{
    const std::string schema =
        kordTest::readFile(KORD_SOURCE_DIR "/document/schema/kord-document.xsd").value();
    std::set<std::string> codes;
    std::set<std::string> labels;
    std::set<std::string> lists;
    for (const document::KindRow& kind : document::kinds) {
        if (!kind.list.empty()) lists.emplace(kind.list);
        for (const document::PropertyRow& property : kind.properties) {
            codes.emplace(property.code);
            if (property.order == document::Order::reversed) labels.emplace(property.label);
        }
    }
    EXPECT_THAT(enumerated(schema, "KnownCode"), testing::UnorderedElementsAreArray(codes));
    EXPECT_THAT(enumerated(schema, "KnownLabel"), testing::UnorderedElementsAreArray(labels));
    EXPECT_THAT(enumerated(schema, "KnownList"), testing::UnorderedElementsAreArray(lists));
}

TEST(Mend, EveryDocumentCutAnywhereIsValid)
{
    const std::string whole = ofEnclosures(
        resource("CEC", "C",
                 listStart + resource("1\n2", "\"1\"", "") + listStart + resource("2", "", "") + listEnd) +
        resource("CEC", "D", listEnd) +
        enclosure({.id = "E", .serial = "<&>", .location = "R"},
                  drive("E", {.slot = "\n", .serial = "\xFF"})));
    for (size_t length = whole.find("<Resource "); length <= whole.size(); ++length)
        ASSERT_EQ(mendDocument(whole.substr(0, length)).faults, Texts{}) << length;
}

/// Documents in which lines are lost, come twice or change places.
TEST(Mend, EveryDocumentInDisorderIsValid)
{
    const std::string whole =
        ofEnclosures(resource("CEC", "C", listStart + resource("1", "1", "") + listEnd) +
                     resource("Quay", "Q", property("S3", "L", "1") + property("DS", "L", "2")));
    const Texts lines = splitLines(whole);
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        Texts changed = lines;
        for (size_t changes = 1 + random() % 4; changes > 0; --changes) {
            const size_t at = 4 + random() % (changed.size() - 4);
            const size_t other = 4 + random() % (changed.size() - 4);
            switch (random() % 3) {
            case 0:
                changed.erase(changed.begin() + static_cast<std::ptrdiff_t>(at));
                break;
            case 1:
                changed.insert(changed.begin() + static_cast<std::ptrdiff_t>(at), changed[other]);
                break;
            default:
                std::swap(changed[at], changed[other]);
            }
        }
        std::string text;
        for (const std::string& line : changed)
            text += line + '\n';
        Texts faults = mendDocument(text).faults;
        // What the text lines say, no schema can see.
        std::erase_if(faults, [](const std::string& fault) {
            return fault.ends_with("is not repeated") || fault == "changed although nothing was wrong";
        });
        ASSERT_EQ(faults, Texts{}) << text;
    }
}

} // namespace
