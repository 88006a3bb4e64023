// Matches journal lines with fault rules as the simulated console does: the first rule that matches a call
// and is due decides, and each rule counts what matches its other fields.

#include "calls.h"

#include <algorithm>

namespace sweep
{

bool isClientCall(const Call& call)
{
    return call.name != "program";
}

std::string outputOf(const json& rule)
{
    return rule.contains("answer") ? rule["answer"].value("output", "") : rule.value("output", "");
}

std::optional<std::string> firstLine(const std::string& output)
{
    if (output.find('\n') == std::string::npos) return std::nullopt;
    const size_t begin = output.starts_with('\n') ? 1 : 0;
    return output.substr(begin, output.find('\n', begin) - begin).c_str();
}

namespace
{

Call callOf(const json& line)
{
    Call call;
    call.seq = line.at("seq");
    if (line.contains("program")) {
        const std::string path = line["program"];
        call.name = "program";
        call.program = path.substr(path.rfind('/') + 1);
        call.arguments = line["arguments"];
        call.result = line["status"];
        return call;
    }
    call.name = line.at("vale");
    call.scope = line["scope"];
    call.result = line["result"];
    if (line.contains("class")) call.className = line["class"];
    if (line.contains("selection") && line["selection"].is_string()) call.selection = line["selection"];
    call.count = line.value("count", size_t{0});
    call.handles = line.value("handles", size_t{0});
    return call;
}

bool isRequest(const json& line)
{
    static const Texts requests = {"start_session",  "end_session",         "query_p_select",
                                   "query_d_select", "enumerate_resources", "invoke_action"};
    return line.contains("program") ||
           std::find(requests.begin(), requests.end(), line.value("vale", "")) != requests.end();
}

bool matches(const json& rule, const Call& call)
{
    const bool forPrograms = rule.contains("program") || rule.value("call", "") == "program";
    return forPrograms != isClientCall(call) && rule.value("call", call.name) == call.name &&
           rule.value("program", call.program) == call.program &&
           rule.value("scope", call.scope) == call.scope &&
           rule.value("class", call.className) == call.className &&
           rule.value("selection", call.selection) == call.selection &&
           call.selection.find(rule.value("selectionContains", "")) != std::string::npos;
}

/// A rule without one lets the call pass.
bool hasEffect(const json& rule)
{
    for (const char* effect : {"fails", "error", "answer", "status", "output"}) {
        if (rule.contains(effect)) return true;
    }
    return false;
}

const json* decide(const json& rules, const Call& call, std::vector<size_t>& matched)
{
    const json* decided = nullptr;
    for (size_t i = 0; i < rules.size(); ++i) {
        if (!matches(rules[i], call)) continue;
        ++matched[i];
        const bool due = rules[i].value("nth", matched[i]) == matched[i];
        if (decided == nullptr && due) decided = &rules[i];
    }
    return decided != nullptr && hasEffect(*decided) ? decided : nullptr;
}

bool isBare(const json& response)
{
    return response.value("attributes", json::array()).empty() &&
           response.value("elements", json::array()).empty() && response.value("handles", 0) == 0;
}

void readAnswer(Call& call)
{
    if (!isClientCall(call) || call.name == "start_session" || call.name == "end_session") return;
    const json* error = nullptr;
    const bool answered = call.rule != nullptr && call.rule->contains("answer");
    if (call.rule != nullptr && call.rule->contains("error")) {
        if (call.rule->at("error").value("response", 0) == 0) error = &call.rule->at("error");
    } else if (answered && call.count > 0 && call.rule->at("answer")[0].contains("error")) {
        error = &call.rule->at("answer")[0]["error"];
    }
    if (error != nullptr) call.error = error->at("number");

    const bool isEnumeration = call.name == "enumerate_resources";
    if (call.result != 0) {
        call.answer = Answer::failed;
    } else if (call.count == 0) {
        call.answer = Answer::empty;
    } else if (call.error != 0) {
        call.answer = Answer::error;
    } else if (answered ? isBare(call.rule->at("answer")[0]) : isEnumeration && call.handles == 0) {
        call.answer = Answer::bare;
    }
}

/// The wrapper's own line: it ran the command that the next line, if it is of a console program, tells of.
bool passesOn(const Call& call)
{
    return call.program == "mmquaycmd" && call.rule == nullptr;
}

Texts commandOf(const json& line)
{
    Texts command = line["arguments"];
    command.insert(command.begin(), line["program"].get<std::string>());
    return command;
}

} // namespace

std::vector<Call> callsOf(const Result& result)
{
    static const json none = json::array();
    const json& rules = result.facility.contains("faults") ? result.facility["faults"] : none;
    std::vector<size_t> matched(rules.size(), 0);
    std::vector<Call> calls;
    Texts wrappedCommand;
    for (const json& line : result.journal) {
        if (!isRequest(line)) continue;
        Call call = callOf(line);
        call.rule = decide(rules, call, matched);
        call.wrapped = line.contains("program") && commandOf(line) == wrappedCommand;
        wrappedCommand = passesOn(call) ? call.arguments : Texts{};
        if (passesOn(call)) continue;
        readAnswer(call);
        calls.push_back(std::move(call));
    }
    return calls;
}

} // namespace sweep
