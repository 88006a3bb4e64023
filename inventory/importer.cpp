#include "inventory/importer.h"

#include "document/input.h"
#include "document/json.h"
#include "document/kindList.h"
#include "document/report.h"
#include "inventory/packing.h"
#include "platform/utf8.h"

#include <algorithm>
#include <array>
#include <vector>

namespace inventory
{

namespace
{

using document::Column;
using document::Document;
using document::Kind;
using document::Row;
using document::Value;
using document::Values;

/// A text as databases hold it: characters, or none.
class Text
{
public:
    explicit Text(const Value& value)
    {
        const auto* const found = std::get_if<std::string_view>(&value);
        if (found == nullptr) return;
        text = *found;
        const auto isAscii = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
        if (std::ranges::all_of(*found, isAscii)) return;
        platform::appendUnicode(mended, *found);
        text = mended;
    }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    [[nodiscard]] const std::optional<std::string_view>& get() const { return text; }
    [[nodiscard]] std::string_view orEmpty() const { return text.value_or(""); }

private:
    std::optional<std::string_view> text;
    std::string mended;
};

/// A kind's columns by what becomes of them: some are columns in the database too, the rest is JSON.
struct Columns {
    const Column* facility = nullptr;
    const Column* id = nullptr;
    const Column* within = nullptr;
    const Column* serial = nullptr;
    std::vector<std::pair<std::string, const Column*>> own; ///< with their names as JSON has them
};

Columns makeColumns(Kind kind)
{
    const std::vector<const Column*> all = document::columnsOf(kind);
    const auto find = [&](std::string_view name) {
        const auto found = std::ranges::find(all, name, &Column::name);
        return found == all.end() ? nullptr : *found;
    };
    Columns columns = {.facility = find("facility"),
                       .id = find("id"),
                       .within = find("within"),
                       .serial = find("serial"),
                       .own = {}};
    for (const Column& column : document::rowOf(kind).columns)
        columns.own.emplace_back('"' + std::string(column.name) + "\":", &column);
    return columns;
}

const Columns& placesOf(Kind kind)
{
    static const std::vector<Columns> all = [] {
        std::vector<Columns> made;
        for (const document::KindRow& row : document::kinds)
            made.push_back(makeColumns(row.kind));
        return made;
    }();
    return all[static_cast<size_t>(kind)];
}

Value valueOf(Values& values, const Row& row, const Column* column)
{
    return column == nullptr ? Value{} : values.of(row, *column);
}

/// The kind's own columns as a JSON object.
void describe(std::string& json, Values& values, const Row& row)
{
    json = "{";
    for (const auto& [name, column] : placesOf(row.kind).own) {
        const Value value = values.of(row, *column);
        if (document::isEmpty(value)) continue;
        if (json.size() > 1) json += ',';
        json += name;
        document::appendJson(json, value);
    }
    json += '}';
}

Row systemOf(const Document& document)
{
    return {.part = &document.system(), .kind = Kind::system};
}

std::string systemName(const Document& document)
{
    return std::string(Text(Value{document.system().id}).orEmpty());
}

} // namespace

Incoming incomingOf(const std::string& file)
{
    document::Input input(file);
    Incoming incoming = {.file = file == "-" ? "standard input" : file, .bytes = {}, .hash = {}};
    constexpr size_t block = size_t{1} << 20U;
    for (size_t got = 1; got > 0;) {
        const size_t before = incoming.bytes.size();
        incoming.bytes.resize(before + block);
        got = input.read({incoming.bytes.data() + before, block});
        incoming.bytes.resize(before + got);
    }
    incoming.hash = hashOf(incoming.bytes);
    return incoming;
}

Importer::Importer(Inventory& into)
    : inventory(into), database(into.connection()), known(database, "SELECT 1 FROM snapshot WHERE hash = ?"),
      previous(database,
               "SELECT snapshot, file FROM snapshot WHERE system = ? AND (time, complete) <= (?, ?) "
               "ORDER BY time DESC, complete DESC, snapshot DESC LIMIT 1"),
      next(database, "SELECT snapshot, file FROM snapshot WHERE system = ? AND (time, complete) > (?, ?) "
                     "ORDER BY time, complete, snapshot LIMIT 1"),
      newSnapshot(database, "INSERT INTO snapshot (system, facility, time, file, hash, complete, missing) "
                            "VALUES (?, ?, ?, ?, ?, ?, ?)"),
      newDocument(database, "INSERT INTO document VALUES (?, ?)"),
      newPart(database, "INSERT INTO part (snapshot, system, collected, facility, kind, id, within, serial, "
                        "data) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
      newChange(database, "INSERT INTO change (snapshot, before, system, time, change, kind, id, old_id, "
                          "serial, old_serial, data) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
      noChanges(database, "DELETE FROM change WHERE snapshot = ?")
{
}

bool Importer::holds(const Incoming& incoming)
{
    const bool there = known.with(std::string_view(incoming.hash)).step();
    known.reset();
    return there;
}

bool Importer::add(const Incoming& incoming, const Document& document)
{
    const std::string time = document::collectedAt(document.timestamp);
    const std::string system = systemName(document);
    const bool complete = document.missing.nothing();
    Transaction transaction(database);
    if (holds(incoming)) return false;
    const auto before = find(previous, system, time, complete);
    const auto after = find(next, system, time, complete);
    const int64_t snapshot = addSnapshot(incoming, document, time);
    addParts(snapshot, document, time);
    if (before)
        addChanges(before->snapshot, inventory.documentOf(before->snapshot, before->file), snapshot,
                   document);
    if (after)
        addChanges(snapshot, document, after->snapshot, inventory.documentOf(after->snapshot, after->file));
    transaction.commit();
    return true;
}

std::optional<Importer::Neighbour> Importer::find(Statement& statement, std::string_view system,
                                                  std::string_view time, bool complete)
{
    std::optional<Neighbour> found;
    if (statement.with(system, time, int64_t{complete ? 1 : 0}).step())
        found = Neighbour{.snapshot = statement.number(0), .file = std::string(statement.text(1))};
    statement.reset();
    return found;
}

int64_t Importer::addSnapshot(const Incoming& incoming, const Document& document, std::string_view time)
{
    Values values(document);
    const Row row = systemOf(document);
    const Text facility(valueOf(values, row, placesOf(row.kind).facility));
    const Text file(Value{std::string_view(incoming.file)});
    const std::string system = systemName(document);
    std::string missing;
    document::appendJson(missing, Value{wordsOf(document.missing)});
    newSnapshot
        .with(std::string_view(system), facility.get(), time, file.orEmpty(), std::string_view(incoming.hash),
              int64_t{document.missing.nothing() ? 1 : 0}, std::string_view(missing))
        .run();
    const int64_t snapshot = database.lastRow();
    const std::string content = packed(incoming.bytes);
    newDocument.bind(1, snapshot);
    newDocument.bindBytes(2, content);
    newDocument.run();
    return snapshot;
}

void Importer::addParts(int64_t snapshot, const Document& document, std::string_view time)
{
    static const std::vector<Kind> all = document::knownKinds("all");
    Values values(document);
    const std::string system = systemName(document);
    newPart.with(snapshot, std::string_view(system), time);
    std::string json;
    for (const Row& row : rowsOf(document, all)) {
        const Columns& columns = placesOf(row.kind);
        const Text facility(valueOf(values, row, columns.facility));
        const Text id(valueOf(values, row, columns.id));
        const Text within(valueOf(values, row, columns.within));
        const Text serial(valueOf(values, row, columns.serial));
        describe(json, values, row);
        int index = 3;
        newPart.bind(++index, facility.get());
        newPart.bind(++index, document::rowOf(row.kind).word);
        newPart.bind(++index, id.get());
        newPart.bind(++index, within.get());
        newPart.bind(++index, serial.get());
        newPart.bind(++index, std::string_view(json));
        newPart.run();
    }
}

void Importer::addChanges(int64_t before, const Document& old, int64_t after, const Document& now)
{
    const std::string time = document::collectedAt(now.timestamp);
    const std::string system = systemName(now);
    noChanges.with(after).run();
    newChange.with(after, before, std::string_view(system), std::string_view(time));
    Values oldValues(old);
    Values newValues(now);
    for (const document::Change& change : document::diff(old, now).found)
        addChange(change, oldValues, newValues);
}

/// What it was before is told where it was something else.
void Importer::addChange(const document::Change& change, Values& old, Values& now)
{
    const Columns& columns = placesOf(change.kind);
    const auto value = [&](Values& values, const document::Part* part, const Column* column) {
        if (part == nullptr) return Value{};
        return valueOf(values, {.part = part, .kind = change.kind, .host = {.description = change.host}},
                       column);
    };
    std::array<Value, 2> ids = {value(old, change.before, columns.id), value(now, change.after, columns.id)};
    std::array<Value, 2> serials = {value(old, change.before, columns.serial),
                                    value(now, change.after, columns.serial)};
    for (auto* const pair : {&ids, &serials}) {
        auto& [was, is] = *pair;
        if (change.after == nullptr) is = was;
        if (was == is) was = {};
    }
    std::string json;
    document::appendJson(json, change, now);
    const Text id(ids[1]);
    const Text oldId(ids[0]);
    const Text serial(serials[1]);
    const Text oldSerial(serials[0]);
    int index = 4;
    newChange.bind(++index, wordOf(change.type));
    newChange.bind(++index, document::rowOf(change.kind).word);
    for (const Text* const text : {&id, &oldId, &serial, &oldSerial})
        newChange.bind(++index, text->get());
    newChange.bind(++index, std::string_view(json));
    newChange.run();
}

} // namespace inventory
