// Elementary reflectors H = I - tau*v*v' whose v has a 1 at one end that is not stored.
#pragma once

#include "blas/kernels.h"
#include "blas/parts.h"
#include "call.h"

namespace xkl::core {

/// A := A - alpha*x*y'
template <class T>
void subtract_outer_product(int64_t m, int64_t n, T alpha, const T *x, int64_t incx, const T *y,
                            int64_t incy, T *a, int64_t lda)
{
    if constexpr (element<T>::is_complex)
        call(entries::gerc<T>, m, n, -alpha, x, incx, y, incy, a, lda);
    else
        call(entries::ger<T>, m, n, -alpha, x, incx, y, incy, a, lda);
}

/// C := H*C. `unit` is the row of C that the 1 of v meets; `others` are the first row of the others and
/// the other elements of v. The workspace has n elements.
template <class T>
void reflect_rows(int64_t m, int64_t n, T *unit, T *others, const T *v, int64_t incv, T tau, int64_t ldc,
                  T *work)
{
    for (int64_t j = 0; j < n; ++j)
        work[j] = conjugate(unit[j * ldc]);
    if (m > 1)
        gemv<T>('C', m - 1, n, T(1), others, ldc, v, incv, T(1), work, 1);
    for (int64_t j = 0; j < n; ++j)
        unit[j * ldc] -= product(tau, conjugate(work[j]));
    if (m > 1)
        subtract_outer_product(m - 1, n, tau, v, incv, work, 1, others, ldc);
}

/// C := C*H. The same with columns; the workspace has m elements.
template <class T>
void reflect_columns(int64_t m, int64_t n, T *unit, T *others, const T *v, int64_t incv, T tau, int64_t ldc,
                     T *work)
{
    std::copy(unit, unit + m, work);
    if (n > 1)
        gemv<T>('N', m, n - 1, T(1), others, ldc, v, incv, T(1), work, 1);
    for (int64_t i = 0; i < m; ++i)
        unit[i] -= product(tau, work[i]);
    if (n > 1)
        subtract_outer_product(m, n - 1, tau, work, 1, v, incv, others, ldc);
}

template <class T>
void apply_reflector(bool one_is_first, char side, int64_t m, int64_t n, const T *v, int64_t incv, T tau,
                     T *c, int64_t ldc, T *work)
{
    if (m <= 0 || n <= 0 || tau == T(0))
        return;
    const bool left = is(side, 'L');
    const int64_t length = left ? m : n, step = left ? 1 : ldc;
    T *unit = one_is_first ? c : c + (length - 1) * step;
    T *others = one_is_first ? c + step : c;
    const T *stored = part(v, length, incv, one_is_first ? 1 : 0, length - 1);
    (left ? reflect_rows<T> : reflect_columns<T>)(m, n, unit, others, stored, incv, tau, ldc, work);
}

template <class T>
void larf1f(const char *side, const int64_t *m, const int64_t *n, const T *v, const int64_t *incv,
            const T *tau, T *c, const int64_t *ldc, T *work)
{
    apply_reflector(true, *side, *m, *n, v, *incv, *tau, c, *ldc, work);
}

template <class T>
void larf1l(const char *side, const int64_t *m, const int64_t *n, const T *v, const int64_t *incv,
            const T *tau, T *c, const int64_t *ldc, T *work)
{
    apply_reflector(false, *side, *m, *n, v, *incv, *tau, c, *ldc, work);
}

} // namespace xkl::core
