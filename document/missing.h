// What an incomplete document lacks.

#pragma once

#include <string>
#include <vector>

namespace document
{

struct Missing {
    bool allPartitions = false;
    std::vector<std::string> partitions = {}; ///< numbers of those that enclosures name
    bool end = false;

    [[nodiscard]] bool nothing() const { return !allPartitions && partitions.empty() && !end; }
};

/// In words: "the partitions", "partition 2", "the end".
std::vector<std::string> wordsOf(const Missing& missing);

} // namespace document
