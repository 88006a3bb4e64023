// Mended documents: what changes and what does not.

#include "document/mend.h"
#include "writing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace kordTest;

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
const std::string listEnd = "</ResourceList>\n";

TEST(Mend, ADocumentWithNothingWrongComesOutAsItIs)
{
    const std::string level =
        property("LE", "LIC VRMF", "5.4 > 5.3, 'it' \"is\" &amp; &#233; \u00e9 \U0001F600 ]] >\t\n x");
    for (const std::string& text :
         {ofSystem(""), partition(level), ofEnclosures(resource("A &lt; B", "x&quot;", "")),
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
    const std::string whole = ofEnclosures(
        resource("CEC", "C\n\"1\"",
                 listStart + resource("1\n2", "x<y", "") + listStart + resource("2", "", "") + listEnd) +
        resource("\"&\"", "&", property("SN", "Serial & Number", "a\r\n]]>\xFF</Value>\n</Property>\n<")));
    for (size_t length = whole.find("<Resource "); length <= whole.size(); ++length) {
        const std::string once = mended(whole.substr(0, length));
        EXPECT_EQ(mended(once), once) << length;
    }
}

} // namespace
