// What each call of a run was answered, by the journal and the fault rules: the ground of all that is
// expected of the run.

#pragma once

#include <cstdint>

#include "sweep.h"

namespace sweep
{

/// What came back to a client call.
enum class Answer {
    regular,
    failed, ///< the call itself
    empty,  ///< count 0
    error,  ///< the first response is in error
    bare,   ///< the first response has no attributes, handles or elements
};

/// A client call that asks for something, or a console program that was run.
struct Call {
    std::string name; ///< "query_p_select", ...; "program" for a program
    std::string className;
    std::string selection;
    std::string program;  ///< a program's name without its folder
    Texts arguments;      ///< a program's
    bool wrapped = false; ///< the program was run by the wrapper
    int scope = 0;
    int64_t result = 0; ///< a call's code, a program's status
    size_t count = 0;   ///< responses
    size_t handles = 0; ///< the sum over all responses
    Answer answer = Answer::regular;
    uint32_t error = 0;         ///< the first response's number
    const json* rule = nullptr; ///< the fault rule that decided; none where it let pass
    size_t seq = 0;             ///< the journal's number of it
};

/// The calls of a run in order. Releases and error records are left out, and so is the wrapper's own line
/// where the program that it ran has one: the wrapper's line stands for a program only when a rule answered
/// in its place.
std::vector<Call> callsOf(const Result& result);

bool isClientCall(const Call& call);

/// What a fault rule has a program print.
std::string outputOf(const json& rule);

/// The first line that the collector reads in a program's output: only what ends with a line feed is a line,
/// a leading line feed is passed over, a null character ends the text. Nothing when there is no line.
std::optional<std::string> firstLine(const std::string& output);

} // namespace sweep
