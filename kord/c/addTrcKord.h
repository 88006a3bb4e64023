// The trace log: one stamped line a call, wrapped when long, in a file that is kept from growing without
// bound.

#pragma once

#include "kordRec.h"

#include <sys/stat.h>

/// Longest message of an ordinary trace line.
constexpr size_t traceTextSize = 800;

/// Removes an oversized log with the wrapper's rights.
constexpr const char* removeLogCommand = "/opt/tarnquay/bin/mmquaycmd /bin/rm -f %s 2>/dev/null";

/// Where a line stems from ("0100", "==>", ">>") and the format of its text.
struct TraceText {
    const char* code = nullptr;
    const char* format = nullptr;
};

/// Whoever can write to the folder can give a log's name to a link, a FIFO or another file: none of them is
/// the log.
inline bool isLog(mode_t mode, nlink_t links)
{
    return S_ISREG(mode) && links == 1;
}

/// Appends one line to the log `fileName` of the trace folder ("": "addTrcKord.log"), wrapped after 79 bytes,
/// leaves the log world-writable, and cuts or removes it past its size limits. Null texts read as empty.
/// A log that cannot be opened loses the line; nothing is reported. Returns 0.
int32_t addTrcKord(const char* fileName, const char* code, const char* message);

/// One line of the run's own log; the text is cut to `traceTextSize`.
[[gnu::format(printf, 3, 4)]] void trace(const kordRec* pKordRec, const char* code, const char* format, ...);

/// A line out of a table. Without values its format is the text, which is shorter than any cut.
template <typename... Values>
void trace(const kordRec* pKordRec, const TraceText& line, Values... values)
{
    if constexpr (sizeof...(values) == 0)
        addTrcKord(pKordRec->trcfile, line.code, line.format);
    else
        trace(pKordRec, line.code, line.format, values...);
}
