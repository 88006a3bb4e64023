// The validator reports a fault once for every schema around it, in words about schemas. What is kept of that
// is the place and the kind of the innermost faults; the words come from the schema's descriptions.

#include "facility/validator.h"

#include <algorithm>
#include <limits>
#include <span>

#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

namespace console::facility
{

namespace
{

using nlohmann::json;
using Adapter = valijson::adapters::NlohmannJsonAdapter;
using Path = std::vector<std::string>;

bool isIndex(const json& value, const std::string& step)
{
    return value.is_array() && !step.empty() &&
           std::ranges::all_of(step, [](char c) { return c >= '0' && c <= '9'; });
}

const json* member(const json& object, const char* key)
{
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

const json& resolve(const json& root, const json& schema)
{
    const json* reference = member(schema, "$ref");
    if (reference == nullptr) return schema;
    return root.at(json::json_pointer(reference->get<std::string>().substr(1)));
}

/// The schema of a value's member or element; null when the schema says nothing of it.
const json* stepInto(const json& schema, const std::string& step)
{
    if (const json* properties = member(schema, "properties")) {
        if (const json* found = member(*properties, step.c_str())) return found;
    }
    if (const json* items = member(schema, "items")) {
        if (!items->is_array()) return items;
        if (isIndex(*items, step) && std::stoul(step) < items->size()) return &(*items)[std::stoul(step)];
    }
    const json* others = member(schema, "additionalProperties");
    return others != nullptr && others->is_object() ? others : nullptr;
}

std::string expectation(const json& root, std::span<const std::string> path)
{
    const json* schema = &root;
    for (const std::string& step : path) {
        schema = stepInto(resolve(root, *schema), step);
        if (schema == nullptr) return "must be something else";
    }
    return "must be " + resolve(root, *schema).value("description", "something else");
}

json& valueAt(json& root, std::span<const std::string> path)
{
    json* value = &root;
    for (const std::string& step : path)
        value = value->is_array() ? &(*value)[std::stoul(step)] : &(*value)[step];
    return *value;
}

/// The library gives a path as "<root>", then each step in brackets.
Path pathOf(const valijson::ValidationResults::Error& error)
{
    Path path;
    for (const std::string& step : error.context) {
        if (step.starts_with('[')) path.push_back(step.substr(1, step.size() - 2));
    }
    return path;
}

/// The text between the first and the last apostrophe.
std::string quoted(const std::string& description)
{
    const size_t first = description.find('\'', description.find(": '") + 1);
    return description.substr(first + 1, description.rfind('\'') - first - 1);
}

constexpr std::string_view unknownMember = "Object contains a property";
constexpr std::string_view missingMember = "Missing required property";
constexpr std::string_view enclosing = "Failed to validate"; // a fault inside, which has its own report

std::string pointerTo(const std::string& start, std::span<const std::string> path)
{
    std::string pointer = start;
    for (const std::string& step : path)
        pointer = join(pointer, step);
    return pointer;
}

void add(Faults& faults, Fault fault)
{
    const bool known = std::ranges::any_of(faults, [&fault](const Fault& other) {
        return other.pointer == fault.pointer && other.what == fault.what;
    });
    if (!known) faults.push_back(std::move(fault));
}

/// The library reads every integer as a signed one of 64 bits. A larger one is given to it as a
/// floating-point number, which no schema takes for an integer.
void loosenLargest(json& value)
{
    std::vector<json*> left = {&value};
    while (!left.empty()) {
        json& one = *left.back();
        left.pop_back();
        if (one.is_structured()) {
            for (json& inner : one)
                left.push_back(&inner);
        } else if (one.is_number_unsigned() && one.get<uint64_t>() > std::numeric_limits<int64_t>::max()) {
            one = one.get<double>();
        }
    }
}

} // namespace

Validator::Validator(json schemaJson)
    : form(std::move(schemaJson)), schema(std::make_unique<valijson::Schema>())
{
    valijson::SchemaParser().populateSchema(Adapter(form), *schema);
}

Validator::~Validator() = default;

void Validator::check(json& value, const std::string& pointer, Faults& faults) const
{
    loosenLargest(value);
    // Of several alternatives all are tried where what is wrong is asked for, though one of them holds.
    valijson::Validator validator(valijson::Validator::kStrongTypes);
    if (validator.validate(*schema, Adapter(value), nullptr)) return;
    Faults found;
    bool again = true;
    while (again) { // of several unknown members only the first is reported at a time
        again = false;
        valijson::ValidationResults results;
        if (validator.validate(*schema, Adapter(value), &results)) break;
        for (const auto& error : results) {
            Path path = pathOf(error);
            if (error.description.starts_with(unknownMember)) {
                const std::string key = quoted(error.description);
                valueAt(value, path).erase(key);
                add(found, {join(pointerTo(pointer, path), key), "is not known here"});
                again = true;
            } else if (error.description.starts_with(missingMember)) {
                add(found, {pointerTo(pointer, path), "lacks \"" + quoted(error.description) + '"'});
            } else if (!error.description.starts_with(enclosing)) {
                add(found, {pointerTo(pointer, path), expectation(form, path)});
            }
        }
    }
    faults.insert(faults.end(), found.begin(), found.end());
}

} // namespace console::facility
