#include "document/explain.h"

#include "document/runReader.h"

#include <algorithm>

namespace document
{

Explainer::Explainer(Take taker)
    : take(std::move(taker)), lines([this](const TraceLine& next) { line(next); })
{
}

Explainer::~Explainer() = default;

void Explainer::read(std::string_view bytes)
{
    lines.read(bytes);
}

void Explainer::end()
{
    lines.settle();
    while (!open.empty())
        finish(open.begin(), open.size() > 1 || newestEnded() ? RunEnd::brokenOff : RunEnd::open);
}

void Explainer::line(const TraceLine& line)
{
    if (line.code == "SRCV") return start(line);
    RunReader& reader = readerOf(line);
    reader.read(line);
    if (!reader.ended()) return;
    finish(std::ranges::find_if(open, [&](const auto& one) { return one.get() == &reader; }), RunEnd::closed);
}

/// A run that wrote nothing since the one behind it started is over.
void Explainer::start(const TraceLine& line)
{
    constexpr size_t mostAtOnce = 4;
    while (open.size() > 1 && (open.size() >= mostAtOnce || open.front()->lastLine() < newestStart))
        finish(open.begin(), RunEnd::brokenOff);
    open.push_back(std::make_unique<RunReader>(++runs, line));
    newestStart = line.number;
    open.back()->read(line);
}

/// The newest run that can have written the line. An older one that still writes runs beside it.
RunReader& Explainer::readerOf(const TraceLine& line)
{
    const auto fitting =
        std::find_if(open.rbegin(), open.rend(), [&](const auto& one) { return one->fits(line); });
    const bool none = fitting == open.rend();
    if (open.empty() || (none && newestEnded())) {
        open.push_back(std::make_unique<RunReader>(++runs, line));
        newestStart = line.number;
        return *open.back();
    }
    RunReader& reader = none ? *open.back() : **fitting;
    if (newestEnded())
        done.back().mixedWith = reader.mixWith(done.back().number);
    else if (&reader != open.back().get())
        open.back()->mixWith(reader.mixWith(open.back()->number()));
    return reader;
}

/// Whether the run that started last is over, while an older one is not known to be.
bool Explainer::newestEnded() const
{
    return !done.empty() && done.back().number == runs;
}

void Explainer::finish(std::list<std::unique_ptr<RunReader>>::iterator reader, RunEnd end)
{
    done.push_back((*reader)->finish(end));
    done.back().lastLineCut = end == RunEnd::open && lines.isInsideLine();
    open.erase(reader);
    std::ranges::sort(done, {}, &TracedRun::number);
    const size_t oldestOpen = open.empty() ? runs + 1 : open.front()->number();
    while (!done.empty() && done.front().number < oldestOpen) {
        take(done.front());
        done.erase(done.begin());
    }
}

} // namespace document
