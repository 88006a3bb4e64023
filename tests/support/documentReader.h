// Reads an inventory document back, knowing nothing of the program that wrote it: only the frame, the three
// element shapes and the vocabulary that consumers of the document match.

#pragma once

#include <string>
#include <vector>

namespace kordTest
{

struct Property {
    std::string code;
    std::string label;
    std::string value;
    bool reversed = false; ///< the label stands in the attribute "name", the code in "displayName"
};

/// A resource, or a resource list (which has neither identifier nor properties).
struct Element {
    bool list = false;
    std::string displayName;
    std::string uniqueId;
    std::vector<Property> properties;
    std::vector<Element> children;
};

struct Document {
    bool stylesheet = false;
    std::string timestamp;
    std::vector<Element> resources; ///< the resource set's own: the managed system
    /// A processor complex drawer opens its list "Enclosures Partitions" once for each partition and closes
    /// it once; a drawer without cards after one with cards closes a list that it never opened. Everything
    /// else in the document is balanced.
    int missingClosings = 0;
    int extraClosings = 0;
    std::vector<std::string> faults; ///< what is wrong with the document, each with its line; empty: nothing
};

Document readDocument(const std::string& text);

/// The elements of a document down to a depth (the managed system has 1), a line each, two blanks of indent
/// for each level: `[display name]` for a list, `display name = identifier` for a resource.
std::vector<std::string> outline(const Document& document, size_t depth);

} // namespace kordTest
