// kord-console: the launcher of the simulated console, the tools for its facility files, and those for what
// collections leave.

#include "documentCommands.h"
#include "facility/compile.h"
#include "facility/make.h"
#include "facilityCache.h"
#include "failure.h"
#include "record.h"
#include "run.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <span>

namespace
{

using namespace console;
using launcher::Failure;

constexpr int launcherFailed = 125;
constexpr int malformed = 1;

int check(const std::string& file)
{
    const facility::Faults faults = facility::compile(launcher::readFacility(file)).faults;
    for (const facility::Fault& fault : faults)
        std::printf("%s\n", facility::toLine(fault).c_str());
    return faults.empty() ? 0 : malformed;
}

int make(const facility::Sizes& sizes)
{
    if (!facility::make(sizes, stdout)) throw launcher::failedOn("standard output");
    return 0;
}

/// What the option parser would take for a number in spite of its sign.
std::string notDigits(const std::string& text)
{
    const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    return digits ? "" : "Value " + text + " is no number from 0";
}

struct CommandLine {
    CLI::App app{"Runs programs on a simulated management console."};
    CLI::App* run = app.add_subcommand("run", "Run a program on the console");
    CLI::App* record =
        app.add_subcommand("record", "Run a program on a console and record it as a facility file");
    CLI::App* check = app.add_subcommand("check", "Check a facility file");
    CLI::App* make = app.add_subcommand("make", "Write a facility file of a given size to standard output");
    CLI::App* show = app.add_subcommand("show", "Show an inventory document");
    CLI::App* diff = app.add_subcommand("diff", "Show what differs between two inventory documents");
    CLI::App* follow = app.add_subcommand("follow", "Show the progress of a collection from its trace log");

    launcher::RunOptions runOptions;
    launcher::RecordOptions recordOptions;
    std::string checkedFile;
    facility::Sizes sizes;
    launcher::ShowOptions showOptions;
    launcher::DiffOptions diffOptions;
    std::string followedLog;

    CommandLine();
    void addDocumentCommands();
    void addSize(const char* name, uint32_t& size, const char* help,
                 const CLI::Range& range = CLI::Range(0, 1'000'000))
    {
        make->add_option(name, size, help)->check(range)->type_name("N")->capture_default_str();
    }
};

CommandLine::CommandLine()
{
    app.require_subcommand(1);
    run->footer("The program and its arguments follow after --: kord-console run ... -- PROGRAM [ARG...]");
    run->add_option("--facility", runOptions.facility, "The facility file")->required()->type_name("FILE");
    run->add_option("--root", runOptions.root, "The folder that holds the console's file tree")
        ->required()
        ->type_name("DIR");
    run->add_option("--user", runOptions.user, "What whoami prints, in place of the facility's user")
        ->type_name("NAME");

    record->footer(
        "The program and its arguments follow after --: kord-console record ... -- PROGRAM [ARG...]");
    record->add_option("--output", recordOptions.output, "The facility file to write")
        ->required()
        ->type_name("FILE");
    record->add_flag("--redact", recordOptions.redact, "Put stand-ins for serials, names and descriptions");
    record->add_flag("--verify", recordOptions.verify, "Replay the file at once and compare");

    check->add_option("FILE", checkedFile, "The facility file")->required()->type_name("");

    addSize("--images", sizes.images, "Images, and so partitions of each system", CLI::Range(1, 8));
    addSize("--cec", sizes.cec, "Processor complex drawers of a system");
    addSize("--io", sizes.io, "I/O drawers");
    addSize("--adapters", sizes.adapters, "Adapters of each kind per I/O drawer and image");
    addSize("--racks", sizes.racks, "Racks");
    addSize("--enclosures", sizes.enclosures, "Storage enclosures of a rack");
    addSize("--drives", sizes.drives, "Drives of a storage enclosure");
    addSize("--volumes", sizes.volumes, "Logical volumes of an image");
    addSize("--hosts", sizes.hosts, "Hosts of an image");
    make->add_option("--seed", sizes.seed, "Varies serial numbers and models")
        ->check(CLI::Validator(notDigits, ""))

        ->type_name("N")
        ->capture_default_str();
    addDocumentCommands();
}

void CommandLine::addDocumentCommands()
{
    show->add_option("FILE", showOptions.file, "The document")->required()->type_name("");
    show->add_flag("--json", showOptions.json, "Print it as JSON");
    show->add_option("--html", showOptions.htmlFile, "Write it as a page")->type_name("FILE");

    diff->add_option("OLD", diffOptions.before, "The older document")->required()->type_name("");
    diff->add_option("NEW", diffOptions.after, "The newer document")->required()->type_name("");
    diff->add_flag("--json", diffOptions.json, "Print the differences as JSON");

    follow->add_option("LOG", followedLog, "The trace log, which need not exist yet")
        ->required()
        ->type_name("");
}

int act(CommandLine& line, std::span<char*> program)
{
    if (line.check->parsed()) return check(line.checkedFile);
    if (line.make->parsed()) return make(line.sizes);
    if (line.show->parsed()) return launcher::show(line.showOptions);
    if (line.diff->parsed()) return launcher::diff(line.diffOptions);
    if (line.follow->parsed()) return launcher::follow(line.followedLog);
    if (program.empty()) throw Failure("there is no program to run: name it after --");
    line.recordOptions.program.assign(program.begin(), program.end());
    line.runOptions.program = line.recordOptions.program;
    return line.record->parsed() ? launcher::record(line.recordOptions) : launcher::run(line.runOptions);
}

/// What follows the first "--" is the program's own business, whatever it looks like.
std::span<char*> programOf(std::span<char*> arguments)
{
    const auto mark = std::ranges::find(arguments, std::string_view("--"));
    return mark == arguments.end() ? std::span<char*>{} : std::span<char*>(mark + 1, arguments.end());
}

/// The commands on documents keep 1 for what they find, as their like do, and 125 is the launcher's own.
int troubleOf(std::span<char*> arguments)
{
    constexpr std::string_view commands[] = {"show", "diff", "follow"};
    const bool document = arguments.size() > 1 &&
                          std::ranges::find(commands, std::string_view(arguments[1])) != std::end(commands);
    return document ? launcher::documentTrouble : launcherFailed;
}

int complain(const std::string& what, int status)
{
    std::string line = what;
    std::ranges::replace(line, '\n', ' ');
    std::fprintf(stderr, "kord-console: %s\n", line.c_str());
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
