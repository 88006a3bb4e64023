// Runs plans on threads, judges them, prints what was found.

#include "sweep.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "judge.h"
#include "parseJson.h"
#include "tempFolder.h"

namespace sweep
{

namespace fs = std::filesystem;

namespace
{

fs::path programs()
{
    return kordTest::triedBuild() / "bin";
}

// ---- one run ----

json facilityOf(const Plan& plan)
{
    static const json usual = bundled("facility.json");
    json facility = plan.facility ? plan.facility() : usual;
    if (plan.faults) facility["faults"] = plan.faults();
    return facility;
}

Texts commandOf(const Plan& plan)
{
    Texts command = plan.prefix;
    command.push_back(collector());
    command.insert(command.end(), plan.arguments.begin(), plan.arguments.end());
    return command;
}

Texts namesIn(const fs::path& folder)
{
    Texts names;
    if (!fs::is_directory(folder)) return names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

Findings findingsOf(const Plan& plan)
{
    Findings findings;
    try {
        const Result result = runOnce(plan);
        plan.judge ? plan.judge(plan, result, findings) : judgeRun(plan, result, findings);
        if (plan.twice) judgeRepetition(result, runOnce(plan), findings);
    } catch (const std::exception& failure) {
        findings.push_back({Kind::broken, std::string("the run could not be judged: ") + failure.what()});
    }
    return findings;
}

// ---- many runs ----

const char* nameOf(Kind kind)
{
    constexpr const char* names[] = {"crash", "hang", "leak", "broken"};
    return names[static_cast<size_t>(kind)];
}

/// What the threads share.
struct Progress {
    std::atomic<size_t> next = 0;
    std::mutex mutex; ///< of what follows, and of standard output
    Tally tally;
};

void report(const Sweep& sweep, const Plan& plan, const Findings& findings, bool verbose)
{
    constexpr size_t brief = 3;
    const size_t shown = verbose ? findings.size() : std::min(findings.size(), brief);
    std::string line = std::string(sweep.name) + " " + plan.name;
    for (size_t i = 0; i < shown; ++i) {
        line += (i == 0    ? ": "
                 : verbose ? "\n  "
                           : "; ") +
                std::string(nameOf(findings[i].kind)) + ": " + findings[i].what;
    }
    if (shown < findings.size()) line += "; " + std::to_string(findings.size() - shown) + " more";
    if (verbose && plan.faults) line += "\n  faults " + plan.faults().dump();
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void count(Tally& tally, const Findings& findings)
{
    ++tally.runs;
    for (const Kind kind : {Kind::crash, Kind::hang, Kind::leak, Kind::broken}) {
        const bool found =
            std::any_of(findings.begin(), findings.end(), [kind](const auto& f) { return f.kind == kind; });
        if (found) ++tally.found[kind];
    }
}

void work(const Sweep& sweep, const std::vector<Plan>& plans, const Options& options, Progress& progress)
{
    for (size_t i; (i = progress.next++) < plans.size();) {
        const Findings findings = findingsOf(plans[i]);
        const std::lock_guard lock(progress.mutex);
        count(progress.tally, findings);
        if (!findings.empty()) report(sweep, plans[i], findings, options.verbose);
    }
}

void keepOnly(std::vector<Plan>& plans, const std::string& name)
{
    std::erase_if(plans, [&name](const Plan& plan) { return plan.name != name; });
    if (plans.empty()) throw std::runtime_error("there is no run " + name);
}

// ---- the table ----

size_t foundIn(const Tally& tally, Kind kind)
{
    const auto found = tally.found.find(kind);
    return found == tally.found.end() ? 0 : found->second;
}

} // namespace

json bundled(const std::string& name)
{
    const fs::path file = fs::path(KORD_SOURCE_DIR) / "console/facilities" / name;
    return kordTest::parseJson(kordTest::readFile(file).value_or(""));
}

fs::path collector()
{
    return programs() / "addTarnKord";
}

Result runOnce(const Plan& plan)
{
    const kordTest::TempFolder temporary;
    const fs::path root = temporary.path() / "root";
    const fs::path folder = temporary.path() / "folder";
    fs::create_directories(root);
    fs::create_directories(folder);

    Result result;
    result.facility = facilityOf(plan);
    const fs::path facility = temporary.path() / "facility.json";
    std::ofstream(facility, std::ios::binary) << result.facility.dump();
    if (plan.prepare) plan.prepare(root);

    result.outcome = kordTest::runOnConsole({.console = programs() / "kord-console",
                                             .facility = facility,
                                             .root = root,
                                             .folder = folder,
                                             .user = plan.user,
                                             .program = commandOf(plan),
                                             .limit = plan.limit});

    const std::string mtms = plan.arguments.size() > 1 ? plan.arguments[1] : "";
    result.journal = kordTest::readJournal(root);
    result.log = kordTest::readFile(kordTest::traceFile(root, mtms)).value_or("");
    result.trace = kordTest::readTrace(kordTest::traceFile(root, mtms));
    result.document = kordTest::readFile(kordTest::documentFile(root, mtms));
    result.temporaryFiles = namesIn(root / "var/brisk/log");
    return result;
}

Tally runSweep(const Sweep& sweep, const Options& options)
{
    std::vector<Plan> plans = sweep.plan(options);
    if (!options.only.empty()) keepOnly(plans, options.only);
    const size_t every = std::max(1U, options.every);
    const size_t kept = (plans.size() + every - 1) / every;
    plans = thinned(std::move(plans), kept);
    const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
    Progress progress;
    std::vector<std::jthread> threads;
    for (unsigned i = 0; i < (options.jobs > 0 ? options.jobs : cores); ++i) {
        threads.emplace_back([&] { work(sweep, plans, options, progress); });
    }
    threads.clear();
    return progress.tally;
}

std::vector<Plan> thinned(std::vector<Plan> plans, size_t count)
{
    if (plans.size() <= count) return plans;
    std::vector<Plan> kept;
    for (size_t i = 0; i < count; ++i) {
        kept.push_back(std::move(plans[i * plans.size() / count]));
    }
    return kept;
}

std::vector<Plan> selected(std::vector<Plan> plans, const Options& options, size_t share, size_t repeated)
{
    const bool all = options.full || !options.only.empty();
    if (!all) plans = thinned(std::move(plans), share);
    for (size_t i = 0; i < plans.size(); ++i) {
        plans[i].twice = all || i % repeated == 0;
    }
    return plans;
}

void printHeading()
{
    std::printf("%-10s %7s %8s %6s %6s %7s\n", "sweep", "runs", "crashes", "hangs", "leaks", "broken");
}

void printRow(const Sweep& sweep, const Tally& tally)
{
    std::printf("%-10s %7zu %8zu %6zu %6zu %7zu\n", sweep.name, tally.runs, foundIn(tally, Kind::crash),
                foundIn(tally, Kind::hang), foundIn(tally, Kind::leak), foundIn(tally, Kind::broken));
}

bool isClean(const Tally& tally)
{
    return tally.runs > 0 && tally.found.empty();
}

} // namespace sweep
