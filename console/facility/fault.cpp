// JSON pointers and the printed form of faults.

#include "facility/fault.h"

namespace console::facility
{

std::string join(const std::string& pointer, std::string_view key)
{
    std::string joined = pointer + '/';
    for (const char c : key) {
        if (c == '~') {
            joined += "~0";
        } else if (c == '/') {
            joined += "~1";
        } else {
            joined += c;
        }
    }
    return joined;
}

std::string join(const std::string& pointer, size_t index)
{
    return pointer + '/' + std::to_string(index);
}

std::string toLine(const Fault& fault)
{
    std::string line = fault.pointer + ": " + fault.what;
    for (char& c : line) {
        if (static_cast<unsigned char>(c) < ' ') c = '?';
    }
    return line;
}

} // namespace console::facility
