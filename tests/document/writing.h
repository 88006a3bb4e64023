// Documents for tests, written line by line as consumers know them.

#pragma once

#include "document/document.h"

#include <string>

namespace kordTest
{

std::string property(const std::string& code, const std::string& label, const std::string& value);
/// With the label in the attribute "name".
std::string reversed(const std::string& code, const std::string& label, const std::string& value);
std::string hosts(const std::string& value);

std::string resource(const std::string& name, const std::string& id, const std::string& content);
std::string list(const std::string& name, const std::string& content);

/// A whole document around what stands in its resource set.
std::string inventory(const std::string& content, const std::string& timestamp = "1795268463.5");
/// The document with the line that names a stylesheet.
std::string styled(std::string document);
/// One around what stands in the managed system.
std::string ofSystem(const std::string& content);
/// One around enclosures, and one around partitions.
std::string ofEnclosures(const std::string& content);
std::string ofPartitions(const std::string& content);

struct Drive {
    std::string slot; ///< "-P1-D1"
    std::string serial;
    std::string level = "J1";
    int state = 0;
    std::string image = "IMAGE-1";
};

/// A drive of an enclosure.
std::string drive(const std::string& enclosure, const Drive& drive);

struct Enclosure {
    std::string id;
    std::string serial;
    std::string location; ///< R1
    std::string image = "IMAGE-1";
    std::string partition = "1";
};

/// A storage enclosure with what its partition sees in it.
std::string enclosure(const Enclosure& enclosure, const std::string& content);

inline const std::string listEnd = "</ResourceList>\n";

document::Document parse(const std::string& text);

} // namespace kordTest
