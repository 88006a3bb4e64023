// A whole run as data: what the console and its file tree are like, how the collector is called, and what it
// must leave. README.md describes the JSON form.

#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace kordTest
{

using Texts = std::vector<std::string>;

/// A file of `count` numbered lines that holds `bytes` bytes: a log that has grown.
struct NumberedLines {
    int count = 0;
    int bytes = 0;

    [[nodiscard]] std::string line(int number) const; ///< without its line feed; the first is 1
};

/// A file before the run (setup) or after it (files).
struct FileState {
    std::string file; ///< relative to the run's root
    bool absent = false;
    bool folder = false;
    std::optional<std::string> content;
    std::optional<std::string> contains;
    std::optional<std::string> symlink;
    std::optional<NumberedLines> numbered;
    int firstNumber = 1; ///< of the numbered lines that are left
    std::optional<int> mode;
};

struct Event {
    std::string code;
    std::string text;
};

struct DocumentState {
    std::optional<bool> absent;
    std::optional<bool> stylesheet;
    std::optional<std::string> exact;
    Texts lines;
    Texts lacks;
    std::optional<size_t> outlineDepth;
    Texts outline;
    int missingClosings = 0;
    int extraClosings = 0;
};

struct RunCase { // NOLINT(bugprone-exception-escape): JSON can be moved
    std::string name;
    std::string why;
    std::string broken; ///< not empty: the case file itself is at fault, and this is how

    std::string facility;
    nlohmann::json patch;
    nlohmann::json faults;
    Texts arguments;
    std::optional<std::string> user;
    std::vector<FileState> setup;
    Texts missing;

    int status = 3;
    std::string output;
    Texts error;
    bool wrapped = false;
    std::vector<int> openSessions;
    std::optional<Texts> trace;
    Texts traceHas;
    Texts traceLacks;
    Texts traceRaw;
    std::optional<std::string> lastTrace;
    std::vector<Event> events;
    std::optional<Texts> journal;
    Texts journalHas;
    Texts journalLacks;
    std::optional<Texts> programs;
    std::optional<Texts> calls;
    DocumentState document;
    std::vector<FileState> files;
    std::optional<Texts> left;
};

/// For test failures: the case's name.
std::ostream& operator<<(std::ostream& stream, const RunCase& run);

/// The cases of one file's JSON as plain ones: tables and variants spread out, parameters, fragments
/// ("@name") and repetitions ("{x*500}") put in. Throws a text that names the place when the form is not
/// kept: a name without a value and a value that nothing refers to are errors.
std::vector<nlohmann::json> expandedCases(const nlohmann::json& file, const nlohmann::json& fragments,
                                          const std::string& prefix);

/// The same, read. An unknown key is an error.
std::vector<RunCase> readCases(const nlohmann::json& file, const nlohmann::json& fragments,
                               const std::string& prefix);

/// The plain cases of a folder's files, or of the one of that name, as JSON text.
std::string expandedFolder(const std::filesystem::path& folder, const std::filesystem::path& fragments,
                           const std::string& only);

/// The cases of all files of a folder. A file that cannot be read gives one case that says why.
std::vector<RunCase> loadCases(const std::filesystem::path& folder, const std::filesystem::path& fragments);

} // namespace kordTest
