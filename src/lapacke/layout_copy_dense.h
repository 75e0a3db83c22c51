// Layout copies of dense matrices. Rectangles, and most of a large triangle, go through the library's own
// matrix copy.
#pragma once

#include "lapacke/layout_copy_lines.h"
#include "xkl_matcopy.h"

namespace xkl::lapacke {

/// The matrix copy of a type, and its scalar one: an address where it is complex.
template <class T>
struct matrix_copy;
template <>
struct matrix_copy<float> {
    static constexpr auto *call = XKL_Somatcopy;
    static constexpr float one = 1;
};
template <>
struct matrix_copy<double> {
    static constexpr auto *call = XKL_Domatcopy;
    static constexpr double one = 1;
};
template <>
struct matrix_copy<XKL_Complex8> {
    static constexpr auto *call = XKL_Comatcopy;
    static constexpr XKL_Complex8 value = {1, 0};
    static constexpr const XKL_Complex8 *one = &value;
};
template <>
struct matrix_copy<XKL_Complex16> {
    static constexpr auto *call = XKL_Zomatcopy;
    static constexpr XKL_Complex16 value = {1, 0};
    static constexpr const XKL_Complex16 *one = &value;
};

/// Sizes are handed on as they are: the matrix copy reports what is bad about them.
template <class T>
void ge_trans(int layout, int64_t m, int64_t n, const T *in, int64_t ldin, T *out, int64_t ldout)
{
    if (in && out)
        matrix_copy<T>::call(layout == CblasColMajor ? 'c' : 'r', 't', static_cast<size_t>(m),
                             static_cast<size_t>(n), matrix_copy<T>::one, in, static_cast<size_t>(ldin),
                             out, static_cast<size_t>(ldout));
}

/// From this size on a triangle is halved, so that most of it is a rectangle.
inline constexpr int64_t halved_triangle = 65;

/// A triangle whose line k holds the first k + 1 elements, or (`lower` of column-major) the elements from k
/// on.
template <class T>
void copy_triangle(bool lower, int64_t n, const T *in, int64_t ldin, T *out, int64_t ldout)
{
    if (n < halved_triangle) {
        copy_dense(CblasColMajor, n, n, triangle(lower ? 'L' : 'U', 'N'), in, ldin, out, ldout);
        return;
    }
    const int64_t h = n / 2;
    copy_triangle(lower, h, in, ldin, out, ldout);
    copy_triangle(lower, n - h, in + h + h * ldin, ldin, out + h + h * ldout, ldout);
    if (lower)
        ge_trans<T>(CblasColMajor, n - h, h, in + h, ldin, out + h * ldout, ldout);
    else
        ge_trans<T>(CblasColMajor, h, n - h, in + h * ldin, ldin, out + h, ldout);
}

template <class T>
void tr_trans(int layout, char uplo, char diag, int64_t n, const T *in, int64_t ldin, T *out, int64_t ldout)
{
    if (!in || !out || !is_layout(layout) || !is_uplo(uplo) || !is_diag(diag))
        return;
    if (is(diag, 'N'))
        copy_triangle((layout == CblasColMajor) == is(uplo, 'L'), n, in, ldin, out, ldout);
    else
        copy_dense(layout, n, n, triangle(uplo, diag), in, ldin, out, ldout);
}

/// Symmetric, Hermitian, positive definite
template <class T>
void sy_trans(int layout, char uplo, int64_t n, const T *in, int64_t ldin, T *out, int64_t ldout)
{
    tr_trans(layout, uplo, 'N', n, in, ldin, out, ldout);
}

/// Upper Hessenberg: the upper triangle and the first diagonal below
template <class T>
void hs_trans(int layout, int64_t n, const T *in, int64_t ldin, T *out, int64_t ldout)
{
    if (!in || !out || !is_layout(layout))
        return;
    tr_trans(layout, 'U', 'N', n, in, ldin, out, ldout);
    copy_dense(layout, n, n, {.below = 1, .above = -1}, in, ldin, out, ldout);
}

/// A triangle and the rectangle behind it (direct F), or before it (B), where the trapezoid has one
template <class T>
void tz_trans(int layout, char direct, char uplo, char diag, int64_t m, int64_t n, const T *in,
              int64_t ldin, T *out, int64_t ldout)
{
    if (!in || !out || !is_layout(layout) || !is_direct(direct) || !is_uplo(uplo) || !is_diag(diag))
        return;
    const bool by_columns = layout == CblasColMajor, first = is(direct, 'F'), tall = m > n;
    const int64_t side = tall ? n : m, rest = tall ? m - n : n - m;
    const auto place = [&](int64_t along, bool columns, int64_t ld) { // element `along` of the longer side
        return tall == columns ? along : along * ld;
    };
    const int64_t corner = first ? 0 : rest;
    tr_trans(layout, uplo, diag, side, in + place(corner, by_columns, ldin), ldin,
             out + place(corner, !by_columns, ldout), ldout);
    const bool has_rectangle = rest > 0 && side > 0 && tall == (first == is(uplo, 'L'));
    const int64_t start = first ? side : 0;
    if (has_rectangle)
        ge_trans(layout, tall ? rest : m, tall ? n : rest, in + place(start, by_columns, ldin), ldin,
                 out + place(start, !by_columns, ldout), ldout);
}

} // namespace xkl::lapacke
