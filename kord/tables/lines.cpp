#include "tables.h"

#include <cstring>

namespace tables
{

namespace
{

constexpr const ToldQueries* toldQueries[] = {
    &addTarnQueries,     &addCecEnclQueries,    &addIoEnclQueries,    &addStorEnclQueries,
    &addRackEnclQueries, &addQuayEnclQueries,   &addPartitionQueries, &addCountQueries,
    &addHostQueries,     &addStorConfigQueries, &addUncalledQueries,
};

constexpr const ToldLines* toldLines[] = {
    &addTarnLines,     &addCecEnclLines,   &addIoEnclLines,      &addStorEnclLines,   &addRackEnclLines,
    &addQuayEnclLines, &addPartitionLines, &addHostLines,        &addStorConfigLines, &addXmlLines,
    &addErrLogLines,   &addUtilLines,      &addUncalledXmlLines,
};

/// What every line of a role means, and what to do about it.
struct RoleWords {
    const char* role;
    Explanation explanation;
};

constexpr const char* managerRuns = "see that the resource manager runs; an event is filed";
constexpr const char* seeSelection = "see the selection before it, and whether the facility should have any";

constexpr RoleWords roleWords[] = {
    {"entry", {.meaning = "a function begins"}},
    {"selection", {.meaning = "what is asked for"}},
    {"callFailed", {.meaning = "the call failed: its code and the manager's message", .advice = managerRuns}},
    {"noResources", {.meaning = "nothing found", .advice = seeSelection}},
    {"response",
     {.meaning = "the first response is in error: its number and message", .advice = "as the message says"}},
    {"emptyFirst", {.meaning = "the first response holds nothing", .advice = "see the selection before it"}},
    {"success", {.meaning = "how much was found"}},
    {"total", {.meaning = "how many were counted, in how many responses"}},
    {"progress", {.meaning = "progress"}},
    {"unexpected", {.meaning = "the answer is not as it must be", .advice = "an event is filed"}},
    {"line", {}},
    {"sessionStart", {.meaning = "a session is opened"}},
    {"sessionStartFailed", {.meaning = "the session did not open: code and message", .advice = managerRuns}},
    {"sessionEnd", {.meaning = "a session is ended"}},
    {"sessionEndFailed", {.meaning = "the session did not end: code and message", .advice = managerRuns}},
};

/// The row's own words, and the role's where it has none.
Explanation complete(const char* role, Explanation own)
{
    for (const RoleWords& words : roleWords) {
        if (strcmp(words.role, role) != 0) continue;
        if (*own.meaning == '\0') own.meaning = words.explanation.meaning;
        if (*own.cause == '\0') own.cause = words.explanation.cause;
        if (*own.advice == '\0') own.advice = words.explanation.advice;
    }
    return own;
}

ToldEnd endOf(const Query& query, Role role, const Failure& failure, uint32_t number = 0)
{
    return {.number = number,
            .report = reportOf(query, role, failure.report),
            .result = failure.result,
            .flag = failure.flag,
            .instead = failure.instead != nullptr ? written(failure.instead) : "",
            .print = failure.print};
}

/// A query's lines on their way into the model: those that the table has.
struct Lines {
    QueryLines& of;

    Line* add(const char* role, TraceText text, const Explanation& explanation)
    {
        if (text.code == nullptr) return nullptr;
        of.lines.push_back({of.module, of.function, role, text, complete(role, explanation)});
        return &of.lines.back();
    }
    void addFailure(const char* role, Role answered, const Failure& failure, const Explanation& explanation)
    {
        if (Line* line = add(role, failure.trace, explanation))
            line->ends.push_back(endOf(*of.query, answered, failure));
    }
};

TraceText textOrNone(const char* code, const char* text)
{
    return {text != nullptr ? code : nullptr, text};
}

QueryLines linesOf(const char* module, const ToldQuery& told)
{
    const Query& query = *told.query;
    const char* entry = query.entry != nullptr ? query.entry + 1 : functionOf(query);
    QueryLines all = {
        .module = module, .function = told.function != nullptr ? told.function : entry, .query = told.query};
    Lines lines{all};
    lines.add("entry", textOrNone("==>", query.entry), {});
    lines.add("selection", query.selectionTrace, told.selection);
    lines.addFailure("callFailed", Role::callFailed, query.callFailed, told.callFailed);
    lines.addFailure("noResources", Role::nothing, query.noResources, told.noResources);
    if (Line* line = lines.add("response", query.responseTrace, told.response)) {
        for (const ErrorCase& error : query.errors)
            line->ends.push_back(endOf(query, Role::response, error.failure, error.number));
        line->ends.push_back(endOf(query, Role::response, query.otherError));
    }
    lines.addFailure("emptyFirst", Role::nothing, query.emptyFirst, told.emptyFirst);
    lines.add("success", query.success, told.success);
    lines.add("progress", textOrNone(">>", query.progress), {});
    return all;
}

void addSessions(std::vector<Line>& lines)
{
    const auto add = [&](const char* function, const char* role, TraceText text) {
        lines.push_back({"addTarnKord", function, role, text, complete(role, {})});
    };
    for (const Session& session : addTarnSessions) {
        add("addTarnKord", "sessionStart", session.start);
        add("addTarnKord", "sessionStartFailed", session.startFailed);
        add("cleanUpKord", "sessionEnd", session.end);
        add("cleanUpKord", "sessionEndFailed", session.endFailed);
    }
}

} // namespace

std::vector<QueryLines> allQueries()
{
    std::vector<QueryLines> all;
    for (const ToldQueries* module : toldQueries) {
        for (const ToldQuery& told : module->queries) {
            QueryLines& query = all.emplace_back(linesOf(module->module, told));
            for (const ToldFailure& failure : module->failures) {
                if (failure.query == told.query)
                    Lines{query}.addFailure("unexpected", Role::nothing, *failure.failure,
                                            failure.explanation);
            }
        }
        for (const Counter& counter : module->counters) {
            QueryLines& query = all.emplace_back(linesOf(module->module, {.query = &counter.query}));
            query.isCounter = true;
            Lines{query}.add("total", counter.total, {});
        }
    }
    return all;
}

std::vector<Line> otherLines()
{
    std::vector<Line> lines;
    addSessions(lines);
    for (const ToldLines* module : toldLines) {
        for (const ToldLine& told : module->lines) {
            lines.push_back(
                {module->module, told.function, "line", told.line, complete("line", told.explanation)});
        }
    }
    return lines;
}

std::vector<ToldCommand> allCommands()
{
    std::vector<ToldCommand> commands;
    for (const ToldLines* module : toldLines)
        commands.insert(commands.end(), module->commands.begin(), module->commands.end());
    return commands;
}

} // namespace tables
