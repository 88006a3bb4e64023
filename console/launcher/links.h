// The console's folders as symbolic links at their absolute paths: for machines without namespaces, where the
// launcher is root. They are there for everyone, so that one run at a time can have them.

#pragma once

#include "platform/fileDescriptor.h"

#include <filesystem>
#include <vector>

namespace console::launcher
{

/// Keeps other runs without namespaces waiting while it lives.
class MachineLock
{
public:
    /// Waits for other runs to end.
    MachineLock();

private:
    platform::FileDescriptor lock;
};

class Links
{
public:
    /// Makes the links to the root's folders. A Failure when something else lies at one of the paths.
    explicit Links(const std::filesystem::path& root);
    /// Removes them, and the folders that were made on the way to them.
    ~Links();
    Links(const Links&) = delete;
    Links& operator=(const Links&) = delete;

private:
    void makeLink(const std::filesystem::path& root, const char* folder);
    void removeAll();

    std::vector<std::filesystem::path> made; ///< in the order of making
};

} // namespace console::launcher
