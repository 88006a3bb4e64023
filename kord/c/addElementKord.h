// The shapes of the document (list, resource, property, end tags) and the values in them. Nothing else writes
// to it.

#pragma once

#include "addTextKord.h"
#include "kordRec.h"

#include <initializer_list>
#include <string_view>

// --- Properties

/// Text that the compiler puts together. All its bytes are copied at once, whatever its size: a copy of a
/// size that the compiler knows is a few instructions.
struct Constant {
    char bytes[112] = {};
    size_t size = 0;

    consteval Constant(std::initializer_list<std::string_view> pieces)
    {
        for (const std::string_view piece : pieces) {
            for (const char character : piece)
                bytes[size++] = character;
        }
    }
};

/// A property's start, all that stands before its value.
consteval Constant startOf(std::string_view code, std::string_view name, std::string_view displayName)
{
    return {"<Property name=\"",        name, "\" displayName=\"", displayName, "\">\n", code,
            "\n<Value type=\"string\">"};
}

struct Wording {
    std::string_view code;
    std::string_view text;
};

/// A property's label, in both orders.
struct Label {
    Constant normal;
    Constant reversed;
};

consteval Label label(Wording of)
{
    return {startOf(of.code, of.code, of.text), startOf(of.code, of.text, of.code)};
}

struct Property {
    const Constant& start;
    std::string_view value;
};
using Properties = std::initializer_list<Property>;

inline Property normal(const Label& label, std::string_view value)
{
    return {label.normal, value};
}
inline Property normal(const Label& label, const char* value)
{
    return normal(label, std::string_view(textOrEmpty(value)));
}

/// Name and display name change places; consumers of these cards expect them so.
inline Property reversed(const Label& label, const char* value)
{
    return {label.reversed, textOrEmpty(value)};
}

// --- Elements

/// An element that is opened and closed: the trace lines of both, and its display name (null: its unique ID).
struct Frame {
    const char* opened;
    const char* displayName;
    const char* closed;
};

int32_t openList(const kordRec* pKordRec, const Frame& frame);
int32_t closeList(const kordRec* pKordRec, const Frame& frame);

int32_t openResource(const kordRec* pKordRec, const Frame& frame, const char* uniqueId,
                     Properties properties = {});
int32_t closeResource(const kordRec* pKordRec, const Frame& frame);

/// A sub-list of a partition within an enclosure: a list and, in it, the partition's resource.
int32_t openSubList(const kordRec* pKordRec, const Frame& frame, const char* uniqueId);
int32_t closeSubList(const kordRec* pKordRec, const Frame& frame);

/// A whole resource. Lists come by reference: by value one would be copied in memory as one piece, which
/// waits until its two halves are there.
int32_t writeResource(const kordRec* pKordRec, std::string_view displayName, std::string_view uniqueId,
                      const Properties& properties, const Properties& middle = {},
                      const Properties& last = {});

/// A property that stands by itself.
int32_t writeProperty(const kordRec* pKordRec, const char* traceText, const Property& property);

/// What is no shape of its own: the document's frame.
void put(const kordRec* pKordRec, std::initializer_list<std::string_view> pieces);

// --- Composed values

struct Composed {
    char text[100];
    size_t length;

    // NOLINTNEXTLINE(google-explicit-constructor): it is a text wherever one is written
    operator std::string_view() const { return {text, length}; }
};

template <typename... Pieces>
[[gnu::always_inline]] inline Composed compose(Pieces... pieces)
{
    Composed composed;
    composed.length = joinText(composed.text, pieces...).size();
    return composed;
}

/// A partition within an enclosure or a system.
inline Composed partitionOf(const char* owner, const char* lparId)
{
    return compose(owner, "-", lparId);
}

/// A numbered part of an image's storage configuration: "S" array site, "A" array, "R" rank, "P" segment
/// pool.
inline Composed partOf(const char* image, const char* kind, int32_t number)
{
    return compose(image, "/", kind, number);
}
