// The rows and columns of a document's parts, told from its elements by the columns' meanings alone: the
// measure for what `kord list` and `kord json` say.

#pragma once

#include "documentReader.h"

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace kordTest
{

/// A list of objects, a physical part or a host each, in the document's order.
nlohmann::json partRows(const Document& document);

/// The same parts as a tree: the managed system with its columns and, in "parts", the parts inside it.
nlohmann::json partTree(const Document& document);

} // namespace kordTest
