// kord follow: how far a running collection has come.

#include "commands.h"
#include "output.h"

#include "document/follow.h"
#include "document/progress.h"
#include "document/trace.h"
#include "platform/text.h"

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace tool
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int unsuccessful = 1;
constexpr int collected = 3; // the collector's own status

struct FollowOptions {
    std::string log;
    uint32_t quietAfter = 60; ///< seconds without a new line that are told
};

/// A line that is written over as long as it is a terminal's, else one line after the other.
class RunLine
{
public:
    explicit RunLine(Output& inOutput) : terminal(inOutput.isTerminal()), output(inOutput) {}

    void show(const std::string& line)
    {
        if (line == last) return;
        last = line;
        write(terminal ? "\r" + platform::cutTo(line, Output::columns() - 1) + "\x1b[K" : line + '\n');
    }
    void end(const std::string& line) { write(terminal ? "\r" + line + "\x1b[K\n" : line + '\n'); }
    const bool terminal;

private:
    void write(const std::string& text)
    {
        output.write(text);
        output.flush();
    }

    Output& output;
    std::string last;
};

/// What is shown of a run at a time: on a terminal all that changes, else each step and each silence.
class Shown
{
public:
    Shown(Output& inOutput, std::chrono::seconds longSilence) : output(inOutput), patience(longSilence) {}

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

    RunLine output;

private:
    std::chrono::seconds patience;
    Clock::time_point lastGrowth = Clock::now();
    std::string_view phase;
    bool toldSilence = false;
};

int follow(const FollowOptions& options, Output& output)
{
    using namespace std::chrono_literals;
    document::Log log(options.log);
    document::Progress progress;
    document::TraceReader lines([&](const document::TraceLine& line) { progress.read(line); });
    Shown shown(output, std::chrono::seconds(options.quietAfter));
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
            shown.output.show("waiting for a collection in " + platform::shown(options.log));
    }
    shown.output.end(progress.line());
    return progress.status() == collected ? 0 : unsuccessful;
}

} // namespace

platform::Command followCommand()
{
    const auto options = std::make_shared<FollowOptions>();
    return {.name = "follow",
            .help = "Show the progress of a collection from its trace log",
            .arguments = {{.name = "TRACE",
                           .into = &options->log,
                           .help = "The trace log, which need not exist yet"}},
            .options = {{.names = "--quiet-after",
                         .into = &options->quietAfter,
                         .help = "Say so when nothing was written for so long",
                         .value = "SECONDS"}},
            .run = [options] {
                Output output({});
                return follow(*options, output);
            }};
}

} // namespace tool
