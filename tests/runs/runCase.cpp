// Reads cases strictly: every key is taken by name, and a key that nobody took is an error.

#include "runCase.h"

#include "consoleRun.h"
#include "parseJson.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace kordTest
{

using nlohmann::json;
namespace fs = std::filesystem;

namespace
{

constexpr const char* successLine = "XML file was built successfully. This is the normal return.\n";

} // namespace

std::string NumberedLines::line(int number) const
{
    std::string text = "old " + std::to_string(number) + " ";
    const int length = bytes / count + (number == count ? bytes % count : 0) - 1;
    text.resize(static_cast<size_t>(length), '.');
    return text;
}

namespace
{

/// The fields of one JSON object, each taken once.
class Fields
{
public:
    Fields(const json& from, std::string where) : object(from), place(std::move(where))
    {
        if (!object.is_object()) throw std::runtime_error(place + ": not an object");
        for (const auto& [key, value] : object.items()) {
            left.insert(key);
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
        if (!object.contains(key)) throw std::runtime_error(place + ": no \"" + key + "\"");
        take(key, value);
    }

    const json* find(const char* key)
    {
        left.erase(key);
        const auto field = object.find(key);
        return field == object.end() ? nullptr : &*field;
    }

    void finish() const
    {
        if (!left.empty()) throw std::runtime_error(place + ": unknown key \"" + *left.begin() + "\"");
    }

private:
    template <typename T>
    T get(const json& field, const std::string& key) const
    {
        try {
            return field.get<T>();
        } catch (const json::exception&) {
            throw std::runtime_error(place + ": \"" + key + "\" is of another type");
        }
    }

    const json& object;
    std::string place;
    std::set<std::string> left;
};

/// Spreads one case out into plain ones: rows of tables, variants, and whatever its texts refer to by name.
class Expansion
{
public:
    explicit Expansion(const json& known) : fragments(known) {}

    std::vector<json> cases(const json& object)
    {
        spread(object, json::object());
        for (const std::string& name : givenBy(object)) {
            if (!used.contains(name))
                throw std::runtime_error("the parameter \"" + name + "\" is never used");
        }
        return plain;
    }

private:
    /// Values are what the parameters stand for here: an inner one takes the place of an outer one.
    void spread(json object, json values)
    {
        give(values, taken(object, "with"));
        if (const json table = taken(object, "each"); !table.is_null()) {
            for (const json& row : rowsOf(table)) {
                json inner = values;
                give(inner, row);
                spread(object, inner);
            }
        } else if (const json variants = taken(object, "variants"); !variants.is_null()) {
            for (const json& variant : variants) {
                spread(varied(object, variant), values);
            }
        } else if (const json shape = taken(object, "like"); !shape.is_null()) {
            json merged = fragment(textOf(filled(shape, values)));
            json inner = merged.value("with", json::object());
            inner.update(values);
            merged.update(object);
            merged.erase("with");
            spread(merged, inner);
        } else {
            plain.push_back(filled(object, values));
        }
    }

    static json taken(json& object, const char* key)
    {
        json value = object.value(key, json());
        object.erase(key);
        return value;
    }

    /// A table's rows as objects; its first row holds the names.
    static std::vector<json> rowsOf(const json& table)
    {
        if (table.empty() || !table.is_array()) throw std::runtime_error("no table: " + table.dump());
        std::vector<json> rows;
        for (size_t row = 1; row < table.size(); ++row) {
            if (table[row].size() != table[0].size())
                throw std::runtime_error("the row " + table[row].dump() + " does not fit its heading");
            rows.push_back(json::object());
            for (size_t i = 0; i < table[row].size(); ++i) {
                rows.back()[table[0][i].get<std::string>()] = table[row][i];
            }
        }
        return rows;
    }

    /// The case with the variant's keys in place of its own, named after both.
    static json varied(const json& object, const json& variant)
    {
        json merged = object;
        merged.update(variant);
        if (object.contains("name") && variant.contains("name"))
            merged["name"] = object["name"].get<std::string>() + "_" + variant["name"].get<std::string>();
        return merged;
    }

    static void give(json& values, const json& more)
    {
        for (const auto& [name, value] : more.items()) {
            if (!isParameter(name)) throw std::runtime_error("\"" + name + "\" cannot be a parameter's name");
            values[name] = value;
        }
    }

    /// The parameters that a case itself gives, at any depth: not those of the shapes that it is like.
    static std::set<std::string> givenBy(const json& value)
    {
        std::set<std::string> names;
        if (!value.is_structured()) return names;
        for (const auto& [key, item] : value.items()) {
            const bool gives = value.is_object() && (key == "with" || key == "each" || key.starts_with("@"));
            if (gives && item.is_array()) names.insert(item.at(0).begin(), item.at(0).end());
            if (gives && item.is_object()) {
                for (const auto& [name, inner] : item.items()) {
                    names.insert(name);
                }
            }
            names.merge(givenBy(item));
        }
        return names;
    }

    static bool isParameter(const std::string& name)
    {
        return !name.empty() && name[0] >= 'a' && name[0] <= 'z' && name != "any" && name != "root" &&
               std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c); });
    }

    /// What a name stands for: a parameter, else a fragment.
    const json& named(const std::string& name, const json& values)
    {
        if (values.contains(name)) {
            used.insert(name);
            return values.at(name);
        }
        return fragment(name);
    }

    const json& fragment(const std::string& name) const
    {
        if (!fragments.contains(name)) throw std::runtime_error("nothing is named \"" + name + "\"");
        return fragments.at(name);
    }

    json valueOf(const std::string& name, const json& values)
    {
        if (!within.insert(name).second) throw std::runtime_error("\"" + name + "\" stands within itself");
        json value = filled(named(name, values), values);
        within.erase(name);
        return value;
    }

    /// What stands in braces: a parameter's value, a repetition, or what is left for the run ({any}, {root}).
    json braced(const std::string& inner, const json& values)
    {
        if (isParameter(inner)) return valueOf(inner, values);
        const bool repeats = inner.size() > 2 && inner[1] == '*' &&
                             inner.find_first_not_of("0123456789", 2) == std::string::npos;
        return repeats ? std::string(std::stoul(inner.substr(2)), inner[0]) : "{" + inner + "}";
    }

    static std::string textOf(const json& value)
    {
        if (value.is_structured() || value.is_null())
            throw std::runtime_error("within a text stands " + value.dump());
        return value.is_string() ? value.get<std::string>() : value.dump();
    }

    json filledText(const std::string& text, const json& values)
    {
        std::string result;
        size_t at = 0;
        for (size_t open = 0; (open = text.find('{', at)) != std::string::npos;) {
            const size_t close = text.find('}', open);
            if (close == std::string::npos) break;
            json value = braced(text.substr(open + 1, close - open - 1), values);
            if (open == 0 && close + 1 == text.size()) return value;
            result += text.substr(at, open - at) + textOf(value);
            at = close + 1;
        }
        return result + text.substr(at);
    }

    json filled(const json& value, const json& values)
    {
        if (value.is_string()) return filledText(value.get_ref<const std::string&>(), values);
        if (!value.is_structured()) return value;
        json result = value.is_array() ? json::array() : json::object();
        for (const auto& [key, item] : value.items()) {
            if (value.is_array()) {
                append(result, item, values);
            } else if (const json field = filled(item, values); item.is_null() || !field.is_null()) {
                result[key] = field; // a parameter that is null leaves its key out
            }
        }
        return result;
    }

    /// "@name" stands for the items of what is named, {"@name": {...}} for the same with parameters of its
    /// own, {"@name": [...]} for the same once for each row of a table.
    void append(json& list, const json& item, const json& values)
    {
        const bool call = item.is_object() && item.size() == 1 && item.begin().key().starts_with("@");
        const std::string text = call ? item.begin().key() : item.is_string() ? item.get<std::string>() : "";
        if (!text.starts_with("@")) {
            list.push_back(filled(item, values));
            return;
        }
        const std::string name = textOf(filledText(text.substr(1), values));
        const json items = named(name, values);
        if (!within.insert("@" + name).second) throw std::runtime_error("@" + name + " stands within itself");
        const json given = call ? item.begin().value() : json::object();
        for (const json& row : given.is_array() ? rowsOf(given) : std::vector<json>{given}) {
            json inner = values;
            give(inner, filled(row, values));
            for (const json& part : items) {
                append(list, part, inner);
            }
        }
        within.erase("@" + name);
    }

    const json& fragments;
    std::set<std::string> used;
    std::set<std::string> within; ///< the names whose values are being filled in
    std::vector<json> plain;
};

FileState readFileState(const json& object, const std::string& place)
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

std::vector<FileState> readFileStates(const json* list, const std::string& place)
{
    std::vector<FileState> states;
    if (list == nullptr) return states;
    for (const json& object : *list) {
        states.push_back(readFileState(object, place));
    }
    return states;
}

std::vector<Event> readEvents(const json* list, const std::string& place)
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

DocumentState readDocumentState(const json* object, const std::string& place)
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

void readGiven(Fields& fields, RunCase& run, const std::string& place)
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

void readExpected(Fields& fields, RunCase& run, const std::string& place)
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

RunCase readCase(const json& object, const std::string& prefix)
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

} // namespace

std::ostream& operator<<(std::ostream& stream, const RunCase& run)
{
    return stream << run.name;
}

std::vector<json> expandedCases(const json& file, const json& fragments, const std::string& prefix)
{
    std::string about;
    Fields fields(file, prefix);
    fields.require("about", about);
    json known = fragments;
    if (const json* own = fields.find("fragments")) known.update(*own);
    const json* cases = fields.find("cases");
    fields.finish();
    if (cases == nullptr || !cases->is_array()) throw std::runtime_error(prefix + ": no \"cases\"");

    std::vector<json> all;
    for (const json& object : *cases) {
        try {
            const std::vector<json> plain = Expansion(known).cases(object);
            all.insert(all.end(), plain.begin(), plain.end());
        } catch (const std::exception& fault) {
            throw std::runtime_error(object.value("name", object.dump().substr(0, 60)) + ": " + fault.what());
        }
    }
    return all;
}

std::vector<RunCase> readCases(const json& file, const json& fragments, const std::string& prefix)
{
    std::vector<RunCase> runs;
    std::set<std::string> names;
    for (const json& object : expandedCases(file, fragments, prefix)) {
        runs.push_back(readCase(object, prefix));
        if (!names.insert(runs.back().name).second) throw std::runtime_error(runs.back().name + ": twice");
    }
    return runs;
}

namespace
{

json parseFile(const fs::path& file)
{
    return parseJson(readFile(file).value());
}

std::vector<fs::path> caseFiles(const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".json") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

std::string expandedFolder(const fs::path& folder, const fs::path& fragments, const std::string& only)
{
    json all = json::object();
    for (const fs::path& file : caseFiles(folder)) {
        if (only.empty() || file.stem() == only)
            all[file.stem()] = expandedCases(parseFile(file), parseFile(fragments), file.stem());
    }
    return all.dump(1);
}

std::vector<RunCase> loadCases(const fs::path& folder, const fs::path& fragments)
{
    std::vector<RunCase> all;
    for (const fs::path& file : caseFiles(folder)) {
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
