// A resource is known by its handle's number. What its answers held and what the selections that it matched
// demand (of a choice the first, where nothing else is known) are its attributes; where it was found between
// others, it stands between them.

#include "recorder/gatherer.h"

#include "image/selection.h"

#include <algorithm>
#include <limits>

namespace recorder
{

namespace
{

using nlohmann::json;
using nlohmann::ordered_json;

bool isWithin(const json& value, int64_t least, int64_t greatest)
{
    return value.is_number_integer() && value >= least && value <= greatest;
}

bool isListOf(const json& value, bool (*fits)(const json&))
{
    return value.is_array() && std::ranges::all_of(value, fits);
}

bool isText(const json& value)
{
    return value.is_string();
}

bool isInteger(const json& value)
{
    return isWithin(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
}

bool isOfType(const json& value, image::Type type)
{
    switch (type) {
    case image::Type::text:
        return isText(value);
    case image::Type::integer:
        return isInteger(value);
    case image::Type::uinteger:
        return isWithin(value, 0, std::numeric_limits<uint32_t>::max());
    case image::Type::integers:
        return isListOf(value, isInteger);
    case image::Type::texts:
        return isListOf(value, isText);
    case image::Type::mixed:
        return isListOf(value, [](const json& item) { return isText(item) || isInteger(item); });
    }
    return false;
}

using Values = std::vector<std::pair<std::string, json>>;

/// What a node demands of a resource that matches: of a choice the first, when `choose` is set.
void addDemands(Values& values, const image::Selection& selection, size_t place, bool choose)
{
    using Kind = image::Selection::Kind;
    const image::Selection::Node& node = selection.nodes[place];
    const std::string name(node.attribute.name);
    if (node.kind == Kind::text) values.emplace_back(name, std::string(node.text));
    if (node.kind == Kind::number && node.number) values.emplace_back(name, *node.number);
    if (node.kind == Kind::all || (node.kind == Kind::any && choose))
        addDemands(values, selection, node.left, choose);
    if (node.kind == Kind::all) addDemands(values, selection, node.right, choose);
}

Values demandsOf(const std::string& text, bool choose)
{
    Values values;
    std::string fault;
    const auto selection = image::parseSelection(text, fault);
    if (selection) addDemands(values, *selection, selection->nodes.size() - 1, choose);
    return values;
}

} // namespace

std::string systemAskedFor(const std::vector<std::string>& arguments)
{
    const bool asks = arguments.size() == 6 && arguments[0] == "-r" && arguments[1] == "sys" &&
                      arguments[2] == "-m" && arguments[4] == "-F" && arguments[5] == "state";
    return asks ? arguments[3] : "";
}

void Gatherer::take(const Call& call)
{
    if (call.matcher.contains("program")) return takeProgram(call);
    if (!call.outcome.contains("answer") || !call.matcher.contains("class")) return;
    if (!schema.findClass(call.matcher["class"])) return;
    if (call.matcher["call"] == "invoke_action") {
        takeLevel(call);
    } else {
        takeAnswer(call);
    }
}

Gatherer::Class& Gatherer::classOf(const std::string& name)
{
    const auto known = std::ranges::find(classes, name, &Class::name);
    if (known != classes.end()) return *known;
    Class& made = classes.emplace_back();
    made.name = name;
    return made;
}

/// A response in error that holds nothing stands for no resource.
void Gatherer::takeAnswer(const Call& call)
{
    const json& answer = call.outcome["answer"];
    std::vector<Found> found;
    for (size_t i = 0; i < answer.size(); ++i) {
        const Values values = answer[i].value("attributes", Values());
        if (answer[i].contains("error") && values.empty()) continue;
        for (const uint64_t number : call.resources[i])
            found.push_back({number, values});
    }
    const std::string selection = call.matcher.value("selection", "");
    add(classOf(call.matcher["class"]), found, selection);
}

/// From back to front, so that a new resource goes before the one that followed it. A selection that was
/// answered before brings no new resources: its answer's are those of the first time, one by one.
void Gatherer::add(Class& to, const std::vector<Found>& found, const std::string& selection)
{
    const Values required = demandsOf(selection, false);
    const Values assumed = demandsOf(selection, true);
    const auto earlier = to.bySelection.find(selection);
    std::vector<Place> places(found.size());
    Place next = to.resources.end();
    for (size_t i = found.size(); i-- > 0;) {
        const auto contradicts = [&](const Resource& resource) {
            return std::ranges::any_of(required, [&](const auto& value) {
                return resource.contains(value.first) && json(resource[value.first]) != value.second;
            });
        };
        const auto known = to.byNumber.find(found[i].number);
        if (known != to.byNumber.end() && !contradicts(*known->second)) {
            next = known->second;
        } else if (earlier == to.bySelection.end()) {
            next = to.byNumber[found[i].number] = to.resources.insert(next, Resource::object());
        } else if (i < earlier->second.size()) {
            next = earlier->second[i];
        } else {
            continue;
        }
        complete(to.name, *next, required);
        complete(to.name, *next, found[i].values);
        complete(to.name, *next, assumed);
        places[i] = next;
    }
    if (earlier == to.bySelection.end()) to.bySelection.emplace(selection, std::move(places));
}

void Gatherer::complete(const std::string& className, Resource& resource, const Values& values) const
{
    for (const auto& [name, value] : values) {
        if (!resource.contains(name) && fits(className, name, value)) resource[name] = value;
    }
}

bool Gatherer::fits(const std::string& className, const std::string& name, const json& value) const
{
    const facility::ClassForm& form = schema.classes()[*schema.findClass(className)];
    const auto attribute = std::ranges::find(form.attributes, name, &facility::AttributeForm::name);
    return attribute != form.attributes.end() && isOfType(value, attribute->type);
}

void Gatherer::takeLevel(const Call& call)
{
    constexpr const char* level = "runningImageLevel";
    Class& of = classOf(call.matcher["class"]);
    const json& answer = call.outcome["answer"];
    const auto resource = of.byNumber.find(call.resource);
    if (resource == of.byNumber.end() || answer.size() != 1 || answer[0].contains("error")) return;
    if (!answer[0]["elements"].empty())
        complete(of.name, *resource->second, {{level, answer[0]["elements"]}});
}

json Gatherer::imageLevel(uint64_t number) const
{
    for (const Class& of : classes) {
        const auto resource = of.byNumber.find(number);
        if (resource != of.byNumber.end())
            return json(*resource->second).value("runningImageLevel", json::array());
    }
    return nullptr;
}

/// The first regular answer counts. A program's output can hold a NUL, a facility's texts cannot.
void Gatherer::takeProgram(const Call& call)
{
    const std::string program = call.matcher["program"];
    const std::string output = call.outcome["output"];
    const bool regular = call.outcome["status"] == 0 && output.find('\0') == std::string::npos;
    const bool line = regular && !output.empty() && output.find('\n') == output.size() - 1;
    const std::string text = output.substr(0, output.find('\n'));
    if (program == "whoami" && !console.contains("user")) {
        console["user"] = line ? ordered_json(text) : ordered_json();
    } else if (program == "qmstat" && line) {
        const std::string system = systemAskedFor(call.arguments);
        if (!system.empty() && !systems.contains(system)) systems[system] = text;
    } else if (program == "qconvpd" && regular && !console.contains("vpd")) {
        ordered_json& lines = console["vpd"] = ordered_json::array();
        for (size_t at = 0, end = 0; (end = output.find('\n', at)) != std::string::npos; at = end + 1)
            lines.push_back(output.substr(at, end - at));
    }
}

ordered_json Gatherer::facility() const
{
    ordered_json facility;
    facility["console"] = console;
    facility["systems"] = systems;
    ordered_json& resources = facility["resources"] = ordered_json::object();
    for (const Class& of : classes) {
        if (!of.resources.empty()) resources[of.name] = of.resources;
    }
    return facility;
}

} // namespace recorder
