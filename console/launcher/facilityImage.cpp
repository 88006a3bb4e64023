#include "facilityImage.h"

#include "platform/failure.h"
#include "platform/fileDescriptor.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <utility>

namespace console::launcher
{

namespace fs = std::filesystem;

/// All of it will be read, for its checksum. Nothing is waited for that may lie there in place of a file.
FacilityImage::FacilityImage(const fs::path& root)
{
    const fs::path path = root / image::imageFile;
    const platform::FileDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {
    };
    if (fstat(file.get(), &status) != 0) throw platform::failedOn(path.string());
    size = static_cast<size_t>(status.st_size);
    const void* base = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file.get(), 0);
    if (base == MAP_FAILED) throw platform::failedOn(path.string());
    image.base = static_cast<const char*>(base);
}

FacilityImage::FacilityImage(FacilityImage&& other) noexcept
    : image(std::exchange(other.image, {})), size(other.size)
{
}

FacilityImage::~FacilityImage()
{
    if (image.base != nullptr) munmap(const_cast<char*>(image.base), size);
}

Recording FacilityImage::recording() const
{
    const image::Header& header = image.header();
    const char* date = image.text(header.recordedDate);
    Recording recording{.command = {}, .date = date == nullptr ? "" : date, .status = header.recordedStatus};
    for (const image::Offset word :
         image.span<image::Offset>(header.recordedCommand, header.recordedWordCount))
        recording.command.emplace_back(image.text(word));
    return recording;
}

} // namespace console::launcher
