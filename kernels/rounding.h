// Integers next to a number and what is left of it: Floor, Ceil, Trunc, Round, NearbyInt, Rint, Frac, Modf,
// Logb. All are exact, so the accuracy modes are one.
#pragma once

#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

enum class direction {
    to_nearest = _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC,
    down = _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC,
    up = _MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC,
    to_zero = _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC,
    current = _MM_FROUND_CUR_DIRECTION, // raises inexact
    current_quietly = _MM_FROUND_CUR_DIRECTION | _MM_FROUND_NO_EXC
};

#if !defined(__AVX2__)
/// One of the two integers next to x, in the current rounding direction
template <class V>
XKL_HOT V neighbour(V x)
{
    constexpr element<V> no_fraction = 1 / limits<element<V>>::epsilon;
    const V shift = with_sign_of(broadcast(no_fraction), x);
    return absolute(x) < no_fraction ? (x + shift) - shift : x;
}

/// The integer below, above or towards zero, whatever the current rounding direction is
template <direction D, class V>
XKL_HOT V directed(V x)
{
    if constexpr (D == direction::to_zero)
        return with_sign_of(directed<direction::down>(absolute(x)), x);
    else if constexpr (D == direction::up)
        return -directed<direction::down>(-x);
    else {
        const V near = neighbour(x);
        return with_sign_of(near > x ? near - 1 : near, x);
    }
}
#endif

template <direction D, class V>
XKL_HOT V rounded(V x)
{
    using R = element<V>;
#if defined(__AVX512F__)
    constexpr int how = static_cast<int>(D);
    if constexpr (sizeof(R) == 8)
        return _mm512_roundscale_pd(x, how);
    else
        return _mm512_roundscale_ps(x, how);
#elif defined(__AVX2__)
    constexpr int how = static_cast<int>(D);
    if constexpr (sizeof(R) == 8)
        return _mm256_round_pd(x, how);
    else
        return _mm256_round_ps(x, how);
#else
    if constexpr (D == direction::current)
        return with_sign_of(neighbour(x), x);
    else if constexpr (D == direction::current_quietly) // sums raise inexact
        return by_element([](R each) { return static_cast<R>(__builtin_nearbyint(each)); }, x);
    else
        return directed<D>(x);
#endif
}

template <class R, direction D>
struct rounding {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return rounded<D>(a);
    }
};
template <class R>
struct floor_function : rounding<R, direction::down> {
};
template <class R>
struct ceil_function : rounding<R, direction::up> {
};
template <class R>
struct trunc_function : rounding<R, direction::to_zero> {
};
template <class R>
struct rint_function : rounding<R, direction::current> {
};
template <class R>
struct nearbyint_function : rounding<R, direction::current_quietly> {
};

/// What truncation leaves, with the sign of x: nothing of an infinity
template <class V>
XKL_HOT V fraction(V x, V truncated)
{
    return with_sign_of(is_infinite(x) ? V{} : x - truncated, x);
}

template <class R>
struct round_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a) const
    {
        const V cut = rounded<direction::to_zero>(a);
        const V away = absolute(fraction(a, cut)) >= R(.5) ? broadcast(R(1)) : V{};
        return with_sign_of(absolute(cut) + away, a);
    }
};

template <class R>
struct frac_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return fraction(a, rounded<direction::to_zero>(a));
    }
};

template <class R>
struct modf_function {
    template <accuracy>
    XKL_HOT two<vec<R>> value(vec<R> a) const
    {
        const vec<R> whole = rounded<direction::to_zero>(a);
        return {whole, fraction(a, whole)};
    }
};

template <class R>
struct logb_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a) const
    {
        using U = vec<unsigned_of<R>>;
        constexpr int digits = sizeof(R) == 8 ? 52 : 23, bias = sizeof(R) == 8 ? 1023 : 127;
        constexpr R normal = 1 / limits<R>::epsilon; // lifts denormal numbers among the normal ones
        const auto low = is_tiny(a);
        const V magnitude = absolute(low ? a * normal : a);
        // The exponent becomes the last digits of a number whose unit is 1.
        const U exponent = bits_as<U>(magnitude) >> digits;
        const V biased = bits_as<V>(exponent | bits_as<U>(broadcast(normal))) - normal;
        const V y = biased - (low ? broadcast(R(bias + digits)) : broadcast(R(bias)));
        return magnitude <= limits<R>::largest ? y : magnitude;
    }
    XKL_HOT unsigned suspicious_arguments(V a) const { return which_are<equal>(a, R(0)); }
    status settle(R, R &y) const
    {
        y = -limits<R>::infinity;
        return singularity;
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
