// What the tools cost on a large facility and its document, beside what it costs to read and write the same
// bytes and no more.
//
//     kord-bench-tools DRIVES FOLDER
//
// Runs on the console of FOLDER, which kord-bench-runs made, with that facility and the document of its run.

#include "program.h"
#include "report.h"

#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace
{

using namespace bench;
namespace fs = std::filesystem;

constexpr size_t roundsOfTools = 3; ///< they take seconds, and their ratios are far from 1
constexpr double megabyte = 1e6;

struct Tool {
    std::string name;
    Command command;
    std::vector<std::string> reads;
    std::string writes; ///< a file or folder, "" for nothing
    int status = 0;
};

std::vector<Tool> tools(int drives, const std::string& folder)
{
    const std::string facility = folder + "/facility.json";
    const std::string document = folder + "/recording/document.xml";
    const std::string out = folder + "/tools/";
    const std::string kord = programFolder() + "kord";
    const std::string console = programFolder() + "kord-console";
    const auto part = [drives](int divisor) { return std::to_string(drives / divisor); };
    const std::string make = console + " make --racks " + part(100) +
                             " --enclosures 5 --drives 20 --volumes " + part(4) + " --hosts " + part(20) +
                             " >" + out + "made.json";
    return {
        {"kord-console check", {console, "check", facility}, {facility}, ""},
        {"kord-console make", {"sh", "-c", "exec " + make}, {}, out + "made.json"},
        {"kord-console run, a new root",
         {console, "run", "--facility", facility, "--root", out + "root", "--", "true"},
         {facility},
         out + "root/.console/image"},
        {"kord record",
         {kord, "record", "-o", out + "recorded.json", "--", programFolder() + "addTarnKord", "x",
          "9999-B2C*7ABCD12"},
         {facility},
         out + "recorded.json",
         3},
        {"kord show", {kord, "show", document, "-o", out + "shown"}, {document}, out + "shown"},
        {"kord show --html",
         {kord, "show", document, "--html", out + "page.html"},
         {document},
         out + "page.html"},
        {"kord diff", {kord, "diff", document, document, "-o", out + "differs"}, {document, document}, ""},
    };
}

void readAll(const std::string& path)
{
    static char block[65536];
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    while (read(file, block, sizeof block) > 0) {
    }
    close(file);
}

void writeAll(const std::string& path, size_t size)
{
    static char block[65536];
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    for (ssize_t length = 1; size > 0 && length > 0; size -= static_cast<size_t>(length))
        length = write(file, block, std::min(size, sizeof block));
    close(file);
}

size_t sizeOf(const std::string& path)
{
    return path.empty() ? 0 : fs::file_size(path);
}

/// A run of the tool, as if there had been none before it.
Ended use(const Tool& tool, const std::string& out)
{
    fs::remove_all(out);
    fs::create_directories(out);
    return run(tool.command, tool.status, Errors::thrownAway);
}

int reportTools(int drives, const std::string& folder)
{
    const std::string out = folder + "/tools/";
    const std::vector<Tool> all = tools(drives, folder);
    std::vector<double> peaks;
    std::vector<size_t> written;
    for (const Tool& tool : all) {
        peaks.push_back(use(tool, out).peak);
        written.push_back(sizeOf(tool.writes));
    }
    std::vector<Contender> contenders;
    for (size_t i = 0; i < all.size(); ++i) {
        contenders.push_back({all[i].name, [&all, &out, i] { return use(all[i], out).time; }});
        contenders.push_back({"the same bytes", [&all, &written, &out, i] {
                                  return timeOf([&] {
                                      for (const std::string& path : all[i].reads)
                                          readAll(path);
                                      if (written[i] > 0) writeAll(out + "least", written[i]);
                                  });
                              }});
    }
    const std::vector<Series> costs = interleave(contenders, roundsOfTools);
    std::vector<std::vector<std::string>> rows;
    for (size_t i = 0; i < all.size(); ++i) {
        double bytesRead = 0;
        for (const std::string& path : all[i].reads)
            bytesRead += static_cast<double>(sizeOf(path));
        const Series& least = costs[2 * i + 1];
        rows.push_back({all[i].name, format("%.0f", bytesRead / megabyte),
                        format("%.0f", static_cast<double>(written[i]) / megabyte), cell(costs[2 * i], 1e6),
                        cell(least, 1e6), format("%.0f", median(ratio(costs[2 * i], least))),
                        format("%.0f", peaks[i] / megabyte)});
    }
    Report report("The tools at " + std::to_string(drives) + " drives");
    report.table({"", "reads, MB", "writes, MB", "processor time, ms", "the same bytes, ms", "times them",
                  "memory, MB"},
                 rows);
    fs::remove_all(out);
    return report.status();
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 3) {
        std::fputs("usage: kord-bench-tools DRIVES FOLDER\n", stderr);
        return 2;
    }
    try {
        return reportTools(std::stoi(argv[1]), argv[2]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kord-bench-tools: %s\n", failure.what());
        return 2;
    }
}
