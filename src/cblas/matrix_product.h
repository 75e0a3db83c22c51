// Products of two matrices. (A*B)' = B'*A': by rows, the operands change places with their letters and
// sizes.
#pragma once

#include "cblas/conjugate.h"

namespace xkl::cblas {

/// Options and sizes of C := op(A)*op(B), which the strided batches test in the same way.
[[gnu::always_inline]] inline int bad_product(int layout, int transa, int transb, int64_t m, int64_t n,
                                              int64_t k)
{
    return !is_trans(transa)    ? 2
           : !is_trans(transb)  ? 3
           : m < 0              ? 4
           : n < 0              ? 5
           : k < 0              ? 6
           : !is_layout(layout) ? 1
                                : 0;
}

[[gnu::noinline, gnu::cold]] inline int bad_gemm(int layout, int transa, int transb, int64_t m, int64_t n,
                                                 int64_t k, int64_t lda, int64_t ldb, int64_t ldc)
{
    if (const int bad = bad_product(layout, transa, transb, m, n, k))
        return bad;
    const bool row = layout == CblasRowMajor;
    return below(lda, least_ld(row, transa, m, k))   ? 9
           : below(ldb, least_ld(row, transb, k, n)) ? 11
           : below(ldc, line_length(row, m, n))      ? 14
                                                     : 0;
}

/// The tests of bad_gemm, for a good layout, in the order that costs least: which argument is bad is found
/// afterwards.
[[gnu::always_inline]] inline bool is_good_gemm(bool row, int transa, int transb, int64_t m, int64_t n,
                                                int64_t k, int64_t lda, int64_t ldb, int64_t ldc)
{
    return is_trans(transa) && is_trans(transb) && (m | n | k) >= 0 &&
           !below(lda, least_ld(row, transa, m, k)) && !below(ldb, least_ld(row, transb, k, n)) &&
           !below(ldc, line_length(row, m, n));
}

/// Arguments whose address the frame takes come by reference, which spares the quiet path a copy of each.
template <class R, class S, class A, class C>
[[gnu::always_inline]] inline void gemm(int layout, int transa, int transb, const int64_t &m,
                                        const int64_t &n, const int64_t &k, const S &alpha, const A *a,
                                        const int64_t &lda, const A *b, const int64_t &ldb, const S &beta,
                                        C *c, const int64_t &ldc)
{
    if (layout == CblasRowMajor) {
        if (is_good_gemm(true, transa, transb, m, n, k, lda, ldb, ldc)) [[likely]]
            return call_frame<R>(trans_letter(transb), trans_letter(transa), n, m, k, alpha, b, ldb, a, lda,
                                 beta, c, ldc);
    } else if (layout == CblasColMajor) {
        if (is_good_gemm(false, transa, transb, m, n, k, lda, ldb, ldc)) [[likely]]
            return call_frame<R>(trans_letter(transa), trans_letter(transb), m, n, k, alpha, a, lda, b, ldb,
                                 beta, c, ldc);
    }
    cblas_xerbla(R::name, bad_gemm(layout, transa, transb, m, n, k, lda, ldb, ldc));
}

/// The product of two complex matrices with elements E, and the element of the real operand beside them.
template <class E>
struct complex_gemm_row {
    static constexpr auto &frame = xkl_blas__cgemm;
};
template <>
struct complex_gemm_row<XKL_Complex16> {
    static constexpr auto &frame = xkl_blas__zgemm;
};

/// Copies a matrix of `lines` contiguous lines of `length` reals as a complex one without gaps.
template <class E, class A>
void copy_as_complex(E *copy, const A *a, int64_t lda, int64_t lines, int64_t length)
{
    for (int64_t j = 0; j < lines; ++j)
        for (int64_t i = 0; i < length; ++i)
            copy[j * length + i] = {a[j * lda + i], 0};
}

/// A is real. By rows the operands change places, but the frame takes the real one first only. So A is
/// copied as a complex matrix, and the product is one of two complex matrices.
template <class R, class A>
void mixed_gemm(int layout, int transa, int transb, int64_t m, int64_t n, int64_t k, const void *alpha,
                const A *a, int64_t lda, const void *b, int64_t ldb, const void *beta, void *c, int64_t ldc)
{
    using element = typename R::element;
    if (const int bad = bad_gemm(layout, transa, transb, m, n, k, lda, ldb, ldc))
        return cblas_xerbla(R::name, bad);
    if (layout == CblasColMajor)
        return call_frame<R>(trans_letter(transa), trans_letter(transb), m, n, k, alpha, a, lda, b, ldb,
                             beta, c, ldc);
    const auto call = [&](const element *copy, int64_t ld) {
        call_frame<complex_gemm_row<element>>(trans_letter(transb), trans_letter(transa), n, m, k, alpha, b,
                                              ldb, copy, ld, beta, c, ldc);
    };
    const int64_t length = least_ld(true, transa, m, k);
    const int64_t lines = transa == CblasNoTrans ? m : k;
    if (length == 0 || lines == 0 || n == 0 || equals<R>(alpha, 0)) // A is not read
        return call(nullptr, length > 0 ? length : 1);
    const copy_buffer<element> copy(lines, length);
    if (!copy)
        return cblas_xerbla_malloc_error(R::name);
    copy_as_complex(copy.data(), a, lda, lines, length);
    call(copy.data(), length);
}

/// One triangle of the product.
template <class R, class S, class A, class C>
void gemmt(int layout, int uplo, int transa, int transb, int64_t n, int64_t k, S alpha, const A *a,
           int64_t lda, const A *b, int64_t ldb, S beta, C *c, int64_t ldc)
{
    const bool row = layout == CblasRowMajor;
    if (const int bad = !is_uplo(uplo)                            ? 2
                        : !is_trans(transa)                       ? 3
                        : !is_trans(transb)                       ? 4
                        : n < 0                                   ? 5
                        : k < 0                                   ? 6
                        : !is_layout(layout)                      ? 1
                        : below(lda, least_ld(row, transa, n, k)) ? 9
                        : below(ldb, least_ld(row, transb, k, n)) ? 11
                        : below(ldc, n)                           ? 14
                                                                  : 0)
        return cblas_xerbla(R::name, bad);
    if (row)
        call_frame<R>(uplo_letter(uplo, row), trans_letter(transb), trans_letter(transa), n, k, alpha, b,
                      ldb, a, lda, beta, c, ldc);
    else
        call_frame<R>(uplo_letter(uplo, row), trans_letter(transa), trans_letter(transb), n, k, alpha, a,
                      lda, b, ldb, beta, c, ldc);
}

/// SYMM, HEMM: by rows the special matrix stands on the other side and shows its other triangle.
template <class R, class S, class A, class C>
void symm(int layout, int side, int uplo, int64_t m, int64_t n, S alpha, const A *a, int64_t lda,
          const A *b, int64_t ldb, S beta, C *c, int64_t ldc)
{
    const bool row = layout == CblasRowMajor;
    if (const int bad = !is_side(side)                       ? 2
                        : !is_uplo(uplo)                     ? 3
                        : m < 0                              ? 4
                        : n < 0                              ? 5
                        : !is_layout(layout)                 ? 1
                        : below(lda, side_order(side, m, n)) ? 8
                        : below(ldb, line_length(row, m, n)) ? 10
                        : below(ldc, line_length(row, m, n)) ? 13
                                                             : 0)
        return cblas_xerbla(R::name, bad);
    call_frame<R>(side_letter(side, row), uplo_letter(uplo, row), line_length(row, m, n),
                  line_count(row, m, n), alpha, a, lda, b, ldb, beta, c, ldc);
}

} // namespace xkl::cblas
