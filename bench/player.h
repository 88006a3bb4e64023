// Plays the recorded calls of the client.

#pragma once

#include "recording.h"
#include "vale.h"

#include <string_view>
#include <utility>
#include <vector>

namespace bench
{

class Player
{
public:
    Player() { answers_.reserve(reserved); }

    /// One entry's call. It must be answered as it was when it was recorded.
    void play(std::string_view entry);

private:
    [[nodiscard]] ValeSessionHandle session(uint64_t recorded) const;
    int32_t query(const CallHead& head, const char* texts);
    int32_t act(const CallHead& head, const char* texts);

    static constexpr size_t reserved = 1U << 20U; ///< no answer waits for memory
    std::vector<std::pair<uint64_t, ValeSessionHandle>> sessions_;
    std::vector<void*> answers_;
};

} // namespace bench
