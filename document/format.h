// Rows of values as a table for people, as CSV or as JSON.

#pragma once

#include "document/json.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace document
{

enum class Format {
    table,
    csv,
    json, ///< one list of objects
    lines ///< an object on each line
};

struct Heading {
    std::string name;
    bool toTheRight = false; ///< numbers in a table
};

class Formatter
{
public:
    virtual ~Formatter() = default;
    virtual void row(std::span<const Value> values) = 0;
    virtual void finish() = 0;
};

/// \param header whether a table and CSV begin with the columns' names
std::unique_ptr<Formatter> formatterOf(Format format, std::vector<Heading> headings, bool header,
                                       Write write);

/// A value as text; the items of a list stand with blanks between them.
std::string textOf(const Value& value);

} // namespace document
