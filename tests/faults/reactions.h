// How the collector answers to what comes back from each of its calls: whether the run goes on, which event
// it files, which line it prints.

#pragma once

#include <string_view>

#include "calls.h"

namespace sweep
{

/// What becomes of the run.
enum class Course {
    goes,  ///< on, as if nothing had happened
    minor, ///< on, and its end tells of minor errors
    ends,  ///< on, but no further partition is collected
    stops, ///< the run fails
};

struct Reaction {
    Course course = Course::goes;
    std::string_view code = {}; ///< the event's reference code; empty: none is filed
};

/// The reaction to a client call of a class. A regular answer goes on without an event.
Reaction reactionTo(const Call& call);

/// The call is one of the partition's enumerations whose sum stands in its line of counts.
bool isCounted(const Call& call);

/// The display name of the resources in the document that stand for the call's responses, one for one; empty:
/// none do.
std::string_view displayNameOf(const Call& call);

/// An answer of count 0 is shown as one resource without values.
bool showsNothingAsOne(const Call& call);

} // namespace sweep
