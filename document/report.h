// Changes as lines for people and as JSON for programs.

#pragma once

#include "document/diff.h"
#include "document/json.h"
#include "document/rows.h"

#include <string>
#include <vector>

namespace document
{

struct LineOptions {
    bool grouped = false; ///< identical changes of several parts are one line
    bool colored = false;
};

/// A line for each change and one that counts them; nothing when there is none.
void writeLines(const Changes& changes, const LineOptions& options, const Write& write);

/// A line for each kind of part and one that counts all; nothing when there is no change.
void writeSummary(const Changes& changes, const Write& write);

/// { "old", "new", "complete", "missing", "changes": [...] }.
void writeJson(const Changes& changes, const Write& write);

/// Appends one of these changes.
/// \param values of the document that the part is in, or was
void appendJson(std::string& json, const Change& change, Values& values);

/// The same, with how many changes of each kind there are: "summary": { "drive": { "added": 1 } }.
void writeJsonSummary(const Changes& changes, const Write& write);

} // namespace document
