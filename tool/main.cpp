// kord: the command for inventory documents and trace logs.

#include "commands.h"
#include "platform/failure.h"
#include "recorder/record.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <span>

namespace
{

struct CommandLine {
    CLI::App app{
        "Reads the inventory documents and trace logs that collections leave, and records collections."};
    CLI::App* show = app.add_subcommand("show", "Show an inventory document");
    CLI::App* diff = app.add_subcommand("diff", "Show what differs between two inventory documents");
    CLI::App* follow = app.add_subcommand("follow", "Show the progress of a collection from its trace log");
    CLI::App* record =
        app.add_subcommand("record", "Run a program on a console and record it as a facility file");

    tool::ShowOptions showOptions;
    tool::DiffOptions diffOptions;
    tool::FollowOptions followOptions;
    recorder::Options recordOptions;

    CommandLine();
};

CommandLine::CommandLine()
{
    app.require_subcommand(1);
    app.set_version_flag("--version", "kord " KORD_VERSION);

    show->add_option("FILE", showOptions.file, "The document")->required()->type_name("");
    show->add_flag("--json", showOptions.json, "Print it as JSON");
    show->add_option("--html", showOptions.htmlFile, "Write it as a page")->type_name("FILE");

    diff->add_option("OLD", diffOptions.before, "The older document")->required()->type_name("");
    diff->add_option("NEW", diffOptions.after, "The newer document")->required()->type_name("");
    diff->add_flag("--json", diffOptions.json, "Print the differences as JSON");

    follow->add_option("TRACE", followOptions.log, "The trace log, which need not exist yet")
        ->required()
        ->type_name("");
    follow->add_option("--quiet-after", followOptions.quietAfter, "Say when nothing was written for so long")
        ->type_name("SECONDS")
        ->capture_default_str();

    record->footer("The program and its arguments follow after --: kord record ... -- PROGRAM [ARG...]");
    record->add_option("-o,--output", recordOptions.output, "The facility file to write")
        ->required()
        ->type_name("FILE");
    record->add_flag("--redact", recordOptions.redact, "Put stand-ins for serials, names and descriptions");
    record->add_flag("--verify", recordOptions.verify, "Replay the file at once and compare");
}

int act(CommandLine& line, std::span<char*> program)
{
    if (line.show->parsed()) return tool::show(line.showOptions);
    if (line.diff->parsed()) return tool::diff(line.diffOptions);
    if (line.follow->parsed()) return tool::follow(line.followOptions);
    if (program.empty()) throw platform::Failure("there is no program to run: name it after --");
    line.recordOptions.program.assign(program.begin(), program.end());
    return recorder::record(line.recordOptions);
}

/// What follows the first "--" of a recording is the program's own business, whatever it looks like.
std::span<char*> programOf(std::span<char*> arguments)
{
    const bool records = arguments.size() > 1 && std::string_view(arguments[1]) == "record";
    const auto mark = records ? std::ranges::find(arguments, std::string_view("--")) : arguments.end();
    return mark == arguments.end() ? std::span<char*>{} : std::span<char*>(mark + 1, arguments.end());
}

/// A recording ends with the program's status, which leaves its own trouble another one than the rest's.
int troubleOf(std::span<char*> arguments)
{
    const bool records = arguments.size() > 1 && std::string_view(arguments[1]) == "record";
    return records ? recorder::recordingFailed : tool::trouble;
}

int complain(const std::string& what, int status)
{
    std::string line = what;
    std::ranges::replace(line, '\n', ' ');
    std::fprintf(stderr, "kord: %s\n", line.c_str());
    return status;
}

} // namespace

int main(int argc, char* argv[])
{
    const std::span<char*> arguments(argv, static_cast<size_t>(argc));
    const std::span<char*> program = programOf(arguments);
    try {
        CommandLine line;
        const auto own = arguments.size() - program.size() - (program.empty() ? 0 : 1);
        try {
            line.app.parse(static_cast<int>(own), argv);
        } catch (const CLI::Success& asked) {
            return line.app.exit(asked);
        }
        return act(line, program);
    } catch (const std::exception& failure) {
        return complain(failure.what(), troubleOf(arguments));
    }
}
