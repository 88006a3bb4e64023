// Laying out the console's file tree. A root is used for many runs, so nothing is done twice.

#include "console.h"

#include "image/image.h"
#include "platform/failure.h"
#include "platform/fileDescriptor.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace console::launcher
{

namespace
{

namespace fs = std::filesystem;

struct Program {
    const char* folder;
    const char* name;
};
constexpr std::array programs = {
    Program{"opt/brisk/bin", "qmstat"},
    Program{"opt/brisk/bin", "qconvpd"},
    Program{"opt/tarnquay/bin", "mmquaycmd"},
    Program{"opt/tarnquay/bin", "pmProblemEventPoster"},
    Program{pathFolder, "whoami"},
};

void makeFolder(const fs::path& folder)
{
    std::error_code failure;
    fs::create_directories(folder, failure);
    if (failure) throw platform::Failure(folder.string() + ": " + failure.message());
}

/// A link to the program, in place of whatever has its name.
void putInPlace(const fs::path& program, const fs::path& place)
{
    std::error_code absent;
    if (fs::read_symlink(place, absent) == program) return;
    const fs::path made = place.string() + ".new" + std::to_string(getpid());
    if (symlink(program.c_str(), made.c_str()) != 0) throw platform::failedOn(made.string());
    if (rename(made.c_str(), place.c_str()) != 0) {
        const int reason = errno;
        unlink(made.c_str());
        throw platform::failedOn(place.string(), reason);
    }
}

platform::FileDescriptor create(const fs::path& path, int flags)
{
    constexpr mode_t readableByAll = 0644;
    platform::FileDescriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | flags, readableByAll));
    if (!file.isOpen()) throw platform::failedOn(path.string());
    return file;
}

} // namespace

void refuseCovered(const fs::path& root)
{
    const fs::path place = fs::weakly_canonical(root);
    for (const char* folder : consoleFolders) {
        const fs::path covered = fs::path("/") / folder;
        if (std::ranges::mismatch(covered, place).in1 == covered.end()) {
            throw platform::Failure(place.string() + " lies in " + covered.string() +
                                    ", which a run covers: take another root");
        }
    }
}

fs::path layOut(const fs::path& root, const platform::Installation& installation)
{
    makeFolder(root);
    for (const char* folder : consoleFolders)
        makeFolder(root / folder);
    makeFolder(root / pathFolder);
    for (const Program& program : programs)
        putInPlace(installation.folderOfProgram(program.name) / program.name,
                   root / program.folder / program.name);
    return fs::canonical(root);
}

void startAfresh(const fs::path& root, uint64_t rules)
{
    create(root / image::journalFile, O_TRUNC);
    // A process of an earlier run may still have the old state mapped: it keeps it, and is not cut off.
    const fs::path state = root / image::stateFile;
    if (unlink(state.c_str()) != 0 && errno != ENOENT) throw platform::failedOn(state.string());
    const platform::FileDescriptor file = create(state, O_EXCL);
    const auto size = static_cast<off_t>(sizeof(image::RunState) + rules * sizeof(image::RuleState));
    if (ftruncate(file.get(), size) != 0) throw platform::failedOn(state.string());
}

} // namespace console::launcher
