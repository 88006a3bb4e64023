// A strict stand-in for the client. It gives the answers of a script in their order, shapes that no real
// console gives among them, and fails the test on a call that is not the script's next, on an answer, record
// or message that is released twice or never, and on a script that is not played to its end.

#pragma once

#include "vale.h"

#include <deque>
#include <functional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace unit
{

/// One call that the script expects. The selection is compared as it is; "(none)" stands for a null one.
struct ScriptedCall {
    std::string className; ///< of an action: its name
    std::string selection;
    int32_t rc = 0;
    void* responses = nullptr; ///< the test's own; null at count 0
    uint32_t count = 0;
};

/// What `vale_get_error` and `vale_get_errmsg` hand out after a failed call.
struct ScriptedError {
    bool hasRecord = true;
    const char* message = nullptr;
};

/// The client of the test at hand; one at a time.
class ScriptedClient
{
public:
    ScriptedClient();
    ~ScriptedClient(); ///< checks that the script was played and everything released
    ScriptedClient(const ScriptedClient&) = delete;
    ScriptedClient& operator=(const ScriptedClient&) = delete;

    template <typename Response>
    void answers(std::string className, std::string selection, std::vector<Response>& responses)
    {
        script.push_back({std::move(className), std::move(selection), 0, responses.data(),
                          static_cast<uint32_t>(responses.size())});
    }
    void answersNothing(std::string className, std::string selection)
    {
        script.push_back({std::move(className), std::move(selection)});
    }
    void fails(std::string className, std::string selection, int32_t rc, ScriptedError error)
    {
        script.push_back({std::move(className), std::move(selection), rc});
        lastError = error;
    }

    /// What the next ends of sessions give.
    void ends(const std::vector<int32_t>& results) { sessionEnds.assign(results.begin(), results.end()); }

    int32_t play(const char* className, const char* selection, void** responses, uint32_t* count);
    int32_t endSession();
    int32_t release(const void* held);
    int32_t giveRecord(ValeErrorHandle* record);
    int32_t giveMessage(const char** message);

private:
    std::deque<ScriptedCall> script;
    std::deque<int32_t> sessionEnds;
    ScriptedError lastError;
    std::multiset<const void*> unreleased;
    size_t emptyAnswers = 0; ///< answers without responses, whose release carries a null
};

inline ValeAttribute textAttribute(const char* name, const char* text)
{
    return {.name = name, .identifier = 0, .type = VALE_TEXT, .value = {.text = text}};
}

} // namespace unit
