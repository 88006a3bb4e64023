// What a recording tells about itself: what ran, where and when, and how it ended.

#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace recorder
{

struct Origin {
    std::vector<std::string> command;            ///< the program's bare name and its arguments
    std::string system;                          ///< the managed system; empty: unknown
    std::string date;                            ///< when it began
    int status = 0;                              ///< what the program ended with
    std::map<std::string, std::string> versions; ///< of what took part, by name
};

/// The program is run now.
Origin beginOrigin(const std::vector<std::string>& program);

/// The bare name of a program and its arguments.
std::vector<std::string> withBareName(std::vector<std::string> command);

} // namespace recorder
