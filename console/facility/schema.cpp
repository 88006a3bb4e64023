// Reading the classes out of the schema, and taking it to pieces so that a file can be checked as it is read.

#include "facility/schema.h"

#include <algorithm>
#include <map>

namespace console::facility
{

namespace
{

using nlohmann::json;

image::Type typeNamed(const std::string& name)
{
    static const std::map<std::string, image::Type> types = {
        {"text", image::Type::text},         {"integer", image::Type::integer},
        {"uinteger", image::Type::uinteger}, {"integers", image::Type::integers},
        {"texts", image::Type::texts},       {"mixed", image::Type::mixed},
    };
    return types.at(name);
}

const json& classSchemas(const json& schema)
{
    return schema["properties"]["resources"]["properties"];
}

ClassForm readClass(const json& schema, const std::string& name, const json& form)
{
    ClassForm read{.name = name, .scope = form["x-scope"].get<uint32_t>(), .attributes = {}};
    for (const auto& [attribute, reference] : form["items"]["properties"].items()) {
        const json::json_pointer definition(reference["$ref"].get<std::string>().substr(1));
        read.attributes.push_back({attribute, typeNamed(schema.at(definition)["x-type"])});
    }
    return read;
}

} // namespace

Schema::Schema() : schema(json::parse(schemaText))
{
    for (const auto& [name, form] : classSchemas(schema).items())
        classForms.push_back(readClass(schema, name, form));
    resourceValidators.resize(classForms.size());
}

std::optional<size_t> Schema::findClass(const std::string& name) const
{
    const auto found = std::ranges::find(classForms, name, &ClassForm::name);
    if (found == classForms.end()) return std::nullopt;
    return static_cast<size_t>(found - classForms.begin());
}

std::optional<image::Type> Schema::attributeType(const std::string& name) const
{
    for (const ClassForm& form : classForms) {
        const auto found = std::ranges::find(form.attributes, name, &AttributeForm::name);
        if (found != form.attributes.end()) return found->type;
    }
    return std::nullopt;
}

void Schema::checkFrame(json& file, Faults& faults) const
{
    json frame = schema;
    for (json& form : frame["properties"]["resources"]["properties"])
        form.erase("items");
    Validator(std::move(frame)).check(file, "", faults);
}

void Schema::checkResource(size_t classIndex, json& resource, const std::string& pointer, Faults& faults)
{
    std::unique_ptr<Validator>& validator = resourceValidators[classIndex];
    if (validator == nullptr) {
        json form = classSchemas(schema)[classForms[classIndex].name]["items"];
        form["definitions"] = schema["definitions"];
        validator = std::make_unique<Validator>(std::move(form));
    }
    validator->check(resource, pointer, faults);
}

} // namespace console::facility
