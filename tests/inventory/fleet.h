// A small fleet for tests: documents in files, and what a database holds of them.

#pragma once

#include "tempFolder.h"
#include "writing.h"

#include "process.h"

#include <filesystem>
#include <string>
#include <vector>

namespace kordTest
{

/// A system's document of one night: an enclosure with these drives, both partitions.
struct Night {
    std::string system = "SYSTEM-1";
    int day = 0; ///< from 1 November 2026 on
    std::vector<Drive> drives = {};
    bool failed = false; ///< the collection ended with the last drive
};

std::string documentOf(const Night& night);

/// The bytes behind what begins its list of partitions are lost.
std::string cutOff(const std::string& document);

class Fleet
{
public:
    /// Writes a document into the fleet's folder.
    std::filesystem::path write(const std::string& name, const std::string& text) const;
    [[nodiscard]] std::filesystem::path in(const std::string& name) const { return folder.path() / name; }
    [[nodiscard]] std::filesystem::path database() const { return in("fleet.db"); }

    /// kord with these arguments.
    static Outcome kord(std::vector<std::string> arguments,
                        std::chrono::milliseconds limit = std::chrono::seconds(60));
    /// kord import of these files; what it prints.
    [[nodiscard]] Outcome import(std::vector<std::string> files) const;

    /// What a query answers: a line for each row, its values with | between them.
    std::vector<std::string> ask(const std::string& sql) const;

private:
    TempFolder folder;
};

} // namespace kordTest
