// Joining the run at the first call, and the account of the process at its end.

#include "client.h"

#include "image/faults.h"

#include <algorithm>
#include <unistd.h>
#include <vector>

namespace console::vale
{

namespace
{

Client* joined = nullptr; // never deleted: a process may release what it holds in its last destructor

Client* join()
{
    auto* client = new Client;
    client->closed = image::openRun(client->run);
    client->process = getpid();
    joined = client;
    return client;
}

std::vector<int64_t> openScopes(const Client& client)
{
    std::vector<int64_t> scopes;
    for (const auto& [handle, scope] : client.sessions)
        scopes.push_back(scope);
    return scopes;
}

std::vector<int64_t> unfreedAnswers(const Client& client)
{
    std::vector<int64_t> calls;
    for (const auto& [memory, held] : client.responses.held)
        calls.push_back(static_cast<int64_t>(held.of));
    std::ranges::sort(calls);
    return calls;
}

/// A library's destructor runs after all of the program's own.
[[gnu::destructor]] void writeExit()
{
    if (joined == nullptr || joined->process != getpid() || !joined->closed.empty()) return;
    const Client& client = *joined;
    const auto number = [](std::string& json, int64_t item) { image::writeJson(json, item); };
    image::Line line("vale", "exit");
    line.list("sessions", openScopes(client), number).list("responses", unfreedAnswers(client), number);
    line.add("errors", client.errors.size());
    line.add("messages", client.messages.held.size());
    line.list("unused", image::unusedClientRules(client.run), number);
    image::append(client.run, line);
}

} // namespace
} // namespace console::vale

console::vale::Client* vale_cu_client()
{
    static console::vale::Client* const client = console::vale::join();
    return client;
}
