// Sine and cosine of an angle known to twice the digits, for angles in other units than radians. Taylor's
// series with coefficients that spread the error over [-pi/4, pi/4].
#pragma once

#include "base_library.h"
#include "extended.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

constexpr double sine_terms[] = {-0x1.5555555555555p-3, 0x1.1111111111110p-7,   -0x1.a01a01a019926p-13,
                                 0x1.71de3a545e704p-19, -0x1.ae64540f0c1bcp-26, 0x1.61217c18c5ad7p-33,
                                 -0x1.ab161790d47bdp-41};
constexpr double cosine_terms[] = {0x1.5555555555555p-5,   -0x1.6c16c16c16960p-10, 0x1.a01a019f4d0f0p-16,
                                   -0x1.27e4fa15bdc69p-22, 0x1.1eeb66b6cb12cp-29,  -0x1.907c0e977e864p-37};

/// `Exact`: to more than a double's digits; else to 2 ULP, of which the low part is nothing
template <bool Exact, class V>
XKL_HOT extended<V> sine(extended<V> angle)
{
    const V square = angle.high * angle.high;
    const V rest = angle.high * square * polynomial(square, sine_terms);
    if constexpr (Exact)
        return exact_sum_ordered<V>(angle.high, multiply_add<V>(angle.low, 1 - .5 * square, rest));
    else
        return {angle.high + rest, V{}};
}

template <bool Exact, class V>
XKL_HOT extended<V> cosine(extended<V> angle)
{
    if constexpr (Exact) {
        const extended<V> square = exact_product(angle.high, angle.high);
        const extended<V> start = exact_sum_ordered<V>(broadcast(1.), -.5 * square.high);
        const V terms = square.high * square.high * polynomial(square.high, cosine_terms);
        return exact_sum_ordered<V>(start.high,
                                    terms + (start.low - (.5 * square.low + angle.high * angle.low)));
    } else {
        const V square = angle.high * angle.high;
        return {1 - square * (.5 - square * polynomial(square, cosine_terms)), V{}};
    }
}

/// An angle of `quadrant` right angles (its last two bits count) and a rest within half of one
template <class V>
struct direction_of {
    V rest; // zero for whole right angles
    extended<V> angle;
    vec<uint64_t> quadrant;

    XKL_HOT auto odd() const { return (quadrant & 1) != 0; }
    XKL_HOT auto behind() const { return (quadrant & 2) != 0; }
};

/// The quadrant as bits: the last ones of a number whose unit is 1
template <class V>
XKL_HOT vec<uint64_t> quadrant_bits(V right_angles)
{
    return bits_as<vec<uint64_t>>(right_angles + 0x1.8p52);
}

template <bool Exact, class V>
XKL_HOT extended<V> radians(V rest, element<V> unit, element<V> unit_low)
{
    if constexpr (Exact)
        return extended_constant<V>(unit, unit_low) * rest;
    else
        return {rest * unit, V{}};
}

template <class V>
XKL_HOT V negated_if(mask<element<V>> condition, V x)
{
    return condition ? -x : x;
}

/// A zero has the sign of the angle a
template <bool Exact, class V>
XKL_HOT V sine_of(const direction_of<V> &d, V a)
{
    const V y = d.odd() ? cosine<Exact>(d.angle).rounded() : sine<Exact>(d.angle).rounded();
    return (d.rest == 0) & ~d.odd() ? with_sign_of(V{}, a) : negated_if(d.behind(), y);
}

/// A zero is +0
template <bool Exact, class V>
XKL_HOT V cosine_of(direction_of<V> d)
{
    d.quadrant += 1;
    const V y = d.odd() ? cosine<Exact>(d.angle).rounded() : sine<Exact>(d.angle).rounded();
    return negated_if(d.behind(), y) + 0;
}

/// The quotient of the two, zeros and poles included
template <bool Exact, class V>
XKL_HOT V tangent_of(const direction_of<V> &d, V a)
{
    const extended<V> s = sine<Exact>(d.angle), c = cosine<Exact>(d.angle);
    V y;
    if constexpr (Exact)
        y = (extended<V>{d.odd() ? c.high : s.high, d.odd() ? c.low : s.low} /
             extended<V>{d.odd() ? s.high : c.high, d.odd() ? s.low : c.low})
                .rounded();
    else
        y = d.odd() ? c.high / s.high : s.high / c.high;
    const V exact = d.odd() ? broadcast(limits<element<V>>::infinity) : with_sign_of(V{}, a);
    return d.rest == 0 ? negated_if(d.behind(), exact) : negated_if(d.odd(), y);
}

} // namespace XKL_ISA
} // namespace xkl::kernels
