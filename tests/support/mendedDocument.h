// A document mended, as a parser of XML reads it: what must hold for every document.

#pragma once

#include "documentReader.h"

#include <string>
#include <vector>

namespace kordTest
{

struct MendedDocument {
    std::string xml;
    std::vector<Element> resources; ///< as the parser finds them
    /// What is wrong with it: not well-formed, not valid, not the same when mended again, or mended although
    /// nothing was wrong. None: all is well.
    std::vector<std::string> faults;
};

/// Mends a document's bytes and reads what comes of it.
MendedDocument mendDocument(const std::string& raw);

/// Where the elements of a document and of the mended one first differ; empty: nowhere.
std::string differenceOf(const std::vector<Element>& raw, const std::vector<Element>& mended);

/// A text as XML can carry it: U+FFFD for a row of characters or bytes that it cannot.
std::string carried(const std::string& text);

/// A text of the collector's as it is told: the references that XML knows by name mean their character.
std::string told(std::string text);

} // namespace kordTest
