#include "document/list.h"

#include "document/kindList.h"

#include "platform/failure.h"
#include "platform/nearest.h"

#include <algorithm>
#include <compare>
#include <iterator>
#include <utility>

namespace document
{

namespace
{

/// What a table of parts of several kinds shows.
constexpr auto acrossKinds =
    std::to_array<std::string_view>({"kind", "id", "rack", "enclosure", "serial", "part_number", "firmware"});
/// What tells one document's rows from another's.
constexpr auto ofDocument = std::to_array<std::string_view>({"system", "collected"});

constexpr std::string_view countName = "count";

/// Where there is a value it comes first, numbers before texts.
std::weak_ordering compare(const Value& one, const Value& other)
{
    if (isEmpty(one) || isEmpty(other)) return isEmpty(one) <=> isEmpty(other);
    const auto* const number = std::get_if<int64_t>(&one);
    const auto* const otherNumber = std::get_if<int64_t>(&other);
    if (number != nullptr && otherNumber != nullptr) return *number <=> *otherNumber;
    const auto* const text = std::get_if<std::string_view>(&one);
    const auto* const otherText = std::get_if<std::string_view>(&other);
    if (text != nullptr && otherText != nullptr) return compareNaturally(*text, *otherText) <=> 0;
    return compareNaturally(textOf(one), textOf(other)) <=> 0;
}

} // namespace

Value Field::of(const Row& row, Values& values) const
{
    const Column* const column = columns.at(static_cast<size_t>(row.kind));
    return column == nullptr ? Value{} : values.of(row, *column);
}

List::List(ListOptions ofOptions, Write write)
    : options(std::move(ofOptions)), listed(knownKinds(options.kind))
{
    chooseFields();
    chooseOrder();
    for (const std::string& text : options.conditions) {
        const Condition condition(
            text, [&](const std::string& name) { return fieldOf(name).type == Type::number; });
        conditions.push_back({.condition = condition, .field = fieldOf(condition.column())});
    }
    std::vector<Heading> headings;
    for (const Field& field : fields)
        headings.push_back({.name = field.name, .toTheRight = field.type == Type::number});
    if (options.count) headings.push_back({.name = std::string(countName), .toTheRight = true});
    const bool bare = options.format == Format::table && options.count && fields.empty();
    formatter = formatterOf(options.format, std::move(headings), options.header && !bare, std::move(write));
}

Field List::fieldOf(const std::string& name) const
{
    Field field{.name = name};
    bool known = false;
    for (const Kind kind : listed) {
        const std::vector<const Column*> columns = columnsOf(kind);
        const auto found = std::ranges::find(columns, name, &Column::name);
        if (found == columns.end()) continue;
        field.columns.at(static_cast<size_t>(kind)) = *found;
        if (!std::exchange(known, true)) field.type = (*found)->type;
    }
    if (known) return field;
    throw platform::Failure("no column \"" + name + "\" of " + options.kind +
                            platform::didYouMean(name, columnNamesOf(listed)));
}

std::vector<std::string> List::columnNames() const
{
    std::vector<std::string> names = options.columns.empty() ? usualColumns() : options.columns;
    names.insert(names.end(), options.added.begin(), options.added.end());
    std::vector<std::string> once;
    for (const std::string& name : options.count.value_or(names)) {
        if (std::ranges::find(once, name) == once.end()) once.push_back(name);
    }
    return once;
}

/// People want the columns that tell most, programs all.
std::vector<std::string> List::usualColumns() const
{
    if (options.format != Format::table) return columnNamesOf(listed);
    std::vector<std::string> names;
    if (options.several) names.assign(ofDocument.begin(), ofDocument.end());
    const auto own = [](Kind kind) { return rowOf(kind).columns.data(); };
    const bool alike =
        std::ranges::all_of(listed, [&](Kind kind) { return own(kind) == own(listed.front()); });
    const std::vector<std::string> usual =
        alike ? columnNamesOf(listed, true)
              : std::vector<std::string>(acrossKinds.begin(), acrossKinds.end());
    names.insert(names.end(), usual.begin(), usual.end());
    return names;
}

void List::chooseFields()
{
    for (const std::string& name : columnNames()) {
        const Field& field = fields.emplace_back(fieldOf(name));
        for (const Kind kind : listed) {
            const Column* const column = field.columns.at(static_cast<size_t>(kind));
            if (column != nullptr)
                ownFields.at(static_cast<size_t>(kind)).emplace_back(fields.size() - 1, column);
        }
    }
}

/// What is counted can be sorted by what it is counted by, and by the count.
void List::chooseOrder()
{
    for (std::string name : options.order) {
        const bool descending = name.starts_with('-');
        if (descending) name.erase(0, 1);
        const bool byCount = options.count && name == countName;
        order.push_back({.field = byCount ? Field{.name = name} : fieldOf(name), .descending = descending});
        const bool counted = byCount || std::ranges::find(fields, name, &Field::name) != fields.end();
        if (options.count && !counted)
            throw platform::Failure("counts cannot be sorted by " + name + ", which is not counted by");
    }
}

bool List::holds(const Row& row, Values& values) const
{
    return std::ranges::all_of(
        conditions, [&](const Where& where) { return where.condition.holds(where.field.of(row, values)); });
}

/// Of many kinds most columns are not the row's: what is there of the row before is written over, or emptied.
void List::fill(std::vector<Value>& values, const Row& row, Values& from)
{
    if (values.size() != fields.size() || filledFor != row.kind) values.assign(fields.size(), Value{});
    filledFor = row.kind;
    for (const auto& [index, column] : ownFields.at(static_cast<size_t>(row.kind)))
        values[index] = from.of(row, *column);
}

std::vector<Value> List::valuesOf(const Row& row, Values& from)
{
    std::vector<Value> values;
    fill(values, row, from);
    return values;
}

void List::add(Document document)
{
    if (!order.empty() && !options.count) return gather(kept.emplace_back(std::move(document)));
    Kept passing(std::move(document));
    gather(passing);
}

void List::gather(Kept& from)
{
    std::vector<Value> values;
    for (Row& row : rowsOf(from.document, listed)) {
        if (!holds(row, from.values)) continue;
        if (options.count) {
            tally(valuesOf(row, from.values));
        } else if (order.empty()) {
            fill(values, row, from.values);
            formatter->row(values);
        } else {
            std::vector<Value> keys;
            for (const Order& by : order)
                keys.push_back(by.field.of(row, from.values));
            waiting.push_back({.keys = std::move(keys), .row = std::move(row), .of = &from});
        }
    }
}

void List::tally(std::vector<Value> values)
{
    std::string key;
    for (const Value& value : values)
        appendJson(key, value);
    const auto [known, isNew] = groupIndexes.try_emplace(std::move(key), groups.size());
    if (isNew) {
        for (Value& value : values) {
            if (const auto* const text = std::get_if<std::string_view>(&value))
                value = std::string_view(groupTexts.emplace_back(*text));
        }
        groups.push_back({.values = std::move(values)});
    }
    ++groups[known->second].count;
}

bool List::before(const std::vector<Value>& one, const std::vector<Value>& other) const
{
    for (size_t i = 0; i < one.size(); ++i) {
        const auto result = compare(one[i], other[i]);
        if (result == 0) continue;
        // What has no value comes last either way.
        const bool turned = i < order.size() && order[i].descending && !isEmpty(one[i]) && !isEmpty(other[i]);
        return turned ? result > 0 : result < 0;
    }
    return false;
}

/// Groups come in the order of their values, behind the order that was asked for.
void List::finishGroups()
{
    std::vector<std::pair<std::vector<Value>, const Group*>> sorted;
    for (const Group& group : groups) {
        std::vector<Value> keys;
        for (const Order& by : order) {
            const auto field = std::ranges::find(fields, by.field.name, &Field::name) - fields.begin();
            keys.push_back(by.field.name == countName ? Value{group.count}
                                                      : group.values[static_cast<size_t>(field)]);
        }
        keys.insert(keys.end(), group.values.begin(), group.values.end());
        sorted.emplace_back(std::move(keys), &group);
    }
    std::ranges::stable_sort(
        sorted, [&](const auto& one, const auto& other) { return before(one.first, other.first); });
    if (fields.empty() && groups.empty()) formatter->row(std::vector<Value>{int64_t{0}});
    for (const auto& [keys, group] : sorted) {
        std::vector<Value> values = group->values;
        values.emplace_back(group->count);
        formatter->row(values);
    }
}

void List::finishWaiting()
{
    std::ranges::stable_sort(
        waiting, [&](const Waiting& one, const Waiting& other) { return before(one.keys, other.keys); });
    for (const Waiting& row : waiting)
        formatter->row(valuesOf(row.row, row.of->values));
}

void List::finish()
{
    if (options.count)
        finishGroups();
    else
        finishWaiting();
    formatter->finish();
}

} // namespace document
