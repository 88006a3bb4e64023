// Text into fixed fields: cut at the field's size, never beyond it, and quoted so that a shell reads back the
// very same text. The input's first byte is the field's size.

#include "fuzz.h"

#include "addTextKord.h"

#include <optional>

namespace
{

/// Reads one shell word that stands between quotes, as the shell does; none when there is more than the word,
/// or less, or something that the shell would expand or run.
class Word
{
public:
    explicit Word(std::string_view written) : rest(written) {}

    std::optional<std::string> read()
    {
        while (!rest.empty()) {
            const char c = take();
            if (c == '\'' ? !single() : c == '"' ? !doubled() : !escaped(c)) return std::nullopt;
        }
        return word;
    }

private:
    char take()
    {
        const char c = rest.front();
        rest.remove_prefix(1);
        return c;
    }

    bool single()
    {
        const size_t end = rest.find('\'');
        if (end == std::string_view::npos) return false;
        word += rest.substr(0, end);
        rest.remove_prefix(end + 1);
        return true;
    }

    bool doubled()
    {
        while (!rest.empty()) {
            const char c = take();
            if (c == '"') return true;
            if (c == '$' || c == '`') return false;
            const bool escapes = c == '\\' && !rest.empty() &&
                                 std::string_view("$`\"\\").find(rest.front()) != std::string_view::npos;
            word += escapes ? take() : c;
        }
        return false;
    }

    /// Outside of quotes nothing but an escaped character is still the same word.
    bool escaped(char c)
    {
        if (c != '\\' || rest.empty()) return false;
        word += take();
        return true;
    }

    std::string_view rest;
    std::string word{};
};

/// The word that a shell makes of a text quoted into a field of that size.
std::string unquoted(const std::string& text, Quotes quotes, size_t size)
{
    fuzz::Field field(size);
    quoteText(field, text.c_str(), quotes);
    const std::string mark = quotes == Quotes::single ? "'" : "\"";
    const std::optional<std::string> word = Word(mark + field.text() + mark).read();
    fuzz::require(word.has_value(), "a quoted text is one word that runs nothing");
    return *word;
}

void checkQuotes(const std::string& text, size_t size)
{
    for (const Quotes quotes : {Quotes::single, Quotes::doubled}) {
        fuzz::require(unquoted(text, quotes, 4 * text.size() + 1) == text, "a shell reads back the text");
        fuzz::require(text.starts_with(unquoted(text, quotes, std::max<size_t>(size, 1))),
                      "a shell reads back the beginning of a cut text");
    }
}

void checkCopies(const std::string& text, size_t size)
{
    fuzz::Field whole(size);
    copyText(whole, text.c_str());
    fuzz::require(whole.text() == whole.cut(text), "a copy is the part that fits");

    const size_t length = text.size() / 2;
    fuzz::Field part(size);
    copyText(part, text.c_str(), length);
    fuzz::require(part.text() == part.cut(text.substr(0, length)), "a copy takes no more than it is told");

    fuzz::Field none(size);
    copyText(none, nullptr);
    fuzz::require(none.text().empty(), "a null text is an empty one");
}

void checkFormats(const std::string& text, size_t size)
{
    fuzz::Field field(size);
    formatText(field, "<%s> %d", text.c_str(), -1);
    const std::string formatted = field.cut("<" + text + "> -1");
    fuzz::require(field.text() == formatted, "a format is the part that fits");
    if (size == 0) return;
    appendText(field, "%s", text.c_str());
    fuzz::require(field.text() == field.cut(formatted + text), "appending goes on where the text ends");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzz::Input input(data, size);
    const size_t fieldSize = input.number();
    const std::string text = input.text();
    checkQuotes(text, fieldSize);
    checkCopies(text, fieldSize);
    checkFormats(text, fieldSize);
    return 0;
}
