// kord kinds: what a document can hold.

#include "commands.h"
#include "output.h"

#include "document/kindList.h"

#include <memory>
#include <string>

namespace tool
{

platform::Command kindsCommand()
{
    const auto kind = std::make_shared<std::string>();
    return writing({.name = "kinds",
                    .help = "List the kinds of parts, or the columns of one kind",
                    .arguments = {{.name = "KIND",
                                   .into = kind.get(),
                                   .help = "Whose columns to list",
                                   .required = false,
                                   .offers = {.words = [](const auto&) { return document::kindWords(); }}}}},
                   [kind](Output& output) {
                       const document::Write write = [&](std::string_view text) { output.write(text); };
                       if (kind->empty())
                           document::listKinds(write);
                       else
                           document::listColumns(*kind, write);
                       return 0;
                   });
}

} // namespace tool
