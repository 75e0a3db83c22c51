// The product of a matrix with a diagonal one, for which the BLAS has no routine: the batches of it are
// made of this.
#pragma once

#include "parts.h"

namespace xkl::core {

/// C := diag(x)*A (side L) or A*diag(x) (side R). C may be A itself.
template <class T>
void multiply_by_diagonal(char side, int64_t m, int64_t n, const T *a, int64_t lda, const T *x,
                          int64_t incx, T *c, int64_t ldc)
{
    const bool left = is(side, 'L');
    const T *first = part(x, left ? m : n, incx, 0, 1);
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < m; ++i)
            c[i + j * ldc] = product(first[(left ? i : j) * incx], a[i + j * lda]);
}

} // namespace xkl::core
