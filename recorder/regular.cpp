// The gathered resources are compiled and selected as in a run.

#include "recorder/regular.h"

#include "facility/compile.h"
#include "image/selection.h"

namespace recorder
{

namespace
{

using nlohmann::json;

json toJson(const image::Image& image, const image::Value& value)
{
    json list = json::array();
    switch (value.type) {
    case image::Type::text:
        return image.text(value.data);
    case image::Type::integer:
        return static_cast<int32_t>(value.data);
    case image::Type::uinteger:
        return static_cast<uint32_t>(value.data);
    case image::Type::integers:
        return image.span<int32_t>(value.data, value.count);
    case image::Type::texts:
        for (const image::Offset text : image.span<image::Offset>(value.data, value.count))
            list.push_back(image.text(text));
        return list;
    case image::Type::mixed:
        break; // no attribute that a query could ask for
    }
    return nullptr;
}

json queryAnswer(const image::Image& image, const std::vector<uint32_t>& found,
                 const std::vector<std::string>& names)
{
    std::vector<image::AttributeFinder> finders;
    finders.reserve(names.size());
    for (const std::string& name : names)
        finders.push_back({.name = name});
    json answer = json::array();
    for (const uint32_t index : found) {
        json attributes = json::array();
        for (image::AttributeFinder& finder : finders) {
            const image::Attribute* attribute = finder.find(image, image.resources()[index]);
            if (attribute != nullptr && attribute->value.type != image::Type::mixed)
                attributes.push_back(json::array({finder.name, toJson(image, attribute->value)}));
        }
        answer.push_back({{"attributes", attributes}});
    }
    return answer;
}

json programOutcome(int status, const std::string& output)
{
    return {{"status", status}, {"output", output}};
}

} // namespace

RegularConsole::RegularConsole(const Gatherer& gathered) : gatherer(gathered)
{
    nlohmann::ordered_json facility = gatherer.facility();
    const std::string text = facility.dump();
    facility.erase("resources");
    frame = facility;
    compiled = facility::compile(text).image;
    image.base = compiled.data();
}

json RegularConsole::outcome(const Call& call) const
{
    if (call.matcher.contains("program")) return program(call);
    if (!call.matcher.contains("class")) return json::object();
    return answer(call);
}

json RegularConsole::answer(const Call& call) const
{
    const std::string name = call.matcher["class"];
    const image::Class* of = image.findClass(name.c_str());
    if (of == nullptr || of->scope != call.matcher["scope"]) return nullptr;
    if (call.matcher["call"] == "invoke_action") {
        const json level = gatherer.imageLevel(call.resource);
        return {{"answer", json::array({json{{"elements", level}}})}};
    }
    const std::string text = call.matcher.value("selection", "");
    std::optional<image::Selection> selection;
    if (call.matcher.contains("selection")) {
        std::string fault;
        selection = image::parseSelection(text, fault);
        if (!selection) return nullptr;
    }
    const std::vector<uint32_t> found = image::select(image, *of, selection ? &*selection : nullptr);
    if (call.matcher["call"] == "enumerate_resources")
        return {{"answer", json::array({json{{"handles", found.size()}}})}};
    return {{"answer", queryAnswer(image, found, call.attributes)}};
}

json RegularConsole::program(const Call& call) const
{
    constexpr int failed = 1;
    const std::string program = call.matcher["program"];
    const json& console = frame["console"];
    if (program == "whoami") {
        const json user = console.value("user", json());
        return user.is_null() ? programOutcome(failed, "")
                              : programOutcome(0, user.get<std::string>() + '\n');
    }
    if (program == "qmstat") {
        const std::string system = systemAskedFor(call.arguments);
        const bool known = frame["systems"].contains(system);
        return known ? programOutcome(0, frame["systems"][system].get<std::string>() + '\n')
                     : programOutcome(failed, "");
    }
    if (program == "qconvpd") {
        if (!console.contains("vpd")) return programOutcome(failed, "");
        std::string output;
        for (const std::string line : console["vpd"])
            output += line + '\n';
        return programOutcome(0, output);
    }
    return programOutcome(0, "");
}

} // namespace recorder
