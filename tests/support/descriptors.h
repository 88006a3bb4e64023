// The descriptors of a test's own process: how many there are, and what it is like to lack some.

#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <sys/resource.h>
#include <unistd.h>

namespace kordTest
{

/// How many descriptors this process has.
inline size_t openFiles()
{
    using Iterator = std::filesystem::directory_iterator;
    return static_cast<size_t>(std::distance(Iterator("/proc/self/fd"), Iterator()));
}

/// While it lives, the program is as one that is started without standard input: the first file that it opens
/// gets the number 0.
class WithoutInput
{
public:
    WithoutInput() : input(dup(STDIN_FILENO)) { close(STDIN_FILENO); }
    ~WithoutInput()
    {
        dup2(input, STDIN_FILENO);
        close(input);
    }
    WithoutInput(const WithoutInput&) = delete;
    WithoutInput& operator=(const WithoutInput&) = delete;

private:
    int input;
};

/// While it lives, no file can be opened.
class WithoutFiles
{
public:
    WithoutFiles()
    {
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~WithoutFiles() { setrlimit(RLIMIT_NOFILE, &before); }
    WithoutFiles(const WithoutFiles&) = delete;
    WithoutFiles& operator=(const WithoutFiles&) = delete;

private:
    rlimit before{};
};

} // namespace kordTest
