// Runs a case and says what differs from what it expects, and from what holds for every run.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "runCase.h"

namespace kordTest
{

struct Places {
    std::filesystem::path console;    ///< the launcher
    std::filesystem::path facilities; ///< the folder of facility files
    std::filesystem::path expected;   ///< the folder of expected documents
    std::filesystem::path documents;  ///< where to leave each run's document; empty: nowhere
    bool update = false;              ///< rewrite expected documents instead of comparing with them
};

/// Runs the case in a folder of its own. The result has a text for each difference; none: the run is right.
std::vector<std::string> checkRun(const RunCase& run, const Places& places);

/// Texts in expectations match as they stand, "{any}" stands for one character or more.
bool matches(const std::string& pattern, const std::string& text);

/// Empty, or where the two lists first differ.
std::string difference(const Texts& expected, const Texts& found);

/// Empty, or the first of the lines that is not found behind those before it.
std::string missingLine(const Texts& expected, const Texts& found);

/// Empty, or what keeps the lines from being found one right behind the other.
std::string missingStretch(const Texts& expected, const Texts& found);

} // namespace kordTest
