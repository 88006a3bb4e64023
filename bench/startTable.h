// What it costs to start, before any work: loading, relocations, pages touched.

#pragma once

#include <string>

namespace bench
{

/// The folder takes what the loader tells. Returns what the program ends with.
int reportStart(const std::string& folder);

} // namespace bench
