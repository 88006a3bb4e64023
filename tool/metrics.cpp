// kord metrics: a console's collections for what watches it.

#include "commands.h"
#include "documents.h"
#include "output.h"
#include "traces.h"

#include "document/metrics.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tool
{

namespace
{

struct MetricsOptions {
    std::string trace;
    std::vector<std::string> files;
};

int metrics(const MetricsOptions& options, Output& output)
{
    document::Metrics metrics;
    std::optional<document::TracedRun> newest;
    document::Explainer explainer([&](const document::TracedRun& run) { newest = run; });
    const bool read = attempt([&] { readTrace(explainer, options.trace); });
    if (read && newest) metrics.take(*newest);
    const int status =
        eachDocument(options.files, [&](const document::Document& document) { metrics.take(document); });
    output.write(metrics.text());
    return read ? status : trouble;
}

} // namespace

platform::Command metricsCommand()
{
    const auto options = std::make_shared<MetricsOptions>();
    return writing({.name = "metrics",
                    .help = "Tell how the newest collection went and what it found, as OpenMetrics",
                    .arguments = {{.name = "TRACE", .into = &options->trace, .help = "The trace log"},
                                  {.name = "FILE",
                                   .into = &options->files,
                                   .help = "A document, a folder of documents or an inventory database"}}},
                   [options](Output& output) { return metrics(*options, output); });
}

} // namespace tool
