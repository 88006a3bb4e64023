// kord-console: the launcher of the simulated console and the tools for its facility files.

#include "facility/compile.h"
#include "facility/make.h"
#include "facilityCache.h"
#include "platform/failure.h"
#include "run.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <span>

namespace
{

using namespace console;

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
    if (!facility::make(sizes, stdout)) throw platform::failedOn("standard output");
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
    CLI::App* check = app.add_subcommand("check", "Check a facility file");
    CLI::App* make = app.add_subcommand("make", "Write a facility file of a given size to standard output");

    launcher::RunOptions runOptions;
    std::string checkedFile;
    facility::Sizes sizes;

    CommandLine();
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
}

int act(CommandLine& line, std::span<char*> program)
{
    if (line.check->parsed()) return check(line.checkedFile);
    if (line.make->parsed()) return make(line.sizes);
    if (program.empty()) throw platform::Failure("there is no program to run: name it after --");
    line.runOptions.program.assign(program.begin(), program.end());
    return launcher::run(line.runOptions);
}

/// What follows the first "--" is the program's own business, whatever it looks like.
std::span<char*> programOf(std::span<char*> arguments)
{
    const auto mark = std::ranges::find(arguments, std::string_view("--"));
    return mark == arguments.end() ? std::span<char*>{} : std::span<char*>(mark + 1, arguments.end());
}

int complain(const std::string& what)
{
    std::string line = what;
    std::ranges::replace(line, '\n', ' ');
    std::fprintf(stderr, "kord-console: %s\n", line.c_str());
    return launcherFailed;
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
        return complain(failure.what());
    }
}
