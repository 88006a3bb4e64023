// What `kord list` and `kord json` make of a document, held against the measure and the schema.

#pragma once

#include "documentReader.h"

#include <string>
#include <vector>

namespace kordTest
{

/// What differs from what the document's elements say, or is not valid; nothing when all is well.
/// \param text a document in which the tests' reader finds no fault
std::vector<std::string> partsFaults(const std::string& text);

/// The same of a document whose values hold what a reader may take for its lines.
/// \param document what it holds
std::vector<std::string> partsFaults(Document document, const std::string& text);

} // namespace kordTest
