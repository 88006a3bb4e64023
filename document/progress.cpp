#include "document/progress.h"

#include "document/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>

namespace document
{

namespace
{

/// What a run does from a trace line on.
struct Phase {
    std::string_view code;
    std::string_view text;
    std::string_view doing;
};

// The collector of the racks traces the name of that of the storage enclosures; its first query tells it.
constexpr Phase phases[] = {
    {.code = "==>", .text = "queryPartition", .doing = "partition checks"},
    {.code = "==>", .text = "addCecEnclKord", .doing = "processor complexes"},
    {.code = "==>", .text = "addIoEnclKord", .doing = "I/O enclosures"},
    {.code = "==>", .text = "addStorEnclKord", .doing = "storage enclosures"},
    {.code = ">>", .text = "openRackEncl  resource", .doing = "racks"},
    {.code = "==>", .text = "addQuayEnclKord", .doing = "consoles"},
    {.code = "==>", .text = "addPartitionKord", .doing = "partitions"},
    {.code = ">>", .text = "closeInventory", .doing = "final checks"},
};

struct Counted {
    std::string_view code;
    std::string_view text; ///< what the line's text begins with; a number after it is how many there are
    std::string_view one;
    std::string_view many;
};

// What tells most comes first, for a narrow terminal cuts the line.
constexpr Counted countedParts[] = {
    {.code = "0304", .text = "DDM loop array_cnt_ddm=", .one = "drive", .many = "drives"},
    {.code = ">>",
     .text = "openStorEncl  resource",
     .one = "storage enclosure",
     .many = "storage enclosures"},
    {.code = ">>", .text = "openRackEncl  resource", .one = "rack", .many = "racks"},
    {.code = ">>", .text = "openPartitionResource resource", .one = "partition", .many = "partitions"},
    {.code = ">>", .text = "openIOEncl resource", .one = "I/O enclosure", .many = "I/O enclosures"},
    {.code = ">>", .text = "openCecEncl resource", .one = "processor complex", .many = "processor complexes"},
};

constexpr int success = 3;

std::string_view trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Month, day, year, time: "112126 13:04:59".
constexpr std::string_view stampForm = "###### ##:##:##";

bool isStamp(std::string_view text)
{
    return text.size() == stampForm.size() &&
           std::ranges::equal(text, stampForm, [](char character, char form) {
               return form == '#' ? character >= '0' && character <= '9' : character == form;
           });
}

std::time_t timeOfStamp(const std::string& stamp)
{
    std::tm time{};
    return strptime(stamp.c_str(), "%m%d%y %H:%M:%S", &time) == nullptr ? 0 : timegm(&time);
}

int64_t numberIn(std::string_view text, int64_t otherwise)
{
    const std::string_view digits = trimmed(text);
    int64_t number = otherwise;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

} // namespace

void Progress::read(std::string_view line)
{
    const size_t length = stampForm.size();
    if (line.size() <= length || !isStamp(line.substr(0, length))) return; // the rest of a wrapped line
    const size_t colon = line.find(": ", length);
    if (colon == std::string_view::npos) return;
    const std::string_view code = trimmed(line.substr(length, colon - length));
    const std::string_view text = trimmed(line.substr(colon + 2));
    lastStamp = line.substr(0, length);
    if (code == "SRCV") return start(text);
    constexpr std::string_view closing = "exit ";
    if (code == "0010" && text.starts_with(closing) && text.ends_with("---"))
        exit = static_cast<int>(numberIn(text.substr(closing.size()), 0));
    if (code == "0019") minorErrors = true;
    count(code, text);
}

void Progress::start(std::string_view text)
{
    const std::string stamp = lastStamp;
    *this = Progress{};
    firstStamp = lastStamp = stamp;
    system = text.substr(text.rfind(' ') + 1);
    doing = "start";
}

void Progress::count(std::string_view code, std::string_view text)
{
    const auto* const phase =
        std::ranges::find_if(phases, [&](const Phase& row) { return row.code == code && row.text == text; });
    if (phase != std::end(phases) && doing != "final checks") doing = phase->doing;
    for (const Counted& row : countedParts) {
        if (row.code != code || !text.starts_with(row.text)) continue;
        counted[static_cast<size_t>(&row - countedParts)] += numberIn(text.substr(row.text.size()), 1);
    }
}

std::string Progress::counts() const
{
    std::string text;
    for (const auto& [row, number] : counted) {
        text += (text.empty() ? ": " : ", ") + std::to_string(number) + ' ';
        text += number == 1 ? countedParts[row].one : countedParts[row].many;
    }
    return text;
}

std::string Progress::outcome() const
{
    if (!exit) return std::string(doing);
    if (*exit != success) return "failed (" + std::string(doing) + ')';
    return minorErrors ? "done, with minor errors" : "done";
}

std::string Progress::line() const
{
    const auto seconds = timeOfStamp(lastStamp) - timeOfStamp(firstStamp);
    return shown(system) + ": " + outcome() + ", " + std::to_string(seconds) + " s" + counts();
}

} // namespace document
