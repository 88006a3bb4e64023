// The facility file of a recording.

#pragma once

#include "recorder/calls.h"
#include "recorder/origin.h"

namespace recorder
{

/// A facility that answers the calls as they were answered: with resources where a console of these resources
/// gives that answer of itself, with fault rules where it does not.
nlohmann::ordered_json buildFacility(const Origin& origin, std::vector<Call> calls);

/// As a file for readers: a resource, a rule a line.
std::string toText(const nlohmann::ordered_json& facility);

} // namespace recorder
