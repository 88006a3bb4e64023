// The recording as it is taken, the tape: a JSON object a line, appended by every process of the run that has
// something to say.
//
//   {"vale": "start_session", "scope": 1, "result": 0}
//   {"vale": "query_p_select", "scope": 2, "class": ..., "selection": ..., "attributes": [...], "result": 0,
//    "responses": [{"handle": 3, "error": {"number": ..., "message": ...}, "attributes": [["name", value]]}]}
//   {"vale": "enumerate_resources", ..., "responses": [{"handles": [4, 5]}]}
//   {"vale": "invoke_action", ..., "handle": 4, "responses": [{"elements": [0, "5.1"]}]}
//   {"vale": "get_errmsg", "message": "the last failed call's"}
//   {"program": "whoami", "arguments": [], "status": 0, "output": "root\n"}
//   {"started": "/opt/brisk/bin/qmstat"}
//   {"collector": ["addTarnKord", "-t", ...], "builds": {"collector": "6363b3...", "client": "05c1f0..."}}
//
// Handles are numbered as they are first seen. A program's line follows when it has ended; "started" says
// that a console program began, also one that the console's wrapper started; "collector" with
// what command line a process began to use the client.

#pragma once

#include <array>
#include <nlohmann/json.hpp>
#include <string_view>

namespace recorder
{

constexpr const char* tapeVariable = "KORD_CONSOLE_TAPE";       ///< the tape's path
constexpr const char* witnessVariable = "KORD_CONSOLE_WITNESS"; ///< the witness's path

/// The console's programs by the words that commands begin with, and the one among them that runs others.
inline constexpr auto consolePrograms = std::to_array<std::string_view>(
    {"whoami", "/opt/brisk/bin/qmstat", "/opt/brisk/bin/qconvpd", "/opt/tarnquay/bin/mmquaycmd",
     "/opt/tarnquay/bin/pmProblemEventPoster"});
constexpr std::string_view wrapper = "/opt/tarnquay/bin/mmquaycmd";

/// Appends a line; does nothing where no tape is named. Bytes that are not UTF-8 become U+FFFD.
void append(const nlohmann::json& line);

} // namespace recorder
