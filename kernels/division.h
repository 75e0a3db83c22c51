// Quotients and what they leave: Fmod, Remainder, LinearFrac.
#pragma once

#include "extended.h"
#include "rounding.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class V>
struct division {
    V quotient, rest; // an integer, and 0 <= rest < divisor
};

/// a, b >= 0 with a quotient below 2**50 (2**28 for floats in doubles, whose products are exact)
template <class V>
XKL_HOT division<V> divided(V a, V b)
{
    V quotient = rounded<direction::to_zero>(a / b);
    const extended<V> product = exact_product(quotient, b);
    V rest = (a - product.high) - product.low;        // exact, as it has no digit beyond those of b
    const auto less = quotient == 0, over = rest < 0; // the quotient was rounded up to an integer
    quotient = over ? quotient - 1 : quotient;
    rest = over ? rest + b : rest;
    return {quotient, less ? a : rest};
}

/// F of magnitudes; the result has the sign of a where it is positive.
template <class F, class V>
XKL_HOT V on_magnitudes(const F &f, V a, V b)
{
    V y;
    if constexpr (sizeof(element<V>) == 4)
        y = in_double(f, absolute(a), absolute(b));
    else
        y = f(absolute(a), absolute(b));
    return bits_as<V>(bits_as<vec<unsigned_of<element<V>>>>(y) ^ sign_of(a));
}

/// Where vectors don't serve: quotients of many digits, and numbers at the end of the range, whose products
/// would end beyond
template <class R>
struct exact_division {
    using V = vec<R>;
    XKL_HOT auto suspicious(V a, V b, V) const
    {
        constexpr R many = sizeof(R) == 8 ? R(0x1p50) : R(0x1p28);
        constexpr R large = sizeof(R) == 8 ? R(0x1p960) : limits<R>::largest,
                    small = sizeof(R) == 8 ? R(0x1p-900) : R(0);
        return ~(absolute(a / b) < many) | (absolute(a) > large) |
               ((absolute(a) < small) & (absolute(b) < small));
    }
};

template <class R>
struct fmod_function : exact_division<R> {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return on_magnitudes([](vec<double> x, vec<double> y) { return divided(x, y).rest; }, a, b);
    }
    status settle(R a, R b, R &y) const
    {
        y = static_cast<R>(__builtin_fmod(a, b));
        return overflow_or_nan(y, a, b);
    }
};

template <class R>
struct remainder_function : exact_division<R> {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return on_magnitudes(
            [](vec<double> x, vec<double> y) {
                const auto [quotient, rest] = divided(x, y);
                const vec<double> half = quotient * .5, over = rest - y;
                const auto odd = rounded<direction::to_zero>(half) != half;
                return ((rest > -over) | ((rest == -over) & odd)) ? over : rest;
            },
            a, b);
    }
    status settle(R a, R b, R &y) const
    {
        y = static_cast<R>(__builtin_remainder(a, b));
        return overflow_or_nan(y, a, b);
    }
};

/// Numerator and denominator keep all digits of their products, so that sums which cancel have their ULPs all
/// the same; in enhanced performance doubles lose them.
template <class R>
struct linearfrac_function {
    using V = vec<R>;
    R scalea, shifta, scaleb, shiftb;

    template <class W>
    XKL_HOT W plain(W a, W b) const
    {
        using T = element<W>;
        return (T(scalea) * a + T(shifta)) / (T(scaleb) * b + T(shiftb));
    }
    XKL_HOT extended<V> term(R scale, V x, R shift) const
    {
        return exact_product(broadcast(scale), x) + broadcast(shift);
    }
    template <accuracy A>
    XKL_HOT V value(V a, V b) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double([this](vec<double> x, vec<double> y) { return plain(x, y); }, a, b);
        else if constexpr (A == accuracy::enhanced_performance)
            return plain(a, b);
        else {
            const V y = (term(scalea, a, shifta) / term(scaleb, b, shiftb)).rounded();
            return is_nan(y) ? plain(a, b) : y; // infinities have no second half
        }
    }
    XKL_HOT auto suspicious(V, V, V y) const { return is_not_finite(y); }
    status settle(R a, R b, R &y) const
    {
        const bool pole = infinite(y) && scaleb * b + shiftb == 0;
        return pole ? singularity : overflow_or_nan(y, a, b, scalea, shifta, scaleb, shiftb);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
