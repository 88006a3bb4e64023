#include "document/metrics.h"

#include "document/kindList.h"
#include "document/rows.h"
#include "document/trace.h"
#include "platform/utf8.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <optional>
#include <string_view>

namespace document
{

namespace
{

constexpr int success = 3; // the collector's own status

struct Family {
    std::string_view name;
    std::string_view unit = {};
    std::string_view help;
};

constexpr auto families = std::to_array<Family>({
    {.name = "kord_run_start_timestamp_seconds",
     .unit = "seconds",
     .help = "When the newest collection started, by the console's clock."},
    {.name = "kord_run_end_timestamp_seconds",
     .unit = "seconds",
     .help = "When the newest collection ended; none where it has not."},
    {.name = "kord_run_status", .help = "Exit status of the newest collection: 3 is success."},
    {.name = "kord_run_success", .help = "Whether the newest collection ended with success."},
    {.name = "kord_run_minor_errors", .help = "Minor errors of the newest collection."},
    {.name = "kord_run_events", .help = "Events that the newest collection filed."},
    {.name = "kord_document_timestamp_seconds",
     .unit = "seconds",
     .help = "When the document was collected; its age is the time now less this."},
    {.name = "kord_document_complete", .help = "Whether the document has all that a collection tells."},
    {.name = "kord_parts", .help = "Parts in the document by kind, firmware level and service state."},
});

/// A stamp of the log as seconds since 1970. The console writes and reads its own time.
std::optional<std::time_t> secondsOf(std::string_view stamp)
{
    std::optional<std::tm> time = timeOfStamp(stamp);
    if (!time) return std::nullopt;
    time->tm_isdst = -1;
    return std::mktime(&*time);
}

void appendLabel(std::string& text, const std::string& name, const std::string& value)
{
    text += name + "=\"";
    std::string characters;
    platform::appendUnicode(characters, value);
    for (const char byte : characters) {
        if (byte == '\n') {
            text += "\\n";
            continue;
        }
        if (byte == '"' || byte == '\\') text += '\\';
        text += byte;
    }
    text += '"';
}

/// What a part is counted by; a value that it has not is no label.
std::string labelOf(const Value& value)
{
    return isEmpty(value) ? "" : textOf(value);
}

} // namespace

void Metrics::add(const std::string& metric, const Labels& labels, std::string value)
{
    ofRuns[metric].push_back({.labels = labels, .value = std::move(value)});
}

void Metrics::take(const TracedRun& run)
{
    // As the document calls it, so that a run and its document can be joined.
    std::string system = run.system;
    std::ranges::replace(system, '*', '-');
    const Labels labels = {{"system", system}};
    const auto minor = std::ranges::count(run.problems, Severity::minor, &Problem::severity);
    const auto filed = std::ranges::count_if(
        run.events, [](const FiledEvent& event) { return event.toolStatus.value_or(0) == 0; });
    if (const auto start = secondsOf(run.started))
        add("kord_run_start_timestamp_seconds", labels, std::to_string(*start));
    const bool ended = run.end == RunEnd::closed || run.end == RunEnd::noSession;
    const auto end = ended ? secondsOf(run.ended) : std::nullopt;
    if (end) add("kord_run_end_timestamp_seconds", labels, std::to_string(*end));
    if (run.status) add("kord_run_status", labels, std::to_string(*run.status));
    add("kord_run_success", labels, run.status == success ? "1" : "0");
    add("kord_run_minor_errors", labels, std::to_string(minor));
    add("kord_run_events", labels, std::to_string(filed));
}

void Metrics::take(const Document& document)
{
    static const std::vector<Kind> all = knownKinds("all");
    const std::string system(document.system().id);
    const std::string time(document.timestamp);
    Told& told = documents[system];
    if (!told.time.empty() && collectedAt(told.time) > collectedAt(time)) return;
    told = {.time = time, .complete = document.missing.nothing(), .parts = {}};
    Values values(document);
    for (const Row& row : rowsOf(document, all)) {
        Labels labels = {{"system", system}, {"kind", std::string(rowOf(row.kind).word)}};
        for (const Column& column : rowOf(row.kind).columns) {
            if (column.name != "firmware" && column.name != "state") continue;
            const std::string value = labelOf(values.of(row, column));
            if (!value.empty()) labels.emplace_back(column.name, value);
        }
        ++told.parts[std::move(labels)];
    }
}

std::string Metrics::text() const
{
    auto samples = ofRuns;
    for (const auto& [system, told] : documents) {
        const Labels labels = {{"system", system}};
        const std::string seconds = told.time.substr(0, told.time.find('.'));
        if (!collectedAt(told.time).empty())
            samples["kord_document_timestamp_seconds"].push_back({.labels = labels, .value = seconds});
        samples["kord_document_complete"].push_back({.labels = labels, .value = told.complete ? "1" : "0"});
        for (const auto& [ofPart, count] : told.parts)
            samples["kord_parts"].push_back({.labels = ofPart, .value = std::to_string(count)});
    }
    std::string text;
    for (const Family& family : families) {
        const std::string name(family.name);
        if (!samples.contains(name)) continue;
        text += "# TYPE " + name + " gauge\n";
        if (!family.unit.empty()) text += "# UNIT " + name + ' ' + std::string(family.unit) + '\n';
        text += "# HELP " + name + ' ' + std::string(family.help) + '\n';
        for (const Sample& sample : samples[name]) {
            text += name;
            for (char before = '{'; const auto& [label, value] : sample.labels) {
                text += before;
                appendLabel(text, label, value);
                before = ',';
            }
            text += "} " + sample.value + '\n';
        }
    }
    return text + "# EOF\n";
}

} // namespace document
