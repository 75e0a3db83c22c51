// Angles as multiples of pi: Tanpi, Asinpi, Acospi, Atanpi, Atan2pi.
//
// In high accuracy an inverse function corrects the base library's angle by what its own sine and cosine,
// known to twice the digits, leave of the argument; the division by pi then rounds once: 0.6 ULP. In low
// accuracy the angle within 1 ULP is divided: 3 ULP.
#pragma once

#include "circle.h"
#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

constexpr double half_turn = 0x1.921fb54442d18p+1, half_turn_low = 0x1.1a62633145c07p-53;
constexpr double per_radian = 0x1.45f306dc9c883p-2, per_radian_low = -0x1.6b01ec5417056p-56;

template <class V>
XKL_HOT extended<V> half_turns(extended<V> radians)
{
    return extended_constant<V>(per_radian, per_radian_low) * radians;
}

template <class R>
struct tanpi_function {
    using V = vec<R>;
    template <bool Exact, class W>
    XKL_HOT static W tangent(W a)
    {
        const W turn = a - 2 * nearest(.5 * a), right_angles = nearest(2 * turn);
        const W rest = turn - .5 * right_angles;
        return tangent_of<Exact>(direction_of<W>{rest, radians<Exact>(rest, half_turn, half_turn_low),
                                                 quadrant_bits(right_angles)},
                                 a);
    }
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return tangent<false>(x); }, a);
        else
            return tangent<A == accuracy::high>(a);
    }
    XKL_HOT auto suspicious(V a, V y) const { return is_infinite(a) | is_infinite(y); }
    status settle(R a, R &y) const
    {
        if (!infinite(a))
            return singularity;
        y = limits<R>::nan;
        return domain_error;
    }
};

/// The angle whose sine is x, 0 <= x <= 1/2
template <class V>
XKL_HOT extended<V> arc_sine(extended<V> x)
{
    const V near = sleef::asin_u35(x.high);
    const extended<V> s = sine<true>(extended<V>{near, V{}}), c = cosine<true>(extended<V>{near, V{}});
    return exact_sum_ordered<V>(near, (((x.high - s.high) - s.low) + x.low) / c.high);
}

/// The angle of x in half turns, and whether it is the half of what is left to a quarter turn
template <class V>
struct arc_of_sine {
    extended<V> angle;
    mask<element<V>> folded;
};
template <class V>
XKL_HOT arc_of_sine<V> arc_from(V magnitude)
{
    const auto folded = magnitude > .5;
    const extended<V> root = extended_root<V>(.5 * (1 - magnitude));
    const extended<V> x = {folded ? root.high : magnitude, folded ? root.low : V{}};
    const extended<V> arc = half_turns(arc_sine(x));
    return {{folded ? 2 * arc.high : arc.high, folded ? 2 * arc.low : arc.low}, folded};
}

/// No angle has a sine or cosine beyond 1.
template <class R>
struct of_sine_in_half_turns {
    static constexpr R harmless = 1;
    status settle(R, R &y) const
    {
        y = limits<R>::nan;
        return domain_error;
    }
};

template <class R>
struct asinpi_function : of_sine_in_half_turns<R> {
    using V = vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return sleef::asin_u35(x) * per_radian; }, a);
        else if constexpr (A != accuracy::high)
            return sleef::asin_u10(a) * per_radian;
        else {
            const auto [arc, folded] = arc_from(absolute(a));
            const V y = folded ? (-arc + broadcast(.5)).rounded() : arc.rounded();
            return with_sign_of(y, a);
        }
    }
};

template <class R>
struct acospi_function : of_sine_in_half_turns<R> {
    using V = vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return sleef::acos_u35(x) * per_radian; }, a);
        else if constexpr (A != accuracy::high)
            return sleef::acos_u10(a) * per_radian;
        else {
            const auto [arc, folded] = arc_from(absolute(a));
            const auto left = sign_of(a) != 0;
            const V from = folded ? (left ? broadcast(1.) : V{}) : broadcast(.5);
            const auto plus = folded ^ left;
            const extended<V> step = {plus ? arc.high : -arc.high, plus ? arc.low : -arc.low};
            return (step + from).rounded();
        }
    }
};

/// The angle, in half turns, of a point with 0 <= y <= x, x > 0
template <class V>
XKL_HOT extended<V> arc_tangent(V y, V x)
{
    const V near = sleef::atan_u35(y / x);
    const extended<V> s = sine<true>(extended<V>{near, V{}}), c = cosine<true>(extended<V>{near, V{}});
    const extended<V> yc = exact_product(y, c.high), xs = exact_product(x, s.high);
    const V beside = (yc.high - xs.high) + ((yc.low - xs.low) + (y * c.low - x * s.low));
    return half_turns(exact_sum_ordered<V>(near, beside / (x * c.high + y * s.high)));
}

template <class R>
struct atanpi_function {
    using V = vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return sleef::atan_u35(x) * per_radian; }, a);
        else if constexpr (A != accuracy::high)
            return sleef::atan_u10(a) * per_radian;
        else {
            const V upright = broadcast(0x1p70), magnitude = absolute(a);
            const V x = magnitude > upright ? upright : magnitude, one = broadcast(1.);
            const auto steep = x > 1;
            const extended<V> arc = arc_tangent<V>(steep ? one : x, steep ? x : one);
            const V y = steep ? (-arc + broadcast(.5)).rounded() : arc.rounded();
            return with_sign_of(y, a);
        }
    }
};

template <class R>
struct atan2pi_function {
    using V = vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a, V b) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double(
                [](vec<double> y, vec<double> x) { return sleef::atan2_u35(y, x) * per_radian; }, a, b);
        else if constexpr (A != accuracy::high)
            return sleef::atan2_u10(a, b) * per_radian;
        else {
            const V y = absolute(a), x = absolute(b);
            const auto steep = y > x, left = sign_of(b) != 0;
            const extended<V> arc = arc_tangent<V>(steep ? x : y, steep ? y : x);
            const V from = steep ? broadcast(.5) : left ? broadcast(1.) : V{};
            const auto plus = steep ^ ~left;
            const extended<V> step = {plus ? arc.high : -arc.high, plus ? arc.low : -arc.low};
            return with_sign_of<V>((step + from).rounded(), a);
        }
    }
    /// Points whose products would end beyond the range
    XKL_HOT auto suspicious(V a, V b, [[maybe_unused]] V result) const
    {
        if constexpr (sizeof(R) == 4) // doubles have room for all products
            return is_tiny(result) & (a != 0);
        else {
            constexpr R far = 0x1p500, near = 0x1p-400;
            const V y = absolute(a), x = absolute(b);
            return (y > far) | (x > far) | ((y < near) & (y != 0)) | ((x < near) & ((x != 0) | (y == 0)));
        }
    }
    status settle(R a, R b, R &y) const
    {
        constexpr long double per_radian_l = 0.318309886183790671537767526745028724L;
        y = static_cast<R>(__builtin_atan2l(a, b) * per_radian_l);
        return tiny(y) && a != 0 && !infinite(b) ? underflow : fine;
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
