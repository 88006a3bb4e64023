// Joining a run: its image and shared state are mapped, its journal is opened for appending.

#include "image/run.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace console::image
{

namespace
{

struct Mapping {
    void* base = nullptr; ///< null: it could not be mapped, errno says why
    size_t size = 0;
};

Mapping mapFile(const std::string& path, bool writable)
{
    const int file = open(path.c_str(), (writable ? O_RDWR : O_RDONLY) | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0) return {};
    Mapping mapping;
    struct stat status {
    };
    if (fstat(file, &status) == 0) {
        mapping.size = static_cast<size_t>(status.st_size);
        void* base =
            mmap(nullptr, mapping.size, PROT_READ | (writable ? PROT_WRITE : 0), MAP_SHARED, file, 0);
        if (base != MAP_FAILED) mapping.base = base;
    }
    const int reason = errno;
    close(file);
    errno = reason;
    return mapping;
}

std::string unusable(const std::string& path, const char* why)
{
    return "cannot use " + path + ": " + why;
}

std::string mapImage(Run& run, const std::string& path)
{
    const Mapping mapping = mapFile(path, false);
    if (mapping.base == nullptr) return unusable(path, std::strerror(errno));
    run.image.base = static_cast<const char*>(mapping.base);
    const bool known = mapping.size >= sizeof(Header) && run.image.header().magic == magic;
    return known ? "" : unusable(path, "it is no compiled facility of this version");
}

std::string mapState(Run& run, const std::string& path)
{
    const Mapping mapping = mapFile(path, true);
    if (mapping.base == nullptr) return unusable(path, std::strerror(errno));
    if (mapping.size < sizeof(RunState) + run.image.header().ruleCount * sizeof(RuleState)) {
        return unusable(path, "it is too short");
    }
    run.state = static_cast<RunState*>(mapping.base);
    run.ruleStates = reinterpret_cast<RuleState*>(run.state + 1);
    return "";
}

std::string openJournal(Run& run, const std::string& path)
{
    run.journal = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666);
    return run.journal < 0 ? unusable(path, std::strerror(errno)) : "";
}

} // namespace

std::string openRun(Run& run)
{
    const char* root = std::getenv(rootVariable);
    if (root == nullptr || *root == '\0') {
        return "there is no console here: start the program through `kord-console run`";
    }
    const std::string folder = std::string(root) + '/';
    std::string failure = mapImage(run, folder + imageFile);
    if (failure.empty()) failure = mapState(run, folder + stateFile);
    if (failure.empty()) failure = openJournal(run, folder + journalFile);
    return failure;
}

const Class* Image::findClass(const char* name) const
{
    if (name == nullptr) return nullptr;
    for (const Class& candidate : classes()) {
        if (std::strcmp(text(candidate.name), name) == 0) return &candidate;
    }
    return nullptr;
}

const Attribute* AttributeFinder::find(const Image& image, const Resource& resource)
{
    const std::span<const Attribute> attributes = image.attributes(resource);
    if (known != 0 && place < attributes.size() && attributes[place].name == known) return &attributes[place];
    for (const Attribute& attribute : attributes) {
        if (known == 0 && image.text(attribute.name) == name) known = attribute.name;
        if (attribute.name != known) continue;
        place = static_cast<size_t>(&attribute - attributes.data());
        return &attribute;
    }
    return nullptr;
}

} // namespace console::image
