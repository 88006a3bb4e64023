// Starting the program and waiting for its end, with no signal handler: held signals are taken one by one.

#include "platform/process.h"

#include "platform/failure.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform
{

namespace
{

constexpr int forwarded[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

pid_t start(const std::vector<std::string>& program, const sigset_t& mask)
{
    std::vector<char*> arguments(program.size() + 1);
    for (size_t i = 0; i < program.size(); ++i)
        arguments[i] = const_cast<char*>(program[i].c_str());
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &mask);
    pid_t child = 0;
    errno = posix_spawnp(&child, arguments[0], nullptr, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (errno != 0) throw failedOn(program[0]);
    return child;
}

int statusOf(int waited)
{
    constexpr int signalled = 128;
    return WIFSIGNALED(waited) ? signalled + WTERMSIG(waited) : WEXITSTATUS(waited);
}

std::string quoted(const std::string& word)
{
    constexpr const char* plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./:";
    if (!word.empty() && word.find_first_not_of(plain) == std::string::npos) return word;
    std::string text = "'";
    for (const char c : word)
        text += c == '\'' ? "'\\''" : std::string(1, c);
    return text + '\'';
}

} // namespace

HeldSignals holdSignals()
{
    std::signal(SIGCHLD, SIG_DFL); // a caller that ignores it would take the child's status away
    HeldSignals signals{};
    sigemptyset(&signals.held);
    sigaddset(&signals.held, SIGCHLD);
    for (const int number : forwarded)
        sigaddset(&signals.held, number);
    sigprocmask(SIG_BLOCK, &signals.held, &signals.before);
    return signals;
}

int runProgram(const std::vector<std::string>& program, const HeldSignals& signals)
{
    const pid_t child = start(program, signals.before);
    while (true) {
        siginfo_t info{};
        if (sigwaitinfo(&signals.held, &info) < 0) continue;
        if (info.si_signo != SIGCHLD) {
            // What the terminal sends, the kernel sends to the child as well.
            if (info.si_code != SI_KERNEL) kill(child, info.si_signo);
            continue;
        }
        int waited = 0;
        if (waitpid(child, &waited, WNOHANG) == child) return statusOf(waited);
    }
}

std::string commandText(const std::vector<std::string>& command)
{
    std::string text;
    for (const std::string& word : command)
        text += (text.empty() ? "" : " ") + quoted(word);
    return text;
}

} // namespace platform
