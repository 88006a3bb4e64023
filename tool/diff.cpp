// kord diff: what happened to the machine between two documents.

#include "commands.h"
#include "output.h"

#include "document/diff.h"
#include "document/reader.h"
#include "document/report.h"

#include <memory>
#include <string>

namespace tool
{

namespace
{

constexpr int differences = 1;

struct Options {
    std::string before;
    std::string after;
    bool json = false;
};

int diff(const Options& options, Output& output)
{
    const auto changes =
        document::diff(document::readFile(options.before), document::readFile(options.after));
    output.write(options.json ? document::json(changes, options.before, options.after)
                              : document::lines(changes));
    return changes.empty() ? 0 : differences;
}

} // namespace

platform::Command diffCommand()
{
    const auto options = std::make_shared<Options>();
    return writing(
        {.name = "diff",
         .help = "Show what differs between two inventory documents",
         .arguments = {{.name = "OLD", .into = &options->before, .help = "The older document"},
                       {.name = "NEW", .into = &options->after, .help = "The newer document"}},
         .options = {{.names = "--json", .into = &options->json, .help = "Print the differences as JSON"}}},
        [options](Output& output) { return diff(*options, output); });
}

} // namespace tool
