// kord diff: what happened to the machine between two documents.

#include "commands.h"
#include "documents.h"
#include "output.h"

#include "document/diff.h"
#include "document/kindList.h"
#include "document/page.h"
#include "document/report.h"

#include <memory>
#include <string>

namespace tool
{

namespace
{

constexpr int differences = 1;
constexpr size_t manyForATerminal = 20;

struct DiffOptions {
    std::string before;
    std::string after;
    std::string kind = "all";
    bool summary = false;
    bool grouped = false;
    bool json = false;
    std::string page;
};

document::KindSet kindSetOf(const std::string& word)
{
    document::KindSet kinds;
    for (const document::Kind known : document::knownKinds(word)) {
        for (const document::KindRow& row : document::kinds) {
            if (row.word == document::rowOf(known).word) kinds.set(static_cast<size_t>(row.kind));
        }
    }
    return kinds;
}

int diff(const DiffOptions& options, Output& output)
{
    const document::KindSet kinds = kindSetOf(options.kind);
    const document::Document before = readDocument(options.before);
    const document::Document after = readDocument(options.after);
    const document::Changes changes = document::diff(before, after, kinds);
    if (changes.unknown > 0) {
        platform::complain("kord",
                           "parts that only one document tells are left out where the other is incomplete: " +
                               std::to_string(changes.unknown));
    }
    const auto write = [&](std::string_view text) { output.write(text); };
    const bool many = output.isTerminal() && changes.found.size() > manyForATerminal;
    if (!options.page.empty())
        writePage(options.page, document::page(changes), output);
    else if (options.json && options.summary)
        writeJsonSummary(changes, write);
    else if (options.json)
        writeJson(changes, write);
    else if (options.summary)
        writeSummary(changes, write);
    else
        writeLines(changes, {.grouped = options.grouped || many, .colored = output.isColored()}, write);
    return changes.found.empty() ? 0 : differences;
}

} // namespace

platform::Command diffCommand()
{
    const auto options = std::make_shared<DiffOptions>();
    return writing(
        {.name = "diff",
         .help = "Show what differs between two inventory documents",
         .arguments = {{.name = "OLD", .into = &options->before, .help = "The older document"},
                       {.name = "NEW", .into = &options->after, .help = "The newer document"}},
         .options = {{.names = "--summary",
                      .into = &options->summary,
                      .help = "Print how many changes there are of each kind of part"},
                     {.names = "--kind",
                      .into = &options->kind,
                      .help = "Print the changes of this kind of part, such as drives",
                      .value = "KIND",
                      .offers = {.words = [](const auto&) { return document::kindWords(); }}},
                     {.names = "--group",
                      .into = &options->grouped,
                      .help = "Print identical changes as one line with their count, as more than 20 are on "
                              "a terminal"},
                     {.names = "--json", .into = &options->json, .help = "Print JSON"},
                     {.names = "--html",
                      .into = &options->page,
                      .help =
                          "Write them as a page for a browser: the newer document, drawn with its changes",
                      .value = "PAGE"}}},
        [options](Output& output) { return diff(*options, output); });
}

} // namespace tool
