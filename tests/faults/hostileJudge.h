// What must hold for every run of the collector among hostile values, beside what holds for every run.

#pragma once

#include "sweep.h"

namespace sweep
{

/// Runs the collector in an empty folder and says afterwards what files have come into it, or bear the
/// canary's name elsewhere on the console.
extern const Texts canaryWatch;

/// All of what follows, and of judge.h what does not depend on the values.
void judgeHostile(const Plan& plan, const Result& result, Findings& findings);

/// No byte of a value was run.
void judgeCanary(const Result& result, Findings& findings);

/// The exit status and the printed line belong together.
void judgePair(const Result& result, Findings& findings);

/// The last trace line is the closing one with the run's exit status.
void judgeClosing(const Result& result, Findings& findings);

/// No line of the trace log is longer than its 80 bytes.
void judgeTraceLines(const Result& result, Findings& findings);

/// The console's programs got their arguments as they were meant, to the byte.
void judgeArguments(const Plan& plan, const Result& result, Findings& findings);

/// The document can be read back. Where values hold characters that could be taken for markup, it is that of
/// the same run with stand-ins in their place, to the byte: every value stands in it raw, and no element
/// depends on what a value holds. Values that hold stand-ins of themselves cannot be told so. Mended, it is
/// XML with the same elements and values.
void judgeElements(const Plan& plan, const Result& result, Findings& findings);

/// The collector refused its MTMS: nothing was printed, run or written.
void judgeRefused(const Plan& plan, const Result& result, Findings& findings);

} // namespace sweep
