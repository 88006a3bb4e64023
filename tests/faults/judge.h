// What must hold for every run of the collector, whatever went wrong in it. Each function adds what it finds;
// judgeRun calls them all, a sweep with other rules of its own picks those that hold for it.

#pragma once

#include "sweep.h"

namespace sweep
{

void judgeRun(const Plan& plan, const Result& result, Findings& findings);

/// It ended by itself, in time, with one of the collector's two exit statuses.
void judgeEnd(const Plan& plan, const Result& result, Findings& findings);

/// Every answer, error record and message was released once; the sessions were ended as the run's end asks.
void judgeReleases(const Plan& plan, const Result& result, Findings& findings);

/// The exit status and the printed line are those of the first step that failed.
void judgeOutcome(const Plan& plan, const Result& result, Findings& findings);

/// The last trace line is the closing one with the run's exit status.
void judgeTrace(const Plan& plan, const Result& result, Findings& findings);

/// Each event's command is complete and carries a known reference code.
void judgeEvents(const Plan& plan, const Result& result, Findings& findings);

/// Root runs the console's programs directly, everybody else by the wrapper.
void judgeWrapper(const Plan& plan, const Result& result, Findings& findings);

/// The document is well-formed but for the processor complex drawers' lists, whose missing and extra closings
/// follow from the answers about control cards. It holds a resource for each response of the classes shown
/// one for one, and the counts that the console gave.
void judgeDocument(const Plan& plan, const Result& result, Findings& findings);

/// No command output is left behind.
void judgeTemporaryFiles(const Plan& plan, const Result& result, Findings& findings);

/// Every fault rule that must be met was met: otherwise the run proves nothing.
void judgeFaults(const Plan& plan, const Result& result, Findings& findings);

/// The managed system as the collector knows it, from the MTMS that it was given: type-model, asterisk,
/// serial.
std::string systemOf(const std::string& mtms);

/// An event's text and code, taken out of a command that is otherwise the known one.
struct Event {
    std::string code;
    std::string text;
    bool wellFormed = false;
};

/// The event that the event tool's arguments file in a run for this MTMS.
Event eventOf(const Texts& arguments, const std::string& mtms);

/// Two runs of one plan: the same bytes of everything, times aside.
void judgeRepetition(const Result& first, const Result& second, Findings& findings);

} // namespace sweep
