#pragma once

#include <cstddef>
#include <vector>

// Nearest-rank percentiles, mean and maximum of a set of samples.
class Summary final
{
public:
    explicit Summary(std::vector<double> samples);

    std::size_t count() const { return m_sorted.size(); }
    // NaN when there are no samples.
    double percentile(double fraction) const;
    double mean() const;
    double max() const { return percentile(1.0); }
    double min() const;

private:
    std::vector<double> m_sorted;
};
