// kord-console: the launcher of the simulated console and the tools for its facility files.

#include "facility/compile.h"
#include "facility/make.h"
#include "facilityCache.h"
#include "platform/commandLine.h"
#include "platform/failure.h"
#include "platform/text.h"
#include "run.h"

#include <cstdio>

namespace
{

using namespace console;

constexpr int launcherFailed = 125;
constexpr int malformed = 1;
constexpr uint64_t largestSize = 1'000'000;

int check(const std::string& file)
{
    const facility::Faults faults = facility::compile(launcher::readFacility(file)).faults;
    for (const facility::Fault& fault : faults)
        std::printf("%s\n", platform::shown(facility::toLine(fault)).c_str());
    return faults.empty() ? 0 : malformed;
}

int make(const facility::Sizes& sizes)
{
    if (!facility::make(sizes, stdout)) throw platform::failedOn("standard output");
    return 0;
}

platform::Command runCommand(launcher::RunOptions& options)
{
    return {.name = "run",
            .help = "Run a program on the console, or repeat what FILE is a recording of",
            .options = {{.names = "--facility",
                         .into = &options.facility,
                         .help = "The facility file",
                         .value = "FILE",
                         .required = true},
                        {.names = "--root",
                         .into = &options.root,
                         .help = "The folder that holds the console's file tree",
                         .value = "DIR",
                         .required = true,
                         .offers = {.paths = platform::Offers::Paths::folders}},
                        {.names = "--user",
                         .into = &options.user,
                         .help = "What whoami prints, in place of the facility's user",
                         .value = "NAME",
                         .offers = {.paths = platform::Offers::Paths::none}}},
            .program = &options.program,
            .needsProgram = false, // a recording says itself what is run
            .run = [&] { return launcher::run(options); },
            .trouble = launcherFailed};
}

platform::Command checkCommand(std::string& file)
{
    return {.name = "check",
            .help = "Check a facility file",
            .arguments = {{.name = "FILE", .into = &file, .help = "The facility file"}},
            .run = [&] { return check(file); },
            .trouble = launcherFailed};
}

platform::Command makeCommand(facility::Sizes& sizes)
{
    const auto size = [](std::string_view name, platform::Target into, std::string_view help,
                         uint64_t least = 0, uint64_t most = largestSize) {
        return platform::Option{
            .names = name, .into = into, .help = help, .value = "N", .least = least, .most = most};
    };
    return {.name = "make",
            .help = "Write a facility file of a given size to standard output",
            .options = {size("--images", &sizes.images, "Images, and so partitions of each system", 1, 8),
                        size("--cec", &sizes.cec, "Processor complex drawers of a system"),
                        size("--io", &sizes.io, "I/O drawers"),
                        size("--adapters", &sizes.adapters, "Adapters of each kind per I/O drawer and image"),
                        size("--racks", &sizes.racks, "Racks"),
                        size("--enclosures", &sizes.enclosures, "Storage enclosures of a rack"),
                        size("--drives", &sizes.drives, "Drives of a storage enclosure"),
                        size("--volumes", &sizes.volumes, "Logical volumes of an image"),
                        size("--hosts", &sizes.hosts, "Hosts of an image"),
                        size("--seed", &sizes.seed, "Varies serial numbers and models", 0,
                             std::numeric_limits<uint64_t>::max())},
            .run = [&] { return make(sizes); },
            .trouble = launcherFailed};
}

} // namespace

int main(int argc, char* argv[])
{
    launcher::RunOptions options;
    std::string checked;
    facility::Sizes sizes;
    return platform::run({.name = "kord-console",
                          .version = KORD_VERSION,
                          .help = "Runs programs on a simulated management console.",
                          .manual = "kord-console(1)",
                          .commands = {runCommand(options), checkCommand(checked), makeCommand(sizes)},
                          .trouble = launcherFailed},
                         {argv, static_cast<size_t>(argc)});
}
