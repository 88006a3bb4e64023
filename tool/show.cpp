// kord show: one document for people.

#include "commands.h"
#include "documents.h"
#include "output.h"

#include "document/page.h"
#include "document/tree.h"

#include <clocale>
#include <memory>
#include <string>

#include <langinfo.h>

namespace tool
{

namespace
{

struct ShowOptions {
    std::string file;
    std::string page;
};

document::Lines drawableLines()
{
    std::setlocale(LC_CTYPE, "");
    return std::string_view(nl_langinfo(CODESET)) == "UTF-8" ? document::Lines::unicode
                                                             : document::Lines::ascii;
}

int show(const ShowOptions& options, Output& output)
{
    const document::Document document = readDocument(options.file);
    if (!options.page.empty())
        writePage(options.page, document::page(document), output);
    else
        writeTree(document, drawableLines(), [&](std::string_view text) { output.write(text); });
    return 0;
}

} // namespace

platform::Command showCommand()
{
    const auto options = std::make_shared<ShowOptions>();
    return writing({.name = "show",
                    .help = "Show one inventory document as a tree",
                    .arguments = {{.name = "FILE", .into = &options->file, .help = "The document"}},
                    .options = {{.names = "--html",
                                 .into = &options->page,
                                 .help = "Write it as a page for a browser",
                                 .value = "PAGE"}}},
                   [options](Output& output) { return show(*options, output); });
}

} // namespace tool
