// The JSON Schema of what kord json and kord list print: a part has the columns of its kind.

#include "reference.h"

#include "document/kind.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

namespace reference
{

namespace
{

using document::Column;
using document::Type;
using Json = nlohmann::ordered_json;

Json schemaOf(Type type)
{
    Json text = {{"type", "string"}, {"minLength", 1}};
    switch (type) {
    case Type::text:
        return text;
    case Type::number:
        return {{"type", "integer"}};
    case Type::texts:
        return {{"type", "array"}, {"items", text}, {"minItems", 1}};
    case Type::numbers:
        return {{"type", "array"}, {"items", {{"type", "integer"}}}, {"minItems", 1}};
    case Type::time:
        return {{"type", "string"}, {"format", "date-time"}};
    }
    return {};
}

Json schemaOf(const Column& column)
{
    Json schema = schemaOf(column.type);
    const std::string unit = column.unit.empty() ? "" : " (" + std::string(column.unit) + ')';
    schema["description"] = std::string(column.meaning) + unit;
    return schema;
}

Json refersTo(const std::string& definition)
{
    return {{"$ref", "#/definitions/" + definition}};
}

/// What a part of the kind may hold; what every part holds is told once.
Json ofKind(const document::KindRow& row)
{
    Json properties = {{"kind", {{"const", row.word}}}};
    for (const Column& column : row.columns)
        properties[std::string(column.name)] = schemaOf(column);
    for (const Column& column : document::commonColumns) {
        if (column.name != "kind") properties[std::string(column.name)] = true;
    }
    properties["properties"] = true;
    properties["parts"] = true;
    return {{"description", row.singular}, {"properties", properties}, {"additionalProperties", false}};
}

/// A row has whichever columns were asked for, and kinds share names of columns.
Json rowSchema()
{
    std::map<std::string, Json> types;
    for (const document::KindRow& row : document::kinds) {
        for (const Column* column : document::columnsOf(row.kind)) {
            Json& known = types[std::string(column->name)];
            const Json schema = schemaOf(column->type);
            if (std::ranges::find(known, schema) == known.end()) known.push_back(schema);
        }
    }
    Json properties;
    for (const auto& [name, schemas] : types)
        properties[name] = schemas.size() == 1 ? schemas[0] : Json{{"anyOf", schemas}};
    properties["count"] = {{"type", "integer"}, {"description", "how many parts have these values"}};
    return {{"type", "object"}, {"properties", properties}, {"additionalProperties", false}};
}

Json partSchema(const Json& kinds)
{
    const Json text = {{"type", "string"}};
    const Json value = {{"anyOf", {text, {{"type", "array"}, {"items", text}, {"minItems", 2}}}}};
    Json properties;
    for (const Column& column : document::commonColumns)
        properties[std::string(column.name)] = schemaOf(column);
    properties["properties"] = {
        {"type", "object"},
        {"description",
         "the values of the document by their codes; of a code that stands several times a list"},
        {"additionalProperties", value}};
    properties["parts"] = {{"type", "array"}, {"items", refersTo("part")}};
    return {{"type", "object"},
            {"properties", properties},
            {"required", {"kind", "properties", "parts"}},
            {"oneOf", kinds}};
}

Json documentSchema(const Json& system)
{
    const Json texts = {{"type", "array"}, {"items", {{"type", "string"}}}};
    return {{"type", "object"},
            {"properties",
             {{"timestamp",
               {{"type", "string"},
                {"description", "of the collection, seconds.microseconds as the document has it"}}},
              {"complete", {{"type", "boolean"}}},
              {"missing", texts},
              {"system", system}}},
            {"required", {"timestamp", "complete", "missing", "system"}},
            {"additionalProperties", false}};
}

} // namespace

std::string schema()
{
    Json definitions;
    Json kinds = Json::array();
    for (const document::KindRow& row : document::kinds) {
        const std::string word(row.word);
        if (!row.listed || definitions.contains(word)) continue;
        definitions[word] = ofKind(row);
        kinds.push_back(refersTo(word));
    }
    definitions["part"] = partSchema(kinds);
    definitions["row"] = rowSchema();
    definitions["document"] = documentSchema(refersTo("part"));
    const Json all = {
        {"$schema", "http://json-schema.org/draft-07/schema#"},
        {"title", "Inventory documents"},
        {"description", "What kord json prints, what kord list prints as JSON, and a line of it."},
        {"anyOf", {refersTo("document"), {{"type", "array"}, {"items", refersTo("row")}}, refersTo("row")}},
        {"definitions", definitions}};
    return all.dump(2) + '\n';
}

} // namespace reference
