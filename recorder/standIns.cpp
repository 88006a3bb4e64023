// Every character moves on in its alphabet, never to itself, by a draw that depends on all characters before
// it.

#include "recorder/standIns.h"

#include "platform/failure.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sys/random.h>
#include <vector>

namespace recorder
{

namespace
{

constexpr size_t telling = 3; ///< shorter texts are part of too many others to be looked for

bool isIn(char c, char first, char last)
{
    return c >= first && c <= last;
}

/// The characters that can stand in for one, as a range.
struct Alphabet {
    unsigned char first;
    unsigned size; ///< 0: the character stays
};

/// Of a character beyond ASCII the last byte changes, within the bytes that keep it a character and no
/// control character. A text can end within a character: what follows the first byte of three or four may not
/// be anything.
Alphabet beyondAscii(std::string_view text, size_t at)
{
    constexpr char twoBytes = '\xC2';
    constexpr unsigned char controls = 0x80;
    constexpr unsigned char others = 0xA0;
    constexpr unsigned char threeBytes = 0xE0;
    const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
    const bool last = continues(text[at]) && (at + 1 == text.size() || !continues(text[at + 1]));
    const bool second = at > 0 && static_cast<unsigned char>(text[at - 1]) >= threeBytes;
    if (!last || second) return {};
    if (at == 0 || text[at - 1] != twoBytes) return {.first = controls, .size = 64};
    const bool control = static_cast<unsigned char>(text[at]) < others;
    return {.first = control ? controls : others, .size = 32};
}

Alphabet alphabetOf(std::string_view text, size_t at, bool hexadecimal)
{
    const char c = text[at];
    const unsigned letters = hexadecimal ? 6 : 26;
    if (isIn(c, '0', '9')) return {.first = '0', .size = 10};
    if (isIn(c, 'A', 'Z')) return {.first = 'A', .size = c - 'A' < 6 ? letters : 26};
    if (isIn(c, 'a', 'z')) return {.first = 'a', .size = c - 'a' < 6 ? letters : 26};
    return beyondAscii(text, at);
}

/// What the collector looks for within words.
bool endsInKeyword(std::string_view text)
{
    return text.ends_with("TM") || text.ends_with("SE");
}

/// What a draw depends on.
std::string keyOf(std::string_view text, size_t at, const Alphabet& alphabet)
{
    std::string key(text.substr(0, at));
    key += static_cast<char>(alphabet.first);
    key += static_cast<char>(alphabet.size);
    return key;
}

unsigned placeOf(char c, const Alphabet& alphabet)
{
    return static_cast<unsigned>(static_cast<unsigned char>(c)) - alphabet.first;
}

/// How far a character was moved; 0: that is no stand-in for it.
unsigned moveOf(char from, char to, const Alphabet& alphabet)
{
    const unsigned place = placeOf(to, alphabet);
    if (place >= alphabet.size) return 0;
    return (place + alphabet.size - placeOf(from, alphabet)) % alphabet.size;
}

/// Numbers by chance from the kernel, a block at a time: it gives as many in one piece. The processor, which
/// the library's device asks for each of them, takes longer for them than all the rest of a redaction.
class Chance
{
public:
    unsigned operator()()
    {
        if (left.empty()) {
            left.resize(atOnce);
            const size_t size = atOnce * sizeof left[0];
            if (getrandom(left.data(), size, 0) != static_cast<ssize_t>(size))
                throw platform::failedOn("random numbers");
        }
        const unsigned number = left.back();
        left.pop_back();
        return number;
    }

private:
    static constexpr size_t atOnce = 64;
    std::vector<unsigned> left;
};

} // namespace

std::string StandIns::of(std::string_view text, bool hexadecimal)
{
    static Chance source;
    if (const std::string* standIn = known(text)) return *standIn;
    std::string result(text);
    for (size_t i = 0; i < text.size(); ++i) {
        const Alphabet alphabet = alphabetOf(text, i, hexadecimal);
        if (alphabet.size == 0) continue;
        const auto [move, made] = moves.try_emplace(keyOf(text, i, alphabet));
        do {
            if (made) move->second = 1 + source() % (alphabet.size - 1);
            const unsigned moved = (placeOf(text[i], alphabet) + move->second) % alphabet.size;
            result[i] = static_cast<char>(alphabet.first + moved);
        } while (made && endsInKeyword(std::string_view(result).substr(0, i + 1)));
    }
    if (result != text) {
        drawn.emplace(text, result);
        if (text.size() >= telling) lengths.insert(text.size());
    }
    return result;
}

const std::string* StandIns::known(std::string_view text) const
{
    for (const Pairs* pairs : {&loaded, &drawn}) {
        const auto pair = pairs->find(text);
        if (pair != pairs->end()) return &pair->second;
    }
    return nullptr;
}

std::string StandIns::in(const std::string& text) const
{
    std::string result;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string* found = nullptr;
        for (const size_t length : lengths) {
            if (length <= rest.size() && (found = known(rest.substr(0, length))) != nullptr) break;
        }
        const std::string_view next = found != nullptr ? *found : rest.substr(0, 1);
        result += next;
        rest.remove_prefix(next.size());
    }
    return result;
}

bool StandIns::isAmbiguous() const
{
    return std::ranges::any_of(drawn, [this](const auto& pair) {
        const std::string& standIn = pair.second;
        return standIn.size() >= telling && known(standIn) != nullptr;
    });
}

void StandIns::drawAnew()
{
    drawn.clear();
    moves = loadedMoves;
}

/// Letters up to F may have been moved as digits or as letters: both are known from now on.
void StandIns::learn(const std::string& text, const std::string& standIn)
{
    bool fits = text.size() == standIn.size();
    for (size_t i = 0; fits && i < text.size(); ++i) {
        const Alphabet widest = alphabetOf(text, i, false);
        fits = widest.size == 0 ? text[i] == standIn[i] : moveOf(text[i], standIn[i], widest) != 0;
        for (const bool hexadecimal : {false, true}) {
            const Alphabet alphabet = alphabetOf(text, i, hexadecimal);
            const unsigned move = moveOf(text[i], standIn[i], alphabet);
            if (move != 0) loadedMoves.try_emplace(keyOf(text, i, alphabet), move);
        }
    }
    if (!fits) throw platform::Failure("no stand-in: \"" + standIn + '"');
    loaded.emplace(text, standIn);
    if (text.size() >= telling) lengths.insert(text.size());
}

void StandIns::load(const std::string& pairs)
{
    const auto read = nlohmann::json::parse(pairs, nullptr, false);
    if (!read.is_object()) throw platform::Failure("no JSON object of originals and stand-ins");
    for (const auto& [text, standIn] : read.items()) {
        if (!standIn.is_string()) throw platform::Failure("no stand-in: " + standIn.dump());
        learn(text, standIn);
    }
    drawAnew();
}

std::string StandIns::pairs() const
{
    nlohmann::json all = loaded;
    all.update(nlohmann::json(drawn));
    return all.dump(2) + '\n';
}

} // namespace recorder
