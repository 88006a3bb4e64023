// The compiled facility under a root, made anew only when the facility file is another.

#pragma once

#include "facilityImage.h"
#include "platform/installation.h"

#include <filesystem>

namespace console::launcher
{

/// Provides the image of the facility file under the root, whole as it was made. A malformed file is a
/// Failure that names its first fault.
FacilityImage provideImage(const std::filesystem::path& facility, const std::filesystem::path& root,
                           const platform::Installation& installation);

/// The whole file; a Failure when it cannot be read.
std::string readFacility(const std::filesystem::path& facility);

} // namespace console::launcher
