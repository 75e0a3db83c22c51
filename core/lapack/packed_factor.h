// Partial factorizations, without pivoting, of symmetric matrices packed by the columns of their lower
// triangle. Columns are factored a panel at a time; then all columns behind the panel are updated side by
// side, each one read and written once a panel.
#pragma once

#include "blas/kernels.h"
#include "blas/parallel.h"
#include "quotient.h"
#include "requirements.h"

namespace xkl::core {

/// Column k of the packed triangle, so that its element in row i is column(k)[i]
template <class T>
struct packed_lower {
    T *elements;
    int64_t n;

    T *column(int64_t k) const { return elements + k * (2 * n - k - 1) / 2; }
};

/// Column j, less what the factored columns first to last - 1 make of it. weight(d, l) is the factor of a
/// column with pivot d whose element in row j is l.
template <class T, class Weight>
void subtract_factored(packed_lower<T> a, int64_t j, int64_t first, int64_t last, const Weight &weight)
{
    const int64_t count = a.n - j, one = 1;
    for (int64_t k = first; k < last; ++k) {
        const T factor = -weight(a.column(k)[k], a.column(k)[j]);
        on_openblas(kernels<T>::axpy, &count, &factor, a.column(k) + j, &one, a.column(j) + j, &one);
    }
}

/// `finish` makes the factor's column of one that nothing is to be subtracted from any more; it gets the
/// pivot's address and the number of elements below it.
template <class T, class Weight, class Finish>
void factor_packed(packed_lower<T> a, int64_t steps, const Weight &weight, const Finish &finish)
{
    constexpr int64_t panel = 32;
    for (int64_t first = 0; first < steps; first += panel) {
        const int64_t last = std::min(first + panel, steps);
        for (int64_t j = first; j < last; ++j) {
            subtract_factored(a, j, first, j, weight);
            finish(a.column(j) + j, a.n - j - 1);
        }
        for_each(a.n - last, operations(last - first, a.n - last),
                 [&](int64_t behind) { subtract_factored(a, last + behind, first, last, weight); });
    }
}

template <class T>
bool acceptable_part(const char *routine, int64_t n, int64_t ncolm)
{
    return accepted<T>(routine, nullptr, {{2, n >= 0}, {3, ncolm >= 0 && ncolm <= n}});
}

// The updates need none of the caller's work arrays.

template <class T>
void xkl_spffrt2(T *ap, const int64_t *n, const int64_t *ncolm, T *, T *)
{
    if (acceptable_part<T>("XKL_?SPFFRT2", *n, *ncolm))
        factor_packed(
            packed_lower<T>{ap, *n}, *ncolm, [](T pivot, T element) { return quotient(element, pivot); },
            [](T *, int64_t) {});
}

template <class T>
void xkl_spffrtx(T *ap, const int64_t *n, const int64_t *ncolm, T *, T *)
{
    if (acceptable_part<T>("XKL_?SPFFRTX", *n, *ncolm))
        factor_packed(
            packed_lower<T>{ap, *n}, *ncolm, [](T pivot, T element) { return product(element, pivot); },
            [](T *pivot, int64_t below) {
                for (int64_t i = 1; i <= below; ++i)
                    pivot[i] = quotient(pivot[i], pivot[0]);
            });
}

} // namespace xkl::core
