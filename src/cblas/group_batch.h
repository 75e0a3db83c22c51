// Group batches: arrays with one entry a group, and arrays of addresses with one entry a matrix. Layout and
// group_count are tested first, then one array after the other, each over all groups before the next. What
// group_size holds is left to the frame.
#pragma once

#include "cblas/conjugate.h"
#include "cblas/groups.h"
#include "cblas/symmetric_update.h"

namespace xkl::cblas {

template <class R, class Trans, class S, class A, class C>
void gemm_batch(int layout, const Trans *transa, const Trans *transb, const int64_t *m, const int64_t *n,
                const int64_t *k, const S *alpha, const A *a, const int64_t *lda, const A *b,
                const int64_t *ldb, const S *beta, const C *c, const int64_t *ldc, int64_t group_count,
                const int64_t *group_size)
{
    const bool row = layout == CblasRowMajor;
    const auto lda_bound = [=](int64_t g) { return least_ld(row, option(transa, g), m[g], k[g]); };
    const auto ldb_bound = [=](int64_t g) { return least_ld(row, option(transb, g), k[g], n[g]); };
    const auto ldc_bound = [=](int64_t g) { return line_length(row, m[g], n[g]); };
    if (const int bad = !is_layout(layout)                            ? 1
                        : group_count < 0                             ? 15
                        : fails_option(transa, group_count, is_trans) ? 2
                        : fails_option(transb, group_count, is_trans) ? 3
                        : fails_size(m, group_count)                  ? 4
                        : fails_size(n, group_count)                  ? 5
                        : fails_size(k, group_count)                  ? 6
                        : fails_ld(lda, group_count, lda_bound)       ? 9
                        : fails_ld(ldb, group_count, ldb_bound)       ? 11
                        : fails_ld(ldc, group_count, ldc_bound)       ? 14
                                                                      : 0)
        return cblas_xerbla(R::name, bad);
    letter_buffer buffer_a, buffer_b;
    for_each_chunk(group_count, group_size, [&](int64_t g, int64_t groups, int64_t p) {
        const auto trans_of = [g](const Trans *trans) {
            return [=](int64_t i) { return trans_letter(option(trans, g + i)); };
        };
        const char *letters_a = buffer_a.fill(groups, trans_of(transa));
        const char *letters_b = buffer_b.fill(groups, trans_of(transb));
        if (row)
            call_frame<R>(letters_b, letters_a, n + g, m + g, k + g, entry<R>(alpha, g), b + p, ldb + g,
                          a + p, lda + g, entry<R>(beta, g), c + p, ldc + g, groups, group_size + g);
        else
            call_frame<R>(letters_a, letters_b, m + g, n + g, k + g, entry<R>(alpha, g), a + p, lda + g,
                          b + p, ldb + g, entry<R>(beta, g), c + p, ldc + g, groups, group_size + g);
    });
}

/// Four letters a group, as TRSM has.
template <class R, class Side, class Uplo, class Trans, class Diag, class S, class A, class B>
void trsm_batch(int layout, const Side *side, const Uplo *uplo, const Trans *transa, const Diag *diag,
                const int64_t *m, const int64_t *n, const S *alpha, const A *a, const int64_t *lda,
                const B *b, const int64_t *ldb, int64_t group_count, const int64_t *group_size)
{
    const bool row = layout == CblasRowMajor;
    const auto lda_bound = [=](int64_t g) { return side_order(option(side, g), m[g], n[g]); };
    const auto ldb_bound = [=](int64_t g) { return line_length(row, m[g], n[g]); };
    if (const int bad = !is_layout(layout)                            ? 1
                        : group_count < 0                             ? 13
                        : fails_option(side, group_count, is_side)    ? 2
                        : fails_option(uplo, group_count, is_uplo)    ? 3
                        : fails_option(transa, group_count, is_trans) ? 4
                        : fails_option(diag, group_count, is_diag)    ? 5
                        : fails_size(m, group_count)                  ? 6
                        : fails_size(n, group_count)                  ? 7
                        : fails_ld(lda, group_count, lda_bound)       ? 10
                        : fails_ld(ldb, group_count, ldb_bound)       ? 12
                                                                      : 0)
        return cblas_xerbla(R::name, bad);
    letter_buffer sides, uplos, transes, diags;
    for_each_chunk(group_count, group_size, [&](int64_t g, int64_t groups, int64_t p) {
        call_frame<R>(sides.fill(groups, [=](int64_t i) { return side_letter(option(side, g + i), row); }),
                      uplos.fill(groups, [=](int64_t i) { return uplo_letter(option(uplo, g + i), row); }),
                      transes.fill(groups, [=](int64_t i) { return trans_letter(option(transa, g + i)); }),
                      diags.fill(groups, [=](int64_t i) { return diag_letter(option(diag, g + i)); }),
                      (row ? n : m) + g, (row ? m : n) + g, entry<R>(alpha, g), a + p, lda + g, b + p,
                      ldb + g, groups, group_size + g);
    });
}

template <class R, class Uplo, class Trans, class S, class A, class C>
void syrk_batch(int layout, const Uplo *uplo, const Trans *trans, const int64_t *n, const int64_t *k,
                const S *alpha, const A *a, const int64_t *lda, const S *beta, const C *c,
                const int64_t *ldc, int64_t group_count, const int64_t *group_size)
{
    const bool row = layout == CblasRowMajor;
    const auto lda_bound = [=](int64_t g) { return least_ld(row, option(trans, g), n[g], k[g]); };
    const auto ldc_bound = [=](int64_t g) { return n[g]; };
    if (const int bad = !is_layout(layout)                           ? 1
                        : group_count < 0                            ? 12
                        : fails_option(uplo, group_count, is_uplo)   ? 2
                        : fails_option(trans, group_count, is_trans) ? 3
                        : fails_size(n, group_count)                 ? 4
                        : fails_size(k, group_count)                 ? 5
                        : fails_ld(lda, group_count, lda_bound)      ? 8
                        : fails_ld(ldc, group_count, ldc_bound)      ? 11
                                                                     : 0)
        return cblas_xerbla(R::name, bad);
    letter_buffer uplos, transes;
    for_each_chunk(group_count, group_size, [&](int64_t g, int64_t groups, int64_t p) {
        const auto trans_of = [=](int64_t i) {
            return trans_letter(symmetric_letters<R>, option(trans, g + i), row);
        };
        call_frame<R>(uplos.fill(groups, [=](int64_t i) { return uplo_letter(option(uplo, g + i), row); }),
                      transes.fill(groups, trans_of), n + g, k + g, entry<R>(alpha, g), a + p, lda + g,
                      entry<R>(beta, g), c + p, ldc + g, groups, group_size + g);
    });
}

template <class R, class Side, class A, class C>
void dgmm_batch(int layout, const Side *side, const int64_t *m, const int64_t *n, const A *a,
                const int64_t *lda, const A *x, const int64_t *incx, const C *c, const int64_t *ldc,
                int64_t group_count, const int64_t *group_size)
{
    const bool row = layout == CblasRowMajor;
    const auto ld_bound = [=](int64_t g) { return line_length(row, m[g], n[g]); };
    if (const int bad = !is_layout(layout)                         ? 1
                        : group_count < 0                          ? 11
                        : fails_option(side, group_count, is_side) ? 2
                        : fails_size(m, group_count)               ? 3
                        : fails_size(n, group_count)               ? 4
                        : fails_ld(lda, group_count, ld_bound)     ? 6
                        : fails_increment(incx, group_count)       ? 8
                        : fails_ld(ldc, group_count, ld_bound)     ? 10
                                                                   : 0)
        return cblas_xerbla(R::name, bad);
    letter_buffer sides;
    for_each_chunk(group_count, group_size, [&](int64_t g, int64_t groups, int64_t p) {
        call_frame<R>(sides.fill(groups, [=](int64_t i) { return side_letter(option(side, g + i), row); }),
                      (row ? n : m) + g, (row ? m : n) + g, a + p, lda + g, x + p, incx + g, c + p, ldc + g,
                      groups, group_size + g);
    });
}

/// The vector batches have no layout and no letters. Their arrays must be there; lengths and increments are
/// not tested, as in level 1. No frame tests group_size here, so a negative one is refused.
template <class R, class S, class X, class Y>
void axpy_batch(const int64_t *n, const S *alpha, const X *x, const int64_t *incx, const Y *y,
                const int64_t *incy, int64_t group_count, const int64_t *group_size)
{
    if (const int bad = group_count < 0                       ? 7
                        : !n                                  ? 1
                        : !incx                               ? 4
                        : !incy                               ? 6
                        : group_count == 0                    ? 0
                        : fails_size(group_size, group_count) ? 8
                                                              : 0)
        return cblas_xerbla(R::name, bad);
    for_each_chunk(group_count, group_size, [&](int64_t g, int64_t groups, int64_t p) {
        call_frame<R>(n + g, entry<R>(alpha, g), x + p, incx + g, y + p, incy + g, groups, group_size + g);
    });
}

template <class R, class X, class Y>
void copy_batch(const int64_t *n, const X *x, const int64_t *incx, const Y *y, const int64_t *incy,
                int64_t group_count, const int64_t *group_size)
{
    if (const int bad = group_count < 0                       ? 6
                        : !n                                  ? 1
                        : !incx                               ? 3
                        : !incy                               ? 5
                        : group_count == 0                    ? 0
                        : fails_size(group_size, group_count) ? 7
                                                              : 0)
        return cblas_xerbla(R::name, bad);
    for_each_chunk(group_count, group_size, [&](int64_t g, int64_t groups, int64_t p) {
        call_frame<R>(n + g, x + p, incx + g, y + p, incy + g, groups, group_size + g);
    });
}

} // namespace xkl::cblas
