// What the collector's tables know, gathered for the two forms in which it is written: docs/codes.md and
// JSON.

#pragma once

#include "addQueryTableKord.h"
#include "addSessionKord.h"
#include "addTarnKord.h"

#include <string>
#include <vector>

namespace tables
{

/// How a failure goes on behind its trace line.
struct ToldEnd {
    uint32_t number = 0; ///< the resource manager's error number; 0: any
    Report report;       ///< complete
    int32_t result;
    bool flag;
    std::string instead; ///< what is written in the document in place of resources
    const char* print;   ///< also printed on standard output; null: nothing
};

/// What is told of a line or an event.
struct Words {
    std::string meaning;
    std::string cause;
    std::string advice;
};

/// One trace line.
struct Line {
    std::string module;
    std::string function;
    const char* role;
    TraceText text;
    Words words;
    const char* session = nullptr;  ///< that is opened or ended there
    std::vector<ToldEnd> ends = {}; ///< of a failure: any error's last
};

/// One query with its lines.
struct QueryLines {
    std::string module;
    std::string function;
    const Query* query;
    bool isCounter = false;
    std::string things = {}; ///< what it asks for
    std::string of = {};
    std::vector<Line> lines = {};
};

struct ElementProperty {
    std::string code;
    std::string label;
    bool reversed; ///< the label stands in `name`, the code in `displayName`
};

/// One element of the document, as its writer writes it.
struct Element {
    const char* writer;
    std::string kind; ///< "list", "resource" or "property"
    std::string name; ///< the display name; "": the caller's
    std::string trace = {};
    std::vector<ElementProperty> properties = {};
};

Words wordsOf(const Explanation& explanation);
const EventKind& eventOf(std::string_view type);

/// Completes the words of a query's lines.
void tellQuery(QueryLines& query, const ToldSubject& subject);
void tellSession(Line& line, const Session& session);

std::vector<QueryLines> allQueries();

/// The lines that are no query's.
std::vector<Line> otherLines();

std::vector<ToldCommand> allCommands();
std::vector<Element> allElements();

/// What a function writes into the document.
std::string written(void (*write)(const kordRec*));

/// All lines that have a code, in the codes' order.
std::vector<Line> linesByCode();

void printCodes();
void printManual();
void printJson();

} // namespace tables
