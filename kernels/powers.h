// Powers and roots that the base libraries serve: Pow, Powr, Powx, Cbrt, Hypot.
//
// glibc's powers are within 1 ULP, too (0.999 in a hundred million), and faster than SLEEF's.
#pragma once

#include "base_library.h"
#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// What is infinite, tiny or no number comes from the C library, with the cases of Annex F.
template <class R>
status settle_power(R a, R b, R &y)
{
    y = static_cast<R>(__builtin_pow(a, b));
    if (infinite(a) || infinite(b))
        return fine;
    if (a == 0)
        return b < 0 ? singularity : fine;
    return tiny(y) ? underflow : overflow_or_nan(y, a, b);
}

template <class R>
struct pow_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return glibc::pow(a, b);
    }
    XKL_HOT unsigned suspicious(V a, V, V y) const { return abnormal(y, which_are<equal>(a, R(0))); }
    status settle(R a, R b, R &y) const { return settle_power(a, b, y); }
};

template <class R>
struct powx_function {
    using V = vec<R>;
    R b;
    template <accuracy>
    XKL_HOT V value(V a) const
    {
        return glibc::pow(a, broadcast(b));
    }
    XKL_HOT unsigned suspicious(V a, V y) const { return abnormal(y, which_are<equal>(a, R(0))); }
    status settle(R a, R &y) const { return settle_power(a, b, y); }
};

/// exp(b*ln(a)): no number where that has none, though a**b has a limit there.
template <class R>
struct powr_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return glibc::pow(a, b);
    }
    XKL_HOT auto suspicious(V a, V b, V y) const
    {
        return is_not_finite(y) | is_tiny(y) | ~(a > 0) | is_infinite(a) | is_not_finite(b);
    }
    status settle(R a, R b, R &y) const
    {
        if (nan(a) || nan(b)) {
            y = a + b;
            return fine;
        }
        if (a < 0 || (b == 0 && (a == 0 || infinite(a))) || (a == 1 && infinite(b))) {
            y = limits<R>::nan;
            return domain_error;
        }
        return settle_power(a == 0 ? R(0) : a, b, y);
    }
};

template <class R>
struct cbrt_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high)
            return glibc::cbrt(a);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return glibc::cbrt(x); }, a);
        else
            return sleef::cbrt_u10(a);
    }
};

template <class R>
struct hypot_function {
    using V = vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a, V b) const
    {
        if constexpr (A != accuracy::high)
            return glibc::hypot(a, b);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x, vec<double> y) { return square_root(x * x + y * y); }, a, b);
        else
            return sleef::hypot_u05(a, b);
    }
    XKL_HOT auto suspicious(V, V, V y) const { return is_not_finite(y); }
    status settle(R a, R b, R &y) const
    {
        if (infinite(a) || infinite(b)) {
            y = limits<R>::infinity; // even beside a NaN
            return fine;
        }
        return overflow_or_nan(y, a, b);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
