// Every recorded outcome is compared with the regular one of the gathered console. Each that differs becomes
// a rule, which names the call's place among its like unless they were all answered alike.

#include "recorder/builder.h"

#include "recorder/regular.h"

#include <algorithm>
#include <map>
#include <set>

namespace recorder
{

namespace
{

using nlohmann::json;
using nlohmann::ordered_json;

/// The response of an answer that alone is in error; none: all are well, or several are not.
std::optional<size_t> onlyError(const json& answer)
{
    const auto inError = [](const json& response) { return response.contains("error"); };
    if (std::ranges::count_if(answer, inError) != 1) return std::nullopt;
    return static_cast<size_t>(std::ranges::find_if(answer, inError) - answer.begin());
}

/// The outcome as an error on an answer that is otherwise regular, or as it stands.
json effectOf(const json& outcome, json regular)
{
    if (!outcome.contains("answer") || !regular.is_object() || !regular.contains("answer")) return outcome;
    const json& answer = outcome["answer"];
    const std::optional<size_t> place = onlyError(answer);
    if (!place) return outcome;
    json& expected = regular["answer"];
    json error = answer[*place]["error"];
    if (expected.size() == *place) { // the regular answer is extended for the error
        expected.push_back(answer[*place]);
        for (const char* content : {"attributes", "handles", "elements"}) {
            if (!expected[*place].contains(content)) continue;
            expected[*place][content] = content == std::string_view("handles") ? json(0) : json::array();
        }
    }
    if (expected.size() > *place) expected[*place]["error"] = error;
    if (expected != answer) return outcome;
    if (*place > 0) error["response"] = *place;
    return {{"error", error}};
}

/// Counts calls as rules do.
class Places
{
public:
    explicit Places(const std::vector<Call>& calls)
    {
        for (size_t i = 0; i < calls.size(); ++i) {
            json matcher = calls[i].matcher;
            matched[matcher.dump()].push_back(i);
            // A call without selection is matched by rules that match any selection.
            if (matcher.erase("selection") > 0) matched[matcher.dump()].push_back(i);
        }
    }
    /// The calls that a rule with the matcher of this call matches, in order.
    [[nodiscard]] const std::vector<size_t>& alike(const Call& call) const
    {
        return matched.at(call.matcher.dump());
    }

private:
    std::map<std::string, std::vector<size_t>> matched;
};

json rulesFor(const std::vector<Call>& calls, const RegularConsole& console)
{
    std::vector<json> effects; // of the calls that need a rule; null for the others
    for (const Call& call : calls) {
        const json regular = console.outcome(call);
        effects.push_back(call.outcome == regular ? json() : effectOf(call.outcome, regular));
    }
    const Places places(calls);
    std::set<json> rules;
    json inOrder = json::array();
    for (size_t i = 0; i < calls.size(); ++i) {
        if (effects[i].is_null()) continue;
        json rule = calls[i].matcher;
        rule.update(effects[i]);
        const std::vector<size_t>& alike = places.alike(calls[i]);
        const bool always =
            std::ranges::all_of(alike, [&](size_t other) { return effects[other] == effects[i]; });
        if (!always) rule["nth"] = std::ranges::find(alike, i) - alike.begin() + 1;
        if (rules.insert(rule).second) inOrder.push_back(rule);
    }
    return inOrder;
}

void addLines(std::string& text, const ordered_json& list, const std::string& indent)
{
    text += "[";
    for (const char* separator = "\n"; const ordered_json& item : list) {
        text += separator + indent + "  " + item.dump();
        separator = ",\n";
    }
    text += list.empty() ? "]" : "\n" + indent + "]";
}

} // namespace

ordered_json buildFacility(const Origin& origin, std::vector<Call> calls)
{
    Gatherer gatherer;
    for (const Call& call : calls)
        gatherer.take(call);
    const json rules = rulesFor(calls, RegularConsole(gatherer));
    calls = {}; // they are as large as the facility, which is still to be made
    ordered_json facility = gatherer.facility();
    ordered_json& recording = facility["recording"];
    recording["command"] = origin.command;
    if (!origin.system.empty()) recording["system"] = origin.system;
    recording["date"] = origin.date;
    recording["status"] = origin.status;
    recording["versions"] = origin.versions;
    facility["faults"] = rules;
    return facility;
}

std::string toText(const ordered_json& facility)
{
    std::string text = "{\n  \"recording\": " + facility["recording"].dump() +
                       ",\n  \"console\": " + facility["console"].dump() +
                       ",\n  \"systems\": " + facility["systems"].dump() + ",\n  \"resources\": {";
    for (const char* separator = "\n"; const auto& [name, resources] : facility["resources"].items()) {
        text += separator + ("    \"" + name) + "\": ";
        addLines(text, resources, "    ");
        separator = ",\n";
    }
    text += "\n  },\n  \"faults\": ";
    addLines(text, facility["faults"], "  ");
    return text + "\n}\n";
}

} // namespace recorder
