// The relations of an inventory, as each database engine wants them said. What a kind's view has comes from
// the table of parts.

#pragma once

#include <string>

namespace inventory
{

enum class Engine { sqlite, postgresql, clickhouse };

/// The statements that make tables, indexes and views.
std::string relations(Engine engine);

} // namespace inventory
