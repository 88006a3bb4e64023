// Lays out what a case gives, runs the collector, and compares.

#include "runCheck.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <set>
#include <stdexcept>

#include "consoleRun.h"
#include "documentReader.h"
#include "explainCheck.h"
#include "mendedDocument.h"
#include "parseJson.h"
#include "partsCheck.h"
#include "tempFolder.h"

namespace kordTest
{

using nlohmann::json;
namespace fs = std::filesystem;

// ---- comparing ----

bool matches(const std::string& pattern, const std::string& text)
{
    constexpr std::string_view any = "{any}";
    const size_t at = pattern.find(any);
    if (at == std::string::npos) return pattern == text;
    if (!text.starts_with(pattern.substr(0, at))) return false;
    const std::string rest = pattern.substr(at + any.size());
    for (size_t end = at + 1; end <= text.size(); ++end) {
        if (matches(rest, text.substr(end))) return true;
    }
    return false;
}

namespace
{

std::string lineOf(const Texts& lines, size_t index)
{
    return index < lines.size() ? "\"" + lines[index] + "\"" : "(nothing)";
}

} // namespace

std::string difference(const Texts& expected, const Texts& found)
{
    for (size_t i = 0; i < std::max(expected.size(), found.size()); ++i) {
        const bool same = i < expected.size() && i < found.size() && matches(expected[i], found[i]);
        if (same) continue;
        return "line " + std::to_string(i + 1) + "\n  expected " + lineOf(expected, i) + "\n  found    " +
               lineOf(found, i) + "\n  then     " + lineOf(found, i + 1);
    }
    return "";
}

std::string missingLine(const Texts& expected, const Texts& found)
{
    size_t at = 0;
    for (const std::string& line : expected) {
        while (at < found.size() && !matches(line, found[at])) {
            ++at;
        }
        if (at == found.size()) return "\"" + line + "\" is not there, or not behind the lines before it";
        ++at;
    }
    return "";
}

std::string missingStretch(const Texts& expected, const Texts& found)
{
    const auto stretch =
        std::search(found.begin(), found.end(), expected.begin(), expected.end(),
                    [](const auto& line, const auto& pattern) { return matches(pattern, line); });
    if (stretch != found.end() || expected.empty()) return "";
    const std::string missing = missingLine(expected, found);
    return missing.empty() ? "the lines from \"" + expected[0] + "\" on are not in one stretch" : missing;
}

namespace
{

std::string forbiddenLine(const Texts& forbidden, const Texts& found)
{
    for (const std::string& line : found) {
        for (const std::string& pattern : forbidden) {
            if (matches(pattern, line)) return "\"" + line + "\" must not be there";
        }
    }
    return "";
}

/// What a run left, and what has been found wrong with it so far.
struct Finished {
    const RunCase& run;
    const Places& places;
    fs::path root;
    fs::path folder; ///< where the collector ran
    time_t begin = 0;
    time_t end = 0;
    Outcome outcome;
    std::vector<json> journal;
    std::vector<TraceLine> trace;
    Texts faults;

    [[nodiscard]] std::string mtms() const { return run.arguments.size() > 1 ? run.arguments[1] : ""; }

    void fault(const std::string& where, const std::string& what)
    {
        if (!what.empty()) faults.push_back(where + ": " + what);
    }

    void equal(const std::string& where, const std::string& expected, const std::string& found)
    {
        if (expected != found) fault(where, "expected \"" + expected + "\", found \"" + found + "\"");
    }

    [[nodiscard]] std::string rooted(std::string text) const
    {
        for (size_t at = 0; (at = text.find("{root}", at)) != std::string::npos;) {
            text.replace(at, 6, root.string());
        }
        return text;
    }

    [[nodiscard]] Texts rooted(Texts texts) const
    {
        for (std::string& text : texts) {
            text = rooted(text);
        }
        return texts;
    }
};

// ---- before the run ----

void writeFile(const fs::path& file, const std::string& text)
{
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    if (!stream.flush()) throw std::runtime_error(file.string() + ": cannot be written");
}

std::string numberedText(const NumberedLines& lines)
{
    std::string text;
    for (int number = 1; number <= lines.count; ++number) {
        text += lines.line(number) + "\n";
    }
    return text;
}

void layOut(const FileState& state, const Finished& finished)
{
    const fs::path file = finished.root / state.file;
    fs::create_directories(file.parent_path());
    if (state.folder) fs::create_directories(file);
    if (state.content) writeFile(file, finished.rooted(*state.content));
    if (state.numbered) writeFile(file, numberedText(*state.numbered));
    if (state.symlink) fs::create_symlink(finished.rooted(*state.symlink), file);
    if (state.mode) fs::permissions(file, static_cast<fs::perms>(*state.mode));
}

void writeFacility(const RunCase& run, const fs::path& folder, const fs::path& file)
{
    json facility = parseJson(readFile(folder / run.facility).value_or(""));
    facility = facility.patch(run.patch);
    if (!run.faults.empty()) facility["faults"] = run.faults;
    writeFile(file, facility.dump());
}

/// The collector's call; folders that must be missing are removed once the launcher has laid them out.
Texts programOf(const Finished& finished)
{
    Texts program = {"addTarnKord"};
    if (!finished.run.missing.empty()) {
        program = {"/bin/sh", "-c",
                   "while test \"$1\" != --; do rmdir \"$1\" || exit 99; shift; done; shift; exec \"$@\"",
                   "sh"};
        for (const std::string& folder : finished.run.missing) {
            program.push_back(finished.root / folder);
        }
        program.insert(program.end(), {"--", finished.places.console.parent_path() / "addTarnKord"});
    }
    program.insert(program.end(), finished.run.arguments.begin(), finished.run.arguments.end());
    return program;
}

// ---- what holds for every run ----

const json* exitLine(const Finished& finished)
{
    for (const json& line : finished.journal) {
        if (line.value("vale", "") == "exit") return &line;
    }
    return nullptr;
}

bool usedClient(const Finished& finished)
{
    return std::any_of(finished.journal.begin(), finished.journal.end(),
                       [](const json& line) { return line.contains("vale"); });
}

/// Every session ended, every answer, error record and message released, every client fault rule met.
void checkExit(Finished& finished)
{
    if (!usedClient(finished)) return;
    const json* line = exitLine(finished);
    if (line == nullptr) {
        finished.fault("journal", "the collector did not end by itself");
        return;
    }
    std::vector<int> sessions = line->at("sessions");
    std::sort(sessions.begin(), sessions.end());
    finished.equal("open sessions", json(finished.run.openSessions).dump(), json(sessions).dump());
    finished.equal("answers never freed", "[]", line->at("responses").dump());
    finished.equal("error records never released", "0", line->at("errors").dump());
    finished.equal("messages never released", "0", line->at("messages").dump());
    finished.equal("fault rules never met", "[]", line->at("unused").dump());
}

/// A failed call's record is fetched, then its message; the message is released, then the record.
void checkErrorRecords(Finished& finished)
{
    static const Texts order = {"get_error", "get_errmsg", "rel_errmsg", "rel_error"};
    size_t next = 0;
    for (const json& line : finished.journal) {
        const std::string call = line.value("vale", "");
        if (std::find(order.begin(), order.end(), call) == order.end()) continue;
        if (call != order[next])
            finished.fault("error records", call + " stands where " + order[next] + " should");
        next = (next + 1) % order.size();
    }
}

bool startsWith(const json& line, const std::string& text)
{
    return line.value("program", "").starts_with(text);
}

/// A program's line as the command that it was.
Texts commandOf(const json& line)
{
    Texts command = line["arguments"];
    command.insert(command.begin(), line["program"].get<std::string>());
    return command;
}

/// For any user but root the console's programs are run by the wrapper, but for those that only read the
/// console's own data; for root none is. A log's removal always is.
void checkWrapper(Finished& finished)
{
    for (size_t i = 0; i < finished.journal.size(); ++i) {
        const json& line = finished.journal[i];
        if (!line.contains("program") || startsWith(line, "/opt/tarnquay/bin/mmquaycmd")) continue;
        const bool readsOnly = startsWith(line, "/opt/brisk/bin/qconvpd") || startsWith(line, "whoami");
        const json* before = i > 0 ? &finished.journal[i - 1] : nullptr;
        const bool isWrapped = before != nullptr && startsWith(*before, "/opt/tarnquay/bin/mmquaycmd") &&
                               before->at("arguments") == commandOf(line);
        if (isWrapped != (finished.run.wrapped && !readsOnly)) {
            finished.fault("wrapper",
                           journalText(line) + (isWrapped ? " is" : " is not") + " run by the wrapper");
        }
    }
}

std::vector<json> eventLines(const Finished& finished)
{
    std::vector<json> lines;
    for (const json& line : finished.journal) {
        if (startsWith(line, "/opt/tarnquay/bin/pmProblemEventPoster")) lines.push_back(line);
    }
    return lines;
}

void checkEvents(Finished& finished)
{
    const std::string mtms = finished.mtms();
    const std::string system = mtms.size() > 9 ? mtms.substr(0, 8) + "*" + mtms.substr(9, 7) : mtms;
    const std::string log = "/var/tarnquay/log/" + traceFile("", finished.mtms()).filename().string();
    Texts expected;
    for (const Event& event : finished.run.events) {
        expected.push_back(
            commandText({"/opt/tarnquay/bin/pmProblemEventPoster", "-f", system, "-l",
                         "Microcode-rs-quay_sff", "-o", "addTarnKord", "-s", event.code, "-n", "0", "-h",
                         "no", "-c", "no", "-E", log, "-X", "\"" + finished.rooted(event.text) + "\""}));
    }
    Texts found;
    for (const json& line : eventLines(finished)) {
        found.push_back(commandText(commandOf(line)));
    }
    finished.fault("events", difference(expected, found));
}

/// The console's stamp, as the trace log writes it, of a moment.
std::string stampOf(time_t moment)
{
    char text[32] = "";
    std::strftime(text, sizeof text, "%m%d%y %H:%M:%S", std::localtime(&moment));
    return text;
}

bool isStampWithin(const std::string& stamp, time_t begin, time_t end)
{
    for (time_t moment = begin; moment <= end; ++moment) {
        if (stampOf(moment) == stamp) return true;
    }
    return false;
}

/// Stamps lie within the run; the first of a text's lines has at most 79 characters, each further one 80.
void checkTraceForm(Finished& finished)
{
    for (const TraceLine& line : finished.trace) {
        if (!isStampWithin(line.stamp, finished.begin, finished.end))
            finished.fault("trace stamp", line.stamp);
        if (line.stamp.size() + 1 + line.text.size() > 79) finished.fault("trace line too long", line.text);
        for (const std::string& rest : line.further) {
            if (rest.size() > 80) finished.fault("further trace line too long", rest);
        }
    }
    const fs::path file = traceFile(finished.root, finished.mtms());
    if (fs::is_regular_file(fs::symlink_status(file))) {
        const auto mode = static_cast<unsigned>(fs::status(file).permissions());
        if (mode != 0666) finished.fault("trace log", "mode " + std::to_string(mode) + ", not 0666");
    }
}

void checkLastTrace(Finished& finished)
{
    if (finished.trace.empty() && !finished.run.lastTrace) return;
    const std::string exit = finished.run.status == 3 ? "3" : "-1";
    const std::string usual = "0010:  exit " + exit + " ------------------";
    const std::string expected = finished.rooted(finished.run.lastTrace.value_or(usual));
    const std::string found = finished.trace.empty() ? "" : finished.trace.back().joined();
    if (!matches(expected, found)) finished.equal("last trace line", expected, found);
}

// ---- what the case says ----

void checkOutcome(Finished& finished)
{
    if (finished.outcome.timedOut) finished.fault("run", "did not end in time");
    finished.equal("status", std::to_string(finished.run.status), std::to_string(finished.outcome.status));
    finished.equal("output", finished.run.output, finished.outcome.output);
    if (finished.run.error.empty()) finished.equal("error output", "", finished.outcome.error);
    for (const std::string& text : finished.run.error) {
        if (finished.outcome.error.find(text) == std::string::npos) {
            finished.fault("error output", "\"" + text + "\" is not in \"" + finished.outcome.error + "\"");
        }
    }
}

void checkLines(Finished& finished, const std::string& where, const std::optional<Texts>& exact,
                const Texts& has, const Texts& lacks, const Texts& found)
{
    if (exact) finished.fault(where, difference(finished.rooted(*exact), found));
    finished.fault(where, missingLine(finished.rooted(has), found));
    finished.fault(where, forbiddenLine(finished.rooted(lacks), found));
}

void checkTrace(Finished& finished)
{
    Texts joined;
    Texts raw;
    for (const TraceLine& line : finished.trace) {
        joined.push_back(line.joined());
        raw.push_back(line.text);
        raw.insert(raw.end(), line.further.begin(), line.further.end());
    }
    checkLines(finished, "trace", finished.run.trace, finished.run.traceHas, finished.run.traceLacks, joined);
    finished.fault("unjoined trace", missingStretch(finished.rooted(finished.run.traceRaw), raw));
    checkTraceForm(finished);
    checkLastTrace(finished);
}

void checkJournal(Finished& finished)
{
    Texts all;
    Texts programs;
    Texts calls;
    for (const json& line : finished.journal) {
        all.push_back(journalText(line));
        (line.contains("program") ? programs : calls).push_back(all.back());
    }
    const RunCase& run = finished.run;
    checkLines(finished, "journal", run.journal, run.journalHas, run.journalLacks, all);
    checkLines(finished, "programs", run.programs, {}, {}, programs);
    checkLines(finished, "calls", run.calls, {}, {}, calls);
}

void checkExactDocument(Finished& finished, const std::string& name, const std::string& document)
{
    const fs::path file = finished.places.expected / name;
    const std::string found = withFixedTimestamp(document);
    if (finished.places.update) {
        writeFile(file, found);
        return;
    }
    const auto expected = readFile(file);
    if (!expected) {
        finished.fault("document", file.string() + " is missing");
    } else if (*expected != found) {
        finished.fault("document", difference(splitLines(*expected), splitLines(found)) + "\n  of " + name);
    }
}

/// Every document becomes XML with the same elements and values, and tables with the same parts. What differs
/// from an earlier one in its time alone is the same to readers: what is wrong is told of the first alone.
void checkReaders(Finished& finished, const std::string& text, const Document& document)
{
    static std::set<std::string> known;
    if (!known.insert(withFixedTimestamp(text)).second) return;
    for (const std::string& fault : partsFaults(document, text))
        finished.fault("parts", fault);
    const MendedDocument mended = mendDocument(text);
    for (const std::string& fault : mended.faults)
        finished.fault("mended document", fault);
    finished.equal("mended document", "", differenceOf(document.resources, mended.resources));
    if (finished.places.documents.empty()) return;
    fs::create_directories(finished.places.documents);
    std::ofstream(finished.places.documents / (finished.run.name + ".xml"), std::ios::binary) << text;
}

void checkDocument(Finished& finished)
{
    const DocumentState& expected = finished.run.document;
    const auto text = readFile(documentFile(finished.root, finished.mtms()));
    if (expected.absent.value_or(!text) != !text) {
        finished.fault("document", text ? "must not be there" : "is missing");
    }
    if (!text) return;

    const Document document = readDocument(*text);
    for (const std::string& fault : document.faults) {
        finished.fault("document", fault);
    }
    finished.equal("missing closings", std::to_string(expected.missingClosings),
                   std::to_string(document.missingClosings));
    finished.equal("extra closings", std::to_string(expected.extraClosings),
                   std::to_string(document.extraClosings));
    if (expected.stylesheet.value_or(document.stylesheet) != document.stylesheet) {
        finished.fault("document", "the stylesheet line");
    }
    const long stamp = std::strtol(document.timestamp.c_str(), nullptr, 10);
    if (stamp < finished.begin || stamp > finished.end) finished.fault("timestamp", document.timestamp);
    if (expected.outlineDepth) {
        finished.fault("outline", difference(expected.outline, outline(document, *expected.outlineDepth)));
    }
    checkLines(finished, "document", std::nullopt, expected.lines, expected.lacks, splitLines(*text));
    checkReaders(finished, *text, document);
    if (expected.exact) checkExactDocument(finished, *expected.exact, *text);
}

std::string numberedFault(const FileState& state, const std::string& text)
{
    const Texts lines = splitLines(text);
    const int count = state.numbered->count - state.firstNumber + 1;
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<size_t>(i);
        const std::string expected = state.numbered->line(state.firstNumber + i);
        if (at >= lines.size() || lines[at] != expected) {
            return "line " + std::to_string(i + 1) + " is " + lineOf(lines, at) + ", not \"" + expected +
                   "\"";
        }
    }
    const auto old =
        std::count_if(lines.begin(), lines.end(), [](const auto& line) { return line.starts_with("old "); });
    return old == count ? "" : "holds " + std::to_string(old) + " old lines, not " + std::to_string(count);
}

std::string contentFault(const FileState& state, const Finished& finished, const std::string& text)
{
    if (state.content && text != finished.rooted(*state.content))
        return "holds \"" + text.substr(0, 200) + "\"";
    if (state.contains && text.find(finished.rooted(*state.contains)) == std::string::npos) {
        return "\"" + *state.contains + "\" is not in \"" + text.substr(0, 2000) + "\"";
    }
    return state.numbered ? numberedFault(state, text) : "";
}

std::string fileFault(const FileState& state, const Finished& finished)
{
    const fs::path file = finished.root / state.file;
    const fs::file_status status = fs::symlink_status(file);
    if (state.absent) return fs::exists(status) ? "must not be there" : "";
    if (!fs::exists(status)) return "is missing";
    if (state.mode && static_cast<int>(fs::status(file).permissions()) != *state.mode)
        return "has another mode";
    if (state.folder) return fs::is_directory(status) ? "" : "is no folder";
    if (state.symlink) {
        const bool same = fs::is_symlink(status) && fs::read_symlink(file) == finished.rooted(*state.symlink);
        return same ? "" : "is not the link that it was";
    }
    if (!fs::is_regular_file(status)) return "is no file";
    return contentFault(state, finished, readFile(file).value_or(""));
}

/// What lies in the console's three folders of results.
Texts filesLeft(const Finished& finished)
{
    Texts left;
    for (const char* folder : {"var/adm/stockmere/VPD", "var/tarnquay/log", "var/brisk/log"}) {
        if (!fs::is_directory(finished.root / folder)) continue;
        for (const auto& entry : fs::directory_iterator(finished.root / folder)) {
            const bool isFolder = fs::is_directory(entry.symlink_status());
            left.push_back(entry.path().lexically_relative(finished.root).string() + (isFolder ? "/" : ""));
        }
    }
    std::sort(left.begin(), left.end());
    return left;
}

void checkFiles(Finished& finished)
{
    for (const FileState& state : finished.run.files) {
        finished.fault(state.file, fileFault(state, finished));
    }
    Texts left = filesLeft(finished);
    if (finished.run.left) {
        Texts expected = *finished.run.left;
        std::sort(expected.begin(), expected.end());
        finished.fault("files left", difference(expected, left));
    } else {
        finished.fault("files left", forbiddenLine({"var/brisk/log/{any}"}, left));
    }
    if (!fs::is_empty(finished.folder)) finished.fault("working folder", "something was written there");
}

/// What explain tells of the run is what the journal shows.
void checkExplained(Finished& finished)
{
    const std::string log = readFile(traceFile(finished.root, finished.mtms())).value_or("");
    for (const std::string& fault : explainFaults(log, finished.journal, finished.outcome.status))
        finished.fault("explained", fault);
}

void checkAll(Finished& finished)
{
    checkOutcome(finished);
    checkExit(finished);
    checkErrorRecords(finished);
    checkWrapper(finished);
    checkEvents(finished);
    checkTrace(finished);
    checkJournal(finished);
    checkDocument(finished);
    checkFiles(finished);
    checkExplained(finished);
}

} // namespace

std::vector<std::string> checkRun(const RunCase& run, const Places& places)
{
    const TempFolder temporary;
    Finished finished{.run = run,
                      .places = places,
                      .root = temporary.path() / "root",
                      .folder = temporary.path() / "folder",
                      .outcome = {},
                      .journal = {},
                      .trace = {},
                      .faults = {}};
    const fs::path facility = temporary.path() / "facility.json";
    fs::create_directories(finished.root);
    fs::create_directories(finished.folder);
    writeFacility(run, places.facilities, facility);
    for (const FileState& state : run.setup) {
        layOut(state, finished);
    }

    finished.begin = std::time(nullptr);
    finished.outcome = runOnConsole({.console = places.console,
                                     .facility = facility,
                                     .root = finished.root,
                                     .folder = finished.folder,
                                     .user = run.user,
                                     .program = programOf(finished)});
    // The document's time comes from the exact clock, the trace's from the coarse one, which runs behind it.
    finished.end = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    finished.journal = readJournal(finished.root);
    finished.trace = readTrace(traceFile(finished.root, finished.mtms()));
    checkAll(finished);
    return finished.faults;
}

} // namespace kordTest
