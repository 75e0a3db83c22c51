// Triangular matrix times matrix, and triangular systems with many right-hand sides. By rows, the triangle
// stands on the other side and is the other one; trans and diag stay.
#pragma once

#include "cblas/bounds.h"
#include "cblas/call.h"

namespace xkl::cblas {

/// Options and sizes, which the batches test in the same way.
[[gnu::always_inline]] inline int bad_sided_triangle(int layout, int side, int uplo, int trans, int diag,
                                                     int64_t m, int64_t n)
{
    return !is_side(side)       ? 2
           : !is_uplo(uplo)     ? 3
           : !is_trans(trans)   ? 4
           : !is_diag(diag)     ? 5
           : m < 0              ? 6
           : n < 0              ? 7
           : !is_layout(layout) ? 1
                                : 0;
}

/// `operands` is what the frame takes behind the sizes.
template <class R, class... Operands>
[[gnu::always_inline]] inline void call_sided(bool row, int side, int uplo, int trans, int diag, int64_t m,
                                              int64_t n, const Operands &...operands)
{
    call_frame<R>(side_letter(side, row), uplo_letter(uplo, row), trans_letter(trans), diag_letter(diag),
                  line_length(row, m, n), line_count(row, m, n), operands...);
}

/// TRMM, TRSM.
template <class R, class S, class A, class B>
void trmm(int layout, int side, int uplo, int transa, int diag, int64_t m, int64_t n, S alpha, const A *a,
          int64_t lda, B *b, int64_t ldb)
{
    const bool row = layout == CblasRowMajor;
    const int bad = bad_sided_triangle(layout, side, uplo, transa, diag, m, n);
    if (const int place = bad                                  ? bad
                          : below(lda, side_order(side, m, n)) ? 10
                          : below(ldb, line_length(row, m, n)) ? 12
                                                               : 0)
        return cblas_xerbla(R::name, place);
    call_sided<R>(row, side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

/// TRMM_OOP, TRSM_OOP.
template <class R, class S, class A, class C>
void trmm_oop(int layout, int side, int uplo, int transa, int diag, int64_t m, int64_t n, S alpha,
              const A *a, int64_t lda, const A *b, int64_t ldb, S beta, C *c, int64_t ldc)
{
    const bool row = layout == CblasRowMajor;
    const int bad = bad_sided_triangle(layout, side, uplo, transa, diag, m, n);
    if (const int place = bad                                  ? bad
                          : below(lda, side_order(side, m, n)) ? 10
                          : below(ldb, line_length(row, m, n)) ? 12
                          : below(ldc, line_length(row, m, n)) ? 15
                                                               : 0)
        return cblas_xerbla(R::name, place);
    call_sided<R>(row, side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

/// A packed triangle has no leading dimension.
template <class R, class S, class A, class B>
void ptrmm(int layout, int side, int uplo, int transa, int diag, int64_t m, int64_t n, S alpha, const A *ap,
           B *b, int64_t ldb)
{
    const bool row = layout == CblasRowMajor;
    const int bad = bad_sided_triangle(layout, side, uplo, transa, diag, m, n);
    if (const int place = bad ? bad : below(ldb, line_length(row, m, n)) ? 11 : 0)
        return cblas_xerbla(R::name, place);
    call_sided<R>(row, side, uplo, transa, diag, m, n, alpha, ap, b, ldb);
}

} // namespace xkl::cblas
