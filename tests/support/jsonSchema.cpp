#include "jsonSchema.h"

#include "consoleRun.h"
#include "facility/validator.h"

#include <map>
#include <nlohmann/json.hpp>

namespace kordTest
{

namespace
{

/// A schema is read once, for all texts that are held against it.
const console::facility::Validator& validatorOf(const std::filesystem::path& schema)
{
    static std::map<std::filesystem::path, console::facility::Validator> known;
    const auto found = known.find(schema);
    if (found != known.end()) return found->second;
    return known.try_emplace(schema, nlohmann::json::parse(readFile(schema).value())).first->second;
}

} // namespace

std::vector<std::string> schemaFaults(const std::filesystem::path& schema, const std::string& text)
{
    auto value = nlohmann::json::parse(text, nullptr, false);
    if (value.is_discarded()) return {"no JSON"};
    console::facility::Faults found;
    validatorOf(schema).check(value, "", found);
    std::vector<std::string> faults;
    for (const console::facility::Fault& fault : found)
        faults.push_back(toLine(fault));
    return faults;
}

} // namespace kordTest
