// The steps of a run.

#include "run.h"

#include "console.h"
#include "facilityCache.h"
#include "image/image.h"
#include "links.h"
#include "namespaces.h"
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

} // namespace

int run(const RunOptions& options)
{
    const bool isWithinRun = std::getenv(image::rootVariable) != nullptr;
    refuseCovered(options.root);
    const platform::Installation installation = platform::findInstallation();
    const fs::path root = layOut(options.root, installation);
    provideImage(options.facility, root, installation);
    startAfresh(root);
    setEnvironment(root, installation, options.user);

    const std::string refusal = enterNamespace();
    if (!refusal.empty() && geteuid() != 0) throw noWay(refusal);
    // It would wait for the very run that waits for it.
    if (!refusal.empty() && isWithinRun)
        throw platform::Failure("without namespaces there is no run within a run");
    std::optional<MachineLock> lock;
    std::optional<Links> links;
    if (refusal.empty()) {
        mountConsole(root);
    } else {
        lock.emplace();
    }
    const platform::HeldSignals signals = platform::holdSignals();
    if (lock) links.emplace(root);
    return platform::runProgram(installation.find(options.program), signals);
}

} // namespace console::launcher
