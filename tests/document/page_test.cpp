// The page as text; tests/tool/browser_test.py opens it in a browser.

#include "document/json.h"
#include "document/page.h"
#include "document/reader.h"
#include "document/rows.h"
#include "parseJson.h"
#include "pattern.h"
#include "writing.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

namespace
{

using namespace kordTest;
using document::Document;
using document::Kind;
using nlohmann::json;

const std::string expectedDocuments = std::string(KORD_SOURCE_DIR) + "/tests/runs/expected/";

const std::string dataStart = R"(<script type="application/json" id="data">)";

/// What stands between the data's start and the next "</script>", which is where a browser ends it.
std::string dataOf(const std::string& page)
{
    const size_t start = page.find(dataStart) + dataStart.size();
    return page.substr(start, page.find("</script>", start) - start);
}

size_t count(const std::string& text, const std::string& part)
{
    size_t found = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

/// Reads the data as the page's script does.
class PageReader
{
public:
    explicit PageReader(const std::string& page) : data(parseJson(dataOf(page)))
    {
        for (const json& kind : data["kinds"]) {
            for (size_t row = 0; row < kind["rows"]; ++row)
                parts.push_back({&kind, row});
        }
    }

    [[nodiscard]] size_t first(const std::string& word) const
    {
        size_t part = 0;
        while (kind(part)["word"] != word)
            ++part;
        return part;
    }

    [[nodiscard]] size_t count() const { return parts.size(); }
    [[nodiscard]] const json& kind(size_t part) const { return *parts.at(part).first; }
    [[nodiscard]] bool isOld(size_t part) const
    {
        return parts.at(part).second >= kind(part)["rows"].get<size_t>() - kind(part)["old"].get<size_t>();
    }

    [[nodiscard]] json own(size_t part, const std::string& name) const
    {
        return cell(kind(part)[name], parts.at(part).second);
    }

    [[nodiscard]] json value(size_t part, const std::string& name) const
    {
        return cell(kind(part)["values"][column(part, name)], parts.at(part).second);
    }

    [[nodiscard]] std::string id(size_t part) const { return text(part, own(part, "id")); }

    [[nodiscard]] std::vector<std::vector<std::string>> properties(size_t part) const
    {
        std::vector<std::vector<std::string>> list;
        for (const json& property : data["shapes"][own(part, "shape").get<size_t>()])
            list.push_back({property[0], property[1], text(part, property[2])});
        return list;
    }

    /// The columns, by kind and name, that texts of the parts are put together from.
    [[nodiscard]] std::set<std::string> columnsInTexts() const
    {
        std::set<std::string> found;
        for (size_t part = 0; part < count(); ++part) {
            std::vector<json> patterns = {own(part, "id")};
            for (const json& property : data["shapes"][own(part, "shape").get<size_t>()])
                patterns.push_back(property[2]);
            for (const json& pattern : patterns) {
                for (const json& piece : data["patterns"][pattern.get<size_t>()]) {
                    if (!piece.is_number() || piece < 0) continue;
                    const json& column = kind(part)["columns"][piece.get<size_t>()];
                    found.insert(kind(part)["word"].get<std::string>() + '.' + column[0].get<std::string>());
                }
            }
        }
        return found;
    }

    json data;

private:
    [[nodiscard]] size_t column(size_t part, const std::string& name) const
    {
        size_t at = 0;
        while (kind(part)["columns"][at][0] != name)
            ++at;
        return at;
    }

    static json cell(const json& column, size_t row)
    {
        const json& values = column[0];
        const std::string digits = column[1];
        if (values.size() == 1) return values[0];
        if (digits.empty()) return values[row];
        size_t width = 1;
        for (size_t most = 64; most < values.size(); most *= 64)
            ++width;
        size_t index = 0;
        for (const char digit : digits.substr(row * width, width))
            index = index * 64 + alphabet.find(digit);
        return values[index];
    }

    [[nodiscard]] std::string text(size_t part, const json& pattern) const
    {
        std::string text;
        for (const json& piece : data["patterns"][pattern.get<size_t>()]) {
            if (piece.is_string())
                text += piece.get<std::string>();
            else if (piece == -1)
                text += id(own(part, "parent"));
            else if (piece == -2)
                text += id(part);
            else if (piece == -3)
                text += own(part, "name");
            else
                text += textOf(cell(kind(part)["values"][piece.get<size_t>()], parts.at(part).second));
        }
        return text;
    }

    static std::string textOf(const json& value)
    {
        return value.is_string() ? value.get<std::string>() : value.dump();
    }

    static constexpr std::string_view alphabet =
        "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-_";
    std::vector<std::pair<const json*, size_t>> parts;
};

/// As JSON carries it.
std::string inUtf8(std::string_view text)
{
    return parseJson(document::quote(text));
}

/// Every identifier and every property that the page tells are those of the document.
void expectTheDocument(const Document& document)
{
    const PageReader page(document::page(document));
    size_t part = 0;
    for (const document::KindRow& row : document::kinds) {
        if (row.kind == Kind::enclosurePartition) continue;
        for (const document::Row& expected : document::rowsOf(document, std::vector{row.kind})) {
            ASSERT_LT(part, page.count());
            ASSERT_EQ(page.kind(part)["singular"], row.singular);
            const bool host = row.kind == Kind::host;
            ASSERT_EQ(page.id(part), inUtf8(host ? expected.host.description : expected.part->id));
            ASSERT_EQ(page.own(part, "listed"), expected.also.size() + 1);
            ASSERT_EQ(page.own(part, "name"), inUtf8(host ? expected.host.description : expected.part->name));
            ASSERT_EQ(page.own(part, "list"), inUtf8(host ? "" : expected.part->list));
            std::vector<std::vector<std::string>> properties;
            for (const document::Property& property : expected.part->properties)
                properties.push_back(
                    {inUtf8(property.code()), inUtf8(property.label()), inUtf8(property.value)});
            if (!host) {
                ASSERT_EQ(page.properties(part), properties) << page.id(part);
            }
            ++part;
        }
    }
    EXPECT_EQ(part, page.count());
    for (const json& kind : page.data["kinds"]) {
        const auto row = std::ranges::find(document::kinds, kind["singular"], &document::KindRow::singular);
        ASSERT_NE(row, document::kinds.end()) << kind["singular"];
        EXPECT_EQ(kind["word"], row->word);
        EXPECT_EQ(kind["plural"], row->plural);
        EXPECT_EQ(kind["counted"], row->counted ? 1 : 0);
    }
}

TEST(Page, TellsEveryIdentifierAndPropertyOfTheDocument)
{
    for (const std::string name : {"facility", "small"})
        expectTheDocument(document::readFile(expectedDocuments + name + ".xml"));
    const auto level = [](const std::string& running) { return property("LE", "LIC VRMF", running); };
    expectTheDocument(parse(ofPartitions(resource("P", "P1", level("5.1") + level("5.2") + level("5.1")))));
    const std::string shelf = "U1.AB1";
    const auto odd = [&](const std::string& id, const std::string& space) {
        return resource("OSK Physical Disk Drive", id,
                        property("R2", "Rack", "007") + property("SN", "Serial Number", "007") +
                            property("PN", "Part Number", "007") + property("DP", "Disk", space) +
                            property("XX", "", "") + property("YL", "Place", id));
    };
    expectTheDocument(parse(ofEnclosures(enclosure(
        {.id = shelf, .serial = "1", .location = "R-1"},
        odd(shelf + "-D007",
            "DI=,DM=a,b,DC=0146MB,DR=-0,DS=9223372036854775807,AS=1,AP=1,IT=x,ST=9007199254740993") +
            odd("-D1", "DI=DI=,DM=\xFF\xE2,DC=1GB") + odd("elsewhere-D1-D2", "") + odd("", "DI=1")))));
}

/// Whether the property that a column is of, or else the part's identifier, holds the column's value as it
/// stands in the page.
bool standsInAText(const document::Row& row, document::Column column, document::Values& values)
{
    const document::Value value = values.of(row, column);
    const bool isNumber = column.type == document::Type::number;
    column.type = document::Type::text;
    const document::Value text = values.of(row, column);
    const auto* const view = std::get_if<std::string_view>(&text);
    if (view == nullptr) return false;
    const auto* const number = std::get_if<int64_t>(&value);
    if (isNumber && (number == nullptr || std::to_string(*number) + std::string(column.source.unit) != *view))
        return false; // "007" is told as 7
    const bool isOfId = column.source.from == document::From::idEnd;
    const std::string_view around = isOfId ? row.part->id : row.part->value(column.source.code);
    return around.find(*view) != std::string_view::npos;
}

/// What is told of a part in a column is not told again in the texts that it stands in.
TEST(Page, PutsTextsTogetherFromColumns)
{
    using document::From;
    const std::set<From> inTexts = {From::property, From::around, From::end, From::idEnd, From::item};
    const Document document = document::readFile(expectedDocuments + "facility.xml");
    document::Values values(document);
    std::set<std::string> expected;
    for (const document::KindRow& kind : document::kinds) {
        if (kind.kind == Kind::host) continue; // a text of its partition
        for (const document::Row& row : document::rowsOf(document, std::vector{kind.kind})) {
            for (const document::Column* column : document::columnsOf(kind.kind)) {
                if (inTexts.contains(column->source.from) && standsInAText(row, *column, values))
                    expected.insert(std::string(kind.word) + '.' + std::string(column->name));
            }
        }
    }
    EXPECT_GT(expected.size(), 100);
    const PageReader page(document::page(document));
    EXPECT_EQ(page.columnsInTexts(), expected);
    // Nor is the identifier that a part's own begins with.
    for (const char* const inside : {"partition", "storageEnclosure", "drive"}) {
        const size_t part = page.first(inside);
        const bool begins = page.id(part).starts_with(page.id(page.own(part, "parent")));
        const json& first = page.data["patterns"][page.own(part, "id").get<size_t>()][0];
        EXPECT_EQ(first == -1, begins) << inside;
        EXPECT_EQ(begins, page.kind(part)["word"] != "storageEnclosure");
    }
}

TEST(Page, TellsOnceWhatAllRowsHave)
{
    const PageReader page(document::page(document::readFile(expectedDocuments + "facility.xml")));
    size_t alike = 0;
    for (const json& kind : page.data["kinds"]) {
        if (kind["rows"] == 0) continue;
        std::vector<json> columns(kind["values"].begin(), kind["values"].end());
        for (const char* const own : {"name", "list", "parent", "id", "shape", "listed"})
            columns.push_back(kind[own]);
        for (const json& column : columns) {
            if (column.is_null() || column[0].size() > 1) continue;
            EXPECT_EQ(column[1], "") << kind["word"] << column;
            alike += kind["rows"] > 1 ? 1 : 0;
        }
    }
    EXPECT_GT(alike, 0);
}

TEST(Page, TellsColumnsAndWhatIsAroundAPart)
{
    const PageReader page(document::page(document::readFile(expectedDocuments + "facility.xml")));
    const size_t drive = page.first("drive");
    EXPECT_EQ(page.value(drive, "rack"), 1);
    EXPECT_EQ(page.value(drive, "slot"), 1);
    EXPECT_EQ(page.value(drive, "firmware"), "T0A4");
    EXPECT_EQ(page.value(drive, "capacity_mb"), 73400);
    EXPECT_EQ(page.value(drive, "partitions"), json::array({"9999-B2C-7ABCD12-1"}));
    EXPECT_EQ(page.id(page.own(drive, "parent")), "U1234.5X6.AB100001");
    EXPECT_EQ(page.kind(page.own(drive, "parent"))["word"], "storageEnclosure");
    EXPECT_EQ(page.own(page.first("system"), "parent"), -1);
    EXPECT_EQ(page.data["changes"], nullptr);
}

/// A part that stands in the document twice is one row, and so is what each of them holds.
TEST(Page, TellsWhatIsAroundAPartInAnyOfItsPlaces)
{
    const auto shelf = [](const std::string& slot) {
        return enclosure({.id = "E", .serial = "S", .location = "R-1"},
                         drive("E", {.slot = slot, .serial = slot}));
    };
    const PageReader page(document::page(parse(ofEnclosures(shelf("-D1") + shelf("-D2")))));
    const size_t first = page.first("drive");
    EXPECT_EQ(page.own(page.first("storageEnclosure"), "listed"), 2);
    for (const size_t drive : {first, first + 1})
        EXPECT_EQ(page.own(drive, "parent"), page.first("storageEnclosure"));
}

TEST(Page, TellsWhatTheDocumentIs)
{
    Document document = parse(ofEnclosures("odd\n"));
    document.name = "nightly.xml";
    const json data = PageReader(document::page(document)).data;
    EXPECT_EQ(data["system"], "SYSTEM-1");
    EXPECT_EQ(data["timestamp"], "1795268463.5");
    EXPECT_EQ(data["source"], "nightly.xml");
    EXPECT_EQ(data["missing"], json({"the partitions"}));
    EXPECT_EQ(data["findingCount"], 1);
    EXPECT_EQ(data["findings"], json({"line 11: \"odd\" has no place here and is left out"}));
}

TEST(Page, TellsPlacesWithoutAPart)
{
    const std::string none = resource("Fan Sense Card", "", "");
    const std::string shelf = enclosure({.id = "U1", .serial = "1", .location = "R-1"}, none + none);
    const PageReader page(document::page(parse(ofEnclosures(shelf))));
    const size_t around = page.first("storageEnclosure");
    const json place = json::array({"fanSenseCard", around});
    EXPECT_EQ(page.data["absent"], json::array({place, place}));
}

/// A script's numbers are exact up to 53 bits.
TEST(Page, TellsANumberThatAScriptCannotHoldAsAText)
{
    const std::vector<std::pair<std::string, json>> cases = {{"9007199254740991", 9007199254740991},
                                                             {"9007199254740992", "9007199254740992"},
                                                             {"-9007199254740991", -9007199254740991},
                                                             {"-9007199254740992", "-9007199254740992"}};
    for (const auto& [number, told] : cases) {
        const std::string space = property("DP", "Disk Space Characteristics", "DC=" + number + "MB");
        const PageReader page(
            document::page(parse(ofEnclosures(resource("OSK Physical Disk Drive", "U", space)))));
        EXPECT_EQ(page.value(page.first("drive"), "capacity_mb"), told) << number;
    }
}

/// Drives that differ in what real drives differ in.
std::string drives(size_t count)
{
    std::string text;
    for (size_t shelf = 0; shelf * 250 < count; ++shelf) {
        const std::string id = "U1234.5X6.AB" + std::to_string(100'000 + shelf);
        std::string inside;
        for (size_t slot = 1; slot <= std::min<size_t>(250, count - shelf * 250); ++slot)
            inside += drive(id, {.slot = "-P1-D" + std::to_string(slot),
                                 .serial = "WK" + std::to_string(10'000'000 + shelf * 250 + slot)});
        text += enclosure(
            {.id = id, .serial = std::to_string(shelf), .location = "R-" + std::to_string(shelf)}, inside);
    }
    return ofEnclosures(text);
}

TEST(Page, IsAtMost120BytesForADrive)
{
    constexpr size_t count = 10'000;
    const size_t empty = document::page(parse(ofEnclosures(""))).size();
    const size_t full = document::page(parse(drives(count))).size();
    EXPECT_GT(full, empty + count * 10); // their serial numbers alone
    EXPECT_LE(full, empty + count * 120);
}

/// Enclosures in a document that lacks nothing.
Document complete(const std::string& enclosures)
{
    return parse(
        ofSystem(list("Enclosures", enclosures) + list("Partitions", resource("Tarn01", "SYSTEM-1-1", ""))));
}

TEST(Page, OfTwoDocumentsTellsWhatIsGone)
{
    const auto shelf = [](const std::string& inside) {
        return complete(enclosure({.id = "U1", .serial = "1", .location = "R-1"}, inside));
    };
    const std::string stays = drive("U1", {.slot = "-D1", .serial = "A"});
    const Document before = shelf(stays + drive("U1", {.slot = "-D2", .serial = "B"}));
    const Document after = shelf(stays + drive("U1", {.slot = "-D3", .serial = "C"}));
    const PageReader page(document::page(document::diff(before, after)));
    const size_t first = page.first("drive");
    EXPECT_EQ(page.kind(first)["rows"], 3);
    EXPECT_EQ(page.kind(first)["old"], 1);
    EXPECT_EQ(page.id(first + 1), "U1-D3");
    EXPECT_FALSE(page.isOld(first + 1));
    EXPECT_EQ(page.id(first + 2), "U1-D2");
    EXPECT_TRUE(page.isOld(first + 2));
    EXPECT_EQ(page.value(first + 2, "serial"), "B");
    EXPECT_EQ(page.id(page.own(first + 2, "parent")), "U1");
    std::map<std::string, std::string> changes;
    for (const json& change : page.data["changes"]["changes"])
        changes[change["change"]] = change["id"];
    EXPECT_EQ(changes, (std::map<std::string, std::string>{{"added", "U1-D3"}, {"removed", "U1-D2"}}));
}

TEST(Page, OfTwoDocumentsTellsTheHostThatIsGone)
{
    const auto with = [](const std::string& known) {
        return parse(ofSystem(list("Enclosures", "") +
                              list("Partitions", resource("Tarn01", "SYSTEM-1-1", hosts(known)))));
    };
    const Document before = with("web=2,mail=1,");
    const Document after = with("web=2,");
    const PageReader page(document::page(document::diff(before, after)));
    const size_t first = page.first("host");
    EXPECT_EQ(page.kind(first)["rows"], 2);
    EXPECT_EQ(page.kind(first)["old"], 1);
    EXPECT_EQ(page.id(first), "web");
    EXPECT_EQ(page.id(first + 1), "mail");
}

TEST(Page, OfTwoDocumentsTellsAWholeEnclosureThatIsGone)
{
    const std::string gone = enclosure({.id = "U2", .serial = "2", .location = "R-2"},
                                       drive("U2", {.slot = "-D1", .serial = "B"}));
    const Document before = complete(enclosure({.id = "U1", .serial = "1", .location = "R-1"}, "") + gone);
    const Document after = complete(enclosure({.id = "U1", .serial = "1", .location = "R-1"}, ""));
    const PageReader page(document::page(document::diff(before, after)));
    const size_t drive = page.first("drive");
    EXPECT_TRUE(page.isOld(drive));
    EXPECT_EQ(page.id(drive), "U2-D1");
    EXPECT_TRUE(page.isOld(page.own(drive, "parent")));
    EXPECT_EQ(page.id(page.own(drive, "parent")), "U2");
}

TEST(Page, WhatMovedOutOfAnEnclosureIsNotGoneWithIt)
{
    const auto of = [](const std::string& id, const std::string& inside) {
        return enclosure({.id = id, .serial = id, .location = "R-1"}, inside);
    };
    const Drive moving = {.slot = "-D1", .serial = "B"};
    const Document before = complete(of("U1", "") + of("U2", drive("U2", moving)));
    const Document after = complete(of("U1", drive("U1", moving)));
    const PageReader page(document::page(document::diff(before, after)));
    EXPECT_EQ(page.data["changes"]["changes"][0]["change"], "moved");
    const size_t drive = page.first("drive");
    EXPECT_EQ(page.kind(drive)["rows"], 1);
    EXPECT_EQ(page.kind(drive)["old"], 0);
    EXPECT_EQ(page.id(drive), "U1-D1");
}

// --- Colours

using Colours = std::map<std::string, std::string>;

/// The colours of the page's style, those for the dark in the second.
std::pair<Colours, Colours> coloursOf(const std::string& page)
{
    std::pair<Colours, Colours> colours;
    const size_t dark = page.find("prefers-color-scheme: dark");
    const Pattern colour("--([a-z0-9-]+): #([0-9a-f]{6});");
    for (const Pattern::Match& match : colour.all(page.substr(0, dark)))
        colours.first[match[1]] = match[2];
    for (const Pattern::Match& match : colour.all(page.substr(dark)))
        colours.second[match[1]] = match[2];
    return colours;
}

/// As the Web Content Accessibility Guidelines compute it.
double luminance(const std::string& colour)
{
    double sum = 0;
    constexpr std::array weights = {0.2126, 0.7152, 0.0722};
    for (size_t i = 0; i < weights.size(); ++i) {
        const double part = std::stoi(colour.substr(2 * i, 2), nullptr, 16) / 255.0;
        sum += weights.at(i) * (part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4));
    }
    return sum;
}

double contrast(const std::string& one, const std::string& other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(Page, ColoursStandOutFromWhatIsBehindThem)
{
    EXPECT_DOUBLE_EQ(contrast("ffffff", "000000"), 21);
    const auto [light, dark] = coloursOf(document::page(parse(ofSystem(""))));
    for (const Colours& colours : {light, dark}) {
        for (const char* const mark : {"c0", "c1", "c2", "c3", "c4", "c5", "c6", "c7", "rest"}) {
            EXPECT_GE(contrast(colours.at(mark), colours.at("bay")), 3) << mark;
            EXPECT_GE(contrast(colours.at(mark), colours.at("paper")), 3) << mark;
        }
        for (const char* const text : {"ink", "soft", "accent"}) {
            for (const char* const ground : {"ground", "paper", "bay"})
                EXPECT_GE(contrast(colours.at(text), colours.at(ground)), 4.5) << text << " on " << ground;
        }
        EXPECT_GE(contrast(colours.at("ink"), colours.at("notice")), 4.5);
        EXPECT_GE(contrast(colours.at("ink"), colours.at("accent-ground")), 4.5);
    }
}

TEST(Page, NoValueBecomesMarkup)
{
    const std::string calm = document::page(parse(ofSystem(property("PN", "L", "x"))));
    for (const std::string value : {"</script><img src=x onerror=alert(1)>", "<!--<script>", "]]>", "&lt;",
                                    "\xFF<\xFE", "{{data}}", "@KORD_PAGE_SCRIPT@"}) {
        const std::string page = document::page(
            parse(ofSystem(property("PN", value, value) + list(value, resource(value, value, "")))));
        EXPECT_EQ(count(page, "<"), count(calm, "<")) << value;
        EXPECT_EQ(count(page, "&"), count(calm, "&")) << value;
        EXPECT_NO_THROW(parseJson(dataOf(page))) << value;
    }
}

TEST(Page, NeedsNothingFromElsewhere)
{
    const std::string page = document::page(parse(ofSystem("")));
    EXPECT_TRUE(Pattern(R"((src|href)="(?!#))").all(page).empty());
    EXPECT_THAT(page, testing::Not(testing::HasSubstr("url(")));
    EXPECT_THAT(page, testing::Not(testing::HasSubstr("@import")));
    EXPECT_THAT(page, testing::HasSubstr("default-src 'none'; style-src 'sha256-"));
}

} // namespace
