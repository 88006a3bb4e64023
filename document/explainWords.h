// The words for one problem, as texts and JSON have them.

#pragma once

#include "document/explain.h"

#include <string>

namespace document
{

/// What was asked for: "drives: Orvik.TarnDDM, persistent query, domain session".
std::string askedWords(const Problem& problem);

/// The part that it was asked for: "storage enclosure 1234-5X6*AB100001, rack R1, image 9999*A01*00XY121".
std::string partWords(const Problem& problem);

/// What came back: "nothing was found".
std::string answerWords(const Problem& problem);

} // namespace document
