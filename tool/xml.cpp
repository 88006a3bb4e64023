// kord xml: one document mended, for every program that reads XML.

#include "commands.h"
#include "documents.h"
#include "output.h"

#include "document/completeness.h"
#include "document/mend.h"

#include <memory>
#include <string>

namespace tool
{

namespace
{

int xml(const std::string& file, Output& output)
{
    document::Input input(file);
    document::Scanner scanner(input);
    document::Completeness completeness;
    document::mend(scanner, completeness, [&](std::string_view piece) { output.write(piece); });
    tell(scanner.name(), scanner.findings(), scanner.findingCount(), completeness.missing());
    return 0;
}

} // namespace

platform::Command xmlCommand()
{
    const auto file = std::make_shared<std::string>();
    return writing({.name = "xml",
                    .help = "Mend one inventory document: XML that every parser reads",
                    .arguments = {{.name = "FILE", .into = file.get(), .help = "The document"}}},
                   [file](Output& output) { return xml(*file, output); });
}

} // namespace tool
