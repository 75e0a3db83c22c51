// Inverse error functions: ErfInv, ErfcInv, CdfNormInv.
//
// All are erfinv(y). Around 0 that is y times a rational function of y*y. Towards the ends, where 1 - y = q
// has few digits left in y, it is w = sqrt(-ln(q)) less a little: a rational function of w, one for each of
// three ranges, the two outer ones rare enough for a branch. Leading terms have more digits than a double, so
// high and low accuracy are within 1 ULP alike.
#pragma once

#include "elements.h"
#include "extended_exponential.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

constexpr double tail_begins = 0.2, middle_begins = 3, end_begins = 6.5; // in q, w, w

/// The rational function of y*y
template <class V>
XKL_HOT V ratio_around_zero(V square)
{
    constexpr double above[] = {0x1.8aba850413d4ep-2, 0x1.b136c170d0811p+1, 0x1.751ffb01d4e84p+3,
                                0x1.408163f3416c7p+4, 0x1.20afd3444c197p+4, 0x1.06ac4e5d0a10fp+3,
                                0x1.a794af611c5f7p+0, 0x1.afb5b1797e69dp-4, 0x1.c47e9c44faba9p-13};
    constexpr double below[] = {0x1.0000000000000p+0, 0x1.4071169cfade1p+3, 0x1.441b550a9f071p+5,
                                0x1.5478a12657a06p+6, 0x1.8dd97893f7f7dp+6, 0x1.0163468598d27p+6,
                                0x1.5a26bfc0e4e91p+4, 0x1.a124eb94df830p+1, 0x1.39096ad11c45dp-3};
    // Counted from the end of the range all coefficients have one sign, so the polynomials lose no digits.
    const V from = element<V>(0.640625) - square;
    return polynomial(from, above) / polynomial(from, below);
}

template <class V>
XKL_HOT extended<V> erfinv_around_zero(extended<V> y)
{
    const V square = y.high * y.high;
    const extended<V> start = extended_constant<V>(0x1.c5bf891b4ef6bp-1, -0x1.618f13eb7ca89p-55) * y.high;
    const V more = y.high * square * ratio_around_zero(square);
    // The low part's share: the derivative is sqrt(pi)/2*exp(erfinv**2).
    const V x = start.high + more, e = x * x;
    const V derivative = .8862269 * (1 + e * (1 + e * (.5 + e * (1. / 6 + e * (1. / 24)))));
    return exact_sum_ordered<V>(start.high, start.low + (more + derivative * y.low));
}

/// The rational functions of the tail, w > 1.25
template <class V>
XKL_HOT V tail_near(V w)
{
    constexpr double above[] = {0x1.4c06ad9a88d39p-6,  0x1.b49a20985c8edp-4, 0x1.13a698255c4e7p-3,
                                0x1.32abc4920fba8p-4,  0x1.2ea3f26fcd130p-6, 0x1.d69c94c0e1300p-10,
                                0x1.a39a18a72b977p-15, 0x1.0cbba139b4c20p-28};
    constexpr double below[] = {0x1.0000000000000p+0, 0x1.3dee5e0f00d1ep+1, 0x1.5383785821b51p+1,
                                0x1.847626dd113dcp+0, 0x1.edb4966c9b7adp-2, 0x1.46f9cadaf526dp-4,
                                0x1.85798f7aea0b4p-8, 0x1.26547af73557ap-13};
    const V from = w - element<V>(1.25); // what this adds to the function's value there is small
    return element<V>(-0x1.738c232dc2db3p-2) + from * (polynomial(from, above) / polynomial(from, below));
}
template <class V>
XKL_HOT V tail_middle(V w)
{
    constexpr double above[] = {-0x1.2415b16593ea2p-2,  -0x1.036f71c86c3b1p-1, -0x1.383b39597f28dp-2,
                                -0x1.4f50c048571aep-4,  -0x1.4c01a0acafa66p-7, -0x1.10660e7fc234bp-11,
                                -0x1.0bbcce9a236ddp-17, -0x1.b2a78a64b01cdp-28};
    constexpr double below[] = {0x1.0000000000000p+0,  0x1.ec3db32fc7b6ap+0, 0x1.54d397dc3a6d6p+0,
                                0x1.c82176d980642p-2,  0x1.3b9b3761e4df9p-4, 0x1.b3419909b0b05p-8,
                                0x1.022dfabd31fe7p-12, 0x1.651e345f16deap-19};
    const V from = w - element<V>(middle_begins);
    return polynomial(from, above) / polynomial(from, below);
}
template <class V>
XKL_HOT V tail_end(V w)
{
    constexpr double above[] = {-0x1.83f6afa54fdacp-3,  -0x1.812d66be066dep-4,  -0x1.29b69745b1f3bp-6,
                                -0x1.c70770fd473e4p-10, -0x1.6a1601469e3f9p-14, -0x1.22b1a55376fd7p-19,
                                -0x1.a37101afe342cp-26, -0x1.9563c46d56347p-34, -0x1.87120b60767e1p-46,
                                0x1.23608e7d868b7p-56};
    constexpr double below[] = {0x1.0000000000000p+0,  0x1.2d951b95ead01p-1,  0x1.2078a1fdeb46ap-3,
                                0x1.1f9ab826b4c5ap-6,  0x1.3fd8826415acdp-10, 0x1.8b00e4bb91249p-15,
                                0x1.fd9a420d131ccp-21, 0x1.2a359f19387abp-27, 0x1.c15ac04d176a4p-36};
    const V from = w - element<V>(end_begins);
    return polynomial(from, above) / polynomial(from, below);
}

/// x > 0 such that erfc(x) = q
template <class V>
XKL_HOT extended<V> erfcinv_of_tail(V q)
{
    const extended<V> square = -extended_log(q);
    const extended<V> root = extended_root(square.high);
    const V w = root.high, low = root.low + .5 * square.low / root.high;
    V less = tail_near(w);
    if (any(w > middle_begins)) {
        less = w > middle_begins ? tail_middle(w) : less;
        if (any(w > end_begins))
            less = w > end_begins ? tail_end(w) : less;
    }
    return exact_sum_ordered<V>(w, low + less);
}

/// erfinv(y), q = 1 - |y|
template <class V>
XKL_HOT extended<V> extended_erfinv(extended<V> y, V q)
{
    const extended<V> centre = erfinv_around_zero(y);
    const auto tail = q < tail_begins;
    if (!any(tail))
        return centre;
    const extended<V> end = erfcinv_of_tail(q);
    const auto negative = y.high < 0;
    return {tail ? negative ? -end.high : end.high : centre.high,
            tail ? negative ? -end.low : end.low : centre.low};
}

/// Infinite at the ends of the domain, with the sign that F gives
template <class F, class R>
status settle_at_ends(const F &end, R a, R &y)
{
    y = end(a) * limits<R>::infinity;
    return nan(y) ? domain_error : singularity;
}

/// f, floats through doubles
template <class F, class V>
XKL_HOT V through_double(const F &f, V a)
{
    if constexpr (sizeof(element<V>) == 4)
        return in_double(f, a);
    else
        return f(a);
}

template <class R>
struct erfinv_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return through_double(
            [](vec<double> x) {
                using D = vec<double>;
                return with_sign_of(extended_erfinv(extended<D>{x, D{}}, 1 - absolute(x)).rounded(), x);
            },
            a);
    }
    XKL_HOT unsigned suspicious_arguments(vec<R> a) const { return which_are<at_least>(absolute(a), R(1)); }
    status settle(R a, R &y) const
    {
        return settle_at_ends([](R x) { return x == 1 || x == -1 ? x : R(0); }, a, y);
    }
};

template <class R>
struct erfcinv_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return through_double(
            [](vec<double> x) {
                const vec<double> q = x <= 1 ? x : 2 - x;
                return extended_erfinv(exact_sum(broadcast(1.), -x), q).rounded();
            },
            a);
    }
    XKL_HOT unsigned suspicious_arguments(vec<R> a) const
    {
        return which_are<at_most>(a, R(0)) | which_are<at_least>(a, R(2));
    }
    status settle(R a, R &y) const
    {
        return settle_at_ends([](R x) { return x == 0 ? R(1) : x == 2 ? R(-1) : R(0); }, a, y);
    }
};

template <class R>
struct cdfnorminv_function {
    template <accuracy>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return through_double(
            [](vec<double> x) {
                using D = vec<double>;
                const D q = x <= .5 ? 2 * x : 2 * (1 - x);
                const extended<D> y = extended_erfinv(exact_sum<D>(2 * x, broadcast(-1.)), q);
                return (extended_constant<D>(0x1.6a09e667f3bcdp+0, -0x1.bdd3413b26456p-54) * y).rounded();
            },
            a);
    }
    XKL_HOT unsigned suspicious_arguments(vec<R> a) const
    {
        return which_are<at_most>(a, R(0)) | which_are<at_least>(a, R(1));
    }
    status settle(R a, R &y) const
    {
        return settle_at_ends([](R x) { return x == 0 ? R(-1) : x == 1 ? R(1) : R(0); }, a, y);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
