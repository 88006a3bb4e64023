#include "explainCheck.h"

#include <algorithm>
#include <optional>

#include "document/explain.h"
#include "document/explainWords.h"

namespace kordTest
{

namespace
{

using document::Problem;
using document::TracedRun;
using nlohmann::json;
using Texts = std::vector<std::string>;

bool isCall(const json& line)
{
    const std::string call = line.value("vale", "");
    return call == "query_p_select" || call == "query_d_select" || call == "enumerate_resources" ||
           call == "invoke_action";
}

bool isSession(const json& line)
{
    return line.value("vale", "") == "start_session" || line.value("vale", "") == "end_session";
}

std::string sessionOf(int scope)
{
    if (scope == 1) return "local";
    return scope == 2 ? "shared resource" : "domain";
}

/// Whether the journal's call is the one that the problem tells of.
bool isOf(const json& line, const Problem& problem)
{
    if (problem.call == "session")
        return isSession(line) && sessionOf(line["scope"]) == problem.session && line["result"] != 0;
    if (!isCall(line) || line["class"] != problem.className) return false;
    const bool isAction = line["vale"] == "invoke_action";
    if (problem.selection && !isAction && line.value("selection", json()) != *problem.selection) return false;
    if (problem.kind == "callFailed") return line["result"] == problem.number;
    return line["result"] == 0 && (problem.kind == "nothingFound") == (line.value("count", 0) == 0);
}

/// The program that failed or was not of use was run.
bool isOfProgram(const json& line, const Problem& problem)
{
    const std::string program = line.value("program", "");
    return !program.empty() &&
           problem.program.find(program.substr(program.rfind('/') + 1)) != std::string::npos;
}

bool isToldOfJournal(const Problem& problem)
{
    // The shell cannot write where the output belongs: the program is not started.
    const bool isUnstarted = problem.kind == "programFailed" && problem.number == 2;
    return !isUnstarted && problem.kind != "valueMissing" && problem.kind != "documentNotStarted" &&
           problem.kind != "outOfMemory" && problem.kind != "noTypeModel";
}

/// Each problem has its call, in the journal's order; a session that never opened is told before the rest.
Texts unfounded(const TracedRun& run, const std::vector<json>& journal)
{
    Texts faults;
    size_t from = 0;
    for (const Problem& problem : run.problems) {
        if (!isToldOfJournal(problem)) continue;
        const auto found =
            std::find_if(journal.begin() + static_cast<std::ptrdiff_t>(from), journal.end(),
                         [&](const json& line) { return isOf(line, problem) || isOfProgram(line, problem); });
        if (found == journal.end())
            faults.push_back("told, but not in the journal: " + document::askedWords(problem) + ", " +
                             document::answerWords(problem));
        else
            from = static_cast<size_t>(found - journal.begin());
    }
    return faults;
}

/// Each call that failed is told.
Texts untold(const TracedRun& run, const std::vector<json>& journal)
{
    Texts faults;
    for (const json& line : journal) {
        if ((!isCall(line) && !isSession(line)) || line["result"] == 0) continue;
        const bool isTold = std::any_of(run.problems.begin(), run.problems.end(),
                                        [&](const Problem& problem) { return isOf(line, problem); });
        if (!isTold) faults.push_back("not told: " + line.dump());
    }
    return faults;
}

/// "BED00000 text 0", with the status of the event tool, or of the wrapper that did not run it.
Texts eventsIn(const std::vector<json>& journal)
{
    constexpr size_t codeAt = 7;
    constexpr size_t textAt = 17;
    Texts events;
    for (const json& line : journal) {
        Texts command = line.value("arguments", Texts{});
        const bool isWrapper = line.value("program", "").ends_with("/mmquaycmd") && line["status"] != 0;
        if (isWrapper && !command.empty() && command[0].ends_with("/pmProblemEventPoster"))
            command.erase(command.begin());
        else if (!line.value("program", "").ends_with("/pmProblemEventPoster"))
            continue;
        events.push_back(command.at(codeAt) + ' ' + command.at(textAt) + ' ' + line["status"].dump());
    }
    return events;
}

Texts eventsOf(const TracedRun& run)
{
    Texts events;
    for (const document::FiledEvent& event : run.events)
        events.push_back(event.referenceCode + " \"" + event.text + "\" " +
                         std::to_string(event.toolStatus.value_or(0)));
    return events;
}

} // namespace

std::vector<std::string> explainFaults(const std::string& log, const std::vector<json>& journal, int status)
{
    std::optional<TracedRun> run;
    document::Explainer explainer([&](const TracedRun& next) { run = next; });
    explainer.read(log);
    explainer.end();
    if (!run || run->startLost) return {}; // the log was cut, or could not be written

    Texts faults = unfounded(*run, journal);
    const Texts others = untold(*run, journal);
    faults.insert(faults.end(), others.begin(), others.end());
    if (run->status != (status == 3 ? 3 : -1))
        faults.push_back("another end: " + document::explanation(*run, 0));
    if (run->mixedWith || run->strangeLines > 0)
        faults.push_back("one run alone wrote the log: " + document::explanation(*run, 0));
    if (eventsOf(*run) != eventsIn(journal))
        faults.push_back("events " +
                         json(eventsOf(*run)).dump(-1, ' ', false, json::error_handler_t::replace) +
                         ", not " + json(eventsIn(journal)).dump());
    return faults;
}

} // namespace kordTest
