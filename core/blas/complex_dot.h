// The complex dot products. OpenBLAS returns them as function values; the core's entries take the result's
// address first, which every compiler passes alike.
#pragma once

#include "kernels.h"

namespace xkl::core {

template <class T>
void dotc(T *result, const int64_t *n, const T *x, const int64_t *incx, const T *y, const int64_t *incy)
{
    *result = on_openblas(kernels<T>::dotc, n, x, incx, y, incy);
}

template <class T>
void dotu(T *result, const int64_t *n, const T *x, const int64_t *incx, const T *y, const int64_t *incy)
{
    *result = on_openblas(kernels<T>::dotu, n, x, incx, y, incy);
}

} // namespace xkl::core
