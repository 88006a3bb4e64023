#include "document/json.h"

#include <nlohmann/json.hpp>

namespace document
{

std::string quote(std::string_view text)
{
    constexpr int oneLine = -1;
    return nlohmann::json(text).dump(oneLine, ' ', false, nlohmann::json::error_handler_t::replace);
}

namespace
{

std::string listOf(const std::vector<std::string>& items, const std::string& indent)
{
    if (items.empty()) return "[]";
    std::string text = "[";
    for (const char* separator = "\n"; const std::string& item : items) {
        text.append(separator).append(indent).append("  ").append(item);
        separator = ",\n";
    }
    return text + '\n' + indent + ']';
}

std::string propertyOf(const Property& property)
{
    return R"({ "code": )" + quote(property.code()) + R"(, "label": )" + quote(property.label()) +
           R"(, "value": )" + quote(property.value) + " }";
}

std::string partOf(const Part& part, const std::string& indent)
{
    const std::string inner = indent + "  ";
    std::vector<std::string> properties;
    for (const Property& property : part.properties)
        properties.push_back(propertyOf(property));
    std::vector<std::string> children;
    for (const Part& child : part.children)
        children.push_back(partOf(child, inner + "  "));

    std::string text = "{\n" + inner + R"("kind": )" + quote(rowOf(part.kind).word) + ",\n";
    if (!part.list.empty()) text += inner + R"("list": )" + quote(part.list) + ",\n";
    text += inner + R"("name": )" + quote(part.name) + ",\n";
    text += inner + R"("id": )" + quote(part.id) + ",\n";
    text += inner + R"("properties": )" + listOf(properties, inner) + ",\n";
    return text + inner + R"("children": )" + listOf(children, inner) + '\n' + indent + '}';
}

} // namespace

std::string json(const Document& document)
{
    return "{\n  \"timestamp\": " + quote(document.timestamp) +
           ",\n  \"system\": " + partOf(document.system(), "  ") + "\n}\n";
}

} // namespace document
