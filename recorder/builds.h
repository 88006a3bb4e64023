// Which program and which client a recorded process is made of.

#pragma once

#include <nlohmann/json_fwd.hpp>

namespace recorder
{

/// The build numbers of the running program ("collector") and of the client it uses ("client"), as the linker
/// wrote them into the files; without those it wrote none into.
nlohmann::json builds();

} // namespace recorder
