// y := alpha*op(A)*x + beta*y with a real A and complex vectors. alpha*x is taken apart into its real and
// imaginary part, panel by panel; each meets A in a real product that adds to every second real of y.
#pragma once

#include "kernels.h"
#include "parts.h"

namespace xkl::core {

template <class R>
void mixed_gemv(char trans, int64_t m, int64_t n, std::complex<R> alpha, const R *a, int64_t lda,
                const std::complex<R> *x, int64_t incx, std::complex<R> beta, std::complex<R> *y,
                int64_t incy)
{
    using C = std::complex<R>;
    // Elements of x at a time: 8 KB of stack for both parts in double precision
    constexpr int64_t panel = 512;
    if (m <= 0 || n <= 0)
        return;
    const bool plain = is(trans, 'N');
    const int64_t length_x = plain ? n : m;
    scale(plain ? m : n, beta, y, incy);
    if (alpha == C(0))
        return;
    R re[panel], im[panel];
    R *reals = reinterpret_cast<R *>(y); // complex arrays may be taken for arrays of reals
    for (int64_t first = 0; first < length_x; first += panel) {
        const int64_t count = std::min(panel, length_x - first);
        const C *each = part(x, length_x, incx, first, 1);
        for (int64_t i = 0; i < count; ++i, each += incx) {
            const C scaled = product(alpha, *each);
            re[i] = scaled.real();
            im[i] = scaled.imag();
        }
        const R *block = plain ? a + first * lda : a + first;
        const int64_t rows = plain ? m : count, columns = plain ? count : n;
        gemv<R>(plain ? 'N' : 'T', rows, columns, 1, block, lda, re, 1, 1, reals, 2 * incy);
        gemv<R>(plain ? 'N' : 'T', rows, columns, 1, block, lda, im, 1, 1, reals + 1, 2 * incy);
    }
}

/// T is the type of the vectors. The plain product of kernels.h, which takes values, has the same name.
template <class T>
void gemv(const char *trans, const int64_t *m, const int64_t *n, const T *alpha, const real_of<T> *a,
          const int64_t *lda, const T *x, const int64_t *incx, const T *beta, T *y, const int64_t *incy)
{
    mixed_gemv(*trans, *m, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}

} // namespace xkl::core
