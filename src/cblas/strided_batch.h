// Strided batches: the single routine's tests, each stride behind the operand that it belongs to and
// batch_size last. Strides are tested here as well as in the frame, because by rows the frame sees the
// operands in another order and would report another place.
#pragma once

#include "cblas/matrix_product.h"
#include "cblas/matrix_vector.h"
#include "cblas/symmetric_update.h"
#include "cblas/triangular_matrix.h"

namespace xkl::cblas {

template <class R, class S, class A, class C>
void gemm_batch_strided(int layout, int transa, int transb, int64_t m, int64_t n, int64_t k, S alpha,
                        const A *a, int64_t lda, int64_t stridea, const A *b, int64_t ldb, int64_t strideb,
                        S beta, C *c, int64_t ldc, int64_t stridec, int64_t batch_size)
{
    const bool row = layout == CblasRowMajor;
    const int bad = bad_product(layout, transa, transb, m, n, k);
    if (const int place = bad                                                   ? bad
                          : below(lda, least_ld(row, transa, m, k))             ? 9
                          : stridea < 0                                         ? 10
                          : below(ldb, least_ld(row, transb, k, n))             ? 12
                          : strideb < 0                                         ? 13
                          : below(ldc, line_length(row, m, n))                  ? 16
                          : !passes_matrix(stridec, ldc, line_count(row, m, n)) ? 17
                          : batch_size < 0                                      ? 18
                                                                                : 0)
        return cblas_xerbla(R::name, place);
    if (row)
        call_frame<R>(trans_letter(transb), trans_letter(transa), n, m, k, alpha, b, ldb, strideb, a, lda,
                      stridea, beta, c, ldc, stridec, batch_size);
    else
        call_frame<R>(trans_letter(transa), trans_letter(transb), m, n, k, alpha, a, lda, stridea, b, ldb,
                      strideb, beta, c, ldc, stridec, batch_size);
}

/// Calls with conjugates of x and y for a product with conj(A), as with_conjugated does for one vector. One
/// x for the whole batch is copied once.
template <class R, class X, class Y, class Call>
void with_conjugated_batch(const vector<X> &x, int64_t stridex, const vector<Y> &y, int64_t stridey,
                           int64_t batch_size, Call call)
{
    using element = typename R::element;
    const int64_t copies = stridex == 0 ? 1 : batch_size;
    const copy_buffer<element> copy(copies, x.length);
    if (!copy)
        return cblas_xerbla_malloc_error(R::name);
    for (int64_t i = 0; i < copies; ++i)
        copy_conjugated(copy.data() + i * x.length, static_cast<const element *>(x.data) + i * stridex,
                        x.length, x.inc);
    const auto conjugate_results = [&] {
        for (int64_t i = 0; i < batch_size; ++i)
            conjugate(static_cast<element *>(y.data) + i * stridey, y.length, y.inc);
    };
    conjugate_results();
    call(static_cast<const element *>(copy.data()), stridex == 0 ? 0 : x.length);
    conjugate_results();
}

template <class R, class S, class A, class Y>
void gemv_batch_strided(int layout, int trans, int64_t m, int64_t n, S alpha, const A *a, int64_t lda,
                        int64_t stridea, const A *x, int64_t incx, int64_t stridex, S beta, Y *y,
                        int64_t incy, int64_t stridey, int64_t batch_size)
{
    const bool row = layout == CblasRowMajor;
    if (const int bad = !is_layout(layout)                                             ? 1
                        : !is_trans(trans)                                             ? 2
                        : m < 0                                                        ? 3
                        : n < 0                                                        ? 4
                        : below(lda, line_length(row, m, n))                           ? 7
                        : stridea < 0                                                  ? 8
                        : incx == 0                                                    ? 10
                        : stridex < 0                                                  ? 11
                        : incy == 0                                                    ? 14
                        : !passes_vector(stridey, trans == CblasNoTrans ? m : n, incy) ? 15
                        : batch_size < 0                                               ? 16
                                                                                       : 0)
        return cblas_xerbla(R::name, bad);
    if (m == 0 || n == 0 || changes_nothing<R>(alpha, beta))
        return;
    const auto call = [&](const auto &alpha, const auto *x, int64_t incx, int64_t stridex,
                          const auto &beta) {
        call_frame<R>(trans_letter(transposed_once, trans, row), line_length(row, m, n),
                      line_count(row, m, n), alpha, a, lda, stridea, x, incx, stridex, beta, y, incy,
                      stridey, batch_size);
    };
    if constexpr (is_complex<typename R::element>)
        if (row && trans == CblasConjTrans && batch_size > 0 && !equals<R>(alpha, 0))
            return with_conjugated_batch<R>(vector{x, m, incx}, stridex, vector{y, n, incy}, stridey,
                                            batch_size, [&](const auto *copies, int64_t stride) {
                                                call(conjugated<R>(alpha), copies, int64_t{1}, stride,
                                                     conjugated<R>(beta));
                                            });
    call(alpha, x, incx, stridex, beta);
}

template <class R, class S, class A, class B>
void trsm_batch_strided(int layout, int side, int uplo, int transa, int diag, int64_t m, int64_t n, S alpha,
                        const A *a, int64_t lda, int64_t stridea, B *b, int64_t ldb, int64_t strideb,
                        int64_t batch_size)
{
    const bool row = layout == CblasRowMajor;
    const int bad = bad_sided_triangle(layout, side, uplo, transa, diag, m, n);
    if (const int place = bad                                                   ? bad
                          : below(lda, side_order(side, m, n))                  ? 10
                          : stridea < 0                                         ? 11
                          : below(ldb, line_length(row, m, n))                  ? 13
                          : !passes_matrix(strideb, ldb, line_count(row, m, n)) ? 14
                          : batch_size < 0                                      ? 15
                                                                                : 0)
        return cblas_xerbla(R::name, place);
    call_sided<R>(row, side, uplo, transa, diag, m, n, alpha, a, lda, stridea, b, ldb, strideb, batch_size);
}

template <class R, class S, class A, class C>
void syrk_batch_strided(int layout, int uplo, int trans, int64_t n, int64_t k, S alpha, const A *a,
                        int64_t lda, int64_t stridea, S beta, C *c, int64_t ldc, int64_t stridec,
                        int64_t batch_size)
{
    const bool row = layout == CblasRowMajor;
    const int bad = bad_update(layout, uplo, trans, n, k);
    if (const int place = bad                                      ? bad
                          : below(lda, least_ld(row, trans, n, k)) ? 8
                          : stridea < 0                            ? 9
                          : below(ldc, n)                          ? 12
                          : !passes_matrix(stridec, ldc, n)        ? 13
                          : batch_size < 0                         ? 14
                                                                   : 0)
        return cblas_xerbla(R::name, place);
    call_frame<R>(uplo_letter(uplo, row), trans_letter(symmetric_letters<R>, trans, row), n, k, alpha, a,
                  lda, stridea, beta, c, ldc, stridec, batch_size);
}

/// Diagonal matrix times matrix: no single routine to follow but SYMM, whose special matrix stands on a
/// side too.
template <class R, class A, class C>
void dgmm_batch_strided(int layout, int side, int64_t m, int64_t n, const A *a, int64_t lda,
                        int64_t stridea, const A *x, int64_t incx, int64_t stridex, C *c, int64_t ldc,
                        int64_t stridec, int64_t batch_size)
{
    const bool row = layout == CblasRowMajor;
    if (const int bad = !is_side(side)                                        ? 2
                        : m < 0                                               ? 3
                        : n < 0                                               ? 4
                        : !is_layout(layout)                                  ? 1
                        : below(lda, line_length(row, m, n))                  ? 6
                        : stridea < 0                                         ? 7
                        : incx == 0                                           ? 9
                        : stridex < 0                                         ? 10
                        : below(ldc, line_length(row, m, n))                  ? 12
                        : !passes_matrix(stridec, ldc, line_count(row, m, n)) ? 13
                        : batch_size < 0                                      ? 14
                                                                              : 0)
        return cblas_xerbla(R::name, bad);
    call_frame<R>(side_letter(side, row), line_length(row, m, n), line_count(row, m, n), a, lda, stridea, x,
                  incx, stridex, c, ldc, stridec, batch_size);
}

/// The vector batches have no layout. Lengths and increments are not tested, as in the frame.
template <class R, class S, class X, class Y>
void axpy_batch_strided(int64_t n, S alpha, const X *x, int64_t incx, int64_t stridex, Y *y, int64_t incy,
                        int64_t stridey, int64_t batch_size)
{
    if (const int bad = stridex < 0 ? 5 : !passes_vector(stridey, n, incy) ? 8 : batch_size < 0 ? 9 : 0)
        return cblas_xerbla(R::name, bad);
    call_frame<R>(n, alpha, x, incx, stridex, y, incy, stridey, batch_size);
}

template <class R, class X, class Y>
void copy_batch_strided(int64_t n, const X *x, int64_t incx, int64_t stridex, Y *y, int64_t incy,
                        int64_t stridey, int64_t batch_size)
{
    if (const int bad = stridex < 0 ? 4 : !passes_vector(stridey, n, incy) ? 7 : batch_size < 0 ? 8 : 0)
        return cblas_xerbla(R::name, bad);
    call_frame<R>(n, x, incx, stridex, y, incy, stridey, batch_size);
}

} // namespace xkl::cblas
