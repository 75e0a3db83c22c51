// Candidates of rejection methods, each from two uniform numbers: what is refused is -1, so the loop that
// collects the others needs no second vector.
#pragma once

#include "vsl/distributions/transforms/gaussian.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Gamma distribution of shape d + 1/3 >= 1, c = 1/sqrt(9*d): the cube of a normal number (G. Marsaglia, W. W.
/// Tsang, A simple method for generating gamma variables, 2000)
struct gamma_candidates {
    double d, c;

    XKL_HOT vec<double> value(vec<double> u1, vec<double> u2) const
    {
        const vec<double> x = normal_quantile(u1), root = 1 + c * x, cube = root * root * root;
        const auto positive = root > 0;
        const vec<double> v = positive ? cube : broadcast(1.);
        const vec<double> bound = .5 * x * x + d * (1 - v + logarithm(v));
        return positive & (logarithm(u2) < bound) ? d * v : broadcast(-1.);
    }
};

/// Beta distribution with shapes a and b (R. C. H. Cheng, Generating beta variates with nonintegral shape
/// parameters, 1978). His algorithms BB and BC differ in what a, b and beta are; all their quick decisions follow
/// from this one. Exponentials are of negative numbers only: W = a*exp(V) may be too large for a number.
/// Gives the share of W, or what is left of it.
struct beta_candidates {
    double a, b, beta, gamma;
    bool complement;

    XKL_HOT vec<double> value(vec<double> u1, vec<double> u2) const
    {
        const vec<double> v = beta * (logarithm(u1) - logarithm(1 - u1)), e = sleef::exp_u10(-absolute(v));
        const auto large = v > 0;
        const vec<double> of_a = large ? broadcast(a) : a * e, of_b = large ? b * e : broadcast(b);
        const vec<double> sum = of_a + of_b, alpha = broadcast(a + b);
        // gamma*V + alpha*log(alpha/(b + W)) - log(4) >= log(u1*u1*u2)
        const vec<double> ratio = logarithm(alpha / sum),
                          excess = (large ? (gamma - alpha) * v : gamma * v) + alpha * ratio;
        const auto accepted = excess - 0x1.62e42fefa39efp+0 >= logarithm(u1 * u1 * u2);
        return accepted ? (complement ? of_b : of_a) / sum : broadcast(-1.);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
