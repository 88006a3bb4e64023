#include "document/selection.h"

#include <algorithm>
#include <array>

namespace document
{

namespace
{

bool isKey(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9');
}

/// A condition's value: in quotes, or up to the next blank or bracket.
std::string_view takeValue(std::string_view& rest)
{
    const char quote = rest.empty() ? '\0' : rest.front();
    const bool quoted = quote == '"' || quote == '\'';
    if (quoted) rest.remove_prefix(1);
    const size_t end = quoted ? rest.find(quote) : rest.find_first_of(" )");
    const std::string_view value = rest.substr(0, end);
    rest.remove_prefix(std::min(rest.size(), value.size() + 1));
    return value;
}

struct KeyWords {
    std::string_view key;
    bool begins;
    std::string_view words;
};

// The innermost first. The domain names the image again, where both are asked for.
constexpr auto keyWords = std::to_array<KeyWords>({
    {.key = "enclosureMTMS", .begins = false, .words = "storage enclosure"},
    {.key = "enclosureNumber", .begins = false, .words = "enclosure number"},
    {.key = "rackEnclosureMTMS", .begins = false, .words = "rack"},
    {.key = "rackNumber", .begins = false, .words = "rack"},
    {.key = "locationCode", .begins = true, .words = "I/O enclosure"},
    {.key = "locationCode", .begins = false, .words = "partition"},
    {.key = "lparName", .begins = false, .words = "partition"},
    {.key = "LParID", .begins = false, .words = "partition ID"},
    {.key = "hslLumenPoolId", .begins = false, .words = "pool ID"},
    {.key = "storageFacilityImageMTMS", .begins = false, .words = "image"},
    {.key = "ActivePeerDomain", .begins = false, .words = "image"},
    {.key = "managedSystemMTMS", .begins = false, .words = "system"},
    {.key = "storageFacilityMTMS", .begins = false, .words = "facility"},
});

struct SourceOfKey {
    std::string_view key;
    std::string_view function; ///< of the query that asks; empty: any
    ValueSource source;
};
constexpr auto sources = std::to_array<SourceOfKey>({
    {"storageFacilityImageMTMS", "", {"Orvik.ManagedNode", "StorageFacilityImageID"}},
    {"ActivePeerDomain", "", {"Orvik.ManagedNode", "StorageFacilityImageID"}},
    {"LParID", "", {"Orvik.TarnStorageFacilityPartition", "lparId"}},
    {"lparName", "", {"Orvik.TarnStorageFacilityPartition", "lparName"}},
    {"hslLumenPoolId", "", {"Orvik.TarnStorageFacilityPartition", "hslLumenPoolId"}},
    {"locationCode", "enumerateVRMF", {"Orvik.TarnStorageFacilityPartition", "locationCode"}},
    {"locationCode", "", {"Orvik.TarnIODrawer", "locationCode"}},
    {"storageFacilityMTMS", "", {"Orvik.TarnStorageFacilitySystem", "storageFacilityMTMS"}},
    {"managedSystemMTMS",
     "queryPartition",
     {"Orvik.TarnStorageFacility", "managedSystem0MTMS, managedSystem1MTMS"}},
    {"HWModel", "", {"Orvik.TarnStorageFacility", "managedSystem0MTMS, managedSystem1MTMS"}},
    {"rackNumber", "", {"Orvik.TarnRack", "rackNumber"}},
    {"rackEnclosureMTMS", "", {"Orvik.TarnRack", "rackEnclosureMTMS"}},
    {"enclosureMTMS", "", {"Orvik.TarnStorageEnclosure", "enclosureMTMS"}},
    {"enclosureNumber", "", {"Orvik.TarnStorageEnclosure", "enclosureNumber"}},
});

const SelectionItem* itemOf(const std::vector<SelectionItem>& items, std::string_view key, bool begins)
{
    const auto found = std::ranges::find_if(
        items, [&](const SelectionItem& item) { return item.key == key && item.begins == begins; });
    return found == items.end() ? nullptr : &*found;
}

} // namespace

std::vector<SelectionItem> itemsOf(std::string_view selection)
{
    std::vector<SelectionItem> items;
    while (!selection.empty()) {
        const auto* const start = std::ranges::find_if(selection, isKey);
        selection.remove_prefix(static_cast<size_t>(start - selection.begin()));
        const size_t length =
            static_cast<size_t>(std::ranges::find_if_not(selection, isKey) - selection.begin());
        SelectionItem item{.key = std::string(selection.substr(0, length)), .value = {}};
        selection.remove_prefix(length);
        while (selection.starts_with(' '))
            selection.remove_prefix(1);
        if (!selection.starts_with('=')) continue;
        selection.remove_prefix(1);
        item.begins = selection.starts_with('?');
        if (item.begins) selection.remove_prefix(1);
        while (selection.starts_with(' '))
            selection.remove_prefix(1);
        item.value = takeValue(selection);
        if (item.begins && item.value.ends_with('%')) item.value.pop_back();
        items.push_back(std::move(item));
    }
    return items;
}

std::string valueIn(std::string_view selection, std::string_view key)
{
    for (SelectionItem& item : itemsOf(selection)) {
        if (item.key == key) return std::move(item.value);
    }
    return {};
}

std::vector<PartName> partsOf(std::string_view selection)
{
    const std::vector<SelectionItem> items = itemsOf(selection);
    std::vector<PartName> parts;
    for (const KeyWords& row : keyWords) {
        const SelectionItem* item = itemOf(items, row.key, row.begins);
        const bool told =
            row.key == "ActivePeerDomain" && itemOf(items, "storageFacilityImageMTMS", false) != nullptr;
        if (item == nullptr || item->value.empty() || told) continue;
        parts.push_back({.what = std::string(row.words), .name = item->value});
    }
    const SelectionItem* model = itemOf(items, "HWModel", false);
    const SelectionItem* serial = itemOf(items, "HWSerialNum", false);
    if (model != nullptr && serial != nullptr)
        parts.push_back({.what = "system", .name = model->value + '*' + serial->value});
    return parts;
}

ValueSource sourceOf(std::string_view key, std::string_view function)
{
    const auto* const found = std::ranges::find_if(sources, [&](const SourceOfKey& row) {
        return row.key == key && (row.function.empty() || row.function == function);
    });
    return found == sources.end() ? ValueSource{} : found->source;
}

} // namespace document
