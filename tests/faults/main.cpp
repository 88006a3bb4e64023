// The program of all sweeps: each makes the collector's surroundings fail in every way of one kind.

#include <cstdio>
#include <exception>
#include <vector>

#include <CLI/CLI.hpp>

#include "sweep.h"

namespace
{

using sweep::Options;
using sweep::Sweep;
using sweep::Tally;

constexpr Sweep sweeps[] = {
    {.name = "client", .help = "every client call fails in every way", .plan = sweep::planClient},
    {.name = "program", .help = "every console program misbehaves in every way", .plan = sweep::planProgram},
    {.name = "system", .help = "every call of the system fails in every way", .plan = sweep::planSystem},
    {.name = "hostile", .help = "every value and every message is hostile", .plan = sweep::planHostile},
};

void addOptions(CLI::App& command, Options& options)
{
    command.add_flag("--full", options.full, "All runs; without it a share of them that takes seconds");
    command.add_flag("--verbose", options.verbose, "Say all of a failing run");
    command.add_option("--jobs", options.jobs, "Runs at a time (default: as many as there are cores)");
    command.add_option("--only", options.only, "The one run of this name");
}

/// One sweep, or all when none was asked for.
bool runAll(const CLI::App& app, const Options& options)
{
    std::vector<std::pair<const Sweep*, Tally>> done;
    for (const Sweep& sweep : sweeps) {
        const bool wanted = app.get_subcommands().empty() || app.got_subcommand(sweep.name);
        if (wanted) done.emplace_back(&sweep, runSweep(sweep, options));
    }
    sweep::printHeading();
    bool clean = true;
    for (const auto& [sweep, tally] : done) {
        printRow(*sweep, tally);
        clean = clean && isClean(tally);
    }
    return clean;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app("Runs the collector among faults and judges every run.", "sweep");
    addOptions(app, options);
    for (const Sweep& sweep : sweeps) {
        addOptions(*app.add_subcommand(sweep.name, sweep.help), options);
    }
    CLI11_PARSE(app, argc, argv);
    try {
        return runAll(app, options) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "sweep: %s\n", failure.what());
        return 2;
    }
}
