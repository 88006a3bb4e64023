// What is wrong with a facility file, and where.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace console::facility
{

struct Fault {
    std::string pointer; ///< JSON pointer of the place; empty: the whole file
    std::string what;
};
using Faults = std::vector<Fault>;

/// `pointer: what` in one line, whatever the file's keys hold.
std::string toLine(const Fault& fault);

/// A pointer one step further, to a member or an element.
std::string join(const std::string& pointer, std::string_view key);
std::string join(const std::string& pointer, size_t index);

} // namespace console::facility
