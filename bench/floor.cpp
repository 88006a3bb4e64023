// The least that a run can cost: the same calls of the client and the same system calls with the same bytes,
// in the same order, and nothing else. Each trace line is one open, one write, one mode change and one close;
// a log that is cut is read up to the cut and copied from there on; the document goes out in large writes;
// each command is one shell, and its output a file that is made, read and removed.
//
//     kord-bench-floor RECORDING DOCUMENT LOG OUT    replays the recording into LOG and the document into OUT
//     kord-bench-floor RECORDING                     makes the client's calls alone
//
// The first prints the nanoseconds that it needed to get at the recording and the document and to let go of
// them, which are no part of the floor; the second those that the client's calls took.

#include "player.h"
#include "recording.h"
#include "statistics.h"

#include <algorithm>
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

/// What is no part of the floor, so far.
double apart = 0;

template <typename Work>
void setApart(Work work)
{
    apart += timeOf(work);
}

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

/// Reads the log up to the cut, as the line is looked for that is kept first, and puts what follows in its
/// place.
void replayCut(const char* log, std::string_view bytes)
{
    static char block[largeWrite];
    Cut cut{};
    std::memcpy(&cut, bytes.data(), sizeof cut);
    const std::string kept = std::string(log) + "01";
    const int whole = open(log, O_RDONLY | O_CLOEXEC);
    for (uint64_t at = 0; at < cut.offset; at += sizeof block)
        if (read(whole, block, sizeof block) <= 0) break;
    const int piece = open(kept.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, logMode);
    auto offset = static_cast<off_t>(cut.offset);
    for (ssize_t length; (length = pread(whole, block, sizeof block, offset)) > 0; offset += length)
        put(piece, {block, static_cast<size_t>(length)});
    fchmod(piece, logMode);
    close(piece);
    std::rename(kept.c_str(), log);
    close(whole);
}

void runCommand(std::string_view command)
{
    if (std::system(std::string(command).c_str()) < 0) std::perror("kord-bench-floor");
}

/// Makes the file for the output, reads what is in it then, and removes it.
void readCommand(std::string_view bytes)
{
    static char block[largeWrite];
    const char* path = bytes.data();
    const int fd = open(path, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, logMode);
    fchmod(fd, logMode);
    runCommand(bytes.substr(bytes.find('\0') + 1));
    while (read(fd, block, sizeof block) > 0) {
    }
    close(fd);
    unlink(path);
}

void replayEntry(EntryKind kind, std::string_view bytes, const char* log, Player& client)
{
    switch (kind) {
    case EntryKind::traceLine:
        return replayTraceLine(log, bytes);
    case EntryKind::cut:
        return replayCut(log, bytes);
    case EntryKind::clientCall:
        return client.play(bytes);
    case EntryKind::command:
        return runCommand(bytes);
    case EntryKind::output:
        return readCommand(bytes);
    }
}

/// Hands every entry of the recording to `use`.
template <typename Use>
void forEachEntry(std::string_view recording, Use use)
{
    while (!recording.empty()) {
        EntryHead head{};
        std::memcpy(&head, recording.data(), sizeof head);
        use(head.kind, recording.substr(sizeof head, head.length));
        recording.remove_prefix(sizeof head + head.length);
    }
}

/// From one buffer, as who makes a document has it: its pages are not fetched from memory for every write.
void writeDocument(std::string_view document, const char* path)
{
    static char block[largeWrite];
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    while (!document.empty()) {
        const std::string_view piece = document.substr(0, largeWrite);
        setApart([piece] { std::memcpy(block, piece.data(), piece.size()); });
        put(fd, {block, piece.size()});
        document.remove_prefix(piece.size());
    }
    close(fd);
}

void letGo(std::string_view mapped)
{
    munmap(const_cast<char*>(mapped.data()), mapped.size());
}

void replayRun(const char* recordingPath, const char* documentPath, const char* log, const char* out)
{
    std::string_view recording;
    std::string_view document;
    setApart([&] {
        recording = mapFile(recordingPath);
        document = mapFile(documentPath);
    });
    Player client;
    forEachEntry(recording,
                 [&](EntryKind kind, std::string_view bytes) { replayEntry(kind, bytes, log, client); });
    writeDocument(document, out);
    setApart([&] {
        letGo(recording);
        letGo(document);
    });
    std::printf("%.0f\n", apart);
}

void replayClient(const char* recordingPath)
{
    const std::string_view recording = mapFile(recordingPath);
    Player client;
    const double cost = timeOf([&] {
        forEachEntry(recording, [&](EntryKind kind, std::string_view bytes) {
            if (kind == EntryKind::clientCall) client.play(bytes);
        });
    });
    std::printf("%.0f\n", cost);
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc == 2) {
        replayClient(argv[1]);
    } else if (argc == 5) {
        replayRun(argv[1], argv[2], argv[3], argv[4]);
    } else {
        std::fputs("usage: kord-bench-floor RECORDING [DOCUMENT LOG OUT]\n", stderr);
        return 2;
    }
    return 0;
}
