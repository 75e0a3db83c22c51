// x := x/a with a complex a, which LAPACK has since version 3.12.
#pragma once

#include "call.h"

namespace xkl::core {

template <class T>
void rscl(const int64_t *n, const T *a, T *x, const int64_t *incx)
{
    if (*incx <= 0)
        return;
    for (int64_t i = 0; i < *n; ++i)
        x[i * *incx] = call(entries::ladiv<T>, x + i * *incx, a); // overflows only if the result does
}

} // namespace xkl::core
