// The table of parts as a page and as a manual page.

#include "reference.h"

#include "document/kind.h"

#include <cctype>
#include <span>
#include <vector>

namespace reference
{

namespace
{

using document::Column;
using document::KindRow;
using document::Order;
using document::PropertyRow;
using document::Times;
using Cells = std::vector<std::string>;

/// What a page is written with.
class Markup
{
public:
    virtual ~Markup() = default;
    virtual void section(const std::string& title) = 0;
    virtual void subsection(const std::string& title) = 0;
    virtual void paragraph(const std::string& text) = 0;
    virtual void table(const Cells& head, const std::vector<Cells>& rows) = 0;

    std::string text;
};

class Markdown : public Markup
{
public:
    void section(const std::string& title) override { text += "\n## " + title + '\n'; }
    void subsection(const std::string& title) override { text += "\n### " + title + '\n'; }
    void paragraph(const std::string& words) override { text += '\n' + words + '\n'; }
    void table(const Cells& head, const std::vector<Cells>& rows) override
    {
        text += '\n';
        row(head);
        text += '|';
        for (size_t i = 0; i < head.size(); ++i)
            text += "---|";
        text += '\n';
        for (const Cells& cells : rows)
            row(cells);
    }

private:
    void row(const Cells& cells)
    {
        text += '|';
        for (const std::string& cell : cells)
            text += cell.empty() ? " |" : ' ' + cell + " |";
        text += '\n';
    }
};

/// A manual page knows no code spans, and its tables are lists: the first cell, and what belongs to it.
class Manual : public Markup
{
public:
    void section(const std::string& title) override
    {
        std::string capitals;
        for (const char letter : title)
            capitals += static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
        text += ".Sh " + capitals + '\n';
    }
    void subsection(const std::string& title) override { text += ".Ss " + plain(title) + '\n'; }
    void paragraph(const std::string& words) override
    {
        text += text.ends_with("\n.El\n") ? ".Pp\n" : "";
        text += plain(words) + '\n';
    }
    void table(const Cells& head, const std::vector<Cells>& rows) override
    {
        text += ".Bl -tag -width Ds\n";
        for (const Cells& cells : rows) {
            text += ".It Cm " + plain(cells.front()) + '\n';
            std::string line;
            for (size_t i = 1; i < cells.size(); ++i) {
                line += line.empty() || cells[i].empty() ? "" : "; ";
                line += (head[i] == "from" ? "from " : "") + cells[i];
            }
            text += plain(line) + '\n';
        }
        text += ".El\n";
    }

private:
    /// Without code spans, and with every sentence on a line of its own.
    static std::string plain(const std::string& words)
    {
        std::string result;
        for (const char letter : words) {
            if (letter == '`') continue;
            result += letter == ' ' && result.ends_with('.') ? '\n' : letter;
        }
        return result;
    }
};

std::string inCode(std::string_view text)
{
    return '`' + std::string(text) + '`';
}

void writeColumns(Markup& markup, std::span<const Column> columns)
{
    std::vector<Cells> rows;
    for (const Column& column : columns)
        rows.push_back({inCode(column.name), std::string(document::wordOf(column.type)),
                        std::string(column.unit), std::string(column.meaning), document::sourceOf(column)});
    markup.table({"column", "type", "unit", "meaning", "from"}, rows);
}

std::string timesOf(const PropertyRow& property)
{
    if (property.times == Times::any) return "any number of them";
    return property.times == Times::optional ? "may be missing" : "";
}

void writeProperties(Markup& markup, const KindRow& row)
{
    std::vector<Cells> rows;
    for (const PropertyRow& property : row.properties) {
        std::string remark = timesOf(property);
        if (property.order == Order::reversed)
            remark += remark.empty() ? "label before code" : ", label before code";
        rows.push_back({inCode(property.code), std::string(property.label), remark});
    }
    markup.paragraph("Its properties, in their order:");
    markup.table({"code", "label", "remark"}, rows);
}

std::string identityOf(const KindRow& row)
{
    std::string text;
    if (!row.serial.empty()) {
        text += " It is known again by " + inCode(row.serial);
        if (!row.model.empty()) text += " with " + inCode(row.model);
        text += '.';
    }
    if (!row.position.empty())
        text += " Its position, which stays when it is exchanged, is in " + inCode(row.position) + '.';
    return text;
}

void writeKind(Markup& markup, const std::string& word)
{
    const KindRow& row = document::rowOf(document::kindsOf(word).back());
    markup.subsection(std::string(row.singular));
    markup.paragraph("Kind " + inCode(row.word) + ", on the command line also " + inCode(word) +
                     ". Where it stands: " + document::placeOf(row) + '.' + identityOf(row));
    if (!row.columns.empty()) writeColumns(markup, row.columns);
    if (!row.properties.empty()) writeProperties(markup, row);
}

void writeTable(Markup& markup)
{
    markup.section("Columns of every kind");
    markup.paragraph(
        "A column whose value a document does not tell is empty in tables and CSV, and left out of JSON. "
        "A number is a whole number in the unit that the table says; what is no number there is none. "
        "Lists stand in tables and CSV with blanks between their items.");
    writeColumns(markup, document::commonColumns);
    markup.section("Kinds");
    for (const std::string& word : document::kindWords()) {
        if (word != "all") writeKind(markup, word);
    }
}

} // namespace

std::string page()
{
    Markdown markup;
    markup.text = "# Parts and columns\n";
    markup.paragraph(
        "What an inventory document can hold, and what `kord list`, `kord json` and everything made from "
        "them call it. This page is made from the table that the programs read with; `kord kinds` "
        "prints the same.");
    markup.paragraph(
        "One physical part is one row: elements of one kind with the same identifier and the same values "
        "but for the image are one part, which is within what the first of them is in, and belongs to "
        "the partitions of all. An element without identifier, serial number and part number stands for "
        "a part that is absent, and is no row.");
    writeTable(markup);
    return markup.text;
}

std::string manual()
{
    Manual markup;
    markup.text = ".Dd November 22, 2026\n.Dt KORD-PARTS 5\n.Os\n.Sh NAME\n.Nm kord-parts\n"
                  ".Nd parts of a storage facility and their columns\n.Sh DESCRIPTION\n";
    markup.paragraph("What an inventory document can hold, and what");
    markup.text +=
        ".Xr kord 1\ncalls it in tables, CSV and JSON.\n"
        "One physical part is one row: elements of one kind with the same identifier and the same\n"
        "values but for the image are one part.\n"
        "An element without identifier, serial number and part number stands for a part\n"
        "that is absent, and is no row.\n";
    writeTable(markup);
    markup.text += ".Sh SEE ALSO\n.Xr kord 1 ,\n.Xr kord-document 5\n";
    return markup.text;
}

} // namespace reference
