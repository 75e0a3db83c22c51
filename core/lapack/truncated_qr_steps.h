// The steps of ?GEQP3RK: a QR factorization with column pivoting that stops at a rank, at a tolerance or at
// a NaN. Right-hand sides stand behind the matrix in the same array and go along. The norms of what remains
// of the columns are downdated, and computed anew where cancellation has spoiled them.
#pragma once

#include "reflector.h"

#include <cmath>
#include <limits>

namespace xkl::core {

template <class R>
struct truncation {
    R abstol, reltol; // negative: not used
    R largest;        // norm of the largest column of the whole matrix
};

/// The largest column norm of what remains, alone and relative to the whole matrix.
template <class R>
struct residual_norm {
    R absolute, relative;
};

/// The place of the largest norm, or of the first that is NaN.
template <class R>
int64_t find_pivot(const R *norms, int64_t from, int64_t count)
{
    int64_t found = from;
    for (int64_t j = from; j < count && !std::isnan(norms[found]); ++j)
        if (std::isnan(norms[j]) || norms[j] > norms[found])
            found = j;
    return found;
}

/// Whether the factorization is to stop in front of a pivot of this norm. Columns count from 0.
template <class R>
bool stops_at(R norm, int64_t column, int64_t columns, const truncation<R> &until, residual_norm<R> &rest,
              int64_t &info)
{
    rest = {norm, norm == 0 ? R(0) : norm / until.largest};
    if (std::isnan(norm)) {
        info = column + 1;
        rest.relative = norm;
        return true;
    }
    if (std::isinf(norm) && info == 0)
        info = columns + column + 1;
    return norm == 0 || norm <= until.abstol || rest.relative <= until.reltol;
}

/// Takes stock after the last step that was asked for: k of at most `possible` columns are done.
template <class R>
residual_norm<R> what_remains(const R *norms, int64_t k, int64_t columns, int64_t possible,
                              const truncation<R> &until, int64_t &info)
{
    if (k >= possible)
        return {0, 0};
    residual_norm<R> rest;
    const int64_t largest = find_pivot(norms, k, columns);
    stops_at(norms[largest], largest, columns, until, rest, info);
    if (k == 0 && !std::isnan(rest.absolute))
        rest.relative = 1;
    return rest;
}

/// A matrix under factorization: rows above `offset` are only permuted.
template <class T>
struct pivoted_columns {
    int64_t m, n, nrhs, offset;
    T *a;
    int64_t lda;
    int64_t *jpiv;
    T *tau;
    real_of<T> *norms, *exact_norms;

    T *at(int64_t i, int64_t j) const { return a + i + j * lda; }
    int64_t possible() const { return std::max<int64_t>(0, std::min(m - offset, n)); }

    void swap(int64_t pivot, int64_t k) const
    {
        if (pivot == k)
            return;
        std::swap_ranges(at(0, pivot), at(m, pivot), at(0, k));
        std::swap(jpiv[pivot], jpiv[k]);
        norms[pivot] = norms[k]; // the pivot's own are not needed any more
        exact_norms[pivot] = exact_norms[k];
    }

    /// Makes the reflector that clears column k below its diagonal; false when it is NaN.
    bool make_reflector(int64_t k) const
    {
        const int64_t i = offset + k;
        tau[k] = T(0);
        if (i < m - 1)
            call(entries::larfg<T>, m - i, at(i, k), at(i + 1, k), int64_t(1), tau + k);
        return !std::isnan(std::real(tau[k])) && !std::isnan(std::imag(tau[k]));
    }

    void measure(int64_t j, int64_t first_row) const
    {
        norms[j] = exact_norms[j] =
            first_row < m ? call(entries::nrm2<T>, m - first_row, at(first_row, j), int64_t(1)) : 0;
    }

    /// Takes row i out of the norm of column j; false when too few digits would be left of it.
    bool downdate(int64_t i, int64_t j) const
    {
        using real = real_of<T>;
        const real too_few = std::sqrt(std::numeric_limits<real>::epsilon() / 2);
        if (norms[j] == 0)
            return true;
        const real share = std::abs(*at(i, j)) / norms[j];
        const real left = std::max((1 + share) * (1 - share), real(0));
        const real kept = norms[j] / exact_norms[j];
        if (left * kept * kept <= too_few)
            return false;
        norms[j] *= std::sqrt(left);
        return true;
    }

    void no_reflectors_from(int64_t k) const
    {
        if (k < possible())
            std::fill(tau + k, tau + possible(), T(0));
    }
};

/// One column after the other, at most kmax of them; returns how many.
template <class T>
int64_t factor_columns(const pivoted_columns<T> &q, int64_t kmax, int64_t first_pivot,
                       const truncation<real_of<T>> &until, T *work, residual_norm<real_of<T>> &rest,
                       int64_t &info)
{
    const int64_t steps = std::min(kmax, q.possible());
    info = 0;
    for (int64_t k = 0; k < steps; ++k) {
        const int64_t i = q.offset + k, pivot = i == 0 ? first_pivot : find_pivot(q.norms, k, q.n);
        if (i > 0 && stops_at(q.norms[pivot], pivot, q.n, until, rest, info)) {
            if (!std::isnan(rest.absolute))
                q.no_reflectors_from(k);
            return k;
        }
        q.swap(pivot, k);
        if (!q.make_reflector(k)) {
            info = k + 1;
            rest.absolute = rest.relative = std::numeric_limits<real_of<T>>::quiet_NaN();
            return k;
        }
        apply_reflector(true, 'L', q.m - i, q.n + q.nrhs - k - 1, q.at(i, k), 1, conjugate(q.tau[k]),
                        q.at(i, k + 1), q.lda, work);
        for (int64_t j = k + 1; j < q.n; ++j)
            if (!q.downdate(i, j))
                q.measure(j, i + 1);
    }
    rest = what_remains(q.norms, steps, q.n, q.possible(), until, info);
    q.no_reflectors_from(steps);
    return steps;
}

/// The columns that a block has factored already, V, and F with Q'*A = A - V*F': what the block does to the
/// columns behind it, put off until the block is done but for the rows that the norms need.
template <class T>
struct delayed_update {
    const pivoted_columns<T> &q;
    T *aux, *f;
    int64_t ldf;

    /// Columns from `first` on, below the rows that are done.
    void apply(int64_t done, int64_t first) const
    {
        const int64_t i = q.offset + done, count = q.n + q.nrhs - first;
        if (done > 0 && i < q.m && count > 0)
            gemm<T>('N', 'C', q.m - i, count, done, T(-1), q.at(i, 0), q.lda, f + first, ldf, T(1),
                    q.at(i, first), q.lda);
    }

    /// Swaps the pivot into column k and brings it up to the block's state.
    void swap(int64_t pivot, int64_t k) const
    {
        const int64_t i = q.offset + k;
        q.swap(pivot, k);
        for (int64_t l = 0; l < k; ++l) {
            aux[l] = conjugate(f[pivot + l * ldf]);
            f[pivot + l * ldf] = f[k + l * ldf]; // row k of F is not needed any more
        }
        if (k > 0)
            gemv<T>('N', q.m - i, k, T(-1), q.at(i, 0), q.lda, aux, 1, T(1), q.at(i, k), 1);
    }

    /// Adds column k to F, and brings row i up to the block's state.
    void add(int64_t k) const
    {
        const int64_t i = q.offset + k, count = q.n + q.nrhs - k - 1, rows = q.m - i;
        if (count <= 0)
            return;
        const T diagonal = std::exchange(*q.at(i, k), T(1));
        T *column = f + k + 1 + k * ldf;
        gemv<T>('C', rows, count, q.tau[k], q.at(i, k + 1), q.lda, q.at(i, k), 1, T(0), column, 1);
        if (k > 0) {
            gemv<T>('C', rows, k, -q.tau[k], q.at(i, 0), q.lda, q.at(i, k), 1, T(0), aux, 1);
            gemv<T>('N', count, k, T(1), f + k + 1, ldf, aux, 1, T(1), column, 1);
        }
        gemm<T>('N', 'C', 1, count, k + 1, T(-1), q.at(i, 0), q.lda, f + k + 1, ldf, T(1), q.at(i, k + 1),
                q.lda);
        *q.at(i, k) = diagonal;
    }
};

/// A block of at most nb columns; returns how many. It ends early where a norm can't be downdated, and
/// `done` tells that the whole factorization ends. `spoiled` has room for n - 1 columns.
template <class T>
int64_t factor_block(const pivoted_columns<T> &q, int64_t nb, int64_t first_pivot,
                     const truncation<real_of<T>> &until, const delayed_update<T> &update, int64_t *spoiled,
                     residual_norm<real_of<T>> &rest, bool &done, int64_t &info)
{
    const int64_t steps = std::min(nb, q.possible());
    int64_t k = 0, spoiled_count = 0;
    info = 0;
    done = false;
    while (k < steps && spoiled_count == 0) {
        const int64_t i = q.offset + k, pivot = i == 0 ? first_pivot : find_pivot(q.norms, k, q.n);
        if (i > 0 && stops_at(q.norms[pivot], pivot, q.n, until, rest, info)) {
            done = true;
            update.apply(k, k);
            if (!std::isnan(rest.absolute))
                q.no_reflectors_from(k);
            return k;
        }
        update.swap(pivot, k);
        if (!q.make_reflector(k)) {
            done = true;
            info = k + 1;
            rest.absolute = rest.relative = std::numeric_limits<real_of<T>>::quiet_NaN();
            update.apply(k, k + 1);
            return k;
        }
        update.add(k);
        for (int64_t j = k + 1; j < q.n; ++j)
            if (!q.downdate(i, j))
                spoiled[spoiled_count++] = j;
        ++k;
    }
    update.apply(k, k);
    for (int64_t each = 0; each < spoiled_count; ++each)
        q.measure(spoiled[each], q.offset + k);
    int64_t next_step_tells = info;
    rest = what_remains(q.norms, k, q.n, q.possible(), until, next_step_tells);
    return k;
}

} // namespace xkl::core
