// Error and gamma functions that the base libraries serve: Erf, Erfc, LGamma, TGamma.
#pragma once

#include "base_library.h"
#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Floats of high accuracy go through doubles: faster than the base library's floats of 1 ULP. glibc's own
/// floats stay just below 4 ULP, tried on all of them.
template <class R>
struct erf_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high)
            return glibc::erf(a);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return glibc::erf(x); }, a);
        else
            return sleef::erf_u10(a);
    }
};

template <class R>
struct erfc_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high)
            return glibc::erfc(a);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return glibc::erfc(x); }, a);
        else
            return sleef::erfc_u15(a);
    }
    // The base library loses digits before its results become denormal.
    XKL_HOT unsigned suspicious_arguments(vec<R> a) const
    {
        return which_are<above>(a, sizeof(R) == 8 ? R(26) : R(9));
    }
    status settle(R a, R &y) const
    {
        y = static_cast<R>(__builtin_erfcl(a));
        return tiny(y) && !infinite(a) ? underflow : fine;
    }
};

template <class R>
struct lgamma_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return sleef::lgamma_u10(a);
    }
    // Near its zeros below 0 the base library loses all digits.
    XKL_HOT auto suspicious(vec<R> a, vec<R> y) const
    {
        return (is_not_finite(y) | ((a < 0) & (absolute(y) < R(.25)))) & ~is_nan(a);
    }
    status settle(R a, R &y) const
    {
        int sign; // the C library keeps it in a variable that all threads share, otherwise
        y = static_cast<R>(__builtin_lgammal_r(a, &sign));
        if (infinite(a))
            return fine;
        return a <= 0 && infinite(y) ? singularity : overflow_or_nan(y, a);
    }
};

template <class R>
struct tgamma_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return sleef::tgamma_u10(a);
    }
    XKL_HOT auto suspicious(vec<R> a, vec<R> y) const
    {
        constexpr R small = sizeof(R) == 8 ? R(1e-290) : R(1e-30); // where the base library loses digits
        return (is_not_finite(y) | (absolute(y) < small)) & ~is_nan(a);
    }
    status settle(R a, R &y) const
    {
        y = static_cast<R>(__builtin_tgammal(a));
        if (a == 0)
            return singularity;
        if (tiny(y))
            return underflow;
        return nan(y) ? domain_error : overflow_or_nan(y, a);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
