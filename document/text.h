// Values as a terminal may show them: a value is whatever the resource manager reported.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace document
{

/// The text with control characters, and bytes that are no UTF-8, written as \n, \t or \xNN.
std::string shown(std::string_view text);

/// Characters of a text that `shown` made.
size_t widthOf(std::string_view text);

/// The text cut to a width; a cut one ends in "...".
std::string cutTo(std::string text, size_t width);

} // namespace document
