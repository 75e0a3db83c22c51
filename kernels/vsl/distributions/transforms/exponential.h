// Distributions whose inverse distribution function is made of logarithms: Exponential, Laplace, Weibull,
// Rayleigh, Gumbel. 1 - u is as uniform as u, so the logarithm is that of u itself.
#pragma once

#include "vsl/distributions/transforms/loop.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class R>
struct exponential_transform {
    R a, beta;
    XKL_HOT vec<R> value(vec<R> u) const { return a - beta * logarithm(u); }
};

template <class R>
struct laplace_transform {
    R a, beta;
    XKL_HOT vec<R> value(vec<R> u) const
    {
        const auto lower = u < R(.5);
        const vec<R> distance = beta * logarithm(2 * (lower ? u : 1 - u));
        return lower ? a + distance : a - distance;
    }
};

template <class R>
struct weibull_transform {
    R inverse_shape, a, beta;
    XKL_HOT vec<R> value(vec<R> u) const
    {
        return a + beta * sleef::exp_u10(inverse_shape * logarithm(-logarithm(u)));
    }
};

/// Weibull with shape 2
template <class R>
struct rayleigh_transform {
    R a, beta;
    XKL_HOT vec<R> value(vec<R> u) const { return a + beta * square_root(-logarithm(u)); }
};

/// Of the smallest of many
template <class R>
struct gumbel_transform {
    R a, beta;
    XKL_HOT vec<R> value(vec<R> u) const { return a + beta * logarithm(-logarithm(u)); }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
