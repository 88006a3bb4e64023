// What happened in the runs that a trace log tells of.

#pragma once

#include "document/trace.h"

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

/// What a problem did to its run.
enum class Severity {
    fatal, ///< ended it
    filed, ///< an event was filed, and the run went on
    minor, ///< counted as an error that the facility may have
    noted, ///< passed over by the collector
};

struct FiledEvent {
    size_t line = 0;
    std::string stamp;
    std::string referenceCode;
    std::string name; ///< the function, class or partition that it was filed under
    std::string type;
    std::string text;
    std::optional<int> toolStatus; ///< of the event tool that failed: it was not filed
    std::string command;           ///< that files it, where the tool failed
};

/// A piece of what was asked for: "image", "9999*A01*00XY121".
struct PartName {
    std::string what;
    std::string name;
};

/// One thing that went wrong, by the lines that bear it out.
struct Problem {
    size_t line = 0;
    std::string stamp;
    std::string code;
    std::string text; ///< of the line
    std::string kind; ///< see explainKinds
    Severity severity = Severity::noted;
    std::string phase; ///< what the run did then

    std::string function;
    std::string call; ///< "persistent query", ..., "session", "program", "file"
    std::string className;
    std::string session;
    std::optional<std::string> selection; ///< none: no line tells it, or there is none
    bool workedOut = false;               ///< the selection is no line's, it follows from the run's system
    std::string action;
    std::vector<std::string> attributes; ///< asked for; of missing values those
    std::string program;                 ///< the command line
    std::vector<PartName> part;

    std::optional<int64_t> number; ///< a code, an error number, a count, a status
    std::string message;
    std::vector<FiledEvent> events;
    bool standsInstead = false; ///< an empty part stands in the document

    std::string cause;      ///< as other lines bear it out
    std::string usualCause; ///< of such a line
    std::string advice;
};

/// How a run's lines end.
enum class RunEnd {
    closed,    ///< with its closing line
    noSession, ///< with a session that could not be had, which is the last line of such a run
    open,      ///< in the middle, at the end of the log
    brokenOff, ///< in the middle, and another run follows
};

struct TracedRun {
    size_t number = 0; ///< in the log, from 1
    size_t firstLine = 0;
    size_t lastLine = 0;
    std::string started; ///< stamps
    std::string ended;
    std::string system; ///< as it was given; empty when the log no longer tells
    std::string build;
    std::string option;
    std::string user;
    std::string console; ///< type-model and serial as the console says them
    bool startLost = false;
    bool lastLineCut = false; ///< the log ends inside a line
    RunEnd end = RunEnd::open;
    std::optional<int> status;
    std::string phase;
    bool minorErrorsTold = false;
    bool documentStarted = false;
    std::optional<size_t> mixedWith; ///< another run wrote to the log at the same time
    size_t strangeLines = 0;         ///< that the collector does not write so
    std::string lastText;            ///< the last line, for a run that ends in the middle
    std::vector<Problem> problems;
    size_t furtherProblems = 0; ///< beyond those that are kept
    std::vector<FiledEvent> events;
};

/// It ended with success, and nothing but what the collector passes over went wrong.
bool endedWell(const TracedRun& run);

/// What the document lacks because of the problem; empty when nothing.
std::string missingBy(const TracedRun& run, const Problem& problem);

/// In plain words, for a terminal or a table. \param among how many runs the log has; 0: unknown
std::string explanation(const TracedRun& run, size_t among);

/// A run as JSON, by kord-explain.schema.json.
std::string explanationJson(const TracedRun& run);

class RunReader;

/// Finds the runs in a log and follows each.
class Explainer
{
public:
    using Take = std::function<void(const TracedRun& run)>;

    /// \param taker gets each run when its end is known, in the order of their numbers
    explicit Explainer(Take taker);
    ~Explainer();

    void read(std::string_view bytes);
    /// The log ends here.
    void end();
    /// Whether any line of a collector was found.
    [[nodiscard]] bool foundLines() const { return runs > 0; }
    [[nodiscard]] size_t runCount() const { return runs; }

private:
    void line(const TraceLine& line);
    void start(const TraceLine& line);
    void finish(std::list<std::unique_ptr<RunReader>>::iterator reader, RunEnd end);
    RunReader& readerOf(const TraceLine& line);
    [[nodiscard]] bool newestEnded() const;

    Take take;
    TraceReader lines;
    std::list<std::unique_ptr<RunReader>> open; ///< the newest last
    std::vector<TracedRun> done;                ///< those that an older open run may turn out to run beside
    size_t newestStart = 0;                     ///< the line
    size_t runs = 0;
};

} // namespace document
