// Exponentials and logarithms: Exp, Exp2, Exp10, Expm1, Ln, Log2, Log10, Log1p.
#pragma once

#include "base_library.h"
#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Large results overflow, small ones underflow, both only for arguments beyond a bound.
template <class R>
struct exponential {
    status settle(R a, R &y) const
    {
        return infinite(a) ? fine : tiny(y) ? underflow : infinite(y) ? overflow : fine;
    }
};

/// The largest bound such that no smaller argument's power overflows or underflows, nearly
template <class R>
constexpr R bound_of_powers(double for_double, double for_float)
{
    return static_cast<R>(sizeof(R) == 8 ? for_double : for_float);
}

template <class R>
struct exp_function : exponential<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        constexpr bool faster_in_sleef = sizeof(R) == 4 && register_bytes == 64;
        return A == accuracy::high || faster_in_sleef ? sleef::exp_u10(a) : glibc::exp(a);
    }
    static constexpr R harmless = bound_of_powers<R>(708, 87);
};

template <class R>
struct exp2_function : exponential<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return A == accuracy::high ? sleef::exp2_u10(a) : glibc::exp2(a);
    }
    static constexpr R harmless = bound_of_powers<R>(1022, 126);
};

template <class R>
struct exp10_function : exponential<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return A == accuracy::high ? sleef::exp10_u10(a) : sleef::exp10_u35(a);
    }
    static constexpr R harmless = bound_of_powers<R>(307, 37);
};

template <class R>
struct expm1_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high)
            return glibc::expm1(a);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return glibc::expm1(x); }, a);
        else
            return sleef::expm1_u10(a);
    }
    XKL_HOT unsigned suspicious_arguments(vec<R> a) const
    {
        return which_are<above>(a, bound_of_powers<R>(709, 88));
    }
    status settle(R a, R &y) const { return overflow_or_nan(y, a); }
};

/// Arguments below the pole are outside the domain.
template <class R, int Pole = 0>
struct logarithm {
    XKL_HOT unsigned suspicious_arguments(vec<R> a) const { return which_are<at_most>(a, R(Pole)); }
    status settle(R a, R &y) const
    {
        y = a == Pole ? -limits<R>::infinity : limits<R>::nan;
        return a == Pole ? singularity : domain_error;
    }
};

template <class R>
struct ln_function : logarithm<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        constexpr bool faster_in_glibc = sizeof(R) == 8 && register_bytes < 64;
        if constexpr (A == accuracy::high)
            return sleef::log_u10(a);
        else
            return faster_in_glibc ? glibc::log(a) : sleef::log_u35(a);
    }
};

template <class R>
struct log2_function : logarithm<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return A == accuracy::high ? sleef::log2_u10(a) : glibc::log2(a);
    }
};

template <class R>
struct log10_function : logarithm<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return A == accuracy::high ? sleef::log10_u10(a) : glibc::log10(a);
    }
};

template <class R>
struct log1p_function : logarithm<R, -1> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high)
            return glibc::log1p(a);
        else if constexpr (sizeof(R) ==
                           4) // the base library's floats of 1 ULP end before the largest arguments
            return in_double([](vec<double> x) { return glibc::log1p(x); }, a);
        else
            return small_as_they_are(
                a, [](auto x) { return sleef::log1p_u10(x); }, R(0x1p-54));
    }
    /// The base library's doubles of 1 ULP end before the largest arguments, too.
    XKL_HOT unsigned suspicious_arguments(vec<R> a) const
    {
        return which_are<at_most>(a, R(-1)) |
               which_are<above>(a, sizeof(R) == 8 ? R(0x1p1000) : limits<R>::infinity);
    }
    status settle(R a, R &y) const
    {
        if (!(a > 0))
            return logarithm<R, -1>::settle(a, y);
        y = static_cast<R>(__builtin_logl(a));
        return fine;
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
