// Stand-ins for texts.
//
// A stand-in has the length and the kinds of characters of what it stands for: digits for digits, letters for
// letters, everything else as it was. Texts that begin alike have stand-ins that begin alike and part where
// they part. So whatever is cut, joined or compared stays what it was to each other. The stand-ins are drawn
// by chance: nothing leads back from them but the pairs, for whoever keeps those.

#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace recorder
{

class StandIns
{
public:
    /// Goes on with the pairs of an earlier recording. A platform::Failure when the text holds no such pairs.
    void load(const std::string& pairs);
    /// All pairs, for `load` and for readers: a JSON object of originals and their stand-ins, a pair a line.
    [[nodiscard]] std::string pairs() const;
    /// Forgets what was drawn since `load`.
    void drawAnew();

    /// The text's stand-in, always the same. Where letters are digits of a number, they stay such.
    std::string of(std::string_view text, bool hexadecimal = false);
    /// The text with stand-ins for what has one, the longest first.
    [[nodiscard]] std::string in(const std::string& text) const;
    /// Whether a stand-in was drawn that is itself one of the texts to hide.
    [[nodiscard]] bool isAmbiguous() const;

private:
    using Pairs = std::map<std::string, std::string, std::less<>>;
    /// Null when it has none.
    [[nodiscard]] const std::string* known(std::string_view text) const;
    void learn(const std::string& text, const std::string& standIn);

    Pairs loaded;
    Pairs drawn;
    std::unordered_map<std::string, unsigned> moves; ///< by what stands before a character, and its alphabet
    std::unordered_map<std::string, unsigned> loadedMoves;
    std::set<size_t, std::greater<>> lengths; ///< of the texts that are looked for in others
};

} // namespace recorder
