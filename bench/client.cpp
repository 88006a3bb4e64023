// The client's share: the calls of a recorded run, with nothing between them.
//
//     kord-bench-client JOURNAL
//
// Makes the client calls of the journal and prints the nanoseconds that they took of this process.

#include "statistics.h"
#include "vale.h"

#include <cstdio>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace
{

using nlohmann::json;

struct Call {
    std::string name;
    uint64_t number;
    uint32_t scope;
    uint64_t answered; ///< of a release: the call's number
    std::string className;
    std::string action;
    std::optional<std::string> selection;
    std::vector<std::string> texts; ///< attributes requested
    std::vector<const char*> attributes;
};

Call readCall(const json& line)
{
    Call call{.name = line.value("vale", ""),
              .number = line.at("seq"),
              .scope = line.value("scope", 0U),
              .answered = line.value("of", uint64_t{0}),
              .className = line.value("class", ""),
              .action = line.value("action", ""),
              .selection = {},
              .texts = line.value("attributes", std::vector<std::string>()),
              .attributes = {}};
    if (line.contains("selection") && line["selection"].is_string()) call.selection = line["selection"];
    return call;
}

std::vector<Call> readCalls(const char* journal)
{
    std::vector<Call> calls;
    std::ifstream file(journal);
    for (std::string text; std::getline(file, text);) {
        const json line = json::parse(text);
        if (line.contains("vale")) calls.push_back(readCall(line));
    }
    for (Call& call : calls) {
        for (const std::string& text : call.texts)
            call.attributes.push_back(text.c_str());
    }
    return calls;
}

/// What the calls leave for later ones.
struct Player {
    std::map<uint32_t, ValeSessionHandle> sessions;
    std::map<uint64_t, void*> answers;
    std::map<std::string, ValeResourceHandle> resources; ///< the first that the last query of a class gave

    template <typename Response, typename Select>
    Response* select(const Call& call, Select request)
    {
        Response* responses = nullptr;
        uint32_t count = 0;
        request(&responses, &count);
        answers[call.number] = responses;
        return count > 0 ? responses : nullptr;
    }

    void query(const Call& call, decltype(&vale_query_p_select) function)
    {
        const auto* first = select<ValeQueryResponse>(call, [&](auto** responses, uint32_t* count) {
            function(sessions[call.scope], responses, count, call.className.c_str(),
                     call.selection ? call.selection->c_str() : nullptr, call.attributes.data(),
                     static_cast<uint32_t>(call.attributes.size()));
        });
        if (first != nullptr) resources[call.className] = first->handle;
    }

    void enumerate(const Call& call)
    {
        select<ValeEnumerateResponse>(call, [&](auto** responses, uint32_t* count) {
            vale_enumerate_resources(sessions[call.scope], responses, count, call.className.c_str(),
                                     call.selection ? call.selection->c_str() : nullptr);
        });
    }

    void act(const Call& call)
    {
        const ValeElement element{.type = VALE_TEXT, .value = {.text = "S"}};
        const ValeStructuredData input{.count = 1, .elements = &element};
        select<ValeActionResponse>(call, [&](auto** responses, uint32_t* count) {
            vale_invoke_action(sessions[call.scope], responses, count, resources[call.className],
                               call.action.c_str(), &input);
        });
    }

    void release(const Call& call)
    {
        const auto answer = answers.find(call.answered);
        if (answer == answers.end()) return;
        vale_free_response(answer->second);
        answers.erase(answer);
    }

    void play(const Call& call)
    {
        if (call.name == "query_p_select") return query(call, vale_query_p_select);
        if (call.name == "query_d_select") return query(call, vale_query_d_select);
        if (call.name == "enumerate_resources") return enumerate(call);
        if (call.name == "invoke_action") return act(call);
        if (call.name == "free_response") return release(call);
        if (call.name == "start_session") vale_start_session(nullptr, 0, call.scope, &sessions[call.scope]);
        if (call.name == "end_session") vale_end_session(sessions[call.scope]);
    }
};

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::fputs("usage: kord-bench-client JOURNAL\n", stderr);
        return 2;
    }
    const std::vector<Call> calls = readCalls(argv[1]);
    Player player;
    const double cost = bench::timeOf([&] {
        for (const Call& call : calls)
            player.play(call);
    });
    std::printf("%.0f\n", cost);
    return calls.empty() ? 2 : 0;
}
