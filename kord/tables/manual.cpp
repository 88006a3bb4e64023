// docs/man/kord-codes.7.

#include "tables.h"

#include <algorithm>
#include <cstdio>

namespace tables
{

namespace
{

/// A text that a manual page shows as it is.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char character : text) {
        if (character == '\n') continue;
        if (character == '\\')
            result += "\\e";
        else if (character == '"')
            result += "\\(dq";
        else if (character == '-')
            result += "\\-";
        else
            result += character;
    }
    return result;
}

/// Text in lines of a page's width, none of which a request or a macro begins.
void printText(std::string_view text)
{
    constexpr size_t width = 78;
    while (!text.empty()) {
        size_t length = text.size() <= width ? text.size() : text.rfind(' ', width);
        if (length == std::string_view::npos) length = text.size();
        const bool obeys = text.starts_with('.') || text.starts_with('\'');
        printf("%s%s\n", obeys ? "\\&" : "", escaped(text.substr(0, length)).c_str());
        text.remove_prefix(std::min(text.size(), length + 1));
    }
}

void printWords(const Words& words)
{
    if (!words.meaning.empty()) printText(words.meaning + ".");
    if (!words.cause.empty()) {
        printf(".br\n.Em Usual\\ cause :\n");
        printText(words.cause + ".");
    }
    if (!words.advice.empty()) {
        printf(".br\n.Em What\\ to\\ do :\n");
        printText(words.advice + ".");
    }
}

void printEvents()
{
    printf(".Sh REFERENCE CODES OF EVENTS\n.Bl -tag -width Ds\n");
    for (const EventKind& kind : addErrLogEvents) {
        printf(".It Sy %s Pq type %s\n", kind.systemRefCode,
               kind.errortype != nullptr ? kind.errortype : "any other");
        printText(std::string(kind.text) + ":");
        printWords(wordsOf(kind.explanation));
    }
    printf(".El\n");
}

} // namespace

void printManual()
{
    printf(".\\\" Made by kord-tables --manual; a test compares.\n"
           ".Dd November 22, 2026\n.Dt KORD-CODES 7\n.Os\n.Sh NAME\n.Nm kord-codes\n"
           ".Nd trace codes and reference codes of the inventory collector\n"
           ".Sh DESCRIPTION\n"
           "A code stands behind the time in a line of the trace log of\n.Xr addTarnKord 8 .\n"
           "%%d and %%s stand for what the run fills in.\n"
           ".Xr kord 1\n.Cm explain\nfinds the lines of a run that matter, and what belongs to them.\n"
           ".Sh TRACE CODES\n.Bl -tag -width Ds\n");
    for (const Line& line : linesByCode()) {
        printf(".It Sy \"%s\" Ql \"%s\"\n", escaped(line.text.code).c_str(),
               escaped(line.text.format).c_str());
        printf("By\n.Fn %s :\n", line.function.c_str());
        printWords(line.words);
    }
    printf(".El\n");
    printEvents();
    printf(".Sh SEE ALSO\n.Xr kord 1 ,\n.Xr addTarnKord 8\n");
}

} // namespace tables
