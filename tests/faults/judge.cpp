// Compares what a run left with its account.

#include "judge.h"

#include <algorithm>
#include <string_view>

#include "account.h"
#include "documentReader.h"
#include "explainJudge.h"
#include "pattern.h"

namespace sweep
{

namespace
{

void add(Findings& findings, Kind kind, const std::string& what)
{
    findings.push_back({kind, what});
}

std::string shortened(const std::string& text)
{
    constexpr size_t length = 160;
    return json(text.size() > length ? text.substr(0, length) + "..." : text)
        .dump(-1, ' ', false, json::error_handler_t::replace);
}

void expectText(Findings& findings, const std::string& where, const std::string& expected,
                const std::string& found)
{
    if (expected == found) return;
    add(findings, Kind::broken, where + " is " + shortened(found) + ", not " + shortened(expected));
}

void expectList(Findings& findings, const std::string& where, const json& expected, const json& found)
{
    if (expected != found) expectText(findings, where, expected.dump(), found.dump());
}

// ---- releases ----

const json* exitLine(const Result& result)
{
    const auto found = std::find_if(result.journal.begin(), result.journal.end(),
                                    [](const json& line) { return line.value("vale", "") == "exit"; });
    return found == result.journal.end() ? nullptr : &*found;
}

/// A failed call's record is fetched, then its message; the message is released, then the record.
void judgeRecords(const Result& result, Findings& findings)
{
    static const Texts order = {"get_error", "get_errmsg", "rel_errmsg", "rel_error"};
    size_t next = 0;
    for (const json& line : result.journal) {
        const std::string call = line.value("vale", "");
        if (std::find(order.begin(), order.end(), call) == order.end()) continue;
        if (call != order[next])
            return add(findings, Kind::broken, call + " stands where " + order[next] + " should");
        next = (next + 1) % order.size();
    }
}

/// No failure goes unread but that of a domain session that counts as had.
void judgeFetches(const Result& result, Findings& findings)
{
    size_t failed = 0;
    for (const Call& call : callsOf(result)) {
        const bool silent = call.name == "start_session" && call.scope == 4 && call.result > 0;
        if (isClientCall(call) && call.result != 0 && !silent) ++failed;
    }
    const auto fetched = std::count_if(result.journal.begin(), result.journal.end(), [](const json& line) {
        return line.value("vale", "") == "get_error";
    });
    expectText(findings, "number of error records fetched", std::to_string(failed), std::to_string(fetched));
}

// ---- events ----

struct CodeText {
    std::string_view code;
    std::string_view text;
};

constexpr CodeText codeTexts[] = {
    {"BED00000", "Expected resources were not found"},
    {"BED00001", "VALE call resulted in a non zero return value"},
    {"BED00002", "Unknown error"},
    {"BED00003", "Subsystem is degraded"},
    {"BED00004", "Invalid managed system MTMS"},
    {"BED00005", "Microcode logic error"},
};

/// The messages that responses in error carried, as an event's text shows them.
Texts messagesOf(const json& rules)
{
    Texts messages;
    for (const json& rule : rules) {
        if (!rule.contains("error")) continue;
        const std::string message = rule["error"].value("message", "");
        if (!message.empty()) messages.push_back(message.substr(0, message.size() - 1) + " ");
    }
    return messages;
}

/// "name : text", the text being the code's own or a response's.
bool isEventText(const std::string& text, const std::string& code, const Texts& messages)
{
    const size_t separator = text.find(" : ");
    const bool quoted = text.size() > 2 && text.starts_with('"') && text.ends_with('"');
    if (!quoted || separator == std::string::npos) return false;
    const std::string said = text.substr(separator + 3, text.size() - separator - 4);
    const auto isOf = [&](const CodeText& known) { return known.code == code && known.text == said; };
    return std::any_of(std::begin(codeTexts), std::end(codeTexts), isOf) ||
           std::find(messages.begin(), messages.end(), said) != messages.end();
}

// ---- programs ----

bool isRoot(const Result& result, const Plan& plan)
{
    const auto& console = result.facility.at("console");
    std::string user = console.at("user").is_string() ? console["user"].get<std::string>() : "";
    if (plan.user) user = *plan.user;
    for (const Call& call : callsOf(result)) {
        if (call.program != "whoami" || call.rule == nullptr) continue;
        user = call.result == 0 ? firstLine(outputOf(*call.rule)).value_or("") : "";
    }
    return user == "root";
}

// ---- the document ----

void countResources(const kordTest::Element& element, std::map<std::string, size_t>& found)
{
    if (!element.list) ++found[element.displayName];
    for (const kordTest::Element& child : element.children) {
        countResources(child, found);
    }
}

void collectCounts(const kordTest::Element& element, Texts& counts)
{
    for (const kordTest::Property& property : element.properties) {
        if (property.code == "U1") counts.push_back(property.value);
    }
    for (const kordTest::Element& child : element.children) {
        collectCounts(child, counts);
    }
}

/// The lines of counts, memory and processors aside. The last partition may have stopped before its line.
void judgeCounts(const Account& account, const Texts& lines, Findings& findings)
{
    Texts found;
    for (const std::string& line : lines) {
        found.push_back(line.substr(0, line.find("h0=")));
    }
    Texts expected = account.counts;
    if (account.failed && expected.size() == found.size() + 1) expected.pop_back();
    expectList(findings, "counts", expected, found);
}

bool isProgramRule(const json& rule)
{
    return rule.contains("program") || rule.value("call", "") == "program";
}

/// A trace log without what differs from run to run, wherever in a line it stands (the event tool's output
/// may end without a line feed): the stamps, the document's time of day, the address in the line on empty
/// output.
std::string withoutTimes(const std::string& log)
{
    static const kordTest::Pattern times(
        "[0-9]{6} [0-9]{2}:[0-9]{2}:[0-9]{2} |0701:  stamp=[0-9.]+|0062: empty file -?[0-9]+");
    return times.replaced(log, "");
}

} // namespace

void judgeEnd(const Plan&, const Result& result, Findings& findings)
{
    constexpr int firstNotStarted = 125; // by the launcher, or the launcher itself
    constexpr int lastNotStarted = 127;
    const kordTest::Outcome& outcome = result.outcome;
    if (outcome.timedOut) {
        add(findings, Kind::hang, "still running at the limit");
    } else if (outcome.status >= firstNotStarted && outcome.status <= lastNotStarted) {
        add(findings, Kind::broken, "not started: " + shortened(outcome.error));
    } else if (outcome.status != 3 && outcome.status != 255) {
        add(findings, Kind::crash,
            "status " + std::to_string(outcome.status) + " " + shortened(outcome.error));
    }
}

void judgeOutcome(const Plan&, const Result& result, Findings& findings)
{
    const Account account = accountOf(result);
    expectText(findings, "exit status", std::to_string(account.status()),
               std::to_string(result.outcome.status));
    expectText(findings, "standard output", account.output, result.outcome.output);
    if (!account.wrongCall.empty()) add(findings, Kind::broken, account.wrongCall);
}

void judgeReleases(const Plan&, const Result& result, Findings& findings)
{
    const json* line = exitLine(result);
    if (line == nullptr) return add(findings, Kind::broken, "no account of the client at the end");
    for (const char* held : {"responses", "errors", "messages"}) {
        const json& count = line->at(held);
        if (count != json(0) && count != json::array())
            add(findings, Kind::leak, std::string(held) + " " + count.dump() + " never released");
    }
    judgeRecords(result, findings);
    judgeFetches(result, findings);

    const Account account = accountOf(result);
    std::vector<int> open = line->at("sessions");
    std::vector<int> expected = account.open;
    std::sort(open.begin(), open.end());
    std::sort(expected.begin(), expected.end());
    expectList(findings, "scopes of open sessions", expected, open);
    expectList(findings, "scopes of sessions ended", account.ended, account.toEnd);
}

void judgeTrace(const Plan&, const Result& result, Findings& findings)
{
    const Account account = accountOf(result);
    if (!account.cleanedUp) {
        const std::string last = result.trace.empty() ? "" : result.trace.back().text;
        if (last.find(" session failed with error ") == std::string::npos)
            expectText(findings, "last trace line", "the session's failure", last);
        return;
    }
    const std::string closing =
        std::string("0010:  exit ") + (account.failed ? "-1" : "3") + " ------------------\n";
    if (!result.log.ends_with(closing)) {
        const size_t tail = result.log.size() - std::min(result.log.size(), closing.size());
        expectText(findings, "end of the trace log", closing, result.log.substr(tail));
    }
    const std::string minor = "0019: Function completed with minor errors detected.";
    const bool told = result.log.find(minor) != std::string::npos;
    const bool expected = account.minorErrors && !account.failed;
    if (told != expected) {
        add(findings, Kind::broken,
            std::string("the trace log ") + (told ? "tells" : "does not tell") + " of minor errors");
    }
}

std::string systemOf(const std::string& mtms)
{
    return mtms.substr(0, 8) + "*" + (mtms.size() > 9 ? mtms.substr(9, 7) : "");
}

Event eventOf(const Texts& arguments, const std::string& mtms)
{
    constexpr size_t codeAt = 7;
    constexpr size_t textAt = 17;
    if (arguments.size() != textAt + 1) return {};
    Texts rest = arguments;
    rest[codeAt] = rest[textAt] = "";
    const std::string log = "/var/tarnquay/log/" + kordTest::traceFile("", mtms).filename().string();
    const Texts known = {"-f", systemOf(mtms),
                         "-l", "Microcode-rs-quay_sff",
                         "-o", "addTarnKord",
                         "-s", "",
                         "-n", "0",
                         "-h", "no",
                         "-c", "no",
                         "-E", log,
                         "-X", ""};
    return {.code = arguments[codeAt], .text = arguments[textAt], .wellFormed = rest == known};
}

void judgeEvents(const Plan& plan, const Result& result, Findings& findings)
{
    const std::string mtms = plan.arguments.size() > 1 ? plan.arguments[1] : "";
    const Texts messages = messagesOf(result.facility.value("faults", json::array()));
    Texts codes;
    for (const Call& call : callsOf(result)) {
        Texts arguments = call.arguments;
        // Where the wrapper answered in the event tool's place, the command is still the event's.
        const bool instead = call.program == "mmquaycmd" && !arguments.empty() &&
                             arguments[0] == "/opt/tarnquay/bin/pmProblemEventPoster";
        if (instead) arguments.erase(arguments.begin());
        if (!instead && call.program != "pmProblemEventPoster") continue;
        const Event event = eventOf(arguments, mtms);
        if (!event.wellFormed || !isEventText(event.text, event.code, messages))
            add(findings, Kind::broken, "event " + shortened(json(arguments).dump()));
        codes.push_back(event.code);
    }
    expectList(findings, "events", accountOf(result).events, codes);
}

/// Any user but root has the system's and the event tool run by the wrapper; root has nothing run by it.
void judgeWrapper(const Plan& plan, const Result& result, Findings& findings)
{
    const bool wrapped = !isRoot(result, plan);
    for (const Call& call : callsOf(result)) {
        const bool privileged = call.program == "qmstat" || call.program == "pmProblemEventPoster";
        const bool replaced = call.program == "mmquaycmd";
        if ((privileged && call.wrapped != wrapped) || (replaced && !wrapped))
            add(findings, Kind::broken, call.program + (call.wrapped ? " is" : " is not") + " wrapped");
    }
}

void judgeDocument(const Plan&, const Result& result, Findings& findings)
{
    const Account account = accountOf(result);
    if (result.document.has_value() != account.document) {
        return add(findings, Kind::broken, account.document ? "there is no document" : "there is a document");
    }
    if (!account.document) return;
    const kordTest::Document document = kordTest::readDocument(*result.document);
    for (const std::string& fault : document.faults) {
        add(findings, Kind::broken, "document, " + shortened(fault));
    }
    expectText(findings, "missing closings", std::to_string(account.missingClosings),
               std::to_string(document.missingClosings));
    expectText(findings, "extra closings", std::to_string(account.extraClosings),
               std::to_string(document.extraClosings));
    std::map<std::string, size_t> resources;
    Texts counts;
    for (const kordTest::Element& resource : document.resources) {
        countResources(resource, resources);
        collectCounts(resource, counts);
    }
    for (const auto& [name, count] : account.resources) {
        expectText(findings, "number of " + name, std::to_string(count), std::to_string(resources[name]));
    }
    judgeCounts(account, counts, findings);
}

void judgeTemporaryFiles(const Plan&, const Result& result, Findings& findings)
{
    expectList(findings, "command output left", json::array(), result.temporaryFiles);
}

void judgeFaults(const Plan& plan, const Result& result, Findings& findings)
{
    if (plan.mustFire.empty()) return;
    const json* line = exitLine(result);
    const json unused = line == nullptr ? json::array() : line->at("unused");
    const std::vector<Call> calls = callsOf(result);
    const json& rules = result.facility.at("faults");
    for (const size_t index : plan.mustFire) {
        const json& rule = rules.at(index);
        const bool fired = isProgramRule(rule)
                               ? std::any_of(calls.begin(), calls.end(),
                                             [&rule](const Call& call) { return call.rule == &rule; })
                               : std::find(unused.begin(), unused.end(), index) == unused.end();
        if (!fired) add(findings, Kind::broken, "fault rule " + std::to_string(index) + " was never met");
    }
}

void judgeRepetition(const Result& first, const Result& second, Findings& findings)
{
    const auto same = [&findings](const char* what, const auto& one, const auto& other) {
        if (one != other) add(findings, Kind::broken, std::string("a second run differs in its ") + what);
    };
    same("exit status", first.outcome.status, second.outcome.status);
    same("standard output", first.outcome.output, second.outcome.output);
    same("journal", first.journal, second.journal);
    same("trace log", withoutTimes(first.log), withoutTimes(second.log));
    same("document", kordTest::withFixedTimestamp(first.document.value_or("")),
         kordTest::withFixedTimestamp(second.document.value_or("")));
}

void judgeRun(const Plan& plan, const Result& result, Findings& findings)
{
    judgeEnd(plan, result, findings);
    if (!findings.empty()) return;
    judgeOutcome(plan, result, findings);
    judgeReleases(plan, result, findings);
    judgeTrace(plan, result, findings);
    judgeEvents(plan, result, findings);
    judgeWrapper(plan, result, findings);
    judgeDocument(plan, result, findings);
    judgeTemporaryFiles(plan, result, findings);
    judgeFaults(plan, result, findings);
    judgeExplanation(plan, result, findings);
}

} // namespace sweep
