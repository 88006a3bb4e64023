// A document as JSON for programs.

#pragma once

#include "document/rows.h"

#include <functional>
#include <string>
#include <string_view>

namespace document
{

/// Takes a result piece by piece.
using Write = std::function<void(std::string_view)>;

/// { "timestamp", "complete", "missing", "system": PART }, a PART being its columns by name, its "properties"
/// by code and the "parts" inside it, in the document's order. Of an enclosure the parts are those that its
/// partitions list, of a partition its hosts come first.
void writeJson(const Document& document, const Write& write);

/// Appends a column's value: a text, a number, or a list of them.
void appendJson(std::string& json, const Value& value);

/// Appends a text in JSON's quotes. Bytes that are no UTF-8 become U+FFFD.
void appendQuoted(std::string& json, std::string_view text);

/// The text in JSON's quotes.
std::string quote(std::string_view text);

} // namespace document
