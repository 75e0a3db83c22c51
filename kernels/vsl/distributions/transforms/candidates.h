// Candidates of rejection methods, each from two uniform numbers: what is refused is -1, so the loop that
// collects the others needs no second vector.
#pragma once

#include "vsl/distributions/transforms.h"
#include "vsl/distributions/transforms/gaussian.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Gamma distribution of shape d + 1/3 >= 1, c = 1/sqrt(9*d): the cube of a normal number (G. Marsaglia, W.
/// W. Tsang, A simple method for generating gamma variables, 2000)
struct gamma_candidates {
    double d, c;

    XKL_HOT vec<double> value(vec<double> u1, vec<double> u2) const
    {
        const vec<double> x = normal_quantile(u1), y = c * x, root = 1 + y;
        const auto positive = root > 0;
        // d*(1 - v + log(v)) of v = root**3, such that large shapes lose no digits
        const vec<double> bound =
            .5 * x * x + d * (3 * sleef::log1p_u10(positive ? y : V{}) - y * (3 + y * (3 + y)));
        return positive & (logarithm(u2) < bound) ? d * (root * root * root) : broadcast(-1.);
    }

  private:
    using V = vec<double>;
};

/// Beta distribution (R. C. H. Cheng, Generating beta variates with nonintegral shape parameters, 1978).
/// His algorithms BB and BC are one here, for all their quick decisions follow from the last one, which in
/// terms of the smaller shape reads
///   c*t - (low + high)*log1p(low/(low + high)*expm1(t)) - log(4) >= log(u1*u1*u2)
/// with t = slope*log(u1/(1 - u1)),
/// with a slope below 0 and c = 0 for BC, where small shapes make e**t too large for a number. Gives
/// low*e**t/(high + low*e**t), which has the distribution if low is the first shape, or what that lacks of 1.
struct beta_candidates {
    vsl::beta_shapes shapes;

    XKL_HOT vec<double> value(vec<double> u1, vec<double> u2) const
    {
        const auto &[low, high, share, slope, c, complement] = shapes;
        const vec<double> t = slope * (logarithm(u1) - logarithm(1 - u1));
        const double sum = low + high;
        vec<double> growth = sleef::log1p_u10(low / sum * sleef::expm1_u10(t));
        const auto steep = t > 700;
        if (any(steep))
            growth = steep ? log_one_plus_exp(t + share) : growth;
        const vec<double> excess = c * t - sum * growth;
        const auto accepted = excess - 0x1.62e42fefa39efp+0 >= logarithm(u1 * u1 * u2);
        const vec<double> e = sleef::exp_u10(-absolute(t)); // e**t may be too large for a number
        const vec<double> of_low = t > 0 ? broadcast(low) : low * e,
                          of_high = t > 0 ? high * e : broadcast(high);
        return accepted ? (complement ? of_high : of_low) / (of_low + of_high) : broadcast(-1.);
    }

  private:
    XKL_HOT static vec<double> log_one_plus_exp(vec<double> x)
    {
        return (x > 0 ? x : vec<double>{}) + sleef::log1p_u10(sleef::exp_u10(-absolute(x)));
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
