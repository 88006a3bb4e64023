// A document as a tree for a terminal.

#pragma once

#include "document/document.h"
#include "document/json.h"

namespace document
{

enum class Lines { ascii, unicode };

/// The document's own line and its summary, then a line for each part: display name, identifier and those
/// properties that the parts around it do not tell already. Siblings of a kind stand in columns.
/// Names, identifiers and values are cut to a width that a terminal bears.
void writeTree(const Document& document, Lines lines, const Write& write);

} // namespace document
