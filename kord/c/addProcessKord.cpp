#include "addProcessKord.h"

#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

void takeSignals()
{
    struct sigaction action {
    };
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_DFL) continue;
        action.sa_handler = [](int) {};
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
    sigaction(SIGCHLD, nullptr, &action);
    if (action.sa_handler != SIG_IGN) return;
    action.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &action, nullptr);
}

void holdStandardStreams()
{
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(fd, F_GETFD) < 0) open("/dev/null", O_RDWR);
    }
}
