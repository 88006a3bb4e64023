// The schema of facility files as the compiler uses it: the classes with their scopes and attributes, and the
// check of a file's parts. The schema file is the one place that says these things.

#pragma once

#include "facility/fault.h"
#include "facility/validator.h"
#include "image/image.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace console::facility
{

extern const char* const schemaText;

struct AttributeForm {
    std::string name;
    image::Type type;
};

struct ClassForm {
    std::string name;
    uint32_t scope;
    std::vector<AttributeForm> attributes; ///< sorted by name
};

class Schema
{
public:
    Schema();

    [[nodiscard]] const std::vector<ClassForm>& classes() const { return classForms; }
    /// The index of the class of that name.
    [[nodiscard]] std::optional<size_t> findClass(const std::string& name) const;
    /// The type that an attribute of that name has, whatever the class.
    [[nodiscard]] std::optional<image::Type> attributeType(const std::string& name) const;

    /// Checks a file whose resources have been taken out and were checked on their own.
    void checkFrame(nlohmann::json& file, Faults& faults) const;
    void checkResource(size_t classIndex, nlohmann::json& resource, const std::string& pointer,
                       Faults& faults);

private:
    nlohmann::json schema;
    std::vector<ClassForm> classForms;
    std::vector<std::unique_ptr<Validator>> resourceValidators; ///< made when first needed
};

} // namespace console::facility
