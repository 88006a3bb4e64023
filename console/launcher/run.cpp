// The steps of a run.

#include "run.h"

#include "console.h"
#include "facility/collection.h"
#include "facilityCache.h"
#include "image/image.h"
#include "links.h"
#include "namespaces.h"
#include "platform/commandLine.h"
#include "platform/failure.h"
#include "platform/installation.h"
#include "platform/process.h"

#include <cstdlib>
#include <unistd.h>

namespace console::launcher
{

namespace
{

namespace fs = std::filesystem;

void putFirst(const char* list, const fs::path& folder)
{
    const char* before = std::getenv(list);
    const std::string rest = before == nullptr || *before == '\0' ? "" : std::string(":") + before;
    setenv(list, (folder.string() + rest).c_str(), 1);
}

void setEnvironment(const fs::path& root, const platform::Installation& installation,
                    const std::optional<std::string>& user)
{
    putFirst("PATH", root / pathFolder);
    putFirst("LD_LIBRARY_PATH", installation.folderOfLibrary("libvale_mc.so"));
    setenv(image::rootVariable, root.c_str(), 1);
    if (user) {
        setenv(image::userVariable, user->c_str(), 1);
    } else {
        unsetenv(image::userVariable);
    }
}

platform::Failure noWay(const std::string& reason)
{
    return platform::Failure("this machine gives no mount namespace (" + reason +
                             "): run as root, or allow unprivileged user namespaces");
}

/// What is run: what was named, or else what the recording was taken of. Of what a file says only a
/// collection is started, and with the collector that is found here.
std::vector<std::string> programOf(const RunOptions& options, const Recording& recording)
{
    if (!options.program.empty()) return options.program;
    if (recording.command.empty()) throw platform::Failure("there is no program to run: name it after --");
    if (!facility::isCollection(recording.command))
        throw platform::Failure(options.facility + " was recorded of " + recording.command[0] +
                                ": name the program to run after --");
    std::vector<std::string> program = recording.command;
    program[0] = facility::collector;
    return program;
}

/// Where the run is a recording's, what came of it.
void tellOutcome(const Recording& recording, const fs::path& root, int status)
{
    constexpr const char* name = "kord-console";
    std::string line = platform::commandText(recording.command) + " ended with " + std::to_string(status);
    if (recording.status == status) line += ", as recorded";
    if (recording.status >= 0 && recording.status != status)
        line += "; recorded was " + std::to_string(recording.status);
    if (!recording.date.empty()) line += " on " + recording.date;
    platform::complain(name, line);
    platform::complain(name, "see what happened: " +
                                 platform::commandText(
                                     {"kord", "explain", root / facility::traceLogOf(recording.command[2])}));
}

} // namespace

int run(const RunOptions& options)
{
    const bool isWithinRun = std::getenv(image::rootVariable) != nullptr;
    refuseUnfit(options.root);
    const platform::Installation installation = platform::findInstallation();
    const fs::path root = layOut(options.root, installation);
    const std::string refusal = enterNamespace();
    if (!refusal.empty() && geteuid() != 0) throw noWay(refusal);
    // It would wait for the very run that waits for it.
    if (!refusal.empty() && isWithinRun)
        throw platform::Failure("without namespaces there is no run within a run");
    std::optional<MachineLock> lock;
    if (!refusal.empty()) lock.emplace();

    // Another run's journal and image are left alone until that has ended; a run that is refused from here on
    // leaves no journal but its own.
    startJournal(root);
    const FacilityImage image = provideImage(options.facility, root, installation);
    const Recording recording = image.recording();
    const std::vector<std::string> program = programOf(options, recording);
    startState(root, image.ruleCount());
    setEnvironment(root, installation, options.user);
    if (!lock) mountConsole(root);
    const platform::HeldSignals signals = platform::holdSignals();
    std::optional<Links> links;
    if (lock) links.emplace(root);
    const int status = platform::runProgram(installation.find(program), signals);
    if (options.program.empty()) tellOutcome(recording, root, status);
    return status;
}

} // namespace console::launcher
