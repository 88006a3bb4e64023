// Every console program misbehaves in every way: each of its calls once, and all from it on.

#include "calls.h"
#include "sweep.h"

namespace sweep
{

namespace
{

/// A run in which the program is called, and how often.
struct Scene {
    std::string program;
    std::string name = {}; ///< what the run is like; empty: regular
    std::optional<std::string> user = {};
    json faults; ///< so that there is something to file events about
    size_t calls = 0;
    std::shared_ptr<const std::string> log = {};
};

/// Whoever is not root has the console's programs run by the wrapper.
const std::optional<std::string> operatorUser = "operator";

/// Two minor errors, two events that do not stop the run.
json eventful()
{
    return json::array({
        {{"call", "query_p_select"}, {"class", "Orvik.TarnDDM"}, {"nth", 2}, {"answer", json::array()}},
        {{"class", "Orvik.TarnFanSense"}, {"error", {{"number", 7}, {"message", "no fan\n"}}}},
    });
}

bool isOf(const Call& call, const Scene& scene)
{
    return call.program == scene.program || (scene.program == "mmquaycmd" && call.wrapped);
}

/// The last of the rules must be met.
Plan planOf(const Scene& scene, const std::string& name, json rules)
{
    const size_t injected = rules.size();
    std::vector<size_t> mustFire;
    if (!rules.empty()) mustFire.push_back(injected - 1);
    rules.insert(rules.end(), scene.faults.begin(), scene.faults.end());
    return {.name = name,
            .faults = [rules] { return rules; },
            .user = scene.user,
            .mustFire = mustFire,
            .injected = injected,
            .regularLog = scene.log};
}

std::vector<Scene> scenes()
{
    std::vector<Scene> scenes = {
        {.program = "whoami", .faults = json::array()},
        {.program = "qmstat", .faults = json::array()},
        {.program = "qmstat", .name = "wrapped.", .user = operatorUser, .faults = json::array()},
        {.program = "qconvpd", .faults = json::array()},
        {.program = "pmProblemEventPoster", .faults = eventful()},
        {.program = "pmProblemEventPoster", .name = "wrapped.", .user = operatorUser, .faults = eventful()},
        {.program = "mmquaycmd", .user = operatorUser, .faults = eventful()},
    };
    for (Scene& scene : scenes) {
        const Result regular = runOnce(planOf(scene, "regular", json::array()));
        scene.log = std::make_shared<const std::string>(regular.log);
        for (const Call& call : callsOf(regular)) {
            if (isOf(call, scene)) ++scene.calls;
        }
    }
    return scenes;
}

// ---- the ways ----

struct ProgramWay {
    std::string name;
    int status = 0;
    std::string output = {};
};

std::string megabyte(const std::string& text)
{
    std::string output = {};
    while (output.size() < 1'000'000)
        output += text;
    return output;
}

std::string binary()
{
    std::string output("\0\x01\x7f\x1b\r", 5);
    return output + "\u00ff\u0080\U0010ffff" + output + "\n" + output + "\n";
}

std::vector<ProgramWay> programWays(const std::string& usual)
{
    return {
        {.name = "fails", .status = 1},
        {.name = "fails-talking", .status = 1, .output = usual + "\n"},
        {.name = "fails-highest", .status = 255},
        {.name = "killed", .status = 137},
        {.name = "silent"},
        {.name = "unended", .output = usual},
        {.name = "blank-line", .output = "\n"},
        {.name = "leading-line-feed", .output = "\n" + usual + "\n"},
        {.name = "leading-line-feeds", .output = "\n\n" + usual + "\n"},
        {.name = "twice", .output = usual + "\n" + usual + "\n"},
        {.name = "other", .output = "$(touch /tmp/x) `id` \"'\\ <&>\n"},
        {.name = "long-line", .output = megabyte("x") + "\n"},
        {.name = "long-unended", .output = megabyte("x")},
        {.name = "many-lines", .output = megabyte(usual + "\n")},
        {.name = "binary", .output = binary()},
        {.name = "null", .output = std::string("\0", 1)},
        {.name = "null-line", .output = std::string("\0\n", 2)},
    };
}

std::string usualOutput(const std::string& program)
{
    if (program == "whoami") return "root";
    if (program == "qconvpd") return "*TM 4821-K7Q\n*SE 10ABCDE";
    return "Operating";
}

/// The rule for the call of this number, or for all calls from it on: those before it are let pass.
json rulesOf(const Scene& scene, const ProgramWay& way, size_t number, bool once)
{
    json rules = json::array();
    json rule = {{"program", scene.program}, {"status", way.status}, {"output", way.output}};
    if (once) rule["nth"] = number;
    for (size_t earlier = 1; earlier < number && !once; ++earlier) {
        rules.push_back({{"program", scene.program}, {"nth", earlier}, {"delay", 0}});
    }
    rules.push_back(rule);
    return rules;
}

} // namespace

// ---- the plans ----

std::vector<Plan> planProgram(const Options& options)
{
    std::vector<Plan> plans;
    for (const Scene& scene : scenes()) {
        for (const ProgramWay& way : programWays(usualOutput(scene.program))) {
            for (size_t number = 1; number <= scene.calls; ++number) {
                for (const bool once : {true, false}) {
                    const std::string name = scene.name + scene.program + "." + way.name +
                                             (once ? ".once." : ".on.") + std::to_string(number);
                    plans.push_back(planOf(scene, name, rulesOf(scene, way, number, once)));
                }
            }
        }
    }
    constexpr size_t share = 75;
    constexpr size_t repeated = 4;
    return selected(std::move(plans), options, share, repeated);
}

} // namespace sweep
