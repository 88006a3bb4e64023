// Reading selections with an operator stack, which no depth of parentheses overflows, and evaluating them.

#include "image/selection.h"

#include <algorithm>
#include <charconv>
#include <numeric>

namespace console::image
{

namespace
{

using Kind = Selection::Kind;
using Node = Selection::Node;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isNameCharacter(char c)
{
    return isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

/// Reads left to right, operands onto one stack and operators that wait for their right side onto another.
struct Parser {
    std::string_view text;
    std::string& fault;
    size_t at = 0;
    std::vector<Node> nodes{};
    std::vector<size_t> operands{};
    std::string operators{}; ///< '(', '&' or '|'

    bool fail(const char* what, size_t place)
    {
        fault = std::string(what) + " at column " + std::to_string(place + 1);
        return false;
    }
    char peek() const { return at < text.size() ? text[at] : '\0'; }
    void skipBlanks()
    {
        while (at < text.size() && isBlank(text[at]))
            ++at;
    }
    bool take(std::string_view token)
    {
        skipBlanks();
        if (!text.substr(at).starts_with(token)) return false;
        at += token.size();
        return true;
    }

    template <typename Predicate>
    std::string_view takeWhile(Predicate predicate)
    {
        const size_t start = at;
        while (at < text.size() && predicate(text[at]))
            ++at;
        return text.substr(start, at - start);
    }

    bool quotedText(Node& node);
    bool number(Node& node);
    bool comparison();
    void reduce();
    void reduceWhile(std::string_view binding);
    bool closeParenthesis();
    bool joinNext();
    bool operand();
    bool selection();
};

bool Parser::quotedText(Node& node)
{
    const char quote = text[at];
    const size_t end = text.find(quote, at + 1);
    if (end == std::string_view::npos) return fail("a text that is not closed", at);
    node.text = text.substr(at + 1, end - at - 1);
    at = end + 1;
    return true;
}

bool Parser::number(Node& node)
{
    const size_t start = at;
    if (peek() == '-') ++at;
    if (takeWhile(isDigit).empty()) return fail("a text or a number expected", start);
    int64_t value = 0;
    const auto result = std::from_chars(text.data() + start, text.data() + at, value);
    if (result.ec == std::errc()) node.number = value;
    node.kind = Kind::number;
    return true;
}

bool Parser::comparison()
{
    skipBlanks();
    if (isDigit(peek())) return fail("an attribute name expected", at);
    Node node{.kind = Kind::text};
    node.attribute.name = takeWhile(isNameCharacter);
    if (node.attribute.name.empty()) return fail("an attribute name expected", at);
    if (take("=?")) {
        node.kind = Kind::pattern;
    } else if (!take("=")) {
        return fail("= or =? expected", at);
    }
    skipBlanks();
    const bool quoted = peek() == '"' || peek() == '\'';
    if (!quoted && node.kind == Kind::pattern) return fail("a text expected", at);
    if (!(quoted ? quotedText(node) : number(node))) return false;
    operands.push_back(nodes.size());
    nodes.push_back(node);
    return true;
}

void Parser::reduce()
{
    const size_t right = operands.back();
    operands.pop_back();
    const Kind kind = operators.back() == '&' ? Kind::all : Kind::any;
    operators.pop_back();
    nodes.push_back({.kind = kind, .left = operands.back(), .right = right});
    operands.back() = nodes.size() - 1;
}

void Parser::reduceWhile(std::string_view binding)
{
    while (!operators.empty() && binding.find(operators.back()) != std::string_view::npos)
        reduce();
}

bool Parser::closeParenthesis()
{
    const size_t place = at - 1;
    reduceWhile("&|");
    if (operators.empty()) return fail("a ) without its (", place);
    operators.pop_back();
    return true;
}

/// Takes the operator that joins what was read to what follows.
bool Parser::joinNext()
{
    if (take("&&")) {
        reduceWhile("&");
        operators += '&';
    } else if (take("||")) {
        reduceWhile("&|");
        operators += '|';
    } else {
        return fail("&& or || expected", at);
    }
    return true;
}

/// A comparison with the parentheses around it.
bool Parser::operand()
{
    while (take("("))
        operators += '(';
    if (!comparison()) return false;
    while (take(")")) {
        if (!closeParenthesis()) return false;
    }
    return true;
}

bool Parser::selection()
{
    if (!operand()) return false;
    while (at < text.size()) {
        if (!joinNext() || !operand()) return false;
    }
    reduceWhile("&|");
    return operators.empty() || fail("a ) expected", at);
}

/// Marks the nodes that hold for every match: the root and, through &&, what it is made of.
void markRequired(std::vector<Node>& nodes)
{
    nodes.back().required = true;
    for (size_t i = nodes.size(); i-- > 0;) {
        if (!nodes[i].required || nodes[i].kind != Kind::all) continue;
        nodes[nodes[i].left].required = true;
        nodes[nodes[i].right].required = true;
    }
}

bool matchesNumber(const Value& value, int64_t number)
{
    if (value.type == Type::integer) return static_cast<int32_t>(value.data) == number;
    return value.type == Type::uinteger && static_cast<uint32_t>(value.data) == number;
}

bool compare(const Image& image, const Resource& resource, Node& node)
{
    const Attribute* attribute = node.attribute.find(image, resource);
    if (attribute == nullptr) return false;
    const Value& value = attribute->value;
    if (node.kind == Kind::number) return node.number && matchesNumber(value, *node.number);
    if (value.type != Type::text || value.data == 0) return false;
    const std::string_view text = image.text(value.data);
    return node.kind == Kind::text ? text == node.text : matchesPattern(text, node.text);
}

/// The entries of a class under the value that a required equality asks for; none when the class keeps no
/// such entries and must be walked.
std::optional<std::span<const Entry>> lookUp(const Image& image, const Class& from, const Node& node)
{
    const bool equality = node.kind == Kind::text || (node.kind == Kind::number && node.number);
    if (!node.required || !equality) return std::nullopt;
    for (const Lookup& lookup : image.span<Lookup>(from.lookups, from.lookupCount)) {
        if (image.text(lookup.name) != node.attribute.name) continue;
        const auto entries = image.span<Entry>(lookup.entries, lookup.entryCount);
        const uint32_t hash = node.kind == Kind::text ? hashBytes(node.text.data(), node.text.size())
                                                      : hashInteger(*node.number);
        const auto first = std::ranges::lower_bound(entries, hash, {}, &Entry::hash);
        const auto last = std::ranges::upper_bound(entries, hash, {}, &Entry::hash);
        return std::span<const Entry>(first, last);
    }
    return std::nullopt;
}

std::optional<std::span<const Entry>> candidates(const Image& image, const Class& from,
                                                 const Selection& selection)
{
    std::optional<std::span<const Entry>> smallest;
    for (const Node& node : selection.nodes) {
        const auto found = lookUp(image, from, node);
        if (found && (!smallest || found->size() < smallest->size())) smallest = found;
    }
    return smallest;
}

} // namespace

bool Selection::matches(const Image& image, const Resource& resource)
{
    results.resize(nodes.size());
    for (size_t i = 0; i < nodes.size(); ++i) {
        Node& node = nodes[i];
        if (node.kind == Kind::all) {
            results[i] = results[node.left] && results[node.right];
        } else if (node.kind == Kind::any) {
            results[i] = results[node.left] || results[node.right];
        } else {
            results[i] = compare(image, resource, node);
        }
        if (node.required && !results[i]) return false;
    }
    return true;
}

std::optional<Selection> parseSelection(std::string_view text, std::string& fault)
{
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    Parser parser{.text = text, .fault = fault};
    if (!parser.selection()) return std::nullopt;
    markRequired(parser.nodes);
    return Selection{.nodes = std::move(parser.nodes)};
}

bool matchesPattern(std::string_view text, std::string_view pattern)
{
    size_t t = 0;
    size_t p = 0;
    size_t wildcard = std::string_view::npos; // the last one seen, and how far its run reaches by now
    size_t reach = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '%') {
            wildcard = p++;
            reach = t;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (wildcard != std::string_view::npos) {
            p = wildcard + 1;
            t = ++reach;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('%', p) == std::string_view::npos;
}

std::vector<uint32_t> select(const Image& image, const Class& from, Selection* selection)
{
    std::vector<uint32_t> found;
    const auto add = [&](uint32_t index) {
        if (selection == nullptr || selection->matches(image, image.resources()[index]))
            found.push_back(index);
    };
    const auto entries = selection == nullptr ? std::nullopt : candidates(image, from, *selection);
    if (entries) {
        for (const Entry& entry : *entries)
            add(entry.resource);
    } else {
        for (uint32_t i = 0; i < from.resourceCount; ++i)
            add(from.firstResource + i);
    }
    return found;
}

} // namespace console::image
