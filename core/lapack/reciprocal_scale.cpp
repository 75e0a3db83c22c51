// x := x/a with a complex a, which LAPACK has since version 3.12.
#include "core_lapack.h"
#include "openblas/forward.h"

using xkl::core::on_openblas;

#define ENTRY(T, name, divide)                                                                             \
    extern "C" T divide##_(const T *, const T *);                                                          \
    void xkl_lapack_##name(const int64_t *n, const T *a, T *x, const int64_t *incx)                        \
    {                                                                                                      \
        if (*incx <= 0)                                                                                    \
            return;                                                                                        \
        for (int64_t i = 0; i < *n; ++i)                                                                   \
            x[i * *incx] =                                                                                 \
                on_openblas(divide##_, x + i * *incx, a); /* overflows only if the result does */          \
    }
ENTRY(XKL_Complex8, crscl, cladiv)
ENTRY(XKL_Complex16, zrscl, zladiv)
