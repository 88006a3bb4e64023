// What is made from the table of parts when the project is built or its pages are.

#pragma once

#include <string>

namespace reference
{

/// The JSON Schema of what kord json and kord list print.
std::string schema();

/// The page docs/parts.md.
std::string page();

/// The manual page kord-parts(5).
std::string manual();

} // namespace reference
