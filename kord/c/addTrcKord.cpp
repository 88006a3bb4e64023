#include "addTrcKord.h"

#include "addTextKord.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr off_t removeAbove = 3'010'000;
constexpr off_t cutAbove = 3'000'000;
constexpr int cutLine = 10'000; ///< the first line that a cut keeps
constexpr mode_t logMode = 0666;

constexpr size_t lineLength = 80;
constexpr size_t prefixLength = 19;    ///< stamp, blank, and ": " behind the code, with the newline
constexpr size_t firstTextLength = 61; ///< message bytes of a wrapped first line, less the code's length

struct Path {
    char text[400];
};

/// Where the log lies. Nearly every line goes to the same log as the one before, and shares its path.
const Path& logPath(const char* fileName)
{
    static Path last;
    constexpr size_t folderLength = std::string_view(traceFolder).size() + 1;
    const char* name = *fileName != '\0' ? fileName : "addTrcKord.log";
    if (strcmp(last.text + folderLength, name) != 0) formatText(last.text, "%s/%s", traceFolder, name);
    return last;
}

/// One of the two pieces that a cut splits a log into: "00" the lines it drops, "01" those it keeps.
Path pieceOf(const Path& log, const char* suffix)
{
    Path path;
    formatText(path.text, "%s%s", log.text, suffix);
    return path;
}

void writeAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
}

/// Gathers a wrapped line's pieces so that a line of ordinary length is one write.
struct LineBuffer {
    int fd = -1;
    size_t used = 0;
    char bytes[1024];

    void add(std::string_view text)
    {
        while (!text.empty()) {
            if (used == sizeof bytes) flush();
            const size_t part = std::min(text.size(), sizeof bytes - used);
            memmove(bytes + used, text.data(), part); // a bounded memcpy is made in place, slowly
            used += part;
            text.remove_prefix(part);
        }
    }

    void flush()
    {
        writeAll(fd, {bytes, used});
        used = 0;
    }
};

/// The time of a line. Most lines fall into the same second as the one before, and share its text.
struct Stamp {
    time_t second = -2; ///< no time yet: a clock that fails gives -1
    size_t length = 0;
    char text[32] = "";
};

/// What a line starts with.
std::string_view stampNow()
{
    static Stamp last;
    const time_t now = time(nullptr);
    if (now != last.second) {
        tm local{};
        localtime_r(&now, &local);
        last.length = strftime(last.text, sizeof last.text, "%m%d%y %H:%M:%S ", &local);
        last.second = now;
    }
    return {last.text, last.length};
}

/// Nearly every line is as short as this.
void writeShortLine(int fd, std::string_view code, std::string_view message)
{
    char line[2 * lineLength];
    TextRoom room(line);
    room.add(stampNow());
    room.add(code);
    room.add(": ");
    room.add(message);
    room.add("\n");
    writeAll(fd, {line, room.at});
}

void writeWrappedLine(int fd, std::string_view code, std::string_view message)
{
    const size_t firstRoom = code.size() < firstTextLength ? firstTextLength - code.size() : 0;
    std::string_view rest = message;
    LineBuffer line;
    line.fd = fd;
    const auto addPart = [&](size_t length) {
        line.add(rest.substr(0, length));
        line.add("\n");
        rest.remove_prefix(std::min(length, rest.size()));
    };

    line.add(stampNow());
    line.add(code);
    line.add(": ");
    addPart(firstRoom);
    while (!rest.empty())
        addPart(lineLength);
    line.flush();
}

void writeLine(int fd, std::string_view code, std::string_view message)
{
    const bool wraps = code.size() + message.size() + prefixLength > lineLength - 1;
    wraps ? writeWrappedLine(fd, code, message) : writeShortLine(fd, code, message);
}

constexpr int safely = O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

int openLog(const char* path, int flags = 0)
{
    return open(path, O_WRONLY | O_APPEND | O_CREAT | safely | flags, logMode);
}

/// Where line `number` (1-based) starts in the file, or -1 when the file has fewer lines.
off_t startOfLine(int fd, int number)
{
    char block[65536];
    off_t offset = 0;
    int line = 1;
    for (ssize_t length; (length = read(fd, block, sizeof block)) > 0; offset += length) {
        for (const char* at = block;
             (at = static_cast<const char*>(memchr(at, '\n', static_cast<size_t>(block + length - at))));) {
            ++at;
            if (++line == number) return offset + (at - block);
        }
    }
    return -1;
}

void copyRest(int from, off_t offset, int to)
{
    char block[65536];
    for (ssize_t length; (length = pread(from, block, sizeof block, offset)) > 0; offset += length) {
        writeAll(to, {block, static_cast<size_t>(length)});
    }
}

/// Puts what follows `offset` in the log in the log's place, by way of a new file: a write that fails leaves
/// the whole log where it was.
void keepFrom(const Path& logFile, int log, off_t offset, off_t size)
{
    const Path kept = pieceOf(logFile, "01");
    unlink(kept.text);
    const int piece = open(kept.text, O_WRONLY | O_CREAT | O_EXCL | safely, logMode);
    if (piece < 0) return;
    copyRest(log, offset, piece);
    fchmod(piece, logMode);
    const bool complete = lseek(piece, 0, SEEK_CUR) == size - offset;
    const bool stored = close(piece) == 0; // some file systems learn only now that they are full
    if (!complete || !stored || rename(kept.text, logFile.text) != 0) unlink(kept.text);
}

/// Drops the log's oldest 9,999 lines; a log without a line 10,000 stays as it is.
void cutLog(const Path& logFile)
{
    const int log = open(logFile.text, O_RDONLY | safely);
    if (log < 0) return;
    struct stat status {
    };
    if (fstat(log, &status) == 0 && isLog(status.st_mode, status.st_nlink)) {
        const off_t start = startOfLine(log, cutLine);
        if (start >= 0 && start < status.st_size) keepFrom(logFile, log, start, status.st_size);
    }
    close(log);
    unlink(pieceOf(logFile, "00").text);
}

/// Removes the log, with the wrapper's rights where ours do not suffice, and starts it anew.
void removeLog(const Path& logFile)
{
    char command[500];
    formatText(command, removeLogCommand, logFile.text);
    [[maybe_unused]] const int ignored = system(command);
    unlink(logFile.text);
    const int log = openLog(logFile.text, O_EXCL);
    if (log < 0) return;
    fchmod(log, logMode);
    close(log);
}

/// One line, in the log that has it for the moment: the file is opened anew for every line.
void appendLine(const char* fileName, std::string_view code, std::string_view message)
{
    const Path& logFile = logPath(fileName);
    const int log = openLog(logFile.text);
    if (log < 0) return;

    // Only what is needed is asked for: a file whose times were looked at pays for exact ones at its next
    // write.
    struct statx status;
    constexpr unsigned wanted = STATX_TYPE | STATX_MODE | STATX_NLINK | STATX_SIZE;
    const bool isOurs =
        statx(log, "", AT_EMPTY_PATH, wanted, &status) == 0 && isLog(status.stx_mode, status.stx_nlink);
    if (isOurs) {
        writeLine(log, code, message);
        if ((status.stx_mode & 07777) != logMode) fchmod(log, logMode);
    }
    close(log);

    const off_t size = isOurs ? static_cast<off_t>(status.stx_size) : 0;
    if (size > removeAbove)
        removeLog(logFile);
    else if (size > cutAbove)
        cutLog(logFile);
}

} // namespace

int32_t addTrcKord(const char* fileName, const char* code, const char* message)
{
    appendLine(textOrEmpty(fileName), textOrEmpty(code), textOrEmpty(message));
    return 0;
}

void trace(const kordRec* pKordRec, const char* code, const char* format, ...)
{
    char text[traceTextSize];
    va_list arguments;
    va_start(arguments, format);
    const std::string_view message = formatArguments(text, format, arguments);
    va_end(arguments);
    appendLine(pKordRec->trcfile, textOrEmpty(code), message);
}
