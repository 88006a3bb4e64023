// libvale_cu: the record of the last failed call. Every record and every message handed out has a life of its
// own: a message may be released before or after its record. A null one, which is all that there is when no
// call has failed yet, is refused without ending the process.

#include "client.h"

#include <cstring>

namespace
{

using namespace console;

void journal(const vale::Client& client, const char* call)
{
    image::append(client.run, image::Line("vale", call));
}

const std::string& messageOf(const vale::Client& client, ValeErrorHandle error)
{
    const auto found = client.errors.find(vale::numberOf(error));
    if (found == client.errors.end())
        vale::violation("an error record not of this client, or released", error);
    return found->second;
}

} // namespace

int32_t vale_get_error(ValeErrorHandle* error)
{
    vale::Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    journal(client, "get_error");
    if (error == nullptr) return vale::callFailed;
    *error = nullptr;
    if (client.lastFailure.code == 0) return vale::callFailed;
    client.errors.emplace(++client.lastHandle, client.lastFailure.message);
    *error = vale::handleOf<ValeErrorHandle>(client.lastHandle);
    return 0;
}

int32_t vale_get_errmsg(ValeErrorHandle error, const char** message)
{
    vale::Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    journal(client, "get_errmsg");
    if (message == nullptr) return vale::callFailed;
    *message = nullptr;
    if (error == nullptr) return vale::callFailed;
    const std::string& text = messageOf(client, error);
    void* copy = client.messages.hold(text.size() + 1, 0);
    *message = static_cast<const char*>(std::memcpy(copy, text.c_str(), text.size() + 1));
    return 0;
}

int32_t vale_rel_errmsg(const char* message)
{
    vale::Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    if (message != nullptr)
        client.messages.release(message, "a message not of this client, or released twice");
    journal(client, "rel_errmsg");
    return message == nullptr ? vale::callFailed : 0;
}

int32_t vale_rel_error(ValeErrorHandle error)
{
    vale::Client& client = *vale_cu_client();
    const std::lock_guard lock(client.mutex);
    if (error != nullptr) {
        messageOf(client, error);
        client.errors.erase(vale::numberOf(error));
    }
    journal(client, "rel_error");
    return error == nullptr ? vale::callFailed : 0;
}
