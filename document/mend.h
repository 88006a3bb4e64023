// A document mended: XML that every parser reads, with the same elements, words and lines.

#pragma once

#include "document/completeness.h"
#include "document/scanner.h"

#include <functional>
#include <string>
#include <string_view>

namespace document
{

/// Writes the scanner's document as well-formed XML 1.0 in UTF-8, piece by piece as it is read. Only what
/// must change changes: what XML would take for markup is escaped, the name without quotation marks gets
/// them, ends that are missing come where the collector meant them, what XML cannot hold becomes U+FFFD. A
/// document with nothing wrong comes out as it is, and so does one that is mended already.
/// \param completeness sees all of it
void mend(Scanner& scanner, Completeness& completeness, const std::function<void(std::string_view)>& write);

/// Appends a text as it stands between tags, or in an attribute.
void appendText(std::string& xml, std::string_view text);
void appendAttribute(std::string& xml, std::string_view text);

} // namespace document
