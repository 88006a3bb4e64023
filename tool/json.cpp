// kord json: one document for programs.

#include "commands.h"
#include "documents.h"
#include "output.h"

#include "document/json.h"

#include <memory>
#include <string>

namespace tool
{

platform::Command jsonCommand()
{
    const auto file = std::make_shared<std::string>();
    return writing({.name = "json",
                    .help = "Print one document as a tree of parts in JSON",
                    .arguments = {{.name = "FILE", .into = file.get(), .help = "The document"}}},
                   [file](Output& output) {
                       document::writeJson(readDocument(*file),
                                           [&](std::string_view text) { output.write(text); });
                       return 0;
                   });
}

} // namespace tool
