// What the collector's own tables tell of its lines, queries and events. They come from the collector as data
// when this library is built, and hold nothing that the collector does not know.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

/// The format of a trace line, and the values that a line's text has in it.
class LineFormat
{
public:
    LineFormat() = default;
    /// \param format as printed: %d, %u and %s
    explicit LineFormat(std::string_view format);

    /// The values in their order; none when the text was not made by this format. Where a text could be taken
    /// apart in several ways, the first of two texts is the longest possible, of more the shortest.
    [[nodiscard]] std::optional<std::vector<std::string_view>> match(std::string_view text) const;
    /// How many of its characters every text has.
    [[nodiscard]] size_t literals() const;

private:
    struct Piece {
        char kind; ///< 'd' a number, 's' a text, 'l' literal
        std::string literal;
    };
    std::vector<Piece> pieces;
};

/// How a failure goes on.
struct FailureEnd {
    std::optional<uint32_t> number; ///< of the resource manager's error; none: any
    std::string result;             ///< "fatal", "minor", "reported", "none"
    bool files = false;             ///< an event, by what follows
    std::string referenceCode;
    bool withMessage = false;   ///< the event's text is the message
    bool standsInstead = false; ///< an empty part stands in the document
};

struct TableLine {
    std::string role;
    std::string code; ///< without a blank behind it
    LineFormat format;
    std::string meaning;
    std::string cause;
    std::string advice;
    std::vector<FailureEnd> ends;
    std::string function; ///< who writes it
    std::string session;  ///< that is opened or ended there; empty: none
};

struct TableQuery {
    std::string function;
    std::string className;
    std::string session;
    std::string call;                     ///< "persistent query", "dynamic query", "enumeration", "action"
    std::optional<std::string> selection; ///< its format; none: every resource
    LineFormat selectionFormat;
    std::string action;
    std::vector<std::string> attributes;
    std::string things;  ///< what it asks for: "the drives"
    bool counts = false; ///< only how many there are is told
    std::string entry;   ///< the function's name in its "==>" line; empty: it writes none
    std::vector<TableLine> lines;
    bool tracesSelection = false;
};

struct TableEvent {
    std::string type; ///< empty: any other
    std::string referenceCode;
    std::string text;
    std::string advice;
};

struct Tables {
    std::vector<TableQuery> queries;
    std::vector<TableLine> lines; ///< that are no query's
    std::vector<TableEvent> events;

    /// Null when there is none such.
    [[nodiscard]] const TableQuery* query(std::string_view function) const;
    /// The event of the type, or else that of any other type.
    [[nodiscard]] const TableEvent& event(std::string_view type) const;
};

/// Read at the first call.
const Tables& tables();

} // namespace document
