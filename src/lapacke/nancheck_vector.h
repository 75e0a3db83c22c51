// NaN checks of arrays that are alike in both layouts: vectors, packed matrices as a whole, and tridiagonal
// ones.
#pragma once

#include "lapacke/nancheck_scan.h"

namespace xkl::lapacke {

/// Elements that are `step` apart
template <class T>
int64_t spread_nancheck(int64_t n, const T *x, uint64_t step)
{
    constexpr uint64_t reals = element<T>::reals;
    bool found = false;
    if (x && n > 0)
        for (uint64_t i = 0; i < static_cast<uint64_t>(n); ++i) {
            const auto *parts = reals_of(x) + reals * step * i;
            found |= __builtin_isunordered(parts[0], parts[reals - 1]) != 0;
        }
    return found;
}

/// n elements, in whichever direction; an increment of 0 means the first alone.
template <class T>
int64_t vector_nancheck(int64_t n, const T *x, int64_t incx)
{
    if (incx == 0)
        return holds_nan(x, smaller(n, 1));
    if (incx == 1 || incx == -1)
        return holds_nan(x, n);
    const auto step = static_cast<uint64_t>(incx);
    return spread_nancheck(n, x, incx < 0 ? 0 - step : step);
}

/// A packed triangle, in whichever order: pp, sp, hp and pf. The elements of no matrix are none.
template <class T>
int64_t sp_nancheck(int64_t n, const T *ap)
{
    return n > 0 && holds_nan(ap, n * (n + 1) / 2);
}

template <class T>
int64_t gt_nancheck(int64_t n, const T *dl, const T *d, const T *du)
{
    return holds_nan(dl, n - 1) || holds_nan(d, n) || holds_nan(du, n - 1);
}

/// Symmetric and positive definite tridiagonal; the diagonal of the latter is real.
template <class D, class T>
int64_t st_nancheck(int64_t n, const D *d, const T *e)
{
    return holds_nan(d, n) || holds_nan(e, n - 1);
}

} // namespace xkl::lapacke
