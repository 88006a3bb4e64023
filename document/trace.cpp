#include "document/trace.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>

namespace document
{

namespace
{

/// Month, day, year, time, as every line starts: "112126 13:04:59 ".
constexpr std::string_view headForm = "###### ##:##:## ";

// How the collector wraps: a first line of 79 bytes, of which code and text share 61, then lines of 80.
constexpr size_t firstLength = 79;
constexpr size_t furtherLength = 80;
constexpr size_t firstShare = 61;

/// More than any line of the collector, the commands of its events included. Of a longer line as much is kept
/// from its start and from its end.
constexpr size_t mostKept = 16384;

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool startsWithStamp(std::string_view text)
{
    return std::ranges::equal(text.substr(0, headForm.size()), headForm, [](char character, char form) {
        return form == '#' ? isDigit(character) : character == form;
    });
}

/// Whether it may stand before the colon: three or four digits, with a blank or without, or a word.
bool isCode(std::string_view code)
{
    constexpr auto words = std::to_array<std::string_view>({"==>", ">>", "SRCV", "getResQuaySE"});
    if (std::ranges::find(words, code) != words.end()) return true;
    if (code.ends_with(' ')) code.remove_suffix(1);
    return (code.size() == 3 || code.size() == 4) && std::ranges::all_of(code, isDigit);
}

/// The code of a line that starts with a stamp, with its blank; none: it is no line of the collector.
std::optional<std::string_view> codeOf(std::string_view line)
{
    constexpr size_t longest = 13;
    if (!startsWithStamp(line)) return std::nullopt;
    const std::string_view rest = line.substr(headForm.size());
    const size_t length = rest.substr(0, longest + 2).find(": ");
    if (length == std::string_view::npos || !isCode(rest.substr(0, length))) return std::nullopt;
    return rest.substr(0, length);
}

/// Where in the line, from `from` on, one of the collector's lines starts.
size_t findStart(std::string_view line, size_t from)
{
    for (; from < line.size(); ++from) {
        if (isDigit(line[from]) && codeOf(line.substr(from))) return from;
    }
    return std::string_view::npos;
}

struct Joined {
    std::string text;
    bool fits = true; ///< the line feeds stand where wrapping puts them
};

/// Undoes the wrapping. The line feeds of a text that is short enough are its own.
Joined join(std::string_view body, size_t codeLength)
{
    Joined joined;
    size_t share = firstShare - codeLength;
    while (body.size() > share) {
        if (body[share] != '\n') return {.text = {}, .fits = false};
        joined.text += body.substr(0, share);
        body.remove_prefix(share + 1);
        share = furtherLength;
    }
    joined.text += body;
    return joined;
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

int64_t numberOf(std::string_view text)
{
    int64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::optional<std::tm> timeOfStamp(std::string_view stamp)
{
    std::tm time{};
    if (strptime(std::string(stamp).c_str(), "%m%d%y %H:%M:%S", &time) == nullptr) return std::nullopt;
    return time;
}

int64_t secondsBetween(std::string_view from, std::string_view until)
{
    auto start = timeOfStamp(from);
    auto end = timeOfStamp(until);
    return start && end ? timegm(&*end) - timegm(&*start) : 0;
}

std::optional<int> closingStatus(const TraceLine& line)
{
    constexpr std::string_view before = " exit ";
    constexpr std::string_view behind = " ------------------";
    std::string_view text = line.text;
    if (line.code != "0010" || !text.starts_with(before) || !text.ends_with(behind)) return std::nullopt;
    text = text.substr(before.size(), text.size() - std::min(text.size(), before.size() + behind.size()));
    int status = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), status);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return status;
}

std::string_view systemStarted(const TraceLine& line)
{
    if (line.code != "SRCV") return {};
    const std::string_view text = trimmed(line.text);
    return text.substr(text.rfind(' ') + 1); // behind the build, two blanks before it
}

bool endsWithoutClosing(const TraceLine& line)
{
    constexpr auto sessions = std::to_array<std::string_view>(
        {" LC scope session failed with error ", " SR scope session failed with error "});
    if (line.code == "0002") return line.text.starts_with(" failed to get modeltype ");
    return line.code == "0004" && std::ranges::any_of(sessions, [&](std::string_view session) {
               return line.text.starts_with(session);
           });
}

void TraceReader::read(std::string_view bytes)
{
    while (!bytes.empty()) {
        const size_t end = bytes.find('\n');
        std::string_view piece = bytes.substr(0, end);
        while (!piece.empty()) {
            const size_t part = std::min(piece.size(), 4 * mostKept - physical.size());
            physical += piece.substr(0, part);
            piece.remove_prefix(part);
            if (physical.size() == 4 * mostKept) dropMiddle();
        }
        if (end == std::string_view::npos) return;
        endOfLine();
        bytes.remove_prefix(end + 1);
    }
}

void TraceReader::settle()
{
    if (!pending) return;
    pending = false;
    // What an event's program prints stands below the entry line, which holds no line feed itself.
    const bool single = code == "==>" || code == ">>";
    const Joined joined = single ? Joined{.text = {}, .fits = false} : join(body, code.size());
    std::string_view text = joined.text;
    std::string_view further;
    if (!joined.fits) {
        const std::string_view all = body;
        text = all.substr(0, all.find('\n'));
        further = all.substr(std::min(all.size(), text.size() + 1));
    }
    take({.stamp = stamp,
          .code = trimmed(code),
          .text = text,
          .further = further,
          .number = number,
          .whole = single || (whole && joined.fits)});
}

void TraceReader::dropMiddle()
{
    physical.erase(mostKept, physical.size() - 2 * mostKept);
    overlong = true;
}

/// Takes the physical line apart where lines stand in it one behind the other: what an event's program prints
/// without a last line feed, or what a full disk left of a line, stands before the next one.
void TraceReader::endOfLine()
{
    ++feeds;
    std::string_view line = physical;
    const bool plain = !overlong && line.size() <= firstLength && codeOf(line);
    if (plain) {
        start(line);
    } else if (isRestOfWrapped(line)) {
        append(line);
    } else {
        size_t at = findStart(line, 0);
        if (at != 0) goOn(line.substr(0, at));
        while (at != std::string_view::npos) {
            line.remove_prefix(at);
            at = findStart(line, 1);
            start(line.substr(0, at));
        }
    }
    if (overlong) whole = false;
    physical.clear();
    overlong = false;
}

bool TraceReader::isRestOfWrapped(std::string_view line) const
{
    return pending && lastIsFull && !overlong && line.size() <= furtherLength;
}

void TraceReader::start(std::string_view line)
{
    settle();
    code = *codeOf(line);
    stamp = line.substr(0, headForm.size() - 1);
    body = line.substr(headForm.size() + code.size() + 2);
    lastIsFull = line.size() == firstLength;
    number = feeds;
    whole = line.size() <= firstLength;
    pending = true;
}

void TraceReader::append(std::string_view line)
{
    if (body.size() + line.size() >= mostKept) {
        whole = false;
        return;
    }
    (body += '\n') += line;
    lastIsFull = lastIsFull && line.size() == furtherLength;
}

/// A line without a stamp that no wrapped line goes on with.
void TraceReader::goOn(std::string_view line)
{
    if (!pending) return; // the first line of a log that was cut in the middle of one
    append(line);
}

} // namespace document
