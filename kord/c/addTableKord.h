// What the modules tell of the lines they write, for whoever writes down what they know (kord-tables). The
// collector reads none of it, and its linker leaves it out: an explanation costs a run nothing.

#pragma once

#include "addTrcKord.h"

#include <span>
#include <type_traits>

/// What a trace line or an event tells service personnel. What is empty is what every line of its role says.
struct Explanation {
    const char* meaning = "";
    const char* cause = "";
    const char* advice = "";
};

/// A line that is not a query's.
struct ToldLine {
    const char* function;
    TraceText line;
    Explanation explanation = {};
};

/// A console command; the formats are what the run fills in, one behind the other.
struct ToldCommand {
    const char* function;
    const char* command;
    const char* arguments = "";
};

/// What one module writes and runs by itself.
struct ToldLines {
    const char* module;
    std::span<const ToldLine> lines;
    std::span<const ToldCommand> commands = {};
};

/// A writer of the document, to be run so that it shows what it writes.
struct ToldWriter {
    const char* name;
    void (*write)(const kordRec*);
};

/// What stands for every text that such a writer is given.
inline constexpr char anyText[] = "*";

template <typename Value>
Value anyValue()
{
    if constexpr (std::is_same_v<Value, const char*>)
        return anyText;
    else
        return {};
}

/// Runs a writer with any values.
template <auto Writer>
void callWriter(const kordRec* pKordRec)
{
    []<typename Result, typename... Values>(Result (*writer)(const kordRec*, Values...),
                                            const kordRec* record) {
        writer(record, anyValue<Values>()...);
    }(Writer, pKordRec);
}

extern const std::span<const ToldWriter> addXmlWriters;
extern const std::span<const ToldWriter> addUncalledXmlWriters;

extern const ToldLines addTarnLines;
extern const ToldLines addCheckLines;
extern const ToldLines addCecEnclLines;
extern const ToldLines addIoEnclLines;
extern const ToldLines addStorEnclLines;
extern const ToldLines addRackEnclLines;
extern const ToldLines addQuayEnclLines;
extern const ToldLines addPartitionLines;
extern const ToldLines addHostLines;
extern const ToldLines addStorConfigLines;
extern const ToldLines addXmlLines;
extern const ToldLines addErrLogLines;
extern const ToldLines addUtilLines;
extern const ToldLines addUncalledXmlLines;
