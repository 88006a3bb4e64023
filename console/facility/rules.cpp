// A rule's fields must go together: what it matches must be able to happen, and its effect must be one that
// the calls it matches can have. A rule that never fires would make a test pass that tests nothing.

#include "facility/rules.h"

#include "facility/resources.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>

namespace console::facility
{

namespace
{

using nlohmann::json;

constexpr const char* programCall = "program";

/// What can be told of a call, and how it can be answered.
struct CallForm {
    const char* name;
    bool ofClass = false; ///< it names a class (and a selection, where it has one)
    bool selects = false;
    const char* answer = nullptr; ///< the member that its responses hold
};
constexpr CallForm callForms[] = {
    {.name = "start_session"},
    {.name = "end_session"},
    {.name = "query_p_select", .ofClass = true, .selects = true, .answer = "attributes"},
    {.name = "query_d_select", .ofClass = true, .selects = true, .answer = "attributes"},
    {.name = "enumerate_resources", .ofClass = true, .selects = true, .answer = "handles"},
    {.name = "invoke_action", .ofClass = true, .answer = "elements"},
    {.name = programCall},
};
constexpr CallForm anyClientCall = {.name = "", .ofClass = true, .selects = true};
constexpr std::array answerMembers = {"attributes", "handles", "elements"};

bool isProgramRule(const json& rule)
{
    return rule.contains("program") || rule.value("call", "") == programCall;
}

const CallForm& callForm(const json& rule)
{
    if (isProgramRule(rule))
        return *std::ranges::find(callForms, std::string_view(programCall), &CallForm::name);
    const auto found =
        std::ranges::find(callForms, std::string_view(rule.value("call", "")), &CallForm::name);
    return found == std::end(callForms) ? anyClientCall : *found;
}

/// One rule under examination.
struct Examination {
    const json& rule;
    const CallForm& form;
    const Schema& schema;
    std::string pointer;
    Faults& faults;

    void fault(const std::string& place, const std::string& what) { faults.push_back({place, what}); }
    void refuse(const char* field, const char* what)
    {
        if (rule.contains(field)) fault(join(pointer, field), what);
    }

    void matching();
    void effects();
    void programEffect();
    void clientEffect();
    void response(const json& response, const std::string& place);
    void attribute(const json& attribute, const std::string& place);
};

void Examination::matching()
{
    if (rule.contains("program") && rule.contains("call") && rule["call"] != programCall) {
        fault(join(pointer, "call"), "must be program in a rule that names a program");
    }
    if (isProgramRule(rule)) refuse("scope", "has no meaning in a rule for programs");
    if (!form.ofClass) refuse("class", "has no meaning in a rule for this call");
    if (!form.selects) {
        refuse("selection", "has no meaning in a rule for this call");
        refuse("selectionContains", "has no meaning in a rule for this call");
    }
    if (rule.contains("class") && !schema.findClass(rule["class"])) {
        fault(join(pointer, "class"), "must be a class that exists");
    }
}

void Examination::effects()
{
    std::vector<std::string> given;
    for (const char* effect : {"fails", "error", "answer"}) {
        if (rule.contains(effect)) given.emplace_back(effect);
    }
    if (rule.contains("status") || rule.contains("output")) given.emplace_back("status and output");
    if (given.size() > 1) {
        fault(pointer, "has more than one effect: " + given[0] + ", " + given[1]);
    } else if (given.empty()) {
        if (!rule.contains("delay")) fault(pointer, "has no effect");
    } else if (isProgramRule(rule)) {
        programEffect();
    } else {
        clientEffect();
    }
}

/// The object that holds a program's status and output: the rule itself, or its answer, alone or in a list.
const json& programAnswer(const json& rule)
{
    const auto answer = rule.find("answer");
    if (answer == rule.end()) return rule;
    return answer->is_array() && answer->size() == 1 ? answer->front() : *answer;
}

void Examination::programEffect()
{
    refuse("fails", "is no effect on a program");
    refuse("error", "is no effect on a program");
    if (!rule.contains("answer")) return;
    const json& answer = programAnswer(rule);
    const bool fits = answer.is_object() && (answer.contains("status") || answer.contains("output")) &&
                      std::ranges::none_of(
                          answerMembers, [&answer](const char* member) { return answer.contains(member); }) &&
                      !answer.contains("error");
    if (!fits) fault(join(pointer, "answer"), "must hold a program's status and output");
}

void Examination::clientEffect()
{
    refuse("status", "is an effect on programs");
    refuse("output", "is an effect on programs");
    const bool responds = &form == &anyClientCall || form.answer != nullptr;
    if (!responds) {
        refuse("error", "is no effect on a call without responses");
        refuse("answer", "is no effect on a call without responses");
        return;
    }
    if (!rule.contains("answer")) return;
    const std::string place = join(pointer, "answer");
    if (!rule["answer"].is_array()) return fault(place, "must be a list of responses");
    for (size_t i = 0; i < rule["answer"].size(); ++i)
        response(rule["answer"][i], join(place, i));
}

void Examination::response(const json& response, const std::string& place)
{
    for (const char* member : {"status", "output"}) {
        if (response.contains(member)) fault(join(place, member), "is an effect on programs");
    }
    size_t contents = 0;
    for (const char* member : answerMembers) {
        if (!response.contains(member)) continue;
        ++contents;
        if (form.answer != nullptr && std::string_view(form.answer) != member) {
            fault(join(place, member), std::string("does not answer ") + form.name);
        }
    }
    if (contents > 1) fault(place, "answers several kinds of calls");
    if (!response.contains("attributes")) return;
    for (size_t i = 0; i < response["attributes"].size(); ++i)
        attribute(response["attributes"][i], join(join(place, "attributes"), i));
}

bool isWithin(const json& value, int64_t least, int64_t greatest)
{
    return value.is_number_integer() && value.get<int64_t>() >= least && value.get<int64_t>() <= greatest;
}

bool isListOf(const json& value, bool (json::*isKind)() const noexcept)
{
    return value.is_array() &&
           std::ranges::all_of(value, [isKind](const json& item) { return (item.*isKind)(); });
}

struct TypeTest {
    image::Type type;
    const char* description;
    bool (*fits)(const json& value);
};
constexpr TypeTest typeTests[] = {
    {image::Type::text, "a text", [](const json& value) { return value.is_string(); }},
    {image::Type::integer, "an integer from -2147483648 to 2147483647",
     [](const json& value) {
         return isWithin(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
     }},
    {image::Type::uinteger, "an integer from 0 to 4294967295",
     [](const json& value) { return isWithin(value, 0, std::numeric_limits<uint32_t>::max()); }},
    {image::Type::integers, "a list of integers",
     [](const json& value) { return isListOf(value, &json::is_number); }},
    {image::Type::texts, "a list of texts",
     [](const json& value) { return isListOf(value, &json::is_string); }},
};

bool fitsType(const json& value, image::Type type)
{
    const auto test = std::ranges::find(typeTests, type, &TypeTest::type);
    return test != std::end(typeTests) && test->fits(value);
}

/// The type that a value has of itself; for an empty list a list of integers, none for a mixed list.
std::optional<image::Type> ownType(const json& value)
{
    for (const TypeTest& test : typeTests) {
        if (test.fits(value)) return test.type;
    }
    return std::nullopt;
}

/// The program reads an attribute that it knows by its type, whatever the answer says.
void Examination::attribute(const json& attribute, const std::string& place)
{
    const json& value = attribute[1];
    if (value.is_null()) return;
    const std::optional<image::Type> known = schema.attributeType(attribute[0]);
    const auto test = std::ranges::find(typeTests, known.value_or(image::Type::mixed), &TypeTest::type);
    if (test != std::end(typeTests) ? !test->fits(value) : !ownType(value)) {
        const std::string kind = test != std::end(typeTests) ? test->description : "a list of one kind";
        fault(join(place, size_t{1}), "must be " + kind + " or null");
    }
}

/// The rules with faults, by their pointers, and the field that each fault is in.
std::multimap<std::string, std::string> faultyFields(const Faults& faults)
{
    std::multimap<std::string, std::string> fields;
    constexpr std::string_view rules = "/faults/";
    for (const Fault& fault : faults) {
        if (!fault.pointer.starts_with(rules)) continue;
        const size_t rule = std::min(fault.pointer.find('/', rules.size()), fault.pointer.size());
        const size_t field = std::min(rule + 1, fault.pointer.size());
        fields.emplace(fault.pointer.substr(0, rule),
                       fault.pointer.substr(field, fault.pointer.find('/', field) - field));
    }
    return fields;
}

/// Faultless rules on their way into the image.
struct RuleWriter {
    const Schema& schema;
    ImageWriter& writer;

    image::Offset text(const json& object, const char* key)
    {
        const auto found = object.find(key);
        return found == object.end() ? 0 : writer.text(found->get_ref<const std::string&>());
    }
    image::Error error(const json& holder)
    {
        const auto found = holder.find("error");
        if (found == holder.end()) return {};
        return {.number = found->at("number"), .pad = 0, .message = writer.text(found->value("message", ""))};
    }

    image::Answer answer(const json& response);
    void answers(const json& list, image::Rule& rule);
    void effect(const json& source, image::Rule& rule);
    image::Rule rule(const json& source);
};

image::Answer RuleWriter::answer(const json& response)
{
    std::vector<image::Attribute> attributes;
    for (const json& pair : response.value("attributes", json::array())) {
        const auto known = schema.attributeType(pair[0]);
        const auto type = known && fitsType(pair[1], *known) ? known : ownType(pair[1]);
        attributes.push_back({.name = writer.text(pair[0].get_ref<const std::string&>()),
                              .value = writeValue(writer, pair[1], type.value_or(image::Type::text))});
    }
    std::vector<image::Value> elements;
    for (const json& element : response.value("elements", json::array()))
        elements.push_back(writeValue(writer, element, ownType(element).value_or(image::Type::text)));
    return {.error = error(response),
            .attributes = writer.array(std::span<const image::Attribute>(attributes)),
            .attributeCount = static_cast<uint32_t>(attributes.size()),
            .handleCount = response.value("handles", 0U),
            .elements = writer.array(std::span<const image::Value>(elements)),
            .elementCount = elements.size()};
}

void RuleWriter::answers(const json& list, image::Rule& rule)
{
    std::vector<image::Answer> answers;
    for (const json& response : list)
        answers.push_back(answer(response));
    rule.answers = writer.array(std::span<const image::Answer>(answers));
    rule.answerCount = answers.size();
}

void RuleWriter::effect(const json& source, image::Rule& rule)
{
    const json& program = programAnswer(source);
    if (isProgramRule(source) && (program.contains("status") || program.contains("output"))) {
        const std::string output = program.value("output", "");
        rule.effect = image::Effect::program;
        rule.code = program.value("status", 0);
        rule.output = writer.bytes(output);
        rule.outputLength = output.size();
    } else if (source.contains("fails")) {
        rule.effect = image::Effect::fails;
        rule.code = source["fails"]["code"];
        rule.message = writer.text(source["fails"].value("message", ""));
    } else if (source.contains("error")) {
        rule.effect = image::Effect::error;
        rule.error = error(source);
        rule.response = source["error"].value("response", uint64_t{0});
    } else if (source.contains("answer")) {
        rule.effect = image::Effect::answer;
        answers(source["answer"], rule);
    }
}

image::Rule RuleWriter::rule(const json& source)
{
    image::Rule rule{};
    rule.call = text(source, "call");
    rule.className = text(source, "class");
    rule.selection = text(source, "selection");
    rule.selectionContains = text(source, "selectionContains");
    rule.program = text(source, "program");
    rule.scope = source.value("scope", int64_t{-1});
    rule.nth = source.value("nth", int64_t{-1});
    rule.delayMilliseconds = source.value("delay", int64_t{0});
    rule.effect = image::Effect::none;
    effect(source, rule);
    return rule;
}

} // namespace

void checkRules(json& rules, const Schema& schema, Faults& faults)
{
    if (!rules.is_array()) return;
    const std::multimap<std::string, std::string> faulty = faultyFields(faults);
    for (size_t i = 0; i < rules.size(); ++i) {
        json& rule = rules[i];
        if (!rule.is_object()) continue;
        const std::string pointer = join("/faults", i);
        const auto [first, last] = faulty.equal_range(pointer);
        for (auto field = first; field != last; ++field)
            rule.erase(field->second);
        Examination examination{
            .rule = rule, .form = callForm(rule), .schema = schema, .pointer = pointer, .faults = faults};
        examination.matching();
        if (first == last) examination.effects();
    }
}

void writeRules(const json& rules, const Schema& schema, ImageWriter& writer, image::Header& header)
{
    RuleWriter ruleWriter{.schema = schema, .writer = writer};
    std::vector<image::Rule> written;
    for (const json& rule : rules)
        written.push_back(ruleWriter.rule(rule));
    header.rules = writer.array(std::span<const image::Rule>(written));
    header.ruleCount = written.size();
}

} // namespace console::facility
