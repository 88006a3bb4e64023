// What the unit tests share: a run record for a test and the files that the modules write.

#pragma once

#include "descriptors.h"
#include "kord.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace unit
{

inline std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::string& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
}

inline mode_t modeOf(const std::string& path)
{
    struct stat status {
    };
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

/// The lines of the simulated console's journal that `act` adds.
template <typename Act>
std::string journaled(Act act)
{
    const char* const root = getenv("KORD_CONSOLE_ROOT");
    if (root == nullptr) throw std::runtime_error("these tests run on the simulated console");
    const std::string journal = std::string(root) + "/journal.jsonl";
    const size_t before = readFile(journal).size();
    act();
    return readFile(journal).substr(before);
}

inline std::string logPath(const std::string& name)
{
    return std::string(traceFolder) + "/" + name;
}

constexpr size_t stampLength = 16; ///< "mmddyy HH:MM:SS "

/// A record as `main` leaves it for the system 9999-B2C*7ABCD12, with a fresh trace log.
inline kordRec freshRecord()
{
    kordRec record{};
    copyText(record.trcfile, "kord.unit.log");
    copyText(record.systemSerial, "7ABCD12");
    copyText(record.loginUserName, "root");
    copyText(record.inputSystemMTMS, "9999-B2C*7ABCD12");
    copyText(record.managedSystemMTMS, "9999-B2C*7ABCD12");
    copyText(record.kordpManagedSystemMTMS, "9999-B2C-7ABCD12");
    copyText(record.storageFacilityMTMS, "9999-A01*00XY1230");
    copyText(record.kordpStorageFacilityMTMS, "9999-A01-00XY1230");
    std::filesystem::remove(logPath(record.trcfile));
    return record;
}

/// The log's lines without their stamps. Only for lines that are not wrapped.
inline std::vector<std::string> traceOf(const kordRec& record)
{
    std::vector<std::string> lines;
    std::istringstream text(readFile(logPath(record.trcfile)));
    for (std::string line; std::getline(text, line);)
        lines.push_back(line.substr(std::min(stampLength, line.size())));
    return lines;
}

/// What `write` adds to a document.
template <typename Write>
std::string written(kordRec& record, Write write)
{
    char* text = nullptr;
    size_t size = 0;
    record.inp = open_memstream(&text, &size);
    write(&record);
    fclose(record.inp);
    record.inp = nullptr;
    std::string result(text, size);
    free(text);
    return result;
}

} // namespace unit
