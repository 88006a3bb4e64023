#include "jsonSchema.h"

#include "consoleRun.h"
#include "facility/validator.h"
#include "parseJson.h"

#include <map>
#include <nlohmann/json.hpp>

namespace kordTest
{

namespace
{

using nlohmann::json;

/// A date and time with its offset, of days that their months have.
constexpr const char* dateTime =
    "^[0-9]{4}-((0[13578]|1[02])-(0[1-9]|[12][0-9]|3[01])|(0[469]|11)-(0[1-9]|[12][0-9]|30)|"
    "02-(0[1-9]|[12][0-9]))[Tt]([01][0-9]|2[0-3]):[0-5][0-9]:([0-5][0-9]|60)([.][0-9]+)?"
    "([Zz]|[+-]([01][0-9]|2[0-3]):[0-5][0-9])$";

/// The validator compiles the expression of a format for every value, which takes longer than all the rest of
/// a run's tests, but that of a pattern once.
json withPatterns(json schema)
{
    if (schema.is_object() && schema.value("format", json()) == "date-time") {
        schema.erase("format");
        schema["pattern"] = dateTime;
    }
    for (json& inner : schema)
        if (inner.is_structured()) inner = withPatterns(std::move(inner));
    return schema;
}

/// A schema is read once, for all texts that are held against it.
const console::facility::Validator& validatorOf(const std::filesystem::path& schema)
{
    static std::map<std::filesystem::path, console::facility::Validator> known;
    const auto found = known.find(schema);
    if (found != known.end()) return found->second;
    return known.try_emplace(schema, withPatterns(parseJson(readFile(schema).value()))).first->second;
}

} // namespace

std::vector<std::string> valueFaults(const std::filesystem::path& schema, json value)
{
    console::facility::Faults found;
    validatorOf(schema).check(value, "", found);
    std::vector<std::string> faults;
    for (const console::facility::Fault& fault : found)
        faults.push_back(toLine(fault));
    return faults;
}

std::vector<std::string> schemaFaults(const std::filesystem::path& schema, const std::string& text)
{
    return valueFaults(schema, parseJson(text));
}

} // namespace kordTest
