// What keeps a program from doing what it was asked: one line for its user.

#pragma once

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace platform
{

class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The failure of a system call on a file or folder.
inline Failure failedOn(const std::string& what, int reason = errno)
{
    return Failure(what + ": " + std::strerror(reason));
}

} // namespace platform
