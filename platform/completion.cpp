#include "platform/completion.h"

#include "platform/failure.h"
#include "platform/nearest.h"
#include "platform/usage.h"

#include <algorithm>
#include <array>
#include <optional>

namespace platform
{

namespace
{

struct Script {
    std::string_view shell;
    std::string_view text; ///< @NAME@ is the program, @NAME_@ the same as an identifier
};

// The words come from the program; paths the shell completes itself, for it knows how to quote them.
constexpr std::array scripts = {Script{.shell = "bash", .text = R"(# Completion of @NAME@.
_@NAME_@()
{
    local program=${COMP_WORDS[0]/#\~/$HOME} lines
    [[ $(type -t -- "$program") == file ]] || program=@NAME@
    mapfile -t lines < <("$program" complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
    COMPREPLY=()
    case ${lines[0]-} in
        words | parts)
            COMPREPLY=("${lines[@]:1}")
            COMPREPLY=("${COMPREPLY[@]%%$'\t'*}")
            [[ ${lines[0]} == words ]] || compopt -o nospace
            ;;
        folders) compopt -o dirnames ;;
        programs) mapfile -t COMPREPLY < <(compgen -c -- "${COMP_WORDS[COMP_CWORD]}") ;;
        *) compopt -o default ;;
    esac
}
complete -F _@NAME_@ @NAME@
)"},
                                Script{.shell = "zsh", .text = R"(#compdef @NAME@
# Completion of @NAME@.
_@NAME_@()
{
    local program=${~words[1]} kind
    local -a lines found
    (( $+commands[$program] )) || [[ -x $program ]] || program=@NAME@
    lines=("${(@f)$($program complete -- "${(@Q)words[2,CURRENT]}" 2>/dev/null)}")
    kind=$lines[1]
    found=("${(@)lines[2,-1]%%$'\t'*}")
    case $kind in
        words) compadd -- $found ;;
        parts) compadd -S '' -- $found ;;
        folders) compset -P '--*='; _directories ;;
        programs) _command_names -e ;;
        *) compset -P '--*='; _files ;;
    esac
}
if [[ $funcstack[1] == _@NAME_@ ]]; then _@NAME_@ "$@"; else compdef _@NAME_@ @NAME@; fi
)"},
                                Script{.shell = "fish", .text = R"(# Completion of @NAME@.
function __@NAME_@_offers
    set -l words (commandline -opc)
    set -l program $words[1]
    command -q $program; or set program @NAME@
    command $program complete -- $words[2..-1] (commandline -ct) 2>/dev/null
end
function __@NAME_@_kind
    set -l offers (__@NAME_@_offers)
    contains -- "$offers[1]" $argv
end
function __@NAME_@_words
    set -l offers (__@NAME_@_offers)
    printf '%s\n' $offers[2..-1]
end
complete -c @NAME@ -n '__@NAME_@_kind words parts' -f -a '(__@NAME_@_words)'
complete -c @NAME@ -n '__@NAME_@_kind folders' -f -a '(__fish_complete_directories (commandline -ct))'
complete -c @NAME@ -n '__@NAME_@_kind programs' -f -a '(__fish_complete_command)'
complete -c @NAME@ -n '__@NAME_@_kind files' -F
)"}};

struct Offer {
    std::string word;
    std::string_view help;
};

std::string listed(std::string_view kind, const std::vector<Offer>& offers, std::string_view typed)
{
    std::string text = std::string(kind) + '\n';
    for (const Offer& offer : offers) {
        if (!offer.word.starts_with(typed)) continue;
        text += offer.word;
        if (!offer.help.empty()) text.append(1, '\t').append(offer.help);
        text += '\n';
    }
    return text;
}

std::string pathsOf(const Offers& offers)
{
    constexpr std::array<std::string_view, 3> kinds = {"words", "files", "folders"};
    return std::string(kinds.at(static_cast<size_t>(offers.paths))) + '\n';
}

/// One of several words: what stands before it stays, and what stands there already is not offered again.
std::string listedItems(const std::vector<std::string>& words, const std::string& typed,
                        const std::string& name)
{
    const size_t comma = typed.rfind(',');
    size_t start = comma == std::string::npos ? 0 : comma + 1;
    if (typed[start] == '+' || typed[start] == '-') ++start; // at its end there is a NUL
    const std::string before = ',' + typed.substr(0, start);
    const std::string stays = name + typed.substr(0, start);
    std::vector<Offer> offers;
    for (const std::string& word : words) {
        const bool there = before.find(',' + word + ',') != std::string::npos;
        if (!there) offers.push_back({.word = stays + word, .help = {}});
    }
    return listed("parts", offers, name + typed);
}

/// What is typed so far, as the program would take it.
class Typed
{
public:
    Typed(const Program& ofProgram, const std::vector<std::string>& words)
        : program(ofProgram), current(words.empty() ? "" : words.back())
    {
        for (size_t i = 0; i + 1 < words.size(); ++i)
            take(words[i]);
    }

    [[nodiscard]] std::string offers() const
    {
        if (behindMark && command->program != nullptr) return started ? "files\n" : "programs\n";
        if (command == nullptr) return offerCommands();
        if (open != nullptr && !(open->mayLackValue && current.starts_with('-')))
            return offerValues(*open, current == "=" ? "" : current, "");
        if (current.starts_with('-') && !behindMark) return offerOptions();
        if (command->arguments.empty()) return "words\n";
        const size_t turn = std::min(arguments.size(), command->arguments.size() - 1);
        const Argument& argument = command->arguments[turn];
        if (arguments.size() > turn && !takesSeveral(argument.into)) return "words\n";
        return offerWords(argument.offers, current, "");
    }

private:
    void take(const std::string& word)
    {
        if (command == nullptr) return start(word);
        if (behindMark) {
            started = true;
            arguments.push_back(word);
        } else if (open != nullptr) {
            if (word != "=") open = nullptr; // bash takes --option=value apart
        } else if (word == "--") {
            behindMark = true;
        } else if (word.size() > 1 && word.front() == '-') {
            const Option* const option = find(word);
            open = option != nullptr && takesValue(*option) ? option : nullptr;
        } else {
            arguments.push_back(word);
        }
    }

    void start(const std::string& word)
    {
        const auto found = std::ranges::find(program.commands, word, &Command::name);
        if (found != program.commands.end()) command = &*found;
    }

    [[nodiscard]] const Option* find(const std::string& name) const
    {
        for (const Option& option : command->options) {
            const std::vector<std::string> names = namesOf(option);
            if (std::ranges::find(names, name) != names.end()) return &option;
        }
        return nullptr;
    }

    [[nodiscard]] std::string offerCommands() const
    {
        std::vector<Offer> offers;
        for (const Command& one : program.commands)
            offers.push_back({.word = std::string(one.name), .help = one.help});
        if (current.starts_with('-'))
            offers = {{.word = "--help", .help = {}}, {.word = "--version", .help = {}}};
        return listed("words", offers, current);
    }

    [[nodiscard]] std::string offerOptions() const
    {
        const size_t equals = current.find('=');
        const Option* const given = equals == std::string::npos ? nullptr : find(current.substr(0, equals));
        if (given != nullptr && takesValue(*given))
            return offerValues(*given, current.substr(equals + 1), current.substr(0, equals + 1));
        std::vector<Offer> offers;
        for (const Option& option : command->options)
            offers.push_back({.word = namesOf(option).back(), .help = option.help});
        offers.push_back({.word = "--help", .help = "This help"});
        if (command->program != nullptr) offers.push_back({.word = "--", .help = "The program follows"});
        return listed("words", offers, current);
    }

    /// \param name what stands before the value in the same word
    [[nodiscard]] std::string offerValues(const Option& option, const std::string& typed,
                                          const std::string& name) const
    {
        const std::vector<std::string> choices = choicesOf(option);
        if (choices.empty()) return offerWords(option.offers, typed, name);
        std::vector<Offer> offers;
        for (const std::string& choice : choices)
            offers.push_back({.word = name + choice, .help = {}});
        return listed("words", offers, name + typed);
    }

    [[nodiscard]] std::string offerWords(const Offers& offers, const std::string& typed,
                                         const std::string& name) const
    {
        if (!offers.words) return pathsOf(offers);
        const std::vector<std::string> words = offers.words(arguments);
        if (offers.several) return listedItems(words, typed, name);
        std::vector<Offer> found;
        for (const std::string& word : words)
            found.push_back({.word = name + word, .help = {}});
        return listed("words", found, name + typed);
    }

    const Program& program;
    std::string current;
    const Command* command = nullptr;
    const Option* open = nullptr; ///< waits for its value
    std::vector<std::string> arguments;
    bool behindMark = false;
    bool started = false; ///< the program behind the mark is there
};

std::string replaced(std::string text, std::string_view mark, std::string_view by)
{
    for (size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += by.size())
        text.replace(at, mark.size(), by);
    return text;
}

} // namespace

const std::vector<std::string>& shells()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> found;
        for (const Script& script : scripts)
            found.emplace_back(script.shell);
        return found;
    }();
    return names;
}

std::string completionScript(const Program& program, std::string_view shell)
{
    const auto script = std::ranges::find(scripts, shell, &Script::shell);
    if (script == scripts.end())
        throw Failure("no completion for the shell \"" + std::string(shell) + '"' +
                      didYouMean(shell, shells()));
    std::string identifier(program.name);
    std::ranges::replace(identifier, '-', '_');
    return replaced(replaced(std::string(script->text), "@NAME@", program.name), "@NAME_@", identifier);
}

std::string offered(const Program& program, const std::vector<std::string>& words)
{
    return Typed(program, words).offers();
}

} // namespace platform
