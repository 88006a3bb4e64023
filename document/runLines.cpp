// What single lines tell: of the run itself, of the console's programs, of sessions.

#include "document/runReader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace document
{

namespace
{

constexpr int64_t mostPartitions = 8;
constexpr const char* domainSession = "domain";

/// What a program that was asked leaves in the trace, beside its own line.
struct ProgramLine {
    std::string_view function;
    std::string_view command;
};
constexpr auto consolePrograms = std::to_array<ProgramLine>({
    {.function = "getQuayFullTM", .command = "/opt/brisk/bin/qconvpd -v"},
    {.function = "getQuaySE", .command = "/opt/brisk/bin/qconvpd -v"},
    {.function = "getLoginUserName", .command = "whoami"},
});

std::string commandOf(std::string_view function)
{
    const auto* const found = std::ranges::find(consolePrograms, function, &ProgramLine::function);
    return found == consolePrograms.end() ? std::string() : std::string(found->command);
}

std::string stateCommand(const std::string& user, std::string_view system)
{
    return (user == "root" ? "" : "/opt/tarnquay/bin/mmquaycmd ") +
           std::string("/opt/brisk/bin/qmstat -r sys -m \"") + std::string(system) + "\" -F state";
}

} // namespace

void RunReader::readStart(const TraceLine&, const Match& match)
{
    run.build = trimmed(match.values[0]);
    run.system = match.values[1];
}

void RunReader::readNoTypeModel(const TraceLine& line, const Match& match)
{
    Problem& problem = add(problemAt(line, match, "noTypeModel", Severity::fatal));
    problem.message = match.values[0];
    run.status = -1;
    run.end = RunEnd::noSession;
}

void RunReader::readOption(const TraceLine&, const Match& match)
{
    run.option = match.values[0];
}

void RunReader::readMinorErrors(const TraceLine&, const Match&)
{
    run.minorErrorsTold = true;
}

void RunReader::readFacility(const TraceLine& line, const Match& match)
{
    systemKnown = true;
    const TableQuery* query = tables().query("querySystem");
    lastCalls["querySystem"] = {.query = query, .selection = workedOutSelection(*query), .workedOut = true};
    readValues(line, match);
}

void RunReader::readPartner(const TraceLine& line, const Match& match)
{
    partnerKnown = true;
    partner = match.values[0];
    if (!partner.empty()) return;
    const TableQuery* query = tables().query("queryPartnerSystem");
    missingValue(line, query->className, "the partner's MTMS", {.query = query, .selection = {}});
}

void RunReader::readPartitionCount(const TraceLine&, const Match& match)
{
    partitions = std::clamp<int64_t>(numberOf(match.values[0]), 0, mostPartitions);
}

void RunReader::readStatus(const TraceLine& line, const Match& match)
{
    constexpr int64_t online = 1;
    const int64_t status = numberOf(match.values[1]);
    if (status == online) return;
    const Call call = current.query != nullptr
                          ? current
                          : Call{.query = tables().query("queryValeStatus"), .selection = {}};
    Problem& problem = addOfCall(line, match, "notOnline", Severity::fatal, call);
    problem.number = status;
    problem.part.push_back({.what = "named", .name = std::string(match.values[0])});
    awaitsEvent = true;
}

void RunReader::readNoDocument(const TraceLine& line, const Match& match)
{
    Problem& problem = add(problemAt(line, match, "documentNotStarted", Severity::filed));
    problem.call = "file";
    problem.message = trimmed(match.values[0]);
    awaitsEvent = true;
}

void RunReader::readDocumentNotStarted(const TraceLine& line, const Match& match)
{
    const bool told = !run.problems.empty() && run.problems.back().kind == "documentNotStarted";
    if (told) return;
    Problem& problem = add(problemAt(line, match, "documentNotStarted", Severity::filed));
    problem.call = "file";
    problem.events = std::exchange(loose, {});
}

void RunReader::readOutOfMemory(const TraceLine& line, const Match& match)
{
    Problem& problem = add(problemAt(line, match, "outOfMemory", Severity::fatal));
    problem.function = match.line->function;
    awaitsEvent = true;
}

// ---- console programs ----

void RunReader::readCommandFailed(const TraceLine& line, const Match& match)
{
    if (line.code == "0066") {
        trouble = {.kind = "programFailed", .status = numberOf(match.values[0])};
    } else {
        trouble = {.kind = line.code == "0062" ? "programSilent" : "programUnread", .status = {}};
    }
}

Problem& RunReader::addOfProgram(const TraceLine& line, const Match& match, const std::string& command)
{
    // A command that ended well and printed, but no line that ends.
    if (trouble.kind.empty()) trouble.kind = "programUnended";
    Problem problem = problemAt(line, match, trouble.kind.c_str(), Severity::noted);
    problem.function = match.line->function;
    problem.call = "program";
    problem.program = command;
    problem.number = trouble.status;
    trouble = {};
    return add(std::move(problem));
}

/// Only the first line that a program prints is read.
void RunReader::checkOutput(const TraceLine& line, const Match& match, const std::string& command)
{
    const int64_t lines = numberOf(match.values[1]);
    const bool isBlank = match.line->function != "checkSystemState" && trimmed(match.values[2]).empty();
    trouble = {};
    if (lines < 2 && !isBlank) return;
    trouble.kind = isBlank ? "programBlank" : "programTalkative";
    addOfProgram(line, match, command).number = lines;
}

void RunReader::readState(const TraceLine& line, const Match& match)
{
    checkOutput(line, match, stateCommand(run.user, match.values[2]));
    if (match.values[3] == "Operating") return;
    Problem problem = problemAt(line, match, "notOperating", Severity::fatal);
    problem.function = match.line->function;
    problem.call = "program";
    problem.program = stateCommand(run.user, match.values[2]);
    problem.part.push_back({.what = "system", .name = std::string(match.values[2])});
    problem.message = match.values[3];
    add(std::move(problem));
    awaitsEvent = true;
}

void RunReader::readNoState(const TraceLine& line, const Match& match)
{
    Problem& problem = addOfProgram(line, match, stateCommand(run.user, match.values[2]));
    problem.part.push_back({.what = "system", .name = std::string(match.values[2])});
}

void RunReader::readUser(const TraceLine& line, const Match& match)
{
    const bool known = numberOf(match.values[0]) == 0 && numberOf(match.values[1]) > 0;
    if (!known) return readNoUser(line, match);
    run.user = match.values[2];
    checkOutput(line, match, commandOf("getLoginUserName"));
}

void RunReader::readNoUser(const TraceLine& line, const Match& match)
{
    run.user = "briskroot";
    addOfProgram(line, match, commandOf("getLoginUserName"));
}

void RunReader::readConsole(const TraceLine& line, const Match& match)
{
    checkOutput(line, match, commandOf(match.line->function));
    run.console += (run.console.empty() ? "" : "-") + std::string(match.values[2]);
}

void RunReader::readNoConsole(const TraceLine& line, const Match& match)
{
    addOfProgram(line, match, commandOf(match.line->function));
}

// ---- sessions ----

void RunReader::readSessionStart(const TraceLine& line, const Match& match)
{
    lastSession = match.line->session;
    if (lastSession != domainSession) return;
    domainStart = problemAt(line, "sessionNotOpened", Severity::noted);
    nodeSelections = 0;
    firstSerial.clear();
}

Problem& RunReader::addSessionProblem(Problem of, const Match& match)
{
    Problem& problem = add(std::move(of));
    problem.call = "session";
    problem.session = lastSession;
    problem.number = numberOf(match.values[0]);
    problem.message = match.values[1];
    return problem;
}

void RunReader::readSessionFailed(const TraceLine& line, const Match& match)
{
    Problem& problem = addSessionProblem(problemAt(line, match, "sessionFailed", Severity::fatal), match);
    problem.events = std::exchange(loose, {});
    if (endsWithoutClosing(line)) {
        run.status = -1;
        run.end = RunEnd::noSession;
        return;
    }
    domainFailed = true;
    awaitsEvent = true;
}

void RunReader::readSessionEnd(const TraceLine&, const Match& match)
{
    lastSession = match.line->session;
    endedSessions.insert(lastSession);
}

void RunReader::readSessionEndFailed(const TraceLine& line, const Match& match)
{
    addSessionProblem(problemAt(line, match, "sessionEndFailed", Severity::filed), match);
    awaitsEvent = true;
}

/// A domain session whose start gives another code than -1 leaves no line. But only sessions that are open
/// are ended.
void RunReader::findSessionNotOpened(const TraceLine&)
{
    const bool open = endedSessions.contains(domainSession) || !endedSessions.contains("shared resource");
    if (!domainStart || domainFailed || open) return;
    Problem& problem = *domainStart;
    problem.call = "session";
    problem.session = domainSession;
    for (const TableLine& line : tables().lines) {
        if (line.role != "sessionStartFailed" || line.session != domainSession) continue;
        problem.usualCause = line.cause;
        problem.advice = line.advice;
    }
    for (Problem& other : run.problems) {
        if (other.line > problem.line && other.session == domainSession)
            other.cause = "the domain session had not opened, see line " + std::to_string(problem.line);
    }
    run.problems.push_back(std::move(problem));
}

} // namespace document
