#include "inventory/inventory.h"

#include "document/reader.h"
#include "inventory/packing.h"
#include "inventory/relations.h"
#include "platform/failure.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <vector>

namespace inventory
{

namespace
{

/// "kord", which stands in the head of the file.
constexpr int64_t application = 0x6B6F7264;
/// Of the relations: it goes up with every change of theirs or of the table of parts.
constexpr int64_t version = 1;

/// A part's rows by snapshot, which is what the indexes of `part` begin with, and then what became of it.
constexpr std::string_view historyOf = R"(
SELECT part.collected AS collected, part.system AS system, part.kind, part.id, part.data ->> 'rack',
    part.data ->> 'enclosure', part.data ->> 'slot', part.serial, part.data ->> 'firmware',
    (SELECT iif(change = 'replaced', 'replaces ' || old_serial, change) FROM change
     WHERE snapshot = part.snapshot AND kind = part.kind AND id IS part.id AND serial IS part.serial)
FROM snapshot AS one CROSS JOIN part ON part.snapshot = one.snapshot AND (part.serial = ?1 OR part.id = ?1)
UNION ALL
SELECT time, system, kind, id, data ->> 'rack', data ->> 'enclosure', data ->> 'slot', serial, NULL, change
FROM change WHERE change = 'removed' AND (serial = ?1 OR id = ?1)
UNION ALL
SELECT time, system, kind, id, data ->> 'rack', data ->> 'enclosure', data ->> 'slot', old_serial, NULL,
    'replaced by ' || serial
FROM change WHERE change = 'replaced' AND old_serial = ?1
ORDER BY collected, system)";

document::Value valueIn(const Statement& row, int column)
{
    if (row.isNull(column)) return {};
    if (row.isNumber(column)) return row.number(column);
    return row.text(column);
}

} // namespace

bool isDatabase(const std::string& file)
{
    constexpr std::string_view start("SQLite format 3\0", 16);
    std::array<char, start.size()> bytes{};
    // The first bytes of a pipe are not there again for who reads it.
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(file, unknown)) return false;
    std::ifstream stream(file, std::ios::binary);
    stream.read(bytes.data(), bytes.size());
    return stream && std::string_view(bytes.data(), bytes.size()) == start;
}

Inventory::Inventory(const std::string& file, Database::Access access) : database(file, access)
{
    if (access == Database::Access::write) prepare();
    judge();
}

/// Of several imports that find no database, one makes it.
void Inventory::prepare()
{
    // The pages of a large document, and those of the indexes that its rows go to.
    database.run("PRAGMA cache_size = -65536");
    if (database.numberOf("PRAGMA application_id") == application) return;
    Transaction transaction(database);
    const int64_t owner = database.numberOf("PRAGMA application_id");
    if (owner != 0 || database.numberOf("SELECT count(*) FROM sqlite_schema") != 0) return;
    database.run(relations(Engine::sqlite));
    database.run("PRAGMA application_id = " + std::to_string(application));
    database.run("PRAGMA user_version = " + std::to_string(version));
    transaction.commit();
}

void Inventory::judge()
{
    if (database.numberOf("PRAGMA application_id") != application)
        throw platform::Failure(database.name() + ": a database, but no inventory that kord made");
    const int64_t found = database.numberOf("PRAGMA user_version");
    if (found == version) return;
    throw platform::Failure(database.name() + ": an inventory of version " + std::to_string(found) +
                            ", but this kord knows version " + std::to_string(version));
}

document::Document Inventory::documentOf(int64_t snapshot, std::string_view file)
{
    const std::string name = database.name() + ": " + std::string(file);
    Statement content(database, "SELECT content FROM document WHERE snapshot = ?");
    if (!content.with(snapshot).step()) throw platform::Failure(name + ": the document is not there");
    const std::string bytes = unpacked(content.bytes(0), name);
    document::Input input(name, bytes);
    return document::read(input);
}

void Inventory::eachLatest(const std::function<void(document::Document)>& use)
{
    std::vector<std::pair<int64_t, std::string>> newest;
    Statement latest(database, "SELECT snapshot, file FROM latest ORDER BY system");
    while (latest.step())
        newest.emplace_back(latest.number(0), latest.text(1));
    for (const auto& [snapshot, file] : newest)
        use(documentOf(snapshot, file));
}

size_t Inventory::history(const std::string& key, document::Format format, bool header,
                          const document::Write& write)
{
    const std::vector<document::Heading> headings = {{.name = "collected"},
                                                     {.name = "system"},
                                                     {.name = "kind"},
                                                     {.name = "id"},
                                                     {.name = "rack", .toTheRight = true},
                                                     {.name = "enclosure", .toTheRight = true},
                                                     {.name = "slot", .toTheRight = true},
                                                     {.name = "serial"},
                                                     {.name = "firmware"},
                                                     {.name = "change"}};
    const auto table = document::formatterOf(format, headings, header, write);
    Statement rows(database, std::string(historyOf));
    rows.with(std::string_view(key));
    size_t count = 0;
    for (; rows.step(); ++count) {
        std::vector<document::Value> values;
        for (int column = 0; column < static_cast<int>(headings.size()); ++column)
            values.push_back(valueIn(rows, column));
        table->row(values);
    }
    table->finish();
    return count;
}

} // namespace inventory
