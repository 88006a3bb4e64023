// The lines of an inventory document, as the collector writes them and as consumers match them, misspellings
// included.

#pragma once

#include <string_view>

namespace document::words
{

constexpr std::string_view declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
constexpr std::string_view stylesheet = R"(<?xml-stylesheet type="text/xsl" href="v03.xsl"?>)";
constexpr std::string_view root = R"(<com.orvik.inventory verion="1.0">)";
constexpr std::string_view rootEnd = "</com.orvik.inventory>";
constexpr std::string_view setStart =
    R"(<ResourceSet class="com.orvik.inventory.Hardware" type="Hardware" version="1.0" timestamp=")";
constexpr std::string_view setEnd = "</ResourceSet>";
constexpr std::string_view listName = R"(<ResourceList displayName=")";
constexpr std::string_view listEnd = "</ResourceList>";
constexpr std::string_view resourceName = R"(<Resource displayName=")";
constexpr std::string_view idName = R"(" uniqueId=")";
constexpr std::string_view resourceEnd = "</Resource>";
constexpr std::string_view propertyName = "<Property name=";
constexpr std::string_view propertyStart = R"(<Property name=")";
constexpr std::string_view labelName = R"(" displayName=")";
constexpr std::string_view propertyEnd = "</Property>";
constexpr std::string_view valueStart = R"(<Value type="string">)";
constexpr std::string_view valueEnd = "</Value>";
constexpr std::string_view tagEnd = R"(">)";

/// The one name that the collector writes without quotation marks.
constexpr std::string_view hostsTag = R"(<Property name=U2 displayName="Host Inventory">)";
constexpr std::string_view hostsCode = "U2";

/// The list of what partitions see in an enclosure.
constexpr std::string_view shares = "Enclosures Partitions";

/// Where a mended document's own text ended before its time: without this line its end tags would say that it
/// is whole.
constexpr std::string_view incomplete = "<?kord incomplete?>";

} // namespace document::words
