#include "statistics.h"

#include <algorithm>
#include <ctime>

namespace bench
{

namespace
{

double quantile(Series values, double share)
{
    if (values.empty()) return 0;
    std::ranges::sort(values);
    const double place = share * static_cast<double>(values.size() - 1);
    const auto below = static_cast<size_t>(place);
    const size_t above = std::min(below + 1, values.size() - 1);
    return values[below] + (place - static_cast<double>(below)) * (values[above] - values[below]);
}

template <typename Operation>
Series combine(const Series& left, const Series& right, Operation operation)
{
    Series result(std::min(left.size(), right.size()));
    std::transform(left.begin(), left.begin() + static_cast<std::ptrdiff_t>(result.size()), right.begin(),
                   result.begin(), operation);
    return result;
}

} // namespace

double median(Series values)
{
    return quantile(std::move(values), 0.5);
}

double spread(const Series& values)
{
    const double middle = median(values);
    return middle == 0 ? 0 : (quantile(values, 0.75) - quantile(values, 0.25)) / 2 / middle;
}

Series ratio(const Series& above, const Series& below)
{
    return combine(above, below, std::divides<>());
}

Series difference(const Series& from, const Series& what)
{
    return combine(from, what, std::minus<>());
}

std::vector<Series> interleave(const std::vector<Contender>& contenders, size_t counted)
{
    std::vector<Series> results(contenders.size());
    for (size_t round = 0; round <= counted; ++round) {
        for (size_t i = 0; i < contenders.size(); ++i) {
            const size_t turn = (round + i) % contenders.size();
            const double value = contenders[turn].measure();
            if (round > 0) results[turn].push_back(value);
        }
    }
    return results;
}

double ownTime()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

} // namespace bench
