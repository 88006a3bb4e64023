// Where a document's bytes come from: a file, gzipped or not, standard input, or the files of a folder.

#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace document
{

/// What is wrong with a document: "FILE:LINE: what" or "FILE: what".
class Malformed : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Bytes in their order, read once.
class Input
{
public:
    /// Opens a file, or standard input for "-"; gzipped bytes are unpacked. What cannot be opened is a
    /// Malformed.
    explicit Input(const std::string& file);
    /// Bytes that are in memory already.
    Input(const std::string& name, std::string_view bytes);
    ~Input();
    Input(Input&&) noexcept;
    Input& operator=(Input&&) = delete;

    /// The next bytes; 0: there are no more. What cannot be read is a Malformed.
    size_t read(std::span<char> bytes);

    /// What messages call it; safe to show.
    [[nodiscard]] const std::string& name() const { return shownName; }
    /// The compressed bytes end before they should. Known once all is read.
    [[nodiscard]] bool isCut() const { return cut; }

private:
    struct Source;

    std::string shownName;
    std::unique_ptr<Source> source;
    bool cut = false;
};

/// The documents that a file on the command line means: a folder stands for every addTarnKord_*.xml and
/// addTarnKord_*.xml.gz in it, in the names' order; anything else for itself.
std::vector<std::string> documentsOf(const std::string& file);

} // namespace document
