// Whole runs over facilities that grow: time beside the floor's, calls and instructions, memory.
//
//     kord-bench-runs [--quick] FOLDER
//
// FOLDER takes the facilities, their consoles and the recordings. Quick: without the largest facility.

#include "facility.h"
#include "report.h"
#include "startTable.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>
#include <span>

namespace
{

using namespace bench;

constexpr int sizes[] = {100, 1'000, 10'000, 100'000};
constexpr int smallest = 100;
constexpr int reference = 1'000; ///< the size that the cost of a drive is held against
constexpr int judged = 10'000;   ///< the size whose calls and instructions are limited
constexpr double megabyte = 1 << 20;

/// A facility's figures of all rounds.
struct Measured {
    Series whole;
    Series floor;
    Series client;

    [[nodiscard]] Series own() const { return difference(whole, client); }
    [[nodiscard]] Series least() const { return difference(floor, client); }
    [[nodiscard]] Series factor() const { return ratio(own(), least()); }
};

/// A short run varies most, and costs least to measure again: so many times in a round.
size_t timesInRound(const Facility& facility)
{
    return static_cast<size_t>(std::clamp(3'000 / facility.drives(), 1, 10));
}

std::vector<Measured> measureTimes(const std::vector<Facility>& facilities)
{
    std::vector<Measured> measured(facilities.size());
    for (size_t round = 0; round <= rounds; ++round) {
        for (size_t i = 0; i < facilities.size(); ++i) {
            const size_t count = timesInRound(facilities[i]);
            for (size_t turn = round * count; turn < (round + 1) * count; ++turn) {
                const Times times = facilities[i].round(turn);
                if (round == 0) continue;
                measured[i].whole.push_back(times.collector);
                measured[i].floor.push_back(times.floor);
                measured[i].client.push_back(times.client);
            }
        }
    }
    return measured;
}

std::string drivesOf(const Facility& facility)
{
    return std::to_string(facility.drives());
}

/// The place of a size in the list.
size_t placeOf(const std::vector<Facility>& facilities, int drives)
{
    return static_cast<size_t>(std::ranges::find(facilities, drives, &Facility::drives) - facilities.begin());
}

int reportTimes(const std::vector<Facility>& facilities)
{
    const std::vector<Measured> measured = measureTimes(facilities);
    std::vector<std::vector<std::string>> rows;
    for (size_t i = 0; i < facilities.size(); ++i) {
        const Measured& one = measured[i];
        rows.push_back({drivesOf(facilities[i]), cell(one.whole, 1e6), cell(one.client, 1e6),
                        cell(one.own(), 1e6), cell(one.least(), 1e6), cell(one.factor()),
                        cell(one.own(), 1e3 * facilities[i].drives())});
    }
    Report report("Whole runs: own processor time, in ms");
    report.table({"drives", "process", "of it the client", "collector", "floor", "collector / floor",
                  "collector, µs a drive"},
                 rows);

    const size_t last = facilities.size() - 1;
    const size_t base = placeOf(facilities, reference);
    const double scale = static_cast<double>(reference) / facilities[last].drives();
    for (size_t i = 0; i < facilities.size(); ++i)
        report.atMost("a run at " + drivesOf(facilities[i]) + " drives, times its floor",
                      median(measured[i].factor()), 1.1);
    report.atMost("a drive's cost at " + drivesOf(facilities[last]) + " drives, times that at 1,000",
                  scale * median(measured[last].own()) / median(measured[base].own()), 1.1);
    return report.status();
}

int reportCounts(const std::vector<Facility>& facilities)
{
    std::vector<std::vector<std::string>> rows;
    double callsOfLine = 0;
    std::pair<double, double> atJudged;
    for (const Facility& facility : facilities) {
        const Calls calls = facility.countCalls();
        const Instructions instructions = facility.countInstructions();
        const double drives = facility.drives();
        callsOfLine = std::max(callsOfLine, calls.onTrace / calls.traceLines);
        if (facility.drives() == judged) atJudged = {calls.own / drives, instructions.own / drives};
        rows.push_back(
            {drivesOf(facility), format("%.0f", calls.own), format("%.2f", calls.own / drives),
             format("%.2f", calls.client / drives), format("%.2f", calls.onTrace / calls.traceLines),
             format("%.0f", instructions.own / drives), format("%.0f", instructions.client / drives)});
    }
    Report report("Whole runs: system calls and instructions");
    report.table({"drives", "calls", "calls a drive", "client, calls a drive", "calls a trace line",
                  "instructions a drive", "client, instructions a drive"},
                 rows);
    // Making the log and cutting it take a few more, which its thousands of lines share.
    constexpr double four = 4.05;
    report.atMost("a trace line, system calls", callsOfLine, four);
    report.atMost("a drive at 10,000 drives, system calls", atJudged.first, 7.14);
    report.atMost("a drive at 10,000 drives, instructions", atJudged.second, 9265);
    return report.status();
}

/// What the wall clock says of a run, by what the collector waits for.
int reportWaits(const Facility& facility)
{
    std::map<std::string, Series> waits;
    for (int round = 0; round <= rounds; ++round) {
        const Waits one = facility.measureWaits();
        if (round == 0) continue;
        waits["shells"].push_back(one.shells);
        waits["console programs"].push_back(one.commands - one.shells);
        waits["client"].push_back(one.client);
        waits["removing their output"].push_back(one.removals);
        waits["own work"].push_back(one.whole - one.commands - one.client - one.removals);
        waits["whole run"].push_back(one.whole);
    }
    std::vector<std::vector<std::string>> rows;
    for (const char* what :
         {"shells", "console programs", "removing their output", "client", "own work", "whole run"})
        rows.push_back({what, cell(waits[what], 1e6),
                        format("%.0f %%", 100 * median(waits[what]) / median(waits["whole run"]))});
    Report report("What a run at " + drivesOf(facility) + " drives waits for, by the wall clock");
    report.table({"", "ms", "share"}, rows);
    return report.status();
}

int reportMemory(const std::vector<Facility>& facilities)
{
    std::vector<std::vector<std::string>> rows;
    std::map<int, Memory> measured;
    for (const Facility& facility : facilities) {
        const Memory memory = measured[facility.drives()] = facility.measureMemory();
        rows.push_back({drivesOf(facility), format("%.1f", facility.documentSize() / megabyte),
                        format("%.2f", memory.own / megabyte), format("%.2f", memory.heap / megabyte),
                        format("%.2f", memory.resident / megabyte)});
    }
    Report report("Whole runs: peak memory, in MB");
    report.table({"drives", "document", "collector's heap", "with the client's", "anonymous, resident"},
                 rows);
    const int largest = facilities.back().drives();
    report.atMost("the collector's heap at " + std::to_string(largest) + " drives, above that at 100",
                  (measured[largest].own - measured[smallest].own) / megabyte, 4, " MB");
    return report.status();
}

int reportAll(bool quick, const std::string& folder)
{
    std::vector<Facility> facilities;
    for (const int drives : std::span(sizes).first(std::size(sizes) - (quick ? 1 : 0)))
        facilities.emplace_back(drives, folder);
    const int status = reportStart(folder) | reportTimes(facilities) | reportWaits(facilities.front());
    return status | reportCounts(facilities) | reportMemory(facilities);
}

} // namespace

int main(int argc, char* argv[])
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const bool quick = !arguments.empty() && arguments[0] == "--quick";
    if (arguments.size() != (quick ? 2U : 1U)) {
        std::fputs("usage: kord-bench-runs [--quick] FOLDER\n", stderr);
        return 2;
    }
    try {
        return reportAll(quick, arguments.back());
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kord-bench-runs: %s\n", failure.what());
        return 2;
    }
}
