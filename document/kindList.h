// The table of parts for people: its kinds, and the columns of each.

#pragma once

#include "document/format.h"

#include <string>

namespace document
{

/// A table of the kinds: words, name, and where a document has such parts.
void listKinds(const Write& write);

/// A table of a kind's columns: name, type, unit, meaning, source. A platform::Failure where there is no such
/// kind.
void listColumns(const std::string& kind, const Write& write);

/// The kinds that a word means; a platform::Failure where it means none.
std::vector<Kind> knownKinds(const std::string& word);

} // namespace document
