#include "partsTable.h"

#include "parseJson.h"
#include "pattern.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

namespace kordTest
{

namespace
{

using nlohmann::json;
using Texts = std::vector<std::string>;

const std::map<std::string, std::string> kindsByName = {
    {"CEC", "processorComplex"},
    {"Orvik Non Volatile Control Card", "controlCard"},
    {"Larkspur", "ioEnclosure"},
    {"OSK FC-AL Cobaltarray Adapter", "deviceAdapter"},
    {"Orvik Sable HA - LW", "hostAdapter"},
    {"TARN Rack", "rack"},
    {"Primary Power Supply", "powerSupply"},
    {"Rack Battery Assembly", "battery"},
    {"Rack Power Control Card", "powerController"},
    {"Fan Sense Card", "fanSenseCard"},
    {"Fan Tray", "fanTray"},
    {"Storage Enclosure", "storageEnclosure"},
    {"OSK Physical Disk Drive", "drive"},
    {"Fiber Channel Interface Card", "interfaceCard"},
    {"Storage Enclosure Slot Baffle", "baffle"},
    {"Quay", "console"},
};

const std::map<std::string, std::string> kindsByList = {
    {"Partitions", "partition"}, {"Array Sites", "arraySite"},    {"Arrays", "array"},
    {"Ranks", "rank"},           {"Segment Pool", "segmentPool"}, {"Enclosures Partitions", "share"},
};

/// An element with what stands around it.
struct Place {
    const Element* element = nullptr;
    std::string kind;
    const Place* outer = nullptr;
};

std::string valueOf(const Element& element, const std::string& code)
{
    for (const Property& property : element.properties) {
        if (property.code == code) return property.value;
    }
    return "";
}

bool has(const Element& element, const std::string& code)
{
    return std::ranges::any_of(element.properties,
                               [&](const auto& property) { return property.code == code; });
}

std::string nearestValue(const Place& place, const std::string& code)
{
    for (const Place* one = &place; one != nullptr; one = one->outer) {
        if (has(*one->element, code)) return valueOf(*one->element, code);
    }
    return "";
}

void putText(json& row, const std::string& column, const std::string& text)
{
    if (!text.empty()) row[column] = text;
}

void putNumber(json& row, const std::string& column, const std::string& text)
{
    const size_t sign = text.starts_with('-') ? 1 : 0;
    const bool digits = text.size() > sign && text.size() < 19 &&
                        text.find_first_not_of("0123456789", sign) == std::string::npos;
    if (digits) row[column] = std::stoll(text);
}

std::string behind(const std::string& text, const std::string& mark)
{
    const size_t at = text.rfind(mark);
    return at == std::string::npos ? "" : text.substr(at + mark.size());
}

/// "DI=a,DM=b" by its keys, each looked for behind the one before it.
std::map<std::string, std::string> itemsOf(const std::string& value, const Texts& keys)
{
    const std::string text = ',' + value;
    std::vector<std::pair<std::string, size_t>> found;
    size_t from = 0;
    for (const std::string& key : keys) {
        const size_t at = text.find(',' + key + '=', from);
        if (at == std::string::npos) continue;
        found.emplace_back(key, at);
        from = at + key.size() + 2;
    }
    std::map<std::string, std::string> items;
    for (size_t i = 0; i < found.size(); ++i) {
        const auto& [key, at] = found[i];
        const size_t begin = at + key.size() + 2;
        const size_t end = i + 1 < found.size() ? found[i + 1].second : text.size();
        items[key] = text.substr(begin, end - begin);
    }
    return items;
}

std::string withoutUnit(const std::string& text)
{
    return text.ends_with("MB") ? text.substr(0, text.size() - 2) : "none";
}

std::string timeOf(const std::string& timestamp)
{
    const std::time_t seconds = std::stol(timestamp);
    std::tm time{};
    gmtime_r(&seconds, &time);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%06ldZ", time.tm_year + 1900,
                  time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec,
                  std::stol(behind(timestamp, ".")));
    return text;
}

class Rows
{
public:
    explicit Rows(const Document& theDocument) : document(theDocument), system(document.resources.at(0)) {}

    json rows()
    {
        visit(Place{.element = &system, .kind = "system"});
        return std::move(found);
    }

    json tree() { return nodeOf(Place{.element = &system, .kind = "system"}); }

private:
    template <typename Use>
    void eachInside(const Place& place, Use use)
    {
        for (const Element& list : place.element->children) {
            const auto byList = kindsByList.find(list.displayName);
            for (const Element& element : list.children) {
                const auto byName = kindsByName.find(element.displayName);
                std::string kind = "other";
                if (byList != kindsByList.end())
                    kind = byList->second;
                else if (byName != kindsByName.end() && list.displayName != "Storage Configurations")
                    kind = byName->second;
                use(Place{.element = &element, .kind = kind, .outer = &place});
            }
        }
    }

    void visit(const Place& place)
    {
        if (place.kind != "share") add(place);
        if (place.kind == "partition") {
            for (json& host : hostsOf(place))
                found.push_back(std::move(host));
        }
        eachInside(place, [&](const Place& inner) { visit(inner); });
    }

    void add(const Place& place)
    {
        const Element& element = *place.element;
        const bool enclosure = place.kind == "rack" || place.kind == "storageEnclosure";
        const std::string serial = valueOf(element, enclosure ? "SG" : "SN");
        if (element.uniqueId.empty() && serial.empty() && valueOf(element, "PN").empty()) return;
        json row = columnsOf(place);
        if (!element.uniqueId.empty()) {
            Texts key = {place.kind, element.uniqueId, element.displayName};
            for (const Property& property : element.properties) {
                if (property.code == "S4") continue;
                key.push_back(property.code);
                key.push_back(property.value);
            }
            const auto [known, isNew] = seen.try_emplace(key, found.size());
            if (!isNew) return addPartitions(found[known->second], row);
        }
        found.push_back(std::move(row));
    }

    static void addPartitions(json& row, const json& more)
    {
        if (!more.contains("partitions")) return;
        for (const json& partition : more["partitions"]) {
            json& all = row["partitions"];
            if (std::ranges::find(all, partition) == all.end()) all.push_back(partition);
        }
    }

    json nodeOf(const Place& place)
    {
        json node = columnsOf(place);
        node["properties"] = json::object();
        for (const Property& property : place.element->properties) {
            json& value = node["properties"][property.code];
            if (value.is_null())
                value = property.value;
            else if (value.is_array())
                value.push_back(property.value);
            else
                value = {value, property.value};
        }
        node["parts"] = json::array();
        if (place.kind == "partition") {
            for (json& host : hostsOf(place)) {
                host["properties"] = json::object();
                host["parts"] = json::array();
                node["parts"].push_back(std::move(host));
            }
        }
        addNodes(place, node["parts"]);
        return node;
    }

    void addNodes(const Place& place, json& nodes)
    {
        eachInside(place, [&](const Place& inner) {
            if (inner.kind == "share")
                addNodes(inner, nodes);
            else
                nodes.push_back(nodeOf(inner));
        });
    }

    // --- Columns

    json common(const Place& place, const std::string& kind) const
    {
        json row = {{"kind", kind}, {"collected", timeOf(document.timestamp)}};
        putText(row, "system", system.uniqueId);
        putText(row, "facility", nearestValue(place, "S3"));
        return row;
    }

    std::vector<json> hostsOf(const Place& partition) const
    {
        std::vector<json> rows;
        std::string rest = valueOf(*partition.element, "U2");
        std::string text;
        for (size_t comma = rest.find(','); comma != std::string::npos; comma = rest.find(',')) {
            text += rest.substr(0, comma);
            rest.erase(0, comma + 1);
            static const Pattern host("([^]*)=([0-9]+)");
            if (const Pattern::Match match = host.match(text); !match.empty()) {
                json row = common(partition, "host");
                putText(row, "id", match[1]);
                putText(row, "description", match[1]);
                putText(row, "within", partition.element->uniqueId);
                putText(row, "partition", partition.element->displayName);
                putNumber(row, "ports", match[2]);
                rows.push_back(std::move(row));
                text.clear();
            } else {
                text += ',';
            }
        }
        return rest.empty() && text.empty() ? rows : std::vector<json>{};
    }

    std::string partitionOf(const Place& share) const
    {
        const std::string& enclosure = share.outer->element->uniqueId;
        return system.uniqueId + share.element->uniqueId.substr(enclosure.size());
    }

    json columnsOf(const Place& place)
    {
        const Element& element = *place.element;
        json row = common(place, place.kind);
        putText(row, "id", element.uniqueId);
        const Place* outer = place.outer;
        while (outer != nullptr && outer->kind == "share")
            outer = outer->outer;
        if (outer != nullptr) putText(row, "within", outer->element->uniqueId);
        const std::map<std::string, Texts> own = {
            {"controlCard", {"serial", "part_number", "ec_level"}},
            {"deviceAdapter", {"serial", "part_number", "ec_level", "firmware", "interfaces", "ccin"}},
            {"hostAdapter", {"serial", "part_number", "ec_level", "firmware", "interfaces", "ccin"}},
            {"ioEnclosure", {"interfaces"}},
            {"rack", {"rack", "rack_id", "type_model", "plant"}},
            {"powerSupply", {"rack", "serial", "part_number", "ec_level", "firmware"}},
            {"battery", {"rack", "serial", "part_number", "ec_level", "remaining_life"}},
            {"powerController", {"rack", "serial", "part_number", "ec_level", "firmware", "feature"}},
            {"fanSenseCard", {"rack", "serial", "part_number", "ec_level"}},
            {"fanTray", {"rack", "part_number"}},
            {"storageEnclosure", {"rack", "enclosure", "type_model", "plant", "feature", "interfaces"}},
            {"drive", {"rack", "enclosure", "slot", "serial", "part_number", "ec_level", "firmware"}},
            {"interfaceCard", {"rack", "enclosure", "serial", "part_number", "ec_level", "firmware"}},
            {"baffle", {"rack", "enclosure", "part_number"}},
            {"partition", {"name", "pool", "wwnn", "firmware"}},
            {"other", {"name", "rack", "serial", "part_number", "ec_level", "firmware"}},
        };
        if (own.contains(place.kind)) {
            for (const std::string& column : own.at(place.kind))
                putOwn(row, column, place);
        }
        putText(row, "image", valueOf(element, "S4"));
        putShares(row, place);
        putConfiguration(row, place);
        return row;
    }

    static void putOwn(json& row, const std::string& column, const Place& place)
    {
        static const std::map<std::string, std::string> texts = {
            {"serial", "SN"},     {"part_number", "PN"}, {"ec_level", "EC"}, {"firmware", "LE"},
            {"interfaces", "IF"}, {"ccin", "CC"},        {"feature", "FC"},  {"type_model", "TM"},
            {"pool", "H1"},       {"wwnn", "NN"}};
        const Element& element = *place.element;
        if (texts.contains(column)) putText(row, column, valueOf(element, texts.at(column)));
        if (column == "plant") putText(row, "serial", valueOf(element, "SG"));
        if (column == "name") putText(row, column, element.displayName);
        if (column == "rack") putNumber(row, column, nearestValue(place, "R2"));
        if (column == "rack_id") putNumber(row, column, valueOf(element, "RK"));
        if (column == "remaining_life") putNumber(row, column, valueOf(element, "BT"));
        if (column == "enclosure") putNumber(row, column, behind(nearestValue(place, "R1"), "-"));
        if (column == "slot") putNumber(row, column, behind(element.uniqueId, "-D"));
    }

    /// The partitions that see it, and those that see something in it.
    void putShares(json& row, const Place& place)
    {
        std::vector<std::string> partitions;
        const auto put = [&](const Place& share) {
            const std::string partition = partitionOf(share);
            if (std::ranges::find(partitions, partition) == partitions.end()) partitions.push_back(partition);
        };
        if (place.outer != nullptr && place.outer->kind == "share") put(*place.outer);
        eachInside(place, [&](const Place& inner) {
            if (inner.kind == "share") put(inner);
        });
        if (!partitions.empty()) row["partitions"] = partitions;
    }

    void putConfiguration(json& row, const Place& place)
    {
        const Element& element = *place.element;
        const std::string space = valueOf(element, "LS");
        if (place.kind == "drive") putDrive(row, valueOf(element, "DP"));
        if (place.kind == "partition") putCounts(row, valueOf(element, "U1"));
        if (place.kind == "arraySite") {
            auto items = itemsOf(space, {"AP", "DP", "DC", "DR"});
            putNumber(row, "number", behind(element.uniqueId, "/S"));
            putNumber(row, "array", behind(valueOf(element, "A1"), "/A"));
            putSpace(row, items, "AP");
        } else if (place.kind == "array") {
            auto items = itemsOf(space, {"AN", "AC", "RP", "DP", "DC", "DR", "RT"});
            putNumber(row, "rank", behind(valueOf(element, "A1"), "/R"));
            putText(row, "serial", items["AN"]);
            putText(row, "configuration", items["AC"]);
            putText(row, "raid_type", items["RT"]);
            putSpace(row, items, "RP");
            putSites(row, place);
        } else if (place.kind == "rank") {
            auto items = itemsOf(space, {"RN", "ET", "ES", "RG"});
            putNumber(row, "number", behind(element.uniqueId, "/R"));
            putNaming(row, "arrays", place, "Arrays", "/R");
            putNumber(row, "pool", behind(valueOf(element, "A1"), "/P"));
            putText(row, "serial", items["RN"]);
            putSegments(row, items);
        } else if (place.kind == "segmentPool") {
            auto items = itemsOf(space, {"ET", "ES", "EL", "VE", "VL", "RG"});
            putNumber(row, "number", behind(element.uniqueId, "/P"));
            putNaming(row, "ranks", place, "Ranks", "/P");
            putNumber(row, "segment_limit", items["EL"]);
            putNumber(row, "virtual_segments", items["VE"]);
            putNumber(row, "virtual_segment_limit", items["VL"]);
            putSegments(row, items);
        }
    }

    static void putDrive(json& row, const std::string& text)
    {
        auto items = itemsOf(text, {"DI", "DM", "DC", "DR", "DS", "AS", "AP", "IT", "ST"});
        putText(row, "name", items["DI"]);
        putText(row, "manufacturer", items["DM"]);
        putNumber(row, "capacity_mb", withoutUnit(items["DC"]));
        putNumber(row, "rpm", items["DR"]);
        putNumber(row, "interface_rate", items["DS"]);
        putNumber(row, "array_site", items["AS"]);
        putNumber(row, "position", items["AP"]);
        putText(row, "interface_type", items["IT"]);
        putNumber(row, "state", items["ST"]);
    }

    static void putCounts(json& row, const std::string& text)
    {
        static const Pattern item("([vpoh][0-9])=(-?[0-9]+)(?:,|$)");
        for (const Pattern::Match& match : item.all(text))
            putNumber(row, match[1], match[2]);
    }

    static void putSpace(json& row, std::map<std::string, std::string>& items, const std::string& position)
    {
        putNumber(row, "position", items[position]);
        putNumber(row, "da_pair", items["DP"]);
        putNumber(row, "capacity_mb", withoutUnit(items["DC"]));
        putNumber(row, "rpm", items["DR"]);
    }

    static void putSegments(json& row, std::map<std::string, std::string>& items)
    {
        putNumber(row, "segment_type", items["ET"]);
        putNumber(row, "segments", items["ES"]);
        putNumber(row, "rank_group", items["RG"]);
    }

    /// The numbers of the parts in a list of the same configuration that name the part.
    static void putNaming(json& row, const std::string& column, const Place& place, const std::string& from,
                          const std::string& mark)
    {
        for (const Element& list : place.outer->element->children) {
            for (const Element& one : list.children) {
                if (list.displayName != from) continue;
                if (behind(valueOf(one, "A1"), mark) != behind(place.element->uniqueId, mark)) continue;
                json other;
                if (from == "Arrays")
                    putSites(other, {.element = &one, .kind = "array", .outer = place.outer});
                else
                    putNumber(other, "number", behind(one.uniqueId, "/R"));
                if (other.contains("number")) row[column].push_back(other["number"]);
            }
        }
    }

    /// An array goes by its array sites, of which the first stands twice: "33,4". They tell its number.
    static void putSites(json& row, const Place& array)
    {
        static const Pattern form("(-?[0-9]+)\\1((?:,-?[0-9]+)*)");
        const std::string text = behind(array.element->uniqueId, "/A");
        const Pattern::Match match = form.match(text);
        if (match.empty()) return;
        row["array_sites"] = parseJson('[' + match[1] + match[2] + ']');
        for (const Element& list : array.outer->element->children) {
            for (const Element& site : list.children) {
                if (list.displayName != "Array Sites" || behind(site.uniqueId, "/S") != match[1]) continue;
                if (!row.contains("number")) putNumber(row, "number", behind(valueOf(site, "A1"), "/A"));
            }
        }
    }

    const Document& document;
    const Element& system;
    json found = json::array();
    std::map<Texts, size_t> seen;
};

} // namespace

json partRows(const Document& document)
{
    return Rows(document).rows();
}

json partTree(const Document& document)
{
    return Rows(document).tree();
}

} // namespace kordTest
