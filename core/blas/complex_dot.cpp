// The complex dot products. OpenBLAS returns them as function values; the core's entries take the result's
// address first, which every compiler passes alike.
#include "entries.h"
#include "openblas/forward.h"

using xkl::core::on_openblas;

#define ENTRY(T, t, product)                                                                               \
    extern "C" T t##product##_(const int64_t *, const T *, const int64_t *, const T *, const int64_t *);   \
    extern "C" void xkl_blas_##t##product(T *result, const int64_t *n, const T *x, const int64_t *incx,    \
                                          const T *y, const int64_t *incy)                                 \
    {                                                                                                      \
        *result = on_openblas(t##product##_, n, x, incx, y, incy);                                         \
    }
#define ENTRIES(T, t) ENTRY(T, t, dotc) ENTRY(T, t, dotu)
XKL_FOR_C_Z(ENTRIES)
