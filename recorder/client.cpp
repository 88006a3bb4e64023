// The recorder's client. Preloaded, its functions stand before those of the console's own client, whose names
// they have: each passes the call on unchanged to the next of its name in the loader's order, and writes down
// what was asked and answered. Nothing is asked of the client that the program did not ask.

#include "recorder/builds.h"
#include "recorder/tape.h"
#include "vale.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <span>
#include <unordered_map>

namespace
{

using namespace recorder;
using nlohmann::json;

/// The function of that name in the libraries behind this one.
template <typename Function>
Function* nextOf(const char* name)
{
    void* next = dlsym(RTLD_NEXT, name);
    if (next != nullptr) return reinterpret_cast<Function*>(next);
    std::fprintf(stderr, "recorder: the console's client has no %s\n", name);
    std::abort();
}

// ---- who calls ----

std::span<char*> commandLine;

[[gnu::constructor]] void keepCommandLine(int count, char** arguments, char**)
{
    commandLine = {arguments, static_cast<size_t>(count)};
}

/// Once in a process that uses the client.
void introduce()
{
    if (commandLine.empty()) return;
    append({{"collector", commandLine}, {"builds", builds()}});
    commandLine = {};
}

// ---- what the client's handles stand for ----

std::unordered_map<ValeSessionHandle, uint32_t> scopes;

struct Resource {
    uint64_t number = 0;
    std::string className;
};
std::unordered_map<ValeResourceHandle, Resource> resources;

uint32_t scopeOf(ValeSessionHandle session)
{
    const auto found = scopes.find(session);
    return found == scopes.end() ? 0 : found->second;
}

/// The handle's number. It belongs to the class that answered it last.
uint64_t numberOf(ValeResourceHandle handle, const json& className)
{
    Resource& resource = resources[handle];
    if (resource.number == 0) resource.number = resources.size();
    if (className.is_string()) resource.className = className;
    return resource.number;
}

// ---- the client's records as JSON ----

json toJson(const char* text)
{
    return text == nullptr ? json() : json(text);
}

json toJson(std::span<const char* const> texts)
{
    json list = json::array();
    for (const char* text : texts)
        list.push_back(toJson(text));
    return list;
}

json toJson(const ValeIntegerList* list)
{
    return list == nullptr ? json() : json(std::span(list->values, list->count));
}

json toJson(const ValeTextList* list)
{
    return list == nullptr ? json() : toJson(std::span(list->values, list->count));
}

json toJson(int32_t type, const ValeValue& value)
{
    switch (type) {
    case VALE_TEXT:
        return toJson(value.text);
    case VALE_INTEGER:
        return value.integer;
    case VALE_UNSIGNED:
        return value.uinteger;
    case VALE_INTEGER_LIST:
        return toJson(value.integers);
    case VALE_TEXT_LIST:
        return toJson(value.texts);
    default:
        return nullptr;
    }
}

json toJson(std::span<const ValeElement> elements)
{
    json list = json::array();
    for (const ValeElement& element : elements)
        list.push_back(toJson(element.type, element.value));
    return list;
}

void addContent(json& line, const ValeQueryResponse& response, const json& className)
{
    json& list = line["attributes"] = json::array();
    for (const ValeAttribute& attribute : std::span(response.attributes, response.attributeCount))
        list.push_back(json::array({toJson(attribute.name), toJson(attribute.type, attribute.value)}));
    line["handle"] = numberOf(response.handle, className);
}

void addContent(json& line, const ValeEnumerateResponse& response, const json& className)
{
    json& list = line["handles"] = json::array();
    for (ValeResourceHandle handle : std::span(response.handles, response.handleCount))
        list.push_back(numberOf(handle, className));
}

void addContent(json& line, const ValeActionResponse& response, const json&)
{
    line["elements"] = toJson(std::span(response.result.elements, response.result.count));
}

template <typename Response>
json toJson(const Response& response, const json& className)
{
    json line;
    const ValeErrorNumber& error = response.error;
    if (error.number != 0) {
        line["error"] = {{"number", error.number},
                         {"message", error.message == nullptr ? "" : error.message}};
    }
    addContent(line, response, className);
    return line;
}

// ---- a call's line ----

json lineOf(const char* call, ValeSessionHandle session)
{
    return {{"vale", call}, {"scope", scopeOf(session)}};
}

int32_t finish(json line, int32_t result)
{
    line["result"] = result;
    append(line);
    return result;
}

template <typename Response>
int32_t finish(json line, int32_t result, Response* const* responses, const uint32_t* count)
{
    if (result == 0) {
        json& list = line["responses"] = json::array();
        for (const Response& response : std::span(*responses, *count))
            list.push_back(toJson(response, line["class"]));
    }
    return finish(std::move(line), result);
}

using Query = decltype(vale_query_p_select);

int32_t query(Query* next, const char* name, ValeSessionHandle session, ValeQueryResponse** responses,
              uint32_t* count, const char* className, const char* selection, const char* const* attributes,
              uint32_t attributeCount)
{
    json line = lineOf(name, session);
    line["class"] = toJson(className);
    line["selection"] = toJson(selection);
    line["attributes"] = toJson(std::span(attributes, attributes == nullptr ? 0 : attributeCount));
    const int32_t result = next(session, responses, count, className, selection, attributes, attributeCount);
    return finish(std::move(line), result, responses, count);
}

} // namespace

int32_t vale_start_session(const char* const* contacts, uint32_t contactCount, uint32_t scope,
                           ValeSessionHandle* session)
{
    static auto* const next = nextOf<decltype(vale_start_session)>("vale_start_session");
    introduce();
    const int32_t result = next(contacts, contactCount, scope, session);
    if (session != nullptr && *session != nullptr) scopes[*session] = scope;
    return finish({{"vale", "start_session"}, {"scope", scope}}, result);
}

int32_t vale_end_session(ValeSessionHandle session)
{
    static auto* const next = nextOf<decltype(vale_end_session)>("vale_end_session");
    json line = lineOf("end_session", session);
    const int32_t result = next(session);
    return finish(std::move(line), result);
}

int32_t vale_query_p_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    static auto* const next = nextOf<Query>("vale_query_p_select");
    return query(next, "query_p_select", session, responses, count, className, selection, attributes,
                 attributeCount);
}

int32_t vale_query_d_select(ValeSessionHandle session, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const* attributes,
                            uint32_t attributeCount)
{
    static auto* const next = nextOf<Query>("vale_query_d_select");
    return query(next, "query_d_select", session, responses, count, className, selection, attributes,
                 attributeCount);
}

int32_t vale_enumerate_resources(ValeSessionHandle session, ValeEnumerateResponse** responses,
                                 uint32_t* count, const char* className, const char* selection)
{
    static auto* const next = nextOf<decltype(vale_enumerate_resources)>("vale_enumerate_resources");
    json line = lineOf("enumerate_resources", session);
    line["class"] = toJson(className);
    line["selection"] = toJson(selection);
    const int32_t result = next(session, responses, count, className, selection);
    return finish(std::move(line), result, responses, count);
}

int32_t vale_invoke_action(ValeSessionHandle session, ValeActionResponse** responses, uint32_t* count,
                           ValeResourceHandle resource, const char* action, const ValeStructuredData* input)
{
    static auto* const next = nextOf<decltype(vale_invoke_action)>("vale_invoke_action");
    json line = lineOf("invoke_action", session);
    const auto known = resources.find(resource);
    line["class"] = known == resources.end() ? json() : json(known->second.className);
    line["handle"] = known == resources.end() ? 0 : known->second.number;
    line["action"] = toJson(action);
    line["input"] = input == nullptr ? json() : toJson(std::span(input->elements, input->count));
    const int32_t result = next(session, responses, count, resource, action, input);
    return finish(std::move(line), result, responses, count);
}

int32_t vale_get_errmsg(ValeErrorHandle error, const char** message)
{
    static auto* const next = nextOf<decltype(vale_get_errmsg)>("vale_get_errmsg");
    const int32_t result = next(error, message);
    append({{"vale", "get_errmsg"}, {"message", result == 0 ? toJson(*message) : json()}});
    return result;
}
