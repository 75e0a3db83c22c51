// Twice the digits: a number as the unevaluated sum of two registers, for the last bits of a result in high
// accuracy.
//
// With FMA a product's error is one instruction. Without, Dekker's product splits the factors; it needs
// factors below 2**995 (doubles), which the functions see to.
#pragma once

#include "packs.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// high + low, low at most about an ULP of high
template <class V>
struct extended {
    V high, low;

    XKL_HOT V rounded() const { return high + low; }
};

/// a + b exactly
template <class V>
XKL_HOT extended<V> exact_sum(V a, V b)
{
    const V sum = a + b, part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

/// a + b exactly, |a| >= |b| or a = 0
template <class V>
XKL_HOT extended<V> exact_sum_ordered(V a, V b)
{
    const V sum = a + b;
    return {sum, b - (sum - a)};
}

/// a*b exactly, unless the error is denormal
template <class V>
XKL_HOT extended<V> exact_product(V a, V b)
{
    const V product = a * b;
    if constexpr (has_fma)
        return {product, multiply_add(a, b, -product)};
    else {
        constexpr element<V> splitter = sizeof(element<V>) == 8 ? 0x1p27 + 1 : 0x1p12 + 1;
        const V as = a * splitter, bs = b * splitter;
        const V a1 = as - (as - a), a2 = a - a1, b1 = bs - (bs - b), b2 = b - b1;
        return {product, ((a1 * b1 - product) + a1 * b2 + a2 * b1) + a2 * b2};
    }
}

template <class V>
XKL_HOT extended<V> operator+(extended<V> a, V b)
{
    const extended<V> sum = exact_sum(a.high, b);
    return exact_sum_ordered<V>(sum.high, sum.low + a.low);
}
template <class V>
XKL_HOT extended<V> operator+(extended<V> a, extended<V> b)
{
    const extended<V> sum = exact_sum(a.high, b.high);
    return exact_sum_ordered<V>(sum.high, sum.low + (a.low + b.low));
}
template <class V>
XKL_HOT extended<V> operator-(extended<V> a)
{
    return {-a.high, -a.low};
}

template <class V>
XKL_HOT extended<V> operator*(extended<V> a, V b)
{
    const extended<V> product = exact_product(a.high, b);
    return exact_sum_ordered<V>(product.high, multiply_add(a.low, b, product.low));
}
template <class V>
XKL_HOT extended<V> operator*(extended<V> a, extended<V> b)
{
    const extended<V> product = exact_product(a.high, b.high);
    return exact_sum_ordered<V>(product.high, product.low + (a.high * b.low + a.low * b.high));
}

template <class V>
XKL_HOT extended<V> operator/(extended<V> a, extended<V> b)
{
    const V quotient = a.high / b.high;
    const extended<V> back = exact_product(quotient, b.high);
    return exact_sum_ordered<V>(quotient,
                                ((a.high - back.high) - back.low + a.low - quotient * b.low) / b.high);
}

/// The square root of x >= 0
template <class V>
XKL_HOT extended<V> extended_root(V x)
{
    const V root = square_root(x);
    const extended<V> back = exact_product(root, root);
    const V rest = (x - back.high) - back.low;
    return {root, rest == 0 ? rest : rest / (root + root)};
}

/// A constant to twice the digits
template <class V>
XKL_HOT extended<V> extended_constant(element<V> high, element<V> low)
{
    return {broadcast(high), broadcast(low)};
}

/// c[0] + x*(c[1] + x*(c[2] + ...
template <class V, int N>
XKL_HOT V polynomial(V x, const double (&c)[N])
{
    V y = broadcast(static_cast<element<V>>(c[N - 1]));
    for (int i = N - 2; i >= 0; --i)
        y = multiply_add(y, x, broadcast(static_cast<element<V>>(c[i])));
    return y;
}

/// The same, its first Exact steps from the constant on with all digits
template <int Exact, class V, int N>
XKL_HOT extended<V> extended_polynomial(V x, const double (&c)[N])
{
    V inner = broadcast(static_cast<element<V>>(c[N - 1]));
    for (int i = N - 2; i >= Exact; --i)
        inner = multiply_add(inner, x, broadcast(static_cast<element<V>>(c[i])));
    extended<V> y = {inner, V{}};
    for (int i = Exact - 1; i >= 0; --i) {
        const extended<V> product = exact_product(y.high, x),
                          sum = exact_sum(broadcast(static_cast<element<V>>(c[i])), product.high);
        y = {sum.high, sum.low + multiply_add(y.low, x, product.low)};
    }
    return y;
}

} // namespace XKL_ISA
} // namespace xkl::kernels
