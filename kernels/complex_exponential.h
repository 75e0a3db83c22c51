// Complex exponentials, logarithms, roots and powers: Exp, Ln, Log10, Sqrt, Pow, Powx.
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
    static constexpr bool underflows = false;
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

/// exp(b*log(a)). The error of the logarithm grows with the size of b*log(a), up to half of a double's digits: enough for
/// floats and for enhanced performance; otherwise doubles are computed one at a time with 11 more bits.
struct pow_core {
    static constexpr bool underflows = true;
    template <accuracy A>
    XKL_HOT complex_doubles value(complex_doubles a, complex_doubles b) const
    {
        const auto log = ln_core{}.value<A>(a);
        return exp_core{}.value<A>(mul_core{}.value<A>(b, log));
    }
    static scalar::wide exact(scalar::wide a, scalar::wide b) { return scalar::power(a, b); }
    template <class C>
    static bool pole(C a, C b)
    {
        return zero(a) && b.re < 0;
    }
};

template <class R, accuracy A>
XKL_HOT complex_vec<R> complex_power(complex_vec<R> a, complex_vec<R> b)
{
    if constexpr (sizeof(R) == 4 || A == accuracy::enhanced_performance)
        return computed<pow_core, accuracy::low>(pow_core{}, a, b);
    complex_vec<R> y;
    for (int lane = 0; lane < lanes<R>; ++lane) {
        complex<R> result;
        settled<pow_core>(pow_core::exact(wide_element(lane_of(a, lane)), wide_element(lane_of(b, lane))),
                          result, lane_of(a, lane), lane_of(b, lane));
        set_lane(y, lane, result);
    }
    return y;
}

template <class R>
struct of_power {
    using V = complex_vec<R>;
    XKL_HOT static auto rare(V a, V b, V y)
    {
        return too_large_to_square(a) | too_small_to_square(a) | is_not_finite(b) | is_not_finite(y) |
               (is_tiny(y.re) & is_tiny(y.im));
    }
    static status settle(complex<R> a, complex<R> b, complex<R> &y)
    {
        return settled<pow_core>(pow_core::exact(wide_element(a), wide_element(b)), y, a, b);
    }
};

template <class R>
struct complex_pow_function {
    using V = complex_vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a, V b) const
    {
        return complex_power<R, A>(a, b);
    }
    XKL_HOT auto suspicious(V a, V b, V y) const { return of_power<R>::rare(a, b, y); }
    status settle(complex<R> a, complex<R> b, complex<R> &y) const { return of_power<R>::settle(a, b, y); }
};

template <class R>
struct complex_powx_function {
    using V = complex_vec<R>;
    complex<R> b;
    XKL_HOT V exponent() const { return {broadcast(b.re), broadcast(b.im)}; }
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        return complex_power<R, A>(a, exponent());
    }
    XKL_HOT auto suspicious(V a, V y) const { return of_power<R>::rare(a, exponent(), y); }
    status settle(complex<R> a, complex<R> &y) const { return of_power<R>::settle(a, b, y); }
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
