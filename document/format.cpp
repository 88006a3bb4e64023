#include "document/format.h"

#include "platform/text.h"
#include "platform/utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace document
{

namespace
{

/// Gathers a result to write it in large pieces.
class Gathered
{
public:
    explicit Gathered(Write toWrite) : write(std::move(toWrite)) {}

    void flush(size_t least = 0)
    {
        if (text.size() <= least) return;
        write(text);
        text.clear();
    }

    static constexpr size_t enough = size_t{64} << 10U;
    std::string text;

private:
    Write write;
};

struct AppendText {
    std::string& text;

    void operator()(std::monostate) const {}
    void operator()(std::string_view value) const { text += value; }
    void operator()(int64_t value) const
    {
        std::array<char, 24> digits{};
        text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
    }
    void operator()(const std::vector<std::string>& values) const
    {
        for (const char* separator = ""; const std::string& value : values) {
            text.append(separator).append(value);
            separator = " ";
        }
    }
    void operator()(const std::vector<int64_t>& values) const
    {
        for (const char* separator = ""; const int64_t value : values) {
            text.append(separator).append(std::to_string(value));
            separator = " ";
        }
    }
};

void appendText(std::string& text, const Value& value)
{
    std::visit(AppendText{text}, value);
}

// --- Tables

/// A column is as wide as its widest value. A value wider than any reader could want moves only its own row.
class Table : public Formatter
{
public:
    Table(std::vector<Heading> ofHeadings, bool withHeader, Write write)
        : headings(std::move(ofHeadings)), header(withHeader), out(std::move(write)), widths(headings.size())
    {
    }

    void row(std::span<const Value> values) override
    {
        for (size_t column = 0; column < values.size(); ++column)
            add(column, values[column]);
    }

    void finish() override
    {
        if (header && !headings.empty()) writeHead();
        for (size_t first = 0; first < cells.size(); first += headings.size())
            writeRow(first);
        out.flush();
    }

private:
    static constexpr size_t widest = 80;

    struct Cell {
        size_t end = 0; ///< in the text of all cells
        size_t width = 0;
    };

    void add(size_t column, const Value& value)
    {
        const size_t from = text.size();
        appendText(text, value);
        size_t width = text.size() - from;
        if (!std::all_of(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(), isPlain)) {
            const std::string safe = platform::shown(std::string_view(text).substr(from));
            text.replace(from, std::string::npos, safe);
            width = platform::widthOf(safe);
        }
        cells.push_back({.end = text.size(), .width = width});
        widths[column] = std::max(widths[column], std::min(width, widest));
    }

    static bool isPlain(char byte) { return byte >= ' ' && byte <= '~'; }

    void writeHead()
    {
        for (size_t column = 0; column < headings.size(); ++column) {
            const std::string& name = headings[column].name;
            widths[column] = std::max(widths[column], name.size());
        }
        size_t pending = 0;
        for (size_t column = 0; column < headings.size(); ++column)
            writeCell(column, headings[column].name, headings[column].name.size(), pending);
        out.text += '\n';
    }

    void writeRow(size_t first)
    {
        size_t pending = 0; // blanks, which stand only before a further cell
        for (size_t column = 0; column < headings.size(); ++column) {
            const size_t index = first + column;
            const size_t from = index == 0 ? 0 : cells[index - 1].end;
            writeCell(column, std::string_view(text).substr(from, cells[index].end - from),
                      cells[index].width, pending);
        }
        out.text += '\n';
        out.flush(Gathered::enough);
    }

    void writeCell(size_t column, std::string_view value, size_t width, size_t& pending)
    {
        constexpr size_t gap = 2;
        const size_t blanks = widths[column] - std::min(widths[column], width);
        if (value.empty()) {
            pending += blanks + gap;
            return;
        }
        out.text.append(pending + (headings[column].toTheRight ? blanks : 0), ' ').append(value);
        pending = gap + (headings[column].toTheRight ? 0 : blanks);
    }

    const std::vector<Heading> headings;
    const bool header;
    Gathered out;
    std::vector<size_t> widths;
    std::string text;
    std::vector<Cell> cells;
};

// --- CSV

class Csv : public Formatter
{
public:
    Csv(const std::vector<Heading>& headings, bool header, Write write) : out(std::move(write))
    {
        if (!header) return;
        for (const char* separator = ""; const Heading& heading : headings) {
            out.text.append(separator).append(heading.name);
            separator = ",";
        }
        out.text += '\n';
    }

    void row(std::span<const Value> values) override
    {
        for (const Value& value : values) {
            scratch.clear();
            appendText(scratch, value);
            appendField(scratch);
            out.text += ',';
        }
        if (!values.empty()) out.text.pop_back();
        out.text += '\n';
        out.flush(Gathered::enough);
    }

    void finish() override { out.flush(); }

private:
    void appendField(std::string_view field)
    {
        const bool quoted = field.find_first_of(",\"\r\n") != std::string_view::npos ||
                            field.starts_with(' ') || field.ends_with(' ');
        if (!quoted) return platform::appendUnicode(out.text, field);
        out.text += '"';
        for (size_t at = field.find('"'); at != std::string_view::npos; at = field.find('"')) {
            platform::appendUnicode(out.text, field.substr(0, at + 1));
            out.text += '"';
            field.remove_prefix(at + 1);
        }
        platform::appendUnicode(out.text, field);
        out.text += '"';
    }

    Gathered out;
    std::string scratch;
};

// --- JSON

class Json : public Formatter
{
public:
    Json(const std::vector<Heading>& headings, bool asList, Write write) : list(asList), out(std::move(write))
    {
        for (const Heading& heading : headings)
            names.push_back(quote(heading.name) + ':');
        if (list) out.text = "[";
    }

    void row(std::span<const Value> values) override
    {
        out.text += separator;
        out.text += '{';
        for (size_t column = 0; column < values.size(); ++column) {
            if (isEmpty(values[column])) continue;
            out.text += names[column];
            appendJson(out.text, values[column]);
            out.text += ',';
        }
        if (out.text.ends_with(',')) out.text.pop_back();
        out.text += '}';
        separator = list ? ",\n" : "\n";
        out.flush(Gathered::enough);
    }

    void finish() override
    {
        if (list)
            out.text += "]\n";
        else if (!separator.empty())
            out.text += '\n';
        out.flush();
    }

private:
    const bool list;
    std::string_view separator; ///< before the next row
    Gathered out;
    std::vector<std::string> names;
};

} // namespace

std::unique_ptr<Formatter> formatterOf(Format format, std::vector<Heading> headings, bool header, Write write)
{
    if (format == Format::table)
        return std::make_unique<Table>(std::move(headings), header, std::move(write));
    if (format == Format::csv) return std::make_unique<Csv>(headings, header, std::move(write));
    return std::make_unique<Json>(headings, format == Format::json, std::move(write));
}

std::string textOf(const Value& value)
{
    std::string text;
    appendText(text, value);
    return text;
}

} // namespace document
