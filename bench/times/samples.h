#pragma once

#include <algorithm>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

/// Microseconds, and what is said of them.
class Samples {
public:
    /// Adds one, and makes it the time of the benchmark's iteration.
    void add(benchmark::State &state, double microseconds)
    {
        m_all.push_back(microseconds);
        state.SetIterationTime(microseconds / 1e6);
    }

    /// Adds median, mean and 99th percentile to the benchmark's counters.
    void report(benchmark::State &state, const std::string &prefix = "")
    {
        std::sort(m_all.begin(), m_all.end());
        double sum = 0;
        for (const double each : m_all)
            sum += each;
        state.counters[prefix + "median_us"] = at(0.5);
        state.counters[prefix + "p99_us"] = at(0.99);
        state.counters[prefix + "mean_us"] = sum / double(m_all.size());
    }

    void add(double microseconds) { m_all.push_back(microseconds); }

private:
    double at(double part) const
    {
        const auto index = size_t(part * double(m_all.size()));
        return m_all.at(std::min(index, m_all.size() - 1));
    }

    std::vector<double> m_all;
};

} // namespace bench
