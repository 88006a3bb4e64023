// The collector's tables, carried inside the library: nothing that they tell is lost on the way.

#include "document/tables.h"
#include "document/tablesText.h"
#include "parseJson.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using document::FailureEnd;
using document::TableLine;
using document::TableQuery;
using nlohmann::json;

std::string textOf(const json& row, const char* member)
{
    return row.contains(member) && row[member].is_string() ? row[member].get<std::string>() : "";
}

std::string withoutBlank(const std::string& code)
{
    return code.ends_with(' ') ? code.substr(0, code.size() - 1) : code;
}

void expectEnd(const FailureEnd& end, const json& row)
{
    EXPECT_EQ(end.number.has_value(), row.contains("number")) << row;
    if (row.contains("number")) {
        EXPECT_EQ(end.number, row["number"].get<uint32_t>());
    }
    EXPECT_EQ(end.result, textOf(row, "result"));
    EXPECT_EQ(end.standsInstead, !textOf(row, "instead").empty());
    ASSERT_EQ(end.files, row.contains("report"));
    if (!end.files) return;
    EXPECT_EQ(end.referenceCode, textOf(row["report"], "referenceCode"));
    EXPECT_EQ(end.withMessage, row["report"]["withMessage"].get<bool>());
}

void expectLine(const TableLine& line, const json& row, const std::string& function)
{
    EXPECT_EQ(line.role, textOf(row, "role"));
    EXPECT_EQ(line.code, withoutBlank(textOf(row, "code")));
    EXPECT_EQ(line.meaning, textOf(row, "meaning"));
    EXPECT_EQ(line.cause, textOf(row, "cause"));
    EXPECT_EQ(line.advice, textOf(row, "advice"));
    EXPECT_EQ(line.session, textOf(row, "session"));
    EXPECT_EQ(line.function, function);
    const json ends = row.value("ends", json::array());
    ASSERT_EQ(line.ends.size(), ends.size());
    for (size_t i = 0; i < ends.size(); ++i)
        expectEnd(line.ends[i], ends[i]);
}

const json& told()
{
    static const json tables = kordTest::parseJson(document::tablesText());
    return tables;
}

TEST(Tables, TellEveryQuery)
{
    const json& rows = told()["queries"];
    const std::vector<TableQuery>& queries = document::tables().queries;
    ASSERT_EQ(queries.size(), rows.size());
    for (size_t i = 0; i < rows.size(); ++i) {
        const TableQuery& query = queries[i];
        const json& row = rows[i];
        EXPECT_EQ(query.function, textOf(row, "function"));
        EXPECT_EQ(query.className, textOf(row, "class"));
        EXPECT_EQ(query.session, textOf(row, "session"));
        EXPECT_EQ(query.call, textOf(row, "call"));
        EXPECT_EQ(query.selection.value_or("none"),
                  row["selection"].is_string() ? textOf(row, "selection") : "none");
        EXPECT_EQ(query.action, textOf(row, "action"));
        EXPECT_EQ(query.things, textOf(row, "things"));
        EXPECT_EQ(query.counts, row["counter"].get<bool>());
        std::vector<std::string> attributes;
        for (const json& attribute : row["attributes"])
            attributes.push_back(attribute["name"]);
        EXPECT_EQ(query.attributes, attributes);
        ASSERT_EQ(query.lines.size(), row["lines"].size());
        std::string entry;
        bool traced = false;
        for (size_t line = 0; line < query.lines.size(); ++line) {
            expectLine(query.lines[line], row["lines"][line], query.function);
            const std::string role = row["lines"][line]["role"];
            traced = traced || role == "selection";
            if (role == "entry") entry = row["lines"][line]["format"].get<std::string>().substr(1);
        }
        EXPECT_EQ(query.entry, withoutBlank(entry));
        EXPECT_EQ(query.tracesSelection, traced);
        EXPECT_EQ(document::tables().query(query.function)->className, query.className);
    }
    EXPECT_EQ(document::tables().query("noQuery"), nullptr);
}

TEST(Tables, TellEveryOtherLineAndEveryEvent)
{
    const json& rows = told()["lines"];
    const std::vector<TableLine>& lines = document::tables().lines;
    ASSERT_EQ(lines.size(), rows.size());
    for (size_t i = 0; i < rows.size(); ++i)
        expectLine(lines[i], rows[i], textOf(rows[i], "function"));
    for (const json& row : told()["events"]) {
        const std::string type = textOf(row, "type");
        const document::TableEvent& event = document::tables().event(type);
        EXPECT_EQ(event.type, type);
        EXPECT_EQ(event.referenceCode, textOf(row, "referenceCode"));
        EXPECT_EQ(event.text, textOf(row, "text"));
        EXPECT_EQ(event.advice, textOf(row, "advice"));
    }
    EXPECT_EQ(document::tables().event("no type").type, "");
}

} // namespace
