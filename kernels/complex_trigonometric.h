// Complex trigonometric and hyperbolic functions: Cos, Sin, Tan, Cosh, Sinh, Tanh.
#pragma once

#include "complex_elements.h"
#include "exponential.h"
#include "hyperbolic.h"
#include "trigonometric.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// i*a and -i*a
XKL_HOT complex_vec<double> turned_left(complex_vec<double> a)
{
    return {-a.im, a.re};
}
XKL_HOT complex_vec<double> turned_right(complex_vec<double> a)
{
    return {a.im, -a.re};
}

/// sinh and cosh of one argument
template <accuracy A>
XKL_HOT two<vec<double>> hyperbolic_pair(vec<double> a)
{
    if constexpr (A == accuracy::high)
        return {sinh_function<double>{}.value<A>(a), cosh_function<double>{}.value<A>(a)};
    const auto above_one = sleef::expm1_u10(absolute(a)), back = above_one / (above_one + 1);
    return {with_sign_of(0.5 * (above_one + back), a), 0.5 * (above_one - back) + 1};
}

/// Sizes for which the hyperbolic functions may overflow, and angles without a direction
template <class V>
XKL_HOT auto is_beyond(V size, V angle, double bound_of_double, double bound_of_float)
{
    const auto bound = bound_of_powers<element<V>>(bound_of_double, bound_of_float);
    return ~(absolute(size) <= bound) | is_not_finite(angle);
}

struct sinh_core : without_poles {
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        const auto size = hyperbolic_pair<A>(a.re), angle = sincos_function<double>{}.value<A>(a.im);
        return {size.first * angle.second, size.second * angle.first};
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return is_beyond(a.re, a.im, 708, 87);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::hyperbolic_sine(a); }
};

struct cosh_core : without_poles {
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        const auto size = hyperbolic_pair<A>(a.re), angle = sincos_function<double>{}.value<A>(a.im);
        return {size.second * angle.second, size.first * angle.first};
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return is_beyond(a.re, a.im, 708, 87);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::hyperbolic_cosine(a); }
};

/// (sinh x * cosh x + i * sin y * cos y) / (sinh(x)**2 + cos(y)**2): the functions' errors add up to nearly
/// all that is allowed, so products and quotients have two parts.
struct tanh_core : without_poles {
    static constexpr bool exacting = true;
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        const auto size = hyperbolic_pair<A>(a.re), angle = sincos_function<double>{}.value<A>(a.im);
        const auto sinh = size.first, cosh = size.second, sin = angle.first, cos = angle.second;
        if constexpr (A != accuracy::high) {
            const auto square = multiply_add(sinh, sinh, cos * cos);
            return {sinh * cosh / square, sin * cos / square};
        }
        const auto square = square_of_magnitude(sinh, cos);
        const auto re = quotient(exact_product(sinh, cosh), square),
                   im = quotient(exact_product(sin, cos), square);
        return {with_sign_of(re.first, a.re), with_sign_of(im.first, sin * cos)}; // also of a zero
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return is_beyond(a.re, a.im, 300, 300);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::hyperbolic_tangent(a); }
};

/// sin(a) = -i*sinh(i*a), and so on
struct sin_core : sinh_core {
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        return turned_right(sinh_core::value<A>(turned_left(a)));
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return is_beyond(a.im, a.re, 708, 87);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::sine(a); }
};

struct cos_core : cosh_core {
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        return cosh_core::value<A>(turned_left(a));
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return is_beyond(a.im, a.re, 708, 87);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::cosine(a); }
};

struct tan_core : tanh_core {
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        return turned_right(tanh_core::value<A>(turned_left(a)));
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return is_beyond(a.im, a.re, 300, 300);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::tangent(a); }
};

template <class R>
struct complex_sinh_function : complex_function<R, sinh_core> {
};
template <class R>
struct complex_cosh_function : complex_function<R, cosh_core> {
};
template <class R>
struct complex_tanh_function : complex_function<R, tanh_core> {
};
template <class R>
struct complex_sin_function : complex_function<R, sin_core> {
};
template <class R>
struct complex_cos_function : complex_function<R, cos_core> {
};
template <class R>
struct complex_tan_function : complex_function<R, tan_core> {
};

} // namespace XKL_ISA
} // namespace xkl::kernels
