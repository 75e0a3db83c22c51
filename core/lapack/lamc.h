// The steps by which older versions of ?LAMCH found out about the machine's numbers. LAPACK has dropped
// them; programs that bring such a version still call them.
#pragma once

#include "elements.h"

#include <limits>

namespace xkl::core {

template <class T>
using limits = std::numeric_limits<T>;

template <class T>
void lamc1(int64_t *beta, int64_t *t, int64_t *rnd, int64_t *ieee1)
{
    *beta = limits<T>::radix;
    *t = limits<T>::digits;
    *rnd = limits<T>::round_style == std::round_to_nearest;
    *ieee1 = limits<T>::is_iec559;
}

template <class T>
void lamc2(int64_t *beta, int64_t *t, int64_t *rnd, T *eps, int64_t *emin, T *rmin, int64_t *emax, T *rmax)
{
    int64_t ieee;
    lamc1<T>(beta, t, rnd, &ieee);
    *eps = limits<T>::epsilon() / 2; // rounding halves it
    *emin = limits<T>::min_exponent;
    *rmin = limits<T>::min();
    *emax = limits<T>::max_exponent;
    *rmax = limits<T>::max();
}

/// The exponent down to which `start` can be divided by the base and got back.
template <class T>
int64_t smallest_exponent(T start, int64_t base)
{
    const T by = static_cast<T>(base);
    int64_t exponent = 1;
    volatile T value = start, divided = value / by; // in memory: no more digits than the type has
    do {
        --exponent;
        value = divided;
        divided = value / by;
    } while (divided != value && divided * by == value);
    return exponent;
}

/// The largest exponent, on the grounds that the exponents from emin to it fill a power of two almost.
inline int64_t largest_exponent(int64_t beta, int64_t p, int64_t emin, bool ieee)
{
    int64_t below = 1, bits = 1; // the largest power of two up to -emin, and the bits of an exponent
    while (2 * below <= -emin) {
        below *= 2;
        ++bits;
    }
    int64_t above = below;
    if (below != -emin) {
        above = 2 * below;
        ++bits;
    }
    const int64_t exponents = 2 * (above + emin > -below - emin ? below : above);
    int64_t emax = exponents + emin - 1;
    const int64_t word = 1 + bits + p;
    if (word % 2 == 1 && beta == 2) // the leading one is not stored, or the word has a bit to spare
        --emax;
    return ieee ? emax - 1 : emax; // one for infinity
}

/// 0.ddd...d with p digits of beta - 1, times beta to the emax.
template <class T>
T largest_number(int64_t beta, int64_t p, int64_t emax)
{
    const T base = static_cast<T>(beta);
    T digit = base - 1, number = 0;
    for (int64_t i = 0; i < p; ++i) {
        digit /= base;
        if (const T next = number + digit; next < 1)
            number = next;
    }
    for (int64_t i = 0; i < emax; ++i)
        number *= base;
    return number;
}

template <class T>
void lamc4(int64_t *emin, const T *start, const int64_t *base)
{
    *emin = smallest_exponent<T>(*start, *base);
}

template <class T>
void lamc5(const int64_t *beta, const int64_t *p, const int64_t *emin, const int64_t *ieee, int64_t *emax,
           T *rmax)
{
    *emax = largest_exponent(*beta, *p, *emin, *ieee != 0);
    *rmax = largest_number<T>(*beta, *p, *emax);
}

} // namespace xkl::core
