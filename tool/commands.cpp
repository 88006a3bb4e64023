#include "commands.h"

#include "document/diff.h"
#include "document/follow.h"
#include "document/json.h"
#include "document/page.h"
#include "document/progress.h"
#include "document/reader.h"
#include "document/report.h"
#include "document/text.h"
#include "document/tree.h"
#include "platform/failure.h"

#include <chrono>
#include <clocale>
#include <cstdio>
#include <memory>
#include <string_view>
#include <thread>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tool
{

namespace
{

constexpr int differences = 1;
constexpr int unsuccessful = 1;
constexpr int collected = 3; // the collector's own status

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

/// A line that is written over as long as it is a terminal's, else one line after the other.
class ProgressLine
{
public:
    void show(const std::string& line)
    {
        if (line == last) return;
        last = line;
        print(terminal ? "\r" + document::cutTo(line, columns()) + "\x1b[K" : line + '\n');
    }
    void end(const std::string& line) { print(terminal ? "\r" + line + "\x1b[K\n" : line + '\n'); }
    const bool terminal = isatty(STDOUT_FILENO) != 0;

private:
    static size_t columns()
    {
        constexpr size_t usual = 80;
        winsize size = {};
        const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 10;
        return (known ? size.ws_col : usual) - 1;
    }

    std::string last;
};

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

int follow(const std::string& log)
{
    using namespace std::chrono_literals;
    document::Log lines(log);
    document::Progress progress;
    ProgressLine output;
    std::string_view phase;
    for (;; std::this_thread::sleep_for(100ms)) {
        lines.read([&](std::string_view line) { progress.read(line); });
        if (progress.started() && progress.status()) break;
        if (!progress.started()) {
            output.show("waiting for a collection in " + document::shown(log));
        } else if (output.terminal || progress.phase() != phase) {
            phase = progress.phase();
            output.show(progress.line());
        }
    }
    output.end(progress.line());
    return progress.status() == collected ? 0 : unsuccessful;
}

} // namespace tool
