// A file that is there whole or not at all: it is written beside its place and moved there when all of it is.

#pragma once

#include "platform/fileDescriptor.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/stat.h>

namespace platform
{

/// Until it is put in place, what lay there before stays untouched, and an end of the writer leaves it so. A
/// symbolic link is followed where the kernel lets this user write through it. What is no regular file (a
/// terminal, a pipe) has no place to be moved to and is written as it is.
class WholeFile
{
public:
    /// How far the content has to be before the file is in place: what can be made again need not be on the
    /// disk.
    enum class Safety { onDisk, inMemory };

    /// Starts the file. Without a mode it gets that of the file in its place, or else what the user gives new
    /// files. A Failure when there is no way to write it.
    explicit WholeFile(std::filesystem::path path, std::optional<mode_t> mode = std::nullopt);
    /// Removes what was not put in place.
    ~WholeFile();
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    /// Appends the bytes; a Failure when they cannot all be written.
    void write(std::string_view bytes);
    /// Nothing can be written afterwards. A Failure leaves what was there before.
    void putInPlace(Safety safety = Safety::onDisk);

private:
    void start(mode_t mode);

    std::filesystem::path named; ///< by its user, for messages
    std::filesystem::path place;
    std::filesystem::path
        made; ///< beside the place; empty: what is there is written as it is, or all is done
    FileDescriptor file;
};

/// Writes the whole file or none.
void writeWhole(const std::filesystem::path& path, std::string_view content,
                WholeFile::Safety safety = WholeFile::Safety::onDisk);

} // namespace platform
