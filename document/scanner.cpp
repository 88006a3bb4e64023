#include "document/scanner.h"

#include "document/references.h"
#include "document/words.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>

namespace document
{

using namespace words;

namespace
{

constexpr size_t block = size_t{256} << 10U;
constexpr size_t longestHeadLine = 4096;
constexpr size_t longestTag = 1024; ///< of several lines: a name and an identifier may hold line feeds
constexpr size_t deepest = 32;      ///< documents are 7 elements deep

std::string quoted(std::string_view text)
{
    constexpr size_t width = 60;
    return '"' + platform::shown(text, width) + '"';
}

/// Letters and digits count to 36; anything else is 36.
constexpr size_t placeOf(char character)
{
    if (character >= '0' && character <= '9') return static_cast<size_t>(character - '0');
    if (character >= 'A' && character <= 'Z') return static_cast<size_t>(character - 'A') + 10;
    return 36;
}

bool isCode(std::string_view text)
{
    return text.size() == 2 && placeOf(text[0]) < 36 && placeOf(text[1]) < 36;
}

size_t indexOf(std::string_view code)
{
    return placeOf(code[0]) * 36 + placeOf(code[1]);
}

bool isTimestamp(std::string_view text)
{
    const size_t point = text.find('.');
    const auto number = [](std::string_view digits) {
        return !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
    };
    return point != std::string_view::npos && number(text.substr(0, point)) && number(text.substr(point + 1));
}

} // namespace

Scanner::Scanner(Input& fromInput, size_t longestAllowed)
    : input(fromInput), longest(longestAllowed), bytes(block)
{
}

// --- Bytes

/// Reads on. \return false: there is no more
bool Scanner::fill()
{
    if (atEnd) return false;
    std::memmove(bytes.data(), bytes.data() + first, last - first);
    last -= first;
    first = 0;
    if (last > longest) fault("an element is longer than " + std::to_string(longest >> 20U) + " MiB");
    if (last == bytes.size()) bytes.resize(std::min(2 * bytes.size(), longest + block));
    const size_t count = input.read(std::span(bytes).subspan(last));
    last += count;
    if (count > 0) return true;
    atEnd = true;
    if (input.isCut()) find("the packed document ends before its time");
    // A whole document whose last line feed is lost is a whole document.
    const std::string_view end(bytes.data(), last);
    if (end != rootEnd && !end.ends_with("\n" + std::string(rootEnd))) return false;
    bytes[last++] = '\n';
    return true;
}

bool Scanner::have(size_t count)
{
    while (last - first < count) {
        if (!fill()) {
            ranOut = true;
            return false;
        }
    }
    return true;
}

/// The line that begins there, without its line feed. \return false: it has no end
bool Scanner::lineAt(size_t from, Stretch& text)
{
    for (size_t searched = from;; searched = last - first) {
        if (!have(searched + 1)) return false;
        const char* const begin = bytes.data() + first + searched;
        const void* const end = std::memchr(begin, '\n', last - first - searched);
        if (end == nullptr) continue;
        text = {.from = from, .to = searched + static_cast<size_t>(static_cast<const char*>(end) - begin)};
        return true;
    }
}

bool Scanner::startsWith(size_t from, std::string_view text)
{
    const size_t known = std::min(text.size(), last - first - std::min(from, last - first));
    if (std::memcmp(bytes.data() + first + std::min(from, last - first), text.data(), known) != 0)
        return false;
    return have(from + text.size()) &&
           std::memcmp(bytes.data() + first + from, text.data(), text.size()) == 0;
}

bool Scanner::isLine(size_t from, std::string_view text)
{
    return startsWith(from, text) && have(from + text.size() + 1) &&
           bytes[first + from + text.size()] == '\n';
}

std::string_view Scanner::at(Stretch stretch) const
{
    return {bytes.data() + first + stretch.from, stretch.size()};
}

void Scanner::take(size_t count, uint64_t lines)
{
    taken = count;
    takenLines = lines;
}

void Scanner::advance()
{
    first += taken;
    line += takenLines;
    take(0, 0);
}

// --- The frame

void Scanner::start()
{
    expect(declaration);
    const bool styled = isLine(0, stylesheet);
    if (styled) expect(stylesheet);
    expect(root);
    const std::string_view text = headLine();
    const bool whole = first + text.size() < last && bytes[first + text.size()] == '\n';
    std::string_view timestamp = text;
    if (whole && text.starts_with(setStart) && text.ends_with(tagEnd)) {
        timestamp.remove_prefix(setStart.size());
        timestamp = timestamp.substr(0, timestamp.rfind(tagEnd));
    }
    if (!isTimestamp(timestamp)) fault(quoted(text) + " is no start of a resource set");
    emit(Event::Kind::start);
    event.timestamp = timestamp;
    event.stylesheet = styled;
    take(text.size() + 1, 1);
}

/// The next line, which is short, or as much of it as tells that it is not.
std::string_view Scanner::headLine()
{
    const std::string_view text(bytes.data() + first, std::min(last - first, longestHeadLine));
    if (text.empty()) fault("the document ends before its first part");
    return text.substr(0, text.find('\n'));
}

void Scanner::expect(std::string_view text)
{
    if (!isLine(0, text)) {
        const bool ended = last == first;
        fault((ended ? "the end" : quoted(headLine())) + " stands where " + quoted(text) + " should");
    }
    take(text.size() + 1, 1);
    advance();
}

/// At the line that ends the set.
bool Scanner::setEnd()
{
    const size_t next = words::setEnd.size() + 1;
    ranOut = false;
    if (!isLine(next, rootEnd)) {
        if (ranOut) return endEarly();
        return leaveOut({.from = 0, .to = words::setEnd.size()});
    }
    if (!open.empty()) {
        find("elements end here that have no end tags");
        return close(true);
    }
    take(next + rootEnd.size() + 1, 2);
    advance();
    if (have(1)) find("there is more after the end, which is left out");
    finished = true;
    return emit(Event::Kind::end);
}

/// Where the bytes end and the document does not.
bool Scanner::endEarly()
{
    exhausted = true;
    if (!cut) {
        cut = true;
        return emit(Event::Kind::cut);
    }
    return open.empty() ? emit(Event::Kind::end) : close(true);
}

// --- Elements

const Event& Scanner::next()
{
    advance();
    if (finished) {
        emit(Event::Kind::end);
    } else if (!started) {
        started = true;
        start();
    } else {
        while (!element()) {
        }
    }
    return event;
}

/// Reads an element's lines, or some that are left out. \return whether there is an event
bool Scanner::element()
{
    Stretch text;
    if (exhausted) return endEarly();
    if (headKnown || startsWith(0, propertyName)) return property();
    if (!lineAt(0, text)) return endEarly();
    if (startsWith(0, resourceName)) return resourceStart(text);
    if (isLine(0, words::resourceEnd)) return resourceEnd(text);
    if (startsWith(0, listName)) return listStart(text);
    if (isLine(0, words::listEnd)) return listEnd(text);
    if (isLine(0, words::setEnd)) return setEnd();
    if (!isLine(0, incomplete) || !mayEnd(0)) return leaveOut(text);
    cut = true;
    take(text.to + 1, 1);
    return emit(Event::Kind::cut);
}

bool Scanner::emit(Event::Kind kind)
{
    event = {};
    event.kind = kind;
    event.line = line;
    return true;
}

/// Ends the innermost element, by an end tag of that length or without one.
bool Scanner::close(bool implied, size_t written)
{
    emit(open.back().list ? Event::Kind::listEnd : Event::Kind::resourceEnd);
    event.implied = implied;
    open.pop_back();
    if (!implied) take(written + 1, 1);
    return true;
}

bool Scanner::leaveOut(Stretch text)
{
    find("", at(text), " has no place here and is left out");
    take(text.to + 1, 1);
    advance();
    return false;
}

/// In a processor complex, whose lists of partitions do not pair.
bool Scanner::inDrawer() const
{
    return inResource() && open.back().kind == Kind::processorComplex;
}

/// In such a list.
bool Scanner::inShares() const
{
    return inList() && open.back().name == shares && open[open.size() - 2].kind == Kind::processorComplex;
}

void Scanner::openList(std::string_view name)
{
    if (open.size() == 1) systemList = name;
    open.back().hadList = true;
    open.emplace_back();
    open.back().list = true;
    open.back().name = name;
    emit(Event::Kind::listStart);
}

bool Scanner::listStart(Stretch text)
{
    if (!at(text).ends_with(tagEnd) || text.size() < listName.size() + tagEnd.size() || open.empty())
        return leaveOut(text);
    const Stretch name = {.from = listName.size(), .to = text.to - tagEnd.size()};
    if (inList()) {
        // Each partition of a drawer opens a list of its own; only the last one is closed.
        if (!inShares() || at(name) != shares)
            find("a list begins inside the list before it, which ends here");
        return close(true);
    }
    openList(at(name));
    event.name = at(name);
    take(text.to + 1, 1);
    return true;
}

bool Scanner::listEnd(Stretch text)
{
    if (inList()) return close(false, text.size());
    // A drawer without cards closes the list that one before it had.
    if (!inDrawer() || open.back().hadList) return leaveOut(text);
    open.back().hadList = true;
    take(text.to + 1, 1);
    advance();
    return false;
}

bool Scanner::resourceStart(Stretch text)
{
    Tag tag;
    ranOut = false;
    if (!readTag(tag) && !otherIdentifier(text, tag))
        return ranOut && !endsWhole() ? endEarly() : leaveOut(text);
    if (inResource()) return misplacedResource(text);
    if (open.empty() && hadSystem) return leaveOut(text);
    if (open.size() >= deepest) fault("elements are nested deeper than in any document");
    if (!tag.repeated) find("the line behind this tag is not its identifier");
    hadSystem = true;
    const Kind kind = kindOf(open.empty() ? std::string_view{} : open.back().name, at(tag.name));
    open.emplace_back();
    open.back().kind = kind;
    emit(Event::Kind::resourceStart);
    event.name = at(tag.name);
    event.id = at(tag.id);
    event.idLine = at(tag.idLine);
    take(tag.end, tag.lines);
    return true;
}

/// A resource that begins in a resource and in none of its lists.
bool Scanner::misplacedResource(Stretch text)
{
    if (open.size() > 1) {
        find("a resource begins inside the resource before it, which ends here");
        return close(true);
    }
    if (!open.back().hadList) return leaveOut(text);
    find("a resource begins behind its list, which begins again");
    openList(std::string(systemList));
    event.implied = true;
    event.name = systemList;
    return true;
}

bool Scanner::resourceEnd(Stretch text)
{
    if (open.empty()) return leaveOut(text);
    if (inList()) {
        find("a resource ends inside a list, which ends here");
        return close(true);
    }
    // The managed system's end comes once.
    ranOut = false;
    const size_t next = text.to + 1;
    const bool misplaced =
        open.size() == 1 && !isLine(next, words::setEnd) && !isLine(next, incomplete) && !ranOut;
    return misplaced ? leaveOut(text) : close(false, text.size());
}

bool Scanner::property()
{
    Head head = nextHead;
    Stretch value;
    ranOut = false;
    if (!headKnown && !readHead(0, head)) {
        Stretch text;
        if (!lineAt(0, text) || (ranOut && !endsWhole())) return endEarly();
        return leaveOut(text);
    }
    headKnown = false;
    const bool placed = inResource() && !open.back().hadList && !isAgain(head);
    if (placed) place(head);
    if (!readValue(head, value)) return endEarly();
    const auto lines = 4 + static_cast<uint64_t>(std::ranges::count(at(value), '\n'));
    take(value.to + valueEnd.size() + 1 + propertyEnd.size() + 1, lines);
    if (!placed) {
        find("the property ", at(head.code), " has no place here and is left out");
        advance();
        return false;
    }
    emit(Event::Kind::property);
    event.code = at(head.code);
    event.label = at(head.label);
    event.reversed = head.reversed;
    event.value = at(value);
    return true;
}

// --- What an element's lines say

/// A value in a tag may hold line feeds, and even what looks like the tag's end.
bool Scanner::readTag(Tag& tag)
{
    Stretch text = {.from = 0, .to = 0};
    for (tag.lines = 1; text.to <= longestTag; ++tag.lines) {
        if (!lineAt(text.from, text)) return false;
        if (tag.lines > 1 && at(text).starts_with(resourceName)) return false; // that is the next one
        const Stretch inner = {.from = resourceName.size(), .to = text.to - tagEnd.size()};
        if (text.to >= resourceName.size() + tagEnd.size() && at(text).ends_with(tagEnd)) {
            if (tag.lines == 1 ? writtenInALine(inner, tag) || mendedTag(inner, tag)
                               : writtenInLines(inner, tag))
                return true;
        }
        text.from = text.to + 1;
    }
    return false;
}

/// The line behind a tag repeats the identifier, which tells where in the tag it begins.
bool Scanner::writtenInALine(Stretch inner, Tag& tag)
{
    Stretch text;
    if (!lineAt(inner.to + tagEnd.size() + 1, text) || text.size() > inner.size()) return false;
    return isSplit(inner, inner.to - text.size(), tag);
}

/// The lines behind it do.
bool Scanner::writtenInLines(Stretch inner, Tag& tag)
{
    have(inner.to + tagEnd.size() + 1 + inner.size() + 1);
    for (size_t name = at(inner).find(idName); name != std::string_view::npos;
         name = at(inner).find(idName, name + 1)) {
        if (isSplit(inner, inner.from + name + idName.size(), tag)) return true;
    }
    return false;
}

/// Whether the identifier begins there.
bool Scanner::isSplit(Stretch inner, size_t id, Tag& tag)
{
    const size_t behind = inner.to + tagEnd.size() + 1;
    const Stretch idLine = {.from = behind, .to = behind + inner.to - id};
    if (id < inner.from + idName.size() || first + idLine.to >= last || bytes[first + idLine.to] != '\n')
        return false;
    const Stretch before = {.from = id - idName.size(), .to = id};
    if (at(before) != idName || at({id, inner.to}) != at(idLine)) return false;
    const auto feeds = static_cast<uint64_t>(std::ranges::count(at(idLine), '\n'));
    tag = {{inner.from, before.from}, {id, inner.to}, idLine, tag.lines + feeds + 1, idLine.to + 1};
    return true;
}

/// Where references stand in a tag, the lines behind it mean the same and need not look the same.
bool Scanner::mendedTag(Stretch inner, Tag& tag)
{
    const size_t name = at(inner).find(idName);
    if (name == std::string_view::npos || at(inner).rfind(idName) != name) return false;
    const Stretch id = {.from = inner.from + name + idName.size(), .to = inner.to};
    std::string wanted;
    appendMeant(wanted, at(id));
    const size_t from = inner.to + tagEnd.size() + 1;
    Stretch text = {.from = from, .to = from};
    std::string lines;
    for (uint64_t count = 1; lines.size() <= wanted.size(); ++count) {
        if (!lineAt(text.from, text)) return false;
        appendMeant(lines, at(text));
        if (lines == wanted) {
            tag = {{inner.from, inner.from + name}, id, {from, text.to}, 1 + count, text.to + 1};
            return true;
        }
        lines += '\n'; // written as one, or as a reference to one
        text.from = text.to + 1;
    }
    return false;
}

/// A tag whose identifier is not repeated as it should be.
bool Scanner::otherIdentifier(Stretch text, Tag& tag)
{
    const Stretch inner = {.from = resourceName.size(), .to = text.to - tagEnd.size()};
    if (text.to < resourceName.size() + tagEnd.size() || !at(text).ends_with(tagEnd)) return false;
    Stretch next;
    const bool lines = lineAt(text.to + 1, next);
    const size_t name = at(inner).rfind(idName);
    if (!lines || name == std::string_view::npos) return false;
    const Stretch id = {.from = inner.from + name + idName.size(), .to = inner.to};
    const bool other = !at(next).starts_with('<');
    tag = {{inner.from, inner.from + name}, id, id, other ? 2U : 1U, other ? next.to + 1 : next.from, false};
    return true;
}

/// The code is in the tag's name, or, in the tags of some parts, in its display name.
bool Scanner::readHead(size_t from, Head& head)
{
    Stretch tag;
    Stretch code;
    if (!lineAt(from, tag) || !lineAt(tag.to + 1, code) || !isCode(at(code))) return false;
    if (!startsWith(code.to + 1, valueStart)) return false;
    const size_t value = code.to + 1 + valueStart.size();
    const std::string_view text = at(tag);
    if (text == hostsTag) {
        constexpr size_t label = hostsTag.rfind("=\"") + 2;
        head = {code, {from + label, tag.to - tagEnd.size()}, false, value};
        return at(code) == hostsCode;
    }
    if (!text.starts_with(propertyStart) || !text.ends_with(tagEnd)) return false;
    const Stretch inner = {.from = from + propertyStart.size(), .to = tag.to - tagEnd.size()};
    const size_t least = labelName.size() + code.size();
    if (text.size() < propertyStart.size() + tagEnd.size() + least) return false;
    if (at(inner).starts_with(at(code)) && at(inner).substr(code.size()).starts_with(labelName)) {
        head = {code, {inner.from + least, inner.to}, false, value};
        return true;
    }
    head = {code, {inner.from, inner.to - least}, true, value};
    return at(inner).ends_with(at(code)) &&
           at({head.label.to, head.label.to + labelName.size()}) == labelName && !isCode(at(head.label));
}

/// A value may hold line feeds, and even what looks like its end: it ends where the collector can have gone
/// on. Where there is no such place, it ends where it looks so, and so do those behind it.
bool Scanner::readValue(const Head& head, Stretch& value)
{
    size_t firstEnd = 0;
    Stretch text = {.from = head.value, .to = head.value};
    for (;; text.from = text.to + 1) {
        const bool far = firstEnd > 0 && text.from > longest / 4;
        if (far || !lineAt(text.from, text)) {
            if (firstEnd == 0 || (!far && !endsWhole())) return false;
            lenient = true;
            text.to = firstEnd;
            break;
        }
        if (!at(text).ends_with(valueEnd)) continue;
        const size_t next = text.to + 1;
        if (!isLine(next, propertyEnd)) continue;
        if (lenient || !inResource() || mayFollow(next + propertyEnd.size() + 1)) break;
        if (firstEnd == 0) firstEnd = text.to;
    }
    value = {.from = head.value, .to = text.to - valueEnd.size()};
    if (firstEnd != 0 && firstEnd != text.to)
        find("the value of ", at(head.code), " holds lines that look like the document's", 2);
    return true;
}

/// Whether the bytes, which are all read, end as a document does.
bool Scanner::endsWhole() const
{
    return at({0, last - first}).ends_with(std::string(rootEnd) + '\n');
}

/// Whether what stands there can follow a property; where the document ends, anything could.
bool Scanner::mayFollow(size_t from)
{
    ranOut = false;
    Stretch text;
    bool may = false;
    if (startsWith(from, propertyName))
        may = nextProperty(from);
    else if (startsWith(from, listName))
        may = lineAt(from, text) && at(text).ends_with(tagEnd) &&
              (startsWith(text.to + 1, resourceName) || isLine(text.to + 1, words::listEnd) ||
               isLine(text.to + 1, incomplete));
    else if (inDrawer() && isLine(from, words::listEnd))
        may = isLine(from + words::listEnd.size() + 1, words::resourceEnd);
    else
        may = mayEnd(from);
    return may || ranOut;
}

/// Whether ends stand there that fit what is open, and behind them something that can follow; behind the mark
/// of a cut document, all of them.
bool Scanner::mayEnd(size_t from)
{
    bool marked = false;
    for (size_t depth = open.size();; --depth) {
        if (!marked && isLine(from, incomplete)) {
            marked = true;
            from += incomplete.size() + 1;
        }
        if (depth == 0) return isWholeEnd(from);
        const Open& element = open[depth - 1];
        if (!marked && depth < open.size() && mayGoOn(depth, from)) return true;
        const std::string_view end = element.list ? words::listEnd : words::resourceEnd;
        if (!isLine(from, end)) return false;
        from += end.size() + 1;
    }
}

/// Whether the document's last lines stand there, and nothing behind them.
bool Scanner::isWholeEnd(size_t from)
{
    const size_t rootLine = from + words::setEnd.size() + 1;
    return isLine(from, words::setEnd) && isLine(rootLine, rootEnd) && !have(rootLine + rootEnd.size() + 2);
}

/// Whether what stands there can follow an element inside the one at that depth.
bool Scanner::mayGoOn(size_t depth, size_t from)
{
    const Open& element = open[depth - 1];
    if (!element.list) return startsWith(from, listName);
    if (startsWith(from, resourceName)) return true;
    return element.name == shares && open[depth - 2].kind == Kind::processorComplex &&
           startsWith(from, listName);
}

bool Scanner::nextProperty(size_t from)
{
    Head head;
    if (!readHead(from, head)) return false;
    if (isAgain(head)) return false;
    const auto moved = [from](Stretch stretch) { return Stretch{stretch.from - from, stretch.to - from}; };
    nextHead = {moved(head.code), moved(head.label), head.reversed, head.value - from};
    headKnown = true;
    return true;
}

/// A part has a property once, but for the few that come in a row.
bool Scanner::isAgain(const Head& head) const
{
    const Open& part = open.back();
    const std::span<const PropertyRow> rows = rowOf(part.kind).properties;
    if (!part.codes[indexOf(at(head.code))]) return false;
    return part.row == rows.size() || rows[part.row].times != Times::any ||
           rows[part.row].code != at(head.code);
}

/// Puts a property into its part, and says where the part's kind has none there.
void Scanner::place(const Head& head)
{
    Open& part = open.back();
    part.codes.set(indexOf(at(head.code)));
    if (part.kind == Kind::other) return;
    const std::span<const PropertyRow> rows = rowOf(part.kind).properties;
    const auto fits = [&](const PropertyRow& row) {
        return row.code == at(head.code) && row.label == at(head.label) &&
               (row.order == Order::reversed) == head.reversed;
    };
    const auto row = std::find_if(rows.begin() + static_cast<std::ptrdiff_t>(part.row), rows.end(), fits);
    if (row == rows.end())
        find("the property ", at(head.code), " is none that such a part has there");
    else
        part.row = static_cast<size_t>(row - rows.begin()) + (row->times == Times::any ? 0 : 1);
}

void Scanner::fault(const std::string& what) const
{
    throw Malformed(input.name() + ':' + std::to_string(line) + ": " + what);
}

void Scanner::find(std::string_view before, std::string_view text, std::string_view behind, uint64_t lines)
{
    // A document of many millions of such lines is told of a few of them.
    if (++foundCount > mostFindings) return;
    found.push_back({.line = line + lines, .what = std::string(before) + quoted(text) + std::string(behind)});
}

void Scanner::find(std::string_view what)
{
    if (++foundCount <= mostFindings) found.push_back({.line = line, .what = std::string(what)});
}

} // namespace document
