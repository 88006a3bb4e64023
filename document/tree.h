// A document as a tree for a terminal.

#pragma once

#include "document/document.h"

#include <string>

namespace document
{

enum class Lines { ascii, unicode };

/// The document's own line and its summary, then a line for each part: display name, identifier and those
/// properties that the parts around it do not tell already. Siblings of a kind stand in columns.
std::string tree(const Document& document, Lines lines);

} // namespace document
