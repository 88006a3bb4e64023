#include "document/gaps.h"

#include <algorithm>

namespace document
{

Gaps::Gaps(const Document& ofDocument) : document(ofDocument)
{
    const Part& system = document.system();
    if (document.missing.nothing()) return;
    for (innermost = &system; open.insert(innermost).second && !innermost->children.empty();)
        innermost = &innermost->children.back();
}

/// A collection that fails closes its document where it stands: as in one that is cut off, what would have
/// come next is missing. A list that another one follows had its end before the document's.
bool Gaps::mayHide(const Part& part, const Part& around) const
{
    if (&around == &document.system()) {
        const std::string start = std::string(around.id) + '-';
        const auto& lacking = document.missing.partitions;
        if (part.id.starts_with(start) &&
            std::ranges::find(lacking, part.id.substr(start.size())) != lacking.end())
            return true;
    }
    if (!open.contains(&around)) return false;
    if (around.children.empty() || around.children.back().list == part.list) return true;
    return std::ranges::find(around.children, part.list, &Part::list) == around.children.end();
}

} // namespace document
