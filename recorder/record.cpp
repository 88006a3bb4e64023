// The steps of a recording: run, read the tape, redact, build the file, replay.

#include "recorder/record.h"

#include "facility/collection.h"
#include "facility/compile.h"
#include "platform/failure.h"
#include "platform/installation.h"
#include "platform/process.h"
#include "platform/text.h"
#include "platform/wholeFile.h"
#include "recorder/builder.h"
#include "recorder/gatherer.h"
#include "recorder/redactor.h"
#include "recorder/tape.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace recorder
{

namespace facility = console::facility;

namespace
{

namespace fs = std::filesystem;
using nlohmann::json;
using Tape = std::vector<json>;

constexpr const char* preloads = "LD_PRELOAD";
constexpr const char* recorderLibrary = "libkord_recorder.so";
constexpr const char* witnessProgram = "witness";
constexpr const char* launcher = "kord-console";

/// A folder for what is needed while a recording is made. The loader's list knows neither blanks nor colons
/// in names, so the recorder is reached through a link in it.
class Workshop
{
public:
    Workshop()
    {
        std::string made = "/tmp/kord-record.XXXXXX";
        if (mkdtemp(made.data()) == nullptr) throw platform::failedOn(made);
        folder = made;
    }
    ~Workshop()
    {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    [[nodiscard]] fs::path file(const char* name) const { return folder / name; }

private:
    fs::path folder;
};

/// Puts the recorder before the programs that are started from now on.
void preloadRecorder(const Workshop& workshop, const platform::Installation& installation)
{
    const fs::path library = workshop.file("recorder.so");
    fs::create_symlink(installation.folderOfLibrary(recorderLibrary) / recorderLibrary, library);
    const char* const others = std::getenv(preloads);
    setenv(preloads, (library.string() + (others != nullptr ? std::string(":") + others : "")).c_str(), 1);
    setenv(witnessVariable, (installation.folderOfProgram(witnessProgram) / witnessProgram).c_str(), 1);
}

/// Runs a program with an empty tape and returns its status.
int runRecorded(const fs::path& tape, const std::vector<std::string>& program,
                const platform::HeldSignals& signals)
{
    std::ofstream(tape).close();
    setenv(tapeVariable, tape.c_str(), 1);
    return platform::runProgram(program, signals);
}

/// A tape, and apart from it who made the calls on it.
struct Heard {
    Tape tape;
    std::vector<json> collectors;
};

Heard readTape(const fs::path& path)
{
    Heard heard;
    std::ifstream file(path);
    for (std::string text; std::getline(file, text);) {
        json line = json::parse(text, nullptr, false);
        if (line.is_discarded())
            throw platform::Failure(path.string() + ": the recording is cut: is the disk full?");
        (line.contains("collector") ? heard.collectors : heard.tape).push_back(std::move(line));
    }
    return heard;
}

/// Where one process alone used the client, it was that one's run, whatever started it.
void tellOrigin(Origin& origin, const std::vector<json>& collectors)
{
    if (collectors.empty()) return;
    for (const auto& [part, build] : collectors[0]["builds"].items())
        origin.versions[part] = build;
    if (collectors.size() == 1) origin.command = withBareName(collectors[0]["collector"]);
}

/// The system that a collection is for, or else the one whose state was asked for first.
std::string systemOf(const std::vector<std::string>& command, const std::vector<Call>& calls)
{
    if (facility::isCollection(command)) return command[2];
    for (const Call& call : calls) {
        std::string system = systemAskedFor(call.arguments);
        if (!system.empty()) return system;
    }
    return {};
}

void checkFacility(const std::string& text)
{
    const facility::Faults faults = facility::compile(text).faults;
    if (faults.empty()) return;
    throw platform::Failure("the recording cannot be replayed: " + facility::toLine(faults.front()));
}

constexpr mode_t ownersOnly = 0600;

/// The pairs of earlier recordings; none when there is no such file yet.
StandIns readMap(const std::string& path)
{
    StandIns standIns;
    std::ifstream file(path, std::ios::binary);
    if (path.empty() || (!file && errno == ENOENT)) return standIns;
    std::ostringstream text;
    if (!file) throw platform::failedOn(path);
    if (fs::is_directory(path)) throw platform::failedOn(path, EISDIR);
    text << file.rdbuf();
    if (text.str().empty()) return standIns; // made, but not used yet
    try {
        standIns.load(text.str());
    } catch (const platform::Failure& failure) {
        throw platform::Failure(path + ": " + failure.what());
    }
    return standIns;
}

void writeMap(const std::string& path, const StandIns& standIns)
{
    platform::WholeFile file(path, ownersOnly);
    file.write(standIns.pairs());
    file.putInPlace();
}

/// What repeats the recording: nothing more where it says itself what ran.
std::vector<std::string> repeatedBy(const Origin& origin, const std::vector<std::string>& program)
{
    return facility::isCollection(origin.command) ? std::vector<std::string>() : program;
}

void tellWhatIsNext(const Options& options, const Origin& origin, const std::vector<std::string>& program)
{
    std::vector<std::string> repeat = {"kord-console", "run", "--facility", options.output, "--root", "DIR"};
    if (!program.empty()) repeat.emplace_back("--");
    repeat.insert(repeat.end(), program.begin(), program.end());
    const std::string log = origin.system.empty() ? "TRACE" : "DIR/" + facility::traceLogOf(origin.system);
    const std::string lines =
        "kord: repeat it with: " + platform::shown(platform::commandText(repeat)) +
        "\nkord: and see what happened: " + platform::shown(platform::commandText({"kord", "explain", log})) +
        '\n';
    std::fputs(lines.c_str(), stderr);
}

/// A tape as its replay must repeat it. The numbers of resources are the recorder's own; the arguments of a
/// program hold texts that were cut and joined before they were redacted.
Tape comparable(Tape tape)
{
    for (json& line : tape) {
        line.erase("handle");
        line.erase("arguments");
        if (!line.contains("responses")) continue;
        for (json& response : line["responses"]) {
            response.erase("handle");
            if (response.contains("handles")) response["handles"] = response["handles"].size();
        }
    }
    return tape;
}

void verify(const Workshop& workshop, const platform::Installation& installation, const std::string& facility,
            const Tape& recorded, const std::vector<std::string>& program,
            const platform::HeldSignals& signals)
{
    const fs::path tape = workshop.file("replay.jsonl");
    const fs::path file = workshop.file("facility.json");
    platform::writeWhole(file, facility, platform::WholeFile::Safety::inMemory);
    std::vector<std::string> replay = {"/bin/sh",
                                       "-c",
                                       "exec \"$@\" >/dev/null 2>&1",
                                       "sh",
                                       installation.find({launcher})[0],
                                       "run",
                                       "--facility",
                                       file,
                                       "--root",
                                       workshop.file("root")};
    if (!program.empty()) replay.emplace_back("--");
    replay.insert(replay.end(), program.begin(), program.end());
    runRecorded(tape, replay, signals);
    const Tape before = comparable(recorded);
    const Tape after = comparable(readTape(tape).tape);
    if (after.empty())
        throw platform::Failure("the replay of the recording made no call: see kord-console run");
    const auto difference = std::ranges::mismatch(before, after);
    if (difference.in1 == before.end() && difference.in2 == after.end()) return;
    const json& line = difference.in1 == before.end() ? *difference.in2 : *difference.in1;
    throw platform::Failure("the replay of the recording differs at line " +
                            std::to_string(difference.in1 - before.begin() + 1) + " of " +
                            std::to_string(before.size()) + ": " +
                            line.dump(-1, ' ', false, json::error_handler_t::replace).substr(0, 1000));
}

} // namespace

int record(const Options& options)
{
    if (!options.map.empty() && !options.redact) throw platform::Failure("--map needs --redact");
    const platform::Installation installation = platform::findInstallation();
    const Workshop workshop;
    const fs::path tapeFile = workshop.file("tape.jsonl");
    StandIns standIns = readMap(options.map);
    Origin origin = beginOrigin(options.program);
    const platform::HeldSignals signals = platform::holdSignals();
    preloadRecorder(workshop, installation);
    origin.status = runRecorded(tapeFile, installation.find(options.program), signals);
    Heard heard = readTape(tapeFile);
    if (heard.tape.empty())
        throw platform::Failure(options.program[0] + " made no call that could be recorded");
    tellOrigin(origin, heard.collectors);
    std::vector<std::string> program = options.program;
    if (options.redact) {
        Redactor redactor(standIns);
        redactor.redact(heard.tape);
        program = redactor.commandLine(program);
        origin.command = facility::isCollection(origin.command)
                             ? redactor.commandLine(origin.command)
                             : std::vector<std::string>{origin.command[0]}; // who knows what the rest tells
    }
    std::vector<Call> calls = readCalls(options.verify ? heard.tape : std::move(heard.tape));
    origin.system = systemOf(origin.command, calls);
    const std::string facility = toText(buildFacility(origin, std::move(calls)));
    checkFacility(facility);
    program = repeatedBy(origin, program);
    if (options.verify) verify(workshop, installation, facility, heard.tape, program, signals);
    if (!options.map.empty()) writeMap(options.map, standIns);
    platform::writeWhole(options.output, facility);
    tellWhatIsNext(options, origin, program);
    return origin.status;
}

} // namespace recorder
