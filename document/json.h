// A document as JSON for programs.

#pragma once

#include "document/document.h"

#include <string>
#include <string_view>

namespace document
{

/// { "timestamp", "system": PART } with PART { "kind", "list" (but for the system), "name", "id",
/// "properties": [{ "code", "label", "value" }], "children": [PART] }, in the document's order.
std::string json(const Document& document);

/// A text in JSON's quotes. Bytes that are no UTF-8 become U+FFFD.
std::string quote(std::string_view text);

} // namespace document
