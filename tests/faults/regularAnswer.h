// What the simulated console regularly answers to a query: the ground of answers that differ from it in one
// point.

#pragma once

#include "calls.h"

namespace sweep
{

/// The responses to a recorded query as a fault rule's answer, each with the requested attributes that its
/// resource has. Throws when they are not as many as the record says.
json regularAnswer(const json& facility, const Call& query, const Texts& attributes);

} // namespace sweep
