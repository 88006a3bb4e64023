// A trace line's cost beside its floor: the same bytes with one open, one write, one mode change, one close.

#include "addTrcKord.h"
#include "report.h"

#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace bench;

constexpr int lines = 5000;
constexpr const char* logName = "kord.bench.log";

struct Line {
    const char* name;
    const char* code;
    const char* text;
};

constexpr Line kinds[] = {
    {"one line", ">>", " openEnclosurePartitionsStor resourcelist resource"},
    {"wrapped", "0300",
     "storageFacilityImageMTMS=\"9999-A01*00XY1231\" && rackNumber=\"R1\" && "
     "enclosureMTMS=\"9999-E16*00AB123\""
     " && enclosureNumber=\"1\" && ActivePeerDomain=\"9999-A01.00XY1231\""},
};

std::string logPath()
{
    return std::string(traceFolder) + '/' + logName;
}

/// What the collector leaves in the log for the line.
std::string bytesOf(const Line& line)
{
    unlink(logPath().c_str());
    addTrcKord(logName, line.code, line.text);
    std::ifstream file(logPath(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <typename Write>
double costOf(Write write)
{
    unlink(logPath().c_str());
    return timeOf([&] {
        for (int i = 0; i < lines; ++i)
            write();
    });
}

void writeFloor(const std::string& path, const std::string& bytes)
{
    const int log = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    [[maybe_unused]] const ssize_t written = write(log, bytes.data(), bytes.size());
    fchmod(log, 0666);
    close(log);
}

} // namespace

int main()
{
    const std::string path = logPath();
    Report report("A trace line");
    std::vector<std::vector<std::string>> rows;
    std::vector<Series> ratios;
    for (const Line& line : kinds) {
        const std::string bytes = bytesOf(line);
        if (bytes.empty()) {
            std::fprintf(stderr, "no trace log in %s: run this on the simulated console\n", traceFolder);
            return 2;
        }
        const std::vector<Series> costs = interleave({
            {"collector", [&] { return costOf([&] { addTrcKord(logName, line.code, line.text); }); }},
            {"floor", [&] { return costOf([&] { writeFloor(path, bytes); }); }},
        });
        ratios.push_back(ratio(costs[0], costs[1]));
        rows.push_back({format("%s, %zu bytes", line.name, bytes.size()), cell(costs[0], 1e3 * lines),
                        cell(costs[1], 1e3 * lines), cell(ratios.back())});
    }
    unlink(path.c_str());
    report.table({"line", "collector, µs", "floor, µs", "ratio"}, rows);
    for (size_t i = 0; i < ratios.size(); ++i)
        report.atMost(std::string("a trace line, ") + kinds[i].name + ", times its floor", median(ratios[i]),
                      1.1);
    return report.status();
}
