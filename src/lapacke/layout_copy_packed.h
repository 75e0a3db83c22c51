// Layout copies of banded and packed matrices.
#pragma once

#include "lapacke/layout_copy_dense.h"

namespace xkl::lapacke {

template <class T>
void copy_band(int layout, int64_t m, int64_t n, band_rows band, const T *in, int64_t ldin, T *out,
               int64_t ldout)
{
    if (!in || !out || !is_layout(layout))
        return;
    if (layout == CblasRowMajor) {
        band = met_rows(band, m, n);
        band.last_row = smaller(band.last_row, ldout);
        in += band.first_row * ldin;
        out += band.first_row;
    }
    line_parts parts = band_lines(layout, m, n, band, ldin);
    if (layout == CblasColMajor)
        parts.count = smaller(parts.count, ldout);
    line_copy<T>{in, {ldin}, out, {ldout}, parts}.run();
}

template <class T>
void gb_trans(int layout, int64_t m, int64_t n, int64_t kl, int64_t ku, const T *in, int64_t ldin, T *out,
              int64_t ldout)
{
    copy_band(layout, m, n, general_band(kl, ku), in, ldin, out, ldout);
}

template <class T>
void tb_trans(int layout, char uplo, char diag, int64_t n, int64_t kd, const T *in, int64_t ldin, T *out,
              int64_t ldout)
{
    if (is_uplo(uplo) && is_diag(diag))
        copy_band(layout, n, n, triangular_band(uplo, diag, kd), in, ldin, out, ldout);
}

/// Symmetric, Hermitian, positive definite bands
template <class T>
void sb_trans(int layout, char uplo, int64_t n, int64_t kd, const T *in, int64_t ldin, T *out,
              int64_t ldout)
{
    tb_trans(layout, uplo, 'N', n, kd, in, ldin, out, ldout);
}

template <class T>
void tp_trans(int layout, char uplo, char diag, int64_t n, const T *in, T *out)
{
    if (in && out && is_layout(layout) && is_uplo(uplo) && is_diag(diag))
        line_copy<T>{in, packed_starts(layout, uplo, n), out, packed_starts(other_layout(layout), uplo, n),
                     dense_lines(layout, n, n, triangle(uplo, diag), n)}
            .run();
}

/// Packed symmetric, Hermitian, positive definite
template <class T>
void sp_trans(int layout, char uplo, int64_t n, const T *in, T *out)
{
    tp_trans(layout, uplo, 'N', n, in, out);
}

/// The whole rectangle, its diagonals included whatever `diag` is: they lie among elements that are copied.
template <class T>
void tf_trans(int layout, char transr, char uplo, char diag, int64_t n, const T *in, T *out)
{
    if (!is_layout(layout) || !is_transr(transr) || !is_uplo(uplo) || !is_diag(diag) || n < 1)
        return;
    const packed_rectangle r = rectangle_of(layout, 'N', uplo, n);
    const bool flat = !is(transr, 'N');
    const int64_t rows = flat ? r.columns : r.rows, columns = flat ? r.rows : r.columns;
    const bool by_columns = layout == CblasColMajor;
    ge_trans(layout, rows, columns, in, by_columns ? rows : columns, out, by_columns ? columns : rows);
}

/// Rectangular full packed symmetric, Hermitian, positive definite
template <class T>
void pf_trans(int layout, char transr, char uplo, int64_t n, const T *in, T *out)
{
    tf_trans(layout, transr, uplo, 'N', n, in, out);
}

} // namespace xkl::lapacke
