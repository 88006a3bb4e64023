// One line of the trace log.

#include "addTrcKord.h"

#include <benchmark/benchmark.h>
#include <string>
#include <unistd.h>

namespace
{

void oneTraceLine(benchmark::State& state)
{
    constexpr const char* name = "kord.bench.log";
    constexpr int linesBeforeTheLimit = 30'000;
    const std::string log = std::string(traceFolder) + '/' + name;
    int lines = 0;
    for ([[maybe_unused]] auto _ : state) {
        if (lines++ % linesBeforeTheLimit == 0) unlink(log.c_str());
        addTrcKord(name, ">>", " openEnclosurePartitionsStor resourcelist resource");
    }
    unlink(log.c_str());
}
BENCHMARK(oneTraceLine);

} // namespace

BENCHMARK_MAIN();
