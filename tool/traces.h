// The trace log that a command reads.

#pragma once

#include "document/explain.h"

#include <string>

namespace tool
{

/// Reads a log to its end, or as far as it takes to see that it is none: then it is a Malformed.
void readTrace(document::Explainer& explainer, const std::string& file);

} // namespace tool
