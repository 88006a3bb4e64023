// An open file that is closed where its owner ends.

#pragma once

#include <unistd.h>
#include <utility>

namespace platform
{

class FileDescriptor
{
public:
    explicit FileDescriptor(int opened) : number(opened) {}
    ~FileDescriptor()
    {
        if (number >= 0) close(number);
    }
    FileDescriptor(FileDescriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(number, other.number);
        return *this;
    }

    [[nodiscard]] bool isOpen() const { return number >= 0; }
    [[nodiscard]] int get() const { return number; }

private:
    int number;
};

} // namespace platform
