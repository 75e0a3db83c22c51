/* A correct DSCAL that is not the library's: put first, it lets the level-1 program pass without having
 * tested the library's. The judge of the runs must notice. */
#include <stdint.h>

void dscal_(const int64_t *n, const double *a, double *x, const int64_t *incx)
{
    const int64_t count = *incx > 0 ? *n : 0;
    for (int64_t i = 0; i < count; ++i)
        x[i * *incx] *= *a;
}
