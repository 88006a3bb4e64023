// A command's output as lines. Every line feed counts a line; what follows the last one is no line, a leading
// one has no entry, and a NUL ends its line. The caller frees the first entry, then the array.

#include "fuzz.h"

#include "addUtilKord.h"

#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace
{

kordRec recordOfRun()
{
    kordRec record{};
    copyText(record.systemSerial, "FUZZING");
    copyText(record.trcfile, "fuzz.lines.log");
    return record;
}

std::string outputFile()
{
    return std::string(commandOutputFolder) + "/tmp.FUZZING";
}

void writeOutput(std::string_view output)
{
    const int fd = open(outputFile().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    fuzz::require(fd >= 0 && write(fd, output.data(), output.size()) == static_cast<ssize_t>(output.size()),
                  "the output can be written");
    close(fd);
}

/// The entries that an output must have.
std::vector<std::string> expectedLines(std::string_view output, size_t count)
{
    if (output.front() == '\n') output.remove_prefix(1);
    std::vector<std::string> lines;
    while (!output.empty() && lines.size() < count) {
        const std::string_view line = output.substr(0, output.find('\n'));
        lines.emplace_back(line.substr(0, line.find('\0')));
        output.remove_prefix(std::min(line.size() + 1, output.size()));
    }
    lines.resize(count);
    return lines;
}

void checkLines(std::string_view output, int32_t count, char** lines)
{
    fuzz::require(count == std::count(output.begin(), output.end(), '\n'), "as many lines as line feeds");
    const auto entries = std::max<size_t>(static_cast<size_t>(count), 1);
    const std::vector<std::string> expected = expectedLines(output, entries);
    for (size_t i = 0; i < entries; ++i) {
        fuzz::require(lines[i] >= lines[0] && lines[i] <= lines[0] + output.size(),
                      "one buffer holds all lines");
        fuzz::require(lines[i] == expected[i], "an entry is its line");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view output = fuzz::Input(data, size).bytes();
    writeOutput(output);
    const kordRec record = recordOfRun();
    int32_t count = -1;
    char** lines = nullptr;
    const int32_t rc = parseOutput(&record, outputFile().c_str(), &count, &lines);
    if (output.empty()) {
        fuzz::require(rc == 1 && count == 0 && lines == nullptr, "an empty output is a failure");
        unlink((std::string(traceFolder) + "/" + record.trcfile).c_str());
    } else {
        fuzz::require(rc == 0 && lines != nullptr, "an output has lines");
        checkLines(output, count, lines);
    }
    releaseOutput(lines);
    return 0;
}
