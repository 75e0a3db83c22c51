// Angles in degrees: Sind, Cosd, Tand. Their reduction to a quadrant is exact, so multiples of 90 degrees
// give exact zeros, ones and poles.
#pragma once

#include "circle.h"
#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <bool Exact, class V>
XKL_HOT direction_of<V> degrees(V a)
{
    const V right_angles = nearest(a * (1. / 90)), rest = a - 90 * right_angles;
    return {rest, radians<Exact>(rest, 0x1.1df46a2529d39p-6, 0x1.5c1d8becdd291p-62),
            quadrant_bits(right_angles)};
}

/// Angles that are too large for an exact product of 90 and the number of right angles are settled one at a
/// time.
template <class R>
struct of_degrees {
    static constexpr R exact_up_to = R(0x1p44);

    /// The same angle within a turn; false: there is none
    static bool within_a_turn(R &a)
    {
        if (infinite(a))
            return false;
        a = static_cast<R>(__builtin_fmod(a, 360));
        return true;
    }
    template <class F>
    static status settle_with(const F &f, R a, R &y)
    {
        if (!within_a_turn(a)) {
            y = limits<R>::nan;
            return domain_error;
        }
        y = f.template value<accuracy::high>(broadcast(a))[0];
        return fine;
    }
};

template <accuracy A, class R>
constexpr bool last_bits_count = A == accuracy::high && sizeof(R) == 8;

/// f<Exact>(a), floats through doubles
template <accuracy A, class F, class V>
XKL_HOT V angular(const F &f, V a)
{
    if constexpr (sizeof(element<V>) == 4)
        return in_double([&f](vec<double> x) { return f.template operator()<false>(x); }, a);
    else
        return f.template operator()<last_bits_count<A, element<V>>>(a);
}

template <class R>
struct sind_function : of_degrees<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return angular<A>([]<bool Exact>(auto x) { return sine_of<Exact>(degrees<Exact>(x), x); }, a);
    }
    static constexpr R harmless = of_degrees<R>::exact_up_to;
    status settle(R a, R &y) const { return this->settle_with(*this, a, y); }
};

template <class R>
struct cosd_function : of_degrees<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return angular<A>([]<bool Exact>(auto x) { return cosine_of<Exact>(degrees<Exact>(x)); }, a);
    }
    static constexpr R harmless = of_degrees<R>::exact_up_to;
    status settle(R a, R &y) const { return this->settle_with(*this, a, y); }
};

template <class R>
struct tand_function : of_degrees<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return angular<A>([]<bool Exact>(auto x) { return tangent_of<Exact>(degrees<Exact>(x), x); }, a);
    }
    XKL_HOT auto suspicious(vec<R> a, vec<R> y) const
    {
        return (absolute(a) > of_degrees<R>::exact_up_to) | is_infinite(y);
    }
    status settle(R a, R &y) const
    {
        const status found = this->settle_with(*this, a, y);
        return infinite(y) ? singularity : found;
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
