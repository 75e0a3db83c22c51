// Numbers in two doubles, the second a correction of the first: 30 and more digits where a double's 16 would
// not last.
#pragma once

#include "packs.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

using split_number = two<vec<double>>;

XKL_HOT split_number exact_sum(vec<double> a, vec<double> b)
{
    const auto sum = a + b, b_in_sum = sum - a;
    return {sum, (a - (sum - b_in_sum)) + (b - b_in_sum)};
}

template <class V>
XKL_HOT two<V> exact_product(V a, V b)
{
    using R = element<V>;
    const auto product = a * b;
    if constexpr (has_fma)
        return {product, multiply_add(a, b, -product)};
    constexpr R half_of_digits = sizeof(R) == 8 ? 0x1p27 + 1 : 0x1p12 + 1;
    const auto a_high = a * half_of_digits - (a * half_of_digits - a), a_low = a - a_high,
               b_high = b * half_of_digits - (b * half_of_digits - b), b_low = b - b_high;
    return {product, ((a_high * b_high - product) + a_high * b_low + a_low * b_high) + a_low * b_low};
}

/// A sum whose parts overlap, put right; the first is the larger one
XKL_HOT split_number tidied(vec<double> large, vec<double> small)
{
    const auto sum = large + small;
    return {sum, small - (sum - large)};
}

XKL_HOT split_number sum(split_number a, split_number b)
{
    const auto first = exact_sum(a.first, b.first);
    return tidied(first.first, first.second + (a.second + b.second));
}
XKL_HOT split_number difference(split_number a, split_number b)
{
    return sum(a, {-b.first, -b.second});
}

XKL_HOT split_number product(vec<double> a, split_number b)
{
    const auto first = exact_product(a, b.first);
    return tidied(first.first, multiply_add(a, b.second, first.second));
}
XKL_HOT split_number product(split_number a, split_number b)
{
    const auto first = exact_product(a.first, b.first);
    return tidied(first.first, first.second + multiply_add(a.first, b.second, a.second * b.first));
}

XKL_HOT split_number quotient(split_number a, split_number b)
{
    const auto first = a.first / b.first;
    const auto back = exact_product(first, b.first);
    const auto left = ((a.first - back.first) - back.second) + (a.second - first * b.second);
    return tidied(first, left / b.first);
}

XKL_HOT split_number constant(double first, double second)
{
    return {broadcast(first), broadcast(second)};
}

template <class M>
XKL_HOT split_number chosen(M condition, split_number yes, split_number no)
{
    return {condition ? yes.first : no.first, condition ? yes.second : no.second};
}

} // namespace XKL_ISA
} // namespace xkl::kernels
