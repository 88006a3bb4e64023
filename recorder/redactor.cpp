// What is redacted and what stays is decided by the attribute's name: what is not known to be harmless is a
// name. Of a program's output every line goes but for the words that the collector or a reader of the
// recording looks for.

#include "recorder/redactor.h"

#include "facility/collection.h"
#include "image/selection.h"
#include "platform/failure.h"
#include "recorder/tape.h"

#include <algorithm>
#include <iterator>

namespace recorder
{

namespace image = console::image;

namespace
{

using nlohmann::json;
using namespace std::string_view_literals;

/// MTMS in any of their forms, and domains named after one: the type-model stays, the serial goes.
constexpr std::string_view mtmsAttributes[] = {
    "storageFacilityMTMS",      "managedSystemMTMS",      "managedSystem0MTMS", "managedSystem1MTMS",
    "storageFacilityImageMTMS", "StorageFacilityImageID", "rackEnclosureMTMS",  "enclosureMTMS",
    "ActivePeerDomain",         "quayLocationCode"};
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

/// States of a system that tell nothing but a state, first of all the one that the collector waits for.
constexpr std::string_view operating = "Operating";
constexpr std::string_view states[] = {operating,  "operating", "Initializing", "Starting",  "Stopping",
                                       "Standby",  "Failed",    "Error",        "Power Off", "Off",
                                       "Recovery", "Unknown",   "Not Available"};
constexpr std::string_view superuser = "root";
constexpr std::string_view typeModelKeyword = "TM";
constexpr std::string_view serialKeyword = "SE";
/// The programs whose output the collector reads.
constexpr std::string_view readPrograms[] = {"whoami", "qmstat", "qconvpd"};

bool isAmong(std::string_view name, const auto& names)
{
    return std::ranges::find(names, name) != std::end(names);
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isPlain(char c)
{
    return isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// 9999-B2C, 9999.B2C, 9999*B2C
bool isTypeModel(std::string_view text)
{
    constexpr size_t length = 8;
    constexpr size_t type = 4;
    if (text.size() != length || isPlain(text[type])) return false;
    return std::ranges::count_if(text, isPlain) == length - 1;
}

/// A type and model as vital product data have it: 9999-B2C, or 9999B2C in brackets.
bool tellsTypeModel(std::string_view word)
{
    const auto first = std::ranges::find_if(word, isPlain);
    const auto last = std::find_if(word.rbegin(), word.rend(), isPlain).base();
    const std::string_view bare = first < last ? std::string_view(first, last) : std::string_view();
    constexpr size_t length = 7;
    const bool bracketed = word.find('[') != std::string_view::npos && bare.size() == length &&
                           std::ranges::all_of(bare, isPlain) &&
                           std::ranges::all_of(bare.substr(0, 4), isDigit);
    return bracketed || isTypeModel(bare);
}

/// A step of a place in a machine: P1, C3, D12.
bool isStep(std::string_view text)
{
    const auto digits = std::ranges::find_if(text, isDigit);
    const auto letters = digits - text.begin();
    return letters <= 2 && text.end() - digits <= 3 && std::all_of(text.begin(), digits, isPlain) &&
           std::all_of(digits, text.end(), isDigit);
}

/// The text in pieces that end at one of the characters, each as it is replaced.
std::string inPieces(std::string_view text, std::string_view ends, const auto& replace)
{
    std::string result;
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of(ends), text.size());
        result += replace(std::string(text.substr(0, end)));
        result += text.substr(end, 1);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result;
}

size_t countOf(std::string_view word, std::string_view text)
{
    size_t count = 0;
    for (size_t at = 0; (at = text.find(word, at)) != std::string_view::npos; at += word.size())
        ++count;
    return count;
}

bool isReadable(const std::string& selection)
{
    std::string fault;
    return image::parseSelection(selection, fault).has_value();
}

/// The program that printed what the wrapper passed on, by its bare name.
std::string printedBy(const json& line)
{
    const std::string program = line["program"];
    const json& arguments = line["arguments"];
    const std::string printer =
        program == wrapper && !arguments.empty() ? arguments[0].get<std::string>() : program;
    return printer.substr(printer.rfind('/') + 1);
}

} // namespace

/// 9999-B2C*7ABCD12 or 9999.B2C.7ABCD12: what follows the ninth character is the serial.
std::string Redactor::mtms(std::string_view text)
{
    constexpr size_t separator = 8;
    if (text.size() <= separator + 1 || isPlain(text[separator])) return standIns.of(text);
    return system(text);
}

/// The same of a word that the collector cuts there whatever it holds.
std::string Redactor::system(std::string_view text)
{
    constexpr size_t separator = 8;
    if (text.size() <= separator) return standIns.of(text);
    const std::string_view typeModel = text.substr(0, separator);
    return (isTypeModel(typeModel) ? std::string(typeModel) : standIns.of(typeModel)) + text[separator] +
           standIns.of(text.substr(separator + 1));
}

/// U9999.B2C.7ABCD12-P1-C3, also without the U or cut short by a pattern's %: an MTMS, and a place that
/// stays.
std::string Redactor::location(std::string_view text)
{
    constexpr size_t serial = 9;
    const size_t start = text.starts_with('U') ? 1 : 0;
    const std::string_view machine = text.substr(start);
    const bool known = machine.size() > serial && isTypeModel(machine.substr(0, serial - 1)) &&
                       !isPlain(machine[serial - 1]);
    if (!known) return standIns.of(text);
    const size_t end = std::min(text.find_first_of("-%", start + serial), text.size());
    return std::string(text.substr(0, start)) + mtms(text.substr(start, end - start)) +
           inPieces(text.substr(end), "-%",
                    [this](const std::string& step) { return isStep(step) ? step : standIns.of(step); });
}

std::string Redactor::value(std::string_view attribute, const std::string& text)
{
    if (isAmong(attribute, harmlessAttributes)) return text;
    if (isAmong(attribute, mtmsAttributes)) return mtms(text);
    if (attribute == "locationCode") return location(text);
    return standIns.of(text, attribute.ends_with("WWNN"));
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

/// A stand-in that must not read as what the collector looks for.
std::string Redactor::unlike(std::string_view telling, const std::string& text)
{
    std::string other = standIns.of(text);
    if (other == telling) misleading = true;
    return other;
}

/// A line of vital product data: a keyword of two characters, perhaps several of those that the collector
/// looks for, and words, of which those that tell the type and model stay. The line must not become one that
/// the collector reads for another keyword.
std::string Redactor::vitalData(const std::string& line)
{
    std::string keyword;
    std::string result = inPieces(line, " \t", [&](const std::string& word) {
        const auto start = static_cast<size_t>(std::ranges::find_if(word, isPlain) - word.begin());
        const std::string bare = word.substr(start);
        const bool marks = bare.starts_with(typeModelKeyword) || bare.starts_with(serialKeyword);
        const bool leads = keyword.empty() && (marks || bare.size() == 2);
        if (!leads && bare != typeModelKeyword && bare != serialKeyword) {
            const bool stays = keyword == typeModelKeyword && tellsTypeModel(word);
            return stays ? word : standIns.of(word);
        }
        keyword = bare.substr(0, 2);
        const std::string glued = bare.substr(2);
        const bool stays = keyword == typeModelKeyword && tellsTypeModel(glued);
        return word.substr(0, start) + keyword + (stays ? glued : standIns.of(glued));
    });
    for (const std::string_view word : {typeModelKeyword, serialKeyword})
        misleading = misleading || countOf(word, result) > countOf(word, line);
    return result;
}

std::string Redactor::outputOf(const std::string& program, const std::string& output)
{
    return inPieces(output, "\n\0"sv, [&](const std::string& line) {
        if (program == "qconvpd") return vitalData(line);
        if (program == "whoami") return line == superuser ? line : unlike(superuser, line);
        return isAmong(line, states) ? line : unlike(operating, line);
    });
}

void Redactor::redactProgram(json& line)
{
    json& arguments = line["arguments"];
    for (size_t i = 1; i < arguments.size(); ++i) {
        if (arguments[i - 1] == "-m") arguments[i] = mtms(arguments[i].get<std::string>());
    }
    const std::string program = printedBy(line);
    if (isAmong(program, readPrograms)) line["output"] = outputOf(program, line["output"]);
}

/// Whatever its type is: a text, a list with texts in it, or numbers, which stay. A name that is none is not
/// known to be harmless.
void Redactor::redactAttribute(json& attribute)
{
    const std::string name = attribute[0].is_string() ? attribute[0].get<std::string>() : "";
    json& content = attribute[1];
    if (content.is_string()) content = value(name, content);
    if (!content.is_array()) return;
    for (json& item : content) {
        if (item.is_string()) item = value(name, item);
    }
}

void Redactor::redactLine(json& line)
{
    if (line.contains("program")) redactProgram(line);
    if (line.contains("selection") && line["selection"].is_string())
        line["selection"] = selection(line["selection"]);
    if (!line.contains("responses")) return;
    for (json& response : line["responses"]) {
        if (response.contains("attributes")) {
            for (json& attribute : response["attributes"])
                redactAttribute(attribute);
        }
        if (response.contains("elements")) {
            for (json& element : response["elements"]) {
                if (element.is_string()) element = level(element);
            }
        }
    }
}

/// An image level is numbers and dots.
std::string Redactor::level(const std::string& text)
{
    const bool numbers = text.find_first_not_of("0123456789.") == std::string::npos;
    return numbers ? text : standIns.of(text);
}

void Redactor::redactText(json& line)
{
    const bool isRead = line.contains("program") && isAmong(printedBy(line), readPrograms);
    for (const char* field : {"message", "output"}) {
        if (!isRead && line.contains(field) && line[field].is_string())
            line[field] = standIns.in(line[field]);
    }
    if (line.contains("selection") && line["selection"].is_string() && !isReadable(line["selection"]))
        line["selection"] = standIns.in(line["selection"]);
    if (!line.contains("responses")) return;
    for (json& response : line["responses"]) {
        if (response.contains("error")) redactText(response["error"]);
    }
}

void Redactor::redact(std::vector<json>& tape)
{
    constexpr int attempts = 10; // thousands of short texts cannot all avoid each other
    const std::vector<json> original = tape;
    for (int i = 0; i < attempts; ++i) {
        tape = original;
        standIns.drawAnew();
        misleading = false;
        for (json& line : tape)
            redactLine(line);
        if (!misleading && !standIns.isAmbiguous()) break;
    }
    if (misleading) throw platform::Failure("every stand-in for some text would mislead the collector");
    for (json& line : tape)
        redactText(line);
}

std::vector<std::string> Redactor::commandLine(const std::vector<std::string>& words)
{
    constexpr size_t option = 1;
    constexpr size_t mtms = 2;
    constexpr size_t telling = 3; // an option of one letter names nobody
    constexpr size_t typeModel = 8;
    std::vector<std::string> line = words;
    if (console::facility::isCollection(words)) {
        if (line[option].size() >= telling) line[option] = standIns.of(line[option]);
        line[mtms] = system(line[mtms]);
        line.resize(mtms + 1);
        return line;
    }
    for (std::string& word : line) {
        if (word.size() > typeModel && isTypeModel(std::string_view(word).substr(0, typeModel)))
            word = system(word);
    }
    return line;
}

} // namespace recorder
