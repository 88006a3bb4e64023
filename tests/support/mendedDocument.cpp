// The parser is libxml2, which knows nothing of inventory documents.

#include "mendedDocument.h"

#include "consoleRun.h"
#include "document/mend.h"
#include "parseJson.h"
#include "pattern.h"

#include <algorithm>
#include <cstring>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlschemas.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace kordTest
{

namespace
{

template <auto release>
struct Releases {
    template <typename Object>
    void operator()(Object* object) const
    {
        release(object);
    }
};
using Parsed = std::unique_ptr<xmlDoc, Releases<xmlFreeDoc>>;
using Schema = std::unique_ptr<xmlSchema, Releases<xmlSchemaFree>>;

void append(std::string& errors, const xmlError* error)
{
    if (error != nullptr)
        errors += "line " + std::to_string(error->line) + ": " + (error->message ? error->message : "");
}

Parsed parse(const std::string& xml, std::string& errors)
{
    const std::unique_ptr<xmlParserCtxt, Releases<xmlFreeParserCtxt>> context(xmlNewParserCtxt());
    Parsed parsed(
        xmlCtxtReadMemory(context.get(), xml.data(), static_cast<int>(xml.size()), "mended.xml", nullptr,
                          XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE));
    if (context->wellFormed == 0) append(errors, xmlCtxtGetLastError(context.get()));
    return parsed;
}

const Schema& documentSchema()
{
    static const Schema schema = [] {
        const std::unique_ptr<xmlSchemaParserCtxt, Releases<xmlSchemaFreeParserCtxt>> context(
            xmlSchemaNewParserCtxt(KORD_SOURCE_DIR "/document/schema/kord-document.xsd"));
        return Schema(xmlSchemaParse(context.get()));
    }();
    if (schema == nullptr) throw std::runtime_error("the schema cannot be read");
    return schema;
}

std::string validityErrors(xmlDoc* parsed)
{
    std::string errors;
    const std::unique_ptr<xmlSchemaValidCtxt, Releases<xmlSchemaFreeValidCtxt>> context(
        xmlSchemaNewValidCtxt(documentSchema().get()));
    xmlSchemaSetValidStructuredErrors(
        context.get(), [](void* to, auto* error) { append(*static_cast<std::string*>(to), error); }, &errors);
    const bool valid = xmlSchemaValidateDoc(context.get(), parsed) == 0;
    return valid ? "" : "not valid: " + errors;
}

std::string textOf(xmlChar* text)
{
    const std::unique_ptr<xmlChar, Releases<[](xmlChar* own) { xmlFree(own); }>> owned(text);
    return owned ? reinterpret_cast<const char*>(owned.get()) : "";
}

std::string attributeOf(xmlNode* node, const char* name)
{
    return textOf(xmlGetNoNsProp(node, reinterpret_cast<const xmlChar*>(name)));
}

std::string nameOf(const xmlNode* node)
{
    return node->type == XML_ELEMENT_NODE ? reinterpret_cast<const char*>(node->name) : "";
}

/// The text behind an element's tag, without the line feeds around it.
std::string firstText(xmlNode* node)
{
    xmlNode* const child = node->children;
    const std::string text =
        child != nullptr && child->type == XML_TEXT_NODE ? textOf(xmlNodeGetContent(child)) : "";
    return text.size() < 2 ? "" : text.substr(1, text.size() - 2);
}

Property propertyOf(xmlNode* node)
{
    Property property;
    property.code = firstText(node);
    const std::string name = attributeOf(node, "name");
    property.reversed = name != property.code;
    property.label = property.reversed ? name : attributeOf(node, "displayName");
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
        if (nameOf(child) == "Value") property.value = textOf(xmlNodeGetContent(child));
    }
    return property;
}

Element elementOf(xmlNode* node, std::vector<std::string>& faults)
{
    Element element;
    element.list = nameOf(node) == "ResourceList";
    element.displayName = attributeOf(node, "displayName");
    element.uniqueId = element.list ? "" : attributeOf(node, "uniqueId");
    if (!element.list && firstText(node) != element.uniqueId)
        faults.push_back("\"" + element.uniqueId + "\" is not repeated");
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
        const std::string name = nameOf(child);
        if (name == "Property") element.properties.push_back(propertyOf(child));
        if (name == "Resource" || name == "ResourceList")
            element.children.push_back(elementOf(child, faults));
    }
    return element;
}

std::string mend(const std::string& raw)
{
    document::Input input("document", raw);
    document::Scanner scanner(input);
    document::Completeness completeness;
    std::string xml;
    document::mend(scanner, completeness, [&](std::string_view piece) { xml += piece; });
    return xml;
}

/// A parser makes blanks of tabs and line feeds in attributes, and line feeds of carriage returns.
bool hasChangingBlanks(const std::string& raw)
{
    return raw.find_first_of("\t\r") != std::string::npos ||
           std::ranges::any_of(splitLines(raw), [](const std::string& line) {
               return line.starts_with("<Resource ") && !line.ends_with("\">");
           });
}

/// Whether a parser takes the bytes for what they are: none of them has to change.
bool isMended(const std::string& raw)
{
    std::string errors;
    const Parsed parsed = parse(raw, errors);
    return errors.empty() && validityErrors(parsed.get()).empty() && !hasChangingBlanks(raw);
}

} // namespace

MendedDocument mendDocument(const std::string& raw)
{
    MendedDocument mended;
    mended.xml = mend(raw);
    std::string errors;
    const Parsed parsed = parse(mended.xml, errors);
    if (!errors.empty()) {
        mended.faults.push_back("not well-formed: " + errors);
        return mended;
    }
    if (const std::string invalid = validityErrors(parsed.get()); !invalid.empty())
        mended.faults.push_back(invalid);
    if (mend(mended.xml) != mended.xml) mended.faults.emplace_back("changed when mended again");
    if (raw != mended.xml && isMended(raw)) mended.faults.emplace_back("changed although nothing was wrong");
    xmlNode* const set = xmlFirstElementChild(xmlDocGetRootElement(parsed.get()));
    for (xmlNode* node = xmlFirstElementChild(set); node != nullptr; node = xmlNextElementSibling(node))
        mended.resources.push_back(elementOf(node, mended.faults));
    return mended;
}

std::string carried(const std::string& text)
{
    const auto isPlain = [](char c) { return (c >= ' ' && c <= '~') || c == '\t' || c == '\n' || c == '\r'; };
    if (std::ranges::all_of(text, isPlain)) return text;
    static const Pattern none("(\xEF\xBF\xBD|\xEF\xBF\xBE|\xEF\xBF\xBF|[\x01-\x08\x0b\x0c\x0e-\x1f])+");
    using nlohmann::json;
    const std::string unicode = parseJson(json(text).dump(-1, ' ', false, json::error_handler_t::replace));
    return none.replaced(unicode, "\xEF\xBF\xBD");
}

std::string told(std::string text)
{
    const std::pair<const char*, const char*> names[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
    for (const auto& [name, character] : names)
        for (size_t at = 0; (at = text.find(name, at)) != std::string::npos; ++at)
            text.replace(at, std::strlen(name), character);
    return text;
}

std::string differenceOf(const std::vector<Element>& raw, const std::vector<Element>& mended)
{
    const auto differ = [](const std::string& one, const std::string& other) {
        return carried(told(one)) != carried(other);
    };
    if (raw.size() != mended.size())
        return std::to_string(raw.size()) + " elements became " + std::to_string(mended.size());
    for (size_t i = 0; i < raw.size(); ++i) {
        const Element& one = raw[i];
        const Element& other = mended[i];
        if (one.list != other.list || differ(one.displayName, other.displayName) ||
            differ(one.uniqueId, other.uniqueId) || one.properties.size() != other.properties.size())
            return "\"" + one.displayName + "\" became \"" + other.displayName + '"';
        for (size_t at = 0; at < one.properties.size(); ++at) {
            const Property& before = one.properties[at];
            const Property& after = other.properties[at];
            if (before.code != after.code || before.label != after.label ||
                before.reversed != after.reversed || differ(before.value, after.value))
                return before.code + " of \"" + one.displayName + "\" became " + after.code + " \"" +
                       after.value + '"';
        }
        if (std::string inside = differenceOf(one.children, other.children); !inside.empty()) return inside;
    }
    return "";
}

} // namespace kordTest
