#include "hostileValues.h"

#include "parseJson.h"

#include <algorithm>
#include <limits>

namespace sweep
{

namespace
{

using nlohmann::json;

/// Letters and digits, none of which the collector could want.
std::string plain(Random& random, size_t length)
{
    constexpr std::string_view letters = "QWXYZqwxyz2345678";
    std::string text(length, ' ');
    std::ranges::generate(text, [&] { return letters[numberBelow(random, letters.size())]; });
    return text;
}

template <size_t length>
std::string ofLength(Random& random)
{
    return plain(random, length);
}

std::string repeated(const std::string& piece, size_t length)
{
    std::string text;
    while (text.size() + piece.size() <= length) {
        text += piece;
    }
    return text;
}

std::string command()
{
    return std::string("touch ") + canary;
}

std::string anyBytes(Random& random)
{
    std::string text(numberBelow(random, 300), ' ');
    std::ranges::generate(text, [&] { return static_cast<char>(1 + random() % 127); });
    return text;
}

std::string controls(Random&)
{
    std::string text;
    for (char c = 1; c < ' '; ++c) {
        if (c != '\n') text += c;
    }
    return text + '\x7f';
}

// The fields around the collector's texts hold 30, 100, 256, 500 and 800 bytes, commands 4096. A command's
// name in a field of 30 is whole, in a smaller one a redirection still is.
constexpr TextKind kinds[] = {
    {"length0", ofLength<0>},
    {"length1", ofLength<1>},
    {"length29", ofLength<29>},
    {"length30", ofLength<30>},
    {"length99", ofLength<99>},
    {"length100", ofLength<100>},
    {"length256", ofLength<256>},
    {"length800", ofLength<800>},
    {"length4096", ofLength<4096>},
    {"length10000", ofLength<10'000>},
    {"dollar", [](Random&) { return "$(" + command() + ")"; }},
    {"backtick", [](Random&) { return "`" + command() + "`"; }},
    {"doubledQuote", [](Random&) { return "\"; " + command() + "; \""; }},
    {"singleQuote", [](Random&) { return "'; " + command() + "; '"; }},
    {"bothQuotes", [](Random&) { return "\"'; " + command() + "; '\""; }},
    {"backslashQuote", [](Random&) { return "\\'\\\"; " + command() + "; \\\"\\'"; }},
    {"lineFeed", [](Random&) { return "\n" + command() + "\n"; }},
    {"operators", [](Random&) { return "& " + command() + " | " + command() + " && >" + canary; }},
    {"short", [](Random&) { return std::string("$(>c)"); }},
    {"longQuotes", [](Random&) { return repeated("'\"`$\\", 10'000); }},
    {"manyCommands", [](Random&) { return repeated("$(" + command() + ")", 10'000); }},
    {"controls", controls},
    {"anyBytes", anyBytes},
    {"percents", [](Random&) { return std::string("%s%n%d%999999d%*c%%"); }},
    {"nonAscii", [](Random&) { return std::string("\u0080\u07ff\u0800\ufffd\uffff\U0001f600\U0010ffff"); }},
    {"manyNonAscii", [](Random&) { return repeated("\U0001f600", 10'000); }},
    {"backslashes", [](Random&) { return std::string(101, '\\'); }},
    {"markup", [](Random&) { return std::string("</Value>\n</Property>\n\"><Resource uniqueId=\"&x;"); }},
    {"wildcards", [](Random&) { return std::string("%\" || \"\" = \"' || locationCode =? '%"); }},
    {"brackets", [](Random&) { return std::string("<a>[b](c){d}~#!"); }},
};

std::vector<HostileValue> texts(Random& random)
{
    std::vector<HostileValue> values;
    for (const TextKind& kind : kinds) {
        values.push_back({kind.name, kind.make(random)});
    }
    return values;
}

constexpr int64_t least = std::numeric_limits<int32_t>::min();

constexpr int64_t greatest = std::numeric_limits<int32_t>::max();

json integerList(Random& random, size_t count)
{
    json list = json::array();
    for (size_t i = 0; i < count; ++i) {
        list.push_back(static_cast<int32_t>(random()));
    }
    return list;
}

/// Without the half of a character that a cut left.
json whole(const std::string& text)
{
    return kordTest::parseJson(json(text).dump(-1, ' ', false, json::error_handler_t::ignore));
}

json textList(Random& random, size_t count)
{
    json list = json::array();
    for (size_t i = 0; i < count; ++i) {
        list.push_back(whole(kinds[i % std::size(kinds)].make(random).substr(0, 20)));
    }
    return list;
}

std::vector<HostileValue> lists(Random& random, json (*make)(Random& random, size_t count))
{
    std::vector<HostileValue> values;
    for (const size_t count : {0U, 1U, 2U, 99U, 1000U, 10'000U}) {
        values.push_back({"elements" + std::to_string(count), make(random, count)});
    }
    return values;
}

/// Integers and texts by turns.
json mixedList(Random& random, size_t count)
{
    json list = textList(random, count);
    for (size_t i = 0; i < count; i += 2) {
        list[i] = static_cast<int32_t>(random());
    }
    return list;
}

// ---- stand-ins ----

// The separators '.', '*' and '-' are missing: the collector itself puts one for another.
constexpr std::string_view meaningful = "\"<>\n$`;\\'%&|(){}[]~#!?";

constexpr std::string_view standIns = "\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0b\x0c\x0d\x0e\x0f\x10\x11"
                                      "\x12\x13\x14\x15\x16\x17";

std::string translated(std::string text, std::string_view from, std::string_view to)
{
    for (char& c : text) {
        const size_t place = from.find(c);
        if (place != std::string_view::npos) c = to[place];
    }
    return text;
}

} // namespace

std::span<const TextKind> textKinds()
{
    return kinds;
}

std::vector<HostileValue> valuesOf(const std::string& type, Random& random)
{
    if (type == "text") return texts(random);
    if (type == "integer") {
        return {{"least", least}, {"greatest", greatest}, {"minus", -1}, {"zero", 0}, {"ten", 1'000'000'000}};
    }
    if (type == "uinteger") return {{"zero", 0}, {"greatest", 4'294'967'295}, {"beyondSigned", greatest + 1}};
    if (type == "integers") {
        std::vector<HostileValue> values = lists(random, integerList);
        values.push_back({"extremes", {least, greatest, least, -1, 0}});
        return values;
    }
    std::vector<HostileValue> values = lists(random, type == "texts" ? textList : mixedList);
    for (const TextKind& kind : kinds) {
        values.push_back({kind.name, json::array({kind.make(random)})});
    }
    return values;
}

static_assert(meaningful.size() == standIns.size());

std::string withStandIns(const std::string& text)
{
    return translated(text, meaningful, standIns);
}

std::string withoutStandIns(const std::string& text)
{
    return translated(text, standIns, meaningful);
}

bool hasMeaning(const std::string& text)
{
    return text.find_first_of(meaningful) != std::string::npos;
}

bool hasStandIns(const std::string& text)
{
    return text.find_first_of(standIns) != std::string::npos;
}

} // namespace sweep
