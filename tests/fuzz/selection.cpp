// The selection language: a malformed selection is refused with a column inside its text, a sound one means
// the same however it is wrapped, and looking up finds what walking finds.

#include "fuzz.h"

#include "facility/compile.h"
#include "image/selection.h"

#include <optional>
#include <vector>

namespace
{

using namespace console;
using image::Selection;
using Indexes = std::vector<uint32_t>;

/// Resources with values of every type, equal values and missing ones.
constexpr const char* facility = R"({"resources": {
    "Orvik.TarnArray": [
        {"rank": 1, "serialNumber": "A1", "arraySites": [1, 2], "arraySiteConfiguration": ["6+P+S"]},
        {"rank": 1, "serialNumber": "B1", "raidType": ""},
        {"rank": -3, "serialNumber": "A%1", "raidType": "it's \"5\""},
        {"rank": 2147483647, "raidType": "RAID-5", "arraySites": []},
        {"rank": -2147483648, "serialNumber": "\u00e4\n"},
        {}],
    "Orvik.TarnRack": [
        {"rackIdentifier": 4294967295, "rackNumber": "R1"},
        {"rackIdentifier": 1, "rackNumber": "R2"},
        {"rackIdentifier": 0, "locationCode": "U1234.5R0.RK000001"}],
    "Orvik.TarnServerPartition": [
        {"locationCode": "V1", "runningImageLevel": [0, "5.1.0.309"]}]}})";

const image::Image& facilityImage()
{
    static const std::string bytes = console::facility::compile(facility).image;
    static const image::Image image{.base = bytes.data()};
    return image;
}

std::optional<Selection> parse(const std::string& text)
{
    std::string fault;
    std::optional<Selection> selection = image::parseSelection(text, fault);
    if (selection) {
        fuzz::require(fault.empty() && !selection->nodes.empty(), "a sound selection has no fault");
        return selection;
    }
    constexpr std::string_view mark = " at column ";
    const size_t place = fault.rfind(mark);
    fuzz::require(place != std::string::npos && place > 0, "a fault says what is wrong and where");
    const size_t column = std::stoul(fault.substr(place + mark.size()));
    fuzz::require(column >= 1 && column <= text.size() + 1, "the column lies within the text");
    return selection;
}

/// What the selection finds in a class; looked up where the class allows it.
Indexes found(const std::string& text, const image::Class& from)
{
    std::optional<Selection> selection = parse(text);
    fuzz::require(selection.has_value(), "a sound selection stays sound in another place");
    return image::select(facilityImage(), from, &*selection);
}

/// The same by trying every resource.
Indexes walked(const std::string& text, const image::Class& from)
{
    std::optional<Selection> selection = parse(text);
    Indexes indexes;
    for (uint32_t i = from.firstResource; i < from.firstResource + from.resourceCount; ++i) {
        if (selection->matches(facilityImage(), facilityImage().resources()[i])) indexes.push_back(i);
    }
    return indexes;
}

void checkMeaning(const std::string& text, const image::Class& from)
{
    const Indexes matching = found(text, from);
    const std::string inside = "(" + text + ")";
    fuzz::require(walked(text, from) == matching, "looking up finds what walking finds");
    fuzz::require(found(text, from) == matching, "the same selection finds the same");
    fuzz::require(found(" \t" + inside + "\n", from) == matching, "parentheses and blanks change nothing");
    fuzz::require(found(inside + "&&" + inside, from) == matching, "twice is once");
    fuzz::require(found(text + "||" + text, from) == matching, "either of one is the one");
    fuzz::require(found(inside + "&&noSuchName=1", from).empty(), "a missing attribute never matches");
    fuzz::require(found("noSuchName=1||" + text, from) == matching, "and nothing is lost by it");
}

/// The pattern rule again, by a table over all beginnings of text and pattern.
bool patternHolds(std::string_view text, std::string_view pattern)
{
    std::vector<bool> holds(text.size() + 1, false); // of the pattern so far with the text's first i bytes
    holds[0] = true;
    for (const char c : pattern) {
        std::vector<bool> next(text.size() + 1, false);
        for (size_t i = 0; i <= text.size(); ++i) {
            if (c == '%')
                next[i] = holds[i] || (i > 0 && next[i - 1]);
            else
                next[i] = i > 0 && holds[i - 1] && text[i - 1] == c;
        }
        holds = std::move(next);
    }
    return holds.back();
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(fuzz::Input(data, size).bytes());
    if (parse(text)) {
        for (const image::Class& from : facilityImage().classes()) {
            if (from.resourceCount > 0) checkMeaning(text, from);
        }
        fuzz::require(!parse(text + ")") && !parse("(" + text), "parentheses come in pairs");
    }
    const std::string pattern = text.substr(0, text.find('\n'));
    const std::string_view compared =
        std::string_view(text).substr(std::min(pattern.size() + 1, text.size()));
    fuzz::require(image::matchesPattern(compared, pattern) == patternHolds(compared, pattern),
                  "a percent sign stands for any run");
    return 0;
}
