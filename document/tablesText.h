// The collector's tables as it prints them, carried inside the library.

#pragma once

#include <string_view>

namespace document
{

std::string_view tablesText();

} // namespace document
