// Complex exponentials, logarithms and roots: Exp, Ln, Log10, Sqrt.
#pragma once

#include "complex_arithmetic.h"
#include "exponential.h"
#include "trigonometric.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

using complex_doubles = complex_vec<double>;

struct exp_core : without_poles {
    static constexpr bool underflows = true;
    template <accuracy A>
    XKL_HOT complex_doubles value(complex_doubles a) const
    {
        const auto size = exp_function<double>{}.value<A>(a.re);
        const auto angle = sincos_function<double>{}.value<A>(a.im);
        return {size * angle.second, size * angle.first};
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return ~(absolute(a.re) <= bound_of_powers<R>(708, 87)) | is_not_finite(a.im);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::exponential(a); }
};

/// log(|a|), half of the logarithm of the square: what that loses of its last digits is added afterwards.
template <accuracy A>
XKL_HOT vec<double> logarithm_of_magnitude(complex_doubles a)
{
    const auto square = square_of_magnitude(a.re, a.im);
    const auto log = ln_function<double>{}.value<A>(square.first);
    return 0.5 * (log + square.second / square.first);
}

struct ln_core {
    static constexpr bool underflows = false, exacting = false;
    template <accuracy A>
    XKL_HOT complex_doubles value(complex_doubles a) const
    {
        return {logarithm_of_magnitude<A>(a), atan2_function<double>{}.value<A>(a.im, a.re)};
    }
    /// Next to the unit circle the correction is all that is left, and may have lost digits itself.
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R> y)
    {
        constexpr R nothing = sizeof(R) == 8 ? 0x1p-56 : 0x1p-50;
        return too_large_to_square(a) | too_small_to_square(a) | (absolute(y.re) < nothing);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::logarithm(a); }
    template <class C>
    static bool pole(C a)
    {
        return zero(a);
    }
};

struct log10_core : ln_core {
    template <accuracy A>
    XKL_HOT complex_doubles value(complex_doubles a) const
    {
        constexpr double of_e = 0x1.bcb7b1526e50ep-2, rest_of_e = 0x1.95355baaafad3p-57;
        const auto y = ln_core::value<A>(a);
        return {multiply_add(y.re, broadcast(of_e), y.re * rest_of_e),
                multiply_add(y.im, broadcast(of_e), y.im * rest_of_e)};
    }
    static scalar::wide exact(scalar::wide a) { return scalar::logarithm10(a); }
};

struct sqrt_core : without_poles {
    template <accuracy A>
    XKL_HOT complex_doubles value(complex_doubles a) const
    {
        const auto larger = square_root(0.5 * (absolute(a.re) + magnitude<A>(a.re, a.im)));
        const auto smaller = absolute(a.im) / (larger + larger);
        return {a.re < 0 ? smaller : larger, with_sign_of(a.re < 0 ? larger : smaller, a.im)};
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return too_large_to_square(a) | too_small_to_square(a);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::square_root(a); }
};

template <class R>
struct complex_exp_function : complex_function<R, exp_core> {
};
template <class R>
struct complex_ln_function : complex_function<R, ln_core> {
};
template <class R>
struct complex_log10_function : complex_function<R, log10_core> {
};
template <class R>
struct complex_sqrt_function : complex_function<R, sqrt_core> {
};

} // namespace XKL_ISA
} // namespace xkl::kernels
