#include "player.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench
{

namespace
{

/// The next of an entry's texts.
const char* take(const char*& texts)
{
    const char* text = texts;
    texts += std::strlen(text) + 1;
    return std::strcmp(text, noText) == 0 ? nullptr : text;
}

} // namespace

ValeSessionHandle Player::session(uint64_t recorded) const
{
    for (const auto& [number, handle] : sessions_) {
        if (number == recorded) return handle;
    }
    return nullptr;
}

int32_t Player::query(const CallHead& head, const char* texts)
{
    std::array<const char*, 32> attributes{};
    const char* className = take(texts);
    const char* selection = take(texts);
    for (uint32_t i = 0; i < head.attributes; ++i)
        attributes.at(i) = take(texts);
    const auto function = head.call == ClientCall::dynamicQuery ? vale_query_d_select : vale_query_p_select;
    ValeQueryResponse* responses = nullptr;
    uint32_t count = 0;
    const int32_t rc = function(session(head.session), &responses, &count, className, selection,
                                attributes.data(), head.attributes);
    answers_.push_back(responses);
    return rc;
}

int32_t Player::act(const CallHead& head, const char* texts)
{
    const char* action = take(texts);
    const ValeElement element{.type = VALE_TEXT, .value = {.text = take(texts)}};
    const ValeStructuredData input{.count = 1, .elements = &element};
    ValeActionResponse* responses = nullptr;
    uint32_t count = 0;
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    auto* const resource = reinterpret_cast<ValeResourceHandle>(head.handle);
    const int32_t rc =
        vale_invoke_action(session(head.session), &responses, &count, resource, action, &input);
    answers_.push_back(responses);
    return rc;
}

void Player::play(std::string_view entry)
{
    CallHead head{};
    std::memcpy(&head, entry.data(), sizeof head);
    const char* texts = entry.data() + sizeof head;
    int32_t rc = 0;
    switch (head.call) {
    case ClientCall::startSession:
        sessions_.emplace_back(head.session, nullptr);
        rc = vale_start_session(nullptr, 0, head.attributes, &sessions_.back().second);
        break;
    case ClientCall::endSession:
        rc = vale_end_session(session(head.session));
        break;
    case ClientCall::persistentQuery:
    case ClientCall::dynamicQuery:
        rc = query(head, texts);
        break;
    case ClientCall::enumeration: {
        const char* className = take(texts);
        ValeEnumerateResponse* responses = nullptr;
        uint32_t count = 0;
        rc = vale_enumerate_resources(session(head.session), &responses, &count, className, take(texts));
        answers_.push_back(responses);
        break;
    }
    case ClientCall::action:
        rc = act(head, texts);
        break;
    case ClientCall::release:
        vale_free_response(head.handle < answers_.size() ? answers_[head.handle] : nullptr);
    }
    if (rc == 0) return;
    std::fprintf(stderr, "kord-bench-floor: a call of the client failed with %d\n", rc);
    std::exit(2);
}

} // namespace bench
