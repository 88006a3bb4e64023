#include "pattern.h"

#include <regex>

namespace kordTest
{

struct Pattern::Compiled {
    std::regex regex;
};

Pattern::Pattern(const std::string& expression)
    : compiled(new Compiled{std::regex(expression, std::regex::ECMAScript | std::regex::optimize)})
{
}

bool Pattern::matches(const std::string& text) const
{
    return !match(text).empty();
}

Pattern::Match Pattern::match(const std::string& text) const
{
    std::smatch found;
    std::regex_match(text, found, compiled->regex);
    return {found.begin(), found.end()};
}

std::vector<Pattern::Match> Pattern::all(const std::string& text) const
{
    std::vector<Match> matches;
    for (std::sregex_iterator at(text.begin(), text.end(), compiled->regex), end; at != end; ++at)
        matches.emplace_back(at->begin(), at->end());
    return matches;
}

std::string Pattern::replaced(const std::string& text, const std::string& by) const
{
    return std::regex_replace(text, compiled->regex, by);
}

std::string Pattern::firstReplaced(const std::string& text, const std::string& by) const
{
    return std::regex_replace(text, compiled->regex, by, std::regex_constants::format_first_only);
}

} // namespace kordTest
