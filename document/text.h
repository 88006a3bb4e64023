// What platform/text.h has, by the names that this room used.

#pragma once

#include "platform/text.h"

namespace document
{

using platform::cutTo;
using platform::shown;
using platform::widthOf;

} // namespace document
