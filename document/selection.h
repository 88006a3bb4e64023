// What a selection asks for: its conditions, and in words the part of the facility that they single out.

#pragma once

#include "document/explain.h"

#include <string>
#include <string_view>
#include <vector>

namespace document
{

struct SelectionItem {
    std::string key;
    std::string value;
    bool begins = false; ///< what begins with the value, not the value itself
};

/// The conditions of a selection in their order.
std::vector<SelectionItem> itemsOf(std::string_view selection);

/// The value that a key must have; empty when there is none.
std::string valueIn(std::string_view selection, std::string_view key);

/// The part asked for, the innermost first.
std::vector<PartName> partsOf(std::string_view selection);

/// Where a selection's value comes from: an attribute of an earlier answer.
struct ValueSource {
    std::string_view className; ///< empty: from no answer
    std::string_view attribute;
};
ValueSource sourceOf(std::string_view key, std::string_view function);

} // namespace document
