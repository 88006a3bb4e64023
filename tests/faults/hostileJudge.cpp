#include "hostileJudge.h"

#include <algorithm>
#include <set>

#include "documentReader.h"
#include "hostileValues.h"
#include "judge.h"
#include "mendedDocument.h"
#include "parseJson.h"
#include "partsCheck.h"
#include "pattern.h"

namespace sweep
{

namespace
{

void broken(Findings& findings, const std::string& what)
{
    findings.push_back({Kind::broken, what});
}

// ---- end ----

constexpr const char* built = "XML file was built successfully. This is the normal return.";

constexpr const char* failures[] = {
    "Start VALE session fails.", "Query Partner System fails.", "Check State fails.",
    "Query Partition fails.",    "Query VALE Id fails.",        "Query VALE Status fails. ",
    "Query VALE Status fails.",  "Add System Kord fails.",      "Query VALE Partner Status fails.",
};

/// The event tool's own output goes to the log as well, as it stands.
bool eventToolPrints(const Result& result)
{
    return std::ranges::any_of(result.facility["faults"], [](const json& rule) {
        const std::string program = rule.value("program", "");
        return program == "pmProblemEventPoster" || program == "mmquaycmd";
    });
}

// ---- arguments of programs ----

/// As a journal shows a text: each byte that is no UTF-8 by one replacement character; of a row of them, one.
std::string readable(const std::string& text)
{
    static const kordTest::Pattern row("(\ufffd)+");
    const json shown = kordTest::parseJson(json(text).dump(-1, ' ', false, json::error_handler_t::replace));
    return row.replaced(shown, "\ufffd");
}

/// Cut to a field of that size.
std::string cut(const std::string& text, size_t field)
{
    return text.substr(0, field - 1);
}

/// The texts that an attribute of a class has, as far as a field of 30 holds them.
std::set<std::string> fieldsOf(const json& facility, const std::string& className, const Texts& attributes)
{
    std::set<std::string> texts;
    for (const json& resource : facility["resources"].value(className, json::array())) {
        for (const std::string& attribute : attributes) {
            texts.insert(readable(cut(resource.value(attribute, ""), 30)));
        }
    }
    return texts;
}

/// The texts that fault rules put into answers about a class, whatever the attribute: a partner is the first
/// text that is not the managed system.
std::set<std::string> answeredTexts(const json& facility, const std::string& className)
{
    std::set<std::string> texts;
    for (const json& rule : facility["faults"]) {
        if (rule.value("class", "") != className || !rule.contains("answer")) continue;
        for (const json& response : rule["answer"]) {
            for (const json& attribute : response.value("attributes", json::array())) {
                if (attribute[1].is_string())
                    texts.insert(readable(cut(attribute[1].get<std::string>(), 30)));
            }
        }
    }
    return texts;
}

/// The messages of the facility's fault rules.
std::set<std::string> messagesOf(const json& facility)
{
    std::set<std::string> messages;
    for (const json& rule : facility["faults"]) {
        for (const char* effect : {"error", "fails"}) {
            if (rule.contains(effect)) messages.insert(rule[effect].value("message", ""));
        }
    }
    return messages;
}

constexpr const char* fixedTexts[] = {
    "Expected resources were not found",
    "VALE call resulted in a non zero return value",
    "Unknown error",
    "Subsystem is degraded",
    "Invalid managed system MTMS",
    "Microcode logic error",
};

/// The texts that an event of this name can have: a fixed one, or a message without its last byte.
std::set<std::string> eventTexts(const json& facility, const std::string& name)
{
    constexpr size_t messageField = 500;
    std::set<std::string> texts;
    for (const char* text : fixedTexts) {
        texts.insert(name + " : " + text);
    }
    for (const std::string& message : messagesOf(facility)) {
        if (message.empty()) continue;
        const std::string taken = cut(message.substr(0, message.size() - 1), messageField);
        texts.insert(readable(cut(name + " : " + taken + " ", messageField)));
    }
    return texts;
}

/// The event tool's text, without the quotation marks around it. Its beginning is a function, a class or a
/// partition.
bool isEventText(const json& facility, const std::string& text)
{
    static const kordTest::Pattern plain("[A-Za-z0-9._]+");
    std::set<std::string> names = fieldsOf(facility, "Orvik.TarnStorageFacilityPartition", {"lparName"});
    names.insert(""); // of a partition in no slot
    if (const std::string name = text.substr(0, text.find(" : ")); plain.matches(name)) names.insert(name);
    return std::ranges::any_of(names, [&](const std::string& name) {
        return text.starts_with(name + " : ") && eventTexts(facility, name).contains(readable(text));
    });
}

void checkEvent(const Plan& plan, const Result& result, const Texts& arguments, Findings& findings)
{
    const Event event = eventOf(arguments, plan.arguments.at(1));
    if (!event.wellFormed) {
        return broken(findings, "an event's arguments are " + json(arguments).dump().substr(0, 400));
    }
    const std::string& text = event.text;
    const bool quoted = text.size() >= 2 && text.starts_with('"') && text.ends_with('"');
    if (!quoted || !isEventText(result.facility, text.substr(1, text.size() - 2))) {
        broken(findings, "an event's text is " + json(text).dump().substr(0, 400));
    }
}

void checkState(const Plan& plan, const Result& result, const Texts& arguments, Findings& findings)
{
    std::set<std::string> systems =
        fieldsOf(result.facility, "Orvik.TarnStorageFacility", {"managedSystem0MTMS", "managedSystem1MTMS"});
    systems.merge(answeredTexts(result.facility, "Orvik.TarnStorageFacility"));
    systems.insert({systemOf(plan.arguments.at(1)), ""});
    const std::string system = arguments.size() > 3 ? arguments[3] : "";
    if (arguments != Texts{"-r", "sys", "-m", system, "-F", "state"} || !systems.contains(readable(system))) {
        broken(findings, "a state's arguments are " + json(arguments).dump().substr(0, 400));
    }
}

void checkProgram(const Plan& plan, const Result& result, std::string program, Texts arguments,
                  Findings& findings)
{
    if (program == "/opt/tarnquay/bin/mmquaycmd" && !arguments.empty()) {
        program = arguments.front();
        arguments.erase(arguments.begin());
    }
    if (program == "/opt/tarnquay/bin/pmProblemEventPoster") {
        checkEvent(plan, result, arguments, findings);
    } else if (program == "/opt/brisk/bin/qmstat") {
        checkState(plan, result, arguments, findings);
    } else if (program == "/opt/brisk/bin/qconvpd" ? arguments != Texts{"-v"}
                                                   : program != "whoami" || !arguments.empty()) {
        broken(findings, program + " was run with " + json(arguments).dump().substr(0, 400));
    }
}

// ---- document ----

/// The texts of the power parts that the collector itself rids of angle brackets.
bool isCleaned(const std::string& className, const std::string& attribute)
{
    static const std::map<std::string, std::set<std::string>> cleaned = {
        {"Orvik.TarnPPS", {"partNumber", "serialNumber", "ecLevel", "flashFirmwareLevel"}},
        {"Orvik.TarnBattery", {"ecLevel", "partNumber"}},
        {"Orvik.TarnRPC", {"ecLevel", "partNumber", "serialNumber"}},
    };
    const auto found = cleaned.find(className);
    return found != cleaned.end() && found->second.contains(attribute);
}

void replaceTexts(json& value, bool isClean)
{
    if (value.is_array()) {
        for (json& item : value) {
            replaceTexts(item, isClean);
        }
    } else if (value.is_string()) {
        std::string text = value;
        if (isClean)
            std::ranges::replace_if(
                text, [](char c) { return c == '<' || c == '>'; }, '-');
        value = withStandIns(text);
    }
}

json standInFacility(json facility)
{
    for (auto& [className, resources] : facility["resources"].items()) {
        for (json& resource : resources) {
            for (auto& [attribute, value] : resource.items()) {
                replaceTexts(value, isCleaned(className, attribute));
            }
        }
    }
    return facility;
}

/// What was asked and what came of it, without the values.
Texts callTexts(const Result& result)
{
    Texts calls;
    for (const json& line : result.journal) {
        if (!line.contains("result")) continue;
        calls.push_back(line["vale"].get<std::string>() + " " + line.value("class", "") + " " +
                        line["result"].dump() + " " + line.value("count", json()).dump());
    }
    return calls;
}

/// In a selection quotation marks end a text and a percent sign stands for any: values with these ask for
/// something else than their stand-ins do.
bool reachSelections(const Result& quiet)
{
    static const std::string marks = withStandIns("\"'%");
    return std::ranges::any_of(quiet.journal, [](const json& line) {
        const auto selection = line.find("selection");
        return selection != line.end() && selection->is_string() &&
               selection->get_ref<const std::string&>().find_first_of(marks) != std::string::npos;
    });
}

bool anyText(const json& value, bool (*holds)(const std::string& text))
{
    if (value.is_string()) return holds(value.get_ref<const std::string&>());
    return value.is_structured() &&
           std::ranges::any_of(value, [holds](const json& item) { return anyText(item, holds); });
}

void judgeShape(const Result& result, Findings& findings)
{
    if (!result.document) return;
    const Texts faults = kordTest::readDocument(*result.document).faults;
    if (!faults.empty()) broken(findings, "document, " + faults.front().substr(0, 200));
}

/// Every document becomes XML, whatever its values hold.
/// \param read what it holds, where that is known; nothing else may be in the XML
void judgeMended(const Result& result, const std::optional<kordTest::Document>& read, Findings& findings)
{
    if (!result.document) return;
    const kordTest::MendedDocument mended = kordTest::mendDocument(*result.document);
    for (const std::string& fault : mended.faults)
        broken(findings, "mended document, " + fault.substr(0, 200));
    const std::string difference = read ? differenceOf(read->resources, mended.resources) : "";
    if (!difference.empty()) broken(findings, "mended document, " + difference.substr(0, 200));
}

std::string timestampOf(const std::string& document)
{
    const std::string mark = "timestamp=\"";
    const size_t from = document.find(mark) + mark.size();
    return document.substr(from, document.find('"', from) - from);
}

/// Tables and JSON say what the document holds, whatever that is.
void judgeParts(const Result& result, const kordTest::Document& read, Findings& findings)
{
    kordTest::Document document = read;
    document.timestamp = timestampOf(*result.document);
    for (const std::string& fault : kordTest::partsFaults(document, *result.document))
        broken(findings, "parts, " + fault.substr(0, 300));
}

void takeStandIns(std::vector<kordTest::Element>& elements)
{
    for (kordTest::Element& element : elements) {
        element.displayName = withoutStandIns(element.displayName);
        element.uniqueId = withoutStandIns(element.uniqueId);
        for (kordTest::Property& property : element.properties)
            property.value = withoutStandIns(property.value);
        takeStandIns(element.children);
    }
}

/// What a document holds, read where its values held stand-ins.
kordTest::Document readTwin(const Result& quiet)
{
    kordTest::Document document = kordTest::readDocument(*quiet.document);
    takeStandIns(document.resources);
    return document;
}

void compareWithTwin(const Plan& plan, const Result& result, Findings& findings)
{
    Plan twin = plan;
    twin.facility = [&result] { return standInFacility(result.facility); };
    const Result quiet = runOnce(twin);
    judgeShape(quiet, findings);
    if (callTexts(quiet) != callTexts(result)) {
        if (!reachSelections(quiet)) broken(findings, "characters in values change what is asked");
    } else if (quiet.document.has_value() != result.document.has_value()) {
        broken(findings, "characters in values decide whether there is a document");
    } else if (quiet.document && kordTest::withFixedTimestamp(withoutStandIns(*quiet.document)) !=
                                     kordTest::withFixedTimestamp(*result.document)) {
        broken(findings, "the document's values are not raw, or its elements depend on them");
    } else if (quiet.document) {
        const kordTest::Document read = readTwin(quiet);
        judgeParts(result, read, findings);
        return judgeMended(result, read, findings);
    }
    judgeMended(result, std::nullopt, findings);
}

} // namespace

const Texts canaryWatch = {"/bin/sh", "-c",
                           R"("$@"; status=$?
find . /opt/brisk /opt/tarnquay /var/adm/stockmere /var/tarnquay /var/brisk -mindepth 1 \
    \( -path './*' -o -name 'canary*' \) -exec echo 'canary:' {} \; >&2
exit $status)",
                           "watch"};

void judgeCanary(const Result& result, Findings& findings)
{
    for (const std::string& line : kordTest::splitLines(result.outcome.error)) {
        if (line.starts_with("canary: ")) broken(findings, "a value was run: " + line);
    }
}

void judgePair(const Result& result, Findings& findings)
{
    // Failing segment pools print their error, whose message may hold anything, before the line.
    const Texts lines = kordTest::splitLines(result.outcome.output);
    const std::string last = lines.empty() ? "" : lines.back();
    const bool failed = std::ranges::find(failures, last) != std::end(failures);
    const bool fits = result.outcome.status == 3 ? last == built : failed;
    const bool more = lines.size() > 1 && !lines.front().starts_with("Orvik.TarnSegmentPool ");
    if (!fits || more || !result.outcome.output.ends_with('\n')) {
        broken(findings, "status " + std::to_string(result.outcome.status) + " with \"" +
                             result.outcome.output.substr(0, 200) + '"');
    }
}

void judgeClosing(const Result& result, Findings& findings)
{
    const std::string status = result.outcome.status == 3 ? "3" : "-1";
    const std::string closing = "0010:  exit " + status + " ------------------\n";
    if (!result.log.ends_with(closing)) broken(findings, "the trace log does not end with " + closing);
}

void judgeTraceLines(const Result& result, Findings& findings)
{
    constexpr size_t longest = 80;
    if (eventToolPrints(result)) return;
    for (const std::string& line : kordTest::splitLines(result.log)) {
        if (line.size() <= longest) continue;
        return broken(findings, "a trace line of " + std::to_string(line.size()) + " bytes");
    }
}

void judgeArguments(const Plan& plan, const Result& result, Findings& findings)
{
    for (const json& line : result.journal) {
        if (line.contains("program"))
            checkProgram(plan, result, line["program"], line["arguments"], findings);
    }
}

void judgeElements(const Plan& plan, const Result& result, Findings& findings)
{
    const json& resources = result.facility["resources"];
    if (!anyText(resources, hasMeaning)) {
        judgeShape(result, findings);
        if (result.document) judgeMended(result, kordTest::readDocument(*result.document), findings);
    } else if (!anyText(resources, hasStandIns)) {
        compareWithTwin(plan, result, findings);
    } else {
        judgeMended(result, std::nullopt, findings);
    }
}

void judgeHostile(const Plan& plan, const Result& result, Findings& findings)
{
    judgeEnd(plan, result, findings);
    judgeReleases(plan, result, findings);
    judgeTemporaryFiles(plan, result, findings);
    judgeFaults(plan, result, findings);
    judgePair(result, findings);
    judgeClosing(result, findings);
    judgeCanary(result, findings);
    judgeTraceLines(result, findings);
    judgeArguments(plan, result, findings);
    judgeElements(plan, result, findings);
}

void judgeRefused(const Plan&, const Result& result, Findings& findings)
{
    judgeCanary(result, findings);
    if (result.outcome.status != 255 || !result.outcome.output.empty()) {
        broken(findings, "a refused MTMS ends with status " + std::to_string(result.outcome.status) +
                             " and \"" + result.outcome.output.substr(0, 200) + '"');
    }
    if (!result.journal.empty() || !result.log.empty() || result.document) {
        broken(findings, "a refused MTMS leaves something");
    }
}

} // namespace sweep
