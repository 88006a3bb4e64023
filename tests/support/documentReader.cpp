// The reader walks the document's lines with a stack of the elements that are open.

#include "documentReader.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

#include "consoleRun.h"
#include "pattern.h"

namespace kordTest
{

namespace
{

enum class Order { normal, reversed, both };

struct Label {
    std::string_view code;
    std::string_view label;
    Order order = Order::normal;
};

// The misspelt labels are the document's own: consumers match them.
constexpr Label labels[] = {
    {.code = "S3", .label = "Storage Facility MTMS"},
    {.code = "S4", .label = "Storage Facility Image MTMS"},
    {.code = "EC", .label = "EC Level"},
    {.code = "EC", .label = "Engineering Change Level", .order = Order::reversed},
    {.code = "LE", .label = "Firmware Level", .order = Order::both},
    {.code = "LE", .label = "LIC VRMF"},
    {.code = "PN", .label = "Part Number"},
    {.code = "PN", .label = "PartNumber of assembly", .order = Order::reversed},
    {.code = "SN", .label = "Serial Number", .order = Order::both},
    {.code = "CC", .label = "Customer Card Indentification Number", .order = Order::reversed},
    {.code = "IF", .label = "InterfaceID"},
    {.code = "IF", .label = "IntefaceID"},
    {.code = "IF", .label = "Storage Facility MTMS - InterfaceID"},
    {.code = "R1", .label = "Rack Location"},
    {.code = "R2", .label = "Rack Number"},
    {.code = "RK", .label = "Rack Unique ID"},
    {.code = "FC", .label = "Feature Code"},
    {.code = "TM", .label = "Machine Type-Model"},
    {.code = "SG", .label = "Plant of Manufature code and Serial Number"},
    {.code = "BT", .label = "Battery Remaining Life"},
    {.code = "DP", .label = "Disk Space Characteristics"},
    {.code = "DS", .label = "System VPD"},
    {.code = "YL", .label = "Hardware Location Code"},
    {.code = "NN", .label = "WWNN"},
    {.code = "H1", .label = "Partition HSL Pool"},
    {.code = "U1", .label = "Logcial Configuration String"},
    {.code = "U2", .label = "Host Inventory"},
    {.code = "A1", .label = "Array"},
    {.code = "A1", .label = "Rank"},
    {.code = "A1", .label = "Segment Pool"},
    {.code = "CI", .label = "Partition identifier"},
    {.code = "LS", .label = "Logical Space Characteristics"},
};

constexpr std::string_view listNames[] = {
    "Enclosures", "Enclosures Partitions",  "Partition Resources", "Global Resources",
    "Partitions", "Storage Configurations", "Array Sites",         "Arrays",
    "Ranks",      "Segment Pool",
};

/// The properties of the resources whose display name is fixed, by their codes in order.
struct Shape {
    std::string_view displayName;
    std::string_view codes;
};

constexpr Shape shapes[] = {
    {.displayName = "CEC", .codes = "S3"},
    {.displayName = "Orvik Non Volatile Control Card", .codes = "S4 PN SN EC"},
    {.displayName = "Larkspur", .codes = "S3 IF"},
    {.displayName = "OSK FC-AL Cobaltarray Adapter", .codes = "S4 PN SN EC LE IF CC DS YL"},
    {.displayName = "Orvik Sable HA - LW", .codes = "S4 PN SN EC LE IF CC DS YL"},
    {.displayName = "Storage Enclosure", .codes = "S3 S4 R1 R2 IF FC TM SG DS YL"},
    {.displayName = "Enclosure's MTMS - Partition Id", .codes = ""},
    {.displayName = "OSK Physical Disk Drive", .codes = "S3 S4 EC LE PN SN DP DS YL"},
    {.displayName = "Fiber Channel Interface Card", .codes = "S3 S4 EC LE PN SN DS YL"},
    {.displayName = "Storage Enclosure Slot Baffle", .codes = "S3 S4 PN DS YL"},
    {.displayName = "TARN Rack", .codes = "S3 RK R2 TM SG DS YL"},
    {.displayName = "Primary Power Supply", .codes = "S3 EC LE PN SN R2 DS YL"},
    {.displayName = "Rack Battery Assembly", .codes = "S3 EC PN SN R2 BT DS YL"},
    {.displayName = "Rack Power Control Card", .codes = "S3 EC PN SN R2 LE FC DS YL"},
    {.displayName = "Fan Sense Card", .codes = "S3 EC PN SN R2 DS YL"},
    {.displayName = "Fan Tray", .codes = "S3 PN R2 DS YL"},
    {.displayName = "Quay", .codes = "S3 DS YL"},
    {.displayName = "Storage Logical Configuration", .codes = ""},
    {.displayName = "Array Site", .codes = "S3 S4 A1 CI LS DS YL"},
    {.displayName = "Array", .codes = "S3 S4 A1 CI LS DS YL"},
    {.displayName = "Rank", .codes = "S3 S4 A1 CI LS DS YL"},
    {.displayName = "Segment Pool", .codes = "S3 S4 CI LS DS YL"},
};

constexpr std::string_view cardLists = "Enclosures Partitions";
constexpr std::string_view cardDrawer = "CEC";

/// What stands between a line's fixed beginning and its fixed end.
std::optional<std::string> between(std::string_view line, std::string_view begin, std::string_view end)
{
    if (line.size() < begin.size() + end.size() || !line.starts_with(begin) || !line.ends_with(end)) {
        return std::nullopt;
    }
    return std::string(line.substr(begin.size(), line.size() - begin.size() - end.size()));
}

/// The two values of a start tag, told apart at the text between them.
std::optional<std::pair<std::string, std::string>> splitAt(const std::string& text,
                                                           std::string_view separator)
{
    const size_t at = text.find(separator);
    if (at == std::string::npos) return std::nullopt;
    return std::pair{text.substr(0, at), text.substr(at + separator.size())};
}

std::string codesOf(const Element& element)
{
    std::string codes;
    for (const Property& property : element.properties) {
        codes += (codes.empty() ? "" : " ") + property.code;
    }
    return codes;
}

class Reader
{
public:
    explicit Reader(const std::string& text) : lines(splitLines(text))
    {
        if (!text.ends_with('\n')) fault("the last line has no line feed");
    }

    Document read()
    {
        readHead();
        while (at < lines.size() && lines[at] != "</ResourceSet>") {
            readElementLine();
        }
        readTail();
        return std::move(document);
    }

private:
    void fault(const std::string& text)
    {
        document.faults.push_back("line " + std::to_string(at + 1) + ": " + text);
    }

    [[nodiscard]] std::string line(size_t ahead = 0) const
    {
        return at + ahead < lines.size() ? lines[at + ahead] : "";
    }

    void expectLine(const std::string& expected)
    {
        if (line() == expected) {
            ++at;
        } else {
            fault("\"" + line() + "\" stands where \"" + expected + "\" should");
        }
    }

    void readHead()
    {
        expectLine(R"(<?xml version="1.0" encoding="UTF-8"?>)");
        document.stylesheet = line() == R"(<?xml-stylesheet type="text/xsl" href="v03.xsl"?>)";
        if (document.stylesheet) ++at;
        expectLine(R"(<com.orvik.inventory verion="1.0">)");

        static const Pattern resourceSet(
            R"re(<ResourceSet class="com\.orvik\.inventory\.Hardware" type="Hardware" version="1\.0" timestamp="([1-9][0-9]*\.(0|[1-9][0-9]{0,5}))">)re");
        const std::string start = line();
        if (const Pattern::Match match = resourceSet.match(start); !match.empty()) {
            document.timestamp = match[1];
            ++at;
        } else {
            fault("\"" + start + "\" is no start of the resource set");
        }
    }

    void readTail()
    {
        for (; !openElements.empty(); close()) {
            fault("\"" + openElements.back().displayName + "\" is never closed");
        }
        if (document.resources.size() > 1) fault("more than one managed system");
        expectLine("</ResourceSet>");
        expectLine("</com.orvik.inventory>");
        if (at < lines.size()) fault("text after the end: \"" + line() + "\"");
    }

    void readElementLine()
    {
        const std::string& current = lines[at];
        if (const auto list = between(current, R"(<ResourceList displayName=")", R"(">)")) {
            openList(*list);
        } else if (const auto resource = between(current, R"(<Resource displayName=")", R"(">)")) {
            openResource(*resource);
        } else if (current.starts_with("<Property ")) {
            readProperty();
        } else if (current == "</ResourceList>") {
            closeList();
        } else if (current == "</Resource>") {
            closeResource();
        } else {
            fault("\"" + current + "\" is no element");
        }
        ++at;
    }

    [[nodiscard]] bool inList() const { return !openElements.empty() && openElements.back().list; }
    [[nodiscard]] bool inResource() const { return !openElements.empty() && !openElements.back().list; }

    [[nodiscard]] bool inCardList() const
    {
        return inList() && openElements.back().displayName == cardLists && openElements.size() > 1 &&
               openElements[openElements.size() - 2].displayName == cardDrawer;
    }

    void openList(const std::string& displayName)
    {
        if (displayName == cardLists && inCardList()) closeMissing();
        if (!inResource()) fault("list \"" + displayName + "\" is not inside a resource");
        if (std::find(std::begin(listNames), std::end(listNames), displayName) == std::end(listNames)) {
            fault("list \"" + displayName + "\" is not known");
        }
        openElements.push_back(
            {.list = true, .displayName = displayName, .uniqueId = "", .properties = {}, .children = {}});
    }

    void openResource(const std::string& tag)
    {
        const auto names = splitAt(tag, R"(" uniqueId=")");
        if (!names) fault("the resource has no identifier");
        const auto [displayName, uniqueId] = names.value_or(std::pair{tag, std::string()});
        if (!openElements.empty() && !inList())
            fault("resource \"" + displayName + "\" is not inside a list");
        if (line(1) == uniqueId && at + 1 < lines.size()) {
            ++at;
        } else {
            fault("\"" + line(1) + "\" stands where the identifier \"" + uniqueId + "\" should");
        }
        openElements.push_back({.list = false,
                                .displayName = displayName,
                                .uniqueId = uniqueId,
                                .properties = {},
                                .children = {}});
    }

    void closeMissing()
    {
        ++document.missingClosings;
        close();
    }

    void closeList()
    {
        if (inList()) {
            close();
        } else if (inResource() && openElements.back().displayName == cardDrawer) {
            ++document.extraClosings;
        } else {
            fault("the end of a list, but no list is open");
        }
    }

    void closeResource()
    {
        if (inCardList()) closeMissing();
        if (inResource()) {
            checkResource(openElements.back());
            close();
        } else {
            fault("the end of a resource, but no resource is open");
        }
    }

    void close()
    {
        Element element = std::move(openElements.back());
        openElements.pop_back();
        auto& siblings = openElements.empty() ? document.resources : openElements.back().children;
        siblings.push_back(std::move(element));
    }

    void checkResource(const Element& resource)
    {
        const auto* shape = std::find_if(std::begin(shapes), std::end(shapes), [&](const Shape& known) {
            return known.displayName == resource.displayName;
        });
        if (shape != std::end(shapes) && codesOf(resource) != shape->codes) {
            fault(resource.displayName + " has " + codesOf(resource) + ", not " + std::string(shape->codes));
        }
        for (const Property& property : resource.properties) {
            checkValue(resource, property);
        }
    }

    /// The values that follow from the element itself or are one for the whole document.
    void checkValue(const Element& resource, const Property& property)
    {
        if (property.code == "S3") {
            if (!facility) facility = property.value;
            if (property.value != *facility) fault("a second facility \"" + property.value + "\"");
        } else if (property.code == "DS" && property.value != resource.displayName) {
            fault("the DS of " + resource.displayName + " is \"" + property.value + "\"");
        } else if (property.code == "YL" && property.value != resource.uniqueId) {
            fault("the YL of \"" + resource.uniqueId + "\" is \"" + property.value + "\"");
        }
    }

    void readProperty()
    {
        Property property = readPropertyStart();
        const std::string prefix = R"(<Value type="string">)";
        std::string value = line(1);
        ++at;
        while (!value.ends_with("</Value>") && at + 1 < lines.size()) {
            value += "\n" + line(1);
            ++at;
        }
        if (const auto text = between(value, prefix, "</Value>")) {
            property.value = *text;
        } else {
            fault("\"" + value + "\" is no value");
        }
        ++at;
        if (line() != "</Property>") fault("\"" + line() + "\" stands where the property should end");
        if (!inResource()) {
            fault("property " + property.code + " is not inside a resource");
        } else {
            if (!openElements.back().children.empty()) fault("property " + property.code + " after a list");
            openElements.back().properties.push_back(std::move(property));
        }
    }

    /// The start tag and the code line; leaves the reader on the code line.
    Property readPropertyStart()
    {
        // The name of the host descriptions has no quotation marks: consumers receive it so.
        const bool hosts = line() == R"(<Property name=U2 displayName="Host Inventory">)";
        const auto tag = between(line(), R"(<Property name=")", R"(">)");
        const auto names = hosts ? std::optional(std::pair<std::string, std::string>("U2", "Host Inventory"))
                           : tag ? splitAt(*tag, R"(" displayName=")")
                                 : std::nullopt;
        if (!names) fault("\"" + line() + "\" is no start of a property");
        ++at;
        Property property;
        property.code = line();
        if (names) checkLabel(property, names->first, names->second);
        return property;
    }

    void checkLabel(Property& property, const std::string& name, const std::string& displayName)
    {
        if ((name == property.code) == (displayName == property.code)) {
            fault("code " + property.code + " with name " + name + " and display name " + displayName);
        }
        property.reversed = displayName == property.code;
        property.label = property.reversed ? name : displayName;
        const auto* label = std::find_if(std::begin(labels), std::end(labels), [&](const Label& known) {
            return known.code == property.code && known.label == property.label;
        });
        const Order order = property.reversed ? Order::reversed : Order::normal;
        if (label == std::end(labels)) {
            fault("code " + property.code + " is not known with the label \"" + property.label + "\"");
        } else if (label->order != Order::both && label->order != order) {
            fault("code " + property.code + " and label \"" + property.label + "\" in the wrong order");
        }
    }

    std::vector<std::string> lines;
    size_t at = 0;
    std::vector<Element> openElements;
    std::optional<std::string> facility;
    Document document;
};

} // namespace

Document readDocument(const std::string& text)
{
    return Reader(text).read();
}

namespace
{

void outlineOf(const Element& element, size_t level, size_t depth, std::vector<std::string>& lines)
{
    if (level >= depth) return;
    const std::string indent(2 * level, ' ');
    lines.push_back(indent + (element.list ? "[" + element.displayName + "]"
                                           : element.displayName + " = " + element.uniqueId));
    for (const Element& child : element.children) {
        outlineOf(child, level + 1, depth, lines);
    }
}

} // namespace

std::vector<std::string> outline(const Document& document, size_t depth)
{
    std::vector<std::string> lines;
    for (const Element& resource : document.resources) {
        outlineOf(resource, 0, depth, lines);
    }
    return lines;
}

} // namespace kordTest
