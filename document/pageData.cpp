#include "document/pageData.h"

#include "document/json.h"
#include "document/report.h"
#include "document/rows.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace document
{

namespace
{

/// Texts of JSON, each once.
class Distinct
{
public:
    size_t indexOf(const std::string& json)
    {
        if (last != nullptr && last->first == json) return last->second;
        const auto [known, isNew] = indexes.try_emplace(json, indexes.size());
        if (isNew) list.append(list.empty() ? "" : ",").append(json);
        last = &*known;
        return known->second;
    }

    [[nodiscard]] size_t size() const { return indexes.size(); }
    [[nodiscard]] std::string json() const { return '[' + list + ']'; }

private:
    std::unordered_map<std::string, size_t> indexes;
    const std::pair<const std::string, size_t>* last = nullptr;
    std::string list;
};

/// The values that the rows of a table have in one column.
class Cells
{
public:
    void add(const std::string& json) { indexes.push_back(distinct.indexOf(json)); }
    void add(int64_t number) { add(std::to_string(number)); }
    void addText(std::string_view text) { add(quote(text)); }

    [[nodiscard]] std::string json() const { return '[' + distinct.json() + ",\"" + digits() + "\"]"; }

private:
    [[nodiscard]] std::string digits() const
    {
        constexpr std::string_view alphabet =
            "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-_";
        constexpr size_t base = alphabet.size();
        std::string text;
        if (distinct.size() <= 1 || distinct.size() == indexes.size()) return text;
        size_t greatest = base;
        for (; greatest < distinct.size(); greatest *= base) {
        }
        text.reserve(indexes.size() * 2);
        for (const size_t index : indexes) {
            for (size_t of = greatest / base; of > 0; of /= base)
                text += alphabet[index / of % base];
        }
        return text;
    }

    Distinct distinct;
    std::vector<size_t> indexes;
};

// --- What rows there are

/// A row and the document that tells it.
struct PageRow {
    Row row;
    Values* values = nullptr;
    int64_t parent = -1;
    std::string_view parentId = {};
};

struct Table {
    std::vector<const Column*> columns;
    std::vector<PageRow> rows;
    size_t old = 0;
};

const Part* around(const Row& row)
{
    return row.kind == Kind::host ? row.part : row.part->around;
}

/// What is in the older document only.
class Removed
{
public:
    explicit Removed(const Changes& changes)
    {
        for (const Change& change : changes.found) {
            if (change.type == ChangeType::removed && change.kind == Kind::host)
                hosts.emplace(change.before, change.host);
            else if (change.type == ChangeType::removed)
                gone.insert(change.before);
            else
                stayed.insert(change.before);
        }
    }

    [[nodiscard]] bool has(const Row& row) const
    {
        if (row.kind == Kind::host && hosts.contains({row.part, row.host.description})) return true;
        for (const Part* part = row.part; part != nullptr; part = part->around) {
            if (stayed.contains(part)) return false;
            if (gone.contains(part)) return true;
        }
        return false;
    }

private:
    std::unordered_set<const Part*> gone;
    std::unordered_set<const Part*> stayed;
    std::set<std::pair<const Part*, std::string_view>> hosts;
};

// --- Patterns

/// The columns of a kind whose values are found in a property, or in the identifier.
struct Holder {
    size_t index = 0;
    const Column* column = nullptr;
    Column text; ///< the same column, of which the document's own text is asked for
};

std::vector<Holder> holdersOf(const std::vector<const Column*>& columns)
{
    std::vector<Holder> holders;
    for (size_t i = 0; i < columns.size(); ++i) {
        Holder holder{.index = i, .column = columns[i], .text = *columns[i]};
        holder.text.type = Type::text;
        const Source& source = columns[i]->source;
        if (!source.code.empty() || source.from == From::idEnd) holders.push_back(holder);
    }
    return holders;
}

/// A piece of a text that a column tells.
struct Piece {
    size_t start = 0;
    size_t length = 0;
    size_t column = 0;
};

/// JSON's numbers are exact in the page's script up to here.
constexpr int64_t mostExact = (int64_t{1} << 53U) - 1;

bool isExact(int64_t number)
{
    return number <= mostExact && number >= -mostExact;
}

class Patterns
{
public:
    Patterns(const PageRow& ofRow, const std::vector<Holder>& theHolders) : of(ofRow), holders(theHolders) {}

    /// The text as JSON's list of pieces. What no column tells is a text itself.
    std::string property(const Property& property)
    {
        const std::string_view text = property.value;
        if (text.empty()) return "[]";
        pieces.clear();
        for (const Holder& holder : holders) {
            if (holder.column->source.code == property.code()) find(holder, text);
        }
        if (pieces.empty() && text == of.row.part->id) return "[-2]";
        if (pieces.empty() && text == of.row.part->name) return "[-3]";
        return write(text, 0, "");
    }

    /// The first text that is asked for.
    std::string identifier()
    {
        const std::string_view text = of.row.part->id;
        for (const Holder& holder : holders) {
            if (holder.column->source.from == From::idEnd) find(holder, text);
        }
        const bool begins = !of.parentId.empty() && text.starts_with(of.parentId);
        return begins ? write(text, of.parentId.size(), "-1") : write(text, 0, "");
    }

private:
    void find(const Holder& holder, std::string_view text)
    {
        const Value found = of.values->of(of.row, holder.text);
        const auto* view = std::get_if<std::string_view>(&found);
        const std::less_equal<const char*> notBehind;
        if (view == nullptr || view->empty() || !notBehind(text.data(), view->data()) ||
            !notBehind(view->data() + view->size(), text.data() + text.size()))
            return;
        size_t length = view->size();
        if (holder.column->type == Type::number) {
            const Value number = of.values->of(of.row, *holder.column);
            if (!std::holds_alternative<int64_t>(number)) return;
            length -= holder.column->source.unit.size();
            if (std::to_string(std::get<int64_t>(number)) != view->substr(0, length)) return;
        }
        pieces.push_back({.start = static_cast<size_t>(view->data() - text.data()),
                          .length = length,
                          .column = holder.index});
    }

    std::string write(std::string_view text, size_t from, std::string_view first)
    {
        std::ranges::sort(pieces, {}, &Piece::start);
        std::string json = "[" + std::string(first);
        const char* separator = first.empty() ? "" : ",";
        size_t at = from;
        const auto literal = [&](size_t end) {
            if (end <= at) return;
            json += std::exchange(separator, ",");
            appendQuoted(json, text.substr(at, end - at));
        };
        for (const Piece& piece : pieces) {
            if (piece.start < at) continue;
            literal(piece.start);
            json += std::exchange(separator, ",");
            json += std::to_string(piece.column);
            at = piece.start + piece.length;
        }
        literal(text.size());
        return json + ']';
    }

    const PageRow& of;
    const std::vector<Holder>& holders;
    std::vector<Piece> pieces;
};

// --- The data

class PageData
{
public:
    explicit PageData(const Document& ofDocument) : document(ofDocument), values(ofDocument)
    {
        for (const KindRow& row : kinds) {
            if (row.kind != Kind::enclosurePartition) shown.push_back(row.kind);
            tables.at(static_cast<size_t>(row.kind)).columns = columnsOf(row.kind);
        }
        for (Row& row : rowsOf(document, shown))
            take(std::move(row), values);
        addAbsent(document.system());
    }

    std::string write(const Changes* changes)
    {
        if (changes != nullptr) takeRemoved(*changes);
        placeRows();
        std::string json = head();
        for (const char* separator = ""; const Kind kind : shown) {
            json += separator;
            appendTable(json, kind);
            separator = ",\n";
        }
        json += "],\n\"patterns\":" + patterns.json() + ",\n\"shapes\":" + shapes.json() +
                ",\n\"absent\":" + absentJson() + ",\n\"changes\":";
        if (changes == nullptr) return json + "null}";
        writeJson(*changes, [&](std::string_view text) { json += text; });
        return json + '}';
    }

private:
    Table& tableOf(Kind kind) { return tables.at(static_cast<size_t>(kind)); }

    void take(Row row, Values& from)
    {
        const Kind kind = row.kind;
        tableOf(kind).rows.push_back({.row = std::move(row), .values = &from});
    }

    void takeRemoved(const Changes& changes)
    {
        oldValues.emplace(*changes.before);
        const Removed removed(changes);
        for (Row& row : rowsOf(*changes.before, shown)) {
            if (!removed.has(row)) continue;
            ++tableOf(row.kind).old;
            take(std::move(row), *oldValues);
        }
    }

    /// Rows are counted on from kind to kind; each goes by its number where it is the row around another.
    void placeRows()
    {
        std::unordered_map<const Part*, int64_t> numbers;
        std::vector<std::string_view> ids;
        std::map<std::pair<Kind, std::string_view>, int64_t> byId;
        int64_t next = 0;
        for (const Kind kind : shown) {
            for (const PageRow& row : tableOf(kind).rows) {
                if (kind != Kind::host) {
                    numbers.emplace(row.row.part, next);
                    for (const Part* again : row.row.also)
                        numbers.emplace(again, next);
                    if (oldValues) byId.emplace(std::pair(kind, row.row.part->id), next);
                }
                ids.push_back(row.row.part->id);
                ++next;
            }
        }
        const auto numberOf = [&](const Part* part) -> int64_t {
            for (; part != nullptr; part = part->around) {
                if (const auto found = numbers.find(part); found != numbers.end()) return found->second;
                if (const auto found = byId.find({part->kind, part->id}); found != byId.end())
                    return found->second;
            }
            return -1;
        };
        for (const Kind kind : shown) {
            for (PageRow& row : tableOf(kind).rows) {
                row.parent = numberOf(around(row.row));
                if (row.parent >= 0) row.parentId = ids[static_cast<size_t>(row.parent)];
            }
        }
        for (auto& [kind, part, number] : absents)
            number = numberOf(part->around);
    }

    [[nodiscard]] std::string head() const
    {
        std::string json = "{\"system\":" + quote(document.system().name) +
                           ",\n\"timestamp\":" + quote(document.timestamp) +
                           ",\n\"source\":" + quote(document.name) + ",\n\"missing\":";
        appendJson(json, Value{wordsOf(document.missing)});
        json += ",\n\"findingCount\":" + std::to_string(document.findingCount) + ",\n\"findings\":[";
        for (const char* separator = ""; const Finding& finding : document.findings) {
            json += separator + quote("line " + std::to_string(finding.line) + ": " + finding.what);
            separator = ",";
        }
        return json + "],\n\"kinds\":[";
    }

    static std::string columnsJson(const std::vector<const Column*>& columns)
    {
        std::string json;
        for (const Column* column : columns) {
            json += json.empty() ? "[" : ",";
            for (const char* separator = "[";
                 const std::string_view text :
                 {column->name, wordOf(column->type), column->unit, column->meaning}) {
                json += separator + quote(text);
                separator = ",";
            }
            json += ',' + quote(sourceOf(*column)) + (column->shown ? ",1]" : ",0]");
        }
        return json + ']';
    }

    /// What the script derives: it would stand in every row.
    static bool isDerived(const Column& column)
    {
        switch (column.source.from) {
        case From::system:
        case From::time:
        case From::kind:
        case From::within:
        case From::id:
            return true;
        default:
            return false;
        }
    }

    void appendTable(std::string& json, Kind kind)
    {
        const KindRow& row = rowOf(kind);
        const Table& table = tableOf(kind);
        json += "{\"word\":" + quote(row.word) + ",\"singular\":" + quote(row.singular) +
                ",\"plural\":" + quote(row.plural) + ",\"counted\":" + (row.counted ? "1" : "0") +
                ",\"columns\":" + columnsJson(table.columns) +
                ",\"rows\":" + std::to_string(table.rows.size()) + ",\"old\":" + std::to_string(table.old);
        if (!table.rows.empty()) appendRows(json, table, kind);
        json += '}';
    }

    void appendRows(std::string& json, const Table& table, Kind kind)
    {
        Cells name;
        Cells list;
        Cells parent;
        Cells id;
        Cells shape;
        Cells listed;
        const std::vector<Holder> holders = holdersOf(table.columns);
        for (const PageRow& row : table.rows) {
            Patterns texts(row, holders);
            const bool host = kind == Kind::host;
            name.addText(host ? row.row.host.description : row.row.part->name);
            list.addText(host ? std::string_view{} : row.row.part->list);
            parent.add(row.parent);
            id.add(static_cast<int64_t>(patterns.indexOf(host ? "[-3]" : texts.identifier())));
            shape.add(static_cast<int64_t>(shapes.indexOf(host ? "[]" : shapeOf(*row.row.part, texts))));
            listed.add(static_cast<int64_t>(row.row.also.size() + 1));
        }
        json += ",\n\"name\":" + name.json() + ",\n\"list\":" + list.json() +
                ",\n\"parent\":" + parent.json() + ",\n\"id\":" + id.json() + ",\n\"shape\":" + shape.json() +
                ",\n\"listed\":" + listed.json() + ",\n\"values\":[";
        for (const char* separator = ""; const Column* column : table.columns) {
            json += separator + (isDerived(*column) ? "null" : cellsOf(table, *column));
            separator = ",\n";
        }
        json += ']';
    }

    static std::string cellsOf(const Table& table, const Column& column)
    {
        Cells cells;
        std::string json;
        for (const PageRow& row : table.rows) {
            const Value value = row.values->of(row.row, column);
            const int64_t* const number = std::get_if<int64_t>(&value);
            json.clear();
            if (isEmpty(value))
                json = "null";
            else if (number != nullptr && !isExact(*number))
                json = quote(std::to_string(*number));
            else
                appendJson(json, value);
            cells.add(json);
        }
        return cells.json();
    }

    std::string shapeOf(const Part& part, Patterns& texts)
    {
        std::string json = "[";
        for (const Property& property : part.properties) {
            json += json.size() > 1 ? ",[" : "[";
            appendQuoted(json, property.code());
            json += ',';
            appendQuoted(json, property.label());
            json += ',' + std::to_string(patterns.indexOf(texts.property(property))) + ']';
        }
        return json + ']';
    }

    struct Absent {
        Kind kind;
        const Part* part;
        int64_t around;
    };

    void addAbsent(const Part& part)
    {
        if (absent(part)) absents.push_back({.kind = part.kind, .part = &part, .around = -1});
        for (const Part& child : part.children)
            addAbsent(child);
    }

    [[nodiscard]] std::string absentJson() const
    {
        std::string json = "[";
        for (const Absent& one : absents) {
            json += json.size() > 1 ? ",[" : "[";
            json += quote(rowOf(one.kind).word) + ',' + std::to_string(one.around) + ']';
        }
        return json + ']';
    }

    const Document& document;
    Values values;
    std::optional<Values> oldValues;
    std::vector<Kind> shown;
    std::array<Table, kindCount> tables;
    std::vector<Absent> absents;
    Distinct patterns;
    Distinct shapes;
};

} // namespace

std::string pageData(const Document& document)
{
    return PageData(document).write(nullptr);
}

std::string pageData(const Changes& changes)
{
    return PageData(*changes.after).write(&changes);
}

} // namespace document
