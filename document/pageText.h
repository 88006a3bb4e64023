// The page around the data, made from page/page.html, page/page.css and page/page.js.

#pragma once

#include <string_view>

namespace document
{

extern const std::string_view pageStart;
extern const std::string_view pageEnd;

} // namespace document
