#include "addElementKord.h"

#include "addTrcKord.h"

#include <cstring>

namespace
{

using namespace std::string_view_literals;

constexpr std::string_view endList = "</ResourceList>\n";
constexpr std::string_view endResource = "</Resource>\n";
constexpr std::string_view endProperty = "</Value>\n</Property>\n";
constexpr std::string_view endBoth = "</Resource>\n</ResourceList>\n";

/// Gathers the pieces of an element on their way to the document: a stream takes one large piece faster than
/// many small ones.
struct Element {
    FILE* stream;
    size_t used = 0;
    char bytes[4096];

    explicit Element(const kordRec* pKordRec) : stream(pKordRec->inp) {}
    ~Element() { flush(); }
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

    void add(std::string_view piece)
    {
        if (piece.size() > sizeof bytes - used) flush();
        if (piece.size() > sizeof bytes) return write(piece);
        memmove(bytes + used, piece.data(), piece.size()); // a bounded memcpy is made in place, slowly
        used += piece.size();
    }
    void add(const Property& property)
    {
        constexpr size_t around = sizeof property.start.bytes + endProperty.size();
        if (property.value.size() > sizeof bytes - around) return addLong(property);
        if (property.value.size() + around > sizeof bytes - used) flush();
        char* at = bytes + used;
        memcpy(at, property.start.bytes, sizeof property.start.bytes);
        at += property.start.size;
        memmove(at, property.value.data(), property.value.size());
        at += property.value.size();
        memcpy(at, endProperty.data(), endProperty.size());
        used = static_cast<size_t>(at + endProperty.size() - bytes);
    }
    void add(const Properties& properties)
    {
        for (const Property& property : properties)
            add(property);
    }
    void addLong(const Property& property)
    {
        add({property.start.bytes, property.start.size});
        add(property.value);
        add(endProperty);
    }
    /// The first pieces of an element, in place: one that the compiler knows is an instruction or two.
    template <typename... Pieces>
    [[gnu::always_inline]] void begin(Pieces... pieces)
    {
        const size_t size = (pieces.size() + ...);
        if (size > sizeof bytes) return (add(pieces), ...);
        char* at = bytes;
        ((memmove(at, pieces.data(), pieces.size()), at += pieces.size()), ...);
        used = size;
    }
    void flush();
    void write(std::string_view text) const;
};

void Element::flush()
{
    write({bytes, used});
    used = 0;
}

[[gnu::noinline]] void Element::write(std::string_view text) const
{
    // What follows a piece that was lost would stand where it does not belong: the document ends there.
    if (stream != nullptr && ferror_unlocked(stream) == 0)
        fwrite_unlocked(text.data(), 1, text.size(), stream);
}

const char* nameOf(const Frame& frame, const char* uniqueId)
{
    return textOrEmpty(frame.displayName != nullptr ? frame.displayName : uniqueId);
}

void addResource(Element& element, std::string_view displayName, std::string_view id,
                 const Properties& properties)
{
    element.begin("<Resource displayName=\""sv, displayName, "\" uniqueId=\""sv, id, "\">\n"sv, id, "\n"sv);
    element.add(properties);
}

int32_t closeElement(const kordRec* pKordRec, const Frame& frame, std::string_view endTags)
{
    trace(pKordRec, {">>", frame.closed});
    put(pKordRec, {endTags});
    return 0;
}

} // namespace

int32_t openList(const kordRec* pKordRec, const Frame& frame)
{
    trace(pKordRec, {">>", frame.opened});
    put(pKordRec, {"<ResourceList displayName=\"", frame.displayName, "\">\n"});
    return 0;
}

int32_t closeList(const kordRec* pKordRec, const Frame& frame)
{
    return closeElement(pKordRec, frame, endList);
}

int32_t openResource(const kordRec* pKordRec, const Frame& frame, const char* uniqueId, Properties properties)
{
    trace(pKordRec, {">>", frame.opened});
    Element element(pKordRec);
    addResource(element, nameOf(frame, uniqueId), textOrEmpty(uniqueId), properties);
    return 0;
}

int32_t closeResource(const kordRec* pKordRec, const Frame& frame)
{
    return closeElement(pKordRec, frame, endResource);
}

int32_t openSubList(const kordRec* pKordRec, const Frame& frame, const char* uniqueId)
{
    openList(pKordRec, {.opened = frame.opened, .displayName = "Enclosures Partitions", .closed = nullptr});
    Element element(pKordRec);
    addResource(element, nameOf(frame, uniqueId), textOrEmpty(uniqueId), {});
    return 0;
}

int32_t closeSubList(const kordRec* pKordRec, const Frame& frame)
{
    return closeElement(pKordRec, frame, endBoth);
}

int32_t writeResource(const kordRec* pKordRec, std::string_view displayName, std::string_view uniqueId,
                      const Properties& properties, const Properties& middle, const Properties& last)
{
    Element element(pKordRec);
    addResource(element, displayName, uniqueId, properties);
    element.add(middle);
    element.add(last);
    element.add(endResource);
    return 0;
}

int32_t writeProperty(const kordRec* pKordRec, const char* traceText, const Property& property)
{
    trace(pKordRec, {">>", traceText});
    Element element(pKordRec);
    element.add(property);
    return 0;
}

void put(const kordRec* pKordRec, std::initializer_list<std::string_view> pieces)
{
    Element element(pKordRec);
    for (const std::string_view piece : pieces)
        element.add(piece);
}
