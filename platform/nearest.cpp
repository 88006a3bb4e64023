#include "platform/nearest.h"

#include <algorithm>
#include <utility>

namespace platform
{

namespace
{

/// How many letters were left out, put in, mistaken or swapped with their neighbour.
size_t distance(std::string_view one, std::string_view other)
{
    std::vector<size_t> beforeLast;
    std::vector<size_t> last;
    std::vector<size_t> row(other.size() + 1);
    for (size_t j = 0; j < row.size(); ++j)
        row[j] = j;
    for (size_t i = 1; i <= one.size(); ++i) {
        beforeLast = std::exchange(last, row);
        row[0] = i;
        for (size_t j = 1; j <= other.size(); ++j) {
            const size_t mistaken = one[i - 1] == other[j - 1] ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + mistaken});
            const bool swapped = i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1];
            if (swapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row.back();
}

std::string lower(std::string_view text)
{
    std::string plain(text);
    for (char& letter : plain)
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return plain;
}

} // namespace

std::string nearest(std::string_view word, const std::vector<std::string>& known)
{
    constexpr size_t longest = 64; // no known word is near to a longer one
    constexpr size_t shortest = 3; // two letters may be anything
    if (word.size() < shortest || word.size() > longest) return "";
    const std::string typed = lower(word);
    std::string best;
    size_t least = word.size() / 3 + 2;
    for (const std::string& candidate : known) {
        const std::string plain = lower(candidate);
        const bool begun = plain.starts_with(typed);
        const size_t away = begun ? 0 : distance(typed, plain);
        if (away >= least || away >= candidate.size()) continue;
        least = away;
        best = candidate;
    }
    return best;
}

std::string didYouMean(std::string_view word, const std::vector<std::string>& known)
{
    const std::string meant = nearest(word, known);
    return meant.empty() ? "" : ": did you mean \"" + meant + "\"?";
}

} // namespace platform
