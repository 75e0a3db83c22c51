// Rank-k and rank-2k updates of symmetric and Hermitian matrices. By rows, the other triangle is in memory
// and the factors are there transposed.
#pragma once

#include "cblas/conjugate.h"

namespace xkl::cblas {

template <class R>
constexpr trans_table symmetric_letters =
    is_complex<typename R::element> ? transposed_symmetric : transposed_once;

/// Options and sizes, which the strided batches test in the same way.
[[gnu::always_inline]] inline int bad_update(int layout, int uplo, int trans, int64_t n, int64_t k)
{
    return !is_uplo(uplo) ? 2 : !is_trans(trans) ? 3 : n < 0 ? 4 : k < 0 ? 5 : !is_layout(layout) ? 1 : 0;
}

template <class R, class S, class A, class C>
void rank_k(trans_table letters, int layout, int uplo, int trans, int64_t n, int64_t k, S alpha, const A *a,
            int64_t lda, S beta, C *c, int64_t ldc)
{
    const bool row = layout == CblasRowMajor;
    const int bad = bad_update(layout, uplo, trans, n, k);
    if (const int place = bad ? bad : below(lda, least_ld(row, trans, n, k)) ? 8 : below(ldc, n) ? 11 : 0)
        return cblas_xerbla(R::name, place);
    call_frame<R>(uplo_letter(uplo, row), trans_letter(letters, trans, row), n, k, alpha, a, lda, beta, c,
                  ldc);
}

template <class R, class... A>
void syrk(A... arguments)
{
    rank_k<R>(symmetric_letters<R>, arguments...);
}

template <class R, class... A>
void herk(A... arguments)
{
    rank_k<R>(transposed_hermitian, arguments...);
}

[[gnu::always_inline]] inline int bad_rank_2k(int layout, int uplo, int trans, int64_t n, int64_t k,
                                              int64_t lda, int64_t ldb, int64_t ldc)
{
    if (const int bad = bad_update(layout, uplo, trans, n, k))
        return bad;
    const int64_t bound = least_ld(layout == CblasRowMajor, trans, n, k);
    return below(lda, bound) ? 8 : below(ldb, bound) ? 10 : below(ldc, n) ? 13 : 0;
}

template <class R, class S, class A, class C>
void syr2k(int layout, int uplo, int trans, int64_t n, int64_t k, S alpha, const A *a, int64_t lda,
           const A *b, int64_t ldb, S beta, C *c, int64_t ldc)
{
    if (const int bad = bad_rank_2k(layout, uplo, trans, n, k, lda, ldb, ldc))
        return cblas_xerbla(R::name, bad);
    const bool row = layout == CblasRowMajor;
    call_frame<R>(uplo_letter(uplo, row), trans_letter(symmetric_letters<R>, trans, row), n, k, alpha, a,
                  lda, b, ldb, beta, c, ldc);
}

/// The transpose of alpha*A*B^H is alpha*conj(B)*A^T, the term that carries conj(alpha) in the update with the
/// transposed factors. So by rows alpha is conjugated.
template <class R, class S>
void her2k(int layout, int uplo, int trans, int64_t n, int64_t k, const void *alpha, const void *a,
           int64_t lda, const void *b, int64_t ldb, S beta, void *c, int64_t ldc)
{
    if (const int bad = bad_rank_2k(layout, uplo, trans, n, k, lda, ldb, ldc))
        return cblas_xerbla(R::name, bad);
    const bool row = layout == CblasRowMajor;
    const auto call = [&](const auto &alpha) {
        call_frame<R>(uplo_letter(uplo, row), trans_letter(transposed_hermitian, trans, row), n, k, alpha,
                      a, lda, b, ldb, beta, c, ldc);
    };
    if (row)
        call(conjugated<R>(alpha));
    else
        call(alpha);
}

} // namespace xkl::cblas
