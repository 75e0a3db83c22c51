// Matrix-vector products: y := alpha*op(A)*x + beta*y for every kind of A.
#pragma once

#include "cblas/conjugate.h"

namespace xkl::cblas {

/// y stays as it is: no call is made and no trace line left.
template <class R, class S>
bool changes_nothing(S alpha, S beta)
{
    return equals<R>(alpha, 0) && equals<R>(beta, 1);
}

/// Calls with (alpha, x, incx, beta), or with the conjugates of all four while y is conjugated. Without
/// alpha there is no product to conjugate, and x may be anything.
template <class R, class S, class X, class Y, class Call>
void multiply(bool conjugate, S alpha, vector<X> x, S beta, vector<Y> y, Call call)
{
    if constexpr (std::is_pointer_v<S>)
        if (conjugate && !equals<R>(alpha, 0))
            return with_conjugated<R>(x, [&](const auto *copy, int64_t inc) {
                const conjugated_result<R, Y> result(y);
                call(conjugated<R>(alpha), copy, inc, conjugated<R>(beta));
            });
    call(alpha, x.data, x.inc, beta);
}

/// A bad trans is reported, and then the call goes on with a letter that the frame refuses in its turn.
template <class R, class S, class A, class X, class Y>
void gemv(int layout, int trans, int64_t m, int64_t n, S alpha, const A *a, int64_t lda, const X *x,
          int64_t incx, S beta, Y *y, int64_t incy)
{
    if (!is_layout(layout))
        return cblas_xerbla(R::name, 1);
    const bool row = layout == CblasRowMajor;
    const char *letter = " ";
    if (is_trans(trans)) [[likely]]
        letter = trans_letter(transposed_once, trans, row);
    else
        cblas_xerbla(R::name, 2);
    if (const int bad = m < 0                                ? 3
                        : n < 0                              ? 4
                        : below(lda, line_length(row, m, n)) ? 7
                        : incx == 0                          ? 9
                        : incy == 0                          ? 12
                                                             : 0)
        return cblas_xerbla(R::name, bad);
    if (m == 0 || n == 0 || changes_nothing<R>(alpha, beta))
        return;
    // A real matrix of a mixed product has no conjugate.
    const bool conjugate = std::is_void_v<A> && row && trans == CblasConjTrans;
    multiply<R>(conjugate, alpha, vector{x, m, incx}, beta, vector{y, n, incy},
                [&](const auto &alpha, const auto *x, int64_t incx, const auto &beta) {
                    call_frame<R>(letter, line_length(row, m, n), line_count(row, m, n), alpha, a, lda, x,
                                  incx, beta, y, incy);
                });
}

template <class R, class S, class A, class Y>
void gbmv(int layout, int trans, int64_t m, int64_t n, int64_t kl, int64_t ku, S alpha, const A *a,
          int64_t lda, const A *x, int64_t incx, S beta, Y *y, int64_t incy)
{
    if (const int bad = !is_layout(layout)         ? 1
                        : !is_trans(trans)         ? 2
                        : m < 0                    ? 3
                        : n < 0                    ? 4
                        : kl < 0                   ? 5
                        : ku < 0                   ? 6
                        : !holds_band(lda, kl, ku) ? 9
                        : incx == 0                ? 11
                        : incy == 0                ? 14
                                                   : 0)
        return cblas_xerbla(R::name, bad);
    if (m == 0 || n == 0 || changes_nothing<R>(alpha, beta))
        return;
    const bool row = layout == CblasRowMajor;
    const char *letter = trans_letter(transposed_once, trans, row);
    multiply<R>(row && trans == CblasConjTrans, alpha, vector{x, m, incx}, beta, vector{y, n, incy},
                [&](const auto &alpha, const auto *x, int64_t incx, const auto &beta) {
                    call_frame<R>(letter, line_length(row, m, n), line_count(row, m, n), row ? ku : kl,
                                  row ? kl : ku, alpha, a, lda, x, incx, beta, y, incy);
                });
}

/// SYMV, and HEMV for complex matrices: the memory of a row-major Hermitian matrix holds conj(A).
template <class R, class S, class A, class Y>
void symv(int layout, int uplo, int64_t n, S alpha, const A *a, int64_t lda, const A *x, int64_t incx,
          S beta, Y *y, int64_t incy)
{
    if (const int bad = !is_layout(layout) ? 1
                        : !is_uplo(uplo)   ? 2
                        : n < 0            ? 3
                        : below(lda, n)    ? 6
                        : incx == 0        ? 8
                        : incy == 0        ? 11
                                           : 0)
        return cblas_xerbla(R::name, bad);
    if (n == 0 || changes_nothing<R>(alpha, beta))
        return;
    const bool row = layout == CblasRowMajor;
    multiply<R>(row, alpha, vector{x, n, incx}, beta, vector{y, n, incy},
                [&](const auto &alpha, const auto *x, int64_t incx, const auto &beta) {
                    call_frame<R>(uplo_letter(uplo, row), n, alpha, a, lda, x, incx, beta, y, incy);
                });
}

/// SBMV, HBMV.
template <class R, class S, class A, class Y>
void sbmv(int layout, int uplo, int64_t n, int64_t k, S alpha, const A *a, int64_t lda, const A *x,
          int64_t incx, S beta, Y *y, int64_t incy)
{
    if (const int bad = !is_layout(layout)       ? 1
                        : !is_uplo(uplo)         ? 2
                        : n < 0                  ? 3
                        : k < 0                  ? 4
                        : !holds_band(lda, k, 0) ? 7
                        : incx == 0              ? 9
                        : incy == 0              ? 12
                                                 : 0)
        return cblas_xerbla(R::name, bad);
    if (n == 0 || changes_nothing<R>(alpha, beta))
        return;
    const bool row = layout == CblasRowMajor;
    multiply<R>(row, alpha, vector{x, n, incx}, beta, vector{y, n, incy},
                [&](const auto &alpha, const auto *x, int64_t incx, const auto &beta) {
                    call_frame<R>(uplo_letter(uplo, row), n, k, alpha, a, lda, x, incx, beta, y, incy);
                });
}

/// SPMV, HPMV.
template <class R, class S, class A, class Y>
void spmv(int layout, int uplo, int64_t n, S alpha, const A *ap, const A *x, int64_t incx, S beta, Y *y,
          int64_t incy)
{
    if (const int bad = !is_layout(layout) ? 1
                        : !is_uplo(uplo)   ? 2
                        : n < 0            ? 3
                        : incx == 0        ? 7
                        : incy == 0        ? 10
                                           : 0)
        return cblas_xerbla(R::name, bad);
    if (n == 0 || changes_nothing<R>(alpha, beta))
        return;
    const bool row = layout == CblasRowMajor;
    multiply<R>(row, alpha, vector{x, n, incx}, beta, vector{y, n, incy},
                [&](const auto &alpha, const auto *x, int64_t incx, const auto &beta) {
                    call_frame<R>(uplo_letter(uplo, row), n, alpha, ap, x, incx, beta, y, incy);
                });
}

/// Two products with one matrix: y1 with A, y2 with its (conjugate) transpose. By rows, the transpose is in
/// memory, so the pairs change places.
template <class R, class S, class A, class Y>
void gem2v(int layout, int64_t m, int64_t n, S alpha, const A *a, int64_t lda, const A *x1, int64_t incx1,
           const A *x2, int64_t incx2, S beta, Y *y1, int64_t incy1, Y *y2, int64_t incy2)
{
    const bool row = layout == CblasRowMajor;
    if (const int bad = !is_layout(layout)                   ? 1
                        : m < 0                              ? 2
                        : n < 0                              ? 3
                        : below(lda, line_length(row, m, n)) ? 6
                        : incx1 == 0                         ? 8
                        : incx2 == 0                         ? 10
                        : incy1 == 0                         ? 13
                        : incy2 == 0                         ? 15
                                                             : 0)
        return cblas_xerbla(R::name, bad);
    if (m == 0 || n == 0 || changes_nothing<R>(alpha, beta))
        return;
    if (!row)
        return call_frame<R>(m, n, alpha, a, lda, x1, incx1, x2, incx2, beta, y1, incy1, y2, incy2);
    const auto transposed = [&](const auto &alpha, const auto *x1, int64_t incx1, const auto *x2,
                                int64_t incx2, const auto &beta) {
        call_frame<R>(n, m, alpha, a, lda, x2, incx2, x1, incx1, beta, y2, incy2, y1, incy1);
    };
    if constexpr (is_complex<typename R::element>)
        if (!equals<R>(alpha, 0))
            return with_conjugated<R>(vector{x1, n, incx1}, [&](const auto *copy1, int64_t inc1) {
                with_conjugated<R>(vector{x2, m, incx2}, [&](const auto *copy2, int64_t inc2) {
                    const conjugated_result<R, Y> first(vector{y1, m, incy1});
                    const conjugated_result<R, Y> second(vector{y2, n, incy2});
                    transposed(conjugated<R>(alpha), copy1, inc1, copy2, inc2, conjugated<R>(beta));
                });
            });
    transposed(alpha, x1, incx1, x2, incx2, beta);
}

} // namespace xkl::cblas
