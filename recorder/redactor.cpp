// What is redacted and what stays is decided by the attribute's name: what is not known to be harmless is a
// name.

#include "recorder/redactor.h"

#include "image/selection.h"
#include "recorder/gatherer.h"

#include <algorithm>
#include <iterator>
#include <random>

namespace recorder
{

namespace image = console::image;

namespace
{

using nlohmann::json;

/// MTMS in any of their forms, and domains named after one: the type-model stays, the serial goes.
constexpr std::string_view mtmsAttributes[] = {
    "storageFacilityMTMS",      "managedSystemMTMS",      "managedSystem0MTMS", "managedSystem1MTMS",
    "storageFacilityImageMTMS", "StorageFacilityImageID", "rackEnclosureMTMS",  "enclosureMTMS",
    "ActivePeerDomain"};
/// Models, levels, positions and numbers, which many machines share.
constexpr std::string_view harmlessAttributes[] = {
    // positions and numbers
    "LParID", "lparId", "hslLumenPoolId", "rackNumber", "enclosureNumber", "mmReserve1DesiredMem",
    "desiredMem", "mmReserve2DesiredMem", "desiredProcs", "remainingBatteryLife",
    // models and parts
    "HWModel", "partNumber", "CCIN", "featureCode", "kyrosFeatureCode", "diskManufacturer",
    "diskInterfaceType", "deviceType", "raidType", "arraySiteConfiguration",
    // levels
    "ecLevel", "firmwareLevel", "flashFirmwareLevel", "runningImageLevel"};

bool isAmong(std::string_view name, const auto& names)
{
    return std::ranges::find(names, name) != std::end(names);
}

bool isIn(char c, char first, char last)
{
    return c >= first && c <= last;
}

bool isPlain(char c)
{
    return isIn(c, '0', '9') || isIn(c, 'A', 'Z') || isIn(c, 'a', 'z') ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// The characters that can stand in for one, as a range.
struct Alphabet {
    char first = 0;
    unsigned size = 0; ///< 0: the character stays
};

/// Of a character beyond ASCII the last byte changes, within the bytes that keep it a character.
Alphabet alphabetOf(std::string_view text, size_t at, bool hexadecimal)
{
    const char c = text[at];
    const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
    const unsigned letters = hexadecimal ? 6 : 26;
    if (isIn(c, '0', '9')) return {.first = '0', .size = 10};
    if (isIn(c, 'A', 'Z')) return {.first = 'A', .size = c - 'A' < 6 ? letters : 26};
    if (isIn(c, 'a', 'z')) return {.first = 'a', .size = c - 'a' < 6 ? letters : 26};
    const bool last = continues(c) && (at + 1 == text.size() || !continues(text[at + 1]));
    return last ? Alphabet{.first = static_cast<char>(0x80), .size = 64} : Alphabet{};
}

bool isReadable(const std::string& selection)
{
    std::string fault;
    return image::parseSelection(selection, fault).has_value();
}

} // namespace

/// Every character moves on in its alphabet, never to itself, by a draw that depends on all characters before
/// it.
std::string Redactor::standIn(std::string_view text, bool hexadecimal)
{
    static std::random_device source;
    std::string result(text);
    for (size_t i = 0; i < text.size(); ++i) {
        const Alphabet alphabet = alphabetOf(text, i, hexadecimal);
        if (alphabet.size == 0) continue;
        const auto [draw, made] = draws.try_emplace(std::string(text.substr(0, i)));
        if (made) draw->second = source();
        const auto place = static_cast<unsigned>(static_cast<unsigned char>(text[i]) -
                                                 static_cast<unsigned char>(alphabet.first));
        const unsigned moved = (place + 1 + draw->second % (alphabet.size - 1)) % alphabet.size;
        result[i] = static_cast<char>(static_cast<unsigned char>(alphabet.first) + moved);
    }
    constexpr size_t telling = 3; // shorter texts are part of too many others
    if (text.size() >= telling && result != text) {
        standIns.emplace(text, result);
        lengths.insert(text.size());
    }
    return result;
}

/// 9999-B2C*7ABCD12 or 9999.B2C.7ABCD12: what follows the ninth character is the serial.
std::string Redactor::mtms(std::string_view text)
{
    constexpr size_t serial = 9;
    if (text.size() <= serial || isPlain(text[serial - 1])) return standIn(text);
    return std::string(text.substr(0, serial)) + standIn(text.substr(serial));
}

/// U9999.B2C.7ABCD12-P1-C3, also without the U or cut short by a pattern's %: an MTMS, and a place that
/// stays.
std::string Redactor::location(std::string_view text)
{
    constexpr size_t serial = 9;
    constexpr size_t type = 4;
    const size_t start = text.starts_with('U') ? 1 : 0;
    const std::string_view machine = text.substr(start);
    const bool known = machine.size() > serial && !isPlain(machine[type]) && !isPlain(machine[serial - 1]);
    if (!known) return standIn(text);
    const size_t end = std::min(text.find_first_of("-%", start + serial), text.size());
    return std::string(text.substr(0, start)) + mtms(text.substr(start, end - start)) +
           std::string(text.substr(end));
}

std::string Redactor::value(std::string_view attribute, const std::string& text)
{
    if (isAmong(attribute, harmlessAttributes)) return text;
    if (isAmong(attribute, mtmsAttributes) || attribute == "quayLocationCode") return mtms(text);
    if (attribute == "locationCode") return location(text);
    return standIn(text, attribute.ends_with("WWNN"));
}

/// The values that the selection compares with, each in its place.
std::string Redactor::selection(const std::string& text)
{
    using Kind = image::Selection::Kind;
    std::string fault;
    const auto read = image::parseSelection(text, fault);
    if (!read) return text; // redactText sees to it
    std::string result = text;
    for (const image::Selection::Node& node : read->nodes) {
        if (node.kind != Kind::text && node.kind != Kind::pattern) continue;
        const auto place = static_cast<size_t>(node.text.data() - text.data());
        result.replace(place, node.text.size(), value(node.attribute.name, std::string(node.text)));
    }
    return result;
}

/// A line of vital product data: the words behind its keyword, unless they tell the type and model. The line
/// must not become one that the collector reads for another keyword.
std::string Redactor::vitalData(const std::string& line)
{
    const auto isMisread = [](const std::string& text) {
        return text.find("TM") != std::string::npos || text.find("SE") != text.rfind("SE");
    };
    if (line.find("TM") != std::string::npos) return line;
    std::string result;
    bool behindKeyword = false;
    for (size_t at = 0; at < line.size();) {
        const auto end = std::find_if_not(line.begin() + static_cast<ptrdiff_t>(at), line.end(), isPlain);
        const std::string word(line.begin() + static_cast<ptrdiff_t>(at), end);
        result += behindKeyword ? standIn(word) : word;
        behindKeyword = behindKeyword || !word.empty();
        if (end != line.end()) result += *end;
        at += word.size() + 1;
    }
    if (isMisread(result) && !isMisread(line)) misleading = true;
    return result;
}

/// A user keeps being root or another.
std::string Redactor::user(const std::string& output)
{
    const std::string name = output.substr(0, output.find_first_of(std::string_view("\n\0", 2)));
    if (name == "root") return output;
    const std::string other = standIn(name);
    if (other == "root") misleading = true;
    return other + output.substr(name.size());
}

void Redactor::redactProgram(json& line)
{
    const std::string program = line["program"];
    const std::string output = line["output"];
    json& arguments = line["arguments"];
    for (size_t i = 1; i < arguments.size(); ++i) {
        if (arguments[i - 1] == "-m") arguments[i] = mtms(arguments[i].get<std::string>());
    }
    if (program == "whoami") line["output"] = user(output);
    if (!program.ends_with("/qconvpd")) return;
    std::string redacted;
    for (size_t at = 0; at < output.size();) {
        const size_t end = std::min(output.find('\n', at), output.size() - 1) + 1;
        redacted += vitalData(output.substr(at, end - at));
        at = end;
    }
    line["output"] = redacted;
}

void Redactor::redactLine(json& line)
{
    if (line.contains("program")) redactProgram(line);
    if (line.contains("selection") && line["selection"].is_string())
        line["selection"] = selection(line["selection"]);
    if (!line.contains("responses")) return;
    for (json& response : line["responses"]) {
        if (!response.contains("attributes")) continue;
        for (json& attribute : response["attributes"]) {
            if (attribute[0].is_string() && attribute[1].is_string())
                attribute[1] = value(attribute[0].get<std::string>(), attribute[1]);
        }
    }
}

void Redactor::redactText(json& line)
{
    for (const char* field : {"message", "output"}) {
        if (line.contains(field) && line[field].is_string()) line[field] = known(line[field]);
    }
    if (line.contains("selection") && line["selection"].is_string() && !isReadable(line["selection"]))
        line["selection"] = known(line["selection"]);
    if (!line.contains("responses")) return;
    for (json& response : line["responses"]) {
        if (response.contains("error")) redactText(response["error"]);
    }
}

std::string Redactor::known(const std::string& text) const
{
    std::string result;
    for (size_t at = 0; at < text.size();) {
        const auto found = std::ranges::find_if(lengths, [&](size_t length) {
            return length <= text.size() - at && standIns.contains(text.substr(at, length));
        });
        if (found == lengths.end()) {
            result += text[at++];
        } else {
            result += standIns.at(text.substr(at, *found));
            at += *found;
        }
    }
    return result;
}

bool Redactor::isAmbiguous() const
{
    return std::ranges::any_of(standIns, [this](const auto& pair) { return standIns.contains(pair.second); });
}

void Redactor::redact(std::vector<json>& tape)
{
    constexpr int attempts = 10; // thousands of short texts cannot all avoid each other
    const std::vector<json> original = tape;
    for (int i = 0; i < attempts; ++i) {
        tape = original;
        draws.clear();
        standIns.clear();
        misleading = false;
        for (json& line : tape)
            redactLine(line);
        if (!misleading && !isAmbiguous()) break;
    }
    for (json& line : tape)
        redactText(line);
}

/// The MTMS, which is known by its form or by the serial that the collector cuts from it.
std::string Redactor::argument(const std::string& word)
{
    constexpr size_t type = 4;
    constexpr size_t serial = 9;
    constexpr size_t serialLength = 7;
    if (word.size() <= serial || word.find('/') != std::string::npos) return word;
    const bool formed = !isPlain(word[type]) && !isPlain(word[serial - 1]);
    const bool cut = standIns.contains(word.substr(serial, serialLength));
    return formed || cut ? word.substr(0, serial) + standIn(word.substr(serial)) : word;
}

} // namespace recorder
