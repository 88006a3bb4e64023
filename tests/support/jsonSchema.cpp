#include "jsonSchema.h"

#include "consoleRun.h"

#include <nlohmann/json.hpp>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

namespace kordTest
{

std::vector<std::string> schemaFaults(const std::filesystem::path& schema, const std::string& text)
{
    using Adapter = valijson::adapters::NlohmannJsonAdapter;
    const auto form = nlohmann::json::parse(readFile(schema).value());
    const auto value = nlohmann::json::parse(text, nullptr, false);
    if (value.is_discarded()) return {"no JSON"};
    valijson::Schema parsed;
    valijson::SchemaParser().populateSchema(Adapter(form), parsed);
    valijson::ValidationResults results;
    valijson::Validator().validate(parsed, Adapter(value), &results);
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
