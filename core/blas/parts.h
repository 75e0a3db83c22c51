// Parts of vectors and matrices: where they start, and the scaling by beta with which most products begin.
// Routines work in parts so that what they set aside fits the stack: no call allocates.
#pragma once

#include "elements.h"

#include <algorithm>

namespace xkl::core {

/// Elements i to i + count - 1 of a vector of n. With a negative increment the vector starts at its far
/// end, and the address of any part of it is that of its last element.
template <class T>
T *part(T *x, int64_t n, int64_t inc, int64_t i, int64_t count)
{
    return inc >= 0 ? x + i * inc : x + (i + count - n) * inc;
}

/// x := beta*x. A beta of zero overwrites: what stood there may be anything, NaN included.
template <class T>
void scale(int64_t n, T beta, T *x)
{
    if (beta == T(0))
        std::fill(x, x + n, T(0));
    else if (beta != T(1))
        std::transform(x, x + n, x, [beta](T each) { return product(beta, each); });
}

/// The same for a vector with an increment.
template <class T>
void scale(int64_t n, T beta, T *x, int64_t inc)
{
    if (beta == T(1))
        return;
    T *each = part(x, n, inc, 0, 1);
    for (int64_t i = 0; i < n; ++i, each += inc)
        *each = beta == T(0) ? T(0) : product(beta, *each);
}

/// The same for an m by n matrix.
template <class T>
void scale(int64_t m, int64_t n, T beta, T *c, int64_t ldc)
{
    for (int64_t j = 0; j < n; ++j)
        scale(m, beta, c + j * ldc);
}

/// C := A + C
template <class T>
void add(int64_t m, int64_t n, const T *a, int64_t lda, T *c, int64_t ldc)
{
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < m; ++i)
            c[i + j * ldc] += a[i + j * lda];
}

/// C := A
template <class T>
void copy(int64_t m, int64_t n, const T *a, int64_t lda, T *c, int64_t ldc)
{
    for (int64_t j = 0; j < n; ++j)
        std::copy(a + j * lda, a + j * lda + m, c + j * ldc);
}

} // namespace xkl::core
