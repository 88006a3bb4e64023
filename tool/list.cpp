// kord list: the parts of documents as a table, as CSV or as JSON.

#include "commands.h"
#include "documents.h"
#include "output.h"
#include "tableOptions.h"

#include "document/list.h"
#include "platform/failure.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tool
{

namespace
{

struct ListOptions {
    std::string kind;
    std::vector<std::string> files;
    std::string columns;
    std::vector<std::string> conditions;
    std::string order;
    TableOptions table;
    std::optional<std::string> count;
};

/// The words between the commas.
std::vector<std::string> split(std::string_view text)
{
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(','));
        if (!word.empty()) words.emplace_back(word);
        text.remove_prefix(std::min(word.size() + 1, text.size()));
    }
    return words;
}

/// Columns to add stand among the columns, or among the arguments: "+within,facility".
void takeAdded(std::vector<std::string>& words, std::vector<std::string>& added)
{
    std::erase_if(words, [&](const std::string& word) {
        if (!word.starts_with('+')) return false;
        for (std::string& name : split(std::string_view(word).substr(1)))
            added.push_back(std::move(name));
        return true;
    });
}

int list(const ListOptions& options, Output& output)
{
    std::vector<std::string> arguments = {options.kind};
    arguments.insert(arguments.end(), options.files.begin(), options.files.end());
    document::ListOptions wanted;
    wanted.format = options.table.format();
    std::vector<std::string> columns = {options.columns};
    takeAdded(columns, wanted.added);
    if (!columns.empty()) wanted.columns = split(columns.front());
    wanted.conditions = options.conditions;
    wanted.order = split(options.order);
    wanted.header = !options.table.noHeader;
    takeAdded(arguments, wanted.added);
    if (arguments.size() < 2) throw platform::Failure("list needs a kind of parts and a FILE");
    wanted.kind = arguments.front();
    arguments.erase(arguments.begin());
    wanted.several = areSeveral(arguments);
    if (options.count) wanted.count = split(*options.count);

    document::List rows(wanted, [&](std::string_view text) { output.write(text); });
    const int status =
        eachDocument(arguments, [&](document::Document document) { rows.add(std::move(document)); });
    rows.finish();
    return status;
}

/// The columns of the kind that was typed; of all kinds where none was.
std::vector<std::string> columnsFor(const std::vector<std::string>& arguments)
{
    const auto kind = std::ranges::find_if(
        arguments, [](const std::string& word) { return !document::kindsOf(word).empty(); });
    return document::columnNamesOf(document::kindsOf(kind == arguments.end() ? "all" : *kind));
}

} // namespace

platform::Command listCommand()
{
    const auto options = std::make_shared<ListOptions>();
    const platform::Offers columns = {.words = columnsFor, .several = true};
    return writing(
        {.name = "list",
         .help = "List the parts of one kind, or of all kinds",
         .arguments = {{.name = "KIND",
                        .into = &options->kind,
                        .help = "What to list: drives, array-sites, all; \"kord kinds\" tells more",
                        .offers = {.words = [](const auto&) { return document::kindWords(); }}},
                       {.name = "FILE",
                        .into = &options->files,
                        .help = "A document, a folder of documents, an inventory database or - for standard "
                                "input"}},
         .options = {{.names = "-c,--columns",
                      .into = &options->columns,
                      .help = "Only these columns, in this order; +COLUMN,... adds to the usual ones",
                      .value = "COLUMN,...",
                      .offers = columns},
                     {.names = "--where",
                      .into = &options->conditions,
                      .help = "Only rows for which COLUMN OP VALUE holds; OP is one of = != < <= > >= ~",
                      .value = "CONDITION"},
                     {.names = "--sort",
                      .into = &options->order,
                      .help = "In the order of these columns, downwards behind a minus sign",
                      .value = "[-]COLUMN,...",
                      .offers = columns},
                     options->table.formatOption(),
                     options->table.headerOption(),
                     {.names = "--count",
                      .into = &options->count,
                      .help = "Only how many there are, or how many have the same values in these columns",
                      .value = "COLUMN,...",
                      .offers = columns,
                      .mayLackValue = true}}},
        [options](Output& output) { return list(*options, output); });
}

} // namespace tool
