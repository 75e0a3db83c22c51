// The complex dot products of vectors whose elements lie apart. The kernel library reads one element beyond
// their end, which is the end of memory for the last row of a matrix. The link directs all calls here
// (--wrap=zdotu_ and its kin), those of its LAPACK too: the last element is taken off, and what is read
// beyond is that one.
#include "blas/elements.h"

#include <complex>
#include <cstdint>

namespace {

// Where the elements start without their last one: steps down begin at the far end.
template <class T>
const T *without_last(const T *x, int64_t incx)
{
    return incx < 0 ? x - incx : x;
}

template <class T>
const T &last(const T *x, int64_t n, int64_t incx)
{
    return incx < 0 ? *x : x[(n - 1) * incx];
}

template <auto Kernel, bool Conjugate, class T>
T dot(const int64_t *n, const T *x, const int64_t *incx, const T *y, const int64_t *incy)
{
    if (*n <= 0 || (*incx == 1 && *incy == 1))
        return Kernel(n, x, incx, y, incy);
    const int64_t others = *n - 1;
    const T sum = Kernel(&others, without_last(x, *incx), incx, without_last(y, *incy), incy);
    const T of_x = last(x, *n, *incx), of_y = last(y, *n, *incy);
    return sum + (Conjugate ? std::conj(of_x) : of_x) * of_y;
}

} // namespace

template <class T>
using dot_type = T(const int64_t *n, const T *x, const int64_t *incx, const T *y, const int64_t *incy);

using xkl::core::complex16;
using xkl::core::complex8;

extern "C" {
dot_type<complex8> __real_cdotu_, __real_cdotc_;
dot_type<complex16> __real_zdotu_, __real_zdotc_;

complex8 __wrap_cdotu_(const int64_t *n, const complex8 *x, const int64_t *incx, const complex8 *y,
                       const int64_t *incy)
{
    return dot<__real_cdotu_, false>(n, x, incx, y, incy);
}
complex8 __wrap_cdotc_(const int64_t *n, const complex8 *x, const int64_t *incx, const complex8 *y,
                       const int64_t *incy)
{
    return dot<__real_cdotc_, true>(n, x, incx, y, incy);
}
complex16 __wrap_zdotu_(const int64_t *n, const complex16 *x, const int64_t *incx, const complex16 *y,
                        const int64_t *incy)
{
    return dot<__real_zdotu_, false>(n, x, incx, y, incy);
}
complex16 __wrap_zdotc_(const int64_t *n, const complex16 *x, const int64_t *incx, const complex16 *y,
                        const int64_t *incy)
{
    return dot<__real_zdotc_, true>(n, x, incx, y, incy);
}
}
