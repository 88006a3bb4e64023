// The trace log's one writer: a stamped line of at most 79 bytes, the rest of a long message in lines of at
// most 80, not a byte lost, and the file open to everyone. The input's first line is the code, the rest the
// message.

#include "fuzz.h"

#include "addTrcKord.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr const char* name = "fuzz.trace.log";
constexpr std::string_view stamp = "dddddd dd:dd:dd ";

std::string takeLog()
{
    const std::string path = std::string(traceFolder) + "/" + name;
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {
    };
    fuzz::require(fd >= 0 && fstat(fd, &status) == 0, "a line makes a log");
    fuzz::require((status.st_mode & 07777) == 0666, "everyone may write to a log");
    std::string log(static_cast<size_t>(status.st_size), '\0');
    fuzz::require(read(fd, log.data(), log.size()) == status.st_size, "the log can be read");
    close(fd);
    unlink(path.c_str());
    return log;
}

/// What stands behind the stamp, the code and the colon.
std::string_view messageLines(std::string_view log, const std::string& code)
{
    fuzz::require(log.size() >= stamp.size(), "a line has a stamp");
    for (size_t i = 0; i < stamp.size(); ++i) {
        const bool fits = stamp[i] == 'd' ? log[i] >= '0' && log[i] <= '9' : log[i] == stamp[i];
        fuzz::require(fits, "a stamp is month, day, year and time");
    }
    log.remove_prefix(stamp.size());
    fuzz::require(log.starts_with(code + ": "), "the code follows the stamp");
    return log.substr(code.size() + 2);
}

void checkWrap(const std::string& log, const std::string& code, const std::string& message)
{
    std::string_view rest = messageLines(log, code);
    const bool wraps = code.size() + message.size() + 19 > 79;
    const size_t firstLength = code.size() < 61 ? 61 - code.size() : 0;
    size_t length = wraps ? std::min(firstLength, message.size()) : message.size();
    std::string joined;
    for (;; length = std::min<size_t>(80, message.size() - joined.size())) {
        fuzz::require(rest.size() > length && rest[length] == '\n', "a line ends where its length says");
        joined += rest.substr(0, length);
        rest.remove_prefix(length + 1);
        if (joined.size() >= message.size()) break;
    }
    fuzz::require(rest.empty(), "nothing follows the message");
    fuzz::require(joined == message, "the lines joined are the message");
    const size_t firstLine =
        log.size() - messageLines(log, code).size() + (wraps ? firstLength : message.size());
    fuzz::require(code.size() > 61 || firstLine <= 79, "the first line is within 79 bytes");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const std::string code = input.line();
    const std::string message = input.text();
    fuzz::require(addTrcKord(name, code.c_str(), message.c_str()) == 0, "tracing never fails");
    checkWrap(takeLog(), code, message);

    kordRec record{};
    std::copy_n(name, std::string_view(name).size(), record.trcfile);
    trace(&record, code.c_str(), "%s", message.c_str());
    checkWrap(takeLog(), code, message.substr(0, traceTextSize - 1));
    return 0;
}
