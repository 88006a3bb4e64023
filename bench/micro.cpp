// Single pieces of the collector's work, without its trace.

#include "kord.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace
{

/// A record whose document goes nowhere.
class DocumentRecord
{
public:
    DocumentRecord()
    {
        record_.inp = std::fopen("/dev/null", "we");
        std::setvbuf(record_.inp, buffer_.data(), _IOFBF, buffer_.size());
        copyText(record_.kordpStorageFacilityMTMS, "9999-A01-00XY1230");
    }
    ~DocumentRecord() { std::fclose(record_.inp); }
    DocumentRecord(const DocumentRecord&) = delete;
    DocumentRecord& operator=(const DocumentRecord&) = delete;

    operator const kordRec*() const { return &record_; }

private:
    std::vector<char> buffer_ = std::vector<char>(65536);
    kordRec record_{};
};

void oneList(benchmark::State& state)
{
    const DocumentRecord record;
    for ([[maybe_unused]] auto _ : state) {
        openPartitionResources(record);
        closePartitionResources(record);
    }
}
BENCHMARK(oneList);

void oneResource(benchmark::State& state)
{
    const DocumentRecord record;
    for ([[maybe_unused]] auto _ : state) {
        openStorConfigResource(record, "9999-A01-00XY1231");
        closeStorConfigResource(record);
    }
}
BENCHMARK(oneResource);

void oneProperty(benchmark::State& state)
{
    const DocumentRecord record;
    for ([[maybe_unused]] auto _ : state)
        writeSFI(record, "9999-A01-00XY1231");
}
BENCHMARK(oneProperty);

void oneDrive(benchmark::State& state)
{
    const DocumentRecord record;
    for ([[maybe_unused]] auto _ : state) {
        writeDDM(record, "U9999.E16.0000017-P1-D3", "9999-A01-00XY1231", "F00012", "5C03", "17P1234",
                 "YM1000004711", "D000004711", "OSK", 146000, 10000, 2, 7, 3, "FCAL", 1);
    }
}
BENCHMARK(oneDrive);

void oneSelection(benchmark::State& state)
{
    for ([[maybe_unused]] auto _ : state) {
        Request request =
            requestOf("storageFacilityImageMTMS=\"%s\" && rackNumber=\"%s\" && enclosureMTMS=\"%s\""
                      " && enclosureNumber=\"%s\" && ActivePeerDomain=\"%s\"",
                      "9999-A01*00XY1231", "R1", "9999-E16*00AB123", "1", "9999-A01.00XY1231");
        benchmark::DoNotOptimize(request);
    }
}
BENCHMARK(oneSelection);

/// The output of a command, a thousand lines, from its file to lines.
void outputToLines(benchmark::State& state)
{
    constexpr const char* fileName = "/var/brisk/log/tmp.bench";
    constexpr int lines = 1000;
    FILE* file = std::fopen(fileName, "we");
    if (file == nullptr) return state.SkipWithError("run this on the simulated console");
    for (int i = 0; i < lines; ++i)
        std::fprintf(file, "*YL U9999.B2C.%07d-P1-C%d\n", i, i % 8);
    std::fclose(file);

    const kordRec record{};
    for ([[maybe_unused]] auto _ : state) {
        int32_t xargc = 0;
        char** xargv = nullptr;
        if (parseOutput(&record, fileName, &xargc, &xargv) != 0 || xargc != lines)
            return state.SkipWithError("the output cannot be read");
        releaseOutput(xargv);
    }
    state.SetItemsProcessed(state.iterations() * lines);
    std::remove(fileName);
}
BENCHMARK(outputToLines);

/// The host descriptions of an image, from the client's answer to the document: 10,000 ports that share 5,000
/// descriptions. The made facility that this runs on has as many.
void hostDescriptions(benchmark::State& state)
{
    kordRec record{};
    if (vale_start_session(nullptr, 0, 4, &record.sess_hndl_DM) != 0)
        return state.SkipWithError("run this on the simulated console");
    record.inp = std::fopen("/dev/null", "we");
    for ([[maybe_unused]] auto _ : state) {
        if (queryScsiHostPort(&record, "9999*A01*00XY121", "9999.A01.00XY121") != 0) {
            state.SkipWithError("the facility has no host ports");
            break;
        }
    }
    std::fclose(record.inp);
    vale_end_session(record.sess_hndl_DM);
}
BENCHMARK(hostDescriptions)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
