// The known word that a mistyped one was meant to be.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform
{

/// The known word nearest to a word, where one is near enough to have been meant; else empty.
std::string nearest(std::string_view word, const std::vector<std::string>& known);

/// ": did you mean "list"?", or nothing where no known word is near.
std::string didYouMean(std::string_view word, const std::vector<std::string>& known);

} // namespace platform
