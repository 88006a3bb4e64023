// Text as a terminal or a table may show it: a value is whatever a machine reported or a person typed.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform
{

/// The text so that nothing in it obeys or hides: line feed and tabulator as \n and \t, other ASCII control
/// characters and bytes that are no UTF-8 as \x1B, other characters that control, turn the text or have no
/// shape of their own as \u{202E}.
std::string shown(std::string_view text);

/// The same cut to so many columns; a cut one ends in "...". A long text costs no more than its start.
std::string shown(std::string_view text, size_t width);

/// The columns that a text which `shown` made takes on a terminal.
size_t widthOf(std::string_view text);

/// The text cut to so many columns; a cut one ends in "...".
std::string cutTo(std::string text, size_t width);

} // namespace platform
