// Checking JSON values against a JSON Schema, with faults that name the innermost place and what belongs
// there.

#pragma once

#include "facility/fault.h"

#include <memory>
#include <nlohmann/json.hpp>

namespace valijson
{
class Schema;
}

namespace console::facility
{

class Validator
{
public:
    /// Every part of the schema that can fail has a "description", which ends the sentence "must be ...".
    explicit Validator(nlohmann::json schema);
    ~Validator();
    Validator(const Validator&) = delete;
    Validator& operator=(const Validator&) = delete;

    /// Adds what is wrong with the value, which lies at `pointer`. Members that the schema does not know are
    /// removed from the value.
    void check(nlohmann::json& value, const std::string& pointer, Faults& faults) const;

private:
    nlohmann::json form;
    std::unique_ptr<valijson::Schema> schema;
};

} // namespace console::facility
