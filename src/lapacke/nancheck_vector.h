// NaN checks of arrays that are alike in both layouts: vectors, packed matrices as a whole, and tridiagonal ones.
#pragma once

#include "lapacke/nancheck_scan.h"

namespace xkl::lapacke {

template <class T>
int64_t whole_nancheck(int64_t n, const T *x)
{
    return holds_nan(x, {0}, {1, 0, n, 0, 0, n});
}

/// Elements that are `step` apart
template <class T>
int64_t spread_nancheck(int64_t n, const T *x, uint64_t step)
{
    using real = typename element<T>::real;
    constexpr uint64_t reals = element<T>::reals;
    const auto *parts = reinterpret_cast<const real *>(x);
    bool found = false;
    for (uint64_t left = x && n > 0 ? static_cast<uint64_t>(n) : 0; left > 0; --left, parts += reals * step)
        found |= __builtin_isunordered(parts[0], parts[reals - 1]);
    return found;
}

/// n elements, in whichever direction; an increment of 0 means the first alone.
template <class T>
int64_t vector_nancheck(int64_t n, const T *x, int64_t incx)
{
    if (incx == 0)
        return whole_nancheck(smaller(n, 1), x);
    if (incx == 1 || incx == -1)
        return whole_nancheck(n, x);
    const auto step = static_cast<uint64_t>(incx);
    return spread_nancheck(n, x, incx < 0 ? 0 - step : step);
}

/// A packed triangle, in whichever order: pp, sp, hp and pf. The elements of no matrix are none.
template <class T>
int64_t sp_nancheck(int64_t n, const T *ap)
{
    return n > 0 && whole_nancheck(n * (n + 1) / 2, ap);
}

template <class T>
int64_t gt_nancheck(int64_t n, const T *dl, const T *d, const T *du)
{
    return whole_nancheck(n - 1, dl) || whole_nancheck(n, d) || whole_nancheck(n - 1, du);
}

/// Symmetric and positive definite tridiagonal; the diagonal of the latter is real.
template <class D, class T>
int64_t st_nancheck(int64_t n, const D *d, const T *e)
{
    return whole_nancheck(n, d) || whole_nancheck(n - 1, e);
}

} // namespace xkl::lapacke
