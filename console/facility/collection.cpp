#include "facility/collection.h"

namespace console::facility
{

bool isCollection(const std::vector<std::string>& command)
{
    constexpr size_t words = 3;
    return command.size() >= words && command[0].substr(command[0].rfind('/') + 1) == collector;
}

std::string traceLogOf(const std::string& system)
{
    constexpr size_t serial = 9;
    constexpr size_t serialLength = 7;
    return "var/tarnquay/log/kord." + (system.size() > serial ? system.substr(serial, serialLength) : "") +
           ".log";
}

} // namespace console::facility
