// Measurements that are taken in rounds: every contender once a round, so that whatever else the machine does
// meets all of them alike.

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench
{

constexpr int rounds = 15;

using Series = std::vector<double>;

double median(Series values);

/// Half of the range that holds the middle half of the values, as a share of their median.
double spread(const Series& values);

/// Round by round, the one divided by the other.
Series ratio(const Series& above, const Series& below);
Series difference(const Series& from, const Series& what);

struct Contender {
    std::string name;
    std::function<double()> measure;
};

/// The contenders' values; each round begins with another contender, and a first round is not counted.
std::vector<Series> interleave(const std::vector<Contender>& contenders, size_t counted = rounds);

/// Nanoseconds of this process's own user and system time.
double ownTime();

/// What the work costs of this process's own time.
template <typename Work>
double timeOf(Work work)
{
    const double start = ownTime();
    work();
    return ownTime() - start;
}

} // namespace bench
