// B := alpha*op(A) where the elements of a line lie a stride apart. There is nothing for wide registers to
// take hold of, so the elements go one by one, in blocks whose cache lines stay near.
#pragma once

#include "matcopy/copies.h"

namespace xkl::core {

template <class T>
T multiplied(const factor<T> &by, T x)
{
    if (by.keeps)
        return x;
    if constexpr (element<T>::is_complex) {
        const T straight = {x.real() * by.straight[0], x.imag() * by.straight[1]};
        return by.crosses ? straight + T(x.imag() * by.crossed[0], x.real() * by.crossed[1]) : straight;
    } else
        return x * by.straight[0];
}

/// Elements, lines at a distance of ld and their elements at a distance of stride
template <class T>
struct strided_lines {
    T *first;
    size_t ld, stride;

    T &at(size_t line, size_t place) const { return first[line * ld + place * stride]; }
};

template <class T>
void xkl_omatcopy2(char ordering, char trans, size_t rows, size_t cols, scalar_argument<T> alpha,
                   const T *a, size_t lda, size_t stridea, T *b, size_t ldb, size_t strideb)
{
    if (stridea == 1 && strideb == 1)
        return xkl_omatcopy<T>(ordering, trans, rows, cols, alpha, a, lda, b, ldb);
    const stored_lines shape(ordering, rows, cols);
    if (shape.empty())
        return;
    const operation op(trans);
    const bool zero = value_of(alpha) == T(0);
    const factor<T> by(value_of(alpha), element<T>::is_complex && op.conjugated);
    const strided_lines<const T> from = {a, lda, stridea};
    const strided_lines<T> to =
        op.turned ? strided_lines<T>{b, strideb, ldb} : strided_lines<T>{b, ldb, strideb};
    constexpr size_t side = 32;
    const size_t width = op.turned ? side : 1024;
    for_blocks({shape.lines, side}, {shape.length, width}, shape.elements() * sizeof(T),
               [&](size_t i, size_t last_i, size_t first_j, size_t last_j) {
                   for (; i < last_i; ++i)
                       for (size_t j = first_j; j < last_j; ++j)
                           to.at(i, j) = zero ? T(0) : multiplied(by, from.at(i, j));
               });
}

} // namespace xkl::core
