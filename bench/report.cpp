#include "report.h"

#include <cstdarg>
#include <cstdio>

namespace bench
{

namespace
{

void printRow(const std::vector<std::string>& cells)
{
    for (const std::string& cell : cells)
        std::printf("| %s ", cell.c_str());
    std::puts("|");
}

} // namespace

Report::Report(const std::string& title)
{
    std::printf("\n### %s\n", title.c_str());
}

void Report::table(const std::vector<std::string>& header, const std::vector<std::vector<std::string>>& rows)
{
    std::puts("");
    printRow(header);
    std::vector<std::string> rule(header.size(), "---:");
    rule[0] = "---";
    printRow(rule);
    for (const auto& row : rows)
        printRow(row);
    std::puts("");
    std::fflush(stdout);
}

void Report::atMost(const std::string& what, double value, double limit, const char* unit)
{
    target(what, value, "at most", limit, unit, value <= limit);
}

void Report::atLeast(const std::string& what, double value, double limit)
{
    target(what, value, "at least", limit, "", value >= limit);
}

void Report::target(const std::string& what, double value, const char* bound, double limit, const char* unit,
                    bool met)
{
    std::printf("- %s: %s %.4g%s, measured **%.4g%s**, %s\n", what.c_str(), bound, limit, unit, value, unit,
                met ? "met" : "MISSED");
    std::fflush(stdout);
    missed_ = missed_ || !met;
}

std::string format(const char* format, ...)
{
    char text[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

std::string cell(const Series& values, double unit)
{
    return format("%.3g ± %.0f %%", median(values) / unit, 100 * spread(values));
}

} // namespace bench
