// What a fleet's inventory costs: documents taken in, beside reading them and inserting the same rows
// straight through the library; the first documents beside the last; and the questions that people ask in the
// end.
//
//     kord-bench-inventory DOCUMENTS QUESTIONS WORK

#include "document/reader.h"
#include "inventory/importer.h"
#include "inventory/relations.h"
#include "report.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <numeric>
#include <optional>
#include <span>
#include <tuple>

namespace
{

using namespace bench;
namespace fs = std::filesystem;

/// A row as the database has it: what is bound where.
struct Cell {
    std::optional<std::string> text;
    int64_t number = 0;
    bool isNumber = false;
    bool isBytes = false;
};
using Cells = std::vector<Cell>;

/// What one document left in a relation.
std::vector<Cells> rowsOf(inventory::Database& database, const std::string& relation, int64_t snapshot)
{
    inventory::Statement rows(database, "SELECT * FROM " + relation + " WHERE snapshot = ?");
    rows.with(snapshot);
    std::vector<Cells> found;
    while (rows.step()) {
        Cells& cells = found.emplace_back();
        for (int column = 0; column < rows.columns(); ++column) {
            Cell& cell = cells.emplace_back();
            cell.isNumber = rows.isNumber(column);
            cell.isBytes = relation == "document" && column == 1;
            if (cell.isNumber)
                cell.number = rows.number(column);
            else if (!rows.isNull(column))
                cell.text = rows.bytes(column);
        }
    }
    return found;
}

/// Inserts rows, and knows nothing else of them.
class Floor
{
public:
    explicit Floor(const std::string& file) : database(file, inventory::Database::Access::write)
    {
        database.run("PRAGMA cache_size = -65536");
        database.run(inventory::relations(inventory::Engine::sqlite));
        for (size_t i = 0; i < relations.size(); ++i)
            inserts.push_back(std::make_unique<inventory::Statement>(
                database, "INSERT INTO " + relations[i] + " VALUES (" + marks[i] + ")"));
    }

    void insert(const std::vector<std::vector<Cells>>& rows)
    {
        inventory::Transaction transaction(database);
        for (size_t i = 0; i < relations.size(); ++i) {
            for (const Cells& cells : rows[i])
                insert(*inserts[i], cells);
        }
        transaction.commit();
    }

    // NOLINTNEXTLINE(cert-err58-cpp)
    static inline const std::vector<std::string> relations = {"snapshot", "document", "part", "change"};

private:
    static void insert(inventory::Statement& statement, const Cells& cells)
    {
        for (int index = 1; const Cell& cell : cells) {
            if (cell.isNumber)
                statement.bind(index, cell.number);
            else if (cell.isBytes)
                statement.bindBytes(index, *cell.text);
            else
                statement.bind(index, cell.text ? std::optional<std::string_view>(*cell.text) : std::nullopt);
            ++index;
        }
        statement.run();
    }

    // NOLINTNEXTLINE(cert-err58-cpp)
    static inline const std::vector<std::string> marks = {
        "?, ?, ?, ?, ?, ?, ?, ?", "?, ?", "?, ?, ?, ?, ?, ?, ?, ?, ?", "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?"};

    inventory::Database database;
    std::vector<std::unique_ptr<inventory::Statement>> inserts;
};

struct Costs {
    Series import;
    Series reading;
    Series inserting;
};

/// Each document by both ways, one after the other, so that whatever else the machine does meets both alike.
Costs measure(const std::vector<std::string>& files, const fs::path& work)
{
    inventory::Inventory inventory(work / "inventory.db", inventory::Database::Access::write);
    inventory::Importer importer(inventory);
    Floor floor(work / "floor.db");
    Costs costs;
    for (const std::string& file : files) {
        costs.import.push_back(timeOf([&] {
            const inventory::Incoming incoming = inventory::incomingOf(file);
            document::Input input(file, incoming.bytes);
            importer.add(incoming, document::read(input));
        }));
        std::vector<std::vector<Cells>> rows;
        const auto snapshot = static_cast<int64_t>(costs.import.size());
        for (const std::string& relation : Floor::relations)
            rows.push_back(rowsOf(inventory.connection(), relation, snapshot));
        costs.reading.push_back(timeOf([&] { document::readFile(file); }));
        costs.inserting.push_back(timeOf([&] { floor.insert(rows); }));
    }
    return costs;
}

double sumOf(std::span<const double> values)
{
    return std::accumulate(values.begin(), values.end(), 0.0);
}

int reportImport(const std::vector<std::string>& files, const fs::path& work)
{
    const Costs costs = measure(files, work);
    const size_t tenth = files.size() / 10;
    const auto part = [&](const Series& series, size_t first, size_t count) {
        return std::span(series).subspan(first, count);
    };
    Report report(format("Taking in %zu documents", files.size()));
    std::vector<std::vector<std::string>> rows;
    for (const auto& [name, first, count] : {std::tuple{"all", size_t{0}, files.size()},
                                             {"first tenth", size_t{0}, tenth},
                                             {"second tenth", tenth, tenth},
                                             {"last tenth", files.size() - tenth, tenth}}) {
        const double scale = 1e6 * static_cast<double>(count);
        const double import = sumOf(part(costs.import, first, count)) / scale;
        const double reading = sumOf(part(costs.reading, first, count)) / scale;
        const double inserting = sumOf(part(costs.inserting, first, count)) / scale;
        rows.push_back({name, format("%.2f", import), format("%.2f", reading), format("%.2f", inserting),
                        format("%.2f", import / (reading + inserting))});
    }
    report.table({"documents", "import, ms each", "reading", "inserting", "ratio"}, rows);
    report.atMost("import, times reading and inserting",
                  sumOf(costs.import) / (sumOf(costs.reading) + sumOf(costs.inserting)), 2);
    const double growth =
        sumOf(part(costs.import, files.size() - tenth, tenth)) / sumOf(part(costs.import, 0, tenth));
    report.atMost("the last tenth, times the first", growth, 1.2);
    report.atLeast("the last tenth, times the first", growth, 0.8);
    return report.status();
}

std::string contentOf(const fs::path& file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

int reportQuestions(const fs::path& questions, const fs::path& work)
{
    inventory::Database database(work / "inventory.db", inventory::Database::Access::read);
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(questions))
        files.push_back(entry.path());
    std::ranges::sort(files);
    Report report(format("Questions, asked of %.0f MB",
                         static_cast<double>(fs::file_size(work / "inventory.db")) / 1e6));
    std::vector<std::vector<std::string>> rows;
    double longest = 0;
    for (const fs::path& file : files) {
        size_t answers = 0;
        const double time = timeOf([&] {
            inventory::Statement statement(database, contentOf(file));
            while (statement.step())
                ++answers;
        });
        longest = std::max(longest, time);
        rows.push_back({file.stem(), std::to_string(answers), format("%.0f", time / 1e6)});
    }
    report.table({"question", "rows", "ms"}, rows);
    report.atMost("the longest question", longest / 1e6, 1000, " ms");
    return report.status();
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 4) {
        std::fputs("usage: kord-bench-inventory DOCUMENTS QUESTIONS WORK\n", stderr);
        return 2;
    }
    try {
        const fs::path work = argv[3];
        fs::create_directories(work);
        for (const char* const name : {"inventory.db", "floor.db"})
            fs::remove(work / name);
        return reportImport(document::documentsOf(argv[1]), work) | reportQuestions(argv[2], work);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kord-bench-inventory: %s\n", failure.what());
        return 2;
    }
}
