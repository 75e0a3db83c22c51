// Sparse systems for the iterative solvers: compressed rows, indices from 1.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace xkl::test {

struct sparse_system {
    int64_t n = 0;
    std::vector<double> a;
    std::vector<int64_t> ia{1}, ja;

    void add(int64_t column, double value)
    {
        a.push_back(value);
        ja.push_back(column + 1);
    }
    void end_row()
    {
        ia.push_back(static_cast<int64_t>(a.size()) + 1);
        ++n;
    }

    void multiply(const double *x, double *y) const
    {
        for (int64_t i = 0; i < n; ++i) {
            y[i] = 0;
            for (int64_t k = ia[i] - 1; k < ia[i + 1] - 1; ++k)
                y[i] += a[k] * x[ja[k] - 1];
        }
    }
    double residual_norm(const double *x, const double *b) const
    {
        std::vector<double> product(n);
        multiply(x, product.data());
        double sum = 0;
        for (int64_t i = 0; i < n; ++i)
            sum += (b[i] - product[i]) * (b[i] - product[i]);
        return std::sqrt(sum);
    }
};

/// Five-point differences on a side by side grid; wind along the lines makes them unsymmetric.
inline sparse_system grid(int64_t side, double wind = 0)
{
    sparse_system system;
    for (int64_t row = 0; row < side; ++row)
        for (int64_t place = 0; place < side; ++place) {
            const int64_t i = row * side + place;
            if (row > 0)
                system.add(i - side, -1);
            if (place > 0)
                system.add(i - 1, -1 - wind);
            system.add(i, 4);
            if (place + 1 < side)
                system.add(i + 1, -1 + wind);
            if (row + 1 < side)
                system.add(i + side, -1);
            system.end_row();
        }
    return system;
}

/// Solves with L (ones on its diagonal) and U that lie in one array of compressed rows.
inline void solve_factors(int64_t n, const double *lu, const int64_t *ia, const int64_t *ja,
                          const double *b, double *x)
{
    for (int64_t i = 0; i < n; ++i) {
        x[i] = b[i];
        for (int64_t k = ia[i] - 1; k < ia[i + 1] - 1 && ja[k] - 1 < i; ++k)
            x[i] -= lu[k] * x[ja[k] - 1];
    }
    for (int64_t i = n - 1; i >= 0; --i) {
        double diagonal = 0;
        for (int64_t k = ia[i] - 1; k < ia[i + 1] - 1; ++k)
            if (ja[k] - 1 == i)
                diagonal = lu[k];
            else if (ja[k] - 1 > i)
                x[i] -= lu[k] * x[ja[k] - 1];
        x[i] /= diagonal;
    }
}

} // namespace xkl::test
