// Iterative refinement with the original matrix: what the factors got wrong is solved for again, until the
// residual is that of rounding, stops shrinking, or the steps are used up.
#pragma once

#include "solvers/matrix.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace xkl::core::solvers {

template <class T>
struct wider {
    using type = std::conditional_t<sizeof(T) == sizeof(float), double, long double>;
};
template <class R>
struct wider<std::complex<R>> {
    using type = std::complex<typename wider<R>::type>;
};

template <class T>
class refinement {
  public:
    using real = decltype(std::abs(T{}));

    // operation: 0 A, 1 A^H, 2 A^T; precise: residuals in the next wider type; tolerance: rounding units
    // that are good enough.
    refinement(const pattern &a, const matrix_kind &kind, const std::vector<T> &values, int64_t operation,
               bool precise, double tolerance)
        : a_(a), kind_(kind), values_(values), operation_(operation), precise_(precise),
          tolerance_(tolerance), residual_(a.n)
    {
        for (const T &value : values)
            largest_ = std::max<double>(largest_, std::abs(value));
    }

    // solve(v) overwrites v by the solution that the factors give; its error code ends the refinement.
    template <class Solve>
    int64_t run(const T *b, T *x, int64_t limit, int64_t &done, const Solve &solve)
    {
        double before = size(b, x);
        std::vector<T> last(a_.n);
        for (done = 0; done < limit && before > 0;) {
            std::vector<T> correction = residual_;
            if (const int64_t error = solve(correction.data()))
                return error;
            std::copy_n(x, a_.n, last.begin());
            for (int64_t i = 0; i < a_.n; ++i)
                x[i] += correction[i];
            ++done;
            const double now = size(b, x);
            if (!(now < before)) {
                std::copy_n(last.begin(), a_.n, x);
                return XKL_PARDISO_SUCCESS;
            }
            if (now > before / 2)
                return XKL_PARDISO_SUCCESS;
            before = now;
        }
        return XKL_PARDISO_SUCCESS;
    }

  private:
    // The residual's size; 0 when it is that of rounding.
    double size(const T *b, const T *x)
    {
        if (precise_)
            find_residual<typename wider<T>::type>(b, x);
        else
            find_residual<T>(b, x);
        double of_residual = 0, of_x = 0, of_b = 0;
        for (int64_t i = 0; i < a_.n; ++i) {
            of_residual = std::max<double>(of_residual, std::abs(residual_[i]));
            of_x = std::max<double>(of_x, std::abs(x[i]));
            of_b = std::max<double>(of_b, std::abs(b[i]));
        }
        const double rounding = tolerance_ * std::numeric_limits<real>::epsilon();
        return of_residual <= rounding * (largest_ * of_x + of_b) ? 0 : of_residual;
    }

    template <class Wide>
    void find_residual(const T *b, const T *x)
    {
        std::vector<Wide> sum(a_.n);
        for (int64_t i = 0; i < a_.n; ++i)
            sum[i] = Wide(b[i]);
        for (int64_t row = 0; row < a_.n; ++row)
            for (int64_t k = a_.start[row]; k < a_.start[row + 1]; ++k) {
                const int64_t column = a_.column[k];
                subtract(sum, row, column, Wide(values_[k]), x);
                if (a_.triangle && row != column)
                    subtract(
                        sum, column, row,
                        Wide(kind_.form == symmetry::conjugated ? conjugate_of(values_[k]) : values_[k]),
                        x);
            }
        for (int64_t i = 0; i < a_.n; ++i)
            residual_[i] = T(sum[i]);
    }

    template <class Wide>
    void subtract(std::vector<Wide> &sum, int64_t row, int64_t column, Wide value, const T *x) const
    {
        if (operation_ == 0)
            sum[row] -= value * Wide(x[column]);
        else
            sum[column] -= (operation_ == 1 ? conjugate_of(value) : value) * Wide(x[row]);
    }

    const pattern &a_;
    matrix_kind kind_;
    const std::vector<T> &values_;
    int64_t operation_;
    bool precise_;
    double tolerance_;
    double largest_ = 0;
    std::vector<T> residual_;
};

} // namespace xkl::core::solvers
