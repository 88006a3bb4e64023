// A run's account in plain words.

#include "document/explainWords.h"
#include "document/tables.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>

namespace document
{

namespace
{

using platform::shown;

/// The document's sections, by the phase that writes them.
constexpr auto sections = std::to_array<std::string_view>(
    {"processor complexes", "I/O enclosures", "storage enclosures", "racks", "consoles", "partitions"});

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::string quoted(std::string message)
{
    while (message.ends_with('\n') || message.ends_with(' '))
        message.pop_back();
    return message.empty() ? "without a message" : '"' + shown(message) + '"';
}

std::string numberWords(const Problem& problem)
{
    return problem.number ? std::to_string(*problem.number) : "of its own";
}

std::string hexadecimal(int64_t number)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (auto rest = static_cast<uint32_t>(number); rest != 0; rest /= 16)
        text.insert(text.begin(), digits[rest % 16]);
    return "0x" + text;
}

std::string failedWords(const Problem& problem)
{
    return "the call failed with code " + numberWords(problem) + ", " + quoted(problem.message);
}

std::string unexpectedWords(const Problem& problem)
{
    if (problem.call == "action") {
        return problem.number.value_or(0) != 0 ? "the action's return code is " + numberWords(problem)
                                               : "the action gave no result";
    }
    return numberWords(problem) + " were found where there must be one";
}

std::string fewerWords(const Problem& problem)
{
    return "the first answer has " + numberWords(problem) + " of the " +
           std::to_string(problem.attributes.size()) + " attributes";
}

std::string statusWords(const Problem& problem)
{
    return "status " + numberWords(problem) + ", where 1 is online" +
           (problem.number == 0 ? "; an answer without a status reads as 0, too" : "");
}

std::string errorWords(const Problem& problem)
{
    return "the first answer is in error " + hexadecimal(problem.number.value_or(0)) + " (" +
           numberWords(problem) + "), " + quoted(problem.message);
}

std::string emptyWords(const Problem& problem)
{
    return problem.call == "enumeration" ? "the first answer holds no resource"
                                         : "the first answer has no attributes";
}

std::string programWords(const Problem& problem)
{
    if (problem.number == -1) return "the command could not be run";
    return "the command ended with status " + numberWords(problem);
}

struct KindWords {
    std::string_view kind;
    std::string (*words)(const Problem&);
};

constexpr auto kindWords = std::to_array<KindWords>({
    {"callFailed", failedWords},
    {"nothingFound", [](const Problem&) -> std::string { return "nothing was found"; }},
    {"responseInError", errorWords},
    {"answeredEmpty", emptyWords},
    {"unexpectedAnswer", unexpectedWords},
    {"fewerAttributes", fewerWords},
    {"valueMissing", [](const Problem& problem) { return "no value for " + joined(problem.attributes); }},
    {"notOnline", statusWords},
    {"sessionFailed", failedWords},
    {"sessionNotOpened",
     [](const Problem&) -> std::string {
         return "the session never opened: it was not ended with the others. Its start gave a code other "
                "than 0 and "
                "-1, which the collector passes over; no line tells which";
     }},
    {"sessionEndFailed", failedWords},
    {"notOperating",
     [](const Problem& problem) {
         return "state " + quoted(problem.message) + ", where \"Operating\" must be";
     }},
    {"programFailed", programWords},
    {"programSilent", [](const Problem&) -> std::string { return "it printed nothing that was looked for"; }},
    {"programUnended", [](const Problem&) -> std::string { return "it printed no whole line"; }},
    {"programUnread", [](const Problem&) -> std::string { return "what it printed could not be read"; }},
    {"programBlank", [](const Problem&) -> std::string { return "the first line that it printed is empty"; }},
    {"programTalkative",
     [](const Problem& problem) {
         return "it printed " + numberWords(problem) + " lines; the first one was taken";
     }},
    {"documentNotStarted",
     [](const Problem& problem) {
         return problem.message.empty() ? "the document could not be started"
                                        : shown(problem.message) + " could not be opened";
     }},
    {"outOfMemory", [](const Problem&) -> std::string { return "memory ran out"; }},
    {"noTypeModel",
     [](const Problem& problem) { return "no type-model in the MTMS " + quoted(problem.message); }},
    {"eventUnexplained",
     [](const Problem&) -> std::string { return "an event was filed; no line tells why"; }},
    {"", [](const Problem& problem) { return problem.kind; }},
});

bool isCollecting(std::string_view phase)
{
    return std::ranges::find(sections, phase) != sections.end();
}

std::string rest(const Problem& problem)
{
    const auto* at = std::ranges::find(sections, problem.phase);
    std::string text = "what comes behind it in the document: the rest of the " + problem.phase;
    for (++at; at < sections.end(); ++at)
        text += (at + 1 == sections.end() ? " and the " : ", the ") + std::string(*at);
    return text;
}

std::string missingByFatal(const TracedRun& run, const Problem& problem)
{
    if (problem.phase == "final checks") return "nothing: the document was written before";
    if (isCollecting(problem.phase)) return rest(problem);
    return run.documentStarted ? ""
                               : "all: no document was started, one of an earlier run lies there as it was";
}

/// Walks that end with a failure that is not passed up.
std::string beyond(const Problem& problem)
{
    if (problem.function == "queryStorageEnclosure")
        return ", and those of the images behind it in this rack";
    if (problem.function == "queryFanSense" || problem.function == "queryFanTray")
        return ", as often as images still were to come";
    return "";
}

std::string missingParts(const Problem& problem)
{
    const TableQuery* query = tables().query(problem.function);
    if (query == nullptr) return "";
    if (problem.function == "querySFImageWWNN" && problem.severity == Severity::filed)
        return "the rest of the partition, and the partitions behind it";
    const std::string what = query->things + " of " + partWords(problem);
    if (query->counts) return "nothing, but the count of " + what + " stands as 0";
    return what + beyond(problem) + (problem.standsInstead ? "; one without values stands there" : "");
}

// ---- the text ----

void addField(std::string& text, std::string_view label, const std::string& value)
{
    constexpr size_t width = 12; // of the longest label, and two blanks
    if (value.empty()) return;
    text += "  ";
    text += label;
    text.append(width - label.size(), ' ');
    text += value + '\n';
}

std::string clockOf(std::string_view stamp)
{
    const size_t blank = stamp.find(' ');
    return std::string(stamp.substr(blank == std::string_view::npos ? 0 : blank + 1));
}

std::string dateOf(std::string_view stamp)
{
    if (stamp.size() < 6) return {};
    return "20" + std::string(stamp.substr(4, 2)) + '-' + std::string(stamp.substr(0, 2)) + '-' +
           std::string(stamp.substr(2, 2));
}

std::string eventWords(const Problem& problem)
{
    std::string text;
    for (const FiledEvent& event : problem.events) {
        if (!text.empty()) text += "; ";
        text += event.referenceCode + " \"" + shown(event.text) + '"';
        if (event.toolStatus)
            text += ", which could not be filed: the event tool ended with status " +
                    std::to_string(*event.toolStatus);
    }
    return text;
}

std::string selectionWords(const Problem& problem)
{
    if (!problem.selection) return {};
    return shown(*problem.selection) + (problem.workedOut ? "  (worked out, no line tells it)" : "");
}

std::string details(const TracedRun& run, const Problem& problem)
{
    std::string text;
    addField(text, "asked for", askedWords(problem));
    addField(text, "of", partWords(problem));
    addField(text, "selection", selectionWords(problem));
    if (problem.kind != "valueMissing") addField(text, "attributes", joined(problem.attributes));
    addField(text, "came back", answerWords(problem));
    addField(text, "filed", eventWords(problem));
    addField(text, "missing", missingBy(run, problem));
    addField(text, "cause", problem.cause);
    if (problem.cause.empty()) addField(text, "usually", problem.usualCause);
    addField(text, "to do", problem.advice);
    addField(text, "line",
             std::to_string(problem.line) + ", " + clockOf(problem.stamp) + ": " + problem.code + ' ' +
                 shown(problem.text));
    return text;
}

std::string outcomeOfOpen(const TracedRun& run)
{
    const std::string where = " in the middle (" + run.phase + "), with line " +
                              std::to_string(run.lastLine) + " at " + clockOf(run.ended);
    if (run.end == RunEnd::brokenOff)
        return "It broke off" + where +
               ": another run came behind it. It was killed, or its lines could not be written.";
    return "It has not ended: the log stops" + where +
           ". It still runs, or it was killed, or its lines could not be written." +
           (run.lastLineCut ? " The log ends inside a line, as a full disk leaves it." : "");
}

std::string outcome(const TracedRun& run)
{
    constexpr int success = 3;
    if (!run.status) return outcomeOfOpen(run);
    if (*run.status != success) return "It failed (" + run.phase + "), with status 255.";
    if (endedWell(run)) return "It ended well, with status 3.";
    const bool noDocument = std::ranges::any_of(
        run.problems, [](const Problem& problem) { return problem.kind == "documentNotStarted"; });
    if (noDocument) return "It ended with status 3, but wrote no document.";
    return run.minorErrorsTold ? "It ended with status 3 and minor errors."
                               : "It ended with status 3, but events were filed.";
}

std::string heading(const TracedRun& run, size_t among)
{
    std::string text = "Run " + std::to_string(run.number);
    if (among > 0) text += " of " + std::to_string(among);
    text += run.system.empty() ? ", of a system that the log no longer tells" : " for " + shown(run.system);
    text += run.startLost ? ", from before " : ", ";
    text += dateOf(run.started) + ' ' + clockOf(run.started) + " to " + clockOf(run.ended);
    if (!run.option.empty()) text += ", option " + shown(run.option);
    if (!run.user.empty()) text += ", user " + shown(run.user);
    return text + ": lines " + std::to_string(run.firstLine) + " to " + std::to_string(run.lastLine) + ".\n";
}

std::string reservations(const TracedRun& run)
{
    std::string text;
    if (run.startLost)
        text +=
            "The log has lost the start of this run; what went wrong before its first line is not told.\n";
    if (run.mixedWith) {
        text += "Run " + std::to_string(*run.mixedWith) +
                " wrote to the log at the same time. No line says which run it is of: what is told here may "
                "be the "
                "other's.\n";
    }
    if (run.strangeLines > 0)
        text += std::to_string(run.strangeLines) + (run.strangeLines == 1 ? " line is" : " lines are") +
                " not as the collector writes them.\n";
    return text;
}

bool isFatal(const Problem& problem)
{
    return problem.severity == Severity::fatal;
}

/// Problems of one sort, in the order of their first ones.
std::vector<std::vector<const Problem*>> groupsOf(const TracedRun& run, Severity severity)
{
    const auto keyOf = [](const Problem& of) {
        return std::tie(of.kind, of.function, of.className, of.attributes, of.session, of.number);
    };
    std::vector<std::vector<const Problem*>> groups;
    std::map<decltype(keyOf(run.problems.front())), size_t> known;
    for (const Problem& problem : run.problems) {
        if (problem.severity != severity) continue;
        const auto [at, isNew] = known.try_emplace(keyOf(problem), groups.size());
        if (isNew) groups.emplace_back();
        groups[at->second].push_back(&problem);
    }
    return groups;
}

std::string others(const std::vector<const Problem*>& group)
{
    if (group.size() < 2) return {};
    std::string text = std::to_string(group.size() - 1) + " more of the same:";
    for (size_t i = 1; i < group.size(); ++i)
        text += (i > 1 ? ";" : "") + (" " + partWords(*group[i]));
    return text;
}

std::string sectionOf(const TracedRun& run, Severity severity, std::string_view one, std::string_view many)
{
    const auto groups = groupsOf(run, severity);
    if (groups.empty()) return {};
    size_t count = 0;
    for (const auto& group : groups)
        count += group.size();
    std::string text =
        '\n' + (count == 1 ? std::string(one) : std::to_string(count) + ' ' + std::string(many)) + '\n';
    for (size_t i = 0; i < groups.size(); ++i) {
        if (i > 0) text += '\n';
        text += details(run, *groups[i].front());
        addField(text, "and", others(groups[i]));
    }
    return text;
}

} // namespace

std::string answerWords(const Problem& problem)
{
    const auto* found = std::ranges::find(kindWords, problem.kind, &KindWords::kind);
    return (found == kindWords.end() ? kindWords.back() : *found).words(problem);
}

std::string askedWords(const Problem& problem)
{
    if (problem.call == "session") return problem.session + " session";
    if (problem.call == "program") return shown(problem.program);
    if (problem.call == "file") return "the document's file";
    if (problem.className.empty()) return {};
    const TableQuery* query = tables().query(problem.function);
    std::string text = problem.className;
    if (problem.kind == "valueMissing") return text;
    if (query != nullptr) text = query->things + ": " + text;
    text += ", " + problem.call + (problem.action.empty() ? "" : " " + problem.action);
    return text + ", " + problem.session + " session";
}

std::string partWords(const Problem& problem)
{
    std::string text;
    for (const PartName& part : problem.part)
        text += (text.empty() ? "" : ", ") + part.what + ' ' + shown(part.name);
    return text;
}

std::string missingBy(const TracedRun& run, const Problem& problem)
{
    if (problem.kind == "documentNotStarted") return "all: this run left no document";
    if (problem.severity == Severity::fatal) return missingByFatal(run, problem);
    const bool lacks = problem.severity == Severity::minor || problem.severity == Severity::filed;
    return lacks && isCollecting(problem.phase) ? missingParts(problem) : "";
}

bool endedWell(const TracedRun& run)
{
    constexpr int success = 3;
    const auto isHarmless = [](const Problem& problem) { return problem.severity == Severity::noted; };
    return run.status == success && !run.minorErrorsTold && std::ranges::all_of(run.problems, isHarmless);
}

std::string explanation(const TracedRun& run, size_t among)
{
    std::string text = heading(run, among) + outcome(run) + '\n' + reservations(run);
    const auto fatal = std::ranges::find_if(run.problems, isFatal);
    const bool failed = run.status && *run.status != 3;
    if (failed && fatal == run.problems.end()) text += "No line that is left tells why.\n";
    if (run.minorErrorsTold && groupsOf(run, Severity::minor).empty())
        text += "No line that is left tells which minor errors they were.\n";
    text += sectionOf(run, Severity::fatal, "What ended it", "failures");
    text +=
        sectionOf(run, Severity::filed, "One failure that did not end it", "failures that did not end it");
    text += sectionOf(run, Severity::minor, "One minor error", "minor errors");
    text += sectionOf(run, Severity::noted, "Passed over by the collector",
                      "things passed over by the collector");
    if (run.furtherProblems > 0) text += "\nAnd " + std::to_string(run.furtherProblems) + " more.\n";
    return text;
}

} // namespace document
