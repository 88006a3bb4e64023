// The console's programs: what each prints of the facility, or what a fault rule has it print.

#include "image/faults.h"
#include "image/journal.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <unistd.h>

namespace
{

using namespace console;

using Arguments = std::span<char* const>; ///< without the program's name

struct Outcome {
    int status = 0;
    std::string output{};
    std::string complaint{}; ///< for standard error, without the program's name
};

constexpr int failed = 1;

bool isText(const char* text, const char* wanted)
{
    return text != nullptr && std::strcmp(text, wanted) == 0;
}

/// The value behind an option, null when there is none.
const char* option(Arguments arguments, const char* name)
{
    for (size_t i = 0; i + 1 < arguments.size(); ++i) {
        if (isText(arguments[i], name)) return arguments[i + 1];
    }
    return nullptr;
}

Outcome qmstat(const image::Image& facility, Arguments arguments)
{
    const char* mtms = option(arguments, "-m");
    if (!isText(option(arguments, "-r"), "sys") || mtms == nullptr ||
        !isText(option(arguments, "-F"), "state")) {
        return {.status = failed, .complaint = "usage: qmstat -r sys -m MTMS -F state"};
    }
    const image::Header& header = facility.header();
    for (const auto& system : facility.span<image::System>(header.systems, header.systemCount)) {
        if (!isText(facility.text(system.mtms), mtms)) continue;
        return {.output = std::string(facility.text(system.state)) + '\n'};
    }
    return {.status = failed, .complaint = std::string("there is no managed system ") + mtms};
}

Outcome qconvpd(const image::Image& facility, Arguments arguments)
{
    if (arguments.size() != 1 || !isText(arguments[0], "-v")) {
        return {.status = failed, .complaint = "usage: qconvpd -v"};
    }
    const image::Header& header = facility.header();
    if (header.vpdLines == 0) return {.status = failed, .complaint = "there are no vital product data"};
    Outcome outcome;
    for (const image::Offset line : facility.span<image::Offset>(header.vpdLines, header.vpdLineCount)) {
        outcome.output.append(facility.text(line)).append(1, '\n');
    }
    return outcome;
}

Outcome whoami(const image::Image& facility, Arguments)
{
    const char* user = std::getenv(image::userVariable);
    if (user == nullptr) user = facility.text(facility.header().user);
    if (user == nullptr) return {.status = failed};
    return {.output = std::string(user) + '\n'};
}

Outcome nothing(const image::Image&, Arguments)
{
    return {};
}

struct Program {
    const char* name;
    const char* journalName;
    Outcome (*run)(const image::Image&, Arguments);
    bool runsCommand = false; ///< its arguments are a command to be run after its own line
};
constexpr Program programs[] = {
    {.name = "qmstat", .journalName = "/opt/brisk/bin/qmstat", .run = qmstat},
    {.name = "qconvpd", .journalName = "/opt/brisk/bin/qconvpd", .run = qconvpd},
    {.name = "mmquaycmd", .journalName = "/opt/tarnquay/bin/mmquaycmd", .run = nothing, .runsCommand = true},
    {.name = "pmProblemEventPoster", .journalName = "/opt/tarnquay/bin/pmProblemEventPoster", .run = nothing},
    {.name = "whoami", .journalName = "whoami", .run = whoami},
};

const Program* findProgram(std::string_view path)
{
    const std::string_view name = path.substr(path.rfind('/') + 1);
    for (const Program& program : programs) {
        if (name == program.name) return &program;
    }
    return nullptr;
}

void complain(const char* name, const std::string& complaint)
{
    std::fprintf(stderr, "%s: %s\n", name, complaint.c_str());
}

Outcome outcomeBy(const image::Image& facility, const image::Rule& rule)
{
    const auto output = facility.span<char>(rule.output, rule.output == 0 ? 0 : rule.outputLength);
    return {.status = rule.code, .output = std::string(output.begin(), output.end())};
}

/// The journal has the line before anyone can read the output.
void journal(const image::Run& run, const Program& program, Arguments arguments, int status)
{
    image::Line line("program", program.journalName);
    line.list("arguments", arguments,
              [](std::string& json, const char* argument) { image::writeJson(json, argument); });
    image::append(run, line.add("status", status));
}

/// Becomes the command; comes back only when it cannot, with the shell's status for that.
int runCommand(const char* name, Arguments command)
{
    constexpr int notFound = 127;
    constexpr int notExecutable = 126;
    if (command.empty()) {
        complain(name, "no command");
        return notFound;
    }
    execvp(command[0], command.data());
    const int reason = errno;
    complain(name, std::string(command[0]) + ": " + std::strerror(reason));
    return reason == ENOENT ? notFound : notExecutable;
}

int runProgram(const Program& program, Arguments arguments)
{
    image::Run run;
    if (const std::string closed = image::openRun(run); !closed.empty()) {
        complain(program.name, closed);
        return failed;
    }
    const image::Rule* rule = image::decide(run, {.name = "program", .program = program.name});
    const bool faulty = rule != nullptr && rule->effect == image::Effect::program;
    const Outcome outcome = faulty ? outcomeBy(run.image, *rule) : program.run(run.image, arguments);
    journal(run, program, arguments, outcome.status);

    std::fwrite(outcome.output.data(), 1, outcome.output.size(), stdout);
    if (!outcome.complaint.empty()) complain(program.name, outcome.complaint);
    return program.runsCommand && !faulty ? runCommand(program.name, arguments) : outcome.status;
}

} // namespace

int main(int argc, char* argv[])
{
    const Program* program = argc > 0 ? findProgram(argv[0]) : nullptr;
    if (program == nullptr) {
        std::fputs("this is one of the console's programs under a name that none of them has\n", stderr);
        return failed;
    }
    return runProgram(*program, Arguments(argv + 1, static_cast<size_t>(argc) - 1));
}
