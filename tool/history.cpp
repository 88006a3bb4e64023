// kord history: where a part has been.

#include "commands.h"
#include "output.h"
#include "tableOptions.h"

#include "inventory/inventory.h"

#include <memory>
#include <string>

namespace tool
{

namespace
{

constexpr int unknown = 1;

struct HistoryOptions {
    std::string database;
    std::string part;
    TableOptions table;
};

int history(const HistoryOptions& options, Output& output)
{
    inventory::Inventory inventory(options.database, inventory::Database::Access::read);
    const size_t rows = inventory.history(options.part, options.table.format(), !options.table.noHeader,
                                          [&](std::string_view text) { output.write(text); });
    return rows == 0 ? unknown : 0;
}

} // namespace

platform::Command historyCommand()
{
    const auto options = std::make_shared<HistoryOptions>();
    return writing({.name = "history",
                    .help = "Tell where a part has been, document by document",
                    .arguments = {{.name = "DATABASE",
                                   .into = &options->database,
                                   .help = "An inventory database that kord import made"},
                                  {.name = "SERIAL|ID",
                                   .into = &options->part,
                                   .help = "The part's serial number or identifier",
                                   .offers = {.paths = platform::Offers::Paths::none}}},
                    .options = {options->table.formatOption(), options->table.headerOption()}},
                   [options](Output& output) { return history(*options, output); });
}

} // namespace tool
