// For every client call of a regular run and every way in which it can go wrong: that call once, and all
// calls from it on.

#include <algorithm>
#include <memory>

#include "calls.h"
#include "regularAnswer.h"
#include "sweep.h"

namespace sweep
{

namespace
{

// ---- a regular run ----

struct Recorded {
    Call call;
    Texts attributes;      ///< requested
    size_t occurrence = 0; ///< how often it was made by then, itself included
};

struct Recording { // NOLINT(bugprone-exception-escape): JSON can be moved
    json facility;
    std::vector<Recorded> calls; ///< the client calls in order
    std::shared_ptr<const std::string> log;
};

bool isSame(const Call& one, const Call& other)
{
    return one.name == other.name && one.className == other.className && one.selection == other.selection;
}

std::shared_ptr<const Recording> record(const std::string& facility)
{
    auto recording = std::make_shared<Recording>();
    recording->facility = bundled(facility);
    const Result result = runOnce({.name = "regular", .facility = [&] { return recording->facility; }});
    recording->log = std::make_shared<const std::string>(result.log);
    for (const Call& call : callsOf(result)) {
        if (!isClientCall(call)) continue;
        size_t occurrence = 1;
        for (const Recorded& earlier : recording->calls) {
            if (isSame(earlier.call, call)) ++occurrence;
        }
        const Texts attributes = result.journal.at(call.seq - 1).value("attributes", Texts{});
        recording->calls.push_back({.call = call, .attributes = attributes, .occurrence = occurrence});
    }
    return recording;
}

// ---- the ways ----

bool isSession(const Call& call)
{
    return call.name == "start_session" || call.name == "end_session";
}

bool isQuery(const Call& call)
{
    return call.name == "query_p_select" || call.name == "query_d_select";
}

bool isEnumeration(const Call& call)
{
    return call.name == "enumerate_resources";
}

/// A way for a call to go wrong: the fault rule's effect, none where the call cannot go wrong in this way.
struct ClientWay {
    std::string name;
    std::function<json(const Recording&, const Recorded&)> effect;
    bool general = false; ///< the effect is the same for every call
};

json failing(int code)
{
    return {{"fails", {{"code", code}, {"message", "the call failed with " + std::to_string(code) + "\n"}}}};
}

ClientWay always(const std::string& name, const json& effect)
{
    return {.name = name, .effect = [effect](const auto&, const auto&) { return effect; }, .general = true};
}

/// Only calls that have responses can be answered so.
ClientWay answered(const std::string& name, const json& effect)
{
    const auto forResponses = [effect](const Recording&, const Recorded& recorded) {
        return isSession(recorded.call) ? json() : effect;
    };
    return {.name = name, .effect = forResponses, .general = true};
}

ClientWay inError(uint32_t number, const std::string& name)
{
    return answered("error-" + name, {{"error", {{"number", number}, {"message", "error " + name + "\n"}}}});
}

json answer(const json& responses)
{
    return {{"answer", responses}};
}

/// As many responses as usual, each without anything in it.
json bareAnswer(const Recording&, const Recorded& recorded)
{
    if (isSession(recorded.call)) return {};
    return answer(json(recorded.call.count, json::object()));
}

/// All that was asked for is there, but nothing is in it.
json nullAnswer(const Recording&, const Recorded& recorded)
{
    if (recorded.call.name == "invoke_action") return answer({{{"elements", {0, nullptr}}}});
    if (!isQuery(recorded.call)) return {};
    json attributes = json::array();
    for (const std::string& attribute : recorded.attributes) {
        attributes.push_back({attribute, nullptr});
    }
    return answer(json(recorded.call.count, {{"attributes", attributes}}));
}

/// Every response has only its first attributes, as many as are kept but never all.
json shortAnswer(const Recording& recording, const Recorded& recorded, size_t kept)
{
    if (!isQuery(recorded.call)) return {};
    json responses = regularAnswer(recording.facility, recorded.call, recorded.attributes);
    for (json& response : responses) {
        json& attributes = response["attributes"];
        const size_t end = std::min(kept, attributes.empty() ? 0 : attributes.size() - 1);
        attributes.erase(attributes.begin() + static_cast<std::ptrdiff_t>(end), attributes.end());
    }
    return answer(responses);
}

json oneHandleFewer(const Recording&, const Recorded& recorded)
{
    if (!isEnumeration(recorded.call)) return {};
    return answer({{{"handles", recorded.call.handles - 1}}});
}

std::vector<ClientWay> clientWays()
{
    constexpr size_t all = 1000;
    return {
        always("fails", failing(7)),
        always("refuses", failing(-1)),
        always("fails-silently", {{"fails", {{"code", 7}}}}),
        answered("empty", answer(json::array())),
        inError(0x30002, "30002"),
        inError(0x40008, "40008"),
        inError(0x4000a, "4000a"),
        inError(0x4000d, "4000d"),
        inError(0x50001, "50001"),
        answered("error-silently", {{"error", {{"number", 0x50001}}}}),
        {.name = "bare", .effect = bareAnswer},
        {.name = "nulls", .effect = nullAnswer},
        {.name = "short",
         .effect = [](const auto& of, const auto& call) { return shortAnswer(of, call, all); }},
        {.name = "first-only",
         .effect = [](const auto& of, const auto& call) { return shortAnswer(of, call, 1); }},
        {.name = "one-fewer", .effect = oneHandleFewer},
    };
}

// ---- the rules ----

json once(size_t number, json effect)
{
    effect["nth"] = number;
    return json::array({effect});
}

/// The same for every call from the number on, also for calls that a regular run does not make. The rule for
/// them stands behind those that let the earlier calls pass. Answers and errors have no effect on sessions.
json onwards(size_t number, const json& effect)
{
    json rules = json::array();
    for (size_t earlier = 1; earlier < number; ++earlier) {
        rules.push_back({{"nth", earlier}, {"delay", 0}});
    }
    rules.push_back(effect);
    return rules;
}

/// For each recorded call from the number on the effect of its own.
json onwardsEach(const Recording& recording, size_t number, const ClientWay& way)
{
    json rules = json::array();
    for (size_t i = number - 1; i < recording.calls.size(); ++i) {
        const Recorded& recorded = recording.calls[i];
        json rule = way.effect(recording, recorded);
        if (rule.is_null()) continue;
        rule["call"] = recorded.call.name;
        rule["class"] = recorded.call.className;
        if (!recorded.call.selection.empty()) rule["selection"] = recorded.call.selection;
        rule["nth"] = recorded.occurrence;
        rules.push_back(rule);
    }
    return rules;
}

// ---- the plans ----

using Shared = std::shared_ptr<const Recording>;

Plan planOf(const Shared& recording, const std::string& name, std::function<json()> faults, size_t mustFire)
{
    return {.name = name,
            .facility = [recording] { return recording->facility; },
            .faults = std::move(faults),
            .mustFire = {mustFire},
            .regularLog = recording->log};
}

void addPlans(std::vector<Plan>& plans, const std::string& prefix, const Shared& recording,
              const ClientWay& way)
{
    for (size_t number = 1; number <= recording->calls.size(); ++number) {
        const json effect = way.effect(*recording, recording->calls[number - 1]);
        if (effect.is_null()) continue;
        const std::string name = prefix + way.name + ".";
        const std::string at = "." + std::to_string(number);
        plans.push_back(planOf(
            recording, name + "once" + at, [number, effect] { return once(number, effect); }, 0));
        const auto rules = [recording, number, effect, way] {
            return way.general ? onwards(number, effect) : onwardsEach(*recording, number, way);
        };
        plans.push_back(planOf(recording, name + "on" + at, rules, way.general ? number - 1 : 0));
    }
}

} // namespace

std::vector<Plan> planClient(const Options& options)
{
    std::vector<Plan> plans;
    for (const std::string facility : {"facility", "small"}) {
        const Shared recording = record(facility + ".json");
        for (const ClientWay& way : clientWays()) {
            addPlans(plans, facility + ".", recording, way);
        }
    }
    constexpr size_t share = 150;
    constexpr size_t repeated = 8;
    return selected(std::move(plans), options, share, repeated);
}

} // namespace sweep
