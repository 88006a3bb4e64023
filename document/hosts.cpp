#include "document/hosts.h"

#include <algorithm>
#include <charconv>

namespace document
{

namespace
{

/// Where the number begins that a text ends in; its size where it ends in none.
size_t numberAtEnd(std::string_view text)
{
    size_t from = text.size();
    while (from > 0 && text[from - 1] >= '0' && text[from - 1] <= '9')
        --from;
    const bool negative = from < text.size() && from > 0 && text[from - 1] == '-';
    return negative ? from - 1 : from;
}

/// The host that a text tells of; nothing where its end belongs to the description.
std::optional<Host> hostOf(std::string_view text)
{
    const size_t from = numberAtEnd(text);
    if (from == text.size() || from == 0 || text[from - 1] != '=') return std::nullopt;
    Host host{.description = text.substr(0, from - 1)};
    const auto [stop, fault] = std::from_chars(text.data() + from, text.data() + text.size(), host.ports);
    return fault == std::errc{} ? std::optional(host) : std::nullopt;
}

} // namespace

std::optional<std::vector<Host>> parseHosts(std::string_view text)
{
    std::vector<Host> hosts;
    size_t from = 0; // of the comma that is looked for
    while (!text.empty()) {
        const size_t comma = text.find(',', from);
        if (comma == std::string_view::npos) return std::nullopt;
        from = comma + 1;
        if (const auto host = hostOf(text.substr(0, comma))) {
            hosts.push_back(*host);
            text.remove_prefix(from);
            from = 0;
        }
    }
    return hosts;
}

namespace
{

/// Where a key's value begins, at the start of the text or behind a comma.
size_t valueOf(std::string_view text, std::string_view key, size_t from)
{
    const auto isKey = [&](size_t at) {
        return text.substr(at).starts_with(key) && text.substr(at + key.size()).starts_with('=');
    };
    size_t at = from;
    while (at > 0 || !isKey(at)) {
        at = text.find(',', at);
        if (at == std::string_view::npos) return at;
        if (isKey(++at)) break;
    }
    return at + key.size() + 1;
}

} // namespace

std::vector<std::string_view> itemsOf(std::string_view text, std::span<const std::string_view> keys)
{
    std::vector<std::string_view> items(keys.size());
    std::string_view* last = nullptr; // an item whose end is not known
    size_t from = 0;
    for (size_t i = 0; i < keys.size(); ++i) {
        const size_t value = valueOf(text, keys[i], from);
        if (value == std::string_view::npos) continue;
        if (last != nullptr) last->remove_suffix(text.size() - (value - keys[i].size() - 2));
        last = &items[i];
        *last = text.substr(value);
        from = value;
    }
    return items;
}

} // namespace document
