// Reads a log that is being written, cut and replaced.

#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace document
{

class Log
{
public:
    explicit Log(std::string inFile) : file(std::move(inFile)) {}

    /// Hands over the bytes that were added since the last call; the first call, those there are.
    /// \return whether the log exists
    /// \throws std::system_error when it cannot be read
    bool read(const std::function<void(std::string_view bytes)>& take);

private:
    /// Where the bytes of another file at the log's name go on after those that are known.
    [[nodiscard]] off_t startIn(int descriptor) const;
    void note(std::string_view bytes);

    std::string file;
    ino_t inode = 0;
    off_t offset = 0;  ///< what was read of the file
    std::string known; ///< the last bytes that were handed over
};

} // namespace document
