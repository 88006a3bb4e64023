// Starts the launcher and reads back the files of a run.

#include "consoleRun.h"

#include "parseJson.h"
#include "pattern.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

namespace kordTest
{

using nlohmann::json;
namespace fs = std::filesystem;

Outcome runOnConsole(const Launch& launch)
{
    Command command;
    command.folder = launch.folder;
    command.limit = launch.limit;
    command.arguments = {launch.console, "run", "--facility", launch.facility, "--root", launch.root};
    if (launch.user) command.arguments.insert(command.arguments.end(), {"--user", *launch.user});
    command.arguments.emplace_back("--");
    command.arguments.insert(command.arguments.end(), launch.program.begin(), launch.program.end());
    return runProcess(command);
}

std::optional<std::string> readFile(const fs::path& file)
{
    if (!fs::is_regular_file(file)) return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return std::nullopt;
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::vector<std::string> splitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

fs::path traceFile(const fs::path& root, const std::string& mtms)
{
    const std::string serial = mtms.size() > 9 ? mtms.substr(9, 7) : "";
    return root / "var/tarnquay/log" / ("kord." + serial + ".log");
}

fs::path documentFile(const fs::path& root, const std::string& mtms)
{
    return root / "var/adm/stockmere/VPD" / ("addTarnKord_" + mtms.substr(0, 29) + ".xml");
}

std::vector<json> readJournal(const fs::path& root)
{
    std::vector<json> journal;
    for (const std::string& line : splitLines(readFile(root / "journal.jsonl").value_or(""))) {
        journal.push_back(parseJson(line));
    }
    return journal;
}

namespace
{

/// A program's argument as it stands when it is a plain word, else in JSON's quotes.
std::string argumentText(const std::string& argument)
{
    constexpr const char* plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./*:=";
    const bool isPlain = !argument.empty() && argument.find_first_not_of(plain) == std::string::npos;
    return isPlain ? argument : json(argument).dump(-1, ' ', false, json::error_handler_t::replace);
}

} // namespace

std::string commandText(const std::vector<std::string>& command)
{
    std::string text;
    for (const std::string& word : command) {
        text += (text.empty() ? "" : " ") + argumentText(word);
    }
    return text;
}

namespace
{

/// What follows an option, empty when it is not there.
std::string valueOf(const std::vector<std::string>& command, const std::string& option)
{
    const auto found = std::find(command.begin(), command.end(), option);
    return found == command.end() || found + 1 == command.end() ? "" : *(found + 1);
}

/// "event", its reference code and its text for the event tool; the wrapper's path before what it runs.
std::string programText(std::vector<std::string> command)
{
    if (command[0] == "/opt/tarnquay/bin/mmquaycmd" && command.size() > 1) {
        command.erase(command.begin());
        return "/opt/tarnquay/bin/mmquaycmd " + programText(command);
    }
    const std::string event = valueOf(command, "-X");
    const bool isEvent = command[0] == "/opt/tarnquay/bin/pmProblemEventPoster" && event.size() >= 2;
    return isEvent ? "event " + valueOf(command, "-s") + " " + event.substr(1, event.size() - 2)
                   : commandText(command);
}

std::vector<std::string> commandOf(const json& line)
{
    std::vector<std::string> command = line.at("arguments");
    command.insert(command.begin(), line.at("program").get<std::string>());
    return command;
}

std::string listText(const json& list)
{
    std::string text;
    for (const json& item : list) {
        text += (text.empty() ? "" : ",") + item.get<std::string>();
    }
    return "[" + text + "]";
}

} // namespace

std::string journalText(const json& line)
{
    if (line.contains("program")) return programText(commandOf(line));
    std::string text = line.at("vale").get<std::string>();
    if (line.contains("scope")) text += " " + std::to_string(line["scope"].get<int>());
    if (line.contains("class")) text += " " + line["class"].get<std::string>();
    if (line.contains("action"))
        text += " " + line["action"].get<std::string>() + " " + listText(line["input"]);
    if (line.contains("attributes")) text += " " + listText(line["attributes"]);
    if (line.contains("selection") && line["selection"].is_string()) {
        text += " " + line["selection"].get<std::string>();
    }
    return text;
}

std::string TraceLine::joined() const
{
    std::string whole = text;
    for (const std::string& rest : further) {
        whole += rest;
    }
    return whole;
}

namespace
{

/// The length of "071505 13:04:59", or 0 when the line does not begin with such a stamp and a blank.
size_t stampLength(const std::string& line)
{
    constexpr std::string_view shape = "dddddd dd:dd:dd ";
    if (line.size() < shape.size()) return 0;
    for (size_t i = 0; i < shape.size(); ++i) {
        const bool isDigit = line[i] >= '0' && line[i] <= '9';
        if (shape[i] == 'd' ? !isDigit : line[i] != shape[i]) return 0;
    }
    return shape.size() - 1;
}

} // namespace

std::vector<TraceLine> readTrace(const fs::path& file)
{
    std::vector<TraceLine> trace;
    for (const std::string& line : splitLines(readFile(file).value_or(""))) {
        const size_t stamp = stampLength(line);
        if (stamp > 0) {
            trace.push_back({line.substr(0, stamp), line.substr(stamp + 1), {}});
        } else if (!trace.empty()) {
            trace.back().further.push_back(line);
        }
    }
    return trace;
}

std::string withFixedTimestamp(const std::string& document)
{
    static const Pattern stamp(R"re((<ResourceSet [^\n]* timestamp=")[0-9]+\.[0-9]+(">\n))re");
    return stamp.firstReplaced(document, "$010.0$02");
}

} // namespace kordTest
