#include "document/runReader.h"

#include "document/selection.h"

#include <algorithm>
#include <array>
#include <utility>

namespace document
{

namespace
{

constexpr size_t mostProblems = 2000;
constexpr std::string_view nodeClass = "Orvik.ManagedNode";

/// Lines by code, for every line of every table.
struct KnownLine {
    const TableQuery* query; ///< null: no query's line
    const TableLine* line;
};
using Index = std::map<std::string, std::vector<KnownLine>, std::less<>>;

const Index& index()
{
    static const Index rows = [] {
        Index all;
        for (const TableQuery& query : tables().queries) {
            for (const TableLine& line : query.lines)
                all[line.code].push_back({.query = &query, .line = &line});
        }
        for (const TableLine& line : tables().lines)
            all[line.code].push_back({.query = nullptr, .line = &line});
        return all;
    }();
    return rows;
}

/// What a failure's role is called here.
struct RoleKind {
    std::string_view role;
    const char* kind;
};
constexpr auto roleKinds = std::to_array<RoleKind>({
    {.role = "callFailed", .kind = "callFailed"},
    {.role = "noResources", .kind = "nothingFound"},
    {.role = "response", .kind = "responseInError"},
    {.role = "emptyFirst", .kind = "answeredEmpty"},
    {.role = "unexpected", .kind = "unexpectedAnswer"},
});

const char* kindOf(std::string_view role)
{
    const auto* const found = std::ranges::find(roleKinds, role, &RoleKind::role);
    return found == roleKinds.end() ? nullptr : found->kind;
}

Severity severityOf(std::string_view result)
{
    if (result == "fatal") return Severity::fatal;
    if (result == "none") return Severity::noted; // an error that counts as an answer
    return result == "minor" ? Severity::minor : Severity::filed;
}

/// The values that a line shows of an answer: which attributes they are of, nothing where they are none.
struct ShownValues {
    std::string_view code;
    std::string_view function;
    std::array<std::string_view, 4> attributes;
    std::string_view number = {}; ///< the attribute of a value that is a number, and 0 when there is none
};
constexpr auto shownValues = std::to_array<ShownValues>({
    {.code = "0016", .function = "queryValeId", .attributes = {"StorageFacilityImageID", "Hostname"}},
    {.code = "0118", .function = "addCecEnclKord", .attributes = {"locationCode"}},
    {.code = "0319",
     .function = "queryStorageEnclosure",
     .attributes = {"interfaceIdentifier"},
     .number = "interfaceIdentifier"},
    {.code = "0320", .function = "queryStorageEnclosure", .attributes = {"", "", "enclosureNumber", ""}},
    {.code = "0321", .function = "queryStorageEnclosure", .attributes = {"enclosureMTMS"}},
    {.code = "0326",
     .function = "addStorEnclKord",
     .attributes = {"locationCode", "rackNumber", "rackEnclosureMTMS"}},
    {.code = "0404",
     .function = "addRackEnclKord",
     .attributes = {"rackIdentifier", "locationCode", "rackNumber", "rackEnclosureMTMS"},
     .number = "rackIdentifier"},
    {.code = "0504", .function = "addQuayEnclKord", .attributes = {"quayLocationCode"}},
    {.code = "0614", .function = "enumerateVRMF", .attributes = {"the level"}},
    {.code = "0686", .function = "queryArrays", .attributes = {"arraySites"}, .number = "arraySites"},
    {.code = "0687",
     .function = "queryArrays",
     .attributes = {"arraySiteConfiguration"},
     .number = "arraySiteConfiguration"},
    {.code = "0676", .function = "queryScsiHostPort", .attributes = {"userHostDescription"}},
    {.code = "0677", .function = "queryScsiHostPort", .attributes = {"userHostDescription"}},
    {.code = "0109", .function = "querySystem", .attributes = {"storageFacilityWWNN"}},
});

/// What of a selection is empty, because an earlier answer did not hold it; empty when nothing is.
std::string emptyWords(std::string_view selection, std::string_view function)
{
    for (const SelectionItem& item : itemsOf(selection)) {
        const ValueSource source = item.value.empty() ? sourceOf(item.key, function) : ValueSource{};
        if (source.className.empty()) continue;
        return "it was asked for with an empty " + item.key + ": " + std::string(source.className) +
               " had answered without " + std::string(source.attribute);
    }
    return {};
}

} // namespace

// ---- finding out which line it is ----

struct RunReader::HandlerRow {
    std::string_view code;
    std::string_view function; ///< empty: any
    size_t values;             ///< that its format has
    Handler handler;
};

RunReader::RunReader(size_t number, const TraceLine& first)
{
    run.number = number;
    run.firstLine = first.number;
    run.started = first.stamp;
    run.startLost = first.code != "SRCV";
}

void RunReader::read(const TraceLine& line)
{
    run.lastLine = line.number;
    run.ended = line.stamp;
    run.lastText = line.text;
    progress.read(line);
    if (!line.whole) ++run.strangeLines;
    if (line.code == "==>") return enter(line, trimmed(line.text));
    if (line.code == ">>") return write(line, trimmed(line.text));
    const std::optional<Match> match = matchOf(line);
    if (match)
        act(line, *match);
    else if (line.whole)
        ++run.strangeLines;
    if (const auto status = closingStatus(line)) {
        findSessionNotOpened(line);
        run.status = status;
        run.end = RunEnd::closed;
    }
}

void RunReader::enter(const TraceLine& line, std::string_view function)
{
    constexpr std::string_view reporter = "handleErrKord ";
    if (function.starts_with(reporter)) return event(line, function.substr(reporter.size()));
    entry = function;
    if (function == "queryPartition") {
        ++partitionQueries;
        nodeSelections = 0;
    }
    for (const TableQuery& query : tables().queries) {
        const bool named = query.entry == entry || (query.entry.empty() && query.function == entry);
        if (!named) continue;
        current = {.query = &query, .selection = workedOutSelection(query), .workedOut = true};
        lastCalls[query.function] = current;
    }
}

/// A line of the document's writers. Some end what was asked for, and tell by that what has not come.
void RunReader::write(const TraceLine& line, std::string_view what)
{
    run.documentStarted = run.documentStarted || what == "openInventory";
    const auto nothingOf = [&](const char* function, const char* attribute) {
        const Call& call = lastCalls[function];
        if (call.query != nullptr) missingValue(line, call.query->className, attribute, call);
    };
    if (what.starts_with("closePartitionResources ") && adaptersWithInterfaces < adapters)
        nothingOf("queryHA", "interfaceIdentifier");
    if (what.starts_with("closeEnclosures ") && entry == "getQuaySE" && consoles == 0 && !consolesFailed)
        nothingOf("addQuayEnclKord", "quayLocationCode");
    if (what.starts_with("closePartitionResources ")) adapters = adaptersWithInterfaces = interfacesLeft = 0;
}

/// Each interface of an adapter's list has a line that tells how many there are.
void RunReader::readInterface(const TraceLine&, const Match& match)
{
    if (interfacesLeft == 0) {
        ++adaptersWithInterfaces;
        interfacesLeft = numberOf(match.values[0]);
    }
    --interfacesLeft;
}

/// The lines that the text can have been made by, and of these the one that stands where the run is.
std::optional<RunReader::Match> RunReader::matchOf(const TraceLine& line) const
{
    const auto rows = index().find(line.code);
    if (rows == index().end()) return std::nullopt;
    std::optional<Match> best;
    int bestFitness = 0;
    for (const KnownLine& row : rows->second) {
        auto values = row.line->format.match(line.text);
        if (!values) continue;
        Match match{.query = row.query, .line = row.line, .values = std::move(*values)};
        const int fit = fitness(match);
        if (fit > bestFitness) {
            bestFitness = fit;
            best = std::move(match);
        }
    }
    return best;
}

int RunReader::fitness(const Match& match) const
{
    constexpr int possible = 1000;
    const int literals = static_cast<int>(match.line->format.literals());
    if (match.query == nullptr) return possible + literals;
    if (match.line->role == "selection") {
        const bool isIts = match.query->selection && match.query->selectionFormat.match(match.values[0]);
        if (!isIts) return 0;
        const bool isNode = match.query->className == nodeClass;
        if (isNode && match.query != nodeQuery(match.values[0])) return 0;
    }
    // Where both are told alike, an error has a number.
    const bool numbered = match.line->role == "response" && numberOf(match.values[0]) != 0;
    return possible + literals + 1000 * fitnessOfQuery(match) + (numbered ? 1 : 0);
}

int RunReader::fitnessOfQuery(const Match& match) const
{
    const TableQuery& query = *match.query;
    if (match.line->role != "selection" && current.query == &query) return 3;
    if (!query.entry.empty() && query.entry == entry) return 2;
    const bool isFirst = query.function == "querySystem" && !systemKnown;
    const bool isSecond = query.function == "queryPartnerSystem" && systemKnown;
    return isFirst || isSecond ? 1 : 0;
}

/// Which of the queries for managed nodes this is: they ask with the same words.
const TableQuery* RunReader::nodeQuery(std::string_view selection) const
{
    const bool partnersTurn = partitionQueries > 1;
    const char* name = nullptr;
    if (domainStart || run.startLost) {
        const std::string serial = valueIn(selection, "HWSerialNum");
        name = firstSerial.empty() || serial == firstSerial ? "queryValeStatus" : "queryValePartnerStatus";
    } else if (partnersTurn) {
        name = "queryValePartnerStatus";
    } else {
        name = nodeSelections < std::max<int64_t>(partitions, 1) ? "queryValeId" : "queryValeStatus";
    }
    return tables().query(name);
}

void RunReader::act(const TraceLine& line, const Match& match)
{
    static const auto handlers = std::to_array<HandlerRow>({
        {"SRCV", "", 2, &RunReader::readStart},
        {"0002", "", 2, &RunReader::readNoTypeModel},
        {"0003", "", 1, &RunReader::readOption},
        {"0019", "", 0, &RunReader::readMinorErrors},
        {"0109", "querySystem", 2, &RunReader::readFacility},
        {"0109", "queryPartnerSystem", 1, &RunReader::readPartner},
        {"0017", "", 4, &RunReader::readState},
        {"0017", "", 3, &RunReader::readNoState},
        {"0697", "queryPartition", 1, &RunReader::readPartitionCount},
        {"0016", "checkStatus", 2, &RunReader::readStatus},
        {"0700", "", 1, &RunReader::readNoDocument},
        {"0007", "", 1, &RunReader::readDocumentNotStarted},
        {"0677", "queryScsiHostPort", 1, &RunReader::readOutOfMemory},
        {"0068", "", 3, &RunReader::readUser},
        {"0512", "", 5, &RunReader::readConsole},
        {"0512", "", 2, &RunReader::readNoConsole},
        {"053", "", 3, &RunReader::readConsole},
        {"052", "", 2, &RunReader::readNoConsole},
        {"0062", "", 2, &RunReader::readCommandFailed},
        {"0063", "", 1, &RunReader::readCommandFailed},
        {"0064", "", 0, &RunReader::readCommandFailed},
        {"0066", "", 2, &RunReader::readCommandFailed},
        {"050", "", 2, &RunReader::readToolFailed},
        {"051", "", 2, &RunReader::readToolFailed},
        {"0016", "queryValeId", 2, &RunReader::readValues},
        {"0118", "", 1, &RunReader::readValues},
        {"0319", "", 2, &RunReader::readValues},
        {"0320", "", 5, &RunReader::readValues},
        {"0321", "", 1, &RunReader::readValues},
        {"0326", "", 3, &RunReader::readValues},
        {"0404", "", 4, &RunReader::readValues},
        {"0504", "", 1, &RunReader::readValues},
        {"0614", "", 1, &RunReader::readValues},
        {"0686", "", 2, &RunReader::readValues},
        {"0676", "", 2, &RunReader::readValues},
        {"0677", "queryScsiHostPort", 2, &RunReader::readValues},
        {"0217", "", 2, &RunReader::readInterface},
    });
    const std::string& role = match.line->role;
    if (match.query != nullptr) {
        if (role == "selection") return beginCall(line, match);
        if (role == "success") return succeeded(line, match);
        return kindOf(role) != nullptr ? failed(line, match) : void();
    }
    if (role == "sessionStart") return readSessionStart(line, match);
    if (role == "sessionStartFailed") return readSessionFailed(line, match);
    if (role == "sessionEnd") return readSessionEnd(line, match);
    if (role == "sessionEndFailed") return readSessionEndFailed(line, match);
    for (const HandlerRow& row : handlers) {
        const bool isIts = row.code == match.line->code && row.values == match.values.size() &&
                           (row.function.empty() || row.function == match.line->function);
        if (isIts) return (this->*row.handler)(line, match);
    }
    if (match.line->code == "0687") readValues(line, match);
}

// ---- calls to the resource manager ----

void RunReader::beginCall(const TraceLine& line, const Match& match)
{
    current = {.query = match.query, .selection = std::string(match.values[0]), .workedOut = false};
    if (match.query->className == nodeClass) {
        ++nodeSelections;
        if (firstSerial.empty() && (domainStart || run.startLost))
            firstSerial = valueIn(*current.selection, "HWSerialNum");
    }
    lastCalls[match.query->function] = current;
    checkSelection(line, current);
}

/// A selection holds what earlier answers gave. What is empty in it was missing there.
void RunReader::checkSelection(const TraceLine& line, const Call& call)
{
    for (const SelectionItem& item : itemsOf(*call.selection)) {
        if (!item.value.empty()) continue;
        const ValueSource source = sourceOf(item.key, call.query->function);
        if (!source.className.empty())
            missingValue(line, std::string(source.className), std::string(source.attribute), call);
    }
}

void RunReader::failed(const TraceLine& line, const Match& match)
{
    const TableQuery& query = *match.query;
    consolesFailed = consolesFailed || query.function == "addQuayEnclKord";
    const int64_t number = match.values.empty() ? 0 : numberOf(match.values[0]);
    const auto isOf = [&](const FailureEnd& end) {
        return !end.number || static_cast<int64_t>(static_cast<int32_t>(*end.number)) == number;
    };
    const auto end = std::ranges::find_if(match.line->ends, isOf);
    if (end == match.line->ends.end()) return;

    Call call = current;
    if (call.query != &query) {
        const bool follows = query.call == "action"; // on what was found before it
        if (!follows) call = {.query = &query, .selection = workedOutSelection(query), .workedOut = true};
    }
    current = call;
    current.query = &query;
    Problem& problem = addOfCall(line, match, kindOf(match.line->role), severityOf(end->result), call);
    if (number != 0 || match.line->role != "noResources") problem.number = number;
    if (match.line->role == "noResources" && number > 0) problem.kind = "unexpectedAnswer";
    if (match.values.size() > 1) problem.message = match.values[1];
    problem.standsInstead = end->standsInstead;
    awaitsEvent = end->files;
    filesMessage = end->withMessage;
}

void RunReader::succeeded(const TraceLine& line, const Match& match)
{
    const TableQuery& query = *match.query;
    if (query.function == "queryHA") adapters = numberOf(match.values[0]);
    if (match.values.size() < 2) return;
    const auto answered = static_cast<size_t>(std::max<int64_t>(numberOf(match.values[1]), 0));
    if (answered >= query.attributes.size()) return;
    const Call call = current.query == &query ? current : Call{.query = &query, .selection = {}};
    Problem& problem = addOfCall(line, match, "fewerAttributes", Severity::noted, call);
    problem.number = static_cast<int64_t>(answered);
}

/// The selection of a query whose selection no line tells, from what the run is known to ask for.
std::optional<std::string> RunReader::workedOutSelection(const TableQuery& query) const
{
    if (!query.selection) return std::nullopt;
    if (!query.selection->starts_with("managedSystemMTMS=") || query.tracesSelection) return std::nullopt;
    const bool isPartners = query.function == "queryPartition" && partitionQueries > 1;
    const std::string value = isPartners ? partner : managedSystem();
    if (value.empty() && !isPartners) return std::nullopt; // of the partner an empty one is asked for
    std::string selection = *query.selection;
    return selection.replace(selection.find("%s"), 2, value);
}

/// As the console knows it: type-model, an asterisk, serial.
std::string RunReader::managedSystem() const
{
    constexpr size_t modelLength = 8;
    constexpr size_t serialLength = 7;
    if (run.system.size() <= modelLength + 1) return {};
    return run.system.substr(0, modelLength) + '*' + run.system.substr(modelLength + 1, serialLength);
}

// ---- problems ----

Problem RunReader::problemAt(const TraceLine& line, const char* kind, Severity severity) const
{
    Problem problem;
    problem.line = line.number;
    problem.stamp = line.stamp;
    problem.code = line.code;
    problem.text = line.text;
    problem.kind = kind;
    problem.severity = severity;
    problem.phase = progress.phase();
    return problem;
}

Problem RunReader::problemAt(const TraceLine& line, const Match& match, const char* kind,
                             Severity severity) const
{
    Problem problem = problemAt(line, kind, severity);
    problem.usualCause = match.line->cause;
    problem.advice = match.line->advice;
    return problem;
}

Problem& RunReader::add(Problem problem)
{
    awaitsEvent = false;
    filesMessage = false;
    if (run.problems.size() >= mostProblems) {
        ++run.furtherProblems;
        run.problems.pop_back(); // the run's last problem may be the one that ended it
    }
    run.problems.push_back(std::move(problem));
    return run.problems.back();
}

Problem& RunReader::addOfCall(const TraceLine& line, const Match& match, const char* kind, Severity severity,
                              const Call& call)
{
    const TableQuery& query = match.query != nullptr ? *match.query : *call.query;
    Problem problem = problemAt(line, match, kind, severity);
    problem.function = query.function;
    problem.call = query.call;
    problem.className = query.className;
    problem.session = query.session;
    problem.selection = call.selection;
    problem.workedOut = call.workedOut;
    problem.action = query.action;
    problem.attributes = query.attributes;
    if (call.selection) {
        problem.part = partsOf(*call.selection);
        problem.cause = emptyWords(*call.selection, query.function);
    }
    if (problem.part.empty() && !managedSystem().empty())
        problem.part.push_back({.what = "system", .name = managedSystem()});
    return add(std::move(problem));
}

void RunReader::missingValue(const TraceLine& line, const std::string& className,
                             const std::string& attribute, const Call& call)
{
    // A value that stands empty in a selection was told where it was missing, if a line shows it there.
    const std::string name = className + '.' + attribute;
    const bool isOwn = className == call.query->className;
    const bool isNew = missingTold.insert(isOwn ? name + call.selection.value_or("") : name).second;
    if (!isNew || missingTold.size() > mostProblems) return;
    missingTold.insert(name);
    if (!run.problems.empty()) {
        Problem& last = run.problems.back();
        const bool isSame =
            last.kind == "valueMissing" && last.line == line.number && last.className == className;
        if (isSame) return last.attributes.push_back(attribute);
    }
    Problem problem = problemAt(line, "valueMissing", Severity::noted);
    problem.function = call.query->function;
    problem.call = call.query->call;
    problem.className = className;
    problem.attributes = {attribute};
    if (isOwn) problem.selection = call.selection;
    if (call.selection) problem.part = partsOf(*call.selection);
    add(std::move(problem));
}

void RunReader::readValues(const TraceLine& line, const Match& match)
{
    if (line.code == "0504") ++consoles;
    const auto* const row = std::ranges::find_if(shownValues, [&](const ShownValues& shown) {
        return shown.code == match.line->code && shown.function == match.line->function;
    });
    const auto call = row == shownValues.end() ? lastCalls.end() : lastCalls.find(row->function);
    if (call == lastCalls.end() || call->second.query == nullptr) return;
    for (size_t i = 0; i < row->attributes.size() && i < match.values.size(); ++i) {
        const std::string_view none = row->attributes[i] == row->number ? "0" : "";
        const bool missing = match.values[i] == none;
        if (missing && !row->attributes[i].empty())
            missingValue(line, call->second.query->className, std::string(row->attributes[i]), call->second);
    }
}

// ---- events ----

void RunReader::event(const TraceLine& line, std::string_view what)
{
    const size_t comma = what.rfind(", ");
    if (comma == std::string_view::npos) return;
    const TableEvent& kind = tables().event(what.substr(comma + 2));
    FiledEvent filed;
    filed.line = line.number;
    filed.stamp = line.stamp;
    filed.referenceCode = kind.referenceCode;
    filed.name = what.substr(0, comma);
    filed.type = what.substr(comma + 2);
    filed.text = filed.name + " : " + kind.text;
    attach(std::move(filed), awaitsEvent);
}

void RunReader::attach(FiledEvent filed, bool awaited)
{
    constexpr size_t longestText = 499; // what an event takes of it
    if (awaited) {
        Problem& problem = run.problems.back();
        if (filesMessage && !problem.message.empty()) {
            const std::string message = problem.message.substr(0, problem.message.size() - 1);
            filed.text = (filed.name + " : " + message.substr(0, longestText) + ' ').substr(0, longestText);
        }
        problem.events.push_back(filed);
    } else {
        loose.push_back(filed);
    }
    awaitsEvent = false;
    run.events.push_back(std::move(filed));
}

void RunReader::readToolFailed(const TraceLine&, const Match& match)
{
    if (run.events.empty()) return;
    FiledEvent& last = run.events.back();
    last.toolStatus = static_cast<int>(numberOf(match.values[1]));
    last.command = match.values[0];
    if (!loose.empty() && loose.back().line == last.line) loose.back() = last;
    if (run.problems.empty() || run.problems.back().events.empty()) return;
    FiledEvent& attached = run.problems.back().events.back();
    if (attached.line == last.line) attached = last;
}

// ---- the end ----

size_t RunReader::mixWith(size_t other)
{
    run.mixedWith = other;
    return run.number;
}

TracedRun RunReader::finish(RunEnd end)
{
    if (!ended()) run.end = end;
    run.phase = progress.phase();
    for (FiledEvent& filed : loose) {
        const bool memory = filed.type == "m";
        Problem problem;
        problem.line = filed.line;
        problem.stamp = filed.stamp;
        problem.code = "==>";
        problem.text = " handleErrKord " + filed.name + ", " + filed.type;
        problem.kind = memory ? "outOfMemory" : "eventUnexplained";
        problem.severity = memory ? Severity::fatal : Severity::filed;
        problem.phase = run.phase;
        problem.events.push_back(std::move(filed));
        run.problems.push_back(std::move(problem));
    }
    loose.clear();
    std::ranges::stable_sort(run.problems, {}, &Problem::line);
    return std::move(run);
}

} // namespace document
