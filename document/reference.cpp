#include "document/reference.h"

#include "platform/failure.h"
#include "platform/nearest.h"

#include <algorithm>

namespace document
{

namespace
{

std::string_view wordOf(Type type)
{
    switch (type) {
    case Type::text:
        return "text";
    case Type::number:
        return "number";
    case Type::texts:
        return "texts";
    case Type::numbers:
        return "numbers";
    case Type::time:
        return "time";
    }
    return {};
}

/// Where parts of the kind stand: "CEC" in the list "Enclosures".
std::string placeOf(const KindRow& row)
{
    if (row.kind == Kind::system) return "the document's one resource";
    if (row.kind == Kind::host) return "property U2 of a partition";
    if (row.kind == Kind::other) return "whatever is of no other kind";
    const std::string list = "list \"" + std::string(row.list) + '"';
    return row.byList ? list : '"' + std::string(row.name) + "\" in the " + list;
}

} // namespace

std::vector<Kind> knownKinds(const std::string& word)
{
    std::vector<Kind> found = kindsOf(word);
    if (!found.empty()) return found;
    const std::string meant = platform::didYouMean(word, kindWords());
    throw platform::Failure("no kind \"" + word + '"' +
                            (meant.empty() ? ": \"kord kinds\" lists them" : meant));
}

void listKinds(const Write& write)
{
    const auto table = formatterOf(
        Format::table, {{.name = "kind"}, {.name = "word"}, {.name = "name"}, {.name = "in a document"}},
        true, write);
    for (const std::string& word : kindWords()) {
        const KindRow& row = rowOf(kindsOf(word).back());
        if (word == "all") continue;
        const std::string place = placeOf(row);
        table->row(std::vector<Value>{row.word, word, row.singular, std::string_view(place)});
    }
    table->finish();
}

void listColumns(const std::string& kind, const Write& write)
{
    const auto table = formatterOf(
        Format::table,
        {{.name = "column"}, {.name = "type"}, {.name = "unit"}, {.name = "meaning"}, {.name = "from"}}, true,
        write);
    std::vector<std::string> known;
    for (const Kind one : knownKinds(kind)) {
        for (const Column* column : columnsOf(one)) {
            if (std::ranges::find(known, column->name) != known.end()) continue;
            known.emplace_back(column->name);
            std::string source = sourceOf(*column);
            std::erase(source, '`');
            table->row(std::vector<Value>{column->name, wordOf(column->type), column->unit, column->meaning,
                                          std::string_view(source)});
        }
    }
    table->finish();
}

} // namespace document
