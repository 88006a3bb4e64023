// libvale_mc: sessions, queries, enumerations and actions, answered from the facility unless one of its fault
// rules decides otherwise.

#include "answer.h"
#include "client.h"

#include "image/faults.h"
#include "image/selection.h"

#include <cstring>
#include <span>

namespace
{

using namespace console;
using image::Effect;
using vale::Client;
using vale::Failure;
using vale::Plan;

constexpr const char* imageLevelAction = "queryRunningImageLevel";
constexpr const char* imageLevelInput = "S";
constexpr const char* imageLevelAttribute = "runningImageLevel";

std::string quoted(const char* text)
{
    return text == nullptr ? "(null)" : '"' + std::string(text) + '"';
}

/// Consumers cut a message's last character off: it is a newline.
Failure failure(const std::string& message)
{
    return {.code = vale::callFailed, .message = message + '\n'};
}

// Resource handles: a resource's place in the image from 1 on. In the upper half a class from 1 on marks a
// handle that a fault rule made up for it; the class behind the last one stands for an unknown class.

ValeResourceHandle resourceHandle(uint64_t resource)
{
    return vale::handleOf<ValeResourceHandle>(resource + 1);
}

/// A handle's first byte, on any machine: for a handle that stands for no resource its first bit and the
/// place of a class.
constexpr unsigned firstByte = 8 * (sizeof(uintptr_t) - 1);
constexpr uint64_t invented = 0x80;

ValeResourceHandle inventedHandle(const image::Image& image, const image::Class* of)
{
    const auto classes = image.classes();
    const size_t place = of == nullptr ? classes.size() : static_cast<size_t>(of - classes.data());
    return vale::handleOf<ValeResourceHandle>((invented | place) << firstByte);
}

struct Target {
    const image::Class* of = nullptr;          ///< null: unknown, as for a foreign handle
    const image::Resource* resource = nullptr; ///< null: an invented one
};

Target targetOf(const Client& client, ValeResourceHandle handle)
{
    if (!client.closed.empty()) return {};
    const image::Image& image = client.run.image;
    const uint64_t number = vale::numberOf(handle);
    const auto classes = image.classes();
    if ((number >> firstByte & invented) != 0) {
        const auto place = static_cast<size_t>(number >> firstByte ^ invented);
        return {.of = place < classes.size() ? &classes[place] : nullptr};
    }
    if (number == 0 || number > image.resources().size()) return {};
    const image::Resource& resource = image.resources()[static_cast<size_t>(number) - 1];
    return {.of = &classes[resource.classIndex], .resource = &resource};
}

// ---- what is common to all calls ----

/// A session's scope, 0 for a null handle.
uint32_t scopeOf(const Client& client, ValeSessionHandle session)
{
    if (session == nullptr) return 0;
    const auto found = client.sessions.find(vale::numberOf(session));
    if (found == client.sessions.end()) vale::violation("a session not of this client, or ended", session);
    return found->second;
}

const image::Rule* decide(const Client& client, const image::Call& call)
{
    return client.closed.empty() ? image::decide(client.run, call) : nullptr;
}

Failure failureBy(const image::Image& image, const image::Rule& rule)
{
    const char* message = image.text(rule.message);
    return {.code = rule.code, .message = message == nullptr ? "" : message};
}

Failure checkClass(const image::Image& image, const char* name, uint32_t scope)
{
    if (name == nullptr) return failure("no class is named, or the handle is of no resource");
    const image::Class* of = image.findClass(name);
    if (of == nullptr) return failure("class " + quoted(name) + " is unknown");
    if (of->scope == scope) return {};
    return failure("class " + quoted(name) + " is not served to a session of scope " + std::to_string(scope) +
                   ", only to one of scope " + std::to_string(of->scope));
}

/// What every call on a class needs before it can be answered regularly.
Failure checkRequest(const Client& client, const image::Call& call)
{
    if (!client.closed.empty()) return failure(client.closed);
    if (call.scope == 0) return failure(std::string(call.name) + " without a session");
    return checkClass(client.run.image, call.className, static_cast<uint32_t>(call.scope));
}

// ---- answers by fault rule ----

void addItems(Plan<ValeQueryResponse>& plan, const image::Image& image, const image::Answer& answer)
{
    for (const image::Attribute& attribute :
         image.span<image::Attribute>(answer.attributes, answer.attributeCount)) {
        if (attribute.value.type != image::Type::mixed) plan.add(&attribute);
    }
}

void addItems(Plan<ValeEnumerateResponse>& plan, const image::Image&, const image::Answer& answer)
{
    const uint64_t first = vale::numberOf(plan.responses.back().handle);
    for (uint32_t i = 0; i < answer.handleCount; ++i)
        plan.add(vale::handleOf<ValeResourceHandle>(first + i));
}

void addItems(Plan<ValeActionResponse>& plan, const image::Image& image, const image::Answer& answer)
{
    for (const image::Value& value : image.span<image::Value>(answer.elements, answer.elementCount)) {
        if (value.type != image::Type::mixed) plan.add(&value);
    }
}

template <typename Response>
void planAnswers(Plan<Response>& plan, const image::Image& image, const image::Rule& rule,
                 ValeResourceHandle handle)
{
    for (const image::Answer& answer : image.span<image::Answer>(rule.answers, rule.answerCount)) {
        plan.open(handle, answer.error);
        addItems(plan, image, answer);
    }
}

template <typename Response>
void placeError(Plan<Response>& plan, const image::Rule& rule, ValeResourceHandle handle)
{
    const auto place = static_cast<size_t>(rule.response);
    while (plan.responses.size() <= place)
        plan.open(handle);
    plan.responses[place].error = rule.error;
}

/// Plans the answer to a call: by the rule that decides it or regularly, which `regular` does.
template <typename Response, typename Regular>
Failure planAnswer(Plan<Response>& plan, const Client& client, const image::Call& call, Regular regular)
{
    const image::Image& image = client.run.image;
    const image::Rule* rule = decide(client, call);
    if (rule != nullptr && rule->effect == Effect::fails) return failureBy(image, *rule);

    const image::Class* of = client.closed.empty() ? image.findClass(call.className) : nullptr;
    plan.className = of == nullptr ? nullptr : image.text(of->name);
    if (rule != nullptr && rule->effect == Effect::answer) {
        planAnswers(plan, image, *rule, inventedHandle(image, of));
        return {};
    }
    Failure failed = checkRequest(client, call);
    if (failed.code == 0) failed = regular(plan, *of);
    if (failed.code == 0 && rule != nullptr && rule->effect == Effect::error) {
        placeError(plan, *rule, inventedHandle(image, of));
    }
    return failed;
}

/// Answers a call: plans, journals and hands the answer over. `line` has what was asked.
template <typename Response, typename Regular>
int32_t answer(Client& client, const image::Call& call, image::Line& line, Response** responses,
               uint32_t* count, Regular regular)
{
    if (responses == nullptr || count == nullptr) vale::violation("no place for an answer", responses);
    *responses = nullptr;
    *count = 0;
    Plan<Response> plan;
    const Failure failed = planAnswer(plan, client, call, regular);
    line.add("result", failed.code).add("count", plan.responses.size());
    if constexpr (std::is_same_v<Response, ValeEnumerateResponse>) line.add("handles", plan.items.size());
    const uint64_t number = image::append(client.run, line);
    if (failed.code != 0) {
        client.lastFailure = failed;
        return failed.code;
    }
    *responses = vale::layOut(client, plan, number);
    *count = static_cast<uint32_t>(plan.responses.size());
    return 0;
}

// ---- sessions ----

/// Journals a call on a session and keeps its failure.
int32_t finishSession(Client& client, const image::Call& call, const Failure& failed)
{
    image::Line line("vale", call.name);
    line.add("scope", call.scope).add("result", failed.code);
    image::append(client.run, line);
    if (failed.code != 0) client.lastFailure = failed;
    return failed.code;
}

/// The failure of a call on sessions: by the rule that decides it or by what `regular` finds.
template <typename Regular>
Failure failureOf(const Client& client, const image::Call& call, Regular regular)
{
    const image::Rule* rule = decide(client, call);
    const bool fails = rule != nullptr && rule->effect == Effect::fails;
    return fails ? failureBy(client.run.image, *rule) : regular();
}

Failure checkStart(const Client& client, uint32_t scope)
{
    if (!client.closed.empty()) return failure(client.closed);
    if (scope == 1 || scope == 2 || scope == 4) return {};
    return failure("there are no sessions of scope " + std::to_string(scope) + ", only of 1, 2 and 4");
}

Failure checkEnd(const Client& client, ValeSessionHandle session)
{
    if (!client.closed.empty()) return failure(client.closed);
    return session == nullptr ? failure("no session to end") : Failure{};
}

// ---- queries and enumerations ----

Failure selectResources(const image::Image& image, const image::Class& of, const char* text,
                        std::vector<uint32_t>& found)
{
    std::optional<image::Selection> selection;
    if (text != nullptr) {
        std::string fault;
        selection = image::parseSelection(text, fault);
        if (!selection) return failure("malformed selection: " + fault + ": " + text);
    }
    found = image::select(image, of, selection ? &*selection : nullptr);
    return {};
}

using Names = std::span<const char* const>;

Failure planQuery(Plan<ValeQueryResponse>& plan, const image::Image& image, const image::Class& of,
                  const char* selection, Names names)
{
    std::vector<uint32_t> found;
    Failure failed = selectResources(image, of, selection, found);
    std::vector<image::AttributeFinder> wanted;
    for (const char* name : names)
        wanted.push_back({.name = name == nullptr ? "" : name});
    for (const uint32_t index : found) {
        plan.open(resourceHandle(index));
        for (image::AttributeFinder& finder : wanted) {
            const image::Attribute* attribute = finder.find(image, image.resources()[index]);
            // A list of integers and texts can only be had by the action.
            if (attribute != nullptr && attribute->value.type != image::Type::mixed) plan.add(attribute);
        }
    }
    return failed;
}

int32_t query(const char* name, ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
              const char* className, const char* selection, Names attributes)
{
    Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    const image::Call call{
        .name = name, .scope = scopeOf(client, session), .className = className, .selection = selection};
    image::Line line("vale", name);
    line.add("scope", call.scope).add("class", className).add("selection", selection);
    line.list("attributes", attributes,
              [](std::string& json, const char* attribute) { image::writeJson(json, attribute); });
    return answer(client, call, line, responses, count, [&](auto& plan, const image::Class& of) {
        return planQuery(plan, client.run.image, of, selection, attributes);
    });
}

Names namesOf(const char* const* attributes, uint32_t count)
{
    return {attributes, attributes == nullptr ? 0 : count};
}

Failure planEnumeration(Plan<ValeEnumerateResponse>& plan, const image::Image& image, const image::Class& of,
                        const char* selection)
{
    std::vector<uint32_t> found;
    Failure failed = selectResources(image, of, selection, found);
    if (failed.code != 0) return failed;
    plan.open(nullptr);
    for (const uint32_t index : found)
        plan.add(resourceHandle(index));
    return {};
}

// ---- actions ----

std::span<const ValeElement> elementsOf(const ValeStructuredData* data)
{
    if (data == nullptr || data->elements == nullptr) return {};
    return {data->elements, data->count};
}

void writeElement(std::string& json, const ValeElement& element)
{
    switch (element.type) {
    case VALE_TEXT:
        return image::writeJson(json, element.value.text);
    case VALE_INTEGER:
        return image::writeJson(json, element.value.integer);
    case VALE_UNSIGNED:
        return image::writeJson(json, element.value.uinteger);
    default:
        return image::writeJson(json, nullptr);
    }
}

bool isImageLevelInput(std::span<const ValeElement> input)
{
    return input.size() == 1 && input[0].type == VALE_TEXT && input[0].value.text != nullptr &&
           std::strcmp(input[0].value.text, imageLevelInput) == 0;
}

Failure planAction(Plan<ValeActionResponse>& plan, const image::Image& image, const Target& target,
                   const char* action, std::span<const ValeElement> input)
{
    if (action == nullptr || std::strcmp(action, imageLevelAction) != 0) {
        return failure("action " + quoted(action) + " is unknown");
    }
    if (!isImageLevelInput(input)) {
        return failure(std::string(imageLevelAction) + " takes the one text " + quoted(imageLevelInput));
    }
    plan.open(nullptr);
    if (target.resource == nullptr) return {};
    image::AttributeFinder level{.name = imageLevelAttribute};
    const image::Attribute* found = level.find(image, *target.resource);
    if (found == nullptr || found->value.type != image::Type::mixed) return {};
    for (const image::Value& value : image.span<image::Value>(found->value.data, found->value.count)) {
        plan.add(&value);
    }
    return {};
}

} // namespace

int32_t vale_start_session(const char* const* contacts, uint32_t contactCount, uint32_t scope,
                           ValeSessionHandle* session)
{
    Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    if (session == nullptr) vale::violation("no place for a session", session);
    if (contacts == nullptr && contactCount != 0) vale::violation("a count of no contacts", contacts);
    *session = nullptr;
    const image::Call call{.name = "start_session", .scope = scope};
    const Failure failed = failureOf(client, call, [&] { return checkStart(client, scope); });
    if (failed.code == 0) {
        client.sessions.emplace(++client.lastHandle, scope);
        *session = vale::handleOf<ValeSessionHandle>(client.lastHandle);
    }
    return finishSession(client, call, failed);
}

int32_t vale_end_session(ValeSessionHandle session)
{
    Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    const image::Call call{.name = "end_session", .scope = scopeOf(client, session)};
    const Failure failed = failureOf(client, call, [&] { return checkEnd(client, session); });
    if (failed.code == 0) client.sessions.erase(vale::numberOf(session));
    return finishSession(client, call, failed);
}

int32_t vale_query_p_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    return query("query_p_select", session, responses, count, className, selection,
                 namesOf(attributes, attributeCount));
}

int32_t vale_query_d_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    return query("query_d_select", session, responses, count, className, selection,
                 namesOf(attributes, attributeCount));
}

int32_t vale_enumerate_resources(ValeSessionHandle session, ValeEnumerateResponse** responses,
                                 uint32_t* count, const char* className, const char* selection)
{
    Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    const image::Call call{.name = "enumerate_resources",
                           .scope = scopeOf(client, session),
                           .className = className,
                           .selection = selection};
    image::Line line("vale", call.name);
    line.add("scope", call.scope).add("class", className).add("selection", selection);
    return answer(client, call, line, responses, count, [&](auto& plan, const image::Class& of) {
        return planEnumeration(plan, client.run.image, of, selection);
    });
}

int32_t vale_invoke_action(ValeSessionHandle session, ValeActionResponse** responses, uint32_t* count,
                           ValeResourceHandle resource, const char* action, const ValeStructuredData* input)
{
    Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    const Target target = targetOf(client, resource);
    const char* className = target.of == nullptr ? nullptr : client.run.image.text(target.of->name);
    const image::Call call{
        .name = "invoke_action", .scope = scopeOf(client, session), .className = className};
    image::Line line("vale", call.name);
    line.add("scope", call.scope).add("class", className).add("action", action);
    line.list("input", elementsOf(input), writeElement);
    return answer(client, call, line, responses, count, [&](auto& plan, const image::Class&) {
        return planAction(plan, client.run.image, target, action, elementsOf(input));
    });
}

int32_t vale_free_response(void* responses)
{
    if (responses == nullptr) return 0;
    Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    image::Line line("vale", "free_response");
    line.add("of", client.responses.release(responses, "a response not of this client, or freed twice"));
    image::append(client.run, line);
    return 0;
}
