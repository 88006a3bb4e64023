// Documents as they lie in a database: packed, for a fleet's documents repeat themselves night by night.

#pragma once

#include <string>
#include <string_view>

namespace inventory
{

std::string packed(std::string_view bytes);

/// The bytes again; a platform::Failure with this name where they were not packed like that.
std::string unpacked(std::string_view bytes, const std::string& name);

/// What tells documents apart, as xxh128sum(1) prints it.
std::string hashOf(std::string_view bytes);

} // namespace inventory
