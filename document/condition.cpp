#include "document/condition.h"

#include "platform/failure.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <regex.h>

namespace document
{

namespace
{

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// The digits that a text starts with, but for leading zeros; takes them all from it.
std::string_view takeDigits(std::string_view& text)
{
    const auto end = static_cast<size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
    std::string_view digits = text.substr(0, end);
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    text.remove_prefix(end);
    return digits;
}

int sign(std::strong_ordering order)
{
    return order < 0 ? -1 : static_cast<int>(order > 0);
}

std::string_view trimmed(std::string_view text)
{
    const size_t from = std::min(text.find_first_not_of(" \t"), text.size());
    text.remove_prefix(from);
    return text.substr(0, text.find_last_not_of(" \t") + 1);
}

} // namespace

int compareNaturally(std::string_view one, std::string_view other)
{
    std::string_view mine = one;
    std::string_view theirs = other;
    while (!mine.empty() && !theirs.empty()) {
        if (isDigit(mine.front()) && isDigit(theirs.front())) {
            const std::string_view number = takeDigits(mine);
            const std::string_view otherNumber = takeDigits(theirs);
            if (number.size() != otherNumber.size()) return number.size() < otherNumber.size() ? -1 : 1;
            if (const int order = number.compare(otherNumber); order != 0) return order;
        } else {
            if (mine.front() != theirs.front()) return mine.compare(theirs);
            mine.remove_prefix(1);
            theirs.remove_prefix(1);
        }
    }
    if (mine.size() != theirs.size()) return mine.empty() ? -1 : 1;
    return one.compare(other); // differ in leading zeros, or not at all
}

/// A compiled regular expression. The C library's take any bytes of any length.
struct Condition::Expression {
    regex_t compiled{};

    explicit Expression(const std::string& text)
    {
        const int fault = regcomp(&compiled, text.c_str(), REG_EXTENDED | REG_NOSUB);
        if (fault == 0) return;
        std::array<char, 200> what{};
        regerror(fault, &compiled, what.data(), what.size());
        throw platform::Failure("\"" + text + "\" is no regular expression: " + what.data());
    }
    ~Expression() { regfree(&compiled); }
    Expression(const Expression&) = delete;
    Expression& operator=(const Expression&) = delete;

    [[nodiscard]] bool matches(std::string_view text) const
    {
        regmatch_t range{.rm_so = 0, .rm_eo = static_cast<regoff_t>(text.size())};
        return regexec(&compiled, text.empty() ? "" : text.data(), 0, &range, REG_STARTEND) == 0;
    }
};

Condition::Condition(std::string_view text, const std::function<bool(const std::string&)>& isNumber)
{
    struct Spelling {
        std::string_view text;
        Operator meaning;
    };
    // The longer ones first: "<" is the start of "<=".
    constexpr auto spellings = std::to_array<Spelling>({
        {"!=", Operator::notEqual},
        {"<=", Operator::atMost},
        {">=", Operator::atLeast},
        {"=", Operator::equal},
        {"<", Operator::less},
        {">", Operator::greater},
        {"~", Operator::matches},
    });
    const std::string_view rest = text.substr(std::min(text.find_first_of("!<>=~"), text.size()));
    const auto* const spelling =
        std::ranges::find_if(spellings, [&](const Spelling& known) { return rest.starts_with(known.text); });
    if (spelling == spellings.end())
        throw platform::Failure('"' + std::string(text) +
                                "\" is no condition: write COLUMN OP VALUE, with OP one of = != < <= > >= ~");
    with = spelling->meaning;
    name = trimmed(text.substr(0, text.size() - rest.size()));
    readOperand(trimmed(rest.substr(spelling->text.size())), isNumber(name));
}

void Condition::readOperand(std::string_view text, bool isNumber)
{
    operand = text;
    if (with == Operator::matches) {
        expression = std::make_shared<const Expression>(operand);
    } else if (isNumber && !operand.empty()) {
        const char* const end = operand.data() + operand.size();
        const auto [stop, fault] = std::from_chars(operand.data(), end, number);
        if (fault != std::errc{} || stop != end)
            throw platform::Failure(name + " holds whole numbers, and \"" + operand + "\" is none");
    }
}

bool Condition::holdsFor(int order) const
{
    switch (with) {
    case Operator::less:
        return order < 0;
    case Operator::atMost:
        return order <= 0;
    case Operator::greater:
        return order > 0;
    case Operator::atLeast:
        return order >= 0;
    default:
        return order == 0;
    }
}

bool Condition::holdsFor(std::string_view text) const
{
    if (with == Operator::matches) return expression->matches(text);
    return holdsFor(compareNaturally(text, operand));
}

bool Condition::holdsFor(int64_t value) const
{
    if (with == Operator::matches) return expression->matches(std::to_string(value));
    return !operand.empty() && holdsFor(sign(value <=> number));
}

bool Condition::holds(const Value& value) const
{
    struct AnyItem {
        const Condition& condition;

        bool operator()(std::monostate) const
        {
            const bool compares = condition.with != Operator::equal && condition.with != Operator::notEqual &&
                                  condition.with != Operator::matches;
            return !compares && condition.holdsFor(std::string_view{});
        }
        bool operator()(std::string_view text) const { return condition.holdsFor(text); }
        bool operator()(int64_t one) const { return condition.holdsFor(one); }
        bool operator()(const std::vector<std::string>& texts) const
        {
            return std::ranges::any_of(texts, [&](std::string_view text) { return (*this)(text); });
        }
        bool operator()(const std::vector<int64_t>& numbers) const
        {
            return std::ranges::any_of(numbers, [&](int64_t one) { return (*this)(one); });
        }
    };
    return std::visit(AnyItem{*this}, value) != (with == Operator::notEqual);
}

} // namespace document
