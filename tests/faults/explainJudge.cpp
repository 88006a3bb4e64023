#include "explainJudge.h"

#include <algorithm>
#include <map>
#include <mutex>

#include "calls.h"
#include "document/explain.h"
#include "document/explainWords.h"
#include "judge.h"
#include "pattern.h"
#include "reactions.h"

namespace sweep
{

namespace
{

using document::Problem;
using document::TracedRun;

/// One thing that went wrong, in the words of the journal.
struct Told {
    std::string kind;
    std::string what;                   ///< the class, the session, the program
    std::optional<int64_t> number = {}; ///< none: not compared
    std::string selection = {};         ///< empty: not compared

    [[nodiscard]] std::string text() const
    {
        return kind + " " + what + (number ? " " + std::to_string(*number) : "") +
               (selection.empty() ? "" : " [" + selection + "]");
    }
};

// ---- what must be told ----

std::string sessionOf(int scope)
{
    if (scope == 1) return "local";
    return scope == 2 ? "shared resource" : "domain";
}

std::optional<Told> toldOfSession(const Call& call)
{
    if (call.result == 0) return std::nullopt;
    if (call.name == "end_session")
        return Told{.kind = "sessionEndFailed", .what = sessionOf(call.scope), .number = call.result};
    const bool passedOver = call.scope == 4 && call.result != -1;
    if (passedOver) return Told{.kind = "sessionNotOpened", .what = sessionOf(call.scope)};
    return Told{.kind = "sessionFailed", .what = sessionOf(call.scope), .number = call.result};
}

/// Selections that no line of the trace holds, and none that it could be worked out from.
bool hidesSelection(const Call& call)
{
    return call.className == "Orvik.TarnStorageFacility" || call.selection.empty();
}

std::optional<Told> toldOfQuery(const Call& call)
{
    const Reaction reaction = reactionTo(call);
    const bool isPassedOver = reaction.course == Course::goes && reaction.code.empty();
    if (isPassedOver && call.answer != Answer::error) return std::nullopt;
    Told told{.kind = {}, .what = call.className};
    if (!hidesSelection(call)) told.selection = call.selection;
    switch (call.answer) {
    case Answer::failed:
        told.kind = "callFailed";
        told.number = call.result;
        break;
    case Answer::empty:
        told.kind = "nothingFound";
        break;
    case Answer::error:
        told.kind = "responseInError";
        told.number = static_cast<int32_t>(call.error);
        break;
    case Answer::bare:
        told.kind = call.name == "query_d_select"  ? "notOnline"
                    : call.name == "invoke_action" ? "unexpectedAnswer"
                                                   : "answeredEmpty";
        break;
    case Answer::regular:
        told.kind = "notOnline";
        break;
    }
    return told;
}

/// The program that was meant, also where the wrapper answered in its place.
std::string programOf(const Call& call)
{
    if (call.program != "mmquaycmd" || call.arguments.empty()) return call.program;
    return call.arguments[0].substr(call.arguments[0].rfind('/') + 1);
}

/// How a program's answer is of no use; nothing when it has a line, or would have one that was looked for.
std::optional<Told> toldOfAnswer(const std::string& program, int64_t status, const std::string& output)
{
    if (status != 0) return Told{.kind = "programFailed", .what = program, .number = status};
    if (output.empty()) return Told{.kind = "programSilent", .what = program};
    if (!firstLine(output)) return Told{.kind = "programUnended", .what = program};
    return std::nullopt;
}

std::optional<Told> toldOfState(const Call& call, const Result& result)
{
    const auto mtms = std::find(call.arguments.begin(), call.arguments.end(), "-m");
    const json& systems = result.facility.at("systems");
    const std::string regular = mtms != call.arguments.end() && systems.contains(*(mtms + 1))
                                    ? systems.at(*(mtms + 1)).get<std::string>() + "\n"
                                    : "";
    const std::string output = call.rule != nullptr ? outputOf(*call.rule) : regular;
    if (auto told = toldOfAnswer("qmstat", call.result, output)) return told;
    if (firstLine(output) == "Operating") return std::nullopt;
    return Told{.kind = "notOperating", .what = "qmstat"};
}

/// The console's programs are read through a search for one word, which hides their status.
std::optional<Told> toldOfConsole(const Call& call, const std::string& word)
{
    const std::string output = call.rule != nullptr ? outputOf(*call.rule) : word;
    if (output.find(word) != std::string::npos) return std::nullopt;
    return Told{.kind = "programSilent", .what = "qconvpd"};
}

/// Everything that went wrong in the run and leaves a line, in order.
std::vector<Told> mustBeTold(const Result& result)
{
    std::vector<Told> all;
    const auto add = [&all](std::optional<Told> told) {
        if (told) all.push_back(std::move(*told));
    };
    size_t consoleCalls = 0;
    for (const Call& call : callsOf(result)) {
        const std::string program = isClientCall(call) ? "" : programOf(call);
        if (call.name == "start_session" || call.name == "end_session")
            add(toldOfSession(call));
        else if (isClientCall(call))
            add(toldOfQuery(call));
        else if (program == "qmstat")
            add(toldOfState(call, result));
        else if (program == "qconvpd")
            add(toldOfConsole(call, consoleCalls++ % 2 == 0 ? "TM" : "SE"));
        else if (program == "whoami" && call.rule != nullptr)
            add(toldOfAnswer(program, call.result, outputOf(*call.rule)));
    }
    return all;
}

// ---- what is told ----

/// What the run took as it was, of the resource manager and of a program.
bool isOfAValue(const Problem& problem)
{
    return problem.kind == "valueMissing" || problem.kind == "fewerAttributes";
}

bool isOfOutput(const Problem& problem)
{
    return problem.kind == "programBlank" || problem.kind == "programTalkative";
}

std::string whatOf(const Problem& problem)
{
    if (problem.call == "session") return problem.session;
    if (problem.call != "program") return problem.className;
    for (const char* program : {"qmstat", "qconvpd", "whoami"}) {
        if (problem.program.find(program) != std::string::npos) return program;
    }
    return problem.program;
}

Told toldBy(const Problem& problem)
{
    return {.kind = problem.kind,
            .what = whatOf(problem),
            .number = problem.number,
            .selection = problem.selection.value_or("")};
}

bool agree(const Told& expected, const Told& told)
{
    return expected.kind == told.kind && expected.what == told.what &&
           (!expected.number || expected.number == told.number) &&
           (expected.selection.empty() || expected.selection == told.selection);
}

void judgeProblems(const Result& result, const TracedRun& run, Findings& findings)
{
    std::vector<Told> told;
    for (const Problem& problem : run.problems) {
        if (!isOfAValue(problem) && !isOfOutput(problem)) told.push_back(toldBy(problem));
    }
    std::vector<Told> expected = mustBeTold(result);
    // A log that grew too long has lost its first lines.
    if (run.startLost && expected.size() > told.size())
        expected.erase(expected.begin(), expected.end() - static_cast<std::ptrdiff_t>(told.size()));
    const size_t all = std::max(told.size(), expected.size());
    for (size_t i = 0; i < all; ++i) {
        if (i < told.size() && i < expected.size() && agree(expected[i], told[i])) continue;
        findings.push_back({Kind::broken, "explained as " + (i < told.size() ? told[i].text() : "nothing") +
                                              ", not " +
                                              (i < expected.size() ? expected[i].text() : "nothing")});
        return;
    }
}

/// Nothing is called missing but in answers of a class that a rule changed, or that follow from one that did.
void judgeValues(const Result& result, const TracedRun& run, Findings& findings)
{
    const auto calls = callsOf(result);
    for (const Problem& problem : run.problems) {
        const bool isChanged = std::any_of(calls.begin(), calls.end(), [&](const Call& call) {
            return call.className == problem.className && call.rule != nullptr;
        });
        if (isOfAValue(problem) && !isChanged)
            findings.push_back(
                {Kind::broken, "explained as missing, but answered as ever: " + problem.className});
    }
}

void judgeFiled(const Plan& plan, const Result& result, const TracedRun& run, Findings& findings)
{
    const std::string mtms = plan.arguments.size() > 1 ? plan.arguments[1] : "";
    Texts filed;
    for (const Call& call : callsOf(result)) {
        Texts arguments = call.arguments;
        if (isClientCall(call) || programOf(call) != "pmProblemEventPoster") continue;
        if (call.program == "mmquaycmd") arguments.erase(arguments.begin());
        const Event event = eventOf(arguments, mtms);
        filed.push_back(event.code + " " + event.text + " " + std::to_string(call.result));
    }
    if (run.startLost && filed.size() > run.events.size())
        filed.erase(filed.begin(), filed.end() - static_cast<std::ptrdiff_t>(run.events.size()));
    Texts told;
    for (const document::FiledEvent& event : run.events)
        told.push_back(event.referenceCode + " \"" + event.text + "\" " +
                       std::to_string(event.toolStatus.value_or(0)));
    if (told != filed)
        findings.push_back(
            {Kind::broken, "explained events " + json(told).dump() + ", not " + json(filed).dump()});
}

void judgeEndTold(const Result& result, const TracedRun& run, Findings& findings)
{
    const int status = result.outcome.status == 3 ? 3 : -1;
    const bool isCut = run.startLost && result.log.find(" SRCV: ") != std::string::npos;
    if (run.status != status || isCut || run.mixedWith || run.strangeLines > 0)
        findings.push_back({Kind::broken, "explained: " + document::explanation(run, 0).substr(0, 200)});
}

// ---- whether the injected fault is named ----

std::mutex countsMutex;
Explained counts;

/// The calls that the plan's own rules changed.
std::vector<Call> faultsOf(const Plan& plan, const Result& result)
{
    const json& rules = result.facility.at("faults");
    std::vector<Call> faults = callsOf(result);
    std::erase_if(faults, [&](const Call& call) {
        return call.rule == nullptr ||
               (plan.injected > 0 && static_cast<size_t>(call.rule - &rules[0]) >= plan.injected);
    });
    return faults;
}

bool names(const TracedRun& run, const Call& call)
{
    if (call.name == "start_session" || call.name == "end_session")
        return std::any_of(run.problems.begin(), run.problems.end(), [&](const Problem& problem) {
            return problem.session == sessionOf(call.scope) && problem.call == "session";
        });
    if (isClientCall(call)) {
        return std::any_of(run.problems.begin(), run.problems.end(), [&](const Problem& problem) {
            const bool isIts =
                hidesSelection(call) || !problem.selection || problem.selection == call.selection;
            return problem.className == call.className && (isIts || problem.kind == "valueMissing");
        });
    }
    const std::string program = programOf(call);
    if (program == "pmProblemEventPoster")
        return std::any_of(run.events.begin(), run.events.end(),
                           [](const auto& event) { return event.toolStatus.has_value(); });
    // Who runs the collector is told as the program said it.
    if (program == "whoami" && !run.user.empty() &&
        firstLine(outputOf(*call.rule)).value_or("").starts_with(run.user))
        return true;
    return std::any_of(run.problems.begin(), run.problems.end(),
                       [&](const Problem& problem) { return whatOf(problem) == program; });
}

/// The log without what every run has of its own, without what is no line of the collector, and without the
/// counts of resources: no line says how many there should be.
std::string comparable(const std::string& log)
{
    static const kordTest::Pattern count("^ cound \\d+, ");
    std::string lines;
    document::TraceReader reader([&](const document::TraceLine& line) {
        if (line.code == "0701") return;
        lines.append(line.code).append(": ");
        lines += count.replaced(std::string(line.text), " cound N, ") + '\n';
    });
    reader.read(log);
    reader.settle();
    return lines;
}

void countFault(const Plan& plan, const Result& result, const TracedRun& run)
{
    const std::vector<Call> faults = faultsOf(plan, result);
    const bool isNamed =
        std::any_of(faults.begin(), faults.end(), [&](const Call& fault) { return names(run, fault); });
    const bool isLost = run.startLost; // the log grew too long and was started anew
    const bool isSilent = !isNamed && (isLost || comparable(result.log) == comparable(*plan.regularLog));
    const std::lock_guard lock(countsMutex);
    if (isNamed)
        ++counts.told;
    else
        (isSilent ? counts.untold : counts.missed).push_back(plan.name);
}

std::string wayOf(const std::string& name)
{
    static const kordTest::Pattern number("\\.(once|on)\\.\\d+$");
    return number.replaced(name, "");
}

void printByWay(const char* title, const Texts& names, bool verbose)
{
    std::map<std::string, size_t> ways;
    for (const std::string& name : names)
        ++ways[verbose ? name : wayOf(name)];
    if (!ways.empty()) std::printf("%s\n", title);
    for (const auto& [way, count] : ways)
        std::printf("  %-50s %5zu\n", way.c_str(), count);
}

} // namespace

void judgeExplanation(const Plan& plan, const Result& result, Findings& findings)
{
    std::vector<TracedRun> runs;
    document::Explainer explainer([&](const TracedRun& run) { runs.push_back(run); });
    explainer.read(result.log);
    explainer.end();
    if (runs.size() != 1) {
        findings.push_back({Kind::broken, "explained as " + std::to_string(runs.size()) + " runs"});
        return;
    }
    judgeEndTold(result, runs[0], findings);
    judgeProblems(result, runs[0], findings);
    judgeValues(result, runs[0], findings);
    judgeFiled(plan, result, runs[0], findings);
    if (plan.regularLog != nullptr) countFault(plan, result, runs[0]);
}

Explained explained()
{
    const std::lock_guard lock(countsMutex);
    return counts;
}

void printExplained(const Explained& all, bool verbose)
{
    const size_t told = all.told + all.missed.size();
    if (told == 0) return;
    std::printf(
        "\nexplained %zu faults of %zu that the trace tells of; %zu leave the trace of a regular run\n",
        all.told, told, all.untold.size());
    printByWay("missed:", all.missed, true);
    printByWay("no line tells:", all.untold, verbose);
}

} // namespace sweep
