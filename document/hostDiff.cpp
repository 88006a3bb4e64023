#include "document/hostDiff.h"

#include <algorithm>
#include <optional>
#include <unordered_map>

namespace document
{

namespace
{

constexpr std::string_view hostsCode = "U2";
constexpr std::string_view countsCode = "U1";

/// A list of hosts with the ports of each description.
class Ports
{
public:
    explicit Ports(std::span<const Host> hosts)
    {
        for (const Host& host : hosts) {
            const auto [known, isNew] = ports.try_emplace(host.description, 0);
            if (isNew) descriptions.push_back(host.description);
            known->second += host.ports;
        }
    }

    [[nodiscard]] std::optional<int64_t> of(std::string_view description) const
    {
        const auto found = ports.find(description);
        return found == ports.end() ? std::nullopt : std::optional(found->second);
    }

    /// How many ports of each description there are more than in another list, in the order of this one.
    [[nodiscard]] std::vector<Host> moreThan(const Ports& other) const
    {
        std::vector<Host> more;
        for (const std::string_view description : descriptions) {
            const int64_t surplus = ports.at(description) - other.of(description).value_or(0);
            const bool came = !other.of(description).has_value();
            if (surplus > 0 || came) more.push_back({.description = description, .ports = surplus});
        }
        return more;
    }

private:
    std::unordered_map<std::string_view, int64_t> ports;
    std::vector<std::string_view> descriptions;
};

class HostDiff
{
public:
    HostDiff(const HostsOf& inBefore, const HostsOf& inAfter, std::string_view ofLabel,
             std::deque<std::string>& ownTexts)
        : before(inBefore.hosts), after(inAfter.hosts), partitions({inBefore.part, inAfter.part}),
          label(ofLabel), texts(ownTexts)
    {
    }

    std::vector<Change> changes()
    {
        const std::vector<Host> gone = before.moreThan(after);
        std::unordered_map<int64_t, std::deque<size_t>> goneByPorts;
        for (size_t i = 0; i < gone.size(); ++i)
            goneByPorts[gone[i].ports].push_back(i);
        std::vector<bool> renamed(gone.size());
        for (const Host& host : after.moreThan(before)) {
            std::deque<size_t>& candidates = goneByPorts[host.ports];
            if (candidates.empty()) {
                recount(host.description);
                continue;
            }
            renamed[candidates.front()] = true;
            rename(gone[candidates.front()], host);
            candidates.pop_front();
        }
        for (size_t i = 0; i < gone.size(); ++i) {
            if (!renamed[i]) recount(gone[i].description);
        }
        return std::move(found);
    }

private:
    std::string_view keep(std::string text) { return texts.emplace_back(std::move(text)); }

    std::optional<std::string_view> keep(const std::optional<int64_t>& number)
    {
        return number ? std::optional(keep(std::to_string(*number))) : std::nullopt;
    }

    void add(ChangeType type, std::string_view description, ValueChange value)
    {
        value.code = hostsCode;
        value.label = label;
        found.push_back({.type = type,
                         .kind = Kind::host,
                         .before = type == ChangeType::added ? nullptr : partitions[0],
                         .after = type == ChangeType::removed ? nullptr : partitions[1],
                         .host = description,
                         .values = {value}});
    }

    void rename(const Host& old, const Host& now)
    {
        const auto text = [&](const Host& host) {
            return keep(std::string(host.description) + '=' + std::to_string(host.ports));
        };
        add(ChangeType::changed, old.description,
            {.code = {}, .label = {}, .column = "description", .before = text(old), .after = text(now)});
    }

    void recount(std::string_view description)
    {
        const auto old = before.of(description);
        const auto now = after.of(description);
        const ChangeType type = !old ? ChangeType::added : !now ? ChangeType::removed : ChangeType::changed;
        add(type, description,
            {.code = {},
             .label = {},
             .item = "ports",
             .column = "ports",
             .before = keep(old),
             .after = keep(now)});
    }

    Ports before;
    Ports after;
    std::array<const Part*, 2> partitions;
    std::string_view label;
    std::deque<std::string>& texts;
    std::vector<Change> found;
};

} // namespace

std::vector<Change> hostChanges(const HostsOf& before, const HostsOf& after, std::string_view label,
                                std::deque<std::string>& texts)
{
    return HostDiff(before, after, label, texts).changes();
}

void moveHostCounts(std::vector<ValueChange>& values, std::vector<Change>& hosts)
{
    if (hosts.empty()) return;
    const auto follows = [](const ValueChange& value) {
        return value.code == countsCode && (value.item == "o0" || value.item == "o1");
    };
    std::ranges::copy_if(values, std::back_inserter(hosts.front().values), follows);
    std::erase_if(values, follows);
}

} // namespace document
