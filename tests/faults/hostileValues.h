// Values that nobody means well with: of any length, full of what a shell, a document, a selection or a
// format would take for its own. Equal seeds make equal values.

#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace sweep
{

using Random = std::mt19937_64;

/// A number below `end`, on machines of 32 bits, too.
inline size_t numberBelow(Random& random, size_t end)
{
    return static_cast<size_t>(random() % end);
}

/// The file that hostile texts try to make in the folder where the collector runs.
inline constexpr const char* canary = "canary";

struct TextKind {
    const char* name;
    std::string (*make)(Random& random);
};

std::span<const TextKind> textKinds();

/// A JSON value under the name that runs have of it.
struct HostileValue {
    std::string name;
    nlohmann::json value;
};

/// Every kind of value that an attribute of that type ("text", "integer", "uinteger", "integers", "texts",
/// "mixed") can have.
std::vector<HostileValue> valuesOf(const std::string& type, Random& random);

/// Every character that means something to a shell, a document, a selection or a format has a stand-in of the
/// same length that means nothing to anyone.
std::string withStandIns(const std::string& text);
std::string withoutStandIns(const std::string& text);
bool hasMeaning(const std::string& text);
bool hasStandIns(const std::string& text);

} // namespace sweep
