#include "facility.h"

#include "recording.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace bench
{

namespace fs = std::filesystem;

namespace
{

constexpr const char* mtms = "9999-B2C*7ABCD12";
constexpr const char* logName = "kord.7ABCD12.log";
constexpr const char* journalName = "journal.jsonl";
constexpr int built = 3;

double count(const std::string& line, const char* text)
{
    return line.find(text) != std::string::npos ? 1 : 0;
}

/// A number with commas between its thousands.
double numberAtStart(const std::string& text)
{
    double number = 0;
    for (const char character : text.substr(text.find_first_not_of(' '))) {
        if (character >= '0' && character <= '9')
            number = 10 * number + (character - '0');
        else if (character != ',')
            break;
    }
    return number;
}

} // namespace

Facility::Facility(int drives, const std::string& folder)
    : drives_(drives), folder_(folder + '/' + std::to_string(drives) + '/')
{
    fs::remove_all(folder_);
    fs::create_directories(folder_ + "recording");
    make();
    record();
}

double Facility::documentSize() const
{
    return static_cast<double>(fs::file_size(folder_ + "recording/document.xml"));
}

Times Facility::round(size_t turn) const
{
    const Ended ended =
        onConsole({programs_ + "kord-bench-round", std::to_string(turn), mtms, folder_ + "recording"});
    Times times{};
    std::istringstream(ended.output) >> times.collector >> times.floor >> times.client;
    return times;
}

/// The client's calls are those on its journal; nobody else writes there.
Calls Facility::countCalls() const
{
    const std::string listing = folder_ + "calls.txt";
    collect({"strace", "-qq", "-y", "-o", listing});
    Calls calls{};
    std::ifstream file(listing);
    for (std::string line; std::getline(file, line);) {
        const double client = count(line, journalName);
        calls.client += client;
        calls.own += 1 - client;
        calls.onTrace += count(line, logName);
        if (line.starts_with("openat")) calls.traceLines += count(line, logName);
    }
    return calls;
}

Instructions Facility::countInstructions() const
{
    const std::string profile = folder_ + "callgrind.out";
    collect({"valgrind", "-q", "--tool=callgrind", "--callgrind-out-file=" + profile});
    std::istringstream listing(
        run({"callgrind_annotate", "--inclusive=yes", "--threshold=100", profile}).output);
    Instructions counted{};
    double all = 0;
    for (std::string line; std::getline(listing, line);) {
        if (line.find("PROGRAM TOTALS") != std::string::npos) all = numberAtStart(line);
        // A call of the client with all that it calls; what its libraries call of each other is part of that.
        if (line.find(":vale_") != std::string::npos && line.find(":vale_cu_client") == std::string::npos)
            counted.client += numberAtStart(line);
    }
    counted.own = all - counted.client;
    return counted;
}

Memory Facility::measureMemory() const
{
    const std::string account = folder_ + "heap.txt";
    collect(
        {"env", "LD_PRELOAD=" + programs_ + "../lib/libkord-heap-meter.so", "KORD_BENCH_HEAP=" + account});
    Memory memory{};
    std::ifstream(account) >> memory.own >> memory.heap >> memory.resident;
    if (memory.own <= 0) throw std::runtime_error("the heap meter kept no account");
    return memory;
}

Waits Facility::measureWaits() const
{
    const std::string account = folder_ + "waits.txt";
    collect({"env", recorder(), std::string(waitsVariable) + '=' + account});
    Waits waits{};
    std::ifstream(account) >> waits.whole >> waits.commands >> waits.client >> waits.removals >> waits.shells;
    if (waits.whole <= 0) throw std::runtime_error("the recorder kept no account of waiting");
    return waits;
}

std::string Facility::recorder() const
{
    return "LD_PRELOAD=" + programs_ + "../lib/libkord-bench-recorder.so";
}

/// Racks of 5 enclosures with 20 drives each, so that only the number of racks grows.
void Facility::make() const
{
    const auto option = [this](int divisor) { return std::to_string(drives_ / divisor); };
    const Ended made = run({programs_ + "kord-console", "make", "--racks", option(100), "--enclosures", "5",
                            "--drives", "20", "--volumes", option(4), "--hosts", option(20)});
    std::ofstream(folder_ + "facility.json", std::ios::binary) << made.output;
}

void Facility::record() const
{
    collect({"env", recorder(), std::string(recordingVariable) + '=' + folder_ + "recording/calls"});
    fs::copy_file(folder_ + "root/var/adm/stockmere/VPD/addTarnKord_" + mtms + ".xml",
                  folder_ + "recording/document.xml");
}

void Facility::cleanLog() const
{
    fs::remove(folder_ + "root/var/tarnquay/log/" + logName);
}

Ended Facility::onConsole(const Command& program, int status) const
{
    Command command = {programs_ + "kord-console", "run", "--facility", folder_ + "facility.json", "--root",
                       folder_ + "root",           "--"};
    command.insert(command.end(), program.begin(), program.end());
    return run(command, status);
}

void Facility::collect(Command before) const
{
    cleanLog();
    before.insert(before.end(), {programs_ + "addTarnKord", "x", mtms});
    onConsole(before, built);
}

} // namespace bench
