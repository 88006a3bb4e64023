// fork, exec, and a poll over the two pipes until both are closed.

#include "process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kordTest
{

using Clock = std::chrono::steady_clock;

struct Pipe {
    Pipe()
    {
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    ~Pipe()
    {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void closeEnd(size_t end)
    {
        if (ends.at(end) >= 0) close(ends.at(end));
        ends.at(end) = -1;
    }

    std::array<int, 2> ends{-1, -1};
};

[[noreturn]] static void becomeProgram(const Command& command, const Pipe& output, const Pipe& error)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command.arguments) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);

    setpgid(0, 0);
    umask(022);
    const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    const bool ready = dup2(input, 0) == 0 && dup2(output.ends[1], 1) == 1 && dup2(error.ends[1], 2) == 2 &&
                       (command.folder.empty() || chdir(command.folder.c_str()) == 0);
    if (ready) execv(arguments[0], arguments.data());
    _exit(126);
}

namespace
{

/// Takes what a pipe holds. False when its writers have closed it.
bool drain(int end, std::string& text)
{
    std::array<char, 65536> buffer;
    const ssize_t count = read(end, buffer.data(), buffer.size());
    if (count > 0) text.append(buffer.data(), static_cast<size_t>(count));
    return count > 0 || (count < 0 && errno == EINTR);
}

/// An emulated processor takes its time, so many times that of a real one.
std::chrono::milliseconds patient(std::chrono::milliseconds limit)
{
    const char* times = std::getenv("KORD_PATIENCE");
    return times == nullptr ? limit : limit * std::max(1L, std::strtol(times, nullptr, 10));
}

/// Reads both pipes to their end. False when the limit passed first.
bool collect(Pipe& output, Pipe& error, Outcome& outcome, Clock::time_point limit)
{
    while (output.ends[0] >= 0 || error.ends[0] >= 0) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(limit - Clock::now()).count();
        if (left <= 0) return false;
        std::array<pollfd, 2> polled{pollfd{output.ends[0], POLLIN, 0}, pollfd{error.ends[0], POLLIN, 0}};
        if (poll(polled.data(), polled.size(), static_cast<int>(left)) <= 0) continue;
        if (polled[0].revents != 0 && !drain(output.ends[0], outcome.output)) output.closeEnd(0);
        if (polled[1].revents != 0 && !drain(error.ends[0], outcome.error)) error.closeEnd(0);
    }
    return true;
}

} // namespace

Outcome runProcess(const Command& command)
{
    Pipe output;
    Pipe error;
    const pid_t child = fork();
    if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (child == 0) becomeProgram(command, output, error);
    output.closeEnd(1);
    error.closeEnd(1);

    Outcome outcome;
    outcome.timedOut = !collect(output, error, outcome, Clock::now() + patient(command.limit));
    if (outcome.timedOut) {
        setpgid(child, child);
        kill(-child, SIGKILL);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

std::filesystem::path triedBuild()
{
    const char* other = std::getenv("KORD_TRIED");
    return other == nullptr ? KORD_BUILD_DIR : other;
}

bool hasNamespaces()
{
    if (std::getenv("KORD_CONSOLE_NO_NAMESPACES") != nullptr) return false;
    const char* option = geteuid() == 0 ? "-m" : "-Urm";
    return runProcess({.arguments = {"/usr/bin/unshare", option, "true"}, .folder = "/"}).status == 0;
}

} // namespace kordTest
