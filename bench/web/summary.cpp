#include "summary.h"

#include <algorithm>
#include <cmath>
#include <numeric>

Summary::Summary(std::vector<double> samples)
    : m_sorted(std::move(samples))
{
    std::sort(m_sorted.begin(), m_sorted.end());
}

double Summary::percentile(double fraction) const
{
    if (m_sorted.empty())
        return NAN;
    const auto rank = static_cast<std::size_t>(std::ceil(fraction * static_cast<double>(m_sorted.size())));
    return m_sorted[std::max<std::size_t>(rank, 1) - 1];
}

double Summary::mean() const
{
    if (m_sorted.empty())
        return NAN;
    return std::accumulate(m_sorted.begin(), m_sorted.end(), 0.0) / static_cast<double>(m_sorted.size());
}

double Summary::min() const
{
    return m_sorted.empty() ? NAN : m_sorted.front();
}
