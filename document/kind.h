// The table of parts: what a document can hold. One row says how a kind of part is recognised, what people
// and programs call it, which properties it has, which of them identify it, and what columns it has in
// tables.
//
// Everything that reads, lists, compares, checks or explains documents takes its words from here.

#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

enum class Kind {
    system,
    processorComplex,
    controlCard,
    ioEnclosure,
    deviceAdapter,
    hostAdapter,
    rack,
    powerSupply,
    battery,
    powerController,
    fanSenseCard,
    fanTray,
    storageEnclosure,
    drive,
    interfaceCard,
    baffle,
    enclosurePartition,
    console,
    partition,
    storageConfiguration,
    arraySite,
    array,
    rank,
    segmentPool,
    host,
    other
};

// --- Properties

/// Which attribute of a property's tag holds the code: "name", or "displayName".
enum class Order { normal, reversed };

enum class Times { once, optional, any };

struct PropertyRow {
    std::string_view code;
    std::string_view label;
    Order order = Order::normal;
    Times times = Times::once;
};

// --- Columns

enum class Type {
    text,
    number, ///< a whole number
    texts,
    numbers,
    time, ///< ISO 8601 in UTC
};

/// Where the value of a column comes from.
enum class From {
    system,       ///< the managed system's identifier
    time,         ///< the document's time of collection
    kind,         ///< the word of the part's kind
    id,           ///< the part's identifier
    name,         ///< its display name
    within,       ///< the identifier of the part around it, enclosure partitions left out
    property,     ///< a property's value
    around,       ///< a property's value, of the part or else of the nearest part around it
    end,          ///< what follows the last mark in a property's value, of the part or of one around it
    idEnd,        ///< what follows the last mark in the identifier
    item,         ///< what stands behind a key in a property that holds many values
    sites,        ///< the array sites in an array's identifier, where the first stands twice
    arrayOfSites, ///< what the array sites of an array call it
    naming,       ///< the numbers of the parts of a kind beside it that name it in a property
    partitions,   ///< the partitions whose share of an enclosure lists the part
    description,  ///< of a host
    ports,        ///< of a host
    partition,    ///< the name of the partition that knows a host
};

struct Source {
    From from;
    std::string_view code = {}; ///< the property that holds it
    std::string_view mark = {}; ///< the key of an item, or the text that the value follows
    std::string_view unit = {}; ///< what follows the number: "MB"
    Kind kind = Kind::other;    ///< of the parts that name it
};

struct Column {
    std::string_view name;
    Type type = Type::text;
    std::string_view unit = {}; ///< empty: none, or none that the document tells
    std::string_view meaning;
    Source source;
    bool shown = true; ///< in a table for which no columns are named
};

// --- Kinds

struct KindRow {
    Kind kind;
    std::string_view word; ///< in JSON and on the command line
    std::string_view singular;
    std::string_view plural;
    std::string_view list = {};     ///< the list that it stands in
    std::string_view name = {};     ///< its display name; empty: whatever stands in its list is of this kind
    bool counted = true;            ///< in a document's summary
    bool listed = true;             ///< it can be asked for by its word
    bool idShown = true;            ///< in a table: not of hosts, whose description it is
    std::string_view serial = {};   ///< the property with the serial number that goes where the part goes
    std::string_view model = {};    ///< the one without which that number is not unique
    std::string_view position = {}; ///< the one with the position that stays when the part is exchanged
    std::span<const PropertyRow> properties = {}; ///< in their order
    std::span<const Column> columns = {};         ///< its own; every kind has the common ones too
};

constexpr size_t kindCount = static_cast<size_t>(Kind::other) + 1;
extern const std::array<KindRow, kindCount> kinds;

/// The columns of every kind.
extern const std::span<const Column> commonColumns;

const KindRow& rowOf(Kind kind);

/// The kind of a part by the list it stands in (empty: in none) and its display name.
Kind kindOf(std::string_view list, std::string_view name);

/// The kinds that a word of the command line means: "drive", "drives", "array-sites", "all". None: it is
/// none.
std::vector<Kind> kindsOf(std::string_view word);

/// Every word that `kindsOf` knows, for messages and completion: the plurals with hyphens, and "all".
std::vector<std::string> kindWords();

/// The common columns and the kind's own.
std::vector<const Column*> columnsOf(Kind kind);

/// The names of every column of the kinds, each once.
std::vector<std::string> columnNamesOf(std::span<const Kind> ofKinds, bool onlyShown = false);

std::string_view wordOf(Type type);

/// Where parts of the kind stand, in words: "\"CEC\" in the list \"Enclosures\"".
std::string placeOf(const KindRow& row);

/// Whether a column tells of other parts than its own.
bool tellsOfOthers(const Column& column);

/// Where the value of a column comes from, in words: "`DC` in `DP`".
std::string sourceOf(const Column& column);

} // namespace document
