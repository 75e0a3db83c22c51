// The Schur complement of a system: what elimination of the other unknowns leaves of some. It is dense;
// here it is handed out as compressed rows, and factorized to complete the solution.
#pragma once

#include "lapack/call.h"
#include "solvers/engine.h"

namespace xkl::core::solvers {

template <class T>
class schur_complement {
  public:
    // Tells the number of elements that an export has.
    void announce(const std::vector<int64_t> &unknowns, bool full, int64_t base, int64_t *elements)
    {
        unknowns_ = unknowns;
        full_ = full;
        base_ = base;
        if (elements && *elements < 0)
            *elements = full ? size() * size() : size() * (size() + 1) / 2;
    }

    // The upper triangle of a symmetric one.
    void write_rows(const T *by_rows, int64_t *ia, int64_t *ja, T *values) const
    {
        int64_t place = 0;
        for (int64_t row = 0; row < size(); ++row) {
            ia[row] = place + base_;
            for (int64_t column = full_ ? 0 : row; column < size(); ++column, ++place) {
                ja[place] = column + base_;
                values[place] = by_rows[row * size() + column];
            }
        }
        ia[size()] = place + base_;
    }

    void factor(const T *by_rows)
    {
        const int64_t m = size();
        factors_.resize(m * m);
        for (int64_t row = 0; row < m; ++row)
            for (int64_t column = 0; column < m; ++column)
                factors_[column * m + row] = by_rows[row * m + column];
        pivots_.resize(m);
        call(entries::getrf<T>, m, m, factors_.data(), m, pivots_.data(), &info_);
    }

    // The lower part leaves the condensed right-hand side in the complement's unknowns, the upper part
    // completes from their solution; the part between is the caller's, who knows the complement.
    int64_t solve(engine<T> &others, solve_part part, int64_t n, T *x, int64_t nrhs)
    {
        const int64_t m = size();
        std::vector<T> reduced(m * nrhs);
        if (part == solve_part::all || part == solve_part::lower)
            if (const int64_t error = others.condense(x, reduced.data(), nrhs))
                return error;
        if (part == solve_part::lower)
            exchange(n, x, reduced, nrhs, true);
        if (part == solve_part::upper)
            exchange(n, x, reduced, nrhs, false);
        if (part == solve_part::all) {
            if (info_ != 0)
                return XKL_PARDISO_ZERO_PIVOT;
            int64_t info = 0;
            call(entries::getrs<T>, 'N', m, nrhs, factors_.data(), m, pivots_.data(), reduced.data(), m,
                 &info);
        }
        if (part == solve_part::all || part == solve_part::upper)
            return others.expand(x, reduced.data(), nrhs);
        return XKL_PARDISO_SUCCESS;
    }

  private:
    int64_t size() const { return static_cast<int64_t>(unknowns_.size()); }

    void exchange(int64_t n, T *x, std::vector<T> &reduced, int64_t nrhs, bool to_x) const
    {
        for (int64_t column = 0; column < nrhs; ++column)
            for (int64_t i = 0; i < size(); ++i) {
                T &whole = x[column * n + unknowns_[i]], &part = reduced[column * size() + i];
                (to_x ? whole : part) = to_x ? part : whole;
            }
    }

    std::vector<int64_t> unknowns_;
    bool full_ = true;
    int64_t base_ = 1;
    std::vector<T> factors_;
    std::vector<int64_t> pivots_;
    int64_t info_ = 0;
};

} // namespace xkl::core::solvers
