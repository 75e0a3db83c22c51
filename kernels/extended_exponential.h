// Exponential and logarithm to more digits than a double has, for functions that go on computing with them.
#pragma once

#include "extended.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

constexpr double ln2_start = 0x1.62e42fefa3000p-1, ln2_rest = 0x1.3de6af278ece6p-42; // k*start is exact

/// 2**k of an integer -1022..1023
template <class V>
XKL_HOT V power_of_two(V k)
{
    return bits_as<V>(bits_as<vec<uint64_t>>(k + (0x1.8p52 + 1023)) << 52);
}

/// A number as m*2**k
template <class V>
struct with_exponent {
    extended<V> m;
    V k;
};

/// e**x, m within [1/sqrt(2), sqrt(2)]: (e**x - 1 - x)/x**2 is a polynomial
template <class V>
XKL_HOT with_exponent<V> extended_exp(extended<V> x)
{
    constexpr double terms[] = {0x1.0000000000000p-1,  0x1.5555555555557p-3,  0x1.5555555555556p-5,
                                0x1.111111110ff87p-7,  0x1.6c16c16c16212p-10, 0x1.a01a01aca0134p-13,
                                0x1.a01a01a741b3cp-16, 0x1.71ddffef9e7b1p-19, 0x1.27e4da1a3bf04p-22,
                                0x1.af52906239de4p-26, 0x1.1f75aba0b1e2ep-29};
    const V k = nearest(x.high * 0x1.71547652b82fep+0);
    const extended<V> rest = exact_sum<V>(x.high - k * ln2_start, x.low - k * ln2_rest);
    const V r = rest.high, low = rest.low;
    const extended<V> start = exact_sum_ordered<V>(broadcast(1.), r);
    const V more = r * r * polynomial(r, terms) + (low + low * r);
    return {exact_sum_ordered<V>(start.high, start.low + more), k};
}

/// The natural logarithm of x, 0 < x <= 1 and away from 1: ln((1 + s)/(1 - s)) = 2s + s**3*(a polynomial in
/// s**2)
template <class V>
XKL_HOT extended<V> extended_log(V x)
{
    using U = vec<uint64_t>;
    constexpr double terms[] = {0x1.5555555555555p-1, 0x1.9999999999a50p-2, 0x1.24924924733f3p-2,
                                0x1.c71c720793d58p-3, 0x1.745cf67195104p-3, 0x1.3b1cbff66021ap-3,
                                0x1.0fb03ad29bb82p-3, 0x1.0c983ef1dfbcap-3};
    const auto small = x < 0x1p-960; // lifts denormal numbers
    const U bits = bits_as<U>(small ? x * 0x1p100 : x);
    const V biased = bits_as<V>((bits >> 52) | 0x4330000000000000) - 0x1p52;
    V m = bits_as<V>((bits & 0x000fffffffffffff) | 0x3ff0000000000000);
    V k = biased - (small ? broadcast(1123.) : broadcast(1023.));
    const auto upper = m > 0x1.6a09e667f3bcdp+0;
    m = upper ? .5 * m : m;
    k = upper ? k + 1 : k;

    const extended<V> s = extended<V>{m - 1, V{}} / exact_sum<V>(m, broadcast(1.));
    const V square = s.high * s.high;
    const extended<V> sum = exact_sum<V>(k * ln2_start, 2 * s.high);
    const V more = s.high * square * polynomial(square, terms) + 2 * s.low + k * ln2_rest;
    return exact_sum_ordered<V>(sum.high, sum.low + more);
}

} // namespace XKL_ISA
} // namespace xkl::kernels
