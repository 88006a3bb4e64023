#include "addUtilKord.h"

#include "addTableKord.h"
#include "addTrcKord.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr size_t commandSize = 4096;
constexpr int notRun = -1;
constexpr size_t composedSize = 30; ///< of a composed name or MTMS

constexpr const char* userCommand = "whoami";

constexpr TraceText emptyOutputLine = {"0062", "empty file %d, %d "};
constexpr TraceText noOutputLine = {"0063", " fd  %d errno="};
constexpr TraceText unreadOutputLine = {"0064", "read  errno="};
constexpr TraceText commandFailedLine = {"0066", "excute cmd rc=%d, errno=%d "};
constexpr TraceText uselessOutputLine = {"0067", "parse cmd rc=%d "};
constexpr TraceText userLine = {"0068", "rc=%d, xargc=%d, User=%s "};
constexpr TraceText noUserLine = {"0068", "rc=%d, xargc=%d, %s "};

/// Makes the command's output file anew: a file or link that lies in the way goes. -1 when it cannot be made.
int createOutputFile(const char* fileName)
{
    constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    int fd = open(fileName, flags, 0777);
    if (fd < 0 && errno == EEXIST && unlink(fileName) == 0) fd = open(fileName, flags, 0777);
    if (fd < 0) return fd;
    fchmod(fd, 0666);
    errno = 0;
    return fd;
}

/// Whether the command redirects its standard output itself; "2>" does not.
bool redirectsOutput(const char* command)
{
    for (const char* at = command; *at != '\0'; ++at) {
        if (*at == '>' && at != command && (at[-1] == ' ' || at[-1] == '1')) return true;
    }
    return false;
}

/// Reads `size` bytes, or as many as there are.
ssize_t readAll(int fd, char* text, size_t size)
{
    size_t used = 0;
    while (used < size) {
        const ssize_t length = read(fd, text + used, size - used);
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) return -1;
        if (length == 0) break;
        used += static_cast<size_t>(length);
    }
    return static_cast<ssize_t>(used);
}

/// The file's text, terminated, and its size; null when it cannot be read.
char* readFile(const kordRec* pKordRec, int fd, size_t& size)
{
    char* text = static_cast<char*>(malloc(size + 1));
    if (text == nullptr) return nullptr;
    const ssize_t length = readAll(fd, text, size);
    if (length < 0) {
        trace(pKordRec, unreadOutputLine);
        free(text);
        return nullptr;
    }
    size = static_cast<size_t>(length);
    text[size] = '\0';
    return text;
}

/// Points the entries at the lines, all terminated in place. An empty first line has no entry of its own: the
/// text moves one place down, so that the first entry is always the start of the buffer.
void splitLines(char* text, size_t size, char** lines, size_t count)
{
    char* end = text + size;
    std::fill_n(lines, count, end);
    lines[0] = text;
    if (*text == '\n') memmove(text, text + 1, static_cast<size_t>(end-- - text));

    char* line = text;
    for (size_t entry = 0; entry < count && line < end; ++entry) {
        lines[entry] = line;
        char* newline = static_cast<char*>(memchr(line, '\n', static_cast<size_t>(end - line)));
        if (newline == nullptr) return;
        *newline = '\0';
        line = newline + 1;
    }
}

/// The name stands in the line as a number.
int32_t failOnEmpty(const kordRec* pKordRec, const char* fileName, off_t size)
{
    trace(pKordRec, emptyOutputLine, static_cast<int32_t>(reinterpret_cast<intptr_t>(fileName)),
          static_cast<int32_t>(size));
    return 1;
}

/// What `parseOutput` does, of the open file.
int32_t parseFile(const kordRec* pKordRec, const char* fileName, int fd, int32_t* xargc, char*** xargv)
{
    struct stat status {
    };
    if (fstat(fd, &status) != 0 || status.st_size == 0) {
        return failOnEmpty(pKordRec, fileName, status.st_size);
    }
    size_t size = static_cast<size_t>(status.st_size);
    char* text = readFile(pKordRec, fd, size);
    if (text == nullptr) return 1;

    const size_t newlines = static_cast<size_t>(std::count(text, text + size, '\n'));
    const size_t entries = std::max<size_t>(newlines, 1);
    char** starts = static_cast<char**>(malloc(entries * sizeof *starts));
    if (starts == nullptr) {
        free(text);
        return 1;
    }
    splitLines(text, size, starts, entries);
    *xargc = static_cast<int32_t>(newlines);
    *xargv = starts;
    return 0;
}

int32_t cut(const char* text, size_t from, size_t length, std::span<char> part)
{
    copyText(part, strnlen(text, from) == from ? text + from : "", length);
    return 0;
}

/// As much of the caller's field as a composed text takes.
std::span<char> composedField(std::span<char> field)
{
    return field.first(std::min(field.size(), composedSize));
}

int32_t convert(std::span<char> output, const char* input, char from, char to)
{
    copyText(output, input);
    std::replace(output.data(), output.data() + strlen(output.data()), from, to);
    return 0;
}

// --- What the tables tell

constexpr ToldCommand commands[] = {
    {.function = "getLoginUserName", .command = userCommand},
    {.function = "addTrcKord", .command = removeLogCommand},
};

constexpr ToldLine lines[] = {
    {.function = "parseOutput",
     .line = emptyOutputLine,
     .explanation =
         {.meaning = "a console command printed nothing: the name of its output as a number, and its size",
          .cause =
              "the command has nothing to say, as a search that finds nothing, or its output could not be "
              "written, or went to another file that was put at the name tmp.SERIAL meanwhile",
          .advice = "see which command by the next line with another code, run it by hand, and see that "
                    "/var/brisk/log takes files"}},
    {.function = "parseOutput",
     .line = noOutputLine,
     .explanation =
         {.meaning = "a file with a command's output could not be opened by its name: -1",
          .cause = "the file is a link or may not be read; a run reads the file that it made itself and does "
                   "not write this line",
          .advice = "see what lies at the name tmp.SERIAL in /var/brisk/log"}},
    {.function = "parseOutput",
     .line = unreadOutputLine,
     .explanation = {.meaning = "a command's output could not be read",
                     .cause = "the disk of /var/brisk/log has errors",
                     .advice = "see the system log for errors of the disk"}},
    {.function = "excuteCommand",
     .line = commandFailedLine,
     .explanation =
         {.meaning =
              "a console command ended with a status other than 0, or could not be run (-1): the status and "
              "errno",
          .cause = "127: the program is not there; 126: it may not be run; 1 or 2: its output could not be "
                   "written to /var/brisk/log, or it failed itself",
          .advice = "see which command by the next line with another code, and run it by hand as the "
                    "collector's user"}},
    {.function = "excuteCommand",
     .line = uselessOutputLine,
     .explanation = {.meaning = "a command ended well, but its output is of no use",
                     .cause = "what the line before it tells",
                     .advice = "see the line 0062 or 0064 before it"}},
    {.function = "getLoginUserName", .line = userLine, .explanation = {.meaning = "who runs the collector"}},
    {.function = "getLoginUserName",
     .line = noUserLine,
     .explanation =
         {.meaning = "who runs the collector could not be learned: whoami's status and how many lines; it "
                     "goes on as "
                     "briskroot, by the wrapper",
          .cause = "whoami failed: the user has no name, or /var/brisk/log takes no file",
          .advice = "run whoami by hand in the automation's environment, and see that /var/brisk/log can be "
                    "written"}},
};

} // namespace

const ToldLines addUtilLines = {.module = "addUtilKord", .lines = lines, .commands = commands};

int32_t excuteCommand(const kordRec* pKordRec, const char* Cmd, int32_t* xargc, char*** xargv)
{
    const bool wanted = xargc != nullptr && xargv != nullptr;
    char command[commandSize];
    char fileName[50] = "";
    const char* redirection = "";
    const char* nowhere = "";
    int output = -1;

    errno = 0;
    if (wanted) {
        *xargc = 0;
        *xargv = nullptr;
        formatText(fileName, "%s/tmp.%s", commandOutputFolder, pKordRec->systemSerial);
        // What lies at that name and does not go is not ours: as a folder's name it takes no output.
        output = createOutputFile(fileName);
        if (output < 0) nowhere = "/";
        redirection = " >";
    } else if (!redirectsOutput(Cmd)) {
        redirection = " >/dev/null";
    }

    const bool fits = strlen(Cmd) + strlen(redirection) + strlen(fileName) + strlen(nowhere) < sizeof command;
    formatText(command, "%s%s%s%s", Cmd, redirection, fileName, nowhere);
    const int32_t rc = fits ? system(command) >> 8 : notRun;
    const int error = errno;

    if (rc != 0) trace(pKordRec, commandFailedLine, rc, error);
    const bool hasOutput = wanted && rc == 0;
    // What others may have put at the name meanwhile is not what the command printed.
    const int32_t result = hasOutput ? parseFile(pKordRec, fileName, output, xargc, xargv) : 1;
    if (output >= 0) close(output);
    if (wanted) unlink(fileName);
    if (hasOutput && result != 0) trace(pKordRec, uselessOutputLine, result);
    return result;
}

int32_t parseOutput(const kordRec* pKordRec, const char* Filename, int32_t* xargc, char*** xargv)
{
    *xargc = 0;
    *xargv = nullptr;

    struct stat status {
    };
    if (stat(Filename, &status) != 0 || status.st_size == 0) {
        return failOnEmpty(pKordRec, Filename, status.st_size);
    }
    const int fd = open(Filename, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
        trace(pKordRec, noOutputLine, fd);
        return 1;
    }
    const int32_t result = parseFile(pKordRec, Filename, fd, xargc, xargv);
    close(fd);
    return result;
}

void releaseOutput(char** xargv)
{
    if (xargv == nullptr) return;
    free(xargv[0]);
    free(static_cast<void*>(xargv));
}

bool isNameOfLog(const char* fileName)
{
    char path[100];
    struct stat status {
    };
    formatText(path, "%s/%s", traceFolder, fileName);
    return lstat(path, &status) != 0 || isLog(status.st_mode, status.st_nlink);
}

void spareOddLog(std::span<char> command, const char* fileName)
{
    constexpr const char* redirection = ">>";
    char* place = isNameOfLog(fileName) ? nullptr : strstr(command.data(), redirection);
    if (place == nullptr) return;
    for (char* next; (next = strstr(place + 1, redirection)) != nullptr;)
        place = next;
    place[strlen(redirection)] = '\0';
    appendText(command, "/dev/null");
}

int32_t getLoginUserName(kordRec* pKordRec)
{
    int32_t xargc = 0;
    char** xargv = nullptr;
    const int32_t rc = excuteCommand(pKordRec, userCommand, &xargc, &xargv);
    const bool known = rc == 0 && xargc > 0;

    copyText(pKordRec->loginUserName, known ? xargv[0] : "briskroot");
    if (known)
        trace(pKordRec, userLine, rc, xargc, pKordRec->loginUserName);
    else
        trace(pKordRec, noUserLine, rc, xargc, "getLoginUserName");
    releaseOutput(xargv);
    return known ? 0 : 1;
}

int32_t get_StorageFacilitySystem_serial(const char* managedSystemMTMS, std::span<char> serial)
{
    return cut(managedSystemMTMS, 9, 7, serial);
}

int32_t get_StorageFacilitySystem_modeltype(const char* managedSystemMTMS, std::span<char> modeltype)
{
    return cut(managedSystemMTMS, 0, 8, modeltype);
}

int32_t getStorageEnclosure_typemodel(const char* enclosureMTMS_stor, std::span<char> enclosureTyemodel)
{
    return cut(enclosureMTMS_stor, 0, 8, enclosureTyemodel);
}

int32_t getStorageEnclosure_serial(const char* enclosureMTMS_stor, std::span<char> enclosureSerial)
{
    return cut(enclosureMTMS_stor, 9, 8, enclosureSerial);
}

int32_t convertStringFromDotToDash(std::span<char> output, const char* input)
{
    return convert(output, input, '.', '-');
}

int32_t convertStringFromDotToMM(std::span<char> output, const char* input)
{
    return convert(output, input, '.', '*');
}

int32_t convertStringFromMMToDash(std::span<char> output, const char* input)
{
    return convert(output, input, '*', '-');
}

int32_t removeInvalidCharInString(char* tmp)
{
    std::replace_if(
        tmp, tmp + strlen(tmp), [](char c) { return c == '<' || c == '>'; }, '-');
    return 0;
}

// --- What no collector calls. They belong to the interface: a run takes the facility's MTMS whole, of a
// system's only the serial and the type-model, and learns the names and MTMS of partitions from the console
// rather than compose them.

int32_t get_StorageFacility_type(const char* storageFacilityMTMS, std::span<char> type)
{
    return cut(storageFacilityMTMS, 0, 4, type);
}

int32_t get_StorageFacility_model(const char* storageFacilityMTMS, std::span<char> model)
{
    return cut(storageFacilityMTMS, 5, 3, model);
}

int32_t get_StorageFacility_serial(const char* storageFacilityMTMS, std::span<char> serial)
{
    return cut(storageFacilityMTMS, 9, 8, serial);
}

int32_t get_StorageFacilitySystem_type(const char* managedSystemMTMS, std::span<char> type)
{
    return get_StorageFacility_type(managedSystemMTMS, type);
}

int32_t get_StorageFacilitySystem_model(const char* managedSystemMTMS, std::span<char> model)
{
    return get_StorageFacility_model(managedSystemMTMS, model);
}

int32_t convertToStorageFacilityImageMTMS(std::span<char> storageFacilityImageMTMS,
                                          const char* StorageFacilityImageID)
{
    char typemodel[9];
    char serial[8];
    cut(StorageFacilityImageID, 0, 8, typemodel);
    cut(StorageFacilityImageID, 9, 7, serial);
    formatText(storageFacilityImageMTMS, "%s*%s", typemodel, serial);
    return 0;
}

void createStorageFacilityImageMTMS(const char* storageFacilityMTMS, const char* hslLumenPoolId,
                                    std::span<char> storageFacilityImageMTMS)
{
    const size_t length = strlen(storageFacilityMTMS);
    formatText(composedField(storageFacilityImageMTMS), "%.*s%s",
               static_cast<int>(length - (length > 0 ? 1 : 0)), storageFacilityMTMS, hslLumenPoolId);
}

void createLparName(const kordRec* pKordRec, const char* hslLumenPoolId, std::span<char> lparName)
{
    char serverNumber[12];
    formatText(serverNumber, "%d", pKordRec->storageFacilityServerNumber);
    formatText(composedField(lparName), "SF%sTarn%c%s", pKordRec->storageFacilityMTMS, serverNumber[0],
               hslLumenPoolId);
}
