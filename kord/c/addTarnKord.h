// The run itself: command line, the order of checks and collection, assembly of the document, clean-up.

#pragma once

#include "kordRec.h"

#include <span>

/// The program: its exit status.
int addTarnKord(int argc, const char* const* argv);

/// One check: what it runs, and the console line when it fails.
struct Check {
    const char* name;
    int32_t (*run)(kordRec*);
    const char* message;
};

/// Checks that follow one another, and when they do.
struct ToldChecks {
    const char* when;
    std::span<const Check> checks;
};

extern const std::span<const ToldChecks> addTarnChecks;

/// Writes the whole document: 0, -1 when a section failed, 1 when the document could not be started.
int32_t addSystemKord(kordRec* pKordRec);

/// Closes the system element and the inventory.
void closeXml(const kordRec* pKordRec);

/// Gives the trace log to the console's own user, where the program may.
void changeGroup(const kordRec* pKordRec);

/// Closes the document and ends the sessions: local, domain, shared resource. Returns the result of the last
/// session end, 0 when none was ended. `contacts` is not used.
int32_t cleanUpKord(kordRec* pKordRec, const char* const* contacts, int32_t returnCode);
