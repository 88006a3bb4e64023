#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string_view>

namespace kordTest
{

/// What a JSON text says; throws nlohmann::json::parse_error. The parser's templates are compiled here, once
/// for all tests.
nlohmann::json parseJson(std::string_view text);

} // namespace kordTest
