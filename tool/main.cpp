// kord: the command for inventory documents and trace logs.

#include "commands.h"

int main(int argc, char* argv[])
{
    return platform::run(
        {.name = "kord",
         .version = KORD_VERSION,
         .help =
             "Reads the inventory documents and trace logs that collections leave, and records collections.",
         .manual = "kord(1)",
         .commands = {tool::showCommand(), tool::listCommand(), tool::kindsCommand(), tool::jsonCommand(),
                      tool::xmlCommand(), tool::diffCommand(), tool::importCommand(), tool::historyCommand(),
                      tool::metricsCommand(), tool::explainCommand(), tool::followCommand(),
                      tool::recordCommand()}},
        {argv, static_cast<size_t>(argc)});
}
