#include "output.h"

#include "platform/failure.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

#include <sys/ioctl.h>
#include <unistd.h>

namespace tool
{

namespace
{

bool isStandardOutput(const std::string& path)
{
    return path.empty() || path == "-";
}

bool wantsColor(const std::string& when, bool terminal)
{
    const char* const none = std::getenv("NO_COLOR");
    const bool wanted = none == nullptr || *none == '\0';
    return when == "always" || (when == "auto" && terminal && wanted);
}

void writeStandardOutput(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written < 0 && errno == EPIPE) throw platform::ReaderGone();
        if (written < 0 && errno != EINTR) throw platform::failedOn("standard output");
        if (written > 0) text.remove_prefix(static_cast<size_t>(written));
    }
}

} // namespace

Output::Output(const Options& options)
    : terminal(isStandardOutput(options.path) && isatty(STDOUT_FILENO) != 0),
      colored(wantsColor(options.color, terminal))
{
    if (!isStandardOutput(options.path)) file.emplace(options.path);
}

void Output::write(std::string_view text)
{
    constexpr size_t enough = size_t{64} * 1024;
    buffer += text;
    if (buffer.size() >= enough) flush();
}

void Output::flush()
{
    if (file)
        file->write(buffer);
    else
        writeStandardOutput(buffer);
    buffer.clear();
}

void Output::finish()
{
    flush();
    if (file) file->putInPlace();
}

size_t Output::columns()
{
    constexpr size_t usual = 80;
    constexpr size_t least = 10;
    winsize size = {};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > least;
    return known ? size.ws_col : usual;
}

void writePage(const std::string& path, std::string_view page, Output& output)
{
    if (path == "-") return output.write(page);
    if (output.isFile())
        throw platform::Failure("--html and -o exclude each other: the page goes to one file");
    platform::writeWhole(path, page);
}

platform::Command writing(platform::Command command, std::function<int(Output&)> run)
{
    const auto options = std::make_shared<Output::Options>();
    command.options.push_back({.names = "-o,--output",
                               .into = &options->path,
                               .help = "Write to this file, which is there whole or not at all",
                               .value = "PATH"});
    command.options.push_back({.names = "--color",
                               .into = &options->color,
                               .help = "Use colour: on a terminal (auto), always or never",
                               .value = "auto|always|never"});
    command.run = [options, run = std::move(run)] {
        Output output(*options);
        const int status = run(output);
        output.finish();
        return status;
    };
    return command;
}

} // namespace tool
