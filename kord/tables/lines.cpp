#include "tables.h"

#include <algorithm>
#include <cstring>

namespace tables
{

namespace
{

constexpr const ToldQueries* toldQueries[] = {
    &addCheckQueries,    &addCecEnclQueries,    &addIoEnclQueries,    &addStorEnclQueries,
    &addRackEnclQueries, &addQuayEnclQueries,   &addPartitionQueries, &addCountQueries,
    &addHostQueries,     &addStorConfigQueries, &addUncalledQueries,
};

constexpr const ToldLines* toldLines[] = {
    &addTarnLines,     &addCheckLines,    &addCecEnclLines,   &addIoEnclLines,      &addStorEnclLines,
    &addRackEnclLines, &addQuayEnclLines, &addPartitionLines, &addHostLines,        &addStorConfigLines,
    &addXmlLines,      &addErrLogLines,   &addUtilLines,      &addUncalledXmlLines,
};

ToldEnd endOf(const ToldQuery& told, Role role, const Failure& failure, uint32_t number = 0)
{
    return {.number = number,
            .report = reportOf(*told.query, role, failure.report),
            .result = failure.result == failed ? told.failsAs : failure.result,
            .flag = failure.flag,
            .instead = failure.instead != nullptr ? written(failure.instead) : "",
            .print = failure.print};
}

/// A query's lines on their way into the model: those that the table has.
struct Lines {
    QueryLines& of;
    const ToldQuery& told;

    Line* add(const char* role, TraceText text, const Explanation& explanation)
    {
        if (text.code == nullptr) return nullptr;
        of.lines.push_back({of.module, of.function, role, text, wordsOf(explanation)});
        return &of.lines.back();
    }
    void addFailure(const char* role, Role answered, const Failure& failure, const Explanation& explanation)
    {
        if (Line* line = add(role, failure.trace, explanation))
            line->ends.push_back(endOf(told, answered, failure));
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
    Lines lines{all, told};
    lines.add("entry", textOrNone("==>", query.entry), {});
    lines.add("selection", query.selectionTrace, told.selection);
    lines.addFailure("callFailed", Role::callFailed, query.callFailed, told.callFailed);
    lines.addFailure("noResources", Role::nothing, query.noResources, told.noResources);
    if (Line* line = lines.add("response", query.responseTrace, told.response)) {
        for (const ErrorCase& error : query.errors)
            line->ends.push_back(endOf(told, Role::response, error.failure, error.number));
        line->ends.push_back(endOf(told, Role::response, query.otherError));
    }
    lines.addFailure("emptyFirst", Role::nothing, query.emptyFirst, told.emptyFirst);
    lines.add("success", query.success, told.success);
    lines.add("progress", textOrNone(">>", query.progress), {});
    return all;
}

void addSessions(std::vector<Line>& lines)
{
    for (const Session& session : allSessions) {
        const auto add = [&](const char* function, const char* role, TraceText text) {
            tellSession(lines.emplace_back(Line{"addSessionKord", function, role, text, {}, session.name}),
                        session);
        };
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
                    Lines{query, told}.addFailure("unexpected", Role::nothing, *failure.failure,
                                                  failure.explanation);
            }
            tellQuery(query, told.subject);
        }
        for (size_t i = 0; i < module->counters.size(); ++i) {
            const Counter& counter = module->counters[i];
            const ToldQuery told = {.query = &counter.query};
            QueryLines& query = all.emplace_back(linesOf(module->module, told));
            query.isCounter = true;
            Lines{query, told}.add("total", counter.total, {});
            tellQuery(query, i < module->counted.size() ? module->counted[i] : ToldSubject{});
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
            lines.push_back({module->module, told.function, "line", told.line, wordsOf(told.explanation)});
        }
    }
    return lines;
}

std::vector<Line> linesByCode()
{
    // Entry and progress lines carry no code of their own.
    const auto hasCode = [](const Line& line) {
        return line.text.code[0] != '=' && line.text.code[0] != '>';
    };
    std::vector<Line> lines;
    for (const QueryLines& query : allQueries())
        std::ranges::copy_if(query.lines, std::back_inserter(lines), hasCode);
    std::ranges::copy(otherLines(), std::back_inserter(lines));
    std::ranges::stable_sort(lines, {}, [](const Line& line) { return std::string_view(line.text.code); });
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
