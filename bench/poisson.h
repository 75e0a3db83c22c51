// The system that the benchmarks of direct solvers share: minus Laplace on m by m by m points, its upper
// triangle in compressed rows from 0.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

struct poisson {
    explicit poisson(int64_t m) : n(m * m * m)
    {
        for (int64_t i = 0; i < n; ++i) {
            start.push_back(static_cast<int64_t>(column.size()));
            add(i, 6.0);
            int64_t step = 1;
            for (int d = 0; d < 3; ++d, step *= m)
                if (i / step % m + 1 < m)
                    add(i + step, -1.0);
        }
        start.push_back(static_cast<int64_t>(column.size()));
    }

    double residual(const std::vector<double> &x, const std::vector<double> &b) const
    {
        std::vector<double> r = b;
        for (int64_t i = 0; i < n; ++i)
            for (int64_t k = start[i]; k < start[i + 1]; ++k) {
                r[i] -= value[k] * x[column[k]];
                if (column[k] != i)
                    r[column[k]] -= value[k] * x[i];
            }
        double largest = 0;
        for (const double each : r)
            largest = std::max(largest, std::abs(each));
        return largest;
    }

    int64_t n;
    std::vector<int64_t> start, column;
    std::vector<double> value;

  private:
    void add(int64_t at, double element)
    {
        column.push_back(at);
        value.push_back(element);
    }
};

// The shortest of a few runs.
template <class Call>
double seconds_of(const Call &call, int runs = 5)
{
    double best = 1e9;
    for (int i = 0; i < runs; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        call();
        best =
            std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    return best;
}

inline void tell(const char *who, double analysis, double factorization, double solution, double residual)
{
    std::printf("%-44s %9.1f %9.1f %9.1f %9.1f ms   residual %.1e\n", who, analysis * 1e3,
                factorization * 1e3, solution * 1e3, (analysis + factorization + solution) * 1e3, residual);
}
