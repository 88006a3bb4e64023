// Hostile data: every attribute of every class with every kind of value, lists of any length, attributes
// missing, repeated and unknown, more partitions than there are slots, hostile MTMS arguments, messages and
// program output. No byte of any of them may be run, and none may bring the collector down.

#include <algorithm>
#include <iterator>
#include <set>
#include <stdexcept>

#include "facility/schema.h"
#include "hostileJudge.h"
#include "hostileValues.h"
#include "sweep.h"

namespace sweep
{

namespace
{

using console::facility::AttributeForm;
using console::facility::ClassForm;
using Classes = std::set<std::string>;

constexpr const char* partitions = "Orvik.TarnStorageFacilityPartition";
constexpr const char* nodes = "Orvik.ManagedNode";

json smallFacility()
{
    static const json facility = bundled("small.json");
    return facility;
}

const std::vector<ClassForm>& classForms()
{
    static const console::facility::Schema schema;
    return schema.classes();
}

std::string typeName(console::image::Type type)
{
    using console::image::Type;
    static const std::map<Type, std::string> names = {
        {Type::text, "text"},         {Type::integer, "integer"}, {Type::uinteger, "uinteger"},
        {Type::integers, "integers"}, {Type::texts, "texts"},     {Type::mixed, "mixed"},
    };
    return names.at(type);
}

/// A generator that makes the same values for the same run, whatever runs before it.
Random randomFor(const std::string& name)
{
    std::seed_seq seed(name.begin(), name.end());
    return Random(seed);
}

Plan planned(const std::string& name)
{
    Plan plan;
    plan.name = name;
    plan.facility = smallFacility;
    plan.prefix = canaryWatch;
    plan.judge = judgeHostile;
    // Root runs the console's tools directly, anyone else through the wrapper.
    if (randomFor(name)() % 2 == 0) plan.user = "operator";
    return plan;
}

/// A plan whose facility is the small one after a change.
Plan changed(const std::string& name, const std::function<void(json& facility)>& change)
{
    Plan plan = planned(name);
    plan.facility = [change] {
        json facility = smallFacility();
        change(facility);
        return facility;
    };
    return plan;
}

Plan faulty(const std::string& name, const json& rule)
{
    Plan plan = planned(name);
    plan.faults = [rule] { return json::array({rule}); };
    return plan;
}

// ---- attributes ----

void addAttribute(std::vector<Plan>& plans, const ClassForm& form, const AttributeForm& attribute)
{
    if (!smallFacility()["resources"].contains(form.name)) return; // no resource to change
    const std::string place = form.name + " " + attribute.name;
    Random random = randomFor(place);
    for (const HostileValue& value : valuesOf(typeName(attribute.type), random)) {
        plans.push_back(changed("attribute " + place + " " + value.name, [=](json& facility) {
            for (json& resource : facility["resources"][form.name]) {
                resource[attribute.name] = value.value;
            }
        }));
    }
    plans.push_back(changed("attribute " + place + " missing", [=](json& facility) {
        for (json& resource : facility["resources"][form.name]) {
            resource.erase(attribute.name);
        }
    }));
}

/// The other system's MTMS goes to the console's state command.
bool isPartnerMTMS(const AttributeForm& attribute)
{
    return attribute.name == "managedSystem0MTMS";
}

void addAttributes(std::vector<Plan>& plans, const Classes&)
{
    for (const ClassForm& form : classForms()) {
        for (const AttributeForm& attribute : form.attributes) {
            if (!isPartnerMTMS(attribute)) addAttribute(plans, form, attribute);
        }
    }
}

void addPartnerMTMS(std::vector<Plan>& plans, const Classes&)
{
    for (const ClassForm& form : classForms()) {
        const auto attribute = std::ranges::find_if(form.attributes, isPartnerMTMS);
        if (attribute != form.attributes.end()) addAttribute(plans, form, *attribute);
    }
}

// ---- answers ----

/// Each attribute of the class as an answer gives it: its name, its regular value or null.
json regularAttributes(const ClassForm& form)
{
    const json resource = smallFacility()["resources"].value(form.name, json::array({json::object()}))[0];
    json attributes = json::array();
    for (const AttributeForm& attribute : form.attributes) {
        if (attribute.type == console::image::Type::mixed) continue; // no attribute of a query
        attributes.push_back({attribute.name, resource.value(attribute.name, json())});
    }
    return attributes;
}

json nulls(json attributes)
{
    for (json& attribute : attributes) {
        attribute[1] = nullptr;
    }
    return attributes;
}

json reversed(json attributes)
{
    std::reverse(attributes.begin(), attributes.end());
    return attributes;
}

json joined(json first, const json& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

json unknowns(size_t count)
{
    json attributes = json::array();
    for (size_t i = 0; i < count; ++i) {
        attributes.push_back({textKinds()[i % textKinds().size()].name, static_cast<int32_t>(i + 1)});
    }
    attributes.push_back({std::string(10'000, 'x'), "$(touch canary)"});
    attributes.push_back({"", ""});
    return attributes;
}

void addAnswers(std::vector<Plan>& plans, const Classes& asked)
{
    for (const ClassForm& form : classForms()) {
        if (!asked.contains(form.name)) continue;
        const json regular = regularAttributes(form);
        const std::vector<std::pair<std::string, json>> answers = {
            {"nothing", json::array()},
            {"nulls", nulls(regular)},
            {"repeated", joined(regular, regular)},
            {"repeatedNull", joined(regular, nulls(regular))},
            {"reversed", reversed(regular)},
            {"unknown", joined(unknowns(1000), regular)},
        };
        for (const auto& [name, attributes] : answers) {
            for (const char* call : {"query_p_select", "query_d_select"}) {
                plans.push_back(faulty("answer " + form.name + " " + call + " " + name,
                                       {{"call", call},
                                        {"class", form.name},
                                        {"answer", json::array({{{"attributes", attributes}}})}}));
            }
        }
    }
}

// ---- partitions ----

/// Partitions with these pool IDs, on both systems, each with its node.
void setPartitions(json& facility, const Texts& poolIds)
{
    const json partition = facility["resources"][partitions][0];
    const json node = facility["resources"][nodes][0];
    json allPartitions = json::array();
    json allNodes = json::array();
    for (const char* serial : {"7ABCD12", "7ABCD34"}) {
        for (size_t i = 0; i < poolIds.size(); ++i) {
            json next = partition;
            next["managedSystemMTMS"] = std::string("9999-B2C*") + serial;
            next["hslLumenPoolId"] = poolIds[i];
            next["lparId"] = std::to_string(i + 1);
            allPartitions.push_back(next);
            json its = node;
            its["HWSerialNum"] = serial;
            its["LParID"] = std::to_string(i + 1);
            allNodes.push_back(its);
        }
    }
    facility["resources"][partitions] = allPartitions;
    facility["resources"][nodes] = allNodes;
}

void addPartitions(std::vector<Plan>& plans, const Classes&)
{
    for (const size_t count : {2U, 7U, 8U, 9U, 10U, 20U, 200U, 10'000U}) {
        Texts poolIds;
        for (size_t i = 0; i < count; ++i) {
            poolIds.push_back(std::to_string(i + 1));
        }
        plans.push_back(changed("partitions " + std::to_string(count),
                                [poolIds](json& facility) { setPartitions(facility, poolIds); }));
        std::ranges::fill(poolIds, "1");
        plans.push_back(changed("partitions " + std::to_string(count) + " of one pool",
                                [poolIds](json& facility) { setPartitions(facility, poolIds); }));
    }
    for (const char* poolId : {"0", "9", "10", "-1", "01", "1 ", " 1", "1a", "a", "12345678901234567890"}) {
        plans.push_back(changed(std::string("pool ") + poolId, [poolId](json& facility) {
            setPartitions(facility, {"1", poolId});
        }));
    }
}

// ---- arguments ----

bool isUsable(const std::string& mtms)
{
    constexpr const char* usable = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-*._";
    const std::string serial = mtms.size() > 9 ? mtms.substr(9, 7) : "";
    return !serial.empty() && mtms.find_first_not_of(usable) == std::string::npos &&
           serial.find('*') == std::string::npos;
}

void addArguments(std::vector<Plan>& plans, const Classes&)
{
    Random random = randomFor("arguments");
    for (const TextKind& kind : textKinds()) {
        const std::string text = kind.make(random);
        const std::string front = managedSystem.substr(0, 9);
        const std::vector<std::pair<std::string, std::string>> arguments = {
            {"whole", text},
            {"serial", front + text},
            {"behind", managedSystem + text},
            {"model", text.substr(0, 8) + "*7ABCD12"}};
        for (const auto& [place, mtms] : arguments) {
            Plan plan = planned("mtms " + place + " " + kind.name);
            plan.arguments = {"x", mtms};
            if (!isUsable(mtms)) plan.judge = judgeRefused;
            plans.push_back(plan);
        }
        Plan option = planned(std::string("option ") + kind.name);
        option.arguments[0] = text;
        plans.push_back(option);
    }
    for (const char* mtms : {"\xff\xfe", "9999-B2C*\xff", "9999-B2C*7ABCD12\xc3", "9999-B2C*../x",
                             "9999-B2C**ABCD12", "/etc/passwd", "../../../tmp/x", "9999-B2C*7AB/D12"}) {
        Plan plan = planned("mtms " + json(mtms).dump(-1, ' ', true, json::error_handler_t::replace));
        plan.arguments = {"x", mtms};
        plan.judge = judgeRefused;
        plans.push_back(plan);
    }
}

// ---- messages ----

/// A class's answer in error, or its failing call.
json messageRule(const std::string& className, size_t effect, const std::string& message)
{
    constexpr uint32_t unreachable = 0x40008;
    constexpr uint32_t other = 77;
    if (effect == 0) return {{"class", className}, {"fails", {{"code", 7}, {"message", message}}}};
    const uint32_t number = effect == 1 ? unreachable : other;
    return {{"class", className}, {"error", {{"number", number}, {"message", message}}}};
}

/// Every class with every kind of message; the effects take turns.
void addMessages(std::vector<Plan>& plans, const Classes& asked)
{
    constexpr size_t effects = 3;
    size_t turn = 0;
    for (const std::string& className : asked) {
        Random random = randomFor("messages " + className);
        for (const TextKind& kind : textKinds()) {
            const json rule = messageRule(className, turn++ % effects, kind.make(random) + "\n");
            plans.push_back(faulty("message " + className + " " + kind.name, rule));
            plans.back().mustFire = {0};
        }
        ++turn; // so that a kind has another effect in the next class
    }
}

/// A partition that is not online is reported by its name.
void addReportedNames(std::vector<Plan>& plans, const Classes&)
{
    Random random = randomFor("partition names");
    for (const TextKind& kind : textKinds()) {
        const std::string name = kind.make(random);
        for (const char* serial : {"7ABCD12", "7ABCD34"}) {
            plans.push_back(changed(std::string("offline ") + serial + " " + kind.name, [=](json& facility) {
                for (json& partition : facility["resources"][partitions]) {
                    partition["lparName"] = name;
                }
                for (json& node : facility["resources"][nodes]) {
                    if (node["HWSerialNum"] == serial) node["Status"] = 2;
                }
            }));
        }
    }
}

// ---- programs ----

/// A program's output; the serial and the type-model of a console stand behind their names.
json outputRule(const std::string& program, int status, const std::string& text)
{
    const std::string output = text + "\n*TM " + text + "\n*SE " + text + "\n";
    return {{"program", program}, {"status", status}, {"output", output}};
}

/// So that there is an event.
void takePartnerOffline(json& facility)
{
    facility["resources"][nodes][1]["Status"] = 2;
}

void addOutputs(std::vector<Plan>& plans, const std::string& program, int status)
{
    const std::string place = "output " + program + " " + std::to_string(status);
    const bool reports = program == "pmProblemEventPoster" || program == "mmquaycmd";
    Random random = randomFor(place);
    for (const TextKind& kind : textKinds()) {
        Plan plan = faulty(place + " " + kind.name, outputRule(program, status, kind.make(random)));
        if (reports) plan.facility = changed("", takePartnerOffline).facility;
        if (program == "mmquaycmd") plan.user = "operator";
        plans.push_back(plan);
    }
}

void addPrograms(std::vector<Plan>& plans, const Classes&)
{
    for (const char* program : {"whoami", "qmstat", "qconvpd", "mmquaycmd", "pmProblemEventPoster"}) {
        addOutputs(plans, program, 0);
        addOutputs(plans, program, 1);
    }
}

// ---- everything at once ----

void spoil(json& resource, const ClassForm& form, Random& random)
{
    for (const AttributeForm& attribute : form.attributes) {
        if (random() % 12 != 0) continue;
        const std::vector<HostileValue> values = valuesOf(typeName(attribute.type), random);
        resource[attribute.name] = values[numberBelow(random, values.size())].value;
    }
}

void addMixtures(std::vector<Plan>& plans, const Classes&)
{
    constexpr size_t count = 200;
    for (size_t seed = 1; seed <= count; ++seed) {
        const std::string name = "mixture " + std::to_string(seed);
        plans.push_back(changed(name, [name](json& facility) {
            Random random = randomFor(name);
            for (const ClassForm& form : classForms()) {
                if (form.name == nodes || form.name == partitions) continue; // they end most runs early
                if (!facility["resources"].contains(form.name)) continue;
                for (json& resource : facility["resources"][form.name]) {
                    spoil(resource, form, random);
                }
            }
        }));
    }
}

// ---- the sweep ----

Classes askedClasses()
{
    Plan plan;
    plan.facility = smallFacility;
    Classes asked;
    for (const json& line : runOnce(plan).journal) {
        if (line.contains("class")) asked.insert(line["class"]);
    }
    if (asked.empty()) throw std::runtime_error("a regular run asks for nothing");
    return asked;
}

struct Group {
    void (*add)(std::vector<Plan>& plans, const Classes& asked);
    size_t few; ///< how many stand for the group in the short form
};
// Messages, reported names and the partner's MTMS are what reaches a shell.
constexpr Group groups[] = {
    {.add = addAttributes, .few = 50},    {.add = addPartnerMTMS, .few = 15}, {.add = addAnswers, .few = 8},
    {.add = addPartitions, .few = 8},     {.add = addArguments, .few = 15},   {.add = addMessages, .few = 20},
    {.add = addReportedNames, .few = 15}, {.add = addPrograms, .few = 12},    {.add = addMixtures, .few = 7},
};

} // namespace

std::vector<Plan> planHostile(const Options& options)
{
    const bool all = options.full || !options.only.empty();
    const Classes asked = askedClasses();
    std::vector<Plan> plans;
    for (const Group& group : groups) {
        std::vector<Plan> added;
        group.add(added, asked);
        if (!all) added = thinned(std::move(added), group.few);
        std::ranges::move(added, std::back_inserter(plans));
    }
    return plans;
}

} // namespace sweep
