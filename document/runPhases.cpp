// Which runs a line can be of, where several wrote into one log at the same time.

#include "document/runReader.h"

#include <algorithm>
#include <array>

namespace document
{

namespace
{

constexpr auto phaseOrder = std::to_array<std::string_view>(
    {"start", "sessions", "system checks", "state checks", "partition checks", "domain session",
     "processor complexes", "I/O enclosures", "storage enclosures", "racks", "consoles", "partitions",
     "final checks"});

/// The phases that lines of a code are written in, as bits; 0: in any.
struct CodePhases {
    std::string_view from;
    std::string_view until;
    unsigned phases;
};
constexpr unsigned bit(unsigned phase)
{
    return 1U << phase;
}
constexpr auto codePhases = std::to_array<CodePhases>({
    {"0002", "0003", bit(0)},
    {"0004", "0004", bit(1)},
    {"0005", "0006", bit(5)},
    {"0007", "0007", bit(6)},
    {"0011", "0016", bit(4) | bit(12)},
    {"0017", "0017", bit(3) | bit(12)},
    {"0062", "0067", bit(0) | bit(3) | bit(10) | bit(12)},
    {"0068", "0068", bit(0)},
    {"0107", "0109", bit(2)},
    {"0114", "0121", bit(6)},
    {"0200", "0217", bit(7)},
    {"0300", "0326", bit(8)},
    {"0400", "0429", bit(9)},
    {"0500", "0517", bit(10)},
    {"0600", "0695", bit(11)},
    {"0696", "0698", bit(4) | bit(11)},
    {"0800", "0924", bit(11)},
});

struct EntryPhases {
    std::string_view function;
    unsigned phases;
};
constexpr auto entryPhases = std::to_array<EntryPhases>({
    {"queryPartition", bit(4)},
    {"addCecEnclKord", bit(6)},
    {"addIoEnclKord", bit(7)},
    {"addStorEnclKord", bit(8) | bit(9)},
    {"addQuayEnclKord", bit(10)},
    {"addPartitionKord", bit(11)},
});

unsigned phasesOf(const TraceLine& line)
{
    if (line.code == "==>") {
        const auto* const row = std::ranges::find(entryPhases, trimmed(line.text), &EntryPhases::function);
        return row == entryPhases.end() ? 0 : row->phases;
    }
    if (line.code == "0010" && !closingStatus(line)) return bit(4) | bit(12);
    const auto* const row = std::ranges::find_if(codePhases, [&](const CodePhases& codes) {
        return line.code >= codes.from && line.code <= codes.until;
    });
    return row == codePhases.end() || line.code.size() != row->from.size() ? 0 : row->phases;
}

} // namespace

bool RunReader::fits(const TraceLine& line) const
{
    const unsigned phases = phasesOf(line);
    const auto* const at = std::ranges::find(phaseOrder, progress.phase());
    if (phases == 0 || at == phaseOrder.end()) return true;
    const auto now = static_cast<unsigned>(at - phaseOrder.begin());
    unsigned possible = bit(now) | bit(now + 1);
    if (!run.documentStarted && now == 6) possible |= bit(12);
    if (now == 5) possible |= bit(12); // the document could not be started
    return (phases & possible) != 0;
}

} // namespace document
