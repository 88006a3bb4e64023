// What a recording's command line says, for whoever repeats it.

#pragma once

#include <string>
#include <vector>

namespace console::facility
{

constexpr const char* collector = "addTarnKord";

/// Whether the command starts the collector for a system, so that it can be repeated on any console.
bool isCollection(const std::vector<std::string>& command);

/// Where, below a console's root, a collection for that system leaves its trace log.
std::string traceLogOf(const std::string& system);

} // namespace console::facility
