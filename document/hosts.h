// Two properties of a partition that hold many values in one text: its hosts and its counts.

#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

/// The description is a view of the text that was read.
struct Host {
    std::string_view description;
    int64_t ports = 0;

    bool operator==(const Host&) const = default;
};

/// The hosts of "description=ports,description=ports,". A description may hold blanks, commas and equals
/// signs. Nothing when the text is no list of hosts.
std::optional<std::vector<Host>> parseHosts(std::string_view text);

/// The items of "DI=value,DM=value", whose keys are looked for one behind the other: so a comma in a value
/// splits nothing. An item that is not there has no data.
std::vector<std::string_view> itemsOf(std::string_view text, std::span<const std::string_view> keys);

} // namespace document
