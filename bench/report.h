// What a table program prints, in Markdown: tables, and the targets with what was measured. The program ends
// with `status()`.

#pragma once

#include "statistics.h"

#include <string>
#include <vector>

namespace bench
{

class Report
{
public:
    explicit Report(const std::string& title);

    void table(const std::vector<std::string>& header, const std::vector<std::vector<std::string>>& rows);

    /// Whether the value is within its limit.
    void atMost(const std::string& what, double value, double limit, const char* unit = "");
    void atLeast(const std::string& what, double value, double limit);

    /// 1 when a target was missed.
    [[nodiscard]] int status() const { return missed_ ? 1 : 0; }

private:
    void target(const std::string& what, double value, const char* bound, double limit, const char* unit,
                bool met);

    bool missed_ = false;
};

[[gnu::format(printf, 1, 2)]] std::string format(const char* format, ...);

/// The median in units of `unit`, with the spread: "12.3 ± 2 %".
std::string cell(const Series& values, double unit = 1);

} // namespace bench
