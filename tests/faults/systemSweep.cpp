// Every call that the collector makes of the system fails in every way, once and from then on. The interposer
// makes it fail; a regular run under it says how often each is made. Judged is what must hold when memory,
// disks, processes or clocks fail: the run ends as it would have, nothing that lay in its folders is lost,
// and the document is whole, or cut off where the disk failed.

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "documentReader.h"
#include "judge.h"
#include "pattern.h"
#include "sweep.h"
#include "tempFolder.h"

namespace sweep
{

namespace fs = std::filesystem;

namespace
{

// ---- what fails ----

/// A way in which a kind of call fails: with an error, or as the interposer's word says.
struct SystemWay {
    std::string_view call;
    int error = 0;
    const char* word = "";
    bool onward = true; ///< can last
};

constexpr SystemWay systemWays[] = {
    {.call = "malloc", .error = ENOMEM},
    {.call = "calloc", .error = ENOMEM},
    {.call = "realloc", .error = ENOMEM},
    {.call = "clientMemory", .error = ENOMEM},
    {.call = "open", .error = EMFILE},
    {.call = "open", .error = EEXIST},
    {.call = "lstat", .error = EIO},
    {.call = "fstat", .error = EIO},
    {.call = "statx", .error = EIO},
    {.call = "fchmod", .error = EPERM},
    {.call = "ftruncate", .error = EIO},
    {.call = "lseek", .error = EIO},
    {.call = "read", .error = EIO},
    {.call = "read", .error = EINTR, .onward = false},
    {.call = "read", .word = "short"},
    {.call = "read", .word = "end"},
    {.call = "pread", .error = EIO},
    {.call = "pread", .error = EINTR, .onward = false},
    {.call = "pread", .word = "short"},
    {.call = "pread", .word = "end"},
    {.call = "write", .error = ENOSPC},
    {.call = "write", .error = EINTR, .onward = false},
    {.call = "write", .word = "short"},
    {.call = "close", .error = EIO},
    {.call = "unlink", .error = EACCES},
    {.call = "rename", .error = EACCES},
    {.call = "fdopen", .error = ENOMEM},
    {.call = "setvbuf", .error = ENOMEM},
    {.call = "streamWrite", .error = ENOSPC},
    {.call = "streamWrite", .error = EINTR, .onward = false},
    {.call = "streamWrite", .word = "short"},
    {.call = "streamClose", .error = EIO},
    {.call = "consoleWrite", .error = EIO},
    {.call = "consoleWrite", .word = "short"},
    {.call = "system", .error = EAGAIN},
    {.call = "system", .word = "lost"},
    {.call = "system", .word = "killed"},
    {.call = "system", .word = "noShell"},
    {.call = "time", .error = EOVERFLOW},
    {.call = "localtime", .error = EOVERFLOW},
    {.call = "gettimeofday", .error = EPERM},
    {.call = "errorRecord", .error = ENOMEM},
    {.call = "errorMessage", .error = ENOMEM},
};

/// What a way is called and what the interposer is told.
std::string effectOf(const SystemWay& way)
{
    return *way.word != '\0' ? way.word : std::to_string(way.error);
}

/// The collector's other calls: they cannot fail, or fail with nothing but a call in the list above. Some
/// processors' start-up code calls abort.
constexpr std::string_view faultless[] = {
    "fclose",    "fflush",  "fputs",     "fwrite_unlocked", "fwrite", "printf",    "putchar", "puts",
    "vsnprintf", "memchr",  "memcpy",    "memmove",         "memset", "strchr",    "strcmp",  "strcspn",
    "strlen",    "strncmp", "strtol",    "strnlen",         "free",   "strftime",  "memcmp",  "strrchr",
    "stdout",    "stderr",  "strchrnul", "strstr",          "fcntl",  "sigaction", "abort"};

// ---- where it fails ----

constexpr const char* successLine = "XML file was built successfully. This is the normal return.\n";
constexpr const char* neighbourText = "another system's\n";
constexpr const char* earlierDocument = "<earlier/>\n";

/// The folders below "var" that the collector writes to.
constexpr const char* documents = "adm/stockmere/VPD";
constexpr const char* logs = "tarnquay/log";
constexpr const char* outputs = "brisk/log";

constexpr const char* neighbourDocument = "adm/stockmere/VPD/neighbour.xml";
constexpr const char* neighbourLog = "tarnquay/log/neighbour.log";
constexpr const char* ownDocument = "adm/stockmere/VPD/addTarnKord_9999-B2C*7ABCD12.xml";
constexpr const char* ownLog = "tarnquay/log/kord.7ABCD12.log";
constexpr const char* ownOutput = "brisk/log/tmp.7ABCD12";

fs::path interposer()
{
    return kordTest::triedBuild() / "lib/libinterposer.so";
}

void write(const fs::path& file, const std::string& text)
{
    std::ofstream(file, std::ios::binary) << text;
}

/// A log of so many lines, and so many bytes each, that no two lines are alike.
std::string earlierLog(int lines, int bytes)
{
    std::ostringstream text;
    for (int line = 1; line <= lines; ++line) {
        std::string start = "earlier " + std::to_string(line) + " ";
        start.resize(static_cast<size_t>(bytes) - 1, '.');
        text << start << '\n';
    }
    return text.str();
}

std::string shortLog()
{
    return earlierLog(3, 60);
}

constexpr int lineToCut = 299; ///< bytes

/// Above 3,000,000 bytes, where a log is cut to its lines from 10,000 on.
std::string logToCut()
{
    return earlierLog(10'040, lineToCut);
}

/// Above 3,010,000 bytes, where a log is removed.
std::string logToRemove()
{
    return earlierLog(10'100, 300);
}

/// Links to other files at all names that a run makes anew.
void layLinks(const fs::path& var)
{
    fs::remove(var / ownDocument);
    fs::create_symlink(fs::path("/var") / neighbourDocument, var / ownDocument);
    fs::create_symlink(fs::path("/var") / neighbourDocument, var / ownOutput);
    fs::create_symlink(fs::path("/var") / neighbourLog, (var / ownLog).string() + "00");
    fs::create_symlink(fs::path("/var") / neighbourLog, (var / ownLog).string() + "01");
}

/// The document's name leads to another's file: only the name may go.
void laySecondName(const fs::path& var)
{
    fs::remove(var / ownDocument);
    fs::create_hard_link(var / neighbourDocument, var / ownDocument);
}

/// Where a document's file lies empty, it is used.
void layEmptyDocument(const fs::path& var)
{
    write(var / ownDocument, "");
}

json withoutPartner()
{
    json facility = bundled("small.json");
    facility["systems"].erase("9999-B2C*7ABCD34");
    std::erase_if(facility["resources"]["Orvik.TarnStorageFacilityPartition"].get_ref<json::array_t&>(),
                  [](const json& partition) { return partition["managedSystemMTMS"] == "9999-B2C*7ABCD34"; });
    return facility;
}

/// Failures that the run outlives but reports: ports in error, sessions that do not end.
json reportedFaults()
{
    const json portsInError = {{"class", "Orvik.TarnScsiHostPort"},
                               {"error", {{"number", 0x30002}, {"message", "no ports\n"}}}};
    const json noEnd = {{"call", "end_session"}, {"fails", {{"code", 7}, {"message", "no end\n"}}}};
    return json::array({portsInError, noEnd});
}

constexpr unsigned long usualEvery = 30;
constexpr unsigned long all = ~0UL;

/// What a run finds, and how it ends when nothing of the system fails.
struct Setup {
    const char* name;
    json (*facility)() = [] { return bundled("small.json"); };
    json (*faults)() = [] { return json::array(); };
    const char* user = "root";
    std::string (*log)() = shortLog;
    void (*lay)(const fs::path& var) = [](const fs::path&) {};
    int status = 3;
    const char* output = successLine;
    unsigned long every = usualEvery; ///< beyond so many calls of a kind, a tenth of them fails in turn
    std::string_view tells = ""; ///< of this kind of call no failure is left out of the short form's share
};

constexpr Setup setups[] = {
    {.name = "small", .every = all},
    {.name = "facility", .facility = [] { return bundled("facility.json"); }, .every = all},
    {.name = "logToCut", .log = logToCut},
    {.name = "logToRemove", .log = logToRemove},
    {.name = "logToRemoveAsGuest", .user = "guest", .log = logToRemove},
    {.name = "guest", .user = "guest"},
    {.name = "links", .log = logToCut, .lay = layLinks},
    {.name = "secondName", .lay = laySecondName, .tells = "unlink"},
    {.name = "emptyDocument", .lay = layEmptyDocument},
    {.name = "events", .faults = reportedFaults},
    {.name = "noPartner", .facility = withoutPartner, .status = 255, .output = "Query Partition fails.\n"},
};

// ---- a run ----

/// A setup and what it leaves when nothing of the system fails.
struct Ground {
    const Setup* setup = nullptr;
    std::map<std::string, unsigned long> calls; ///< made of each kind
    std::string document;
    Texts trace; ///< its lines, but for the one that holds the time
};

/// One run: its files lie in a folder of their own until it is judged.
struct Case {
    std::shared_ptr<kordTest::TempFolder> home; ///< of all cases
    std::shared_ptr<const Ground> ground;
    const SystemWay* way = nullptr;
    unsigned long nth = 0;
    bool onward = false;
    std::string name;

    [[nodiscard]] fs::path folder() const { return home->path() / name; }
    [[nodiscard]] fs::path var() const { return folder() / "var"; }
    [[nodiscard]] fs::path report() const { return folder() / "report"; }
    [[nodiscard]] bool fails(std::initializer_list<std::string_view> calls) const
    {
        return std::find(calls.begin(), calls.end(), way->call) != calls.end();
    }
};

/// The run's "var" is a link to the case's folder, which outlives the run.
void layOut(const Case& run, const fs::path& root)
{
    const Setup& setup = *run.ground->setup;
    const fs::path var = run.var();
    for (const char* folder : {documents, logs, outputs})
        fs::create_directories(var / folder);
    fs::create_symlink(var, root / "var");
    write(var / neighbourDocument, neighbourText);
    write(var / neighbourLog, neighbourText);
    write(var / ownDocument, earlierDocument);
    write(var / ownLog, setup.log());
    fs::permissions(var / ownLog, fs::perms::owner_read | fs::perms::owner_write);
    setup.lay(var);
}

Plan planOf(const Case& run)
{
    const Setup& setup = *run.ground->setup;
    Plan plan;
    plan.name = run.name;
    plan.facility = setup.facility;
    plan.faults = setup.faults;
    plan.user = setup.user;
    plan.arguments[0] = "-t";
    plan.prepare = [run](const fs::path& root) { layOut(run, root); };
    // The address sanitizer would have nothing loaded before it.
    plan.prefix = {"env", "ASAN_OPTIONS=verify_asan_link_order=0", "LD_PRELOAD=" + interposer().string(),
                   "FAULT_REPORT=" + run.report().string()};
    if (run.way != nullptr) {
        plan.prefix.insert(plan.prefix.end(),
                           {"FAULT_CALL=" + std::string(run.way->call), "FAULT_EFFECT=" + effectOf(*run.way),
                            "FAULT_NTH=" + std::to_string(run.nth),
                            std::string("FAULT_ONWARD=") + (run.onward ? "1" : "0")});
    }
    return plan;
}

/// The interposer's report: how often each kind was called, and under "failed" how many calls it made fail.
std::map<std::string, unsigned long> readReport(const Case& run)
{
    std::map<std::string, unsigned long> calls;
    std::ifstream file(run.report());
    std::string name;
    for (unsigned long count = 0; file >> name >> count;)
        calls[name] = count;
    return calls;
}

std::string textOf(const fs::path& file)
{
    return kordTest::readFile(file).value_or("");
}

// ---- the judge ----

void add(Findings& findings, const std::string& what)
{
    findings.push_back({Kind::broken, what});
}

/// A process that did not reach its end has left no report, and is judged for that.
void judgeMet(const Case& run, const Result& result, Findings& findings)
{
    std::map<std::string, unsigned long> calls = readReport(run);
    const bool ended = result.outcome.status == 3 || result.outcome.status == 255;
    if (ended && calls["failed"] == 0) add(findings, "no call was made to fail");
}

/// The console lines of failures.
bool isFailureLine(const std::string& output)
{
    static const kordTest::Pattern line(
        "(Start VALE session|Query Partner System|Check State|Query Partition|"
        "Query VALE (Id|Status|Partner Status)|(Orvik\\.TarnScsiHostPort Out of "
        "memory\\n)?Add System Kord) fails\\. ?\\n");
    return line.matches(output);
}

/// No failure of the system changes how a run ends, but for want of memory for the hosts' descriptions, and
/// what the client makes of its own failures.
bool endsAsItMay(const Case& run, const kordTest::Outcome& outcome)
{
    const Setup& setup = *run.ground->setup;
    const bool asUsual = outcome.status == setup.status && outcome.output == setup.output;
    if (run.fails({"calloc"})) {
        return outcome.status == 255 && outcome.output.ends_with("Add System Kord fails.\n") &&
               isFailureLine(outcome.output);
    }
    if (run.fails({"clientMemory"}))
        return asUsual || (outcome.status == 255 && isFailureLine(outcome.output));
    if (run.fails({"consoleWrite"}))
        return outcome.status == setup.status && std::string(setup.output).starts_with(outcome.output);
    return asUsual;
}

void judgeEnding(const Case& run, const Result& result, Findings& findings)
{
    if (endsAsItMay(run, result.outcome)) return;
    add(findings, "status " + std::to_string(result.outcome.status) + ", output " +
                      json(result.outcome.output).dump(-1, ' ', false, json::error_handler_t::replace));
}

/// The trace lines, but for the one that holds the time.
Texts linesOf(const Result& result)
{
    Texts lines;
    for (const kordTest::TraceLine& line : result.trace) {
        if (!line.text.starts_with("0701:  stamp=")) lines.push_back(line.joined());
    }
    return lines;
}

/// The calls that neither write the trace nor change what it tells.
bool leavesTheTraceAlone(const Case& run)
{
    const bool goesOn = run.way->word == std::string_view("short") || run.way->error == EINTR;
    return run.fails({"fchmod", "setvbuf", "streamWrite", "streamClose", "consoleWrite", "time", "localtime",
                      "gettimeofday"}) ||
           (run.fails({"write", "read", "pread"}) && goesOn);
}

/// A line whose own calls fail is lost, and no other.
void judgeLines(const Case& run, const Result& result, Findings& findings)
{
    const Texts& regular = run.ground->trace;
    const Texts lines = linesOf(result);
    if (leavesTheTraceAlone(run) && lines != regular) add(findings, "the trace is not the regular one");

    const bool isOneLine = run.fails({"write", "statx"}) && !run.onward && run.ground->setup->log == shortLog;
    if (!isOneLine) return;
    const auto [line, other] = std::mismatch(lines.begin(), lines.end(), regular.begin(), regular.end());
    if (other != regular.end() && !std::equal(line, lines.end(), other + 1, regular.end()))
        add(findings, "more than one line of the trace is lost");
}

/// The last line says how the run ended, unless its own calls fail.
void judgeClosing(const Case& run, const Result& result, Findings& findings)
{
    const bool isLast = run.onward || run.nth >= run.ground->calls.at(std::string(run.way->call));
    if (isLast && run.fails({"open", "statx", "write", "close"})) return;
    const bool good = result.outcome.status == 3;
    const std::string closing = std::string("0010:  exit ") + (good ? "3" : "-1") + " ------------------\n";
    if (!result.log.ends_with(closing)) add(findings, "the trace log has no closing line");
}

/// A document without its time, and without the consoles: the name of one is made of its type-model and
/// serial, which are unknown where their commands fail. One that is cut off leaves nothing.
std::string comparable(const std::string& document)
{
    constexpr std::string_view end = "</Resource>\n";
    std::string text = kordTest::withFixedTimestamp(document);
    for (size_t at = 0; (at = text.find("<Resource displayName=\"Quay\"", at)) != std::string::npos;) {
        const size_t after = text.find(end, at);
        if (after == std::string::npos)
            text.erase(at);
        else
            text.replace(at, after + end.size() - at, "<Quay>\n");
    }
    return text;
}

/// What is wrong with a document; empty when nothing is.
std::string malformation(const std::string& document)
{
    const kordTest::Document read = kordTest::readDocument(document);
    return read.faults.empty() ? "" : read.faults.front();
}

/// The document is whole; where its disk fails, it is cut off; where the run stops early, it is closed.
void judgeContent(const Case& run, const Result& result, Findings& findings)
{
    const std::string found = comparable(result.document.value_or(""));
    const std::string& regular = run.ground->document;
    if (run.fails({"streamWrite", "streamClose"})) {
        if (!regular.starts_with(found)) add(findings, "the document goes on after a gap");
    } else if (run.fails({"calloc", "clientMemory"}) && result.outcome.status != 3) {
        const std::string fault = malformation(*result.document);
        if (!fault.empty() && found != earlierDocument) add(findings, "document, " + fault);
    } else if (found != regular && !run.fails({"clientMemory"})) {
        add(findings, "the document is not the regular one");
    }
}

void judgeDocumentLeft(const Case& run, const Result& result, Findings& findings)
{
    const bool isStarted = run.ground->document != earlierDocument;
    const bool isEmpty = result.document.value_or("").empty();
    // Where the document cannot be started, the run does without; the earlier one is gone by then, if it
    // could be removed.
    const bool without = isEmpty || *result.document == earlierDocument || *result.document == neighbourText;
    if (isStarted && without &&
        run.fails({"open", "fdopen", "malloc", "fstat", "lstat", "unlink", "ftruncate"})) {
        if (!run.onward && result.log.find("0700:  open xmlfile error") == std::string::npos)
            add(findings, "no document, and the trace does not say why");
        return;
    }
    if (!result.document) return add(findings, "there is no document");
    judgeContent(run, result, findings);
}

/// What was in the log is still there, but for what a log of its size loses. One that can never be cut grows
/// until it is removed.
void judgeLog(const Case& run, const Result& result, Findings& findings)
{
    constexpr size_t cutAbove = 3'000'000;
    constexpr size_t removeAbove = 3'010'000;
    constexpr size_t linesCut = 9'999;
    const std::string earlier = run.ground->setup->log();
    if (earlier.size() > removeAbove || result.log.starts_with(earlier)) return;

    const bool isLarge = earlier.size() > cutAbove;
    const bool isNeverCut =
        run.onward && run.fails({"open", "unlink", "fstat", "read", "pread", "lseek", "rename"});
    const std::string kept = isLarge ? earlier.substr(linesCut * static_cast<size_t>(lineToCut)) : "";
    if (!isLarge || (!result.log.starts_with(kept) && !isNeverCut)) add(findings, "the trace log lost lines");
}

void judgeLogFiles(const Case& run, Findings& findings)
{
    const fs::path log = run.var() / ownLog;
    std::error_code absent;
    constexpr auto readableByAll = static_cast<fs::perms>(0666);
    const bool isReadable = fs::status(log, absent).permissions() == readableByAll;
    if (!isReadable && !run.fails({"fchmod", "statx", "open"}))
        add(findings, "the trace log's mode is not 666");
    for (const char* piece : {"00", "01"}) {
        const fs::path file = log.string() + piece;
        if (fs::symlink_status(file).type() != fs::file_type::not_found &&
            !run.fails({"unlink", "fstat", "statx", "open", "read"}))
            add(findings, file.filename().string() + " is left");
    }
}

void judgeNeighbours(const Case& run, Findings& findings)
{
    for (const char* neighbour : {neighbourDocument, neighbourLog}) {
        const std::string found = textOf(run.var() / neighbour);
        if (found != neighbourText) add(findings, std::string(neighbour) + " was overwritten");
    }
}

/// The simulated client has no answer to want of memory: it ends the process.
bool endedByClient(const Case& run, const kordTest::Outcome& outcome)
{
    constexpr int aborted = 134;
    const bool saidSo = outcome.error.find("bad_alloc") != std::string::npos ||
                        outcome.error.find("vale: no memory") != std::string::npos;
    return run.fails({"clientMemory"}) && outcome.status == aborted && saidSo;
}

/// What the client handed out came back to it. Its own account of fetched records misses those that fail
/// here, and is of no use where the client itself fails.
void judgeHeld(const Case& run, const Plan& plan, const Result& result, Findings& findings)
{
    if (run.fails({"clientMemory"})) return;
    if (!run.fails({"errorRecord", "errorMessage"})) return judgeReleases(plan, result, findings);
    const json& last = result.journal.back();
    for (const char* held : {"responses", "errors", "messages"}) {
        if (last.at(held) != json(0) && last.at(held) != json::array())
            findings.push_back({Kind::leak, std::string(held) + " never released"});
    }
}

/// Running out of memory for the hosts' descriptions ends the run, and is filed.
void judgeMemoryFiled(const Case& run, const Result& result, Findings& findings)
{
    if (run.fails({"calloc"}) &&
        result.log.find("==>:  handleErrKord Orvik.TarnScsiHostPort, m\n") == std::string::npos)
        add(findings, "no event tells that memory ran out");
}

void judgeSystem(const Case& run, const Plan& plan, const Result& result, Findings& findings)
{
    judgeMet(run, result, findings);
    judgeLog(run, result, findings);
    judgeNeighbours(run, findings);
    if (endedByClient(run, result.outcome)) return;
    judgeEnd(plan, result, findings);
    if (!findings.empty()) return;
    judgeHeld(run, plan, result, findings);
    if (!run.fails({"unlink"})) judgeTemporaryFiles(plan, result, findings);
    judgeEnding(run, result, findings);
    judgeLines(run, result, findings);
    judgeMemoryFiled(run, result, findings);
    judgeClosing(run, result, findings);
    judgeDocumentLeft(run, result, findings);
    judgeLogFiles(run, findings);
}

// ---- the plan ----

/// Runs a setup while nothing of the system fails. It ends as it should, or the sweep would prove nothing.
std::shared_ptr<const Ground> groundOf(const std::shared_ptr<kordTest::TempFolder>& home, const Setup& setup)
{
    auto ground = std::make_shared<Ground>();
    ground->setup = &setup;
    const Case run{.home = home, .ground = ground, .name = setup.name};
    const Result result = runOnce(planOf(run));
    if (result.outcome.status != setup.status || result.outcome.output != setup.output) {
        throw std::runtime_error(std::string(setup.name) + " ends with status " +
                                 std::to_string(result.outcome.status) + ", " + result.outcome.output +
                                 result.outcome.error);
    }
    ground->calls = readReport(run);
    ground->document = comparable(result.document.value_or(""));
    ground->trace = linesOf(result);
    fs::remove_all(run.folder());
    return ground;
}

/// Which of so many calls fail in turn.
std::vector<unsigned long> numbers(unsigned long count, unsigned long every)
{
    std::vector<unsigned long> chosen;
    for (unsigned long n = 1; n <= count; ++n) {
        if (n <= every || n % 10 == 0 || n == count) chosen.push_back(n);
    }
    return chosen;
}

/// In the short form: the first two, one between and the last.
std::vector<unsigned long> fewOf(unsigned long count)
{
    if (count <= 2) return numbers(count, count);
    std::vector<unsigned long> chosen = {1, 2, (count + 1) / 2, count};
    chosen.erase(std::unique(chosen.begin(), chosen.end()), chosen.end());
    return chosen;
}

/// In the short form, too, each rare call of the first setup fails in turn.
bool isSweptInShort(const Setup& setup, unsigned long count, bool onward)
{
    constexpr unsigned long rare = 25;
    return &setup == std::begin(setups) && count <= rare && !onward;
}

void addPlan(std::vector<Plan>& plans, const Case& run)
{
    Plan plan = planOf(run);
    plan.judge = [run](const Plan& planned, const Result& result, Findings& findings) {
        judgeSystem(run, planned, result, findings);
        fs::remove_all(run.folder());
    };
    plans.push_back(std::move(plan));
}

void addWay(std::vector<Plan>& plans, Case run, const SystemWay& way, bool isFull)
{
    const Setup& setup = *run.ground->setup;
    const auto counted = run.ground->calls.find(std::string(way.call));
    if (counted == run.ground->calls.end())
        throw std::runtime_error("nothing counts " + std::string(way.call));
    // A second has one look at the local time; how many seconds a run touches is not in its hands.
    const unsigned long count = way.call == "localtime" ? 1 : counted->second;
    // The client's own memory is not what is proven here, and it asks for a lot of it.
    const unsigned long every = way.call == "clientMemory" ? std::min(setup.every, usualEvery) : setup.every;
    run.way = &way;
    for (const bool onward : {false, true}) {
        if (onward && !way.onward) continue;
        const bool isWhole = isFull || isSweptInShort(setup, count, onward);
        for (const unsigned long n : isWhole ? numbers(count, every) : fewOf(count)) {
            run.nth = n;
            run.onward = onward;
            run.name = std::string(setup.name) + "-" + std::string(way.call) + "-" + effectOf(way) +
                       (onward ? "-from-" : "-at-") + std::to_string(n);
            addPlan(plans, run);
        }
    }
}

/// The functions of a program or library that `nm` lists with the option.
Texts symbols(const char* option, const fs::path& file)
{
    const kordTest::Outcome listed =
        kordTest::runProcess({.arguments = {KORD_NM, "-D", "-j", option, file}, .folder = {}});
    if (listed.status != 0) throw std::runtime_error("nm fails: " + listed.error);
    Texts names = kordTest::splitLines(listed.output);
    for (std::string& name : names)
        name = name.substr(0, name.find('@'));
    return names;
}

/// A call of the collector that nobody has thought of would go unswept.
[[maybe_unused]] void requireKnownCalls()
{
    const Texts interposed = symbols("--defined-only", interposer());
    for (const std::string& name : symbols("--undefined-only", collector())) {
        const bool known = name.starts_with("_") ||
                           std::find(interposed.begin(), interposed.end(), name) != interposed.end() ||
                           std::find(std::begin(faultless), std::end(faultless), name) != std::end(faultless);
        if (!known) throw std::runtime_error("the collector calls " + name + ", which nothing makes fail");
    }
}

} // namespace

/// The short form has the first setup's runs and those that tell most of another, and of all others' a share.
std::vector<Plan> planSystem(const Options& options)
{
    constexpr size_t fewRuns = 100;
    const bool isFull = options.full || !options.only.empty();
#ifndef KORD_COVERAGE // what counts the lines makes calls of its own
    requireKnownCalls();
#endif
    const auto home = std::make_shared<kordTest::TempFolder>();
    std::vector<Plan> plans;
    std::vector<Plan> others;
    for (const Setup& setup : setups) {
        const Case run{.home = home, .ground = groundOf(home, setup), .name = {}};
        for (const SystemWay& way : systemWays)
            addWay(&setup == std::begin(setups) || way.call == setup.tells ? plans : others, run, way,
                   isFull);
    }
    if (!isFull) others = thinned(std::move(others), fewRuns);
    std::move(others.begin(), others.end(), std::back_inserter(plans));
    return plans;
}

} // namespace sweep
