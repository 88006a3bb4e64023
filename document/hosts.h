// Two properties of a partition that hold many values in one text: its hosts and its counts.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace document
{

struct Host {
    std::string description;
    int64_t ports = 0;

    bool operator==(const Host&) const = default;
};

/// The hosts of "description=ports,description=ports,". A description may hold blanks, commas and equals
/// signs. Nothing when the text is no list of hosts.
std::optional<std::vector<Host>> parseHosts(std::string_view text);

using NamedValues = std::vector<std::pair<std::string, std::string>>;

/// The items of "name=value,name=value"; an item without a name belongs to the value before it. Nothing when
/// the text is no such list.
std::optional<NamedValues> parseNamedValues(std::string_view text);

} // namespace document
