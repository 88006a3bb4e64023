// kord xml: one document mended, for every program that reads XML.

#include "commands.h"
#include "output.h"

#include "document/completeness.h"
#include "document/mend.h"

#include <memory>
#include <string>

namespace tool
{

namespace
{

void tell(const document::Scanner& scanner, const document::Completeness& completeness)
{
    const std::string& name = scanner.name();
    for (const document::Finding& finding : scanner.findings())
        platform::complain("kord", name + ':' + std::to_string(finding.line) + ": " + finding.what);
    const uint64_t more = scanner.findingCount() - scanner.findings().size();
    if (more > 0) platform::complain("kord", name + ": " + std::to_string(more) + " more of these");
    for (const std::string& what : completeness.missing())
        platform::complain("kord", name + ": the document is incomplete: " + what);
}

int xml(const std::string& file, Output& output)
{
    document::Input input(file);
    document::Scanner scanner(input);
    document::Completeness completeness;
    document::mend(scanner, completeness, [&](std::string_view piece) { output.write(piece); });
    tell(scanner, completeness);
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
