// The schema of documents in JSON: what it lets pass, what it refuses, and what it says of every column.

#include "consoleRun.h"
#include "document/kind.h"
#include "jsonSchema.h"
#include "parseJson.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

namespace
{

using document::Column;
using document::KindRow;
using document::Type;
using nlohmann::json;

struct Examples {
    Type type;
    json good;
    json bad; ///< a list of values
};

const std::vector<Examples> examples = {
    {Type::text, "x", kordTest::parseJson(R"([5, "", ["x"], null])")},
    {Type::number, 7, kordTest::parseJson(R"(["7", 1.5, [7]])")},
    {Type::texts, {"x"}, kordTest::parseJson(R"(["x", [], [""], [5]])")},
    {Type::numbers, {7}, kordTest::parseJson(R"([7, [], ["7"], [1.5]])")},
    {Type::time, "2026-11-21T13:41:03.000005Z", kordTest::parseJson(R"([5, null])")}};

const Examples& of(Type type)
{
    return *std::ranges::find(examples, type, &Examples::type);
}

bool passes(const json& value)
{
    return kordTest::valueFaults(KORD_DOCUMENT_SCHEMA, value).empty();
}

/// A part with a value in every column of its kind.
json partOf(const KindRow& row)
{
    json part = {{"properties", {{"S3", "F"}, {"LE", {"1", "2"}}}}, {"parts", json::array()}};
    for (const Column* column : document::columnsOf(row.kind))
        part[std::string(column->name)] = of(column->type).good;
    part["kind"] = row.word;
    return part;
}

json documentOf(const json& part)
{
    return {{"timestamp", "1.5"}, {"complete", false}, {"missing", {"the end"}}, {"system", part}};
}

TEST(JsonSchema, KnowsEveryColumnOfEveryKind)
{
    for (const KindRow& row : document::kinds) {
        if (!row.listed) continue;
        const json good = partOf(row);
        EXPECT_TRUE(passes(documentOf(good))) << row.word;
        json whole = documentOf({{"kind", "system"}, {"properties", json::object()}, {"parts", {good}}});
        EXPECT_TRUE(passes(whole)) << row.word;
        whole["system"]["parts"][0]["colour"] = "red";
        EXPECT_FALSE(passes(whole)) << row.word;
    }
}

/// A drive and an array have columns of every type.
TEST(JsonSchema, KnowsTheTypeOfEveryColumn)
{
    std::set<Type> types;
    for (const document::Kind kind : {document::Kind::drive, document::Kind::array}) {
        const json good = partOf(document::rowOf(kind));
        for (const Column* column : document::columnsOf(kind)) {
            if (!types.insert(column->type).second) continue;
            for (const json& value : of(column->type).bad) {
                json part = good;
                part[std::string(column->name)] = value;
                EXPECT_FALSE(passes(documentOf(part))) << column->name << ' ' << value;
            }
        }
    }
    EXPECT_EQ(types.size(), examples.size());
}

TEST(JsonSchema, KnowsWhatEveryPartAndEveryDocumentHas)
{
    const json good = documentOf(partOf(document::kinds.front()));
    ASSERT_TRUE(passes(good));
    for (const std::string place : {"/timestamp", "/complete", "/missing", "/system", "/system/kind",
                                    "/system/properties", "/system/parts"}) {
        json lacking = good;
        const json::json_pointer pointer(place);
        lacking.at(pointer.parent_pointer()).erase(pointer.back());
        EXPECT_FALSE(passes(lacking)) << place;
    }
    const std::vector<std::pair<std::string, json>> wrong = {{"/timestamp", 1.5},
                                                             {"/complete", "false"},
                                                             {"/missing", "the end"},
                                                             {"/missing", {1}},
                                                             {"/system", "x"},
                                                             {"/system", json::array()},
                                                             {"/system/kind", "sytem"},
                                                             {"/system/kind", "enclosurePartition"},
                                                             {"/system/properties", "S3"},
                                                             {"/system/properties/S3", 5},
                                                             {"/system/properties/S3", {"one"}},
                                                             {"/system/properties/S3", {1, 2}},
                                                             {"/system/parts", json::object()},
                                                             {"/system/parts", {"x"}},
                                                             {"/colour", "red"}};
    for (const auto& [place, value] : wrong) {
        json changed = good;
        changed[json::json_pointer(place)] = value;
        EXPECT_FALSE(passes(changed)) << place << ' ' << value;
    }
}

TEST(JsonSchema, KnowsRows)
{
    json row = {{"count", 1}};
    for (const KindRow& kind : document::kinds) {
        for (const Column* column : document::columnsOf(kind.kind)) {
            const std::string name(column->name);
            EXPECT_TRUE(passes({{name, of(column->type).good}})) << name;
            EXPECT_FALSE(passes({{name, true}})) << name;
            row[name] = of(column->type).good;
        }
    }
    EXPECT_TRUE(passes(row));
    EXPECT_TRUE(passes(json::array({row, row, json::object()})));
    EXPECT_TRUE(passes(json::array()));
    for (const json& wrong : {json{{"count", "1"}}, json{{"count", 1.5}}, json{{"colour", "red"}},
                              json::array({row, 5}), json(5)})
        EXPECT_FALSE(passes(wrong)) << wrong;
}

/// People read it too: first what something is, then what is in it, then what else it may hold.
TEST(JsonSchema, StandsInAnOrder)
{
    const std::vector<std::string> order = {"$schema",    "title",      "type",     "format",
                                            "minLength",  "items",      "minItems", "description",
                                            "properties", "required",   "oneOf",    "additionalProperties",
                                            "anyOf",      "definitions"};
    std::map<size_t, std::vector<std::string>::const_iterator> last; // by the depth of an object's members
    size_t members = 0;
    for (const std::string& line : kordTest::splitLines(kordTest::readFile(KORD_DOCUMENT_SCHEMA).value())) {
        const size_t depth = line.find_first_not_of(' ');
        last.erase(last.upper_bound(depth), last.end());
        const size_t end = line.find("\": ");
        if (line.at(depth) != '"' || end == std::string::npos) continue;
        const auto member = std::ranges::find(order, line.substr(depth + 1, end - depth - 1));
        if (member == order.end()) continue; // a column or a definition
        const auto [before, isFirst] = last.try_emplace(depth, member);
        EXPECT_TRUE(isFirst || before->second < member) << line;
        before->second = member;
        ++members;
    }
    EXPECT_GT(members, 500U);
}

TEST(JsonSchema, SaysWhatEverythingMeans)
{
    const json schema = kordTest::parseJson(kordTest::readFile(KORD_DOCUMENT_SCHEMA).value());
    EXPECT_EQ(schema["$schema"], "http://json-schema.org/draft-07/schema#");
    EXPECT_EQ(schema["title"], "Inventory documents");
    EXPECT_EQ(schema["description"],
              "What kord json prints, what kord list prints as JSON, and a line of it.");
    const json& definitions = schema["definitions"];
    EXPECT_EQ(definitions["row"]["properties"]["count"]["description"], "how many parts have these values");
    EXPECT_EQ(definitions["document"]["properties"]["timestamp"]["description"],
              "of the collection, seconds.microseconds as the document has it");
    for (const char* object : {"document", "part", "row"})
        EXPECT_EQ(definitions[object]["type"], "object") << object;
    const json& part = definitions["part"]["properties"];
    EXPECT_EQ(part["properties"]["description"],
              "the values of the document by their codes; of a code that stands several times a list");
    const auto says = [](const Column& column) {
        const std::string unit = column.unit.empty() ? "" : " (" + std::string(column.unit) + ')';
        return std::string(column.meaning) + unit;
    };
    for (const Column& column : document::commonColumns)
        EXPECT_EQ(part[std::string(column.name)]["description"], says(column));
    std::set<std::string_view> told; // kinds of one word have the first one's words
    for (const KindRow& row : document::kinds) {
        if (!row.listed || !told.insert(row.word).second) continue;
        const json& kind = definitions[std::string(row.word)];
        EXPECT_EQ(kind["description"], row.singular);
        for (const Column& column : row.columns)
            EXPECT_EQ(kind["properties"][std::string(column.name)]["description"], says(column));
    }
}

} // namespace
