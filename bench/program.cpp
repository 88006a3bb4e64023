#include "program.h"

#include <climits>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench
{

namespace
{

pid_t start(const Command& command, int output, Errors errors)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    if (errors == Errors::thrownAway)
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int failure = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::runtime_error(command[0] + " cannot be started");
    return child;
}

std::string readToEnd(int pipe)
{
    std::string text;
    char block[65536];
    for (ssize_t length; (length = read(pipe, block, sizeof block)) > 0;)
        text.append(block, static_cast<size_t>(length));
    return text;
}

/// What a process that has ended was on a processor. The kernel keeps this account until the process is
/// waited for, and keeps its children's apart.
double timeOnProcessor(pid_t ended)
{
    std::ifstream file("/proc/" + std::to_string(ended) + "/schedstat");
    double nanoseconds = 0;
    if (!(file >> nanoseconds) || nanoseconds <= 0)
        throw std::runtime_error("this kernel keeps no processor time in /proc/PID/schedstat");
    return nanoseconds;
}

} // namespace

std::string programFolder()
{
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    const std::string program(path, length > 0 ? static_cast<size_t>(length) : 0);
    return program.substr(0, program.rfind('/') + 1);
}

Ended run(const Command& command, int status, Errors errors)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    const pid_t child = start(command, ends[1], errors);
    close(ends[1]);
    Ended ended{.output = readToEnd(ends[0]), .time = 0, .peak = 0, .faults = 0};
    close(ends[0]);

    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT);
    ended.time = timeOnProcessor(child);
    rusage usage{};
    wait4(child, nullptr, 0, &usage);
    ended.peak = static_cast<double>(usage.ru_maxrss) * 1024;
    ended.faults = static_cast<double>(usage.ru_minflt);
    if (info.si_code != CLD_EXITED || info.si_status != status)
        throw std::runtime_error(command[0] + " ended with " + std::to_string(info.si_status));
    return ended;
}

} // namespace bench
