// What reading a document costs: into parts, beside libxml2's SAX reader over the same document mended; and
// what the commands cost beside the reading.

#include "document/reader.h"
#include "program.h"
#include "report.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <libxml/SAX2.h>
#include <libxml/parser.h>

namespace
{

using namespace bench;

struct Counts {
    size_t parts = 0;
    size_t values = 0;

    bool operator==(const Counts&) const = default;
};

void count(const document::Part& part, Counts& counts)
{
    ++counts.parts;
    counts.values += part.properties.size();
    for (const document::Part& child : part.children)
        count(child, counts);
}

Counts readIntoParts(const std::string& file)
{
    Counts counts;
    count(document::readFile(file).system(), counts);
    return counts;
}

void startElement(void* counts, const xmlChar* name, const xmlChar*, const xmlChar*, int, const xmlChar**,
                  int, int, const xmlChar**)
{
    const auto* const text = reinterpret_cast<const char*>(name);
    auto& found = *static_cast<Counts*>(counts);
    found.parts += std::strcmp(text, "Resource") == 0 ? 1 : 0;
    found.values += std::strcmp(text, "Value") == 0 ? 1 : 0;
}

/// Texts are handed over and looked at no further.
void takeText(void*, const xmlChar*, int) {}

Counts readWithSax(const std::string& mended)
{
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = startElement;
    handler.characters = takeText;
    Counts counts;
    if (xmlSAXUserParseFile(&handler, &counts, mended.c_str()) != 0) return {};
    return counts;
}

struct Task {
    std::string name;
    Command command;
};

std::vector<Task> tasks(const std::string& file)
{
    const std::string kord = programFolder() + "kord";
    const Command nowhere = {"-o", "/dev/null"};
    std::vector<Task> all = {{"kord list drives", {kord, "list", "drives", file}},
                             {"kord list all --format json", {kord, "list", "all", file, "--format", "json"}},
                             {"kord json", {kord, "json", file}},
                             {"kord xml", {kord, "xml", file}},
                             {"kord show", {kord, "show", file}},
                             {"kord diff", {kord, "diff", file, file}}};
    for (Task& task : all)
        task.command.insert(task.command.end(), nowhere.begin(), nowhere.end());
    return all;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::fputs("usage: kord-bench-reading DOCUMENT\n", stderr);
        return 2;
    }
    const std::string file = argv[1];
    const std::string mended = file + ".mended";
    const auto bytes = static_cast<double>(std::filesystem::file_size(file));
    Report report(format("Reading a document of %.0f MB", bytes / 1e6));

    // Memory first: a started program is charged with what the one that started it had in use.
    run({programFolder() + "kord", "xml", file, "-o", mended});
    const std::vector<Task> commands = tasks(file);
    std::vector<double> peaks;
    for (const Task& task : commands)
        peaks.push_back(run(task.command).peak);

    if (readIntoParts(file) != readWithSax(mended)) {
        std::fputs("the two readers find different documents: their times say nothing\n", stderr);
        return 2;
    }
    std::vector<Contender> contenders = {
        {"reading into parts", [&] { return timeOf([&] { readIntoParts(file); }); }},
        {"libxml2's SAX reader, mended", [&] { return timeOf([&] { readWithSax(mended); }); }}};
    for (const Task& task : commands)
        contenders.push_back({task.name, [&] { return run(task.command).time; }});
    const std::vector<Series> costs = interleave(contenders);

    std::vector<std::vector<std::string>> rows;
    std::vector<double> ratios;
    for (size_t i = 0; i < contenders.size(); ++i) {
        const Series times = ratio(costs[i], costs[0]);
        ratios.push_back(median(times));
        const bool command = i >= 2;
        rows.push_back({contenders[i].name, cell(costs[i], 1e6), i == 0 ? "1" : cell(times),
                        command ? format("%.1f", peaks[i - 2] / 1e6) : "",
                        command ? format("%.2f", peaks[i - 2] / bytes) : ""});
    }
    report.table(
        {"", "processor time, ms", "times the reading", "memory, MB", "bytes for each of the document"},
        rows);
    report.atMost("reading into parts, times libxml2's SAX reader", median(ratio(costs[0], costs[1])), 1);
    for (size_t i = 0; i < commands.size(); ++i) {
        const bool limited = i < 4;
        if (limited) report.atMost(commands[i].name + ", times the reading", ratios[i + 2], 2);
        report.atMost(commands[i].name + ", bytes of memory for each of the document", peaks[i] / bytes, 1.5);
        if (commands[i].name == "kord xml") report.atMost("kord xml, memory", peaks[i] / 1e6, 16, " MB");
    }
    std::filesystem::remove(mended);
    return report.status();
}
