// Complex arithmetic beyond sums: Mul, MulByConj, Div, Abs, Arg, CIS.
#pragma once

#include "complex_elements.h"
#include "trigonometric.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Floats are multiplied as floats: twice as fast, and with sums of products that keep all digits as exact.
struct mul_core : without_poles {
    static constexpr bool underflows = true;
    template <accuracy A, class V>
    XKL_HOT V value(V a, V b) const
    {
        return {sum_of_products<A>(a.re, b.re, -a.im, b.im), sum_of_products<A>(a.re, b.im, a.im, b.re)};
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R> b, complex_vec<R> y)
    {
        const auto extreme = is_extreme(y);
        if (!any(extreme)) [[likely]]
            return extreme;
        return (extreme & ~is_zero(a) & ~is_zero(b)) | is_not_finite(y);
    }
    static scalar::wide exact(scalar::wide a, scalar::wide b) { return scalar::multiply(a, b); }
};

struct mulbyconj_core : mul_core {
    template <accuracy A, class V>
    XKL_HOT V value(V a, V b) const
    {
        return mul_core::value<A>(a, V{b.re, -b.im});
    }
    static scalar::wide exact(scalar::wide a, scalar::wide b)
    {
        return scalar::multiply_by_conjugate(a, b);
    }
};

struct div_core {
    static constexpr bool underflows = true, exacting = true;
    using V = complex_vec<double>;
    template <accuracy A>
    XKL_HOT V value(V a, V b) const
    {
        const auto re = sum_of_products<A>(a.re, b.re, a.im, b.im),
                   im = sum_of_products<A>(a.im, b.re, -a.re, b.im);
        if constexpr (A != accuracy::high || !has_fma) {
            const auto square = b.re * b.re + b.im * b.im;
            return {re / square, im / square};
        }
        const auto square = square_of_magnitude(b.re, b.im);
        const auto reciprocal = 1 / square.first;
        const auto refined = [&](vec<double> part) {
            const auto q = part * reciprocal;
            const auto left = multiply_add(-q, square.first, part) - q * square.second;
            return part == 0 ? q : multiply_add(left, reciprocal, q);
        };
        return {refined(re), refined(im)};
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R> b, complex_vec<R> y)
    {
        const auto small = too_small_to_square(a) | is_extreme(y);
        return too_large_to_square(a) | too_large_to_square(b) | too_small_to_square(b) |
               (small & ~is_zero(a)) | is_not_finite(y);
    }
    static scalar::wide exact(scalar::wide a, scalar::wide b) { return scalar::divide(a, b); }
    template <class C>
    static bool pole(C a, C b)
    {
        return zero(b) && !zero(a) && !infinite(a);
    }
};

template <class R>
struct complex_mul_function : complex_function<R, mul_core> {
    using V = complex_vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a, V b) const
    {
        return mul_core{}.template value<A>(a, b);
    }
};
template <class R>
struct complex_mulbyconj_function : complex_function<R, mulbyconj_core> {
    using V = complex_vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a, V b) const
    {
        return mulbyconj_core{}.template value<A>(a, b);
    }
};
template <class R>
struct complex_div_function : complex_function<R, div_core> {
};

struct abs_core {
    template <accuracy A>
    XKL_HOT vec<double> value(complex_vec<double> a) const
    {
        return magnitude<A>(a.re, a.im);
    }
};

template <class R>
struct complex_abs_function {
    using V = complex_vec<R>;
    template <accuracy A>
    XKL_HOT vec<R> value(V a) const
    {
        return computed<abs_core, A>(abs_core{}, a);
    }
    XKL_HOT auto suspicious(V a, vec<R> y) const
    {
        return too_large_to_square(a) | (too_small_to_square(a) & ~is_zero(a)) | is_infinite(y);
    }
    status settle(complex<R> a, R &y) const
    {
        y = static_cast<R>(scalar::magnitude(wide_element(a)));
        return infinite(y) && !infinite(a) ? overflow : fine;
    }
};

template <class R>
struct complex_arg_function : atan2_function<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(complex_vec<R> a) const
    {
        return atan2_function<R>::template value<A>(a.im, a.re);
    }
};

template <class R>
struct complex_cis_function {
    using V = complex_vec<R>;
    template <accuracy A>
    XKL_HOT V value(vec<R> a) const
    {
        const auto y = sincos_function<R>{}.template value<A>(a);
        return {y.second, y.first};
    }
    static constexpr R harmless = limits<R>::largest;
    status settle(R, complex<R> &y) const
    {
        y = {limits<R>::nan, limits<R>::nan};
        return domain_error;
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
