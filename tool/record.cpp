// kord record: a program on a console becomes a facility file that replays it.

#include "commands.h"

#include "recorder/record.h"

#include <memory>

namespace tool
{

platform::Command recordCommand()
{
    const auto options = std::make_shared<recorder::Options>();
    return {.name = "record",
            .help = "Run a program on a console and record it as a facility file",
            .options = {{.names = "-o,--output",
                         .into = &options->output,
                         .help = "The facility file to write",
                         .value = "FACILITY",
                         .required = true},
                        {.names = "--redact",
                         .into = &options->redact,
                         .help = "Put stand-ins for serials, names and descriptions"},
                        {.names = "--map",
                         .into = &options->map,
                         .help = "Keep the pairs of originals and stand-ins, and use those kept there",
                         .value = "FILE"},
                        {.names = "--verify",
                         .into = &options->verify,
                         .help = "Replay the file at once and compare"}},
            .program = &options->program,
            .run = [options] { return recorder::record(*options); },
            .trouble = recorder::recordingFailed}; // else it ends with the program's own status
}

} // namespace tool
