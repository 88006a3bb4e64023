// What happened to the hosts that a partition knows.

#pragma once

#include "document/diff.h"
#include "document/hosts.h"

#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

struct HostsOf {
    const Part* part; ///< the partition
    std::span<const Host> hosts;
};

/// Hosts go by their descriptions. As many ports less of one description as there are more of another are a
/// renamed host.
/// \param label of the property that lists them
/// \param texts takes what stands in neither document
std::vector<Change> hostChanges(const HostsOf& before, const HostsOf& after, std::string_view label,
                                std::deque<std::string>& texts);

/// With a host come its volume group and its ports, which the partition's counts tell: that is one change.
void moveHostCounts(std::vector<ValueChange>& values, std::vector<Change>& hosts);

} // namespace document
