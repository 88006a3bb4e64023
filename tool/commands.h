// The commands of kord, each made by the file of its name.

#pragma once

#include "platform/commandLine.h"

namespace tool
{

platform::Command showCommand();
platform::Command listCommand();
platform::Command kindsCommand();
platform::Command jsonCommand();
platform::Command xmlCommand();
platform::Command diffCommand();
platform::Command importCommand();
platform::Command historyCommand();
platform::Command metricsCommand();
platform::Command explainCommand();
platform::Command followCommand();
platform::Command recordCommand();

} // namespace tool
