// A sweep is a list of planned runs of the collector on the simulated console, each with something that goes
// wrong. The runs are shared out over threads, each is judged by what holds for every run (judge.h), and the
// findings are counted.

#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "consoleRun.h"

namespace sweep
{

using nlohmann::json;
using Texts = std::vector<std::string>;

/// The managed system of the bundled facilities.
inline const std::string managedSystem = "9999-B2C*7ABCD12";

struct Options {
    bool full = false;    ///< every run; otherwise a share of them that takes seconds
    bool verbose = false; ///< say more of each failing run
    unsigned every = 1;   ///< of the runs, every so-manyth
    unsigned jobs = 0;    ///< runs at a time; 0: as many as there are cores
    std::string only;     ///< the name of the one run wanted; empty: all
};

// ---- what is found wrong ----

/// The columns of the table.
enum class Kind { crash, hang, leak, broken };

struct Finding {
    Kind kind = Kind::broken;
    std::string what;
};

using Findings = std::vector<Finding>;

// ---- one run ----

struct Plan;
struct Result;
using Judge = std::function<void(const Plan&, const Result&, Findings&)>;

/// A run as it is planned. Only the name must be given.
struct Plan {
    std::string name; ///< what --only asks for; one of its kind in its sweep

    /// Makes the facility file's content when the run is due; none: the bundled facility.
    std::function<json()> facility = {};
    std::function<json()> faults = {}; ///< makes the facility's list of fault rules
    std::function<void(const std::filesystem::path&)> prepare = {}; ///< lays out files below the run's root
    std::optional<std::string> user = {};                           ///< who runs it; none: the facility's own
    Texts prefix = {};                       ///< before the collector: a command that runs it
    Texts arguments = {"x", managedSystem};  ///< the collector's own
    std::chrono::milliseconds limit{20'000}; ///< what takes longer hangs
    std::vector<size_t> mustFire = {};       ///< indexes of the fault rules that must be met
    size_t injected = 0;                     ///< the first fault rules, which are what goes wrong; 0: all
    bool twice = false;                      ///< run it again: everything must be the same
    Judge judge = {};                        ///< none: judgeRun of judge.h
    std::shared_ptr<const std::string> regularLog =
        {}; ///< the trace log of the run without the plan's faults
};

/// What a run left.
struct Result {    // NOLINT(bugprone-exception-escape): JSON can be moved
    json facility; ///< as it was run, with its fault rules
    kordTest::Outcome outcome;
    std::vector<json> journal;
    std::string log;                        ///< the trace log's bytes
    std::vector<kordTest::TraceLine> trace; ///< its stamped lines
    std::optional<std::string> document;
    Texts temporaryFiles; ///< names left in the folder of command output
};

/// The facilities that come with the simulated console: "facility.json", "small.json".
json bundled(const std::string& name);

/// Where the build put the collector (and its neighbours).
std::filesystem::path collector();

/// Runs a plan once, without judging it: to learn what a regular run does.
Result runOnce(const Plan& plan);

// ---- a sweep ----

struct Sweep {
    const char* name;
    const char* help;
    std::vector<Plan> (*plan)(const Options& options);
};

struct Tally {
    size_t runs = 0;
    std::map<Kind, size_t> found; ///< runs with a finding of that kind
};

/// Keeps about `count` of the plans, spread evenly: the same ones each time.
std::vector<Plan> thinned(std::vector<Plan> plans, size_t count);

/// In full all plans, each run twice; else about `share` of them, and every `repeated`-th of those run twice.
std::vector<Plan> selected(std::vector<Plan> plans, const Options& options, size_t share, size_t repeated);

/// Runs and judges all plans; prints one line for each run with a finding.
Tally runSweep(const Sweep& sweep, const Options& options);

void printHeading();
void printRow(const Sweep& sweep, const Tally& tally);

/// Nothing was found, and something was run.
bool isClean(const Tally& tally);

// ---- the sweeps; each in a source of its own, with a row in main.cpp ----

std::vector<Plan> planClient(const Options& options);
std::vector<Plan> planProgram(const Options& options);
std::vector<Plan> planSystem(const Options& options);
std::vector<Plan> planHostile(const Options& options);

} // namespace sweep
