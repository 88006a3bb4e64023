// The least that a run can cost: the same system calls with the same bytes, and nothing else. Each trace line
// is one open, one write, one mode change and one close; the document goes out in large writes; each command
// is one shell.
//
//     kord-bench-floor RECORDING DOCUMENT LOG OUT
//
// Replays the recording into LOG and the document into OUT. Prints the nanoseconds that it needed to get at
// the recording and the document, which are no part of the floor.

#include "recording.h"
#include "statistics.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace bench;

constexpr mode_t logMode = 0666;
constexpr size_t largeWrite = 65536;

std::string_view mapFile(const char* path)
{
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    struct stat status {
    };
    if (fd < 0 || fstat(fd, &status) != 0 || status.st_size == 0) {
        std::fprintf(stderr, "kord-bench-floor: nothing to replay in %s\n", path);
        std::exit(2);
    }
    const auto size = static_cast<size_t>(status.st_size);
    const void* bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
    close(fd);
    if (bytes == MAP_FAILED) std::exit(2);
    return {static_cast<const char*>(bytes), size};
}

void put(int fd, std::string_view bytes)
{
    if (write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size())) return;
    std::perror("kord-bench-floor");
    std::exit(2);
}

void replayTraceLine(const char* log, std::string_view bytes)
{
    const int fd = open(log, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, logMode);
    put(fd, bytes);
    fchmod(fd, logMode);
    close(fd);
}

void replay(std::string_view recording, const char* log)
{
    while (!recording.empty()) {
        EntryHead head{};
        std::memcpy(&head, recording.data(), sizeof head);
        const std::string_view bytes = recording.substr(sizeof head, head.length);
        recording.remove_prefix(sizeof head + head.length);
        if (head.kind == EntryKind::traceLine)
            replayTraceLine(log, bytes);
        else [[maybe_unused]]
            const int ignored = std::system(std::string(bytes).c_str());
    }
}

void writeDocument(std::string_view document, const char* path)
{
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    for (; !document.empty(); document.remove_prefix(std::min(document.size(), largeWrite)))
        put(fd, document.substr(0, largeWrite));
    close(fd);
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 5) {
        std::fputs("usage: kord-bench-floor RECORDING DOCUMENT LOG OUT\n", stderr);
        return 2;
    }
    const double start = ownTime();
    const std::string_view recording = mapFile(argv[1]);
    const std::string_view document = mapFile(argv[2]);
    std::printf("%.0f\n", ownTime() - start);
    std::fflush(stdout);

    replay(recording, argv[3]);
    writeDocument(document, argv[4]);
    return 0;
}
