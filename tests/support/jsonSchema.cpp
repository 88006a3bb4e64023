#include "jsonSchema.h"

#include "consoleRun.h"

#include <map>
#include <nlohmann/json.hpp>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

namespace kordTest
{

namespace
{

using Adapter = valijson::adapters::NlohmannJsonAdapter;

/// A schema is read once, for all texts that are held against it.
const valijson::Schema& schemaOf(const std::filesystem::path& file)
{
    static std::map<std::filesystem::path, valijson::Schema> known;
    const auto [schema, isNew] = known.try_emplace(file);
    if (isNew) {
        const auto form = nlohmann::json::parse(readFile(file).value());
        valijson::SchemaParser().populateSchema(Adapter(form), schema->second);
    }
    return schema->second;
}

} // namespace

std::vector<std::string> schemaFaults(const std::filesystem::path& schema, const std::string& text)
{
    const auto value = nlohmann::json::parse(text, nullptr, false);
    if (value.is_discarded()) return {"no JSON"};
    // Without a place for what it finds, it is done at the first alternative that holds.
    if (valijson::Validator().validate(schemaOf(schema), Adapter(value), nullptr)) return {};
    valijson::ValidationResults results;
    valijson::Validator().validate(schemaOf(schema), Adapter(value), &results);
    std::vector<std::string> faults;
    for (valijson::ValidationResults::Error error; results.popError(error);) {
        std::string place;
        for (const std::string& step : error.context)
            place += step;
        faults.push_back(place + ": " + error.description);
    }
    return faults;
}

} // namespace kordTest
