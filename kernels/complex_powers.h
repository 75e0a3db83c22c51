// Powers of complex numbers: Pow, Powx.
//
// a**b is exp(b*log(a)), and the errors of the logarithm grow with b*log(a), to a thousand times and more. So
// logarithm and product are computed in two parts, with some 64 binary digits; that leaves the errors of
// exponential, sine and cosine. Floats, and doubles of which half of the digits are wanted, are content with
// the plain formula.
#pragma once

#include "complex_exponential.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Area tangent and (Sign = -1) arc tangent of small arguments, |t| < 0.18: the first two terms of the series
/// in two parts, the others, up to t**25, in one.
template <int Sign>
XKL_HOT split_number small_tangent_inverse(split_number t)
{
    const auto square = product(t, t);
    const auto u = Sign * square.first;
    auto rest = broadcast(1. / 25);
    for (int term = 23; term >= 5; term -= 2)
        rest = multiply_add(rest, u, broadcast(1. / term));
    const auto cube = product(product(t, square), constant(0x1.5555555555555p-2, 0x1.5555555555555p-56));
    const auto tail = t.first * u * u * rest;
    return sum(t, {Sign * cube.first, multiply_add(broadcast<double>(Sign), cube.second, tail)});
}

/// log(|a|) of a square that is neither denormal nor infinite: half of the square's exponent, and of its
/// mantissa m the area tangent of (m - 1)/(m + 1)
XKL_HOT split_number split_logarithm(split_number square)
{
    using U = vec<uint64_t>;
    const U exponent = bits_as<U>(square.first) >> 52, as_mantissa = U{} + 0x4330000000000000u;
    const auto to_one = bits_as<vec<double>>((2046 - exponent) << 52);
    const auto mantissa = square.first * to_one;
    const auto large = mantissa > 0x1.6a09e667f3bcdp0;
    const auto power = bits_as<vec<double>>(exponent | as_mantissa) - (0x1p52 + 1023) +
                       (large ? broadcast(1.) : broadcast(0.));
    const auto half = large ? broadcast(.5) : broadcast(1.);
    const auto m = mantissa * half, rest = square.second * to_one * half;
    const auto below = exact_sum(m, broadcast(1.));
    const auto t = quotient(tidied(m - 1, rest), tidied(below.first, below.second + rest));
    constexpr double half_of_ln2 = 0x1.62e42fec00000p-2, its_rest = 0x1.d1cf79abc9e3bp-33; // exact products
    return sum(tidied(power * half_of_ln2, power * its_rest), small_tangent_inverse<1>(t));
}

/// atan2(y, x): the angle from the nearest of the directions of 0, pi/16... pi/4, whose tangents are p, is
/// the arc tangent of (y - p*x)/(x + p*y).
XKL_HOT split_number split_angle(complex_vec<double> a)
{
    struct direction {
        double from, tangent, angle, rest;
    };
    constexpr direction directions[] = {
        {0x1.936bb8c5b2da2p-4, 0x1.975f5e0553158p-3, 0x1.921fb54442d18p-3, 0x1.f93470dfef04ap-58},
        {0x1.36a08355c63dcp-2, 0x1.a827999fcef32p-2, 0x1.921fb54442d18p-2, 0x1.c398861b78b55p-59},
        {0x1.11ab7190834ecp-1, 0x1.561b82ab7f990p-1, 0x1.2d97c7f3321d2p-1, -0x1.8f57cafebcf16p-58},
        {0x1.a43002ae42850p-1, 0x1.fffffffffffffp-1, 0x1.921fb54442d18p-1, -0x1.cb3b399d747f3p-56}};
    const auto x = absolute(a.re), y = absolute(a.im);
    const auto steep = y > x;
    const auto far = steep ? y : x, near = steep ? x : y;
    auto tangent = broadcast(0.);
    split_number angle = constant(0, 0);
    for (const direction &each : directions) {
        const auto beyond = near > far * each.from;
        tangent = beyond ? broadcast(each.tangent) : tangent;
        angle = chosen(beyond, constant(each.angle, each.rest), angle);
    }
    const auto across = exact_product(tangent, far), along = exact_product(tangent, near);
    const auto up = exact_sum(near, -across.first), right = exact_sum(far, along.first);
    const auto t = quotient(tidied(up.first, up.second - across.second),
                            tidied(right.first, right.second + along.second));
    angle = sum(angle, small_tangent_inverse<-1>(t));
    angle = chosen(steep, difference(constant(0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54), angle), angle);
    angle =
        chosen(a.re < 0, difference(constant(0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53), angle), angle);
    const auto sign = with_sign_of(broadcast(1.), a.im);
    return {angle.first * sign, angle.second * sign};
}

struct pow_core {
    static constexpr bool underflows = true, exacting = true;
    template <accuracy A>
    XKL_HOT complex_doubles value(complex_doubles a, complex_doubles b) const
    {
        if constexpr (A != accuracy::high) {
            const auto log = ln_core{}.value<A>(a);
            return exp_core{}.value<A>(mul_core{}.value<A>(b, log));
        }
        const auto log = split_logarithm(square_of_magnitude(a.re, a.im)), angle = split_angle(a);
        const auto size = difference(product(b.re, log), product(b.im, angle)),
                   turn = sum(product(b.re, angle), product(b.im, log));
        const auto r = exp_function<double>{}.value<A>(size.first);
        const auto direction = sincos_function<double>{}.value<A>(turn.first);
        const auto scaled = multiply_add(r, size.second, r);
        const auto cosine = multiply_add(-direction.first, turn.second, direction.second),
                   sine = multiply_add(direction.second, turn.second, direction.first);
        return {scaled * cosine, scaled * sine};
    }
    static scalar::wide exact(scalar::wide a, scalar::wide b) { return scalar::power(a, b); }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R> b, complex_vec<R> y)
    {
        return too_large_to_square(a) | too_small_to_square(a) | is_not_finite(b) | is_extreme(y);
    }
    template <class C>
    static bool pole(C a, C b)
    {
        return zero(a) && b.re < 0;
    }
};

template <class R>
struct complex_pow_function : complex_function<R, pow_core> {
};

template <class R>
struct complex_powx_function {
    using V = complex_vec<R>;
    complex<R> b;
    XKL_HOT V exponent() const { return {broadcast(b.re), broadcast(b.im)}; }
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        return complex_function<R, pow_core>{}.template value<A>(a, exponent());
    }
    XKL_HOT auto suspicious(V a, V y) const { return pow_core::rare<R>(a, exponent(), y); }
    status settle(complex<R> a, complex<R> &y) const
    {
        return settled<pow_core>(pow_core::exact(wide_element(a), wide_element(b)), y, a, b);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
