#include "recorder/origin.h"

#include <ctime>
#include <sys/utsname.h>

namespace recorder
{

namespace
{

std::string now()
{
    const std::time_t seconds = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

/// Linux 6.1.0: what follows the numbers of a release is anybody's.
std::string machine()
{
    utsname names{};
    if (uname(&names) != 0) return {};
    const std::string release = names.release;
    return std::string(names.sysname) + ' ' + release.substr(0, release.find_first_not_of("0123456789.")) +
           ' ' + names.machine;
}

} // namespace

Origin beginOrigin(const std::vector<std::string>& program)
{
    Origin origin;
    origin.command = withBareName(program);
    origin.date = now();
    origin.versions = {{"kord", KORD_VERSION}, {"machine", machine()}};
    return origin;
}

std::vector<std::string> withBareName(std::vector<std::string> command)
{
    command[0] = command[0].substr(command[0].rfind('/') + 1);
    return command;
}

} // namespace recorder
