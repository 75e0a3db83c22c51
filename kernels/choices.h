// Choices between two numbers: CopySign, NextAfter, Fdim, Fmax, Fmin, MaxMag, MinMag. All but Fdim are exact.
#pragma once

#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class R>
struct copysign_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a, vec<R> b) const
    {
        return with_sign_of(a, b);
    }
};

template <class R>
struct nextafter_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        using I = mask<R>;
        using U = vec<unsigned_of<R>>;
        // Numbers of one sign follow each other as their bits do; a comparison's mask is -1 where it holds.
        const I outwards = (b > a) == (a > 0);
        const V step = bits_as<V>(bits_as<I>(a) - (outwards | 1));
        const V smallest = bits_as<V>(U{} + 1);
        const V y = a == 0 ? with_sign_of(smallest, b) : step;
        return a == b ? b : (is_nan(a) | is_nan(b)) ? a + b : y;
    }
    XKL_HOT auto suspicious(V a, V b, V y) const { return (is_infinite(y) | is_tiny(y)) & (a != b); }
    status settle(R a, R b, R &y) const
    {
        return infinite(y) ? infinite(a) ? fine : overflow : tiny(y) && a != b ? underflow : fine;
    }
};

template <class R>
struct fdim_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        return a <= b ? V{} : a - b; // a NaN goes through the difference
    }
    XKL_HOT auto suspicious(V, V, V y) const { return is_infinite(y); }
    status settle(R a, R b, R &y) const { return overflow_or_nan(y, a, b); }
};

/// Of a number and a NaN the number is chosen.
template <class V>
XKL_HOT V unless_nan(V choice, V a, V b)
{
    return is_nan(a) ? b : is_nan(b) ? a : choice;
}

/// Of two zeros of different sign the larger is +0, the smaller is -0: the bits that both have, or one.
template <class V>
XKL_HOT V larger(V a, V b)
{
    using U = vec<unsigned_of<element<V>>>;
    const V equal = bits_as<V>(bits_as<U>(a) & bits_as<U>(b));
    return unless_nan<V>(a > b ? a : a < b ? b : equal, a, b);
}
template <class V>
XKL_HOT V smaller(V a, V b)
{
    using U = vec<unsigned_of<element<V>>>;
    const V equal = bits_as<V>(bits_as<U>(a) | bits_as<U>(b));
    return unless_nan<V>(a < b ? a : a > b ? b : equal, a, b);
}

template <class R>
struct fmax_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a, vec<R> b) const
    {
        return larger(a, b);
    }
};

template <class R>
struct fmin_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a, vec<R> b) const
    {
        return smaller(a, b);
    }
};

template <class R>
struct maxmag_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        const V p = absolute(a), q = absolute(b);
        return p > q ? a : p < q ? b : larger(a, b);
    }
};

template <class R>
struct minmag_function {
    using V = vec<R>;
    template <accuracy>
    XKL_HOT V value(V a, V b) const
    {
        const V p = absolute(a), q = absolute(b);
        return p < q ? a : p > q ? b : smaller(a, b);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
