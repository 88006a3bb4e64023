// The facility's fault rules: which of them decides a call.

#pragma once

#include "image/run.h"

#include <vector>

namespace console::image
{

/// What rules can match of a call or of a program's start; null texts and scope -1 are what it has not.
struct Call {
    const char* name; ///< as in a rule's `call`
    int64_t scope = -1;
    const char* className = nullptr;
    const char* selection = nullptr;
    const char* program = nullptr; ///< bare name
};

/// Counts the call for every rule that it matches and returns the first that decides it, after that rule's
/// delay; null: the call is answered regularly, as it is after a rule without effect.
const Rule* decide(const Run& run, const Call& call);

/// The indexes of the rules for client calls that have decided none in the whole run.
std::vector<int64_t> unusedClientRules(const Run& run);

} // namespace console::image
