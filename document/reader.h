// Reads an inventory document as the collector writes it, line by line.
//
// It is no XML reader: values stand in the document unescaped, the property with the host descriptions has a
// name without quotation marks, and processor complexes open more lists of partitions than they close, or
// close one that they never opened.

#pragma once

#include "document/document.h"
#include "document/input.h"

#include <istream>

namespace document
{

/// \param name what failures call the document: its file
Document read(std::istream& input, const std::string& name);

/// Reads a file; what cannot be opened is a Malformed of the form "FILE: what".
Document readFile(const std::string& file);

} // namespace document
