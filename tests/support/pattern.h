// Regular expressions. The standard library's are templates that take a compiler longer than most files that
// use them, so they are compiled in one place.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace kordTest
{

/// A regular expression in the notation of ECMAScript.
class Pattern
{
public:
    /// What a match found: all of it, then its groups; a group that took no part is empty.
    using Match = std::vector<std::string>;

    explicit Pattern(const std::string& expression);

    /// Whether it is the whole text.
    [[nodiscard]] bool matches(const std::string& text) const;
    /// The match that is the whole text; empty: it is not.
    [[nodiscard]] Match match(const std::string& text) const;
    /// Every match in the text, one behind the other.
    [[nodiscard]] std::vector<Match> all(const std::string& text) const;
    /// The text with every match replaced; "$1" means the first group.
    [[nodiscard]] std::string replaced(const std::string& text, const std::string& by) const;
    [[nodiscard]] std::string firstReplaced(const std::string& text, const std::string& by) const;

private:
    struct Compiled;
    std::shared_ptr<const Compiled> compiled;
};

} // namespace kordTest
