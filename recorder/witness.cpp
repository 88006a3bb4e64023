// Runs a console program and writes down how it ended and what it printed, which reaches standard output in
// one piece. It ends as the program did, also by the same signal.

#include "recorder/tape.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace recorder;

/// How a program ended.
struct End {
    int status = 0; ///< the shell's: 128 and the signal's number after a signal
    int signal = 0; ///< 0: none
};

/// The shell's status for a program that cannot be started.
End notStarted(const char* program, int reason)
{
    constexpr int notFound = 127;
    constexpr int notExecutable = 126;
    std::fprintf(stderr, "%s: %s\n", program, std::strerror(reason));
    return {.status = reason == ENOENT ? notFound : notExecutable};
}

/// Runs the program with its standard output in a file.
End run(char* arguments[], int output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t child = 0;
    const int refused = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (refused != 0) return notStarted(arguments[0], refused);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    constexpr int signalled = 128;
    if (!WIFSIGNALED(status)) return {.status = WEXITSTATUS(status)};
    return {.status = signalled + WTERMSIG(status), .signal = WTERMSIG(status)};
}

std::string contentOf(int file)
{
    std::string content(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
    const ssize_t length = pread(file, content.data(), content.size(), 0);
    content.resize(length < 0 ? 0 : static_cast<size_t>(length));
    return content;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 2) return notStarted(argv[0], EINVAL).status;
    const int output = memfd_create("output", MFD_CLOEXEC);
    if (output < 0) return notStarted(argv[0], errno).status;
    const End end = run(argv + 1, output);
    const std::string text = contentOf(output);
    append({{"program", argv[1]},
            {"arguments", std::vector<std::string>(argv + 2, argv + argc)},
            {"status", end.status},
            {"output", text}});
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
    if (end.signal != 0) {
        std::signal(end.signal, SIG_DFL);
        raise(end.signal);
    }
    return end.status;
}
