// What `kord list` and `kord json` make of a document, held against the measure and the schema.

#pragma once

#include <string>
#include <vector>

namespace kordTest
{

/// What differs from what the document's elements say, or is not valid; nothing when all is well.
/// \param text a document in which the tests' reader finds no fault
std::vector<std::string> partsFaults(const std::string& text);

} // namespace kordTest
