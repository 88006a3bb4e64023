// How far a collection has come, by its trace log.

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace document
{

/// Follows the lines of a trace log; each run of the collector in it starts the account anew.
class Progress
{
public:
    /// \param line a line of the log without its line feed
    void read(std::string_view line);

    /// Whether the log has shown the start of a run.
    [[nodiscard]] bool started() const { return !system.empty(); }
    /// The exit status that the run's closing line tells; none while it runs.
    [[nodiscard]] std::optional<int> status() const { return exit; }
    /// What the run does at present.
    [[nodiscard]] std::string_view phase() const { return doing; }
    /// "9999-B2C*7ABCD12: storage enclosures, 3 s: 256 drives, 8 storage enclosures"
    [[nodiscard]] std::string line() const;

private:
    void start(std::string_view text);
    void enter(std::string_view function);
    void count(std::string_view code, std::string_view text);
    [[nodiscard]] std::string counts() const;
    [[nodiscard]] std::string outcome() const;

    std::string system;
    std::string_view doing;
    std::map<size_t, int64_t> counted; ///< by row of the table of what is counted
    std::optional<int> exit;
    bool minorErrors = false;
    std::string firstStamp;
    std::string lastStamp;
};

} // namespace document
