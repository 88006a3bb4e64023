#include "document/kindList.h"

#include "platform/failure.h"
#include "platform/nearest.h"

#include <algorithm>

namespace document
{

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
