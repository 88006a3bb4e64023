// A made facility of a given size on a console of its own, the collector's run on it, and that run's
// recording.

#pragma once

#include "program.h"

namespace bench
{

/// Two numbers of each kind: the collector's own and the client's.
struct Calls {
    double own;
    double client;
    double traceLines;
    double onTrace; ///< calls on the trace log, of the collector's own
};

struct Instructions {
    double own;
    double client;
};

/// In bytes.
struct Memory {
    double own;      ///< the heap that the collector asked for
    double heap;     ///< and with the client's, its answers among it
    double resident; ///< anonymous resident memory of the process
};

/// Both the collector and the floor with the client's calls.
struct Times {
    double collector;
    double floor;
    double client;
};

/// Nanoseconds by the wall clock.
struct Waits {
    double whole;
    double commands; ///< shells and what they run
    double client;
    double removals; ///< of files, which are the commands' output as long as no log is cut
    double shells;   ///< as many that do nothing
};

class Facility
{
public:
    /// Makes a facility of that many drives, a multiple of 100, and the logical configuration alike, in the
    /// folder, and records a run on it.
    Facility(int drives, const std::string& folder);

    [[nodiscard]] int drives() const { return drives_; }
    [[nodiscard]] double documentSize() const;

    [[nodiscard]] Times round(size_t turn) const;
    [[nodiscard]] Calls countCalls() const;
    [[nodiscard]] Instructions countInstructions() const;
    [[nodiscard]] Memory measureMemory() const;
    [[nodiscard]] Waits measureWaits() const;

private:
    void make() const;
    void record() const;
    void cleanLog() const;
    /// What has the recorder in a program that is started with it.
    [[nodiscard]] std::string recorder() const;
    /// Runs a program on the console.
    Ended onConsole(const Command& program, int status = 0) const;
    /// Runs the collector, with something in front of its name.
    void collect(Command before) const;

    int drives_;
    std::string folder_; ///< with a slash at its end
    std::string programs_ = programFolder();
};

} // namespace bench
