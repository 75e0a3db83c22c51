// NaN checks of matrices: dense, banded and packed. Each says which lines it walks.
#pragma once

#include "lapacke/nancheck_vector.h"

namespace xkl::lapacke {

template <class T>
int64_t ge_nancheck(int layout, int64_t m, int64_t n, const T *a, int64_t lda)
{
    if (!is_layout(layout))
        return 0;
    const line_parts parts = dense_lines(layout, m, n, {}, lda);
    const bool one_run = parts.high == lda; // no gap between the lines
    return one_run ? parts.count > 0 && holds_nan(a, parts.count * lda) : holds_nan(a, {lda}, parts);
}

/// Upper Hessenberg: the upper triangle and one diagonal more
template <class T>
int64_t hs_nancheck(int layout, int64_t n, const T *a, int64_t lda)
{
    return is_layout(layout) && holds_nan(a, {lda}, dense_lines(layout, n, n, {.below = 1}, lda));
}

template <class T>
int64_t tr_nancheck(int layout, char uplo, char diag, int64_t n, const T *a, int64_t lda)
{
    return is_layout(layout) && is_uplo(uplo) && is_diag(diag) &&
           holds_nan(a, {lda}, dense_lines(layout, n, n, triangle(uplo, diag), lda));
}

/// Symmetric, Hermitian, positive definite
template <class T>
int64_t sy_nancheck(int layout, char uplo, int64_t n, const T *a, int64_t lda)
{
    return tr_nancheck(layout, uplo, 'N', n, a, lda);
}

template <class T>
int64_t tz_nancheck(int layout, char direct, char uplo, char diag, int64_t m, int64_t n, const T *a,
                    int64_t lda)
{
    if (!is_layout(layout) || !is_direct(direct) || !is_uplo(uplo) || !is_diag(diag))
        return 0;
    const int64_t shift = is(direct, 'F') ? 0 : m - n;
    return holds_nan(a, {lda}, dense_lines(layout, m, n, triangle(uplo, diag, shift), lda));
}

template <class T>
int64_t band_nancheck(int layout, int64_t m, int64_t n, band_rows band, const T *ab, int64_t ldab)
{
    if (!ab || !is_layout(layout))
        return 0;
    if (layout == CblasRowMajor) {
        band = met_rows(band, m, n);
        ab += band.first_row * ldab;
    }
    return holds_nan(ab, {ldab}, band_lines(layout, m, n, band, ldab));
}

template <class T>
int64_t gb_nancheck(int layout, int64_t m, int64_t n, int64_t kl, int64_t ku, const T *ab, int64_t ldab)
{
    return band_nancheck(layout, m, n, general_band(kl, ku), ab, ldab);
}

template <class T>
int64_t tb_nancheck(int layout, char uplo, char diag, int64_t n, int64_t kd, const T *ab, int64_t ldab)
{
    return is_uplo(uplo) && is_diag(diag) &&
           band_nancheck(layout, n, n, triangular_band(uplo, diag, kd), ab, ldab);
}

/// Symmetric, Hermitian, positive definite bands
template <class T>
int64_t sb_nancheck(int layout, char uplo, int64_t n, int64_t kd, const T *ab, int64_t ldab)
{
    return tb_nancheck(layout, uplo, 'N', n, kd, ab, ldab);
}

template <class T>
int64_t tp_nancheck(int layout, char uplo, char diag, int64_t n, const T *ap)
{
    if (!is_layout(layout) || !is_uplo(uplo) || !is_diag(diag))
        return 0;
    if (is(diag, 'N'))
        return sp_nancheck(n, ap);
    return holds_nan(ap, packed_starts(layout, uplo, n), dense_lines(layout, n, n, triangle(uplo, 'U'), n));
}

/// Without its diagonal, the rectangle is what lies above the two triangles' diagonals and what lies below.
template <class T>
int64_t tf_nancheck(int layout, char transr, char uplo, char diag, int64_t n, const T *a)
{
    if (!is_layout(layout) || !is_transr(transr) || !is_uplo(uplo) || !is_diag(diag))
        return 0;
    if (is(diag, 'N'))
        return sp_nancheck(n, a);
    const packed_rectangle r = rectangle_of(layout, transr, uplo, n);
    const auto has_nan = [&](diagonals part) {
        return holds_nan(a, {r.leading()}, dense_lines(r.layout, r.rows, r.columns, part, r.leading()));
    };
    return has_nan({.below = r.diagonal - 1}) || has_nan({.above = -r.diagonal - 2});
}

} // namespace xkl::lapacke
