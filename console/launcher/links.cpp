// Making and removing the symbolic links. Whoever makes them holds the signals that end a program before, so
// that nothing but a kill leaves links behind.

#include "links.h"

#include "console.h"
#include "platform/failure.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace console::launcher
{

namespace fs = std::filesystem;

/// The machine's root folder is what runs lock: it is always there, and no lock file stays behind.
MachineLock::MachineLock() : lock(open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (!lock.isOpen() || flock(lock.get(), LOCK_EX) != 0) throw platform::failedOn("locking /");
}

Links::Links(const fs::path& root)
{
    try {
        for (const char* folder : consoleFolders)
            makeLink(root, folder);
    } catch (...) {
        removeAll();
        throw;
    }
}

Links::~Links()
{
    removeAll();
}

void Links::makeLink(const fs::path& root, const char* folder)
{
    fs::path way = "/";
    for (const fs::path& step : fs::path(folder).parent_path()) {
        way /= step;
        if (mkdir(way.c_str(), 0755) == 0) {
            made.push_back(way);
        } else if (errno != EEXIST) {
            throw platform::failedOn(way.string());
        }
    }
    const fs::path link = fs::path("/") / folder;
    if (symlink((root / folder).c_str(), link.c_str()) == 0) {
        made.push_back(link);
    } else if (errno == EEXIST) {
        throw platform::Failure(link.string() +
                                " is in the way: without namespaces a run needs this path free");
    } else {
        throw platform::failedOn(link.string());
    }
}

/// What others have put into a folder that was made here keeps the folder.
void Links::removeAll()
{
    for (; !made.empty(); made.pop_back())
        std::remove(made.back().c_str());
}

} // namespace console::launcher
