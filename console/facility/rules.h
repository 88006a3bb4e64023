// The fault rules of a facility: what the schema cannot say of them, and their compilation.

#pragma once

#include "facility/imageWriter.h"
#include "facility/schema.h"

namespace console::facility
{

/// Checks the rules. Fields that faults were found in already are taken out of them: what such a field would
/// have done is not judged, nor what its rule does.
void checkRules(nlohmann::json& rules, const Schema& schema, Faults& faults);

/// Writes faultless rules and notes them in the header.
void writeRules(const nlohmann::json& rules, const Schema& schema, ImageWriter& writer,
                image::Header& header);

} // namespace console::facility
