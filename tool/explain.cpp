// kord explain: what happened in a run, from its trace log.

#include "commands.h"
#include "output.h"

#include "document/explain.h"
#include "platform/failure.h"
#include "platform/fileDescriptor.h"

#include <array>
#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>

namespace tool
{

namespace
{

constexpr int somethingWrong = 1;

struct Options {
    std::string trace;
    uint32_t run = 0; ///< 0: the newest
    bool all = false;
    bool json = false;
};

/// Hands over a file's bytes. A device has no end, or nothing to tell.
void readTrace(const std::string& file, const std::function<void(std::string_view)>& take)
{
    const bool standard = file == "-";
    const platform::FileDescriptor trace(standard ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                                  : open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    struct stat status = {};
    if (!trace.isOpen() || fstat(trace.get(), &status) != 0) throw platform::failedOn(file);
    if (!standard && !S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode))
        throw platform::Failure(file + ": not a file");
    std::array<char, 65536> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    for (ssize_t got = 0; (got = read(trace.get(), bytes.data(), bytes.size())) != 0;) {
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw platform::failedOn(file);
        take({bytes.data(), static_cast<size_t>(got)});
    }
}

/// Prints runs as they come, or the one that is asked for when all are known.
class Report
{
public:
    Report(const Options& inOptions, Output& inOutput) : options(inOptions), output(inOutput) {}

    void take(const document::Run& run)
    {
        if (options.run != 0 && run.number != options.run) return;
        if (options.all)
            print(run, 0);
        else
            wanted = run;
    }

    int end(size_t runs)
    {
        if (wanted) print(*wanted, runs);
        if (options.json) output.write(printed == 0 ? "{\n\"runs\": [\n]\n}\n" : "\n]\n}\n");
        return well ? 0 : somethingWrong;
    }

    [[nodiscard]] bool found() const { return printed > 0 || wanted.has_value(); }

private:
    void print(const document::Run& run, size_t among)
    {
        const bool first = printed++ == 0;
        well = well && document::endedWell(run);
        if (options.json)
            output.write((first ? "{\n\"runs\": [\n" : ",\n") + document::explanationJson(run));
        else
            output.write((first ? "" : "\n") + document::explanation(run, among));
    }

    const Options& options;
    Output& output;
    std::optional<document::Run> wanted;
    size_t printed = 0;
    bool well = true;
};

int explain(const Options& options, Output& output)
{
    if (options.all && options.run != 0) throw platform::Failure("--run and --all exclude each other");
    Report report(options, output);
    document::Explainer explainer([&](const document::Run& run) { report.take(run); });
    readTrace(options.trace, [&](std::string_view bytes) { explainer.read(bytes); });
    explainer.end();
    if (!explainer.foundLines())
        throw platform::Failure(options.trace + ": no line of a collector's trace log");
    if (!report.found())
        throw platform::Failure(options.trace + ": has no run " + std::to_string(options.run) +
                                ", the last is " + std::to_string(explainer.runCount()));
    return report.end(explainer.runCount());
}

} // namespace

platform::Command explainCommand()
{
    const auto options = std::make_shared<Options>();
    return writing({.name = "explain",
                    .help = "Tell what happened in a run, from its trace log",
                    .arguments = {{.name = "TRACE",
                                   .into = &options->trace,
                                   .help = "The trace log, or - for standard input"}},
                    .options = {{.names = "--run",
                                 .into = &options->run,
                                 .help = "The run of this number in the log, from 1; else the newest",
                                 .value = "N",
                                 .least = 1},
                                {.names = "--all", .into = &options->all, .help = "Every run in the log"},
                                {.names = "--json", .into = &options->json, .help = "Print it as JSON"}}},
                   [options](Output& output) { return explain(*options, output); });
}

} // namespace tool
