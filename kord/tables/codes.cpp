// docs/codes.md.

#include "tables.h"

#include <cstdio>

namespace tables
{

namespace
{

void printText(const char* text)
{
    fputs(text, stdout);
}

/// A text as it stands in a cell.
std::string cell(std::string_view text)
{
    std::string result;
    for (const char character : text) {
        if (character == '\n') continue;
        if (character == '|') result += '\\';
        result += character;
    }
    return result;
}

std::string codeSpan(std::string_view text)
{
    return "`" + cell(text) + "`";
}

void printRow(std::initializer_list<std::string> cells)
{
    for (const std::string& each : cells)
        printf("| %s ", each.c_str());
    printText("|\n");
}

void printHeading(const char* title, const char* words, std::initializer_list<std::string> columns)
{
    printf("\n## %s\n\n", title);
    if (*words != '\0') printf("%s\n\n", words);
    printRow(columns);
    for (size_t i = 0; i < columns.size(); ++i)
        printText("|---");
    printText("|\n");
}

void printLines()
{
    for (const Line& line : linesByCode()) {
        printRow({codeSpan(line.text.code), codeSpan(line.text.format), codeSpan(line.function),
                  cell(line.words.meaning), cell(line.words.cause), cell(line.words.advice)});
    }
}

void printElements()
{
    for (const Element& element : allElements()) {
        if (element.properties.empty()) continue;
        std::string properties;
        for (const ElementProperty& property : element.properties) {
            if (!properties.empty()) properties += ", ";
            properties += codeSpan(property.code) + " " + property.label;
            if (property.reversed) properties += " (reversed)";
        }
        const std::string writer = codeSpan(element.writer);
        if (element.kind == "property")
            printRow({"property by itself, " + writer, properties});
        else
            printRow({element.name.empty() ? "named by the console, " + writer : element.name, properties});
    }
}

} // namespace

void printCodes()
{
    printText("# Codes\n\nMade from the collector's own tables by `kord-tables`; a test compares.\n");
    printHeading("Trace codes",
                 "A code stands behind the time in a line of the trace log; some carry a blank before the "
                 "colon. `%d` and `%s` stand for what the run fills in.",
                 {"code", "text", "by", "meaning", "usual cause", "what to do"});
    printLines();
    printHeading("Reference codes of events", "",
                 {"code", "type", "text", "meaning", "usual cause", "what to do"});
    for (const EventKind& kind : addErrLogEvents) {
        printRow({codeSpan(kind.systemRefCode),
                  kind.errortype != nullptr ? codeSpan(kind.errortype) : "any other", kind.text,
                  cell(kind.explanation.meaning), cell(kind.explanation.cause),
                  cell(kind.explanation.advice)});
    }
    printHeading("Elements of the document",
                 "The properties of each element, in their order. *Reversed*: the label stands in `name`, "
                 "the code in `displayName`.",
                 {"element", "properties"});
    printElements();
}

} // namespace tables
