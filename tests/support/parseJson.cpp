#include "parseJson.h"

#include <nlohmann/json.hpp>

namespace kordTest
{

nlohmann::json parseJson(std::string_view text)
{
    return nlohmann::json::parse(text);
}

} // namespace kordTest
