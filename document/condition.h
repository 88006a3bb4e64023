// Which rows a table shows and in which order: "rack = 1", "firmware < T0A4", "-capacity_mb".

#pragma once

#include "document/rows.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace document
{

/// Texts in the order that people expect: digits within them as numbers. Negative, 0 or positive.
int compareNaturally(std::string_view one, std::string_view other);

/// What a row's value has to be.
class Condition
{
public:
    /// \param text "COLUMN OP VALUE" with OP one of = != < <= > >= ~; a wrong one is a platform::Failure
    /// \param isNumber tells whether a column holds numbers, and fails where there is no such column
    Condition(std::string_view text, const std::function<bool(const std::string&)>& isNumber);

    [[nodiscard]] const std::string& column() const { return name; }
    /// Of a value with several items: whether one of them holds. What has no value is like an empty text, but
    /// neither less nor greater than anything.
    [[nodiscard]] bool holds(const Value& value) const;

private:
    enum class Operator { equal, notEqual, less, atMost, greater, atLeast, matches };
    struct Expression;

    void readOperand(std::string_view text, bool isNumber);
    [[nodiscard]] bool holdsFor(int order) const;
    [[nodiscard]] bool holdsFor(std::string_view text) const;
    [[nodiscard]] bool holdsFor(int64_t value) const;

    std::string name;
    Operator with = Operator::equal;
    std::string operand;
    int64_t number = 0;
    std::shared_ptr<const Expression> expression;
};

} // namespace document
