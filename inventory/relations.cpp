#include "inventory/relations.h"

#include "document/kind.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace inventory
{

namespace
{

using document::Column;
using document::KindRow;
using document::Type;

/// Common columns are columns of their own; so is the serial number, which parts are looked up by.
constexpr std::string_view serial = "serial";

/// What an engine calls things, and its tables. Times are texts, which sort as times do; a kind's own columns
/// are in one JSON text, or each in a column where the engine stores by columns.
struct Dialect {
    std::string_view opening; ///< what the file begins with
    std::string_view tables;
    std::string_view latest;
    bool columnar = false;
};

/// The indexes of `part` begin with the snapshot, so that a document's rows go to their ends: with the serial
/// number first they would go to as many places as there are parts, more of them with every document. Who
/// looks for a serial number through all documents looks into each.
constexpr Dialect sqlite = {.opening = "",
                            .tables = R"(CREATE TABLE snapshot (
    snapshot INTEGER PRIMARY KEY,
    system TEXT NOT NULL,
    facility TEXT,
    time TEXT NOT NULL,
    file TEXT NOT NULL,
    hash TEXT NOT NULL UNIQUE,
    complete INTEGER NOT NULL,
    missing TEXT NOT NULL
) STRICT;
CREATE INDEX snapshot_in_time ON snapshot (system, time, complete);
CREATE TABLE document (
    snapshot INTEGER PRIMARY KEY REFERENCES snapshot,
    content BLOB NOT NULL
) STRICT;
CREATE TABLE part (
    snapshot INTEGER NOT NULL REFERENCES snapshot,
    system TEXT NOT NULL,
    facility TEXT,
    collected TEXT,
    kind TEXT NOT NULL,
    id TEXT,
    within TEXT,
    serial TEXT,
    data TEXT NOT NULL
) STRICT;
CREATE INDEX part_of_kind ON part (snapshot, kind);
CREATE INDEX part_by_serial ON part (snapshot, serial);
CREATE INDEX part_by_id ON part (snapshot, id);
CREATE TABLE change (
    snapshot INTEGER NOT NULL REFERENCES snapshot,
    before INTEGER NOT NULL REFERENCES snapshot,
    system TEXT NOT NULL,
    time TEXT NOT NULL,
    change TEXT NOT NULL,
    kind TEXT NOT NULL,
    id TEXT,
    old_id TEXT,
    serial TEXT,
    old_serial TEXT,
    data TEXT NOT NULL
) STRICT;
CREATE INDEX change_of_snapshot ON change (snapshot);
CREATE INDEX change_by_serial ON change (serial) WHERE serial IS NOT NULL;
CREATE INDEX change_by_old_serial ON change (old_serial) WHERE old_serial IS NOT NULL;
CREATE INDEX change_by_id ON change (id);
)",
                            .latest =
                                R"(CREATE VIEW latest AS SELECT * FROM snapshot AS one WHERE NOT EXISTS (
    SELECT 1 FROM snapshot AS other WHERE other.system = one.system
    AND (other.time, other.complete, other.snapshot) > (one.time, one.complete, one.snapshot));
)"};

constexpr Dialect postgresql = {
    .opening =
        R"(-- The relations of a fleet's inventory for PostgreSQL, made from the table of parts. load-postgresql fills them.
BEGIN;
)",
    .tables = R"(CREATE TABLE snapshot (
    snapshot bigint PRIMARY KEY,
    system text NOT NULL,
    facility text,
    time text NOT NULL,
    file text NOT NULL,
    hash text NOT NULL,
    complete integer NOT NULL,
    missing text NOT NULL
);
CREATE INDEX ON snapshot (system, time, complete);
CREATE TABLE part (
    snapshot bigint NOT NULL,
    system text NOT NULL,
    facility text,
    collected text,
    kind text NOT NULL,
    id text,
    within text,
    serial text,
    data jsonb NOT NULL
);
CREATE INDEX ON part (snapshot, kind);
CREATE INDEX ON part (serial);
CREATE INDEX ON part (id);
CREATE TABLE change (
    snapshot bigint NOT NULL,
    before bigint NOT NULL,
    system text NOT NULL,
    time text NOT NULL,
    change text NOT NULL,
    kind text NOT NULL,
    id text,
    old_id text,
    serial text,
    old_serial text,
    data jsonb NOT NULL
);
CREATE INDEX ON change (time);
CREATE INDEX ON change (serial);
CREATE UNLOGGED TABLE incoming (line jsonb NOT NULL);
)",
    .latest =
        R"(CREATE VIEW latest AS SELECT DISTINCT ON (system) * FROM snapshot ORDER BY system, time DESC, complete DESC, snapshot DESC;
)"};

/// Each table is there twice: on every shard with its rows, and as what asks all shards.
constexpr Dialect clickhouse = {
    .opening =
        R"(-- The relations of a fleet's inventory for ClickHouse, made from the table of parts: on every server of a cluster
-- that the servers' configuration calls fleet. Rows go to the shard of their system. load-clickhouse fills them. Whoever
-- asks needs a profile with distributed_product_mode = global.
)",
    .tables = R"(CREATE TABLE snapshot_shard (
    snapshot Int64,
    system String,
    facility Nullable(String),
    time String,
    file String,
    hash String,
    complete Int8,
    missing String
) ENGINE = MergeTree ORDER BY (system, time);
CREATE TABLE change_shard (
    snapshot Int64,
    before Int64,
    system String,
    time String,
    change String,
    kind String,
    id Nullable(String),
    old_id Nullable(String),
    serial Nullable(String),
    old_serial Nullable(String),
    data String
) ENGINE = MergeTree ORDER BY (kind, system, time);
)",
    .latest =
        R"(CREATE VIEW latest AS SELECT * FROM snapshot WHERE snapshot GLOBAL IN (
    SELECT argMax(snapshot, concat(time, toString(complete))) FROM snapshot GROUP BY system);
)",
    .columnar = true};

const Dialect& dialectOf(Engine engine)
{
    if (engine == Engine::postgresql) return postgresql;
    return engine == Engine::clickhouse ? clickhouse : sqlite;
}

std::string quoted(std::string_view name)
{
    return '"' + std::string(name) + '"';
}

/// The kinds that can be asked for; two have one word and one view.
std::vector<const KindRow*> listedKinds()
{
    std::vector<const KindRow*> listed;
    for (const KindRow& row : document::kinds) {
        const bool known = std::ranges::find(listed, row.word, &KindRow::word) != listed.end();
        if (row.listed && !known) listed.push_back(&row);
    }
    return listed;
}

bool isList(Type type)
{
    return type == Type::texts || type == Type::numbers;
}

/// The kinds' columns, of one name the first: it says what a table that has them all holds there.
std::vector<const Column*> columnsOfAllKinds()
{
    std::vector<const Column*> columns;
    for (const KindRow* row : listedKinds()) {
        for (const Column& column : row->columns) {
            if (std::ranges::find(columns, column.name, &Column::name) == columns.end())
                columns.push_back(&column);
        }
    }
    return columns;
}

std::string columnarValue(const Column& column)
{
    const std::string name = quoted(column.name);
    const std::vector<const Column*> all = columnsOfAllKinds();
    const Column& first = **std::ranges::find(all, column.name, &Column::name);
    const bool asText = first.type == Type::text && column.type == Type::number;
    return asText ? "toInt64OrNull(assumeNotNull(" + name + "))" : name;
}

/// Where a part's row has the value.
std::string valueOf(Engine engine, const Column& column)
{
    const std::string name(column.name);
    if (engine == Engine::clickhouse) return columnarValue(column);
    if (column.name == serial) return quoted(name);
    if (engine == Engine::sqlite) return "data ->> '" + name + '\'';
    if (isList(column.type)) return "data -> '" + name + '\'';
    return column.type == Type::number ? "(data ->> '" + name + "')::bigint" : "data ->> '" + name + '\'';
}

std::string viewOf(Engine engine, const KindRow& row)
{
    // Left as it is: an engine that folds names to small letters then takes the kind's word in any.
    const bool reserved = row.word == "array";
    std::string sql = "CREATE VIEW " + (reserved ? quoted(row.word) : std::string(row.word)) +
                      " AS SELECT snapshot, system, facility, collected, kind, id, within";
    for (const Column& column : row.columns)
        sql += ",\n    " + valueOf(engine, column) + " AS " + quoted(column.name);
    return sql + "\n    FROM part WHERE kind = '" + std::string(row.word) + "';\n";
}

// --- Tables by columns

std::string_view columnarType(Type type)
{
    if (type == Type::number) return "Nullable(Int64)";
    if (type == Type::numbers) return "Array(Int64)";
    return type == Type::texts ? "Array(String)" : "Nullable(String)";
}

std::string columnarTables()
{
    constexpr std::string_view common = "    system String,\n    facility Nullable(String),\n"
                                        "    collected String,\n    kind String,\n"
                                        "    id Nullable(String),\n    within Nullable(String)";
    std::string columns(common);
    for (const Column* column : columnsOfAllKinds())
        columns += ",\n    " + quoted(column->name) + ' ' + std::string(columnarType(column->type));
    std::string sql =
        "CREATE TABLE part_shard (\n" + columns +
        ",\n    snapshot Int64\n) ENGINE = MergeTree ORDER BY (kind, system, snapshot);\n"
        "CREATE TABLE incoming AS part_shard ENGINE = MergeTree ORDER BY (system, collected);\n";
    for (const std::string name : {"snapshot", "part", "change"})
        sql.append("CREATE TABLE ")
            .append(name)
            .append(" AS ")
            .append(name)
            .append("_shard ENGINE = Distributed(fleet, currentDatabase(), ")
            .append(name)
            .append("_shard, cityHash64(system));\n");
    return sql;
}

} // namespace

std::string relations(Engine engine)
{
    const Dialect& dialect = dialectOf(engine);
    std::string sql(dialect.opening);
    sql += dialect.tables;
    if (dialect.columnar) sql += columnarTables();
    sql += dialect.latest;
    for (const KindRow* row : listedKinds())
        sql += viewOf(engine, *row);
    return engine == Engine::postgresql ? sql + "COMMIT;\n" : sql;
}

} // namespace inventory
