// kord explain: what happened in a run, from its trace log.

#include "commands.h"
#include "output.h"
#include "traces.h"

#include "document/explain.h"
#include "platform/failure.h"
#include "platform/text.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tool
{

namespace
{

constexpr int somethingWrong = 1;

struct ExplainOptions {
    std::string trace;
    uint32_t run = 0; ///< 0: the newest
    bool all = false;
    bool json = false;
};

/// Prints runs as they come, or the one that is asked for when all are known.
class Report
{
public:
    Report(const ExplainOptions& inOptions, Output& inOutput) : options(inOptions), output(inOutput) {}

    void take(const document::TracedRun& run)
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
        if (options.json) output.write("\n]\n}\n");
        return well ? 0 : somethingWrong;
    }

    [[nodiscard]] bool found() const { return printed > 0 || wanted.has_value(); }

private:
    void print(const document::TracedRun& run, size_t among)
    {
        const bool first = printed++ == 0;
        well = well && document::endedWell(run);
        if (options.json)
            output.write((first ? "{\n\"runs\": [\n" : ",\n") + document::explanationJson(run));
        else
            output.write((first ? "" : "\n") + document::explanation(run, among));
    }

    const ExplainOptions& options;
    Output& output;
    std::optional<document::TracedRun> wanted;
    size_t printed = 0;
    bool well = true;
};

int explain(const ExplainOptions& options, Output& output)
{
    if (options.all && options.run != 0) throw platform::Failure("--run and --all exclude each other");
    Report report(options, output);
    document::Explainer explainer([&](const document::TracedRun& run) { report.take(run); });
    readTrace(explainer, options.trace);
    if (!report.found())
        throw platform::Failure(platform::shown(options.trace) + ": has no run " +
                                std::to_string(options.run) + ", the last is " +
                                std::to_string(explainer.runCount()));
    return report.end(explainer.runCount());
}

} // namespace

platform::Command explainCommand()
{
    const auto options = std::make_shared<ExplainOptions>();
    return writing({.name = "explain",
                    .help = "Tell what happened in a run, from its trace log",
                    .arguments = {{.name = "TRACE",
                                   .into = &options->trace,
                                   .help = "The trace log, gzipped or not; - for standard input"}},
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
