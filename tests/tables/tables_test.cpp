// A class, an attribute or a session that a table names is the console's too, and what a run asks for and
// traces is what the tables tell.

#include "consoleRun.h"
#include "parseJson.h"
#include "pattern.h"
#include "tempFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

namespace
{

using kordTest::Pattern;
using Json = nlohmann::json;
using Names = std::set<std::string>;

const std::filesystem::path source = KORD_SOURCE_DIR;
const std::filesystem::path build = KORD_BUILD_DIR;

const Json& tables()
{
    static const Json told = [] {
        const kordTest::Outcome outcome =
            kordTest::runProcess({.arguments = {build / "bin/kord-tables", "--json"}, .folder = build});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        return kordTest::parseJson(outcome.output);
    }();
    return told;
}

/// The form of a class in the schema of facility files: its scope, its attributes with their types.
struct ClassForm {
    int scope = 0;
    std::map<std::string, std::string> attributes;
};

std::map<std::string, ClassForm> classesOfSchema()
{
    std::map<std::string, ClassForm> classes;
    const Json schema =
        kordTest::parseJson(kordTest::readFile(source / "console/schema/facility.schema.json").value());
    for (const auto& [name, form] : schema["properties"]["resources"]["properties"].items()) {
        ClassForm& read = classes[name];
        read.scope = form["x-scope"];
        for (const auto& [attribute, type] : form["items"]["properties"].items()) {
            const std::string definition = type["$ref"];
            read.attributes[attribute] = definition.substr(definition.rfind('/') + 1);
        }
    }
    return classes;
}

/// The attributes that a selection compares.
Names attributesOf(const std::string& selection)
{
    static const Pattern comparison(R"((\w+) ?(=\?|[=<>!]))");
    Names names;
    for (const Pattern::Match& match : comparison.all(selection))
        names.insert(match[1]);
    return names;
}

std::string nameOf(const Json& query)
{
    return query["function"].get<std::string>() + ", " + query["class"].get<std::string>();
}

TEST(Tables, nameClassesInTheSessionThatServesThem)
{
    const auto classes = classesOfSchema();
    Names asked;
    for (const Json& query : tables()["queries"]) {
        ASSERT_TRUE(classes.contains(query["class"])) << nameOf(query);
        EXPECT_EQ(query["scope"], classes.at(query["class"]).scope) << nameOf(query);
        asked.insert(query["class"]);
    }
    for (const auto& [name, form] : classes)
        EXPECT_TRUE(asked.contains(name)) << name << " is asked for by no query";
}

TEST(Tables, nameAttributesThatTheirClassesHave)
{
    const auto classes = classesOfSchema();
    for (const Json& query : tables()["queries"]) {
        const auto& attributes = classes.at(query["class"]).attributes;
        for (const Json& row : query["attributes"])
            EXPECT_TRUE(attributes.contains(row["name"])) << nameOf(query) << ": " << row["name"];
        if (query["selection"].is_null()) continue;
        for (const std::string& name : attributesOf(query["selection"]))
            EXPECT_TRUE(attributes.contains(name)) << nameOf(query) << " selects by " << name;
    }
}

TEST(Tables, readAttributesIntoFieldsOfTheirType)
{
    const std::map<std::string, std::string> fields = {
        {"text", "text"}, {"integer", "integer"}, {"unsigned", "integer"}};
    const auto classes = classesOfSchema();
    for (const Json& query : tables()["queries"]) {
        for (const Json& row : query["attributes"]) {
            if (row["field"].is_null()) continue;
            const std::string& type = classes.at(query["class"]).attributes.at(row["name"]);
            const bool isList = !fields.contains(type);
            EXPECT_TRUE(isList ? row["readByItsOwn"] == true : row["field"] == fields.at(type))
                << nameOf(query) << ": " << row["name"] << " is " << type;
        }
    }
}

/// The names of all that a value holds, as OUTER.INNER.
void collectNames(const Json& value, const std::string& outer, Names& names)
{
    if (!value.is_structured()) return;
    for (const auto& [key, inner] : value.items()) {
        const std::string name = value.is_array() ? outer : outer + "." + key;
        names.insert(name);
        collectNames(inner, name, names);
    }
}

/// What reads the tables goes by these names.
TEST(Tables, nameWhatTheyTell)
{
    const std::map<std::string, std::string> wanted = {
        {"queries",
         "module function class session scope call counter things of selection action attributes lines"},
        {"queries.attributes", "name field readByItsOwn matched kept"},
        {"queries.lines", "role code format meaning cause advice ends"},
        {"queries.lines.ends", "number result flag report instead print"},
        {"queries.lines.ends.report", "name type referenceCode withMessage"},
        {"lines", "module function role code format meaning cause advice session"},
        {"events", "type referenceCode text meaning cause advice"},
        {"sessions", "name scope"},
        {"checks", "when checks"},
        {"checks.checks", "function message"},
        {"commands", "function command"},
        {"elements", "writer kind name trace properties"},
        {"elements.properties", "code label reversed"}};
    Names expected;
    for (const auto& [outer, inner] : wanted) {
        std::istringstream words(inner);
        expected.insert("." + outer);
        for (std::string word; words >> word;)
            expected.insert("." + outer + "." + word);
    }
    Names told;
    collectNames(tables(), "", told);
    EXPECT_EQ(told, expected);
}

TEST(Tables, nameTheirModulesFiles)
{
    for (const char* list : {"queries", "lines"}) {
        for (const Json& row : tables()[list]) {
            const std::string module = row["module"];
            EXPECT_TRUE(std::filesystem::exists(source / "kord/c" / (module + ".cpp"))) << module;
        }
    }
}

TEST(Tables, nameTheWritersOfElements)
{
    const std::string header = kordTest::readFile(source / "kord/c/addXmlKord.h").value();
    Names writers;
    for (const Json& element : tables()["elements"]) {
        const std::string writer = element["writer"];
        EXPECT_NE(header.find(" " + writer + "(const kordRec*"), std::string::npos) << writer;
        writers.insert(writer);
    }
    EXPECT_EQ(writers.size(), tables()["elements"].size());
}

/// Who reads of a failure wants to know what it means, where it comes from and what to do.
TEST(Tables, explainEveryLineAndAdviseOnEveryFailure)
{
    const auto expectWords = [](const Json& line, const std::string& name, bool isFailure) {
        EXPECT_NE(line["meaning"], "") << name << line["format"];
        if (!isFailure) return;
        EXPECT_NE(line["cause"], "") << name << line["format"];
        EXPECT_NE(line["advice"], "") << name << line["format"];
    };
    for (const Json& query : tables()["queries"]) {
        for (const Json& line : query["lines"])
            expectWords(line, nameOf(query), line.contains("ends"));
    }
    for (const Json& line : tables()["lines"])
        expectWords(line, line["code"],
                    line["role"].get<std::string>().ends_with("Failed") || line["cause"] != "");
    for (const Json& event : tables()["events"])
        expectWords(event, event["referenceCode"], true);
}

/// Who reads a trace tells by these which session a line is about.
TEST(Tables, nameTheSessionOfEveryLineAboutOne)
{
    std::map<std::string, std::string> sessions;
    for (const Json& line : tables()["lines"]) {
        const std::string role = line["role"];
        EXPECT_EQ(line.contains("session"), role.starts_with("session")) << role << line["format"];
        if (role == "sessionStart" || role == "sessionEnd") sessions[line["format"]] = line["session"];
    }
    EXPECT_EQ(sessions,
              (std::map<std::string, std::string>{{"start local session ", "local"},
                                                  {"start DM session ", "domain"},
                                                  {"start share resource session ", "shared resource"},
                                                  {"LC vale_end_session", "local"},
                                                  {"DM vale_end_session", "domain"},
                                                  {"SR vale_end_session", "shared resource"}}));
}

/// Advice that stands for every failure alike is none.
TEST(Tables, tellEveryQuerysEmptyAnswerInWordsOfItsOwn)
{
    std::map<std::string, std::string> known;
    for (const Json& query : tables()["queries"]) {
        for (const Json& line : query["lines"]) {
            if (line["role"] != "noResources" || query["counter"]) continue;
            const auto [at, isNew] = known.emplace(line["cause"], query["class"]);
            EXPECT_TRUE(isNew || at->second == query["class"].get<std::string>()) << nameOf(query);
        }
    }
    EXPECT_GT(known.size(), 25U);
}

TEST(Tables, refuseOtherArguments)
{
    const kordTest::Outcome outcome =
        kordTest::runProcess({.arguments = {build / "bin/kord-tables", "--xml"}, .folder = build});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "usage: kord-tables [--json | --manual]\n");
}

TEST(Tables, tellEveryCommandUnderTheFunctionThatRunsIt)
{
    std::multiset<std::pair<std::string, std::string>> told;
    for (const Json& command : tables()["commands"]) {
        for (const char* program : {"qmstat", "chown", "qconvpd", "pmProblemEventPoster", "whoami", "/rm"}) {
            if (command["command"].get<std::string>().find(program) != std::string::npos)
                told.emplace(command["function"], program);
        }
    }
    const decltype(told) expected = {{"checkSystemState", "qmstat"},
                                     {"changeGroup", "chown"},
                                     {"getQuayFullTM", "qconvpd"},
                                     {"getQuaySE", "qconvpd"},
                                     {"getQuayTM", "qconvpd"},
                                     {"handleErrKord", "pmProblemEventPoster"},
                                     {"handleErrKord", "pmProblemEventPoster"},
                                     {"handleErrKord_new", "pmProblemEventPoster"},
                                     {"handleErrKord_new", "pmProblemEventPoster"},
                                     {"getLoginUserName", "whoami"},
                                     {"addTrcKord", "/rm"}};
    EXPECT_EQ(told, expected);
}

TEST(Tables, knowTheEventOfEveryReport)
{
    std::map<std::string, Json> events;
    for (const Json& event : tables()["events"])
        events[event["referenceCode"]] = event["type"];
    EXPECT_EQ(events.size(), 6U);
    for (const Json& query : tables()["queries"]) {
        for (const Json& line : query["lines"]) {
            for (const Json& end : line.value("ends", Json::array())) {
                if (!end.contains("report")) continue;
                const Json& report = end["report"];
                EXPECT_EQ(events[report["referenceCode"]], report["type"]) << nameOf(query);
            }
        }
    }
}

/// A regular expression of the texts that a trace format makes.
Pattern textsOf(const std::string& format)
{
    static const Pattern special(R"([.^$|()\[\]{}*+?\\])");
    static const Pattern conversion("%[sdu]");
    return Pattern(conversion.replaced(special.replaced(format, R"(\$&)"), "[^]*"));
}

/// The told lines by their codes.
std::multimap<std::string, Pattern> toldLines()
{
    std::multimap<std::string, Pattern> lines;
    const auto add = [&](const Json& line) { lines.emplace(line["code"], textsOf(line["format"])); };
    for (const Json& query : tables()["queries"])
        std::ranges::for_each(query["lines"], add);
    std::ranges::for_each(tables()["lines"], add);
    return lines;
}

bool isTold(const std::multimap<std::string, Pattern>& told, const std::string& line)
{
    const size_t colon = line.find(": ");
    const auto [begin, end] = told.equal_range(line.substr(0, colon));
    return std::any_of(begin, end, [text = line.substr(colon + 2)](const auto& known) {
        return known.second.matches(text);
    });
}

/// A call of the journal, as far as a table decides it.
std::string callOf(const std::string& kind, const Json& scope, const std::string& className,
                   const std::string& attributes)
{
    return kind + " " + scope.dump() + " " + className + " " + attributes;
}

Names toldCalls()
{
    const std::map<std::string, std::string> names = {{"persistent query", "query_p_select"},
                                                      {"dynamic query", "query_d_select"},
                                                      {"enumeration", "enumerate_resources"},
                                                      {"action", "invoke_action"}};
    Names calls;
    for (const Json& query : tables()["queries"]) {
        Json attributes = Json::array();
        for (const Json& row : query["attributes"])
            attributes.push_back(row["name"]);
        calls.insert(callOf(names.at(query["call"]), query["scope"], query["class"], attributes.dump()));
    }
    return calls;
}

class Runs : public testing::TestWithParam<const char*>
{
protected:
    const std::string mtms = "9999-B2C*7ABCD12";
    kordTest::TempFolder root;

    void SetUp() override
    {
        const kordTest::Outcome outcome =
            kordTest::runOnConsole({.console = build / "bin/kord-console",
                                    .facility = source / "console/facilities" / GetParam(),
                                    .root = root.path(),
                                    .folder = source,
                                    .user = {},
                                    .program = {build / "bin/addTarnKord", "-t", mtms}});
        ASSERT_EQ(outcome.status, 3) << outcome.output << outcome.error;
    }
};

TEST_P(Runs, askForWhatTheTablesTell)
{
    const Names told = toldCalls();
    size_t calls = 0;
    for (const Json& line : kordTest::readJournal(root.path())) {
        if (!line.contains("class")) continue;
        const Json attributes = line.value("attributes", Json::array());
        const std::string call = callOf(line["vale"], line["scope"], line["class"], attributes.dump());
        EXPECT_TRUE(told.contains(call)) << call;
        EXPECT_EQ(line["result"], 0) << call;
        ++calls;
    }
    EXPECT_GT(calls, 30U);
}

TEST_P(Runs, traceWhatTheTablesTell)
{
    const auto told = toldLines();
    size_t lines = 0;
    for (const kordTest::TraceLine& line : kordTest::readTrace(kordTest::traceFile(root.path(), mtms))) {
        const std::string text = line.joined();
        if (text.starts_with("==>") || text.starts_with(">>")) continue;
        EXPECT_TRUE(isTold(told, text)) << text;
        ++lines;
    }
    EXPECT_GT(lines, 30U);
}

INSTANTIATE_TEST_SUITE_P(OfTheBundledFacilities, Runs, testing::Values("small.json", "facility.json"),
                         [](const auto& run) {
                             const std::string name = run.param;
                             return name.substr(0, name.find('.'));
                         });

/// Byte for byte, for whoever matches them.
TEST(Tables, linesOnStandardOutputStandOnTheOperatorsPages)
{
    const std::string page = kordTest::readFile(source / "docs/operating.md").value();
    const std::string manual = kordTest::readFile(source / "docs/man/addTarnKord.8").value();
    size_t count = 0;
    for (const Json& part : tables()["checks"]) {
        for (const Json& check : part["checks"]) {
            const std::string line = check["message"].get<std::string>().substr(
                0, check["message"].get<std::string>().rfind('\n'));
            EXPECT_NE(page.find("| `" + line + "` |"), std::string::npos) << line;
            EXPECT_NE(manual.find(".It \"" + line + "\"\n"), std::string::npos) << line;
            ++count;
        }
    }
    EXPECT_EQ(count, 12U);
}

} // namespace
