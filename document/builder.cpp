#include "document/builder.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace document
{

Builder::Builder(std::string name)
{
    constexpr size_t firstBlock = size_t{64} << 10U;
    document.name = std::move(name);
    document.memory = std::make_unique<std::pmr::monotonic_buffer_resource>(firstBlock);
}

void Builder::timestamp(std::string_view text)
{
    document.timestamp = keep(text);
}

std::string_view Builder::keep(std::string_view text)
{
    if (text.empty()) return {};
    auto* const kept = static_cast<char*>(document.memory->allocate(text.size(), 1));
    std::memcpy(kept, text.data(), text.size());
    return {kept, text.size()};
}

std::string_view Builder::keepOnce(std::string_view text)
{
    const auto known = texts.find(text);
    if (known != texts.end()) return known->second;
    const std::string_view kept = keep(text);
    return texts.emplace(kept, kept).first->second;
}

Builder::Name& Builder::nameOf(const PropertyName& name)
{
    if (*expected == nullptr || *(*expected)->name != name) *expected = &findName(name);
    Name& found = **expected;
    expected = &found.follower;
    return found;
}

Builder::Name& Builder::findName(const PropertyName& name)
{
    const std::string key = std::string(name.code) + (name.reversed ? '-' : '+') + std::string(name.label);
    Name& known = names[key];
    if (known.name == nullptr) {
        void* const memory = document.memory->allocate(sizeof(PropertyName), alignof(PropertyName));
        known.name = new (memory)
            PropertyName{.code = keep(name.code), .label = keep(name.label), .reversed = name.reversed};
    }
    return known;
}

template <typename Item>
std::span<Item> Builder::keepFrom(std::vector<Item>& items, size_t first)
{
    const size_t count = items.size() - first;
    if (count == 0) return {};
    auto* const kept = static_cast<Item*>(document.memory->allocate(count * sizeof(Item), alignof(Item)));
    std::uninitialized_copy(items.begin() + static_cast<std::ptrdiff_t>(first), items.end(), kept);
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(first), items.end());
    return {kept, count};
}

void Builder::openList(std::string_view name)
{
    open.back().list = keepOnce(name);
}

void Builder::closeList()
{
    open.back().list = {};
}

void Builder::openPart(std::string_view name, std::string_view id)
{
    Open opened;
    opened.part.list = open.empty() ? std::string_view{} : open.back().list;
    opened.part.name = keepOnce(name);
    opened.part.id = name == id ? opened.part.name : keep(id);
    opened.part.kind = kindOf(opened.part.list, opened.part.name);
    opened.firstProperty = properties.size();
    opened.firstChild = parts.size();
    expected = &firstNames.at(static_cast<size_t>(opened.part.kind));
    open.push_back(opened);
}

void Builder::property(const PropertyName& name, std::string_view value)
{
    Name& known = nameOf(name);
    if (value == open.back().part.id)
        known.last = open.back().part.id;
    else if (value != known.last)
        known.last = keep(value);
    properties.push_back({.name = known.name, .value = known.last});
}

void Builder::closePart()
{
    Part part = open.back().part;
    part.properties = keepFrom(properties, open.back().firstProperty);
    part.children = keepFrom(parts, open.back().firstChild);
    for (Part& child : part.children) {
        for (Part& inner : child.children)
            inner.around = &child;
    }
    open.pop_back();
    parts.push_back(part);
}

Document Builder::finish()
{
    while (!open.empty())
        closePart();
    const std::span<Part> roots = keepFrom(parts, 0);
    document.root = roots.data();
    for (Part& inner : roots.front().children)
        inner.around = document.root;
    return std::move(document);
}

} // namespace document
