// What `kord explain` tells of a run, held against the console's journal of it.

#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace kordTest
{

/// What is told of the log's newest run and is not borne out by the journal, and what the journal shows and
/// is not told. None: the account is right.
std::vector<std::string> explainFaults(const std::string& log, const std::vector<nlohmann::json>& journal,
                                       int status);

} // namespace kordTest
