// The parts of a document as rows of a table, and the values of their columns.

#pragma once

#include "document/document.h"
#include "document/hosts.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace document
{

/// One physical part, or a host.
struct Row {
    const Part* part = nullptr; ///< of a host: the partition that knows it
    Kind kind = Kind::other;
    Host host{}; ///< of a host
    std::vector<const Part*>
        also{}; ///< the part's other elements: one for each further partition that sees it
};

/// The rows of some kinds, in the document's order. Elements of one kind with the same identifier and the
/// same values but for the image are one part; absent parts are no rows.
std::vector<Row> rowsOf(const Document& document, std::span<const Kind> ofKinds);

/// The hosts that a partition knows; none where its text is no list of hosts.
std::vector<Row> hostsOf(const Part& partition);

/// A column's value; none where the document tells none. Texts are views that hold until the next value.
using Value =
    std::variant<std::monostate, std::string_view, int64_t, std::vector<std::string>, std::vector<int64_t>>;

inline bool isEmpty(const Value& value)
{
    return std::holds_alternative<std::monostate>(value);
}

/// Tells the values of one document's parts.
class Values
{
public:
    explicit Values(const Document& document);

    Value of(const Row& row, const Column& column);

private:
    /// The keys of a property that holds many values, and its values in the part that was asked for last.
    struct Items {
        Kind kind = Kind::other;
        std::string_view code;
        std::vector<std::string_view> keys;
        const Part* part = nullptr;
        std::vector<std::string_view> values;
    };

    Value textOf(const Row& row, const Source& source);
    std::string_view itemOf(const Row& row, const Source& source);
    Items& itemsFor(Kind kind, std::string_view code);
    const std::vector<int64_t>& numbersNaming(const Part& part, const Source& source);
    Value numberOfArray(const Part& array, const Source& source);
    std::vector<std::string> partitionsOf(const Row& row) const;

    const Document& document;
    std::string collected;
    std::map<std::pair<Kind, std::string_view>, Items> allItems;
    Items* items = nullptr; ///< that were asked for last
    /// By storage configuration: the number of the array that an array site belongs to.
    std::unordered_map<const Part*, std::unordered_map<int64_t, int64_t>> arrays;
    /// By storage configuration and kind of part: the first part of a number, and the numbers of those that
    /// name it.
    struct Named {
        const Part* part = nullptr;
        std::vector<int64_t> by;
    };
    std::map<std::pair<const Part*, Kind>, std::unordered_map<int64_t, Named>> named;
};

/// The document's time of collection in ISO 8601, UTC, with microseconds; empty where it is no time.
std::string collectedAt(std::string_view timestamp);

} // namespace document
