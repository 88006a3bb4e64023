// What a run of the collector asked of the system, in the order in which it asked: written by the recorder
// while the collector runs, replayed by the floor.
//
// A recording is a file of entries, each a head and so many bytes.

#pragma once

#include <cstdint>

namespace bench
{

/// Names the recording's file to the recorder.
constexpr const char* recordingVariable = "KORD_BENCH_RECORDING";

enum class EntryKind : uint32_t {
    traceLine, ///< what one opening of the trace log wrote
    command,   ///< what was handed to the shell
};

struct EntryHead {
    EntryKind kind;
    uint32_t length;
};

} // namespace bench
