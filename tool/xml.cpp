// kord xml: one document mended, for every program that reads XML.

#include "commands.h"
#include "documents.h"
#include "output.h"

#include "document/completeness.h"
#include "document/mend.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace tool
{

namespace
{

/// What the document in a file lacks, unless the file can be read but once.
std::optional<document::Missing> missingIn(const std::string& file)
{
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(file, unknown)) return std::nullopt;
    document::Input input(file);
    document::Scanner scanner(input);
    document::Completeness completeness;
    for (const document::Event* event = nullptr;
         event == nullptr || event->kind != document::Event::Kind::end;) {
        event = &scanner.next();
        completeness.see(*event);
    }
    return completeness.missing();
}

/// What the document lacks is told before it is written, where that can be known.
int xml(const std::string& file, Output& output)
{
    const std::string found = documentOf(file);
    const std::optional<document::Missing> missing = missingIn(found);
    document::Input input(found);
    if (missing) tell(input.name(), {}, 0, *missing);
    document::Scanner scanner(input);
    document::Completeness completeness;
    document::mend(scanner, completeness, [&](std::string_view piece) { output.write(piece); });
    output.flush(); // what is told now stands behind the document
    tell(input.name(), scanner.findings(), scanner.findingCount(),
         missing ? document::Missing{} : completeness.missing());
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
