// The facility reader: any bytes are either a facility whose image holds every value of the file, or have
// faults, each in one line and at a place that exists.

#include "fuzz.h"

#include "facility/compile.h"
#include "image/run.h"

#include <nlohmann/json.hpp>

namespace
{

using namespace console;
using nlohmann::json;

/// A file with a member twice: the parser keeps the last, so places in the first may be gone.
bool repeats(const facility::Faults& faults)
{
    return std::ranges::any_of(
        faults, [](const facility::Fault& fault) { return fault.what == "stands here more than once"; });
}

void checkFaults(const json& file, const facility::Faults& faults)
{
    const bool placesAreGone = repeats(faults);
    for (const facility::Fault& fault : faults) {
        fuzz::require(!fault.what.empty(), "a fault says what is wrong");
        fuzz::require(facility::toLine(fault).find('\n') == std::string::npos, "a fault is one line");
        if (file.is_discarded()) {
            fuzz::require(faults.size() == 1 && fault.pointer.empty(),
                          "what is no JSON is one fault of the whole");
        } else if (!placesAreGone) {
            fuzz::require(file.contains(json::json_pointer(fault.pointer)), "the place of a fault exists");
        }
    }
}

bool equals(const image::Image& image, const image::Value& value, const json& expected);

bool equalLists(const image::Image& image, const image::Value& value, const json& expected)
{
    if (value.count != expected.size()) return false;
    for (size_t i = 0; i < expected.size(); ++i) {
        const json& item = expected[i];
        const bool equal = value.type == image::Type::integers
                               ? image.at<int32_t>(value.data)[i] == item.get<int32_t>()
                           : value.type == image::Type::texts
                               ? image.text(image.at<image::Offset>(value.data)[i]) == item.get<std::string>()
                               : equals(image, image.at<image::Value>(value.data)[i], item);
        if (!equal) return false;
    }
    return true;
}

bool equals(const image::Image& image, const image::Value& value, const json& expected)
{
    switch (value.type) {
    case image::Type::text:
        return expected.is_string() && image.text(value.data) == expected.get<std::string>();
    case image::Type::integer:
        return expected == static_cast<int32_t>(value.data);
    case image::Type::uinteger:
        return expected == static_cast<uint32_t>(value.data);
    default:
        return expected.is_array() && equalLists(image, value, expected);
    }
}

void checkResource(const image::Image& image, const image::Resource& resource, const json& expected)
{
    fuzz::require(resource.attributeCount == expected.size(), "every attribute is in the image");
    for (const image::Attribute& attribute : image.attributes(resource)) {
        const auto member = expected.find(image.text(attribute.name));
        fuzz::require(member != expected.end() && equals(image, attribute.value, *member),
                      "an attribute has the file's value");
    }
}

void checkImage(const json& file, const std::string& bytes)
{
    const image::Image image{.base = bytes.data()};
    fuzz::require(image.header().magic == image::magic, "an image says what it is");
    const json resources = file.value("resources", json::object());
    for (const image::Class& from : image.classes()) {
        const json expected = resources.value(image.text(from.name), json::array());
        fuzz::require(from.resourceCount == expected.size(), "every resource is in the image");
        for (uint32_t i = 0; i < from.resourceCount; ++i)
            checkResource(image, image.resources()[from.firstResource + i], expected[i]);
    }
    fuzz::require(image.header().ruleCount == file.value("faults", json::array()).size(),
                  "every rule is in the image");
    fuzz::require(image.header().systemCount == file.value("systems", json::object()).size(),
                  "every system is in the image");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view bytes = fuzz::Input(data, size).bytes();
    const facility::Compilation compilation = facility::compile(bytes);
    fuzz::require(compilation.faults.empty() != compilation.image.empty(), "a file has an image or faults");
    const json file = json::parse(bytes, nullptr, false);
    if (compilation.faults.empty())
        checkImage(file, compilation.image);
    else
        checkFaults(file, compilation.faults);
    return 0;
}
