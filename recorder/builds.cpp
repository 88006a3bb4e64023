// The linker's notes, read where the loader has put them.

#include "recorder/builds.h"

#include <cstring>
#include <link.h>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>

namespace recorder
{

namespace
{

using nlohmann::json;

std::string hexadecimal(std::span<const unsigned char> bytes)
{
    constexpr const char* digits = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes)
        text += {digits[byte >> 4], digits[byte & 0xF]};
    return text;
}

/// Of the notes in a piece of memory; empty when the build number is not among them.
std::string buildAmong(std::span<const unsigned char> notes)
{
    constexpr char owner[] = "GNU"; // its NUL counts
    const auto padded = [](size_t size) { return (size + 3) / 4 * 4; };
    ElfW(Nhdr) note;
    while (notes.size() >= sizeof note) {
        std::memcpy(&note, notes.data(), sizeof note);
        notes = notes.subspan(sizeof note);
        const size_t length = padded(note.n_namesz) + padded(note.n_descsz);
        if (length > notes.size()) break;
        const bool named =
            note.n_namesz == sizeof owner && std::memcmp(notes.data(), owner, sizeof owner) == 0;
        if (named && note.n_type == NT_GNU_BUILD_ID)
            return hexadecimal(notes.subspan(padded(note.n_namesz), note.n_descsz));
        notes = notes.subspan(length);
    }
    return {};
}

/// The loader's name for the program itself is empty.
const char* partOf(std::string_view path)
{
    if (path.empty()) return "collector";
    return path.substr(path.rfind('/') + 1).starts_with("libvale_mc.") ? "client" : nullptr;
}

int addBuild(dl_phdr_info* object, size_t, void* found)
{
    const char* part = partOf(object->dlpi_name);
    if (part == nullptr) return 0;
    for (const ElfW(Phdr) & header : std::span(object->dlpi_phdr, object->dlpi_phnum)) {
        if (header.p_type != PT_NOTE) continue;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader tells addresses as numbers
        const auto* notes = reinterpret_cast<const unsigned char*>(object->dlpi_addr + header.p_vaddr);
        const std::string build = buildAmong({notes, header.p_memsz});
        if (!build.empty()) (*static_cast<json*>(found))[part] = build;
    }
    return 0;
}

} // namespace

json builds()
{
    json found = json::object();
    dl_iterate_phdr(addBuild, &found);
    return found;
}

} // namespace recorder
