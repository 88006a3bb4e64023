// From the tape's lines to calls: a failed call finds its message in a later line, and the wrapper's line
// becomes two calls where the program behind it answered.

#include "recorder/calls.h"

#include "recorder/tape.h"

#include <algorithm>

namespace recorder
{

namespace
{

using nlohmann::json;

/// Every number of a response's resources; and the response as a rule's answer has it, where resources are
/// counted.
std::vector<uint64_t> takeResources(json& response)
{
    std::vector<uint64_t> numbers;
    if (response.contains("handle")) numbers = {response["handle"].get<uint64_t>()};
    if (response.contains("handles")) {
        numbers = response["handles"].get<std::vector<uint64_t>>();
        response["handles"] = numbers.size();
    }
    response.erase("handle");
    return numbers;
}

Call readClientCall(json& line)
{
    Call call;
    call.matcher = {{"call", line["vale"]}, {"scope", line["scope"]}};
    for (const char* field : {"class", "selection"}) {
        if (line.contains(field) && line[field].is_string()) call.matcher[field] = line[field];
    }
    call.outcome = json::object();
    if (line["result"] != 0) call.outcome["fails"] = {{"code", line["result"]}};
    if (line.contains("responses")) {
        json& answer = call.outcome["answer"] = std::move(line["responses"]);
        for (json& response : answer)
            call.resources.push_back(takeResources(response));
    }
    call.attributes = line.value("attributes", std::vector<std::string>());
    call.resource = line.value("handle", call.resource);
    return call;
}

/// The message of the last failed call, which the run asked for now.
void addMessage(std::vector<Call>& calls, const json& message)
{
    const auto failed = std::find_if(calls.rbegin(), calls.rend(),
                                     [](const Call& call) { return call.outcome.contains("fails"); });
    if (failed != calls.rend() && message.is_string()) failed->outcome["fails"]["message"] = message;
}

Call programCall(const std::string& path, std::vector<std::string> arguments, const json& status,
                 const json& output)
{
    return {.matcher = {{"program", path.substr(path.rfind('/') + 1)}},
            .outcome = {{"status", status}, {"output", output}},
            .attributes = {},
            .resources = {},
            .arguments = std::move(arguments)};
}

bool isAmong(const std::vector<std::string>& started, std::string_view program)
{
    return std::ranges::find(started, program) != started.end();
}

/// The program's call, or two for the wrapper and the console program behind it. Where the wrapper said that
/// it started, but nothing behind it did, it answered itself; where it said nothing, nobody behind it can
/// either.
void addProgram(std::vector<Call>& calls, const json& line, const std::vector<std::string>& started)
{
    std::string path = line["program"];
    std::vector<std::string> arguments = line["arguments"];
    const bool wraps = path == wrapper && !arguments.empty() &&
                       isAmong({consolePrograms.begin(), consolePrograms.end()}, arguments[0]);
    if (wraps && (isAmong(started, arguments[0]) || !isAmong(started, path))) {
        calls.push_back(programCall(path, arguments, 0, ""));
        path = arguments[0];
        arguments.erase(arguments.begin());
    }
    calls.push_back(programCall(path, std::move(arguments), line["status"], line["output"]));
}

} // namespace

std::vector<Call> readCalls(std::vector<json> tape)
{
    std::vector<Call> calls;
    std::vector<std::string> started; // since the last program ended
    for (json& line : tape) {
        if (line.contains("started")) {
            started.push_back(line["started"]);
        } else if (line.contains("program")) {
            addProgram(calls, line, started);
            started.clear();
        } else if (line["vale"] == "get_errmsg") {
            addMessage(calls, line["message"]);
        } else {
            calls.push_back(readClientCall(line));
        }
        line = nullptr;
    }
    return calls;
}

} // namespace recorder
