// Error reporting: files a serviceable event on the console.

#pragma once

#include "addTableKord.h"
#include "kordRec.h"

#include <span>

// --- Error types, each selecting an event's reference code and text. A type of no event's own files as a
// microcode logic error.

constexpr const char* resourcesNotFound = "e";
constexpr const char* valeCallFailed = "r";
constexpr const char* unknownError = "u";
constexpr const char* subsystemDegraded = "s"; ///< a system or partition is not in its working state
constexpr const char* invalidMTMS = "i";
constexpr const char* documentFailed = "d"; ///< no event's own
constexpr const char* outOfMemory = "m";    ///< no event's own

/// What one error type becomes on the console.
struct EventKind {
    const char* errortype; ///< null: every other
    const char* systemRefCode;
    const char* text;
    Explanation explanation = {};
};

/// Every kind, the one of every other type last.
extern const std::span<const EventKind> addErrLogEvents;

/// Files an event with the type's own text, under the name of the function or class that failed. Traces the
/// call, and "050" with the command when the event tool fails. Always -1.
int32_t handleErrKord(const kordRec* pKordRec, const char* loggingFileName, const char* errortype);

/// The same with the resource manager's message, less its last character, as the text; an empty message takes
/// the type's own. A failing event tool is traced with "051". Always -1.
int32_t handleErrKord_new(const kordRec* pKordRec, const char* loggingFileName, const char* errortype,
                          const char* errorMessage);
