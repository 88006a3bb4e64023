// The steps of a recording: run, read the tape, redact, build the file, replay.

#include "recorder/record.h"

#include "facility/compile.h"
#include "platform/failure.h"
#include "platform/installation.h"
#include "platform/process.h"
#include "platform/wholeFile.h"
#include "recorder/builder.h"
#include "recorder/redactor.h"
#include "recorder/tape.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <optional>
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

/// Has the programs that are started from now on recorded.
class Recorder
{
public:
    Recorder(const Workshop& workshop, const platform::Installation& installation, const fs::path& tape)
    {
        const fs::path library = workshop.file("recorder.so");
        std::error_code there;
        fs::create_symlink(installation.folderOfLibrary(recorderLibrary) / recorderLibrary, library, there);
        std::ofstream(tape).close();
        if (const char* list = std::getenv(preloads)) before = list;
        setenv(preloads, (library.string() + (before ? ":" + *before : "")).c_str(), 1);
        setenv(tapeVariable, tape.c_str(), 1);
        setenv(witnessVariable, (installation.folderOfProgram(witnessProgram) / witnessProgram).c_str(), 1);
    }
    ~Recorder()
    {
        unsetenv(tapeVariable);
        unsetenv(preloads);
        if (before) setenv(preloads, before->c_str(), 1);
    }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

private:
    std::optional<std::string> before;
};

Tape readTape(const fs::path& path)
{
    Tape tape;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        tape.push_back(json::parse(line));
    return tape;
}

void checkFacility(const std::string& text)
{
    const facility::Faults faults = facility::compile(text).faults;
    if (faults.empty()) return;
    throw platform::Failure("the recording cannot be replayed: " + facility::toLine(faults.front()));
}

std::string quoted(const std::string& word)
{
    constexpr const char* plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./:";
    return word.find_first_not_of(plain) == std::string::npos ? word : '\'' + word + '\'';
}

void tellHowToReplay(const Options& options, const std::vector<std::string>& program)
{
    std::string command = "kord-console run --facility " + quoted(options.output) + " --root DIR --";
    for (const std::string& word : program)
        command += ' ' + quoted(word);
    std::fprintf(stderr, "kord: replay with %s\n", command.c_str());
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
                                       workshop.file("root"),
                                       "--"};
    replay.insert(replay.end(), program.begin(), program.end());
    {
        const Recorder recorder(workshop, installation, tape);
        platform::runProgram(replay, signals);
    }
    const Tape before = comparable(recorded);
    const Tape after = comparable(readTape(tape));
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
    const platform::Installation installation = platform::findInstallation();
    const Workshop workshop;
    const fs::path tapeFile = workshop.file("tape.jsonl");
    std::vector<std::string> program = installation.find(options.program);
    const platform::HeldSignals signals = platform::holdSignals();
    int status = 0;
    {
        const Recorder recorder(workshop, installation, tapeFile);
        status = platform::runProgram(program, signals);
    }
    Tape tape = readTape(tapeFile);
    if (tape.empty()) throw platform::Failure(options.program[0] + " made no call that could be recorded");
    program = options.program;
    if (options.redact) {
        Redactor redactor;
        redactor.redact(tape);
        for (std::string& word : program)
            word = redactor.argument(word);
    }
    const std::string facility = toText(buildFacility(readCalls(tape)));
    checkFacility(facility);
    if (options.verify) verify(workshop, installation, facility, tape, program, signals);
    platform::writeWhole(options.output, facility);
    tellHowToReplay(options, program);
    return status;
}

} // namespace recorder
