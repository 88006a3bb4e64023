// A trace log read back into the lines that the collector wrote.

#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace document
{

/// What one stamped line says, with what it went on with in the lines below it.
struct TraceLine {
    std::string_view stamp;   ///< "112126 13:04:59"
    std::string_view code;    ///< without the blank that some carry before their colon
    std::string_view text;    ///< in one piece, as it was before it was wrapped; it may hold line feeds
    std::string_view further; ///< unstamped lines below that are no part of the text
    size_t number = 0;        ///< of its first line in the log, from 1
    bool whole = true;        ///< the text is as the collector wrote it, as far as its form tells
};

/// The exit status that a run's closing line tells; none when it is another line.
std::optional<int> closingStatus(const TraceLine& line);

/// The managed system that the first line of a run names; empty when it is another line.
std::string_view systemStarted(const TraceLine& line);

/// Whether the run ends with this line although it is not the closing one: it never came to its sessions.
bool endsWithoutClosing(const TraceLine& line);

/// The text without blanks around it.
std::string_view trimmed(std::string_view text);

/// The number that the text starts with; 0 where it starts with none.
int64_t numberOf(std::string_view text);

/// A line's stamp, "112126 13:04:59", by the console's clock; none where it is no time.
std::optional<std::tm> timeOfStamp(std::string_view stamp);

/// Seconds from one stamp to another; 0 when one of them is no time.
int64_t secondsBetween(std::string_view from, std::string_view until);

/// Takes a log apart, whatever bytes it holds; of a line of any length it keeps what a line of the collector
/// can have.
class TraceReader
{
public:
    using Take = std::function<void(const TraceLine& line)>;
    explicit TraceReader(Take taker) : take(std::move(taker)) {}

    /// Reads on. A line is handed over when the next one starts.
    void read(std::string_view bytes);
    /// Hands over what was read last: nothing more is there at present.
    void settle();
    /// Whether the bytes read so far end inside a line.
    [[nodiscard]] bool isInsideLine() const { return !physical.empty(); }

private:
    void dropMiddle();
    void endOfLine();
    void start(std::string_view line);
    void append(std::string_view line);
    void goOn(std::string_view line);
    [[nodiscard]] bool isRestOfWrapped(std::string_view line) const;

    Take take;
    std::string physical;  ///< the line that is being read, as far as it is kept
    bool overlong = false; ///< more of it was read than kept
    size_t feeds = 0;
    std::string stamp;
    std::string code;        ///< with its blank
    std::string body;        ///< the text with the line feeds between the log's lines
    bool lastIsFull = false; ///< every line of the body is as long as a wrapped one that goes on
    size_t number = 0;
    bool pending = false; ///< a line was started and not yet handed over
    bool whole = true;
};

} // namespace document
