// What each line means, in an operator's words: a query's lines are told by what it asks for and how it goes
// on.

#include "tables.h"

#include <cstring>

namespace tables
{

namespace
{

/// What the lines of a role say, around the things that a query asks for: "%" stands for them.
struct RoleWords {
    const char* role;
    Explanation explanation;
};

constexpr const char* compare =
    "compare the selection before it with what the console shows; what is empty in it was missing "
    "in an earlier answer";

constexpr RoleWords roleWords[] = {
    {"entry", {.meaning = "a function begins"}},
    {"selection", {.meaning = "asks for %: with which selection"}},
    {"callFailed", {.meaning = "the call for % failed: its code and the resource manager's message"}},
    {"noResources", {.meaning = "nothing came back for %"}},
    {"response",
     {.meaning = "the first answer for % is in error: its number and message",
      .cause = "the resource manager knows of them, but cannot tell their values now: the message says why",
      .advice =
          "act on the message; ask the resource manager for the class with the selection before it, to see "
          "whether the error lasts"}},
    {"emptyFirst",
     {.meaning = "the first answer for % holds nothing",
      .cause = "the resource manager is still reading the part, or the part is only half configured",
      .advice = "wait until the console shows the part with its values, then run again"}},
    {"success", {.meaning = "how many came back for %, and how many attributes the first has"}},
    {"total", {.meaning = "the count of %, and in how many answers"}},
    {"progress", {.meaning = "they are written"}},
    {"unexpected", {.meaning = "the answer for % is not as it must be"}},
    {"sessionStart", {.meaning = "the % session is opened"}},
    {"sessionStartFailed", {.meaning = "the % session did not open: code and message; the run fails"}},
    {"sessionEnd", {.meaning = "the % session is ended"}},
    {"sessionEndFailed",
     {.meaning = "the % session did not end: code and message; an event is filed, and the run's status stays",
      .cause = "the resource manager went away or dropped the session before the run's end",
      .advice = "nothing, when the run ended well and the next one does; else see why the resource manager "
                "restarted"}},
};

/// Why calls and starts of a session fail.
struct ScopeWords {
    uint32_t scope;
    Explanation call;
    Explanation start;
};

constexpr ScopeWords scopeWords[] = {
    {1,
     {.cause = "the resource manager on the console was stopped or restarted after the session had opened",
      .advice =
          "see on the console that the resource manager runs and lists its managed nodes, then run again"},
     {.cause = "the resource manager on the console does not run, or is just starting",
      .advice = "see on the console that the resource manager runs, then run again"}},
    {2,
     {.cause =
          "the resource manager was restarted, or does not serve the class: what the code and message say",
      .advice = "see on the console that the resource manager serves the class of the line's function in "
                "shared-resource "
                "scope, then run again"},
     {.cause = "the resource manager runs, but its shared resources are not ready, as in the minutes after "
               "its start",
      .advice = "wait until the console shows the facility's resources, then run again"}},
    {4,
     {.cause = "no node of the image's domain can be reached, or the domain session never opened, of which "
               "no line "
               "tells (kord explain does)",
      .advice =
          "see that a node of the domain in the selection is online and reachable from the console, then run "
          "again"},
     {.cause = "the resource manager refused the session: it knows no domain that is online",
      .advice =
          "see that the facility's partitions are online and their domains listed on the console, then run "
          "again"}},
};

const ScopeWords& wordsOf(const ValeSessionHandle kordRec::*session)
{
    uint32_t scope = 0;
    for (const Session& known : allSessions) {
        if (known.handle == session) scope = known.scope;
    }
    for (const ScopeWords& words : scopeWords) {
        if (words.scope == scope) return words;
    }
    return scopeWords[0];
}

std::string filled(std::string_view text, const std::string& things)
{
    std::string result(text);
    const size_t at = result.find('%');
    return at == std::string::npos ? result : result.replace(at, 1, things);
}

/// What becomes of the run: "The run fails." and the event.
std::string consequence(const ToldEnd& end)
{
    const bool files = end.report.kind != Report::Kind::none;
    const std::string event = files ? std::string(", event ") + eventOf(end.report.type).systemRefCode : "";
    if (end.result == failed) return "the run fails" + event;
    if (end.result == reported) return "the run goes on" + event;
    if (end.result != minorError) return "that counts as none";
    return "a minor error" + event + (end.instead.empty() ? "" : ", and an empty one is written");
}

std::string consequences(const std::vector<ToldEnd>& ends)
{
    std::string text;
    for (const ToldEnd& end : ends) {
        char number[40] = "";
        if (end.number != 0) formatText(number, "with 0x%x ", end.number);
        const char* otherwise = end.number == 0 && ends.size() > 1 ? "else " : "";
        text += "; " + std::string(number) + otherwise + consequence(end);
    }
    return text;
}

void complete(Words& words, const Explanation& by, const std::string& things)
{
    if (words.meaning.empty()) words.meaning = filled(by.meaning, things);
    if (words.cause.empty()) words.cause = by.cause;
    if (words.advice.empty()) words.advice = by.advice;
}

const Explanation& wordsOf(const char* role)
{
    constexpr static Explanation none;
    for (const RoleWords& words : roleWords) {
        if (strcmp(words.role, role) == 0) return words.explanation;
    }
    return none;
}

} // namespace

Words wordsOf(const Explanation& explanation)
{
    return {.meaning = explanation.meaning, .cause = explanation.cause, .advice = explanation.advice};
}

const EventKind& eventOf(std::string_view type)
{
    for (const EventKind& kind : addErrLogEvents) {
        if (kind.errortype != nullptr && type == kind.errortype) return kind;
    }
    return addErrLogEvents.back();
}

void tellQuery(QueryLines& query, const ToldSubject& subject)
{
    const bool isNamed = *subject.things != '\0';
    query.things = isNamed ? subject.things : query.query->className;
    query.of = subject.of;
    const std::string things = query.things + (query.of.empty() ? "" : " of " + query.of);
    for (Line& line : query.lines) {
        const std::string_view role = line.role;
        if (role == "noResources" || role == "unexpected") complete(line.words, subject.none, "");
        if (role == "noResources") complete(line.words, {.advice = compare}, "");
        if (role == "callFailed") complete(line.words, wordsOf(query.query->session).call, "");
        complete(line.words, wordsOf(line.role), things);
        line.words.meaning += consequences(line.ends);
    }
}

void tellSession(Line& line, const Session& session)
{
    if (strcmp(line.role, "sessionStartFailed") == 0) complete(line.words, wordsOf(session.handle).start, "");
    complete(line.words, wordsOf(line.role), session.name);
}

} // namespace tables
