#include "document/input.h"

#include "platform/text.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <unistd.h>
#include <zlib.h>

namespace document
{

namespace fs = std::filesystem;

/// A file that zlib reads, or bytes in memory.
struct Input::Source {
    gzFile file = nullptr;
    std::string_view bytes{};

    Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    ~Source()
    {
        if (file != nullptr) gzclose_r(file);
    }
};

namespace
{

[[noreturn]] void fail(const std::string& name, int reason)
{
    throw Malformed(name + ": " + std::strerror(reason));
}

gzFile open(const std::string& file)
{
    if (file != "-") return gzopen(file.c_str(), "rbe");
    const int descriptor = dup(STDIN_FILENO);
    return descriptor < 0 ? nullptr : gzdopen(descriptor, "rb");
}

} // namespace

Input::Input(const std::string& file)
    : shownName(file == "-" ? "standard input" : platform::shown(file)), source(std::make_unique<Source>())
{
    source->file = open(file);
    if (source->file == nullptr) fail(shownName, errno);
    constexpr unsigned packed = 1U << 17U;
    gzbuffer(source->file, packed);
}

Input::Input(const std::string& name, std::string_view bytes)
    : shownName(platform::shown(name)), source(std::make_unique<Source>())
{
    source->bytes = bytes;
}

Input::~Input() = default;
Input::Input(Input&&) noexcept = default;

size_t Input::read(std::span<char> bytes)
{
    if (source->file == nullptr) {
        const size_t count = std::min(bytes.size(), source->bytes.size());
        std::memcpy(bytes.data(), source->bytes.data(), count);
        source->bytes.remove_prefix(count);
        return count;
    }
    const auto wanted = static_cast<unsigned>(std::min<size_t>(bytes.size(), INT_MAX));
    const int count = gzread(source->file, bytes.data(), wanted);
    int trouble = Z_OK;
    const char* const what = gzerror(source->file, &trouble);
    if (trouble == Z_BUF_ERROR) {
        cut = true; // what could be unpacked was
        return static_cast<size_t>(std::max(count, 0));
    }
    if (trouble == Z_ERRNO) fail(shownName, errno);
    if (count < 0) throw Malformed(shownName + ": cannot be unpacked: " + platform::shown(what));
    return static_cast<size_t>(count);
}

std::vector<std::string> documentsOf(const std::string& file)
{
    std::error_code ignored;
    if (!fs::is_directory(file, ignored)) return {file};
    std::vector<std::string> found;
    std::error_code error;
    for (fs::directory_iterator entry(file, error); !error && entry != end(entry); entry.increment(error)) {
        const std::string name = entry->path().filename();
        const bool document = name.ends_with(".xml") || name.ends_with(".xml.gz");
        // Who can write to the folder can put a pipe there, which would be waited for.
        const bool isOther = entry->exists(ignored) && !entry->is_regular_file(ignored);
        if (name.starts_with("addTarnKord_") && document && !isOther) found.push_back(entry->path());
    }
    if (error) fail(platform::shown(file), error.value());
    std::ranges::sort(found);
    return found;
}

} // namespace document
