// What an incomplete document lacks, told from its elements as they come.

#pragma once

#include "document/missing.h"
#include "document/scanner.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

/// A collection that fails leaves a document without its partitions, or without some; one that is stopped, or
/// whose disk is full, leaves one without its end.
class Completeness
{
public:
    void see(const Event& event);

    /// What is missing, once the last event has been seen.
    [[nodiscard]] Missing missing() const;

private:
    void seeResource(const Event& event);

    size_t depth = 0;
    std::string system;
    std::string list;            ///< in an enclosure
    std::string section;         ///< the list of the managed system
    std::string enclosure;       ///< in it
    std::set<std::string> named; ///< partitions that enclosures name
    std::set<std::string> told;  ///< those that are told of
    bool partitions = false;
    bool cut = false;
};

} // namespace document
