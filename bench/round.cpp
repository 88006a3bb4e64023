// One round of a whole run, on the console: the collector, the floor that replays its recording, and the
// client's calls alone, each measured once.
//
//     kord-bench-round TURN MTMS RECORDING
//
// RECORDING is a folder with `calls` and `document.xml`. TURN says which of the three
// begins. Prints three numbers, in nanoseconds of a process's own user and system time without that of its
// children: the collector's, the floor's, the client calls'.

#include "kordRec.h"
#include "program.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <unistd.h>

namespace
{

using namespace bench;

/// What a program printed: nanoseconds.
double numberOf(const Ended& ended)
{
    return std::strtod(ended.output.c_str(), nullptr);
}

struct Round {
    std::string mtms;
    std::string recording;
    std::string programs = programFolder();
    std::string log = std::string(traceFolder) + "/kord." + mtms.substr(9) + ".log";
    std::string document = std::string(documentFolder) + "/addTarnKord_" + mtms + ".xml";

    [[nodiscard]] double collector() const
    {
        constexpr int built = 3;
        return run({programs + "addTarnKord", "x", mtms}, built).time;
    }

    /// Without the time that it needs to get at what it replays.
    [[nodiscard]] double floor() const
    {
        const Ended ended = run({programs + "kord-bench-floor", recording + "/calls",
                                 recording + "/document.xml", log, document});
        return ended.time - numberOf(ended);
    }

    [[nodiscard]] double client() const
    {
        return numberOf(run({programs + "kord-bench-floor", recording + "/calls"}));
    }

    void clean() const
    {
        unlink(log.c_str());
        unlink(document.c_str());
    }
};

void play(const Round& round, size_t turn)
{
    constexpr std::array contenders = {&Round::collector, &Round::floor, &Round::client};
    std::array<double, contenders.size()> costs{};
    for (size_t i = 0; i < contenders.size(); ++i) {
        const size_t contender = (turn + i) % contenders.size();
        round.clean();
        costs[contender] = (round.*contenders[contender])();
    }
    std::printf("%.0f %.0f %.0f\n", costs[0], costs[1], costs[2]);
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 4) {
        std::fputs("usage: kord-bench-round TURN MTMS RECORDING\n", stderr);
        return 2;
    }
    try {
        play({.mtms = argv[2], .recording = argv[3]}, std::strtoul(argv[1], nullptr, 10));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kord-bench-round: %s\n", failure.what());
        return 2;
    }
    return 0;
}
