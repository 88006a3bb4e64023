// A file is read once, resource by resource: each is checked, laid out and forgotten, so that the memory
// needed is the image's, not the text's. What remains is the frame: console, systems, faults, class names.

#include "facility/compile.h"

#include "facility/resources.h"
#include "facility/rules.h"

#include <algorithm>

namespace console::facility
{

namespace
{

using nlohmann::json;
using Event = json::parse_event_t;

/// Follows the parser through the file and knows where it is.
class Reader
{
public:
    Reader(Schema& ofFile, Resources& ofImage, Faults& found)
        : schema(ofFile), resources(ofImage), faults(found)
    {
    }

    /// Called by the parser after every piece; false makes it forget the piece.
    bool operator()(int depth, Event event, json& piece);

private:
    struct Level {
        bool list = false;
        size_t index = 0;              ///< of the element being read
        std::vector<std::string> keys; ///< all but the first keyCount are left over from earlier objects
        size_t keyCount = 0;
    };
    void enter(int depth, bool list);
    void addKey(Level& level, const std::string& key);
    void checkKeys(const Level& level, size_t size);
    void checkText(const std::string& text, size_t depth);
    bool endPiece(size_t depth, json& piece);
    [[nodiscard]] bool isResource(size_t depth) const;
    [[nodiscard]] std::string pointer(size_t depth) const;

    Schema& schema;
    Resources& resources;
    Faults& faults;
    std::vector<Level> levels; ///< the deepest may be left over
};

bool Reader::operator()(int depth, Event event, json& piece)
{
    const auto place = static_cast<size_t>(depth); // how many lists and objects are open around the piece
    switch (event) {
    case Event::object_start:
    case Event::array_start:
        enter(depth, event == Event::array_start);
        return true;
    case Event::key:
        addKey(levels[place - 1], piece.get_ref<const std::string&>());
        checkText(piece.get_ref<const std::string&>(), place);
        return true;
    case Event::value:
        if (piece.is_string()) checkText(piece.get_ref<const std::string&>(), place);
        return endPiece(place, piece);
    case Event::object_end:
        checkKeys(levels[place], piece.size());
        return endPiece(place, piece);
    case Event::array_end:
        return endPiece(place, piece);
    }
    return true;
}

void Reader::enter(int depth, bool list)
{
    const auto place = static_cast<size_t>(depth);
    if (levels.size() <= place) levels.resize(place + 1);
    levels[place].list = list;
    levels[place].index = 0;
    levels[place].keyCount = 0;
}

void Reader::addKey(Level& level, const std::string& key)
{
    if (level.keys.size() == level.keyCount) level.keys.emplace_back();
    level.keys[level.keyCount++] = key;
}

/// The parser keeps the last of several members of one name without a word.
void Reader::checkKeys(const Level& level, size_t size)
{
    if (level.keyCount == size) return;
    const size_t depth = static_cast<size_t>(&level - levels.data());
    std::vector<std::string> keys(level.keys.begin(),
                                  level.keys.begin() + static_cast<ptrdiff_t>(level.keyCount));
    std::ranges::sort(keys);
    for (auto twice = keys.begin(); (twice = std::adjacent_find(twice, keys.end())) != keys.end();
         twice = std::upper_bound(twice, keys.end(), *twice)) {
        faults.push_back({join(pointer(depth), *twice), "stands here more than once"});
    }
}

/// Texts end at a NUL for everyone who reads them; only what a program prints may hold one.
void Reader::checkText(const std::string& text, size_t depth)
{
    if (text.find('\0') == std::string::npos) return;
    const std::string place = pointer(depth);
    if (place.starts_with("/faults/") && place.ends_with("/output")) return;
    faults.push_back({place, "holds a NUL"});
}

bool Reader::endPiece(size_t depth, json& piece)
{
    bool keep = true;
    if (isResource(depth)) {
        const auto classIndex = schema.findClass(levels[1].keys[levels[1].keyCount - 1]);
        if (classIndex) resources.add(*classIndex, piece, pointer(depth), faults);
        keep = false;
    }
    if (depth > 0 && levels[depth - 1].list) ++levels[depth - 1].index;
    return keep;
}

/// Whether the piece is an element of one of the lists in "resources".
bool Reader::isResource(size_t depth) const
{
    return depth == 3 && !levels[0].list && levels[0].keys[levels[0].keyCount - 1] == "resources" &&
           !levels[1].list && levels[2].list;
}

std::string Reader::pointer(size_t depth) const
{
    std::string pointer;
    for (size_t i = 0; i < depth; ++i) {
        const Level& level = levels[i];
        pointer = level.list ? join(pointer, level.index) : join(pointer, level.keys[level.keyCount - 1]);
    }
    return pointer;
}

/// The parser's message without its name for the kind of fault.
std::string parserMessage(const std::string& message)
{
    const size_t end = message.find("] ");
    const std::string text = end == std::string::npos ? message : message.substr(end + 2);
    constexpr std::string_view start = "parse error at ";
    return text.starts_with(start) ? text.substr(start.size()) : text;
}

void writeConsole(const json& console, ImageWriter& writer, image::Header& header)
{
    const auto user = console.find("user");
    if (user != console.end() && user->is_string())
        header.user = writer.text(user->get_ref<const std::string&>());
    const auto vpd = console.find("vpd");
    if (vpd == console.end()) return;
    const image::Value lines = writeValue(writer, *vpd, image::Type::texts);
    header.vpdLines = lines.data;
    header.vpdLineCount = lines.count;
}

void writeRecording(const json& recording, ImageWriter& writer, image::Header& header)
{
    header.recordedStatus = recording.value("status", -1);
    const auto date = recording.find("date");
    if (date != recording.end()) header.recordedDate = writer.text(date->get_ref<const std::string&>());
    const auto command = recording.find("command");
    if (command == recording.end() || command->empty()) return;
    const image::Value words = writeValue(writer, *command, image::Type::texts);
    header.recordedCommand = words.data;
    header.recordedWordCount = words.count;
}

void writeSystems(const json& systems, ImageWriter& writer, image::Header& header)
{
    std::vector<image::System> written;
    for (const auto& [mtms, state] : systems.items())
        written.push_back(
            {.mtms = writer.text(mtms), .state = writer.text(state.get_ref<const std::string&>())});
    header.systems = writer.array(std::span<const image::System>(written));
    header.systemCount = written.size();
}

} // namespace

Compilation compile(std::string_view file)
{
    Compilation compilation;
    Schema schema;
    ImageWriter writer;
    Resources resources(schema, writer);
    Reader reader(schema, resources, compilation.faults);
    json frame;
    try {
        frame = json::parse(
            file, [&reader](int depth, Event event, json& piece) { return reader(depth, event, piece); });
    } catch (const json::exception& failure) {
        compilation.faults = {{"", parserMessage(failure.what())}};
        return compilation;
    }
    schema.checkFrame(frame, compilation.faults);
    json rules = json::array();
    if (frame.is_object() && frame.contains("faults")) rules = std::move(frame["faults"]);
    checkRules(rules, schema, compilation.faults);
    if (!compilation.faults.empty()) return compilation;

    image::Header header{};
    header.magic = image::magic;
    writeConsole(frame.value("console", json::object()), writer, header);
    writeRecording(frame.value("recording", json::object()), writer, header);
    writeSystems(frame.value("systems", json::object()), writer, header);
    writeRules(rules, schema, writer, header);
    resources.finish(header);
    compilation.image = writer.finish(header);
    return compilation;
}

} // namespace console::facility
