// Everything that the tables know, as JSON.

#include "tables.h"

#include <cstdio>
#include <type_traits>

namespace tables
{

namespace
{

/// Writes JSON to standard output, indented; a member or element at a time.
class Writer
{
public:
    void text(const char* key, std::string_view value)
    {
        start(key);
        print(value);
    }
    void textOrNull(const char* key, const char* value)
    {
        if (value != nullptr) return text(key, value);
        start(key);
        fputs("null", stdout);
    }
    void number(const char* key, int64_t value)
    {
        start(key);
        printf("%lld", static_cast<long long>(value));
    }
    void truth(const char* key, bool value)
    {
        start(key);
        fputs(value ? "true" : "false", stdout);
    }
    template <typename Content>
    void object(const char* key, Content content)
    {
        nest(key, '{', '}', content);
    }
    template <typename Items, typename Content>
    void list(const char* key, const Items& items, Content content)
    {
        nest(key, '[', ']', [&] {
            for (const auto& item : items)
                object(nullptr, [&] { content(item); });
        });
    }

private:
    int depth = 0;
    bool first = true;

    void start(const char* key)
    {
        if (depth > 0) printf("%s\n%*s", first ? "" : ",", depth, "");
        first = false;
        if (key == nullptr) return;
        print(key);
        fputs(": ", stdout);
    }
    template <typename Content>
    void nest(const char* key, char open, char close, Content content)
    {
        start(key);
        putchar(open);
        ++depth;
        first = true;
        content();
        --depth;
        if (!first) printf("\n%*s", depth, "");
        putchar(close);
        first = false;
    }
    static void print(std::string_view value)
    {
        putchar('"');
        for (const char character : value) {
            if (character == '"' || character == '\\')
                printf("\\%c", character);
            else if (static_cast<unsigned char>(character) < ' ')
                printf("\\u%04x", character);
            else
                putchar(character);
        }
        putchar('"');
    }
};

const char* nameOf(Call call)
{
    switch (call) {
    case Call::persistentQuery:
        return "persistent query";
    case Call::dynamicQuery:
        return "dynamic query";
    case Call::enumeration:
        return "enumeration";
    case Call::action:
        return "action";
    }
    return "";
}

const char* nameOfResult(int32_t result)
{
    switch (result) {
    case failed:
        return "fatal";
    case minorError:
        return "minor";
    case reported:
        return "reported";
    default:
        return "none";
    }
}

const Session& sessionOf(const Query& query)
{
    for (const Session& session : allSessions) {
        if (session.handle == query.session) return session;
    }
    return allSessions.front();
}

/// What a row's field takes: "text", "integer", or null where the attribute is never read.
const char* typeOf(const Attribute& attribute)
{
    alignas(std::max_align_t) static char item[1U << 16U];
    if (attribute.field.of == nullptr) return nullptr;
    return attribute.field.of(item).integer != nullptr ? "integer" : "text";
}

void writeAttribute(Writer& json, const Attribute& attribute)
{
    json.text("name", attribute.name);
    json.textOrNull("field", typeOf(attribute));
    json.truth("readByItsOwn", attribute.read != nullptr);
    json.textOrNull("matched", attribute.matched);
    json.truth("kept", attribute.kept);
}

void writeWords(Writer& json, const Words& words)
{
    json.text("meaning", words.meaning);
    json.text("cause", words.cause);
    json.text("advice", words.advice);
}

void writeReport(Writer& json, const Report& report)
{
    const EventKind& event = eventOf(report.type);
    json.text("name", report.name);
    json.text("type", report.type);
    json.text("referenceCode", event.systemRefCode);
    json.truth("withMessage", report.kind == Report::Kind::withMessage);
}

void writeEnd(Writer& json, const ToldEnd& end)
{
    if (end.number != 0) json.number("number", end.number);
    json.text("result", nameOfResult(end.result));
    json.truth("flag", end.flag);
    if (end.report.kind != Report::Kind::none) json.object("report", [&] { writeReport(json, end.report); });
    if (!end.instead.empty()) json.text("instead", end.instead);
    if (end.print != nullptr) json.text("print", end.print);
}

void writeLine(Writer& json, const Line& line)
{
    json.text("role", line.role);
    json.text("code", line.text.code);
    json.text("format", line.text.format);
    writeWords(json, line.words);
    if (line.session != nullptr) json.text("session", line.session);
    if (line.ends.empty()) return;
    json.list("ends", line.ends, [&](const ToldEnd& end) { writeEnd(json, end); });
}

void writeQuery(Writer& json, const QueryLines& told)
{
    const Query& query = *told.query;
    json.text("module", told.module);
    json.text("function", told.function);
    json.text("class", query.className);
    json.text("session", sessionOf(query).name);
    json.number("scope", sessionOf(query).scope);
    json.text("call", nameOf(query.call));
    json.truth("counter", told.isCounter);
    json.text("things", told.things);
    json.text("of", told.of);
    json.textOrNull("selection", query.selection);
    json.textOrNull("action", query.action);
    json.list("attributes", query.attributes, [&](const Attribute& row) { writeAttribute(json, row); });
    json.list("lines", told.lines, [&](const Line& line) { writeLine(json, line); });
}

void writeEvents(Writer& json)
{
    json.list("events", addErrLogEvents, [&](const EventKind& kind) {
        json.textOrNull("type", kind.errortype);
        json.text("referenceCode", kind.systemRefCode);
        json.text("text", kind.text);
        writeWords(json, wordsOf(kind.explanation));
    });
}

void writeRun(Writer& json)
{
    json.list("sessions", allSessions, [&](const Session& session) {
        json.text("name", session.name);
        json.number("scope", session.scope);
    });
    json.list("checks", addTarnChecks, [&](const ToldChecks& told) {
        json.text("when", told.when);
        json.list("checks", told.checks, [&](const Check& check) {
            json.text("function", check.name);
            json.text("message", check.message);
        });
    });
    json.list("commands", allCommands(), [&](const ToldCommand& command) {
        json.text("function", command.function);
        json.text("command", std::string(command.command) + command.arguments);
    });
}

void writeElements(Writer& json)
{
    json.list("elements", allElements(), [&](const Element& element) {
        json.text("writer", element.writer);
        json.text("kind", element.kind);
        json.text("name", element.name);
        json.text("trace", element.trace);
        json.list("properties", element.properties, [&](const ElementProperty& property) {
            json.text("code", property.code);
            json.text("label", property.label);
            json.truth("reversed", property.reversed);
        });
    });
}

} // namespace

void printJson()
{
    Writer json;
    json.object(nullptr, [&] {
        json.list("queries", allQueries(), [&](const QueryLines& query) { writeQuery(json, query); });
        json.list("lines", otherLines(), [&](const Line& line) {
            json.text("module", line.module);
            json.text("function", line.function);
            writeLine(json, line);
        });
        writeEvents(json);
        writeRun(json);
        writeElements(json);
    });
    putchar('\n');
}

} // namespace tables
