// A run's account as JSON.

#include "document/explainWords.h"

#include <array>
#include <nlohmann/json.hpp>

namespace document
{

namespace
{

using nlohmann::ordered_json;

/// "2026-11-21T13:04:59", the console's own time.
std::string isoTime(const std::string& stamp)
{
    constexpr size_t length = 15;
    if (stamp.size() != length) return {};
    return "20" + stamp.substr(4, 2) + '-' + stamp.substr(0, 2) + '-' + stamp.substr(2, 2) + 'T' +
           stamp.substr(7);
}

void put(ordered_json& object, const char* key, const std::string& text)
{
    if (!text.empty()) object[key] = text;
}

ordered_json eventOf(const FiledEvent& event)
{
    ordered_json object = {
        {"line", event.line},        {"time", isoTime(event.stamp)}, {"referenceCode", event.referenceCode},
        {"name", event.name},        {"type", event.type},           {"text", event.text},
        {"filed", !event.toolStatus}};
    if (event.toolStatus) object["toolStatus"] = *event.toolStatus;
    put(object, "command", event.command);
    return object;
}

ordered_json eventsOf(const std::vector<FiledEvent>& events)
{
    ordered_json list = ordered_json::array();
    for (const FiledEvent& event : events)
        list.push_back(eventOf(event));
    return list;
}

ordered_json partOf(const Problem& problem)
{
    ordered_json list = ordered_json::array();
    for (const PartName& part : problem.part)
        list.push_back({{"what", part.what}, {"name", part.name}});
    return list;
}

const char* nameOf(Severity severity)
{
    constexpr auto names = std::to_array<const char*>({"fatal", "filed", "minor", "noted"});
    return names[static_cast<size_t>(severity)];
}

const char* nameOf(RunEnd end)
{
    constexpr auto names = std::to_array<const char*>({"closed", "noSession", "open", "brokenOff"});
    return names[static_cast<size_t>(end)];
}

ordered_json problemOf(const TracedRun& run, const Problem& problem)
{
    ordered_json object = {{"line", problem.line},  {"time", isoTime(problem.stamp)},
                           {"code", problem.code},  {"text", problem.text},
                           {"kind", problem.kind},  {"severity", nameOf(problem.severity)},
                           {"phase", problem.phase}};
    put(object, "call", problem.call);
    put(object, "function", problem.function);
    put(object, "class", problem.className);
    put(object, "session", problem.session);
    put(object, "program", problem.program);
    put(object, "action", problem.action);
    if (problem.selection) {
        object["selection"] = *problem.selection;
        object["selectionTraced"] = !problem.workedOut;
    }
    object["attributes"] = problem.attributes;
    object["part"] = partOf(problem);
    if (problem.number) object["number"] = *problem.number;
    put(object, "message", problem.message);
    object["answer"] = answerWords(problem);
    object["events"] = eventsOf(problem.events);
    put(object, "missing", missingBy(run, problem));
    put(object, "cause", problem.cause);
    put(object, "usualCause", problem.usualCause);
    put(object, "advice", problem.advice);
    return object;
}

ordered_json objectOf(const TracedRun& run)
{
    ordered_json object = {{"run", run.number},           {"firstLine", run.firstLine},
                           {"lastLine", run.lastLine},    {"started", isoTime(run.started)},
                           {"ended", isoTime(run.ended)}, {"startLost", run.startLost},
                           {"end", nameOf(run.end)},      {"lastLineCut", run.lastLineCut},
                           {"endedWell", endedWell(run)}};
    if (run.status) object["status"] = *run.status;
    put(object, "system", run.system);
    put(object, "option", run.option);
    put(object, "user", run.user);
    put(object, "console", run.console);
    put(object, "build", run.build);
    object["phase"] = run.phase;
    object["minorErrors"] = run.minorErrorsTold;
    object["documentStarted"] = run.documentStarted;
    if (run.mixedWith) object["mixedWith"] = *run.mixedWith;
    object["strangeLines"] = run.strangeLines;
    object["problems"] = ordered_json::array();
    for (const Problem& problem : run.problems)
        object["problems"].push_back(problemOf(run, problem));
    object["furtherProblems"] = run.furtherProblems;
    object["events"] = eventsOf(run.events);
    return object;
}

} // namespace

std::string explanationJson(const TracedRun& run)
{
    return objectOf(run).dump(2, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace document
