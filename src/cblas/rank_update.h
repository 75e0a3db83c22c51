// Rank-one and rank-two updates. The leading dimension is tested before the increments.
#pragma once

#include "cblas/conjugate.h"

namespace xkl::cblas {

[[gnu::always_inline]] inline int bad_ger(int layout, int64_t m, int64_t n, int64_t incx, int64_t incy,
                                          int64_t lda)
{
    return !is_layout(layout)                                       ? 1
           : m < 0                                                  ? 2
           : n < 0                                                  ? 3
           : below(lda, line_length(layout == CblasRowMajor, m, n)) ? 10
           : incx == 0                                              ? 6
           : incy == 0                                              ? 8
                                                                    : 0;
}

/// GER and GERU: the transpose of x*y' is y*x'.
template <class R, class S, class X, class A>
void ger(int layout, int64_t m, int64_t n, S alpha, const X *x, int64_t incx, const X *y, int64_t incy,
         A *a, int64_t lda)
{
    if (const int bad = bad_ger(layout, m, n, incx, incy, lda))
        return cblas_xerbla(R::name, bad);
    if (layout == CblasRowMajor)
        call_frame<R>(n, m, alpha, y, incy, x, incx, a, lda);
    else
        call_frame<R>(m, n, alpha, x, incx, y, incy, a, lda);
}

/// The update without conjugation, for elements of type E.
template <class E>
struct geru_row {
    static constexpr auto &frame = xkl_blas__cgeru;
};
template <>
struct geru_row<XKL_Complex16> {
    static constexpr auto &frame = xkl_blas__zgeru;
};

/// The transpose of x*conj(y)' is conj(y)*x', which GERC does not compute: it would conjugate x. GERU does.
template <class R>
void gerc(int layout, int64_t m, int64_t n, const void *alpha, const void *x, int64_t incx, const void *y,
          int64_t incy, void *a, int64_t lda)
{
    if (const int bad = bad_ger(layout, m, n, incx, incy, lda))
        return cblas_xerbla(R::name, bad);
    if (layout == CblasColMajor)
        return call_frame<R>(m, n, alpha, x, incx, y, incy, a, lda);
    with_conjugated<R>(vector{y, n, incy}, [&](const auto *y, int64_t incy) {
        call_frame<geru_row<typename R::element>>(n, m, alpha, y, incy, x, incx, a, lda);
    });
}

/// The symmetric updates need no other vectors by rows; the Hermitian ones, whose memory holds conj(A),
/// need conj(x). `matrix` is (a, lda) or (ap).
template <class R, class S, class X, class... Matrix>
void update(bool row, int uplo, int64_t n, S alpha, vector<X> x, Matrix... matrix)
{
    const auto call = [&](const auto *x, int64_t incx) {
        call_frame<R>(uplo_letter(uplo, row), n, alpha, x, incx, matrix...);
    };
    if constexpr (is_complex<typename R::element>)
        if (row)
            return with_conjugated<R>(x, call);
    call(x.data, x.inc);
}

/// The transpose of alpha*x*y^H is alpha*conj(y)*x^T: the update with conj(y) in the place of x and conj(x)
/// in the place of y, alpha as it is.
template <class R, class S, class X, class... Matrix>
void update_2(bool row, int uplo, int64_t n, S alpha, vector<X> x, vector<X> y, Matrix... matrix)
{
    const auto call = [&](const auto *x, int64_t incx, const auto *y, int64_t incy) {
        call_frame<R>(uplo_letter(uplo, row), n, alpha, x, incx, y, incy, matrix...);
    };
    if constexpr (is_complex<typename R::element>)
        if (row)
            return with_conjugated<R>(y, [&](const auto *y, int64_t incy) {
                with_conjugated<R>(x, [&](const auto *x, int64_t incx) { call(y, incy, x, incx); });
            });
    call(x.data, x.inc, y.data, y.inc);
}

/// SYR, HER.
template <class R, class S, class X, class A>
void syr(int layout, int uplo, int64_t n, S alpha, const X *x, int64_t incx, A *a, int64_t lda)
{
    if (const int bad = !is_layout(layout) ? 1
                        : !is_uplo(uplo)   ? 2
                        : n < 0            ? 3
                        : below(lda, n)    ? 8
                        : incx == 0        ? 6
                                           : 0)
        return cblas_xerbla(R::name, bad);
    update<R>(layout == CblasRowMajor, uplo, n, alpha, vector{x, n, incx}, a, lda);
}

/// SPR, HPR.
template <class R, class S, class X, class A>
void spr(int layout, int uplo, int64_t n, S alpha, const X *x, int64_t incx, A *ap)
{
    if (const int bad = !is_layout(layout) ? 1 : !is_uplo(uplo) ? 2 : n < 0 ? 3 : incx == 0 ? 6 : 0)
        return cblas_xerbla(R::name, bad);
    update<R>(layout == CblasRowMajor, uplo, n, alpha, vector{x, n, incx}, ap);
}

/// SYR2, HER2.
template <class R, class S, class X, class A>
void syr2(int layout, int uplo, int64_t n, S alpha, const X *x, int64_t incx, const X *y, int64_t incy,
          A *a, int64_t lda)
{
    if (const int bad = !is_layout(layout) ? 1
                        : !is_uplo(uplo)   ? 2
                        : n < 0            ? 3
                        : below(lda, n)    ? 10
                        : incx == 0        ? 6
                        : incy == 0        ? 8
                                           : 0)
        return cblas_xerbla(R::name, bad);
    update_2<R>(layout == CblasRowMajor, uplo, n, alpha, vector{x, n, incx}, vector{y, n, incy}, a, lda);
}

/// SPR2, HPR2.
template <class R, class S, class X, class A>
void spr2(int layout, int uplo, int64_t n, S alpha, const X *x, int64_t incx, const X *y, int64_t incy,
          A *ap)
{
    if (const int bad = !is_layout(layout) ? 1
                        : !is_uplo(uplo)   ? 2
                        : n < 0            ? 3
                        : incx == 0        ? 6
                        : incy == 0        ? 8
                                           : 0)
        return cblas_xerbla(R::name, bad);
    update_2<R>(layout == CblasRowMajor, uplo, n, alpha, vector{x, n, incx}, vector{y, n, incy}, ap);
}

} // namespace xkl::cblas
