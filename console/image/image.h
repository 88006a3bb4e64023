// The compiled form of a facility file: what the launcher writes and the simulated client and the console's
// programs map into memory and read in place, so that a facility of any size costs a run nothing to load.
//
// One file; every Offset counts bytes from its start and 0 means "none". Texts are NUL-terminated and
// stored once each. Arrays are plain consecutive records.

#pragma once

#include <cstdint>

namespace console::image
{

using Offset = uint64_t;

constexpr uint32_t magic = 0x4b4f5232; // "KOR2"

/// The types of vale.h, and one more for a list of integers and texts.
enum class Type : int32_t { text = 1, integer = 2, uinteger = 3, integers = 4, texts = 5, mixed = 6 };

/// text: data is the text's offset (0: a null text); integer, uinteger: data is the number itself;
/// integers: offset of `count` int32_t; texts: offset of `count` Offset of texts; mixed: offset of `count`
/// Value.
struct Value {
    Type type;
    uint32_t count;
    uint64_t data;
};

struct Attribute {
    Offset name;
    Value value;
};

struct Resource {
    Offset attributes;
    uint32_t attributeCount;
    uint32_t classIndex;
};

/// One resource under the hash of one of its values; a Lookup holds its entries sorted by hash, then
/// resource.
struct Entry {
    uint32_t hash;
    uint32_t resource; ///< index into the image's resources
};

/// The way from a value of one attribute (texts and integers only) to the resources of a class that have it.
struct Lookup {
    Offset name;
    Offset entries;
    uint64_t entryCount;
};

struct Class {
    Offset name;
    uint32_t scope; ///< the one session scope that serves the class
    uint32_t firstResource;
    uint32_t resourceCount;
    uint32_t lookupCount;
    Offset lookups;
};

/// The error that a response carries; number 0: none.
struct Error {
    uint32_t number;
    uint32_t pad;
    Offset message;
};

/// One element of a fault rule's answer.
struct Answer {
    Error error;
    Offset attributes; ///< query: attributeCount Attribute, as given
    uint32_t attributeCount;
    uint32_t handleCount; ///< enumeration
    Offset elements;      ///< action: elementCount Value
    uint64_t elementCount;
};

enum class Effect : uint32_t { none, fails, error, answer, program };

/// One rule of "faults", in the order of the file. An Offset of 0 and a number of -1 match anything.
struct Rule {
    Offset call;
    Offset className;
    Offset selection;
    Offset selectionContains;
    Offset program;
    int64_t scope;
    int64_t nth;               ///< 1-based
    int64_t delayMilliseconds; ///< 0: none
    Effect effect;
    int32_t code;      ///< fails: the call's result; program: the exit status
    Offset message;    ///< fails: the error record's message
    Error error;       ///< error: what the response carries
    uint64_t response; ///< error: which response
    Offset answers;    ///< answer: answerCount Answer
    uint64_t answerCount;
    Offset output; ///< program: what it prints, outputLength bytes (it may hold NUL)
    uint64_t outputLength;
};

struct System {
    Offset mtms;
    Offset state;
};

struct Header {
    uint32_t magic;
    uint32_t classCount;
    Offset classes;
    Offset resources;
    uint64_t resourceCount;
    Offset rules;
    uint64_t ruleCount;
    Offset systems;
    uint64_t systemCount;
    Offset user;     ///< 0: whoami fails
    Offset vpdLines; ///< vpdLineCount Offset of texts; 0: qconvpd fails
    uint64_t vpdLineCount;
    Offset recordedCommand; ///< recordedWordCount Offset of texts; 0: the facility is no recording
    uint64_t recordedWordCount;
    Offset recordedDate;    ///< 0: unknown
    int64_t recordedStatus; ///< -1: unknown
};

/// A run's shared state lies beside the image, zero-filled by the launcher: one RunState, then a RuleState
/// for each rule. Every process of the run maps it writable and changes it atomically.
struct RunState {
    uint64_t sequence; ///< the `seq` of the journal's last line
};
struct RuleState {
    uint64_t matched; ///< calls that matched the rule's fields, for `nth`
    uint64_t fired;   ///< calls that the rule decided
};

/// Where a run's files lie under its root, and how its processes learn of the root and the user.
constexpr const char* imageFile = ".console/image";
constexpr const char* stateFile = ".console/state";
constexpr const char* journalFile = "journal.jsonl";
constexpr const char* rootVariable = "KORD_CONSOLE_ROOT"; ///< the root's absolute path
constexpr const char* userVariable = "KORD_CONSOLE_USER"; ///< set when it overrides console.user

/// FNV-1a over the bytes of a text.
constexpr uint32_t hashBytes(const char* bytes, uint64_t length)
{
    uint32_t hash = 2166136261U;
    for (uint64_t i = 0; i < length; ++i) {
        hash = (hash ^ static_cast<unsigned char>(bytes[i])) * 16777619U;
    }
    return hash;
}

/// The same over the 8 little-endian bytes of an integer's int64_t value.
constexpr uint32_t hashInteger(int64_t integer)
{
    char bytes[8] = {};
    for (unsigned i = 0; i < 8; ++i)
        bytes[i] = static_cast<char>(static_cast<uint64_t>(integer) >> (8 * i));
    return hashBytes(bytes, sizeof bytes);
}

} // namespace console::image
