// JSON that a program prints, held against its schema.

#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace kordTest
{

/// What the schema finds wrong with a value, as "PLACE: what"; nothing when all is well.
std::vector<std::string> valueFaults(const std::filesystem::path& schema, nlohmann::json value);

/// The same of a JSON text.
std::vector<std::string> schemaFaults(const std::filesystem::path& schema, const std::string& text);

} // namespace kordTest
