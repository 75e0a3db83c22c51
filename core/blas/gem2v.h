// y1 := alpha*A*x1 + beta*y1 and y2 := alpha*op(A)*x2 + beta*y2. Both products take a panel of columns
// while it is in the cache, so that A is read from memory once.
#pragma once

#include "kernels.h"
#include "parts.h"

namespace xkl::core {

template <class T>
void gem2v(int64_t m, int64_t n, T alpha, const T *a, int64_t lda, const T *x1, int64_t incx1, const T *x2,
           int64_t incx2, T beta, T *y1, int64_t incy1, T *y2, int64_t incy2)
{
    if (m <= 0 || n <= 0)
        return;
    constexpr int64_t panel_bytes = 256 * 1024; // half of a small second-level cache
    const int64_t width = std::max<int64_t>(4, panel_bytes / static_cast<int64_t>(sizeof(T)) / m);
    for (int64_t first = 0; first < n; first += width) {
        const int64_t count = std::min(width, n - first);
        gemv<T>('N', m, count, alpha, a + first * lda, lda, part(x1, n, incx1, first, count), incx1,
                first == 0 ? beta : T(1), y1, incy1);
        gemv<T>('C', m, count, alpha, a + first * lda, lda, x2, incx2, beta,
                part(y2, n, incy2, first, count), incy2);
    }
}

template <class T>
void gem2vu(const int64_t *m, const int64_t *n, const T *alpha, const T *a, const int64_t *lda, const T *x1,
            const int64_t *incx1, const T *x2, const int64_t *incx2, const T *beta, T *y1,
            const int64_t *incy1, T *y2, const int64_t *incy2)
{
    gem2v(*m, *n, *alpha, a, *lda, x1, *incx1, x2, *incx2, *beta, y1, *incy1, y2, *incy2);
}

template <class T>
void gem2vc(const int64_t *m, const int64_t *n, const T *alpha, const T *a, const int64_t *lda, const T *x1,
            const int64_t *incx1, const T *x2, const int64_t *incx2, const T *beta, T *y1,
            const int64_t *incy1, T *y2, const int64_t *incy2)
{
    gem2v(*m, *n, *alpha, a, *lda, x1, *incx1, x2, *incx2, *beta, y1, *incy1, y2, *incy2);
}

} // namespace xkl::core
