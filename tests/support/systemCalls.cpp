// The tracer: it follows the command's processes until one of them becomes the program, and from then on
// stops that one at each of its system calls. Every other process runs free.

#include "systemCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kordTest
{

namespace
{

constexpr int forbidden = 125; ///< the exit status of a child that may not be traced
constexpr int noFile = -1;

/// A call's name, and which of its arguments says what file it is on.
struct Known {
    uint64_t number;
    const char* name;
    int path = noFile;
    int descriptor = noFile;
};

constexpr Known knownCalls[] = {
#ifdef SYS_open
    {.number = SYS_open, .name = "open", .path = 0},
    {.number = SYS_stat, .name = "stat", .path = 0},
    {.number = SYS_lstat, .name = "lstat", .path = 0},
    {.number = SYS_access, .name = "access", .path = 0},
    {.number = SYS_unlink, .name = "unlink", .path = 0},
    {.number = SYS_rename, .name = "rename", .path = 0},
    {.number = SYS_chmod, .name = "chmod", .path = 0},
    {.number = SYS_fork, .name = "fork"},
    {.number = SYS_vfork, .name = "vfork"},
#endif
    {.number = SYS_openat, .name = "openat", .path = 1},
#ifdef SYS_newfstatat
    {.number = SYS_newfstatat, .name = "newfstatat", .path = 1, .descriptor = 0},
#else
    {.number = SYS_fstatat64, .name = "fstatat64", .path = 1, .descriptor = 0},
#endif
    {.number = SYS_statx, .name = "statx", .path = 1, .descriptor = 0},
    {.number = SYS_unlinkat, .name = "unlinkat", .path = 1},
    {.number = SYS_fchmodat, .name = "fchmodat", .path = 1},
    {.number = SYS_read, .name = "read", .descriptor = 0},
    {.number = SYS_pread64, .name = "pread64", .descriptor = 0},
    {.number = SYS_write, .name = "write", .descriptor = 0},
    {.number = SYS_close, .name = "close", .descriptor = 0},
    {.number = SYS_fstat, .name = "fstat", .descriptor = 0},
    {.number = SYS_fchmod, .name = "fchmod", .descriptor = 0},
    {.number = SYS_lseek, .name = "lseek", .descriptor = 0},
    {.number = SYS_fcntl, .name = "fcntl", .descriptor = 0},
    {.number = SYS_ioctl, .name = "ioctl", .descriptor = 0},
    {.number = SYS_flock, .name = "flock", .descriptor = 0},
    {.number = SYS_clone, .name = "clone"},
    {.number = SYS_clone3, .name = "clone3"},
};

/// A text in the traced process.
std::string textAt(pid_t process, uint64_t address)
{
    std::string text;
    while (text.size() < PATH_MAX) {
        errno = 0;
        const long word = ptrace(PTRACE_PEEKDATA, process, address + text.size(), nullptr);
        if (errno != 0) break;
        std::array<char, sizeof word> bytes{};
        std::memcpy(bytes.data(), &word, sizeof word);
        const auto end = std::find(bytes.begin(), bytes.end(), '\0');
        text.append(bytes.begin(), end);
        if (end != bytes.end()) break;
    }
    return text;
}

std::string linkText(const std::string& link)
{
    std::array<char, PATH_MAX> path{};
    const ssize_t length = readlink(link.c_str(), path.data(), path.size());
    return {path.data(), length > 0 ? static_cast<size_t>(length) : 0};
}

std::string processFile(pid_t process, const std::string& file)
{
    return "/proc/" + std::to_string(process) + '/' + file;
}

SystemCall describe(pid_t process, const __ptrace_syscall_info& info)
{
    const auto* known = std::ranges::find(knownCalls, info.entry.nr, &Known::number);
    if (known == std::end(knownCalls)) return {std::to_string(info.entry.nr), {}};
    SystemCall call{known->name, {}};
    if (known->path != noFile) call.file = textAt(process, info.entry.args[known->path]);
    if (call.file.empty() && known->descriptor != noFile) {
        const int descriptor = static_cast<int>(info.entry.args[known->descriptor]);
        call.file = linkText(processFile(process, "fd/" + std::to_string(descriptor)));
    }
    return call;
}

bool isProgram(pid_t process, const std::string& program)
{
    const std::string path = linkText(processFile(process, "exe"));
    return path.substr(path.rfind('/') + 1) == program;
}

[[noreturn]] void becomeTraced(const Command& command)
{
    std::vector<char*> arguments;
    for (const std::string& argument : command.arguments)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    umask(022);
    const bool ready = dup2(nothing, 0) == 0 && dup2(nothing, 1) == 1 && dup2(nothing, 2) == 2 &&
                       (command.folder.empty() || chdir(command.folder.c_str()) == 0);
    if (!ready || ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(forbidden);
    raise(SIGSTOP);
    execv(arguments[0], arguments.data());
    _exit(126);
}

struct Tracer {
    const std::string& program;
    pid_t traced = 0; ///< the program's process, once there is one
    bool seen = true; ///< the kernel tells what a stopped process calls
    CallRecord record;

    /// Lets a stopped process go on to where it is of interest again.
    void letGo(pid_t process, int signal) const
    {
        const bool free = traced != 0 && process != traced;
        const auto request = free ? PTRACE_DETACH : process == traced ? PTRACE_SYSCALL : PTRACE_CONT;
        ptrace(request, process, nullptr, static_cast<long>(signal));
    }

    void takeCall(pid_t process)
    {
        __ptrace_syscall_info info{};
        const long size = ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof info, &info);
        seen = seen && size > 0;
        if (size > 0 && info.op == PTRACE_SYSCALL_INFO_ENTRY) record.calls.push_back(describe(process, info));
    }

    void stopped(pid_t process, int status)
    {
        constexpr int callStop = SIGTRAP | 0x80;
        const int signal = WSTOPSIG(status);
        const int event = status >> 16;
        if (event == PTRACE_EVENT_EXEC && traced == 0 && isProgram(process, program)) traced = process;
        if (signal == callStop && process == traced) takeCall(process);
        // A stop of the tracing's own is no signal of the process's: the first of each process is a SIGSTOP.
        const bool own = event != 0 || signal == callStop || signal == SIGSTOP || signal == SIGTRAP;
        letGo(process, own ? 0 : signal);
    }

    /// Follows the command to its end.
    void follow(pid_t command)
    {
        while (true) {
            int status = 0;
            const pid_t process = waitpid(-1, &status, __WALL);
            if (process < 0 && errno == EINTR) continue;
            if (process < 0) return;
            if (WIFSTOPPED(status)) stopped(process, status);
            if (process != command || WIFSTOPPED(status)) continue;
            record.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            return;
        }
    }
};

} // namespace

std::optional<CallRecord> recordSystemCalls(const Command& command, const std::string& program)
{
    const pid_t child = fork();
    if (child == 0) becomeTraced(command);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) return std::nullopt;
    constexpr long options = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEEXEC | PTRACE_O_TRACEFORK |
                             PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE | PTRACE_O_EXITKILL;
    ptrace(PTRACE_SETOPTIONS, child, nullptr, options);
    Tracer tracer{.program = program, .record = {}};
    tracer.letGo(child, 0);
    tracer.follow(child);
    if (!tracer.seen) return std::nullopt;
    return std::move(tracer.record);
}

} // namespace kordTest
