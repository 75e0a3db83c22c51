// Hyperbolic functions and their inverses: Sinh, Cosh, Tanh, Asinh, Acosh, Atanh.
#pragma once

#include "base_library.h"
#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Beyond it asinh and acosh are ln(2a) to the last digit. The base library's doubles of 1 ULP become
/// infinite only later, but long before the largest arguments.
template <class R>
constexpr R only_a_logarithm = sizeof(R) == 8 ? R(0x1p500) : limits<R>::infinity;
constexpr long double ln_2 = 0.693147180559945309417232121458L;

template <class R>
struct sinh_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return A == accuracy::high ? small_as_they_are(a, [](auto x) { return sleef::sinh_u10(x); })
                                   : glibc::sinh(a);
    }
    XKL_HOT unsigned suspicious(vec<R> a, vec<R> y) const
    {
        return which_are_of<not_finite>(y) & ~which_are_of<infinities>(a);
    }
    status settle(R a, R &y) const
    {
        y = static_cast<R>(
            __builtin_sinhl(a)); // the base library's range ends just before that of the results
        return overflow_or_nan(y, a);
    }
};

template <class R>
struct cosh_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high)
            return glibc::cosh(a);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return glibc::cosh(x); }, a);
        else
            return sleef::cosh_u10(a);
    }
    XKL_HOT unsigned suspicious(vec<R> a, vec<R> y) const
    {
        return which_are_of<not_finite>(y) & ~which_are_of<infinities>(a);
    }
    status settle(R a, R &y) const
    {
        y = static_cast<R>(__builtin_coshl(a)); // as sinh
        return overflow_or_nan(y, a);
    }
};

template <class R>
struct tanh_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        constexpr bool faster_in_sleef = sizeof(R) == 8 && register_bytes == 64;
        if constexpr (A == accuracy::high)
            return small_as_they_are(a, [](auto x) { return sleef::tanh_u10(x); });
        else
            return faster_in_sleef ? sleef::tanh_u35(a) : glibc::tanh(a);
    }
};

template <class R>
struct asinh_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high)
            return glibc::asinh(a);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return glibc::asinh(x); }, a);
        else
            return small_as_they_are(a, [](auto x) { return sleef::asinh_u10(x); });
    }
    static constexpr R harmless = only_a_logarithm<R>;
    status settle(R a, R &y) const
    {
        const long double size = __builtin_logl(__builtin_fabsl(a)) + ln_2;
        y = static_cast<R>(a < 0 ? -size : size);
        return fine;
    }
};

template <class R>
struct acosh_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high)
            return glibc::acosh(a);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return glibc::acosh(x); }, a);
        else
            return sleef::acosh_u10(a);
    }
    XKL_HOT unsigned suspicious_arguments(vec<R> a) const
    {
        return which_are<below>(a, R(1)) | which_are<above>(a, only_a_logarithm<R>);
    }
    status settle(R a, R &y) const
    {
        if (a > 1) {
            y = static_cast<R>(__builtin_logl(a) + ln_2);
            return fine;
        }
        y = limits<R>::nan;
        return domain_error;
    }
};

template <class R>
struct atanh_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high)
            return glibc::atanh(a);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return glibc::atanh(x); }, a);
        else
            return small_as_they_are(a, [](auto x) { return sleef::atanh_u10(x); });
    }
    XKL_HOT unsigned suspicious_arguments(vec<R> a) const { return which_are<at_least>(absolute(a), R(1)); }
    status settle(R a, R &y) const
    {
        const bool pole = a == 1 || a == -1;
        y = pole ? a * limits<R>::infinity : limits<R>::nan;
        return pole ? singularity : domain_error;
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
