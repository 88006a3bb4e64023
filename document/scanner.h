// Bytes of an inventory document in, its elements out, one after the other and always balanced.
//
// The collector writes no XML: values stand in the document as they are, whatever they hold, one property's
// name has no quotation marks, and processor complexes open more lists than they close, or close one that
// they never opened. The scanner knows the collector's lines, so it finds every element nevertheless, and
// ends what the collector left open. A line is taken for an element only where the collector could have
// written it there; everything else belongs to the value before it, or is left out and told as a finding.
//
//     Input input(file);
//     Scanner scanner(input);
//     for (const Event* event = &scanner.next(); event->kind != Event::Kind::end; event = &scanner.next())
//     ...
//
// The events of any document, a whole one or not:
//     start { resourceStart property* { listStart { resource } listEnd } resourceEnd } [cut] end
// with "cut" anywhere behind the start: there the document ends before its time, and what follows are ends
// that nobody wrote.

#pragma once

#include "document/finding.h"
#include "document/input.h"
#include "document/kind.h"

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

/// The views hold until the next event. They are the document's bytes: `meant` (references.h) tells what they
/// mean where they hold an ampersand.
struct Event {
    enum class Kind {
        start,         ///< timestamp, stylesheet
        listStart,     ///< name, implied
        listEnd,       ///< implied
        resourceStart, ///< name, id, idLine
        resourceEnd,   ///< implied
        property,      ///< code, label, reversed, value
        cut,           ///< the document ends here before its time, or did before it was mended
        end            ///< the last one, again and again
    };

    Kind kind = Kind::end;
    bool implied = false;    ///< not written
    bool reversed = false;   ///< the label is the attribute "name", the code "displayName"
    bool stylesheet = false; ///< the document names one
    uint64_t line = 0;       ///< where the element begins; of an implied end: where it is missing
    std::string_view name;   ///< the attribute displayName
    std::string_view id;     ///< the attribute uniqueId
    std::string_view idLine; ///< the identifier as the lines behind the tag repeat it
    std::string_view code;   ///< two letters or digits
    std::string_view label;
    std::string_view value;
    std::string_view timestamp; ///< seconds.microseconds
};

class Scanner
{
public:
    static constexpr size_t longestElement = size_t{64} << 20U; ///< bytes
    static constexpr size_t mostFindings = 20;                  ///< that are kept

    /// \param longest an element of more bytes than that is a Malformed
    explicit Scanner(Input& input, size_t longest = longestElement);

    /// The next event. What is no inventory document at all is a Malformed: "FILE:LINE: what".
    const Event& next();

    /// Whether the document had its end; known once the last event has come.
    [[nodiscard]] bool complete() const { return !cut; }
    /// The first findings, in the document's order, and how many there are in all.
    [[nodiscard]] const std::vector<Finding>& findings() const { return found; }
    [[nodiscard]] uint64_t findingCount() const { return foundCount; }
    /// The most bytes of the document that were held at once.
    [[nodiscard]] size_t held() const { return bytes.size(); }
    /// The input's name, for messages.
    [[nodiscard]] const std::string& name() const { return input.name(); }

private:
    /// An element that is open.
    struct Open {
        bool list = false;
        bool hadList = false;
        Kind kind = Kind::other;              ///< of a part
        std::string name{};                   ///< of a list
        std::bitset<size_t{36} * 36> codes{}; ///< of the properties that a part has
        size_t row = 0;                       ///< of the next property, in the table of parts
    };

    /// A stretch of bytes, by its distance from the first byte that is not taken yet.
    struct Stretch {
        size_t from = 0;
        size_t to = 0;
        [[nodiscard]] size_t size() const { return to - from; }
    };

    /// A resource's tag and the lines that repeat its identifier.
    struct Tag {
        Stretch name;
        Stretch id;
        Stretch idLine;
        uint64_t lines = 0;
        size_t end = 0;       ///< behind the last of its bytes
        bool repeated = true; ///< the identifier is, as it should be
    };

    /// A property up to its value.
    struct Head {
        Stretch code;
        Stretch label;
        bool reversed = false;
        size_t value = 0; ///< where the value begins
    };

    // Bytes
    bool fill();
    bool have(size_t count);
    bool lineAt(size_t from, Stretch& line);
    bool startsWith(size_t from, std::string_view text);
    bool isLine(size_t from, std::string_view text);
    [[nodiscard]] std::string_view at(Stretch stretch) const;
    void take(size_t count, uint64_t lines);
    void advance();

    // The frame
    void start();
    std::string_view headLine();
    void expect(std::string_view text);
    bool setEnd();
    bool endEarly();

    // Elements
    bool element();
    bool emit(Event::Kind kind);
    bool close(bool implied, size_t written = 0);
    bool listStart(Stretch tag);
    bool listEnd(Stretch tag);
    bool resourceStart(Stretch firstLine);
    bool misplacedResource(Stretch text);
    bool resourceEnd(Stretch tag);
    bool property();
    bool leaveOut(Stretch line);
    [[nodiscard]] bool inList() const { return !open.empty() && open.back().list; }
    [[nodiscard]] bool inResource() const { return !open.empty() && !open.back().list; }
    [[nodiscard]] bool inDrawer() const;
    [[nodiscard]] bool inShares() const;
    void openList(std::string_view name);

    // What an element's lines say
    bool readTag(Tag& tag);
    bool writtenInALine(Stretch inner, Tag& tag);
    bool writtenInLines(Stretch inner, Tag& tag);
    bool isSplit(Stretch inner, size_t id, Tag& tag);
    bool mendedTag(Stretch inner, Tag& tag);
    bool otherIdentifier(Stretch firstLine, Tag& tag);
    bool readHead(size_t from, Head& head);
    bool readValue(const Head& head, Stretch& value);
    bool mayFollow(size_t from);
    bool mayEnd(size_t from);
    bool mayGoOn(size_t depth, size_t from);
    bool isWholeEnd(size_t from);
    bool nextProperty(size_t from);
    [[nodiscard]] bool isAgain(const Head& head) const;
    void place(const Head& head);
    [[nodiscard]] bool endsWhole() const;

    [[noreturn]] void fault(const std::string& what) const;
    void find(std::string_view what);
    void find(std::string_view before, std::string_view text, std::string_view behind, uint64_t lines = 0);

    Input& input;
    const size_t longest;
    std::vector<char> bytes;
    size_t first = 0; ///< of the bytes that are not taken
    size_t last = 0;  ///< behind the bytes that are read
    bool atEnd = false;
    bool ranOut = false; ///< something was looked for behind the last byte

    Event event{};
    bool started = false;
    bool hadSystem = false;
    bool finished = false;
    bool cut = false;
    bool exhausted = false; ///< nothing whole is left
    bool lenient = false;   ///< nothing is asked of what follows a value
    uint64_t line = 1;      ///< of the first byte that is not taken
    size_t taken = 0;       ///< by the event
    uint64_t takenLines = 0;
    std::vector<Open> open;
    std::string systemList; ///< the managed system's newest list
    bool headKnown = false; ///< of the next property, which the value before it looked at
    Head nextHead;

    std::vector<Finding> found;
    uint64_t foundCount = 0;
};

} // namespace document
