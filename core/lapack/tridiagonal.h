// Tridiagonal systems without pivoting. The elimination runs from both ends to a row in the middle: two
// chains that don't wait for each other. Above that row the multipliers replace the lower diagonal, below it
// the upper one; the other off-diagonal elements stay as they are, and the pivots replace the diagonal.
#pragma once

#include "blas/parallel.h"
#include "quotient.h"
#include "requirements.h"

#include <algorithm>

namespace xkl::core {

template <class T>
struct tridiagonal {
    int64_t n;
    T *dl, *d, *du; // const types for factors that are only read

    int64_t middle() const { return n / 2; }
};

/// The place of the pivot, counted from 1, that is zero; nothing is eliminated with it. 0 when all are good.
template <class T>
int64_t factor_from_both_ends(tridiagonal<T> a)
{
    const int64_t middle = a.middle();
    for (int64_t top = 0, bottom = a.n - 1; top < middle; ++top, --bottom) {
        if (a.d[top] == T(0))
            return top + 1;
        a.dl[top] = quotient(a.dl[top], a.d[top]);
        a.d[top + 1] -= product(a.dl[top], a.du[top]);
        if (bottom == middle) // the upper part may be one row longer
            break;
        if (a.d[bottom] == T(0))
            return bottom + 1;
        a.du[bottom - 1] = quotient(a.du[bottom - 1], a.d[bottom]);
        a.d[bottom - 1] -= product(a.du[bottom - 1], a.dl[bottom - 1]);
    }
    return a.n > 0 && a.d[middle] == T(0) ? middle + 1 : 0;
}

/// So many right-hand sides at once, and so many independent chains.
template <class T, int columns>
struct right_sides {
    T *b;
    int64_t ldb;

    /// row := row - factor*other
    void subtract(int64_t row, T factor, int64_t other) const
    {
        for (int k = 0; k < columns; ++k)
            b[row + k * ldb] -= product(factor, b[other + k * ldb]);
    }
    void divide(int64_t row, T pivot) const
    {
        for (int k = 0; k < columns; ++k)
            b[row + k * ldb] = quotient(b[row + k * ldb], pivot);
    }
};

/// From the ends to the middle: the multipliers. From the middle to the ends: what is left of the matrix.
template <class T, int columns>
void solve_plain(tridiagonal<const T> a, right_sides<T, columns> x)
{
    const int64_t middle = a.middle();
    for (int64_t top = 0, bottom = a.n - 1; top < middle; ++top, --bottom) {
        x.subtract(top + 1, a.dl[top], top);
        if (bottom > middle)
            x.subtract(bottom - 1, a.du[bottom - 1], bottom);
    }
    x.divide(middle, a.d[middle]);
    for (int64_t top = middle - 1, bottom = middle + 1; top >= 0; --top, ++bottom) {
        x.subtract(top, a.du[top], top + 1);
        x.divide(top, a.d[top]);
        if (bottom < a.n) {
            x.subtract(bottom, a.dl[bottom - 1], bottom - 1);
            x.divide(bottom, a.d[bottom]);
        }
    }
}

/// The same with both factors transposed, and so in the other order.
template <class T, int columns>
void solve_transposed(tridiagonal<const T> a, bool conjugated, right_sides<T, columns> x)
{
    const int64_t middle = a.middle();
    const auto op = [conjugated](T each) { return conjugated ? conjugate(each) : each; };
    for (int64_t top = 0, bottom = a.n - 1; top < middle; ++top, --bottom) {
        x.divide(top, op(a.d[top]));
        x.subtract(top + 1, op(a.du[top]), top);
        if (bottom > middle) {
            x.divide(bottom, op(a.d[bottom]));
            x.subtract(bottom - 1, op(a.dl[bottom - 1]), bottom);
        }
    }
    x.divide(middle, op(a.d[middle]));
    for (int64_t top = middle - 1, bottom = middle + 1; top >= 0; --top, ++bottom) {
        x.subtract(top, op(a.dl[top]), top + 1);
        if (bottom < a.n)
            x.subtract(bottom, op(a.du[bottom - 1]), bottom - 1);
    }
}

template <int columns, class T>
void solve_columns(tridiagonal<const T> a, char trans, T *b, int64_t ldb)
{
    const right_sides<T, columns> x = {b, ldb};
    if (is(trans, 'N'))
        solve_plain(a, x);
    else
        solve_transposed(a, is(trans, 'C'), x);
}

template <class T>
void solve(tridiagonal<const T> a, char trans, int64_t nrhs, T *b, int64_t ldb)
{
    constexpr int64_t together = 4;
    if (a.n == 0)
        return;
    for_each((nrhs + together - 1) / together, operations(10 * together, a.n), [&](int64_t block) {
        const int64_t first = block * together, end = std::min(first + together, nrhs);
        if (end - first == together)
            return solve_columns<together>(a, trans, b + first * ldb, ldb);
        for (int64_t column = first; column < end; ++column)
            solve_columns<1>(a, trans, b + column * ldb, ldb);
    });
}

// The frames of the first two have checked their arguments.

template <class T>
void dttrfb(const int64_t *n, T *dl, T *d, T *du, int64_t *info)
{
    *info = factor_from_both_ends(tridiagonal<T>{*n, dl, d, du});
}

template <class T>
void dtsvb(const int64_t *n, const int64_t *nrhs, T *dl, T *d, T *du, T *b, const int64_t *ldb,
           int64_t *info)
{
    *info = factor_from_both_ends(tridiagonal<T>{*n, dl, d, du});
    if (*info == 0)
        solve(tridiagonal<const T>{*n, dl, d, du}, 'N', *nrhs, b, *ldb);
}

template <class T>
void dttrsb(const char *trans, const int64_t *n, const int64_t *nrhs, const T *dl, const T *d, const T *du,
            T *b, const int64_t *ldb, int64_t *info)
{
    const char op = *trans;
    if (accepted<T>("?DTTRSB", info,
                    {{1, is(op, 'N') || is(op, 'T') || is(op, 'C')},
                     {2, *n >= 0},
                     {3, *nrhs >= 0},
                     {8, *ldb >= *n}}))
        solve(tridiagonal<const T>{*n, dl, d, du}, op, *nrhs, b, *ldb);
}

} // namespace xkl::core
