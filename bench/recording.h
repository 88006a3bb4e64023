// What a run of the collector asked of the system and of the client, in the order in which it asked: written
// by the recorder while the collector runs, replayed by the floor.
//
// A recording is a file of entries, each a head and so many bytes.

#pragma once

#include <cstdint>

namespace bench
{

/// Names the recording's file to the recorder.
constexpr const char* recordingVariable = "KORD_BENCH_RECORDING";
/// Names the file that takes what the run waited for.
constexpr const char* waitsVariable = "KORD_BENCH_WAITS";

enum class EntryKind : uint32_t {
    traceLine,  ///< what one opening of the trace log wrote
    cut,        ///< a Cut: the log lost its oldest lines
    command,    ///< what was handed to the shell, whose output is not looked at
    output,     ///< the file that takes a command's output, a NUL, and what was handed to the shell
    clientCall, ///< a CallHead and its texts
};

struct EntryHead {
    EntryKind kind;
    uint32_t length;
};

/// The log's first line that a cut keeps, and the log's size.
struct Cut {
    uint64_t offset;
    uint64_t size;
};

enum class ClientCall : uint32_t {
    startSession,
    endSession,
    persistentQuery,
    dynamicQuery,
    enumeration,
    action,
    release,
};

/// Behind it stand the texts, each with its NUL: the class or action, the selection, the attributes. A null
/// text is `noText`.
struct CallHead {
    ClientCall call;
    uint32_t attributes; ///< how many; of a session that is started: its scope
    uint64_t session;
    uint64_t handle; ///< the resource's; of a release: which answer it is for, counted from 0
};

constexpr char noText[] = "\1";
constexpr uint64_t noAnswer = UINT64_MAX;

} // namespace bench
