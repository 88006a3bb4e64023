// A trace log of any bytes: what is told of it is borne out by its lines, the same however it comes in
// pieces, bounded, and safe to show.

#include "fuzz.h"

#include "document/explain.h"
#include "document/progress.h"
#include "document/trace.h"

#include <vector>

namespace
{

using document::Problem;
using document::TracedRun;

struct Account {
    std::vector<TracedRun> runs;
    std::string text; ///< of all
    std::string json;
};

Account accountOf(std::string_view log, size_t piece)
{
    Account account;
    document::Explainer explainer([&](const TracedRun& run) {
        account.text += document::explanation(run, 0);
        account.json += document::explanationJson(run);
        account.runs.push_back(run);
    });
    for (size_t at = 0; at < log.size(); at += std::min(piece, log.size() - at))
        explainer.read(log.substr(at, piece));
    explainer.end();
    fuzz::require(account.runs.size() == explainer.runCount(), "every run is handed over");
    return account;
}

std::string withoutLineFeeds(std::string_view text)
{
    std::string result(text);
    std::erase(result, '\n');
    return result;
}

/// What a problem says was said by its line, and what was asked by a line.
void checkProblem(const Problem& problem, const TracedRun& run, const std::string& log)
{
    constexpr size_t whole = 16000; // of a longer line the middle is not kept
    const auto told = [&](const std::string& text) {
        return text.size() > whole || log.find(withoutLineFeeds(text)) != std::string::npos;
    };
    fuzz::require(problem.line >= run.firstLine && problem.line <= run.lastLine,
                  "a problem's line is of its run");
    fuzz::require(told(problem.text), "a problem's text is in the log");
    fuzz::require(told(problem.message), "a message is in the log");
    fuzz::require(problem.workedOut || !problem.selection || told(*problem.selection),
                  "a selection is in the log");
    fuzz::require(!problem.kind.empty() && !problem.phase.empty(), "a problem has a kind and a phase");
}

void checkRuns(const Account& account, std::string_view bytes)
{
    const std::string log = withoutLineFeeds(bytes);
    size_t number = 0;
    for (const TracedRun& run : account.runs) {
        fuzz::require(run.number == ++number, "runs are handed over in their order");
        fuzz::require(run.problems.size() <= 2100, "the problems of a run are bounded");
        for (const Problem& problem : run.problems)
            checkProblem(problem, run, log);
    }
}

/// JSON carries text as it is, but for what JSON itself cannot hold.
void checkJson(const std::string& json)
{
    for (const char character : json) {
        const auto byte = static_cast<unsigned char>(character);
        fuzz::require(character == '\n' || byte >= ' ', "JSON holds no bare control character");
    }
}

/// Nothing in it obeys on a terminal.
void checkText(const std::string& text)
{
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        fuzz::require(character == '\n' || (byte >= ' ' && byte != 0x7F), "no control character is shown");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view log = fuzz::Input(data, size).bytes();
    const Account account = accountOf(log, std::string_view::npos);
    checkRuns(account, log);
    checkText(account.text);
    checkJson(account.json);
    const Account pieces = accountOf(log, 7);
    fuzz::require(pieces.text == account.text && pieces.json == account.json,
                  "pieces of a log tell what the whole does");

    document::Progress progress;
    document::TraceReader lines([&](const document::TraceLine& line) { progress.read(line); });
    lines.read(log);
    lines.settle();
    checkText(progress.line());
    fuzz::require(progress.started() == !account.runs.empty(), "what is followed can be explained");
    return 0;
}
