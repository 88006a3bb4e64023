// How far a collection has come, by its trace log.

#pragma once

#include "document/trace.h"

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
    void read(const TraceLine& line);

    /// Whether the log has shown something of a run. The line that starts one may have been cut off the log.
    [[nodiscard]] bool started() const { return !firstStamp.empty(); }
    /// The exit status that the run's last line tells; none while it runs.
    [[nodiscard]] std::optional<int> status() const { return exit; }
    /// What the run does at present.
    [[nodiscard]] std::string_view phase() const { return doing; }
    /// "9999-B2C*7ABCD12: storage enclosures, 3 s: 256 drives, 8 storage enclosures"
    [[nodiscard]] std::string line() const;

private:
    void start(std::string_view startedSystem);
    void enter(const TraceLine& line);
    void count(const TraceLine& line);
    [[nodiscard]] std::string counts() const;
    [[nodiscard]] std::string outcome() const;
    [[nodiscard]] std::string time() const;

    std::string system; ///< empty when the log no longer tells
    std::string_view doing = "start";
    std::map<size_t, int64_t> counted; ///< by row of the table of what is counted
    std::optional<int> exit;
    bool collects = false; ///< the checks before the collection are over
    bool minorErrors = false;
    std::string firstStamp;
    std::string lastStamp;
};

} // namespace document
