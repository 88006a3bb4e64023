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

constexpr mode_t notOpenToAll = 0755;

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

constexpr const char* ownFolderWanted = ": take a folder of your own for the console";

struct stat statusOf(const fs::path& place, bool isFollowed)
{
    struct stat status {
    };
    if ((isFollowed ? stat : lstat)(place.c_str(), &status) != 0) throw platform::failedOn(place.string());
    return status;
}

/// Whoever may put another folder in its place can have the run write where he wants.
void refuseOpen(const fs::path& place, const struct stat& status)
{
    if (S_ISDIR(status.st_mode) && (status.st_mode & S_IWOTH) != 0 && (status.st_mode & S_ISVTX) == 0)
        throw platform::Failure(place.string() + " can be written by everyone" + ownFolderWanted);
}

[[noreturn]] void refuseOwned(const fs::path& place, uid_t owner)
{
    throw platform::Failure(place.string() + " belongs to " + nameOf(owner) + ownFolderWanted);
}

/// What lies there has to be the user's own, be it a folder or a link to one.
void refuseStrangers(const fs::path& place)
{
    for (const bool isFollowed : {false, true}) {
        const struct stat status = statusOf(place, isFollowed);
        if (status.st_uid != geteuid()) refuseOwned(place, status.st_uid);
        refuseOpen(place, status);
        if (isFollowed && !S_ISDIR(status.st_mode)) throw platform::failedOn(place.string(), ENOTDIR);
    }
}

/// What leads to a place, links included, as far as it exists: the user's own or the machine's. In a user's
/// namespace the machine's owner has another number than outside.
void refuseStrangersOnTheWay(const fs::path& place)
{
    const uid_t machine = statusOf("/", true).st_uid;
    fs::path way;
    for (const fs::path& step : place.parent_path()) {
        way /= step;
        struct stat status {
        };
        if (lstat(way.c_str(), &status) != 0) return;
        if (status.st_uid != geteuid() && status.st_uid != machine && status.st_uid != 0)
            refuseOwned(way, status.st_uid);
        refuseOpen(way, status);
    }
}

/// The folders of a way, each the user's own, where they are missing.
void makeFolders(fs::path folder, const fs::path& way)
{
    for (const fs::path& step : way) {
        folder /= step;
        mkdir(folder.c_str(), notOpenToAll);
        refuseStrangers(folder);
    }
}

void makeRootFolders(const fs::path& root)
{
    fs::path folder;
    for (const fs::path& step : root) {
        folder /= step;
        if (mkdir(folder.c_str(), notOpenToAll) != 0 && errno != EEXIST)
            throw platform::failedOn(root.string());
    }
}

fs::path makeRoot(const fs::path& given)
{
    // A link is seen only without a / after it.
    fs::path root = fs::absolute(given.has_filename() ? given : given.parent_path());
    refuseStrangersOnTheWay(root);
    makeRootFolders(root);
    refuseStrangers(root);
    refuseStrangersOnTheWay(fs::canonical(root));
    return root;
}

/// A link to the program, in place of whatever has its name.
void putInPlace(const fs::path& program, const fs::path& place)
{
    std::error_code absent;
    if (fs::read_symlink(place, absent) == program) return;
    const fs::path made = place.string() + ".new" + std::to_string(getpid());
    unlink(made.c_str()); // of a run that was killed here and had the same number
    if (symlink(program.c_str(), made.c_str()) != 0) throw platform::failedOn(place.string());
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

void refuseUnfit(const fs::path& root)
{
    const fs::path place = fs::weakly_canonical(root);
    if (place.string().find(':') != std::string::npos)
        throw platform::Failure(place.string() +
                                " holds a colon, which PATH takes for its end: take another root");
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

void startJournal(const fs::path& root)
{
    create(root / image::journalFile);
}

void startState(const fs::path& root, uint64_t rules)
{
    const fs::path state = root / image::stateFile;
    const platform::FileDescriptor file = create(state);
    const auto size = static_cast<off_t>(sizeof(image::RunState) + rules * sizeof(image::RuleState));
    if (ftruncate(file.get(), size) != 0) throw platform::failedOn(state.string());
}

} // namespace console::launcher
