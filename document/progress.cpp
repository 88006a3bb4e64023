#include "document/progress.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace document
{

namespace
{

/// What a run does from a trace line on.
struct Phase {
    std::string_view code;
    std::string_view text; ///< what the line's text begins with
    std::string_view doing;
    bool collects = false; ///< the checks before the collection are over
};

// The collector of the racks traces the name of that of the storage enclosures; its first query tells it.
// Ends of lists tell nothing: a collector that fails closes them, too.
constexpr Phase phases[] = {
    {.code = "0004", .text = "start ", .doing = "sessions"},
    {.code = "0107", .text = "", .doing = "system checks"},
    {.code = "0108", .text = "", .doing = "system checks"},
    {.code = "0109", .text = "", .doing = "system checks"},
    {.code = "0017", .text = "", .doing = "state checks"},
    {.code = "==>", .text = "queryPartition", .doing = "partition checks"},
    {.code = "0005", .text = "", .doing = "domain session", .collects = true},
    {.code = "==>", .text = "addCecEnclKord", .doing = "processor complexes", .collects = true},
    {.code = "==>", .text = "addIoEnclKord", .doing = "I/O enclosures", .collects = true},
    {.code = "==>", .text = "addStorEnclKord", .doing = "storage enclosures", .collects = true},
    {.code = "0400", .text = "", .doing = "racks", .collects = true},
    {.code = "==>", .text = "queryDA", .doing = "I/O enclosures", .collects = true},
    {.code = "==>", .text = "queryDDM", .doing = "storage enclosures", .collects = true},
    {.code = ">>", .text = "openRackEncl ", .doing = "racks", .collects = true},
    {.code = "==>", .text = "addQuayEnclKord", .doing = "consoles", .collects = true},
    {.code = "==>", .text = "addPartitionKord", .doing = "partitions", .collects = true},
    {.code = ">>", .text = "openPartitionResource ", .doing = "partitions", .collects = true},
};

/// The states of both systems are asked for before the collection and after it.
constexpr std::string_view stateCode = "0017";
constexpr std::string_view afterCollection = "final checks";

struct Counted {
    std::string_view code;
    std::string_view text; ///< what the line's text begins with; a number after it is how many there are
    std::string_view one;
    std::string_view many;
};

// What tells most comes first, for a narrow terminal cuts the line.
constexpr Counted countedParts[] = {
    {.code = "0304", .text = "DDM loop array_cnt_ddm=", .one = "drive", .many = "drives"},
    {.code = ">>",
     .text = "openStorEncl  resource",
     .one = "storage enclosure",
     .many = "storage enclosures"},
    {.code = ">>", .text = "openRackEncl  resource", .one = "rack", .many = "racks"},
    {.code = ">>", .text = "openPartitionResource resource", .one = "partition", .many = "partitions"},
    {.code = ">>", .text = "openIOEncl resource", .one = "I/O enclosure", .many = "I/O enclosures"},
    {.code = ">>", .text = "openCecEncl resource", .one = "processor complex", .many = "processor complexes"},
};

constexpr int success = 3;
constexpr int failure = -1;

int64_t numberIn(std::string_view text, int64_t otherwise)
{
    const std::string_view digits = trimmed(text);
    int32_t number = 0; // as the collector has it
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() ? number : otherwise;
}

} // namespace

void Progress::read(const TraceLine& line)
{
    if (const std::string_view startedSystem = systemStarted(line); !startedSystem.empty()) {
        start(startedSystem);
    } else if (exit) {
        start({}); // the line that starts the next run was lost
    }
    lastStamp = line.stamp;
    if (firstStamp.empty()) firstStamp = line.stamp;
    exit = endsWithoutClosing(line) ? failure : closingStatus(line);
    if (line.code == "0019") minorErrors = true;
    enter(line);
    count(line);
}

void Progress::start(std::string_view startedSystem)
{
    *this = Progress{};
    system = startedSystem;
}

void Progress::enter(const TraceLine& line)
{
    if (collects && line.code == stateCode) doing = afterCollection;
    if (doing == afterCollection) return;
    const std::string_view text = trimmed(line.text);
    const auto* const phase = std::ranges::find_if(
        phases, [&](const Phase& row) { return row.code == line.code && text.starts_with(row.text); });
    if (phase == std::end(phases)) return;
    doing = phase->doing;
    collects = collects || phase->collects;
}

void Progress::count(const TraceLine& line)
{
    const std::string_view text = trimmed(line.text);
    for (const Counted& row : countedParts) {
        if (row.code != line.code || !text.starts_with(row.text)) continue;
        counted[static_cast<size_t>(&row - countedParts)] += numberIn(text.substr(row.text.size()), 1);
    }
}

std::string Progress::counts() const
{
    std::string text;
    for (const auto& [row, number] : counted) {
        text += (text.empty() ? ": " : ", ") + std::to_string(number) + ' ';
        text += number == 1 ? countedParts[row].one : countedParts[row].many;
    }
    return text;
}

std::string Progress::outcome() const
{
    if (!exit) return std::string(doing);
    if (*exit != success) return "failed (" + std::string(doing) + ')';
    return minorErrors ? "done, with minor errors" : "done";
}

std::string Progress::time() const
{
    const std::string seconds = std::to_string(secondsBetween(firstStamp, lastStamp)) + " s";
    return system.empty() ? "the last " + seconds : seconds;
}

std::string Progress::line() const
{
    const std::string name = system.empty() ? "a run whose start the log has lost" : platform::shown(system);
    return name + ": " + outcome() + ", " + time() + counts();
}

} // namespace document
