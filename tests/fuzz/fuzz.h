// What the fuzz targets share: a property that must hold, an input that is taken in pieces, a guarded field.
//
// A target is one function that gets any bytes. The fuzzer looks for bytes that break it; ./test replays the
// bytes kept under corpus/.

#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fuzz
{

/// Ends the process when a property does not hold, which the fuzzer and the replay take for a find.
inline void require(bool holds, const char* property)
{
    if (holds) return;
    fprintf(stderr, "does not hold: %s\n", property);
    abort();
}

/// An input's bytes, taken from the front.
class Input
{
public:
    Input(const uint8_t* data, size_t size) : rest(reinterpret_cast<const char*>(data), size) {}

    /// The next byte as a number; 0 behind the end.
    size_t number()
    {
        if (rest.empty()) return 0;
        const auto byte = static_cast<unsigned char>(rest.front());
        rest.remove_prefix(1);
        return byte;
    }

    /// The text up to the next line feed, which goes too.
    std::string line()
    {
        const size_t end = rest.find('\n');
        std::string text = terminated(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        return text;
    }

    /// All that is left.
    [[nodiscard]] std::string text() const { return terminated(rest); }
    [[nodiscard]] std::string_view bytes() const { return rest; }

private:
    /// A C text ends at its first NUL.
    static std::string terminated(std::string_view text)
    {
        return std::string(text.substr(0, text.find('\0')));
    }

    std::string_view rest;
};

/// A field of some size that knows when something was written around it.
class Field
{
public:
    explicit Field(size_t length) : guarded(length + 2 * guard, mark), size(length) {}

    operator std::span<char>() { return {guarded.data() + guard, size}; }

    /// What the field holds.
    [[nodiscard]] std::string text() const
    {
        const std::string_view all = guarded;
        require(all.substr(0, guard).find_first_not_of(mark) == std::string_view::npos,
                "nothing before a field");
        require(all.substr(guard + size).find_first_not_of(mark) == std::string_view::npos,
                "nothing behind a field");
        const std::string_view held = all.substr(guard, size);
        const size_t end = held.find('\0');
        require(size == 0 || end != std::string_view::npos, "a field's text is terminated");
        return std::string(held.substr(0, end));
    }

    /// A text as the field can hold it.
    [[nodiscard]] std::string cut(const std::string& text) const
    {
        return text.substr(0, size == 0 ? 0 : size - 1);
    }

private:
    static constexpr size_t guard = 16;
    static constexpr char mark = '#';

    std::string guarded;
    size_t size;
};

} // namespace fuzz
