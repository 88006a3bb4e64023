// The program of all sweeps: each makes the collector's surroundings fail in every way of one kind.

#include "explainJudge.h"
#include "platform/commandLine.h"
#include "sweep.h"

#include <span>
#include <utility>
#include <vector>

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

int runAll(std::span<const Sweep> wanted, const Options& options)
{
    std::vector<std::pair<const Sweep*, Tally>> done;
    for (const Sweep& sweep : wanted)
        done.emplace_back(&sweep, runSweep(sweep, options));
    sweep::printHeading();
    bool clean = true;
    for (const auto& [sweep, tally] : done) {
        printRow(*sweep, tally);
        clean = clean && isClean(tally);
    }
    const sweep::Explained explained = sweep::explained();
    printExplained(explained, options.verbose);
    return clean && explained.isEnough() ? 0 : 1;
}

platform::Command commandOf(std::string_view name, std::string_view help, std::span<const Sweep> wanted,
                            Options& options)
{
    return {.name = name,
            .help = help,
            .options = {{.names = "--full",
                         .into = &options.full,
                         .help = "All runs; without it a share of them that takes seconds"},
                        {.names = "--verbose", .into = &options.verbose, .help = "Say all of a failing run"},
                        {.names = "--every",
                         .into = &options.every,
                         .help = "Of these runs every Nth, where each takes long",
                         .value = "N"},
                        {.names = "--jobs",
                         .into = &options.jobs,
                         .help = "Runs at a time; 0: as many as there are cores",
                         .value = "N"},
                        {.names = "--only",
                         .into = &options.only,
                         .help = "The one run of this name",
                         .value = "RUN"}},
            .run = [wanted, &options] { return runAll(wanted, options); }};
}

} // namespace

int main(int argc, char* argv[])
{
    Options options;
    std::vector<platform::Command> commands = {commandOf("all", "all of these", sweeps, options)};
    for (const Sweep& sweep : sweeps)
        commands.push_back(commandOf(sweep.name, sweep.help, {&sweep, 1}, options));
    return platform::run({.name = "sweep",
                          .version = "of this build",
                          .help = "Runs the collector among faults and judges every run.",
                          .commands = std::move(commands)},
                         {argv, static_cast<size_t>(argc)});
}
