// JSON that a program prints, held against its schema.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kordTest
{

/// What the schema finds wrong with a text, as "PLACE: what"; nothing when all is well.
std::vector<std::string> schemaFaults(const std::filesystem::path& schema, const std::string& text);

} // namespace kordTest
