// Matching calls against fault rules, with counters that all processes of the run share.

#include "image/faults.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

namespace console::image
{

namespace
{

constexpr const char* programCall = "program";

bool isText(const char* text, const char* wanted)
{
    return wanted == nullptr || (text != nullptr && std::strcmp(text, wanted) == 0);
}

bool contains(const char* text, const char* part)
{
    return part == nullptr || (text != nullptr && std::strstr(text, part) != nullptr);
}

/// A rule that names neither a call nor a program speaks of the client.
bool isForPrograms(const Image& image, const Rule& rule)
{
    return rule.program != 0 || (rule.call != 0 && std::strcmp(image.text(rule.call), programCall) == 0);
}

bool matches(const Image& image, const Rule& rule, const Call& call)
{
    return isForPrograms(image, rule) == (call.program != nullptr) &&
           isText(call.name, image.text(rule.call)) && isText(call.program, image.text(rule.program)) &&
           (rule.scope == -1 || rule.scope == call.scope) &&
           isText(call.className, image.text(rule.className)) &&
           isText(call.selection, image.text(rule.selection)) &&
           contains(call.selection, image.text(rule.selectionContains));
}

uint64_t increment(uint64_t& counter)
{
    return std::atomic_ref<uint64_t>(counter).fetch_add(1) + 1;
}

} // namespace

const Rule* decide(const Run& run, const Call& call)
{
    const Rule* decided = nullptr;
    const std::span<const Rule> rules = run.image.rules();
    for (size_t i = 0; i < rules.size(); ++i) {
        if (!matches(run.image, rules[i], call)) continue;
        const uint64_t count = increment(run.ruleStates[i].matched);
        const bool due = rules[i].nth == -1 || static_cast<uint64_t>(rules[i].nth) == count;
        if (decided != nullptr || !due) continue;
        decided = &rules[i];
        increment(run.ruleStates[i].fired);
    }
    if (decided != nullptr && decided->delayMilliseconds > 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(decided->delayMilliseconds));
    }
    return decided;
}

std::vector<int64_t> unusedClientRules(const Run& run)
{
    std::vector<int64_t> unused;
    const std::span<const Rule> rules = run.image.rules();
    for (size_t i = 0; i < rules.size(); ++i) {
        const bool fired = std::atomic_ref<uint64_t>(run.ruleStates[i].fired).load() != 0;
        if (!fired && !isForPrograms(run.image, rules[i])) unused.push_back(static_cast<int64_t>(i));
    }
    return unused;
}

} // namespace console::image
