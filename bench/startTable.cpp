#include "startTable.h"

#include "program.h"
#include "report.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace bench
{

namespace
{

namespace fs = std::filesystem;

struct Started {
    std::string name;
    std::string program;
    int status = 0; ///< of the program without arguments
};

constexpr int usage = 255;

std::vector<Started> programs()
{
    return {{"a program that does nothing", "kord-bench-empty"},
            {"with the client libraries", "kord-bench-empty-client"},
            {"with the C++ library as well", "kord-bench-empty-cxx"},
            {"the collector, to its usage line", "addTarnKord", usage},
            {"the same, the C++ library loaded", "kord-bench-plain", usage}};
}

/// How many relocations the loader counts for the program, of those that it looks up by name.
std::string relocationsOf(const Started& started, const std::string& folder)
{
    const fs::path told = folder + "/loader";
    fs::remove_all(told);
    fs::create_directories(told);
    run({"env", "LD_DEBUG=statistics", "LD_DEBUG_OUTPUT=" + (told / "told").string(),
         programFolder() + started.program},
        started.status, Errors::thrownAway);
    constexpr std::string_view count = "number of relocations:";
    for (const auto& entry : fs::directory_iterator(told)) {
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);) {
            const size_t place = line.find(count);
            if (place != std::string::npos)
                return std::to_string(std::stoi(line.substr(place + count.size())));
        }
    }
    return "?";
}

} // namespace

int reportStart(const std::string& folder)
{
    const std::vector<Started> all = programs();
    setenv("LD_LIBRARY_PATH", (programFolder() + "../lib").c_str(), 1); // as the console does
    std::vector<Contender> contenders;
    std::vector<double> faults(all.size());
    for (size_t i = 0; i < all.size(); ++i) {
        contenders.push_back({all[i].name, [&faults, &all, i] {
                                  const Ended ended = run({programFolder() + all[i].program}, all[i].status,
                                                          Errors::thrownAway);
                                  faults[i] = ended.faults;
                                  return ended.time;
                              }});
    }
    const std::vector<Series> costs = interleave(contenders);
    std::vector<std::vector<std::string>> rows;
    for (size_t i = 0; i < all.size(); ++i)
        rows.push_back(
            {all[i].name, cell(costs[i], 1e3), format("%.0f", faults[i]), relocationsOf(all[i], folder)});
    unsetenv("LD_LIBRARY_PATH");
    Report report("The start");
    report.table({"", "processor time, µs", "pages touched", "relocations by name"}, rows);
    return report.status();
}

} // namespace bench
