// LU factorization without pivoting, in full and in part, and the inverse from its factors.
#pragma once

#include "call.h"
#include "no_pivot.h"
#include "requirements.h"

namespace xkl::core {

template <class T>
void xkl_getrfnp(const int64_t *m, const int64_t *n, T *a, const int64_t *lda, int64_t *info)
{
    if (accepted<T>("XKL_?GETRFNP", info, {{1, *m >= 0}, {2, *n >= 0}, {4, *lda >= least_ld(*m)}}))
        *info = factor_without_pivots(*m, *n, std::min(*m, *n), a, *lda);
}

template <class T>
void xkl_getrfnpi(const int64_t *m, const int64_t *n, const int64_t *nfact, T *a, const int64_t *lda,
                  int64_t *info)
{
    if (accepted<T>("XKL_?GETRFNPI", info,
                    {{1, *m >= 0},
                     {2, *n >= 0},
                     {3, *nfact >= 0 && *nfact <= std::min(*m, *n)},
                     {5, *lda >= least_ld(*m)}}))
        *info = factor_without_pivots(*m, *n, *nfact, a, *lda);
}

/// A := A*inv(L), L of order n with unit diagonal below the diagonal of A, where zeros come in. Columns go
/// from the last to the first, so that those to the right are done; work holds `block` columns of L.
template <class T>
void divide_by_lower(int64_t n, T *a, int64_t lda, T *work, int64_t block)
{
    for (int64_t j = (n - 1) / block * block; j >= 0; j -= block) {
        const int64_t width = std::min(block, n - j), next = j + width;
        for (int64_t k = j; k < next; ++k) {
            std::copy(a + k + 1 + k * lda, a + n + k * lda, work + k + 1 + (k - j) * n);
            std::fill(a + k + 1 + k * lda, a + n + k * lda, T(0));
        }
        if (next < n)
            gemm('N', 'N', n, width, n - next, T(-1), a + next * lda, lda, work + next, n, T(1),
                 a + j * lda, lda);
        trsm('R', 'L', 'N', 'U', n, width, T(1), work + j, n, a + j * lda, lda);
    }
}

template <class T>
void xkl_getrinp(const int64_t *n, T *a, const int64_t *lda, T *work, const int64_t *lwork, int64_t *info)
{
    constexpr int64_t best_block = 64;
    const int64_t order = *n, given = *lwork;
    const bool asked = given == -1;
    if (!accepted<T>(
            "XKL_?GETRINP", info,
            {{1, order >= 0}, {3, *lda >= least_ld(order)}, {5, asked || given >= least_ld(order)}}))
        return;
    const T best = call(entries::roundup_lwork<real_of<T>>, least_ld(order * best_block));
    if (!asked && order > 0) {
        call(entries::trtri<T>, 'U', 'N', order, a, *lda, info);
        if (*info != 0)
            return;
        divide_by_lower(order, a, *lda, work, std::min(given / order, best_block));
    }
    work[0] = best;
}

} // namespace xkl::core
