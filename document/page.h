// A document, or what differs between two, as one HTML page that needs nothing else: its style, its script
// and the data are in it.

#pragma once

#include "document/diff.h"
#include "document/document.h"

#include <string>

namespace document
{

/// Values reach the page as data only: no value can become markup or script.
std::string page(const Document& document);

/// The page of the newer document, with what happened since the older one.
std::string page(const Changes& changes);

} // namespace document
