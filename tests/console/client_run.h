// Plays calls of the client against a facility, each play in a process of its own as a collector would be,
// and reads the journal that it leaves.

#pragma once

#include "consoleRun.h"
#include "facility/compile.h"
#include "image/image.h"
#include "tempFolder.h"
#include "vale.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

namespace clientTest
{

using Json = nlohmann::json;

constexpr const char* partition = "Orvik.TarnServerPartition";

/// A run's folder with the compiled facility in it.
class ConsoleFolder
{
public:
    explicit ConsoleFolder(const std::string& facility)
    {
        const console::facility::Compilation compilation = console::facility::compile(facility);
        if (!compilation.faults.empty()) throw std::invalid_argument(toLine(compilation.faults.front()));
        console::image::Header header{};
        std::memcpy(&header, compilation.image.data(), sizeof header);

        std::filesystem::create_directory(path() / ".console");
        std::ofstream(path() / console::image::imageFile) << compilation.image;
        std::ofstream(path() / console::image::stateFile) << std::string(
            sizeof(console::image::RunState) + header.ruleCount * sizeof(console::image::RuleState), '\0');
    }

    [[nodiscard]] const std::filesystem::path& path() const { return folder.path(); }
    [[nodiscard]] std::vector<Json> journal() const { return kordTest::readJournal(path()); }

    /// Starts the body in a process of its own, whose standard error goes to a file.
    [[nodiscard]] pid_t start(const std::function<void()>& body) const
    {
        const pid_t player = fork();
        if (player == 0) becomePlayer(body);
        return player;
    }

    /// The player's wait status; what it wrote to standard error is in `error`.
    int finish(pid_t player)
    {
        int status = 0;
        waitpid(player, &status, 0);
        error = kordTest::readFile(path() / "error").value_or("");
        return status;
    }

    int play(const std::function<void()>& body) { return finish(start(body)); }

    std::string error;

private:
    [[noreturn]] void becomePlayer(const std::function<void()>& body) const
    {
        setenv(console::image::rootVariable, path().c_str(), 1);
        const int file = open((path() / "error").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        dup2(file, STDERR_FILENO);
        body();
        std::exit(testing::Test::HasFailure() ? 1 : 0); // NOLINT(concurrency-mt-unsafe): one thread
    }

    kordTest::TempFolder folder;
};

/// Plays the body, which must end well, and returns the journal.
inline std::vector<Json> journalOf(const std::string& facility, const std::function<void()>& body)
{
    ConsoleFolder folder(facility);
    EXPECT_EQ(folder.play(body), 0) << folder.error;
    return folder.journal();
}

inline ValeSessionHandle startSession(uint32_t scope)
{
    ValeSessionHandle session = nullptr;
    EXPECT_EQ(vale_start_session(nullptr, 0, scope, &session), 0);
    EXPECT_NE(session, nullptr);
    return session;
}

/// The answer of one call, as it came; it is freed with this.
template <typename Response>
struct Answer {
    int32_t result = -99;
    Response* responses = reinterpret_cast<Response*>(1); // calls must set both also when they fail
    uint32_t count = 99;

    Answer() = default;
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;
    ~Answer() { EXPECT_EQ(vale_free_response(responses), 0); }

    const Response& operator[](size_t i) const { return responses[i]; }
    void expectFailure() const
    {
        EXPECT_NE(result, 0);
        EXPECT_EQ(responses, nullptr);
        EXPECT_EQ(count, 0U);
    }
};

struct Query : Answer<ValeQueryResponse> {
    Query(ValeSessionHandle session, const char* className, const char* selection,
          const std::vector<const char*>& attributes)
    {
        result = vale_query_p_select(session, &responses, &count, className, selection, attributes.data(),
                                     static_cast<uint32_t>(attributes.size()));
    }
};

struct Enumeration : Answer<ValeEnumerateResponse> {
    Enumeration(ValeSessionHandle session, const char* className, const char* selection)
    {
        result = vale_enumerate_resources(session, &responses, &count, className, selection);
    }
};

struct Action : Answer<ValeActionResponse> {
    Action(ValeSessionHandle session, ValeResourceHandle resource,
           const char* action = "queryRunningImageLevel", const char* input = "S")
    {
        const ValeElement element{.type = VALE_TEXT, .value = {.text = input}};
        const ValeStructuredData data{.count = 1, .elements = &element};
        result = vale_invoke_action(session, &responses, &count, resource, action, &data);
    }
};

/// The last error's message, with everything released.
inline std::string lastMessage()
{
    ValeErrorHandle error = nullptr;
    const char* message = nullptr;
    EXPECT_EQ(vale_get_error(&error), 0);
    EXPECT_EQ(vale_get_errmsg(error, &message), 0);
    std::string text = message == nullptr ? "(null)" : message;
    EXPECT_EQ(vale_rel_errmsg(message), 0);
    EXPECT_EQ(vale_rel_error(error), 0);
    return text;
}

/// A text in quotes, which no other value has.
inline std::string brief(const char* text)
{
    return text == nullptr ? "(null)" : Json(text).dump();
}

/// A value in short, each item of a list in brackets.
inline std::string brief(int32_t type, const ValeValue& value)
{
    std::string list;
    switch (type) {
    case VALE_TEXT:
        return brief(value.text);
    case VALE_INTEGER:
        return std::to_string(value.integer);
    case VALE_UNSIGNED:
        return std::to_string(value.uinteger) + 'u';
    case VALE_INTEGER_LIST:
        for (uint32_t i = 0; i < value.integers->count; ++i)
            list.append("[").append(std::to_string(value.integers->values[i])).append("]");
        return list;
    case VALE_TEXT_LIST:
        for (uint32_t i = 0; i < value.texts->count; ++i)
            list.append("[").append(brief(value.texts->values[i])).append("]");
        return list;
    default:
        return "?";
    }
}

/// A response's attributes as name=value.
inline std::string brief(const ValeQueryResponse& response)
{
    std::string text;
    for (uint32_t i = 0; i < response.attributeCount; ++i) {
        const ValeAttribute& attribute = response.attributes[i];
        text.append(i == 0 ? "" : " ").append(attribute.name).append("=");
        text.append(brief(attribute.type, attribute.value));
    }
    return text;
}

/// A journal line without its number, for comparing.
inline Json withoutNumber(Json line)
{
    line.erase("seq");
    return line;
}

} // namespace clientTest
