// LU factorization without pivoting, of one matrix by columns. Nothing ever moves, so that the whole is one
// recursion: the left half of the steps, the rows and the rest of the matrix that follow from it, the right
// half. All but narrow panels is done by products and triangular solves.
//
// A zero pivot stops nothing, as in the factorization with pivoting: its column stays undivided, and the
// first one's place, counted from 1, is the result; 0 when there is none.
#pragma once

#include "quotient.h"

#include "blas/kernels.h"

#include <algorithm>
#include <limits>

namespace xkl::core {

/// y := y - A*x, A m by n. A call costs as much as some two hundred products.
template <class T>
void subtract_product(int64_t m, int64_t n, const T *a, int64_t lda, const T *x, T *y)
{
    if (m * n > 256)
        return gemv('N', m, n, T(-1), a, lda, x, 1, T(1), y, 1);
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < m; ++i)
            y[i] -= product(a[i + j * lda], x[j]);
}

template <class T>
void divide_column(int64_t m, T pivot, T *column)
{
    // The reciprocal of a smaller one is infinite although the quotients may not be.
    if (std::abs(pivot) >= std::numeric_limits<real_of<T>>::min()) {
        const T reciprocal = quotient(T(1), pivot);
        for (int64_t i = 0; i < m; ++i)
            column[i] = product(column[i], reciprocal);
    } else {
        for (int64_t i = 0; i < m; ++i)
            column[i] = quotient(column[i], pivot);
    }
}

/// For panels, m by n with n up to m, and small matrices: column after column from those to its left
template <class T>
int64_t getrfnp_unblocked(int64_t m, int64_t n, T *a, int64_t lda)
{
    int64_t zero_pivot = 0;
    for (int64_t j = 0; j < n; ++j) {
        T *column = a + j * lda;
        for (int64_t k = 0; k < j; ++k)
            for (int64_t i = k + 1; i < j; ++i)
                column[i] -= product(a[i + k * lda], column[k]);
        subtract_product(m - j, j, a + j, lda, column, column + j);
        if (column[j] != T(0))
            divide_column(m - j - 1, column[j], column + j + 1);
        else if (zero_pivot == 0)
            zero_pivot = j + 1;
    }
    return zero_pivot;
}

inline constexpr int64_t panel_width = 16;

/// The first `steps` steps (at most the smaller of m and n) on an m by n matrix, what is behind them updated
template <class T>
int64_t factor_without_pivots(int64_t m, int64_t n, int64_t steps, T *a, int64_t lda)
{
    if (steps == 0)
        return 0;
    if (steps < n) { // a matrix wider than its steps
        T *right = a + steps * lda;
        const int64_t zero_pivot = factor_without_pivots(m, steps, steps, a, lda);
        trsm('L', 'L', 'N', 'U', steps, n - steps, T(1), a, lda, right, lda);
        if (steps < m)
            gemm('N', 'N', m - steps, n - steps, steps, T(-1), a + steps, lda, right, lda, T(1),
                 right + steps, lda);
        return zero_pivot;
    }
    if (steps <= panel_width)
        return getrfnp_unblocked(m, steps, a, lda);
    const int64_t half = steps / 2;
    const int64_t first = factor_without_pivots(m, n, half, a, lda);
    const int64_t second =
        factor_without_pivots(m - half, n - half, steps - half, a + half + half * lda, lda);
    return first != 0 || second == 0 ? first : second + half;
}

} // namespace xkl::core
