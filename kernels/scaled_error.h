// The scaled complementary error function and what it makes easy: Erfcx, CdfNorm.
//
// (1 + 2x)*erfcx(x) is nearly constant for x >= 0 and a polynomial in (x - 4)/(x + 4). Times exp(-x*x), with
// the digits that the square has more than a double, it gives the normal distribution's tail without the
// error that grows with x*x. Within 0.7 ULP in high and 2 ULP in low accuracy.
#pragma once

#include "base_library.h"
#include "elements.h"
#include "extended_exponential.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// erfcx(x), 0 <= x < 2**900, `Exact` terms of the polynomial with all digits: 6 for 0.6 ULP, 0 for 1.6
template <int Exact, class V>
XKL_HOT extended<V> scaled_erfc(extended<V> x)
{
    constexpr double start_low = -0x1.aa9c415679e6fp-55; // of the first term
    constexpr double terms[] = {
        0x1.3ba5916e9fd7fp+0,   -0x1.1df1ad154a28ep-3,  0x1.f7f5df66fd7bep-7,   0x1.16ecefcfa533fp-4,
        -0x1.9ddb23c3e9106p-4,  0x1.7fee004e13186p-4,   -0x1.0fb06dfe48b0ep-4,  0x1.3079edf668f38p-5,
        -0x1.0962388548d8dp-6,  0x1.49c6728db72cdp-8,   -0x1.8d4a9990c5199p-11, -0x1.a1df2ad41dddep-13,
        0x1.3be032de511d3p-13,  -0x1.9958a8c635c6bp-16, -0x1.788189c990557p-17, 0x1.7f235478fdcf6p-18,
        0x1.385bb6c82456ap-22,  -0x1.badf24e872985p-21, 0x1.5305495fa5317p-24,  0x1.d8d5b12b4bdebp-24,
        -0x1.78888d24fa8a1p-26, -0x1.f9443297365a1p-27, 0x1.117f492198859p-28,  0x1.ebb009434f4efp-30,
        -0x1.2d277a41632e3p-31, -0x1.2dbbbb75b6682p-33, 0x1.7d604a7f621f4p-35};
    // The derivative, for the low part of the polynomial's argument: a few digits do.
    constexpr double slope[] = {-0x1.1df4032d2e47fp-3, 0x1.f83148b96bad8p-6,  0x1.a2db49d5ee986p-3,
                                -0x1.9e2e173963508p-2, 0x1.ddfe294b6a895p-2,  -0x1.959f340ade3cdp-2,
                                0x1.0fe50fdd45966p-2,  -0x1.125758fb697b1p-3, 0x1.40e65b972e21bp-5,
                                -0x1.9648abe57a130p-9};
    const extended<V> t = (x + broadcast(-4.)) / (x + broadcast(4.));
    const extended<V> sum = extended_polynomial<Exact>(t.high, terms);
    const V low = sum.low + (t.low * polynomial(t.high, slope) + start_low);
    const extended<V> twice = {2 * x.high, 2 * x.low};
    return exact_sum_ordered<V>(sum.high, low) / (twice + broadcast(1.));
}

template <class R>
struct erfcx_function {
    using V = vec<R>;
    template <int Exact>
    XKL_HOT static vec<double> of_double(vec<double> a)
    {
        using D = vec<double>;
        const extended<D> up = scaled_erfc<Exact>(extended<D>{absolute(a), D{}});
        if (!any(a < 0))
            return up.rounded();
        const auto [m, k] = extended_exp(exact_product(a, a));
        const D factor = 2 * power_of_two(k);
        const extended<D> down = extended<D>{m.high * factor, m.low * factor} + -up;
        return a < 0 ? down.rounded() : up.rounded();
    }
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return of_double<0>(x); }, a);
        else
            return of_double<(A == accuracy::high ? 6 : 0)>(a);
    }
    XKL_HOT unsigned suspicious_arguments(V a) const
    {
        constexpr R far = sizeof(R) == 8 ? R(0x1p900) : limits<R>::largest;
        return which_are<below>(a, sizeof(R) == 8 ? R(-26.6) : R(-9.3)) | which_are<above>(a, far);
    }
    status settle(R a, R &y) const
    {
        const long double x = a;
        y = static_cast<R>(x > 0 ? 1 / (x * 1.772453850905516027298L) : 2 * __builtin_expl(x * x));
        return overflow_or_nan(y, a);
    }
};

template <class R>
struct cdfnorm_function {
    using V = vec<R>;
    static constexpr double root_half = 0x1.6a09e667f3bcdp-1, root_half_low = -0x1.bdd3413b26456p-55;

    template <int Exact>
    XKL_HOT static vec<double> of_double(vec<double> a)
    {
        using D = vec<double>;
        const D magnitude = absolute(a), x = magnitude < 39 ? magnitude : broadcast(39.);
        const auto [m, k] = extended_exp(-exact_product<D>(x, .5 * x));
        const extended<D> tail = m * scaled_erfc<Exact>(extended_constant<D>(root_half, root_half_low) * x);
        const D factor = .5 * power_of_two<D>(k < -1022 ? broadcast(-1022.) : k);
        const extended<D> below = {tail.high * factor, tail.low * factor};
        const D y = a < 0 ? below.rounded() : (-below + broadcast(1.)).rounded();
        return is_nan(a) ? a : y;
    }
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return .5 * glibc::erfc(x * -root_half); }, a);
        else if constexpr (A == accuracy::enhanced_performance)
            return .5 * glibc::erfc(a * -root_half);
        else
            return of_double<(A == accuracy::high ? 6 : 0)>(a);
    }
    XKL_HOT unsigned suspicious_arguments(V a) const
    {
        return which_are<below>(a, sizeof(R) == 8 ? R(-37) : R(-12.9));
    }
    status settle(R a, R &y) const
    {
        if constexpr (sizeof(R) == 8)
            y = static_cast<R>(.5L * __builtin_erfcl(a * -0.707106781186547524400844L));
        return tiny(y) && !infinite(a) ? underflow : fine;
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
