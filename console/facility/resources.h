// The resources of a facility: checked one by one as the file is read, laid out, and found by their values.

#pragma once

#include "facility/imageWriter.h"
#include "facility/schema.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace console::facility
{

class Resources
{
public:
    Resources(Schema& schema, ImageWriter& writer);

    /// Checks one resource of a class and, when it is faultless, takes it up. The resources of a class come
    /// in the order of the file.
    void add(size_t classIndex, nlohmann::json& resource, const std::string& pointer, Faults& faults);

    /// Writes the classes and all resources and notes them in the header.
    void finish(image::Header& header);

private:
    struct Collected {
        std::vector<image::Offset> names;               ///< of the class's attributes, in the form's order
        std::vector<std::vector<image::Entry>> entries; ///< for each of them; indexes count within the class
        std::vector<image::Resource> resources;
    };
    [[nodiscard]] bool isFaultless(size_t classIndex, nlohmann::json& resource, const std::string& pointer,
                                   Faults& faults);
    void takeUp(size_t classIndex, const nlohmann::json& resource);
    std::vector<image::Lookup> writeLookups(Collected& collected, uint32_t firstResource);

    Schema& schema;
    ImageWriter& writer;
    std::vector<Collected> collectedClasses;
    std::unordered_set<std::string> goodShapes;
};

/// A value of a known type. Null gives a null text.
image::Value writeValue(ImageWriter& writer, const nlohmann::json& value, image::Type type);

} // namespace console::facility
