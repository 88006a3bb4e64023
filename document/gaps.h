// What an incomplete document may lack although the machine has it.

#pragma once

#include "document/document.h"

#include <string>
#include <string_view>
#include <unordered_set>

namespace document
{

class Gaps
{
public:
    explicit Gaps(const Document& document);

    /// Whether the document would not tell a part of another document, or may not: it would stand in the part
    /// `around` of this document.
    [[nodiscard]] bool mayHide(const Part& part, const Part& around) const;

    /// Whether the document ends within the part, so that it may have more properties.
    [[nodiscard]] bool endsWithin(const Part& part) const { return &part == innermost; }

private:
    const Document& document;
    std::unordered_set<const Part*> open; ///< parts that the telling ended in
    const Part* innermost = nullptr;      ///< of them
};

} // namespace document
