// One run on the simulated console, and what it left: its journal, its trace log, its document.

#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "process.h"

namespace kordTest
{

struct Launch {
    std::filesystem::path console;  ///< the launcher
    std::filesystem::path facility; ///< the facility file
    std::filesystem::path root;     ///< holds the console's file tree
    std::filesystem::path folder;   ///< the program's working folder
    std::optional<std::string> user;
    std::vector<std::string> program; ///< the program on the console, then its arguments
    std::chrono::milliseconds limit{60'000};
};

Outcome runOnConsole(const Launch& launch);

/// A file's bytes; nothing when it cannot be read.
std::optional<std::string> readFile(const std::filesystem::path& file);

/// The lines of a text without their line feeds; what follows the last line feed is a line when not empty.
std::vector<std::string> splitLines(const std::string& text);

/// Where a run for this MTMS leaves its trace log and its document.
std::filesystem::path traceFile(const std::filesystem::path& root, const std::string& mtms);
std::filesystem::path documentFile(const std::filesystem::path& root, const std::string& mtms);

/// The journal's lines in order; none when there is no journal.
std::vector<nlohmann::json> readJournal(const std::filesystem::path& root);

/// A journal line in short, as cases write it; see tests/runs/README.md.
std::string journalText(const nlohmann::json& line);

/// A program and its arguments, those in JSON's quotes that are more than a plain word.
std::string commandText(const std::vector<std::string>& command);

/// A line of the trace log: its stamp ("071505 13:04:59"), its text ("0004: start local session ") and the
/// lines that follow without a stamp: a wrapped text's rest, or the rest of a text that holds a line feed.
struct TraceLine {
    std::string stamp;
    std::string text;
    std::vector<std::string> further;

    /// The text in one piece.
    [[nodiscard]] std::string joined() const;
};

/// The trace log's stamped lines. What lay in the log before its first stamped line is left out.
std::vector<TraceLine> readTrace(const std::filesystem::path& file);

/// A document with its timestamp replaced by "0.0", so that two runs' documents compare.
std::string withFixedTimestamp(const std::string& document);

} // namespace kordTest
