// What was added, removed, moved, replaced and changed between two documents, part by part.

#pragma once

#include "document/document.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace document
{

enum class ChangeType { added, removed, moved, replaced, changed };

inline constexpr std::array changeTypes = {ChangeType::added, ChangeType::removed, ChangeType::moved,
                                           ChangeType::replaced, ChangeType::changed};

std::string_view wordOf(ChangeType type);

/// A value that differs: a property's, or that of one item of a property that holds many ("o1" of U1).
struct ValueChange {
    std::string_view code;
    std::string_view label;
    std::string_view item = {};   ///< empty: the whole property
    std::string_view column = {}; ///< of the table of parts; empty: none tells just this value
    std::optional<std::string_view> before = {};
    std::optional<std::string_view> after = {};

    bool operator==(const ValueChange&) const = default;
};

struct Change {
    ChangeType type = ChangeType::changed;
    Kind kind = Kind::other;
    const Part* before = nullptr; ///< of a host the partition; none of what was added
    const Part* after = nullptr;
    std::string_view host = {}; ///< its description
    std::vector<ValueChange> values = {};
    size_t parts = 0;  ///< of an added or removed part: how many parts came or went inside it
    size_t listed = 1; ///< how often the document lists it: once for each partition that sees it

    /// The part as it is, or was.
    // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.UndefReturn): a change is of one document at least
    [[nodiscard]] const Part& part() const { return after == nullptr ? *before : *after; }
};

/// The texts are views of both documents, which have to stay.
struct Changes {
    const Document* before = nullptr;
    const Document* after = nullptr;
    std::vector<Change> found = {};
    std::deque<std::string> texts = {}; ///< that stand in neither document
    /// Parts that only one document tells, and that the other may lack because it is incomplete.
    size_t unknown = 0;
};

using KindSet = std::bitset<kindCount>;

/// The times of collection are no difference, nor is the order of the parts, nor what an incomplete document
/// does not tell.
/// \param wanted what is told; parts inside an added or removed part are told one by one where that part is
/// not
Changes diff(const Document& before, const Document& after, const KindSet& wanted = KindSet().set());

} // namespace document
