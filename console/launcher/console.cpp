// Laying out the console's file tree. A root is used for many runs, so nothing is done twice.

#include "console.h"

#include "image/image.h"
#include "platform/failure.h"
#include "platform/fileDescriptor.h"

#include <algorithm>
#include <fcntl.h>
#include <pwd.h>
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

std::string nameOf(uid_t user)
{
    const passwd* entry = getpwuid(user);
    return entry != nullptr ? entry->pw_name : "user " + std::to_string(user);
}

/// What lies there has to be the user's own, be it a folder or a link to one: whoever else put it there could
/// have the run write where he wants.
void refuseStrangers(const fs::path& place)
{
    struct stat status {
    };
    for (const bool link : {true, false}) {
        if ((link ? lstat : stat)(place.c_str(), &status) != 0) throw platform::failedOn(place.string());
        if (status.st_uid == geteuid()) continue;
        throw platform::Failure(place.string() + " belongs to " + nameOf(status.st_uid) +
                                ": take a folder of your own for the console");
    }
    if (!S_ISDIR(status.st_mode)) throw platform::failedOn(place.string(), ENOTDIR);
}

/// The folders of a way, each the user's own, where they are missing.
void makeFolders(fs::path folder, const fs::path& way)
{
    for (const fs::path& step : way) {
        folder /= step;
        std::error_code failure;
        fs::create_directory(folder, failure);
        refuseStrangers(folder);
    }
}

fs::path makeRoot(const fs::path& given)
{
    const fs::path root =
        given.has_filename() ? given : given.parent_path(); // a link is seen only without a /
    std::error_code failure;
    fs::create_directories(root, failure);
    if (failure) throw platform::Failure(root.string() + ": " + failure.message());
    refuseStrangers(root);
    return root;
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

/// A new file in place of what has its name. A process of an earlier run may still use that: it keeps it, and
/// is not cut off.
platform::FileDescriptor create(const fs::path& path)
{
    constexpr mode_t readableByAll = 0644;
    if (unlink(path.c_str()) != 0 && errno != ENOENT) throw platform::failedOn(path.string());
    platform::FileDescriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, readableByAll));
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

fs::path layOut(const fs::path& given, const platform::Installation& installation)
{
    const fs::path root = makeRoot(given);
    for (const char* folder : consoleFolders)
        makeFolders(root, folder);
    makeFolders(root, pathFolder);
    for (const Program& program : programs)
        putInPlace(installation.folderOfProgram(program.name) / program.name,
                   root / program.folder / program.name);
    return fs::canonical(root);
}

void startAfresh(const fs::path& root, uint64_t rules)
{
    create(root / image::journalFile);
    const fs::path state = root / image::stateFile;
    const platform::FileDescriptor file = create(state);
    const auto size = static_cast<off_t>(sizeof(image::RunState) + rules * sizeof(image::RuleState));
    if (ftruncate(file.get(), size) != 0) throw platform::failedOn(state.string());
}

} // namespace console::launcher
