#include "document/mend.h"

#include "document/references.h"
#include "document/words.h"
#include "platform/utf8.h"

#include <algorithm>
#include <array>

namespace document
{

using namespace words;

namespace
{

enum class Place { text, attribute };

/// The bytes at which a text may have to change.
template <Place place>
constexpr auto suspects = [] {
    std::array<bool, 256> table{};
    for (size_t byte = 0; byte < table.size(); ++byte)
        table.at(byte) = byte < 0x20 || byte >= 0x80 || byte == '&' || byte == '<';
    if (place == Place::attribute)
        table.at('"') = true;
    else
        table.at('>') = true;
    if (place == Place::text) table.at('\n') = table.at('\t') = false;
    return table;
}();

void appendReference(std::string& xml, uint32_t character)
{
    xml += "&#" + std::to_string(character) + ';';
}

/// Appends the suspect that a text starts with as XML has it. \return its length
template <Place place>
size_t appendSuspect(std::string& xml, std::string_view text)
{
    const platform::Character character = platform::firstOf(text);
    const char byte = text.front();
    if (byte == '&') {
        const size_t length = std::max<size_t>(referenceAt(text).length, 1);
        xml += length == 1 ? "&amp;" : text.substr(0, length);
        return length;
    }
    if (byte == '<')
        xml += "&lt;";
    else if (byte == '>')
        xml += xml.ends_with("]]") ? "&gt;" : ">";
    else if (byte == '"')
        xml += "&quot;";
    else if (byte == '\r' || byte == '\n' || byte == '\t')
        appendReference(xml, character.number);
    else if (isXmlCharacter(character.number) && character.valid)
        xml += text.substr(0, character.length);
    else
        platform::append(xml, platform::replacement);
    return character.length;
}

template <Place place>
void appendMended(std::string& xml, std::string_view text)
{
    while (!text.empty()) {
        const auto* const suspect = std::ranges::find_if(
            text, [](char byte) { return suspects<place>[static_cast<unsigned char>(byte)]; });
        const auto plain = static_cast<size_t>(suspect - text.begin());
        xml += text.substr(0, plain);
        text.remove_prefix(plain);
        if (!text.empty()) text.remove_prefix(appendSuspect<place>(xml, text));
    }
}

class Writer
{
public:
    void operator()(const Event& event)
    {
        switch (event.kind) {
        case Event::Kind::start:
            return head(event);
        case Event::Kind::listStart:
            return tag(listName, event.name);
        case Event::Kind::listEnd:
            return line(listEnd);
        case Event::Kind::resourceStart:
            return resource(event);
        case Event::Kind::resourceEnd:
            return line(resourceEnd);
        case Event::Kind::property:
            return property(event);
        case Event::Kind::cut:
            return line(incomplete);
        case Event::Kind::end:
            line(setEnd);
            return line(rootEnd);
        }
    }

    std::string xml;

private:
    void line(std::string_view text) { xml.append(text) += '\n'; }

    void tag(std::string_view start, std::string_view attribute)
    {
        xml += start;
        appendAttribute(xml, attribute);
        line(tagEnd);
    }

    void head(const Event& event)
    {
        line(declaration);
        if (event.stylesheet) line(stylesheet);
        line(root);
        tag(setStart, event.timestamp);
    }

    void resource(const Event& event)
    {
        xml += resourceName;
        appendAttribute(xml, event.name);
        tag(idName, event.id);
        appendText(xml, event.idLine);
        xml += '\n';
    }

    void property(const Event& event)
    {
        xml += propertyStart;
        appendAttribute(xml, event.reversed ? event.label : event.code);
        tag(labelName, event.reversed ? event.code : event.label);
        line(event.code);
        xml += valueStart;
        appendText(xml, event.value);
        line(valueEnd);
        line(propertyEnd);
    }
};

} // namespace

void appendText(std::string& xml, std::string_view text)
{
    appendMended<Place::text>(xml, text);
}

void appendAttribute(std::string& xml, std::string_view text)
{
    appendMended<Place::attribute>(xml, text);
}

void mend(Scanner& scanner, Completeness& completeness, const std::function<void(std::string_view)>& write)
{
    constexpr size_t enough = size_t{64} << 10U;
    Writer writer;
    for (bool ended = false; !ended;) {
        const Event& event = scanner.next();
        completeness.see(event);
        writer(event);
        ended = event.kind == Event::Kind::end;
        if (writer.xml.size() < enough && !ended) continue;
        write(writer.xml);
        writer.xml.clear();
    }
}

} // namespace document
