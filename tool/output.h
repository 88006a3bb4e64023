// Where a command's results go, and what a terminal can show of them.

#pragma once

#include "platform/commandLine.h"
#include "platform/wholeFile.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tool
{

class Output
{
public:
    struct Options {
        std::string path; ///< of a file, which is there whole or not at all; "-" or nothing: standard output
        std::string color = "auto";
    };

    explicit Output(const Options& options);

    void write(std::string_view text);
    /// Everything written so far leaves the program.
    void flush();
    /// Nothing more will be written: a file comes to its place.
    void finish();

    /// Whether results go to a file.
    [[nodiscard]] bool isFile() const { return file.has_value(); }
    /// Whether results go to a terminal.
    [[nodiscard]] bool isTerminal() const { return terminal; }
    [[nodiscard]] bool isColored() const { return colored; }
    /// Of the terminal; 80 where there is none.
    [[nodiscard]] static size_t columns();

private:
    std::optional<platform::WholeFile> file; ///< none: standard output
    bool terminal;
    bool colored;
    std::string buffer;
};

/// Writes a page for a browser to its file; "-" is where results go.
void writePage(const std::string& path, std::string_view page, Output& output);

/// A command that writes results gets the options that all these have. Its file is put in place when `run`
/// returns.
platform::Command writing(platform::Command command, std::function<int(Output&)> run);

} // namespace tool
