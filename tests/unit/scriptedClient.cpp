#include "scriptedClient.h"

#include <gtest/gtest.h>

namespace unit
{
namespace
{

ScriptedClient* current = nullptr;
char theRecord; ///< its address is the error record's

} // namespace

ScriptedClient::ScriptedClient()
{
    current = this;
}

ScriptedClient::~ScriptedClient()
{
    current = nullptr;
    EXPECT_EQ(script.size(), 0U) << "calls never made";
    EXPECT_EQ(sessionEnds.size(), 0U) << "sessions never ended";
    EXPECT_EQ(unreleased.size(), 0U) << "answers, records or messages never released";
    EXPECT_EQ(emptyAnswers, 0U) << "empty answers never released";
}

int32_t ScriptedClient::play(const char* className, const char* selection, void** responses, uint32_t* count)
{
    const std::string call = std::string(className) + " " + (selection != nullptr ? selection : "(none)");
    if (script.empty()) {
        ADD_FAILURE() << "a call that the script has not: " << call;
        return 1;
    }
    const ScriptedCall next = script.front();
    script.pop_front();
    EXPECT_EQ(call, next.className + " " + next.selection);
    *responses = next.responses;
    *count = next.count;
    if (next.rc != 0) return next.rc;
    if (next.responses != nullptr)
        unreleased.insert(next.responses);
    else
        ++emptyAnswers;
    return 0;
}

int32_t ScriptedClient::endSession()
{
    if (sessionEnds.empty()) {
        ADD_FAILURE() << "a session's end that the script has not";
        return 1;
    }
    const int32_t result = sessionEnds.front();
    sessionEnds.pop_front();
    return result;
}

int32_t ScriptedClient::release(const void* held)
{
    if (held == nullptr && emptyAnswers > 0) {
        --emptyAnswers;
        return 0;
    }
    const auto found = unreleased.find(held);
    if (found == unreleased.end()) {
        ADD_FAILURE() << "released twice, or never handed out";
        return 1;
    }
    unreleased.erase(found);
    return 0;
}

int32_t ScriptedClient::giveRecord(ValeErrorHandle* record)
{
    if (!lastError.hasRecord) return 1;
    *record = reinterpret_cast<ValeErrorHandle>(&theRecord);
    unreleased.insert(&theRecord);
    return 0;
}

int32_t ScriptedClient::giveMessage(const char** message)
{
    if (lastError.message == nullptr) return 1;
    *message = lastError.message;
    unreleased.insert(lastError.message);
    return 0;
}

} // namespace unit

// The client interface itself. Defined in the program, it takes the place of the libraries'.

using unit::current;

int32_t vale_query_p_select(ValeSessionHandle, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const*, uint32_t)
{
    return current->play(className, selection, reinterpret_cast<void**>(responses), count);
}

int32_t vale_query_d_select(ValeSessionHandle, ValeQueryResponse** responses, uint32_t* count,
                            const char* className, const char* selection, const char* const*, uint32_t)
{
    return current->play(className, selection, reinterpret_cast<void**>(responses), count);
}

int32_t vale_enumerate_resources(ValeSessionHandle, ValeEnumerateResponse** responses, uint32_t* count,
                                 const char* className, const char* selection)
{
    return current->play(className, selection, reinterpret_cast<void**>(responses), count);
}

int32_t vale_invoke_action(ValeSessionHandle, ValeActionResponse** responses, uint32_t* count,
                           ValeResourceHandle, const char* action, const ValeStructuredData*)
{
    return current->play(action, nullptr, reinterpret_cast<void**>(responses), count);
}

int32_t vale_end_session(ValeSessionHandle)
{
    return current->endSession();
}

int32_t vale_free_response(void* responses)
{
    return current->release(responses);
}

int32_t vale_get_error(ValeErrorHandle* error)
{
    return current->giveRecord(error);
}

int32_t vale_get_errmsg(ValeErrorHandle, const char** message)
{
    return current->giveMessage(message);
}

int32_t vale_rel_errmsg(const char* message)
{
    return current->release(message);
}

int32_t vale_rel_error(ValeErrorHandle error)
{
    return current->release(error);
}
