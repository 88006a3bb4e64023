#include "document/hosts.h"

#include <algorithm>
#include <charconv>

namespace document
{

namespace
{

/// The host that an item tells of; nothing where the comma after it belongs to the description.
std::optional<Host> hostOf(std::string_view item)
{
    const size_t sign = item.rfind('=');
    if (sign == std::string_view::npos) return std::nullopt;
    const std::string_view digits = item.substr(sign + 1);
    int64_t ports = 0;
    const auto [stop, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), ports);
    if (fault != std::errc{} || stop != digits.data() + digits.size()) return std::nullopt;
    return Host{.description = std::string(item.substr(0, sign)), .ports = ports};
}

} // namespace

std::optional<std::vector<Host>> parseHosts(std::string_view text)
{
    std::vector<Host> hosts;
    size_t from = 0;
    while (!text.empty()) {
        const size_t comma = text.find(',', from);
        if (comma == std::string_view::npos) return std::nullopt;
        from = comma + 1;
        if (auto host = hostOf(text.substr(0, comma))) {
            hosts.push_back(std::move(*host));
            text.remove_prefix(from);
            from = 0;
        }
    }
    return hosts;
}

std::optional<NamedValues> parseNamedValues(std::string_view text)
{
    NamedValues values;
    while (!text.empty()) {
        const std::string_view item = text.substr(0, text.find(','));
        const size_t sign = item.find('=');
        if (sign != std::string_view::npos)
            values.emplace_back(item.substr(0, sign), item.substr(sign + 1));
        else if (!values.empty())
            values.back().second.append(1, ',').append(item);
        else
            return std::nullopt;
        text.remove_prefix(std::min(item.size() + 1, text.size()));
    }
    return values;
}

} // namespace document
