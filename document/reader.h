// Reads inventory documents into memory: whole ones and incomplete ones, as the collector writes them and
// mended.

#pragma once

#include "document/document.h"
#include "document/input.h"

namespace document
{

/// What is no inventory document, or one without a managed system, is a Malformed.
Document read(Input& input);

/// Reads a file, "-" for standard input.
Document readFile(const std::string& file);

} // namespace document
