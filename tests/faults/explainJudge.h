// What `kord explain` tells of a run, held against the journal: each call that went wrong is told, with its
// class or program, its selection and what came back, nothing else is, and every event is told as it was
// filed.

#pragma once

#include "sweep.h"

namespace sweep
{

/// Judges the account of the run's trace log, and counts whether it names what the plan's faults did.
void judgeExplanation(const Plan& plan, const Result& result, Findings& findings);

/// What became of the faults that were injected.
struct Explained {
    size_t told = 0;
    Texts untold; ///< runs whose trace is that of a regular run, line for line, numbers counted aside
    Texts missed; ///< runs whose trace differs, but the account does not name the fault

    /// At least 99 of 100 of those that the trace tells of.
    [[nodiscard]] bool isEnough() const { return missed.size() * 100 <= told + missed.size(); }
};

/// Of all runs judged so far.
Explained explained();

/// Prints the counts and the runs behind them, by fault.
void printExplained(const Explained& all, bool verbose);

} // namespace sweep
