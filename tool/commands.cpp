#include "commands.h"

#include "document/diff.h"
#include "document/json.h"
#include "document/page.h"
#include "document/reader.h"
#include "document/report.h"
#include "document/tree.h"
#include "platform/failure.h"

#include <clocale>
#include <cstdio>
#include <memory>
#include <string_view>

#include <langinfo.h>

namespace tool
{

namespace
{

constexpr int differences = 1;

void print(const std::string& text)
{
    const bool whole = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (!whole || std::fflush(stdout) != 0) throw platform::failedOn("standard output");
}

void writeFile(const std::string& file, const std::string& text)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(std::fopen(file.c_str(), "wb"),
                                                                 &std::fclose);
    if (!output) throw platform::failedOn(file);
    const bool whole = std::fwrite(text.data(), 1, text.size(), output.get()) == text.size();
    if (!whole || std::fflush(output.get()) != 0) throw platform::failedOn(file);
}

document::Lines drawableLines()
{
    std::setlocale(LC_CTYPE, "");
    return std::string_view(nl_langinfo(CODESET)) == "UTF-8" ? document::Lines::unicode
                                                             : document::Lines::ascii;
}

} // namespace

int show(const ShowOptions& options)
{
    const document::Document document = document::readFile(options.file);
    if (!options.htmlFile.empty()) writeFile(options.htmlFile, document::page(document));
    if (options.json)
        print(document::json(document));
    else if (options.htmlFile.empty())
        print(document::tree(document, drawableLines()));
    return 0;
}

int diff(const DiffOptions& options)
{
    const auto changes =
        document::diff(document::readFile(options.before), document::readFile(options.after));
    print(options.json ? document::json(changes, options.before, options.after) : document::lines(changes));
    return changes.empty() ? 0 : differences;
}

} // namespace tool
