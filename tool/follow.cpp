#include "commands.h"

#include "document/follow.h"
#include "document/progress.h"
#include "document/text.h"
#include "document/trace.h"
#include "platform/failure.h"

#include <chrono>
#include <cstdio>
#include <string_view>
#include <thread>

#include <sys/ioctl.h>
#include <unistd.h>

namespace tool
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int unsuccessful = 1;
constexpr int collected = 3; // the collector's own status

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
    static void print(const std::string& text)
    {
        const bool whole = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
        if (!whole || std::fflush(stdout) != 0) throw platform::failedOn("standard output");
    }
    static size_t columns()
    {
        constexpr size_t usual = 80;
        winsize size = {};
        const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 10;
        return (known ? size.ws_col : usual) - 1;
    }

    std::string last;
};

/// What is shown of a run at a time: on a terminal all that changes, else each step and each silence.
class Shown
{
public:
    explicit Shown(std::chrono::seconds longSilence) : patience(longSilence) {}

    void update(const document::Progress& progress, bool grew)
    {
        if (grew) lastGrowth = Clock::now();
        const auto silent = std::chrono::floor<std::chrono::seconds>(Clock::now() - lastGrowth);
        if (silent >= patience) {
            if (output.terminal || !toldSilence)
                output.show(progress.line() + "; nothing new for " + std::to_string(silent.count()) + " s");
            toldSilence = true;
        } else if (output.terminal || progress.phase() != phase || toldSilence) {
            phase = progress.phase();
            toldSilence = false;
            output.show(progress.line());
        }
    }

    ProgressLine output;

private:
    std::chrono::seconds patience;
    Clock::time_point lastGrowth = Clock::now();
    std::string_view phase;
    bool toldSilence = false;
};

} // namespace

int follow(const FollowOptions& options)
{
    using namespace std::chrono_literals;
    document::Log log(options.log);
    document::Progress progress;
    document::TraceReader lines([&](const document::TraceLine& line) { progress.read(line); });
    Shown shown{std::chrono::seconds(options.quietAfter)};
    for (;; std::this_thread::sleep_for(100ms)) {
        bool grew = false;
        log.read([&](std::string_view bytes) {
            lines.read(bytes);
            grew = true;
        });
        lines.settle();
        if (progress.status()) break;
        if (progress.started())
            shown.update(progress, grew);
        else
            shown.output.show("waiting for a collection in " + document::shown(options.log));
    }
    shown.output.end(progress.line());
    return progress.status() == collected ? 0 : unsuccessful;
}

} // namespace tool
