// The parts of documents as a list: which kind, which columns, which rows, in which order, or only how many.

#pragma once

#include "document/condition.h"
#include "document/document.h"
#include "document/format.h"
#include "document/rows.h"

#include <array>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace document
{

struct ListOptions {
    std::string kind; ///< a word that `kindsOf` knows
    Format format = Format::table;
    std::vector<std::string> columns; ///< none: a table's usual ones, or all
    std::vector<std::string> added;   ///< columns on top of them
    std::vector<std::string> conditions;
    std::vector<std::string> order;                ///< "rack", "-slot"
    std::optional<std::vector<std::string>> count; ///< how many rows have the same values in these columns
    bool header = true;
    bool several = false; ///< rows of several documents: a table tells of which
};

/// A column of a list, as each of its kinds has it; none where a kind has no such column.
struct Field {
    std::string name;
    Type type = Type::text;
    std::array<const Column*, kindCount> columns{};

    [[nodiscard]] Value of(const Row& row, Values& values) const;
};

/// Rows are written as their documents come, but for what is to be sorted or counted.
class List
{
public:
    /// A platform::Failure where there is no such kind or column.
    List(ListOptions options, Write write);

    void add(Document document);
    void finish();

private:
    struct Order {
        Field field;
        bool descending = false;
    };

    struct Where {
        Condition condition;
        Field field;
    };

    /// A document whose rows wait for their turn.
    struct Kept {
        Document document;
        Values values;

        explicit Kept(Document theDocument) : document(std::move(theDocument)), values(document) {}
    };

    struct Waiting {
        std::vector<Value> keys;
        Row row;
        Kept* of = nullptr;
    };

    struct Group {
        std::vector<Value> values;
        int64_t count = 0;
    };

    [[nodiscard]] Field fieldOf(const std::string& name) const;
    [[nodiscard]] std::vector<std::string> columnNames() const;
    [[nodiscard]] std::vector<std::string> usualColumns() const;
    void chooseFields();
    void chooseOrder();
    [[nodiscard]] bool holds(const Row& row, Values& values) const;
    void fill(std::vector<Value>& values, const Row& row, Values& from);
    std::vector<Value> valuesOf(const Row& row, Values& from);
    void gather(Kept& from);
    void tally(std::vector<Value> values);
    void finishGroups();
    void finishWaiting();
    [[nodiscard]] bool before(const std::vector<Value>& one, const std::vector<Value>& other) const;

    const ListOptions options;
    const std::vector<Kind> listed;
    std::vector<Field> fields;                                                      ///< shown, or counted by
    std::array<std::vector<std::pair<size_t, const Column*>>, kindCount> ownFields; ///< those a kind has
    Kind filledFor = Kind::other; ///< the kind of the row that was told last
    std::vector<Order> order;
    std::vector<Where> conditions;
    std::unique_ptr<Formatter> formatter;

    std::deque<Kept> kept;
    std::vector<Waiting> waiting;
    std::unordered_map<std::string, size_t> groupIndexes;
    std::deque<std::string> groupTexts; ///< behind the groups' values
    std::vector<Group> groups;
};

} // namespace document
