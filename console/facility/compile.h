// From the text of a facility file to its image, or to what is wrong with it.

#pragma once

#include "facility/fault.h"

#include <string>
#include <string_view>

namespace console::facility
{

struct Compilation {
    Faults faults;
    std::string image; ///< empty when there are faults
};

Compilation compile(std::string_view file);

} // namespace console::facility
