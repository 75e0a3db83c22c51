// Triangular matrix times vector, and triangular systems with one right-hand side.
#pragma once

#include "cblas/conjugate.h"

namespace xkl::cblas {

[[gnu::always_inline]] inline int bad_triangle(int layout, int uplo, int trans, int diag, int64_t n)
{
    return !is_layout(layout) ? 1
           : !is_uplo(uplo)   ? 2
           : !is_trans(trans) ? 3
           : !is_diag(diag)   ? 4
           : n < 0            ? 5
                              : 0;
}

/// `matrix` is what the frame takes between n and x. x is written anyway, so where conj(A) is left over it
/// is conjugated in place before and after.
template <class R, class X, class... Matrix>
void triangular(int layout, int uplo, int trans, int diag, int64_t n, vector<X> x, Matrix... matrix)
{
    const bool row = layout == CblasRowMajor;
    const auto call = [&] {
        call_frame<R>(uplo_letter(uplo, row), trans_letter(transposed_once, trans, row), diag_letter(diag),
                      n, matrix..., x.data, x.inc);
    };
    if constexpr (is_complex<typename R::element>)
        if (row && trans == CblasConjTrans) {
            const conjugated_result<R, X> result(x);
            return call();
        }
    call();
}

/// TRMV, TRSV.
template <class R, class A, class X>
void trmv(int layout, int uplo, int trans, int diag, int64_t n, const A *a, int64_t lda, X *x, int64_t incx)
{
    const int bad = bad_triangle(layout, uplo, trans, diag, n);
    if (const int place = bad ? bad : below(lda, n) ? 7 : incx == 0 ? 9 : 0)
        return cblas_xerbla(R::name, place);
    triangular<R>(layout, uplo, trans, diag, n, vector{x, n, incx}, a, lda);
}

/// TBMV, TBSV.
template <class R, class A, class X>
void tbmv(int layout, int uplo, int trans, int diag, int64_t n, int64_t k, const A *a, int64_t lda, X *x,
          int64_t incx)
{
    const int bad = bad_triangle(layout, uplo, trans, diag, n);
    if (const int place = bad ? bad : k < 0 ? 6 : !holds_band(lda, k, 0) ? 8 : incx == 0 ? 10 : 0)
        return cblas_xerbla(R::name, place);
    triangular<R>(layout, uplo, trans, diag, n, vector{x, n, incx}, k, a, lda);
}

/// TPMV, TPSV.
template <class R, class A, class X>
void tpmv(int layout, int uplo, int trans, int diag, int64_t n, const A *ap, X *x, int64_t incx)
{
    const int bad = bad_triangle(layout, uplo, trans, diag, n);
    if (const int place = bad ? bad : incx == 0 ? 8 : 0)
        return cblas_xerbla(R::name, place);
    triangular<R>(layout, uplo, trans, diag, n, vector{x, n, incx}, ap);
}

} // namespace xkl::cblas
