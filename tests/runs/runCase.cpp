// Reads cases strictly: every key is taken by name, and a key that nobody took is an error.

#include "runCase.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <stdexcept>

namespace kordTest
{

using nlohmann::json;
namespace fs = std::filesystem;

static constexpr const char* successLine = "XML file was built successfully. This is the normal return.\n";

std::string NumberedLines::line(int number) const
{
    std::string text = "old " + std::to_string(number) + " ";
    const int length = bytes / count + (number == count ? bytes % count : 0) - 1;
    text.resize(static_cast<size_t>(length), '.');
    return text;
}

/// The fields of one JSON object, each taken once.
class Fields
{
public:
    Fields(const json& object, std::string place) : object_(object), place_(std::move(place))
    {
        if (!object.is_object()) throw std::runtime_error(place_ + ": not an object");
        for (const auto& [key, value] : object.items()) {
            left_.insert(key);
        }
    }

    template <typename T>
    void take(const char* key, T& value)
    {
        if (const json* field = find(key)) value = get<T>(*field, key);
    }

    template <typename T>
    void take(const char* key, std::optional<T>& value)
    {
        if (const json* field = find(key)) value = get<T>(*field, key);
    }

    template <typename T>
    void require(const char* key, T& value)
    {
        if (!object_.contains(key)) throw std::runtime_error(place_ + ": no \"" + key + "\"");
        take(key, value);
    }

    const json* find(const char* key)
    {
        left_.erase(key);
        const auto field = object_.find(key);
        return field == object_.end() ? nullptr : &*field;
    }

    void finish() const
    {
        if (!left_.empty()) throw std::runtime_error(place_ + ": unknown key \"" + *left_.begin() + "\"");
    }

private:
    template <typename T>
    T get(const json& field, const std::string& key) const
    {
        try {
            return field.get<T>();
        } catch (const json::exception&) {
            throw std::runtime_error(place_ + ": \"" + key + "\" is of another type");
        }
    }

    const json& object_;
    std::string place_;
    std::set<std::string> left_;
};

/// "{x*500}" becomes 500 times x.
static std::string withRepetitions(const std::string& text)
{
    static const std::regex repetition(R"(\{(.)\*([0-9]+)\})");
    std::string result;
    std::string rest = text;
    for (std::smatch match; std::regex_search(rest, match, repetition); rest = match.suffix()) {
        result += match.prefix().str() + std::string(std::stoul(match[2]), match[1].str()[0]);
    }
    return result + rest;
}

static json expanded(const json& value, const json& fragments);

static void appendExpanded(json& list, const json& item, const json& fragments)
{
    const bool named = item.is_string() && item.get_ref<const std::string&>().starts_with("@");
    if (!named) {
        list.push_back(expanded(item, fragments));
        return;
    }
    const std::string name = item.get<std::string>().substr(1);
    if (!fragments.contains(name)) throw std::runtime_error("no fragment \"" + name + "\"");
    for (const json& part : fragments[name]) {
        appendExpanded(list, part, fragments);
    }
}

/// Puts fragments into lists and repetitions into texts, at any depth.
static json expanded(const json& value, const json& fragments)
{
    if (value.is_string()) return withRepetitions(value.get<std::string>());
    if (value.is_array()) {
        json list = json::array();
        for (const json& item : value) {
            appendExpanded(list, item, fragments);
        }
        return list;
    }
    json result = value;
    if (value.is_object()) {
        for (auto& [key, item] : result.items()) {
            item = expanded(item, fragments);
        }
    }
    return result;
}

static FileState readFileState(const json& object, const std::string& place)
{
    FileState state;
    Fields fields(object, place);
    fields.require("file", state.file);
    fields.take("absent", state.absent);
    fields.take("folder", state.folder);
    fields.take("content", state.content);
    fields.take("contains", state.contains);
    fields.take("symlink", state.symlink);
    if (std::optional<std::string> mode; fields.take("mode", mode), mode)
        state.mode = std::stoi(*mode, nullptr, 8);
    if (const json* numbered = fields.find("numberedLines")) {
        Fields numbers(*numbered, place + " numberedLines");
        state.numbered.emplace();
        numbers.require("count", state.numbered->count);
        numbers.require("bytes", state.numbered->bytes);
        numbers.take("from", state.firstNumber);
        numbers.finish();
    }
    fields.finish();
    const int kinds = state.absent + state.folder + state.content.has_value() + state.contains.has_value() +
                      state.symlink.has_value() + state.numbered.has_value();
    if (kinds != 1 && !(kinds == 0 && state.mode)) throw std::runtime_error(place + ": not one state");
    return state;
}

static std::vector<FileState> readFileStates(const json* list, const std::string& place)
{
    std::vector<FileState> states;
    if (list == nullptr) return states;
    for (const json& object : *list) {
        states.push_back(readFileState(object, place));
    }
    return states;
}

static std::vector<Event> readEvents(const json* list, const std::string& place)
{
    std::vector<Event> events;
    if (list == nullptr) return events;
    for (const json& event : *list) {
        if (!event.is_array() || event.size() != 2)
            throw std::runtime_error(place + ": not a code and a text");
        events.push_back({event[0].get<std::string>(), event[1].get<std::string>()});
    }
    return events;
}

static DocumentState readDocumentState(const json* object, const std::string& place)
{
    DocumentState state;
    if (object == nullptr) return state;
    Fields fields(*object, place);
    fields.take("absent", state.absent);
    fields.take("stylesheet", state.stylesheet);
    fields.take("exact", state.exact);
    fields.take("lines", state.lines);
    fields.take("lacks", state.lacks);
    fields.take("missingClosings", state.missingClosings);
    fields.take("extraClosings", state.extraClosings);
    fields.take("outlineDepth", state.outlineDepth);
    fields.take("outline", state.outline);
    fields.finish();
    if (state.outlineDepth.has_value() == state.outline.empty()) {
        throw std::runtime_error(place + ": \"outline\" and \"outlineDepth\" stand together");
    }
    return state;
}

static void readGiven(Fields& fields, RunCase& run, const std::string& place)
{
    run.facility = "small.json";
    run.patch = json::array();
    run.faults = json::array();
    run.arguments = {"-t", "9999-B2C*7ABCD12"};
    fields.take("facility", run.facility);
    fields.take("patch", run.patch);
    fields.take("faults", run.faults);
    fields.take("arguments", run.arguments);
    fields.take("user", run.user);
    run.setup = readFileStates(fields.find("setup"), place + " setup");
    fields.take("missing", run.missing);
}

static void readExpected(Fields& fields, RunCase& run, const std::string& place)
{
    fields.take("status", run.status);
    run.output = successLine;
    if (run.status == 3) {
        fields.take("output", run.output);
    } else {
        fields.require("output", run.output);
    }
    fields.take("error", run.error);
    run.wrapped = run.user.value_or("root") != "root";
    fields.take("wrapped", run.wrapped);
    fields.take("openSessions", run.openSessions);
    fields.take("trace", run.trace);
    fields.take("traceHas", run.traceHas);
    fields.take("traceLacks", run.traceLacks);
    fields.take("traceRaw", run.traceRaw);
    fields.take("lastTrace", run.lastTrace);
    run.events = readEvents(fields.find("events"), place + " events");
    fields.take("journal", run.journal);
    fields.take("journalHas", run.journalHas);
    fields.take("journalLacks", run.journalLacks);
    fields.take("programs", run.programs);
    fields.take("calls", run.calls);
    run.document = readDocumentState(fields.find("document"), place + " document");
    run.files = readFileStates(fields.find("files"), place + " files");
    fields.take("left", run.left);
}

static RunCase readCase(const json& object, const std::string& prefix)
{
    RunCase run;
    Fields fields(object, prefix);
    fields.require("name", run.name);
    run.name = prefix + "_" + run.name;
    if (!std::all_of(run.name.begin(), run.name.end(),
                     [](unsigned char c) { return std::isalnum(c) || c == '_'; })) {
        throw std::runtime_error(run.name + ": a name holds letters, digits and \"_\"");
    }
    fields.require("why", run.why);
    readGiven(fields, run, run.name);
    readExpected(fields, run, run.name);
    fields.finish();
    return run;
}

/// A case's variants: the case with some of its keys replaced, named after both.
static std::vector<json> spread(const json& object)
{
    if (!object.contains("variants")) return {object};
    std::vector<json> all;
    for (const json& variant : object["variants"]) {
        json merged = object;
        merged.erase("variants");
        merged.update(variant);
        merged["name"] = object.at("name").get<std::string>() + "_" + variant.at("name").get<std::string>();
        all.push_back(merged);
    }
    return all;
}

std::ostream& operator<<(std::ostream& stream, const RunCase& run)
{
    return stream << run.name;
}

std::vector<RunCase> readCases(const json& file, const json& fragments, const std::string& prefix)
{
    std::string about;
    Fields fields(file, prefix);
    fields.require("about", about);
    const json* cases = fields.find("cases");
    fields.finish();
    if (cases == nullptr || !cases->is_array()) throw std::runtime_error(prefix + ": no \"cases\"");

    std::vector<RunCase> runs;
    std::set<std::string> names;
    for (const json& object : *cases) {
        for (const json& single : spread(object)) {
            runs.push_back(readCase(expanded(single, fragments), prefix));
            if (!names.insert(runs.back().name).second)
                throw std::runtime_error(runs.back().name + ": twice");
        }
    }
    return runs;
}

static json parseFile(const fs::path& file)
{
    std::ifstream stream(file);
    return json::parse(stream);
}

std::vector<RunCase> loadCases(const fs::path& folder, const fs::path& fragments)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".json") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());

    std::vector<RunCase> all;
    for (const fs::path& file : files) {
        try {
            const auto runs = readCases(parseFile(file), parseFile(fragments), file.stem());
            all.insert(all.end(), runs.begin(), runs.end());
        } catch (const std::exception& fault) {
            RunCase broken;
            broken.name = file.stem().string() + "_broken";
            broken.broken = file.filename().string() + ": " + fault.what();
            all.push_back(broken);
        }
    }
    return all;
}

} // namespace kordTest
