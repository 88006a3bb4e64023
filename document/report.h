// Changes as lines for people and as JSON for programs.

#pragma once

#include "document/diff.h"

#include <string>
#include <vector>

namespace document
{

/// A line for each change and one that counts them; nothing when there is none.
std::string lines(const std::vector<Change>& changes);

/// { "old", "new", "changes": [{ "change", "kind", "name", "id", "values": [...] }] }.
std::string json(const std::vector<Change>& changes, const std::string& oldFile, const std::string& newFile);

} // namespace document
