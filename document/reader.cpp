#include "document/reader.h"

#include "document/builder.h"
#include "document/text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

namespace document
{

namespace
{

constexpr std::string_view declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
constexpr std::string_view stylesheet = R"(<?xml-stylesheet type="text/xsl" href="v03.xsl"?>)";
constexpr std::string_view root = R"(<com.orvik.inventory verion="1.0">)";
constexpr std::string_view rootEnd = "</com.orvik.inventory>";
constexpr std::string_view setStart =
    R"(<ResourceSet class="com.orvik.inventory.Hardware" type="Hardware" version="1.0" timestamp=")";
constexpr std::string_view setEnd = "</ResourceSet>";
constexpr std::string_view listStart = R"(<ResourceList displayName=")";
constexpr std::string_view listEnd = "</ResourceList>";
constexpr std::string_view resourceStart = R"(<Resource displayName=")";
constexpr std::string_view idStart = R"(" uniqueId=")";
constexpr std::string_view resourceEnd = "</Resource>";
constexpr std::string_view propertyStart = R"(<Property name=")";
constexpr std::string_view labelStart = R"(" displayName=")";
constexpr std::string_view hostsStart = R"(<Property name=U2 displayName="Host Inventory">)";
constexpr std::string_view propertyEnd = "</Property>";
constexpr std::string_view valueStart = R"(<Value type="string">)";
constexpr std::string_view valueEnd = "</Value>";
constexpr std::string_view tagEnd = R"(">)";

constexpr std::string_view drawerPartitions = "Enclosures Partitions";
constexpr size_t deepest = 32; ///< documents are 15 elements deep

/// The lines of a document, with one line of foresight.
class Lines
{
public:
    Lines(std::istream& fromInput, std::string fromName) : input(fromInput), name(std::move(fromName))
    {
        fetch();
    }

    [[nodiscard]] const std::string& next() const { return ahead; }
    [[nodiscard]] bool atEnd() const { return ended; }

    std::string take()
    {
        if (ended) fault("the document ends here");
        std::string line = std::move(ahead);
        ++number;
        fetch();
        return line;
    }

    /// \param back how many lines before the next one it is
    [[noreturn]] void fault(const std::string& what, size_t back = 0) const
    {
        throw Malformed(name + ':' + std::to_string(number + 1 - back) + ": " + what);
    }

private:
    void fetch()
    {
        ended = !std::getline(input, ahead);
        if (ended) ahead.clear();
        if (input.bad()) throw Malformed(name + ": " + std::strerror(errno));
        if (!ended && input.eof()) fault("the document ends in the middle of a line");
    }

    std::istream& input;
    std::string name;
    std::string ahead;
    size_t number = 0; ///< lines taken
    bool ended = false;
};

std::string quoted(std::string_view text)
{
    constexpr size_t width = 60;
    return '"' + cutTo(shown(text), width) + '"';
}

/// An element that is open.
struct Open {
    bool list = false;
    std::string name;
    Kind kind = Kind::other; ///< of a resource
    bool hadList = false;
};

class Reader
{
public:
    Reader(std::istream& input, const std::string& name) : lines(input, name), builder(name) {}

    Document read()
    {
        head();
        while (lines.next() != setEnd)
            element();
        if (!open.empty()) lines.fault("the document ends inside " + nameOf(open.back()));
        if (!whole) lines.fault("there is no managed system");
        expect(setEnd);
        expect(rootEnd);
        if (!lines.atEnd()) lines.fault("there is more after the end: " + quoted(lines.next()));
        return builder.finish();
    }

private:
    void expect(std::string_view line)
    {
        if (lines.atEnd() || lines.next() != line) {
            const std::string found = lines.atEnd() ? "the end" : quoted(lines.next());
            lines.fault(found + " stands where " + quoted(line) + " should");
        }
        lines.take();
    }

    void head()
    {
        expect(declaration);
        if (lines.next() == stylesheet) lines.take();
        expect(root);
        const std::string line = lines.take();
        const bool set = line.starts_with(setStart) && line.ends_with(tagEnd);
        const std::string timestamp =
            set ? line.substr(setStart.size(), line.size() - setStart.size() - tagEnd.size()) : "";
        if (!isTimestamp(timestamp)) lines.fault(quoted(line) + " is no start of a resource set", 1);
        builder.timestamp(timestamp);
    }

    static bool isTimestamp(std::string_view text)
    {
        const size_t point = text.find('.');
        const auto number = [](std::string_view digits) {
            return !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
        };
        return point != std::string_view::npos && number(text.substr(0, point)) &&
               number(text.substr(point + 1));
    }

    void element()
    {
        const std::string& line = lines.next();
        if (lines.atEnd()) lines.fault("the document ends before its end tags");
        if (line.starts_with(propertyStart) || line == hostsStart)
            property();
        else if (line.starts_with(resourceStart))
            openResource();
        else if (line.starts_with(listStart))
            openList();
        else if (line == resourceEnd)
            closeResource();
        else if (line == listEnd)
            closeList();
        else
            lines.fault(quoted(line) + " is no line of an inventory document");
    }

    static std::string nameOf(const Open& element)
    {
        return (element.list ? "the list " : "") + quoted(element.name);
    }

    [[nodiscard]] bool inList() const { return !open.empty() && open.back().list; }
    [[nodiscard]] bool inResource() const { return !open.empty() && !open.back().list; }
    [[nodiscard]] bool inDrawer() const { return inResource() && open.back().kind == Kind::processorComplex; }
    /// In a list of the partitions of a processor complex.
    [[nodiscard]] bool inDrawerPartitions() const
    {
        return inList() && open.back().name == drawerPartitions &&
               open.at(open.size() - 2).kind == Kind::processorComplex;
    }

    void push(Open element)
    {
        if (open.size() == deepest) lines.fault("elements are nested deeper than in any document", 1);
        open.push_back(std::move(element));
    }

    /// What stands between a tag's start and its end. A value in a tag may hold line feeds.
    std::string tag(std::string_view start)
    {
        std::string text = lines.take();
        while (!text.ends_with(tagEnd) && text.starts_with(resourceStart) && !lines.atEnd())
            text += '\n' + lines.take();
        if (text.size() < start.size() + tagEnd.size() || !text.ends_with(tagEnd))
            lines.fault(quoted(text) + " has no end", 1);
        return text.substr(start.size(), text.size() - start.size() - tagEnd.size());
    }

    void openList()
    {
        const std::string name = tag(listStart);
        // Each partition of a drawer opens a list of its own; only the last one is closed.
        if (name == drawerPartitions && inDrawerPartitions()) open.pop_back();
        if (!inResource()) lines.fault("the list " + quoted(name) + " is not inside a resource", 1);
        open.back().hadList = true;
        push({.list = true, .name = name});
        builder.openList(name);
    }

    void closeList()
    {
        lines.take();
        if (inList()) {
            open.pop_back();
            builder.closeList();
        } else if (inDrawer() && !open.back().hadList) {
            open.back().hadList = true; // a drawer without cards closes the list that one before it had
        } else {
            lines.fault("a list ends that is not open", 1);
        }
    }

    void openResource()
    {
        const auto [name, id] = nameAndId(tag(resourceStart));
        if (!inList() && (!open.empty() || whole)) lines.fault(quoted(name) + " does not stand in a list", 2);
        const std::string list = inList() ? open.back().name : "";
        push({.list = false, .name = name, .kind = kindOf(list, name)});
        builder.openPart(name, id);
    }

    /// A resource's text repeats its identifier, which tells where in the tag the identifier begins.
    std::pair<std::string, std::string> nameAndId(const std::string& text)
    {
        std::string id = lines.take();
        for (;;) {
            const std::string end = std::string(idStart) + id;
            if (text.ends_with(end)) return {text.substr(0, text.size() - end.size()), id};
            if (std::ranges::count(id, '\n') == std::ranges::count(text, '\n'))
                lines.fault(quoted(id) + " stands where the identifier of " + quoted(text) + " should", 1);
            id += '\n' + lines.take();
        }
    }

    void closeResource()
    {
        lines.take();
        if (!inResource())
            lines.fault(open.empty() ? "a resource ends that is not open"
                                     : "a resource ends inside " + nameOf(open.back()),
                        1);
        open.pop_back();
        builder.closePart();
        whole = whole || open.empty();
    }

    void property()
    {
        if (!inResource()) lines.fault("a property is not inside a resource");
        if (open.back().hadList) lines.fault("a property stands after a list");
        names();
        builder.property({.code = code, .label = label, .reversed = order == Order::reversed}, value());
        expect(propertyEnd);
    }

    /// The code is in the tag's name, or, in the tags of some parts, in its display name.
    void names()
    {
        const bool hosts = lines.next() == hostsStart;
        const std::string text = hosts ? lines.take() : tag(propertyStart);
        code = lines.take();
        const std::string normal = code + std::string(labelStart);
        const std::string reversed = std::string(labelStart) + code;
        order = Order::normal;
        if (hosts && code == "U2") {
            label = "Host Inventory";
        } else if (!hosts && text.starts_with(normal)) {
            label = text.substr(normal.size());
        } else if (!hosts && text.ends_with(reversed)) {
            label = text.substr(0, text.size() - reversed.size());
            order = Order::reversed;
        } else {
            lines.fault(quoted(code) + " stands where the code of a property should", 1);
        }
    }

    /// A value may hold line feeds, and even what looks like its end.
    std::string value()
    {
        std::string text = lines.take();
        if (!text.starts_with(valueStart)) lines.fault(quoted(text) + " is no value", 1);
        for (size_t taken = 1; !(text.ends_with(valueEnd) && startsElement(lines.next())); ++taken) {
            if (lines.atEnd()) lines.fault("the value that begins here does not end", taken);
            text += '\n' + lines.take();
        }
        return text.substr(valueStart.size(), text.size() - valueStart.size() - valueEnd.size());
    }

    static bool startsElement(std::string_view line)
    {
        return line == propertyEnd || line == resourceEnd || line == listEnd || line == setEnd ||
               line.starts_with(propertyStart) || line.starts_with(resourceStart) ||
               line.starts_with(listStart);
    }

    Lines lines;
    Builder builder;
    std::vector<Open> open;
    std::string code; ///< of the property that is read
    std::string label;
    Order order = Order::normal;
    bool whole = false; ///< the managed system is read
};

} // namespace

Document read(std::istream& input, const std::string& name)
{
    return Reader(input, shown(name)).read();
}

Document readFile(const std::string& file)
{
    std::ifstream input(file, std::ios::binary);
    if (!input) throw Malformed(shown(file) + ": " + std::strerror(errno));
    if (input.peek(); input.bad() || (input.fail() && !input.eof()))
        throw Malformed(shown(file) + ": " + std::strerror(errno));
    input.clear();
    return read(input, file);
}

} // namespace document
