#include "document/tree.h"

#include "document/hosts.h"
#include "platform/text.h"

#include <algorithm>
#include <map>

namespace document
{

namespace
{

using platform::shown;
using platform::widthOf;

struct Strokes {
    std::string_view branch;
    std::string_view last;
    std::string_view pass;
    std::string_view none;
};

constexpr Strokes asciiStrokes = {.branch = "|-- ", .last = "`-- ", .pass = "|   ", .none = "    "};
constexpr Strokes unicodeStrokes = {.branch = "├── ", .last = "└── ", .pass = "│   ", .none = "    "};

constexpr size_t widestCell = 100;
constexpr size_t pieceSize = size_t{64} * 1024;

std::string told(const Property& property)
{
    const auto hosts = property.code() == "U2" ? parseHosts(property.value) : std::nullopt;
    if (!hosts) return std::string(property.code()) + ' ' + shown(property.value, widestCell);
    return std::string(property.code()) + ' ' + std::to_string(hosts->size()) +
           (hosts->size() == 1 ? " host" : " hosts");
}

/// A part's line, cell by cell.
std::vector<std::string> cellsOf(const Part& part)
{
    std::vector<std::string> cells = {shown(part.name, widestCell),
                                      part.id == part.name ? "" : shown(part.id, widestCell)};
    for (const Property& property : part.properties) {
        if (!repeats(property, part)) cells.push_back(told(property));
    }
    return cells;
}

class Tree
{
public:
    Tree(const Strokes& withStrokes, const Write& toWrite) : strokes(withStrokes), write(toWrite) {}

    void draw(const Part& system)
    {
        children(system, "");
        write(text);
    }

private:
    using Widths = std::vector<size_t>;

    void children(const Part& part, const std::string& indent)
    {
        std::vector<std::vector<std::string>> rows;
        std::map<Kind, Widths> widths;
        for (const Part& child : part.children) {
            rows.push_back(cellsOf(child));
            widen(widths[child.kind], rows.back());
        }
        for (size_t i = 0; i < rows.size(); ++i) {
            const Part& child = part.children[i];
            const bool last = i + 1 == rows.size();
            text += indent;
            text += last ? strokes.last : strokes.branch;
            line(rows[i], widths[child.kind]);
            children(child, indent + std::string(last ? strokes.none : strokes.pass));
        }
    }

    static void widen(Widths& widths, const std::vector<std::string>& cells)
    {
        widths.resize(std::max(widths.size(), cells.size()));
        for (size_t i = 0; i < cells.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(cells[i]));
    }

    void line(const std::vector<std::string>& cells, const Widths& widths)
    {
        constexpr size_t gap = 2;
        size_t blanks = 0; // written only before a further cell
        for (size_t i = 0; i < cells.size(); ++i) {
            if (!cells[i].empty()) text.append(blanks, ' ').append(cells[i]);
            if (!cells[i].empty()) blanks = 0;
            blanks += widths[i] == 0 ? 0 : widths[i] - widthOf(cells[i]) + gap;
        }
        text += '\n';
        if (text.size() < pieceSize) return;
        write(text);
        text.clear();
    }

    const Strokes& strokes;
    const Write& write;
    std::string text;
};

} // namespace

void writeTree(const Document& document, Lines lines, const Write& write)
{
    const Part& system = document.system();
    std::string text = shown(system.name);
    if (const auto facility = system.value("S3"); !facility.empty())
        text += " of storage facility " + shown(facility);
    text += ", collected " + shown(timeOf(document.timestamp)) + '\n';
    write(text + summary(document) + '\n');
    Tree(lines == Lines::unicode ? unicodeStrokes : asciiStrokes, write).draw(system);
}

} // namespace document
