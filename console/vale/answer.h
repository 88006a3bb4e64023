// Laying out an answer: all responses of a call with all that they hold in one block, whose texts point into
// the mapped facility. A Plan says what is to be answered; `layOut` turns it into vale.h's records.

#pragma once

#include "client.h"

#include <memory>
#include <vector>

namespace console::vale
{

/// One response to be: its error, its resource and which of the plan's items it has.
struct Draft {
    image::Error error{};
    ValeResourceHandle handle = nullptr;
    size_t first = 0;
    size_t count = 0;
};

/// What the responses of each kind are made of, in the image and in the answer.
template <typename Response>
struct Parts;
template <>
struct Parts<ValeQueryResponse> {
    using Source = const image::Attribute*;
    using Item = ValeAttribute;
};
template <>
struct Parts<ValeEnumerateResponse> {
    using Source = ValeResourceHandle;
    using Item = ValeResourceHandle;
};
template <>
struct Parts<ValeActionResponse> {
    using Source = const image::Value*;
    using Item = ValeElement;
};

template <typename Response>
struct Plan {
    const char* className = nullptr;
    std::vector<Draft> responses;
    std::vector<typename Parts<Response>::Source> items;

    /// Starts a response; what is added from now on is its own.
    void open(ValeResourceHandle handle, const image::Error& error = {})
    {
        responses.push_back({.error = error, .handle = handle, .first = items.size()});
    }
    void add(typename Parts<Response>::Source item)
    {
        items.push_back(item);
        ++responses.back().count;
    }
};

/// What so many records take of a block, in which every one of them is aligned.
template <typename Record>
constexpr size_t sizeOf(size_t count)
{
    constexpr size_t step = 8;
    constexpr size_t size = sizeof(Record); // NOLINT(bugprone-sizeof-expression): also of pointers
    static_assert(alignof(Record) <= step);
    return (count * size + step - 1) / step * step;
}

/// The block of an answer, taken from front to back.
struct Room {
    char* next;

    template <typename Record>
    Record* take(size_t count)
    {
        auto* records = reinterpret_cast<Record*>(next);
        std::uninitialized_value_construct_n(records, count);
        next += sizeOf<Record>(count);
        return records;
    }
};

/// What a value needs beside its attribute or element.
inline size_t extraSize(const image::Value& value)
{
    if (value.type == image::Type::integers) return sizeOf<ValeIntegerList>(1);
    if (value.type == image::Type::texts) return sizeOf<ValeTextList>(1) + sizeOf<const char*>(value.count);
    return 0;
}
inline size_t extraSize(const image::Attribute* attribute)
{
    return extraSize(attribute->value);
}
inline size_t extraSize(const image::Value* value)
{
    return extraSize(*value);
}
inline size_t extraSize(ValeResourceHandle)
{
    return 0;
}

void fill(ValeAttribute& item, const image::Attribute* source, const image::Image& image, Room& room);
void fill(ValeElement& item, const image::Value* source, const image::Image& image, Room& room);
inline void fill(ValeResourceHandle& item, ValeResourceHandle source, const image::Image&, Room&)
{
    item = source;
}

inline void seat(ValeQueryResponse& response, const Draft& draft, const char*, const ValeAttribute* items)
{
    response.handle = draft.handle;
    response.attributes = items;
    response.attributeCount = static_cast<uint32_t>(draft.count);
}
inline void seat(ValeEnumerateResponse& response, const Draft& draft, const char* className,
                 const ValeResourceHandle* items)
{
    response.className = className;
    response.handles = items;
    response.handleCount = static_cast<uint32_t>(draft.count);
}
inline void seat(ValeActionResponse& response, const Draft& draft, const char*, const ValeElement* items)
{
    response.result = {.count = static_cast<uint32_t>(draft.count), .elements = items};
}

/// The answer in one block, held by the ledger under `of`.
template <typename Response>
Response* layOut(Client& client, const Plan<Response>& plan, uint64_t of)
{
    using Item = typename Parts<Response>::Item;
    const image::Image& image = client.run.image;
    size_t size = sizeOf<Response>(plan.responses.size()) + sizeOf<Item>(plan.items.size());
    for (const auto& item : plan.items)
        size += extraSize(item);

    Room room{static_cast<char*>(client.responses.hold(size, of))};
    auto* responses = room.take<Response>(plan.responses.size());
    auto* items = room.take<Item>(plan.items.size());
    for (size_t i = 0; i < plan.items.size(); ++i)
        fill(items[i], plan.items[i], image, room);
    for (size_t i = 0; i < plan.responses.size(); ++i) {
        const Draft& draft = plan.responses[i];
        responses[i].error.number = draft.error.number;
        responses[i].error.message = image.text(draft.error.message);
        seat(responses[i], draft, plan.className, items + draft.first);
    }
    return responses;
}

} // namespace console::vale
